#pragma once

// The scripts that run on an object as coroutines. Their state comes with the Lua system.

#include "Components/Component.h"

#include <cstdint>

namespace Components
{

class ScriptComponent : public Component
{
public:
    explicit ScriptComponent(GameObjectHandle ownerHandle) : Component(ownerHandle) {}

    uint32_t slot = 0;
};

} // namespace Components
