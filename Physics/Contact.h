#pragma once

// A touching pair of circle colliders found in one step. The colliders are named by their places in the
// space's dense collider array, never by pointer: script handlers that run during the response may add
// colliders and so move the array, while places stay good for the whole step (adds append, removals only
// flag).

#include "Components/Vec2.h"

#include <cstdint>

namespace Physics
{

struct Contact
{
    // The lower place of the two.
    uint32_t first;
    uint32_t second;
    // On the rim of the first circle, facing the second; world space.
    Vec2 point;
    // Overlap along the line of centres; the first radius when the centres coincide.
    float penetration;
};

// The narrow phase for two circles at world positions a and b. Touching counts as a contact, and so does
// any comparison that NaN makes undecidable. Returns false for no contact.
bool CollideCircles(Vec2 a, float radiusA, Vec2 b, float radiusB, Contact& contact);

} // namespace Physics
