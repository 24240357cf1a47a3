#include "Physics/ScriptCollisionDispatch.h"

#include "Components/GameObject.h"
#include "Components/Space.h"
#include "Debug/Logger.h"
#include "Lua/Environments.h"
#include "Lua/ScriptHandles.h"
#include "Lua/Stack.h"

#include <lua.hpp>
#include <string>

namespace Physics
{
namespace
{

struct DispatchRequest
{
    int32_t handlers;
    GameObjectHandle own;
    GameObjectHandle other;
    Vec2 point;
};

// A text for the log whatever the error value is; its __tostring is script code and doesn't run here.
void LogDispatchError(lua_State* L)
{
    const char* message = lua_type(L, -1) == LUA_TSTRING ? lua_tostring(L, -1) : "NULL";
    Logger::Log("Collider", LogLevel::Error, std::string("Error Dispatching collision event: ") + message);
}

void PushObject(lua_State* L, GameObjectHandle handle)
{
    GameObject* object = handle.space != nullptr ? handle.space->FindObject(handle) : nullptr;
    if (object != nullptr)
    {
        Lua::PushGameObject(*object, L);
    }
    else
    {
        lua_pushnil(L);
    }
}

// Spawn(handler, own, other, x, y) for every entry of the handler table, in traversal order.
int Dispatch(lua_State* L)
{
    const DispatchRequest& request = *static_cast<const DispatchRequest*>(lua_touserdata(L, 1));
    Lua::EnsureStack(L, 31);
    lua_pushcfunction(L, Lua::TracebackHandler);
    const int messageHandler = lua_gettop(L);
    PushObject(L, request.own);
    PushObject(L, request.other);
    if (lua_rawgeti(L, LUA_REGISTRYINDEX, request.handlers) != LUA_TTABLE)
    {
        return 0;
    }
    const int table = lua_gettop(L);
    lua_pushnil(L);
    while (lua_next(L, table) != 0)
    {
        lua_pushvalue(L, -1);
        lua_pushvalue(L, -3);
        lua_pushvalue(L, messageHandler + 1);
        lua_pushvalue(L, messageHandler + 2);
        lua_pushnumber(L, request.point.x);
        lua_pushnumber(L, request.point.y);
        if (lua_pcall(L, 5, 0, messageHandler) != LUA_OK)
        {
            LogDispatchError(L);
            lua_pop(L, 1);
            // Clearing the current key is allowed in the middle of a traversal.
            lua_pushvalue(L, -2);
            lua_pushnil(L);
            lua_rawset(L, table);
        }
        lua_pop(L, 1);
    }
    return 0;
}

} // namespace

// The whole dispatch runs inside one protected call, so no Lua error of it can reach the panic function.
void ScriptCollisionDispatch::CollisionOccurred(int32_t handlers, GameObjectHandle own,
                                                GameObjectHandle other, Vec2 point)
{
    lua_State* L = state;
    if (L == nullptr || !lua_checkstack(L, 3))
    {
        return;
    }
    DispatchRequest request{handlers, own, other, point};
    const int top = lua_gettop(L);
    lua_pushcfunction(L, Dispatch);
    lua_pushlightuserdata(L, &request);
    if (lua_pcall(L, 1, 0, 0) != LUA_OK)
    {
        LogDispatchError(L);
    }
    lua_settop(L, top);
}

} // namespace Physics
