#pragma once

// How code outside a space holds a game object or a component: the owning space's address and a handle in
// one of its Slotmaps. The Space* is plain, so these presuppose a space that still exists.

#include "Components/Handle.h"

#include <cstdint>

class Space;
class GameObject;

struct GameObjectHandle
{
    Space* space = nullptr;
    Handle handle;

    // Raises if there is no space or the object has gone.
    GameObject& Get() const;
    // True if there is a space and the object resolves in it; raises nothing.
    bool IsValid() const;
};

// A component standing alone, as scripts hold it: the handle within the factory of `type` in `space`.
struct ComponentHandle
{
    Space* space = nullptr;
    Handle handle;
    int32_t type = 0;
};
