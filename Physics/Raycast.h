#pragma once

// Ray queries against the circle colliders of one space.

#include "Components/GameObjectHandle.h"
#include "Components/Vec2.h"

#include <cstdint>
#include <vector>

class Space;

namespace Physics
{

struct RaycastHit
{
    GameObjectHandle object;
    // Where the ray meets the circle, world space.
    Vec2 hit;
    // From the ray's start to the hit, world units.
    float distance;
};

// Refills hits with the circles that the ray meets, nearest first; equal distances keep the colliders'
// array order, and a NaN distance goes last. `ray` is the whole ray from `start`, not a direction: a hit
// lies at start + ray * t with t in [0, 1]. A start inside or on a circle hits it at the start with
// distance 0, even for a ray of length 0. A non-zero group leaves out the colliders of that group.
// Colliders are reached through their owners: a flagged collider, a destroyed owner or an owner's flagged
// or missing transform is no hit, nor is an AABB.
void Raycast(Space& space, Vec2 start, Vec2 ray, int16_t group, std::vector<RaycastHit>& hits);

} // namespace Physics
