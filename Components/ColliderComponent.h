#pragma once

// A shape that the physics step tests for contacts. Its state comes with the physics system.

#include "Components/Component.h"

#include <cstdint>

namespace Components
{

class ColliderComponent : public Component
{
public:
    explicit ColliderComponent(GameObjectHandle ownerHandle) : Component(ownerHandle) {}

    uint32_t slot = 0;
};

} // namespace Components
