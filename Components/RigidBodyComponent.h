#pragma once

// A body that the physics step moves. Its state comes with the physics system.

#include "Components/Component.h"

#include <cstdint>

namespace Components
{

class RigidBodyComponent : public Component
{
public:
    explicit RigidBodyComponent(GameObjectHandle ownerHandle) : Component(ownerHandle) {}

    uint32_t slot = 0;
};

} // namespace Components
