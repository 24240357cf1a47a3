#pragma once

// A body that the physics step moves: a velocity and a mass acting on the transform it was given at
// construction. A body whose mass is 0 or NaN takes no part in the dynamics at all (HasMass), so that no
// step ever divides by it.

#include "Components/Component.h"
#include "Components/Handle.h"
#include "Components/Vec2.h"

#include <cstdint>

namespace Components
{

class RigidBodyComponent : public Component
{
public:
    // Gives the owner a transform if it has none.
    explicit RigidBodyComponent(GameObjectHandle ownerHandle);

    // False for a mass of 0 or NaN: such a body is neither integrated nor pushed, adds nothing to a
    // contact's inverse mass, and counts as standing still.
    bool HasMass() const { return mass != 0.0f && mass == mass; }

    Handle transform;
    Vec2 velocity;
    float mass = 1.0f;
    bool ignoreDrag = false;
    uint32_t slot = 0;
};

} // namespace Components
