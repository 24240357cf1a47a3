#pragma once

// Objects with circles and bodies for the physics tests, and what those tests read back. References
// returned here are good until the next component of the same type is added to the space.

#include "Components/Space.h"
#include "Physics/Contact.h"

#include <cstdint>
#include <random>
#include <vector>

namespace PhysicsScene
{

// An object with a transform at the position.
GameObjectHandle AddObject(Space& space, Vec2 position);
// A circle collider of the radius on the object.
Components::ColliderComponent& AddCircle(GameObjectHandle object, float radius);
Components::RigidBodyComponent& AddBody(GameObjectHandle object, Vec2 velocity, float mass = 1.0f);

Components::TransformComponent& TransformOf(GameObjectHandle object);
Components::ColliderComponent& ColliderOf(GameObjectHandle object);
Components::RigidBodyComponent& BodyOf(GameObjectHandle object);

// The contacts of the space by the plain walk over all pairs (i, then j > i), reading each collider's
// transform anew for every pair: the reference that any faster search must match.
std::vector<Physics::Contact> AllPairContacts(Space& space);
// Equal in every field, floats bit for bit (NaN included).
bool SameContacts(const std::vector<Physics::Contact>& a, const std::vector<Physics::Contact>& b);

// One of the values that break careless float code: NaN, infinities, the extremes, denormals, signed
// zeros, values whose squares overflow or underflow, and a few ordinary ones.
float HostileValue(std::mt19937& random);

// A hash of every bit of every transform's local position and every body's velocity, in array order.
uint64_t HashState(Space& space);

} // namespace PhysicsScene
