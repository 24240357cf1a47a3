#pragma once

// Runs the script handlers connected to a collider when the step reports one side of a contact: each
// handler is queued through the Spawn of its own script, to run as a coroutine in that script's next
// update. A handler whose Spawn fails is logged and disconnected for good.

#include "Physics/CollisionListener.h"

struct lua_State;

namespace Physics
{

class ScriptCollisionDispatch final : public CollisionListener
{
public:
    void CollisionOccurred(int32_t handlers, GameObjectHandle own, GameObjectHandle other,
                           Vec2 point) override;

    // The Lua state the handlers live in; nothing is dispatched while it is null.
    lua_State* state = nullptr;
};

} // namespace Physics
