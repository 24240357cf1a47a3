#pragma once

// The base of all nine component classes. Not polymorphic: components live by value in their factory's
// Slotmap and are reached by handle. `destroyed` marks a component waiting for the end-of-frame sweep; it
// still resolves and stays in the array until then.

#include "Components/GameObjectHandle.h"

namespace Components
{

class Component
{
public:
    explicit Component(GameObjectHandle ownerHandle) : owner(ownerHandle) {}

    GameObjectHandle owner;
    bool destroyed = false;
};

} // namespace Components
