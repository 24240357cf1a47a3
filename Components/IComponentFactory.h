#pragma once

// What an object and its space need of a factory when they know only the type number.

#include "Components/GameObjectHandle.h"

#include <cstdint>

namespace Components
{

class IComponentFactory
{
public:
    virtual ~IComponentFactory() = default;

    // Adds a new component for the owner and returns its handle.
    virtual Handle Create(GameObjectHandle owner) = 0;
    // Elements in the array, flagged ones included.
    virtual uint32_t Count() const = 0;
    // Flags one component for the sweep; a handle that doesn't resolve is logged.
    virtual void Destroy(Handle handle) = 0;
    // Sweeps out all flagged components and returns how many went.
    virtual uint32_t DeleteDestroyed() = 0;
};

} // namespace Components
