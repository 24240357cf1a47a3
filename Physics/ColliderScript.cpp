// The "Collider" script type. Each function resolves its handle anew. Handlers connected to a collider
// stand in one table that only the registry holds: each handler function is a key, and its value is the
// Spawn of the handler's own script environment, which later starts it as a coroutine of that script.

#include "Components/ColliderComponent.h"
#include "Lua/ScriptArguments.h"
#include "Lua/ScriptHandles.h"
#include "Lua/Stack.h"
#include "Physics/ComponentScripts.h"

#include <string_view>

namespace Physics
{
namespace
{

using Lua::CheckBoolean;
using Lua::CheckFloat;
using Lua::CheckVec2;

using Components::ColliderComponent;
using Components::ColliderType;

int GetAllMembers(lua_State* L)
{
    Lua::CheckCollider(L);
    static constexpr const char* kMembers[] = {"Restitution", "Type", "Size", "Ghost"};
    Lua::PushStringArray(L, kMembers, 4);
    return 1;
}

int GetRestitution(lua_State* L)
{
    lua_pushnumber(L, Lua::CheckCollider(L).restitution);
    return 1;
}

int SetRestitution(lua_State* L)
{
    ColliderComponent& collider = Lua::CheckCollider(L);
    collider.restitution = CheckFloat(L, 2);
    return 0;
}

int GetType(lua_State* L)
{
    lua_pushstring(L, Lua::CheckCollider(L).type == ColliderType::Circle ? "Circle" : "AABB");
    return 1;
}

int SetType(lua_State* L)
{
    ColliderComponent& collider = Lua::CheckCollider(L);
    static constexpr const char* kTypes[] = {"Circle", "AABB", nullptr};
    collider.type = static_cast<ColliderType>(luaL_checkoption(L, 2, nullptr, kTypes));
    return 0;
}

int GetRadius(lua_State* L)
{
    lua_pushnumber(L, Lua::CheckCollider(L).radius);
    return 1;
}

int SetRadius(lua_State* L)
{
    ColliderComponent& collider = Lua::CheckCollider(L);
    collider.radius = CheckFloat(L, 2);
    return 0;
}

int GetSize(lua_State* L)
{
    const ColliderComponent& collider = Lua::CheckCollider(L);
    lua_pushnumber(L, collider.radius * 2.0f);
    lua_pushnumber(L, collider.halfHeight * 2.0f);
    return 2;
}

int SetSize(lua_State* L)
{
    ColliderComponent& collider = Lua::CheckCollider(L);
    const Vec2 size = CheckVec2(L, 2);
    collider.radius = size.x * 0.5f;
    collider.halfHeight = size.y * 0.5f;
    return 0;
}

int GetGhost(lua_State* L)
{
    lua_pushboolean(L, Lua::CheckCollider(L).ghost);
    return 1;
}

int SetGhost(lua_State* L)
{
    ColliderComponent& collider = Lua::CheckCollider(L);
    collider.ghost = CheckBoolean(L, 2);
    return 0;
}

int GetCollisionGroup(lua_State* L)
{
    lua_pushinteger(L, Lua::CheckCollider(L).collisionGroup);
    return 1;
}

// Keeps the low 16 bits, so 65535 and -1 are the same group.
int SetCollisionGroup(lua_State* L)
{
    ColliderComponent& collider = Lua::CheckCollider(L);
    collider.collisionGroup = static_cast<int16_t>(static_cast<uint16_t>(luaL_checkinteger(L, 2)));
    return 0;
}

// Pushes the Spawn of the function's own environment, found through its first upvalue, which must be
// _ENV. Returns false, pushing nothing, for a function without upvalues.
bool PushSpawnOfHandler(lua_State* L)
{
    const char* name = lua_getupvalue(L, 2, 1);
    if (name == nullptr)
    {
        return false;
    }
    if (std::string_view(name) != "_ENV")
    {
        luaL_error(L, "Couldn't get secret environment from function, got %s instead", name);
    }
    if (!lua_istable(L, -1) || lua_getfield(L, -1, "Spawn") != LUA_TFUNCTION)
    {
        luaL_error(L, "Couldn't get Spawn() from secret environment of function");
    }
    lua_remove(L, -2);
    return true;
}

// Pushes the collider's handler table, making it if there is none yet.
void PushHandlerTable(lua_State* L, ColliderComponent& collider)
{
    if (collider.collisionEvents != 0 &&
        lua_rawgeti(L, LUA_REGISTRYINDEX, collider.collisionEvents) == LUA_TTABLE)
    {
        return;
    }
    if (collider.collisionEvents != 0)
    {
        // Scripts hold the registry: a reference that no longer names a table is given up and replaced.
        lua_pop(L, 1);
        luaL_unref(L, LUA_REGISTRYINDEX, collider.collisionEvents);
    }
    lua_createtable(L, 0, 1);
    lua_pushvalue(L, -1);
    collider.collisionEvents = luaL_ref(L, LUA_REGISTRYINDEX);
}

int ConnectCollision(lua_State* L)
{
    ColliderComponent& collider = Lua::CheckCollider(L);
    luaL_checktype(L, 2, LUA_TFUNCTION);
    Lua::EnsureStack(L, 24);
    if (!PushSpawnOfHandler(L))
    {
        return 0;
    }
    PushHandlerTable(L, collider);
    lua_pushvalue(L, 2);
    lua_pushvalue(L, -3);
    lua_rawset(L, -3);
    return 0;
}

int DisconnectCollision(lua_State* L)
{
    ColliderComponent& collider = Lua::CheckCollider(L);
    luaL_checktype(L, 2, LUA_TFUNCTION);
    Lua::EnsureStack(L, 24);
    if (collider.collisionEvents == 0 ||
        lua_rawgeti(L, LUA_REGISTRYINDEX, collider.collisionEvents) != LUA_TTABLE)
    {
        return 0;
    }
    lua_pushvalue(L, 2);
    lua_pushnil(L);
    lua_rawset(L, -3);
    lua_pushnil(L);
    if (lua_next(L, -2) == 0)
    {
        luaL_unref(L, LUA_REGISTRYINDEX, collider.collisionEvents);
        collider.collisionEvents = 0;
    }
    return 0;
}

constexpr luaL_Reg kColliderFunctions[] = {
    {"GetAllMembers", GetAllMembers},
    {"GetRestitution", GetRestitution},
    {"SetRestitution", SetRestitution},
    {"GetType", GetType},
    {"SetType", SetType},
    {"GetRadius", GetRadius},
    {"SetRadius", SetRadius},
    {"GetSize", GetSize},
    {"SetSize", SetSize},
    {"GetGhost", GetGhost},
    {"SetGhost", SetGhost},
    {"GetCollisionGroup", GetCollisionGroup},
    {"SetCollisionGroup", SetCollisionGroup},
    {"ConnectCollision", ConnectCollision},
    {"DisconnectCollision", DisconnectCollision},
    {nullptr, nullptr},
};

} // namespace

void RegisterColliderScriptType(lua_State* L)
{
    Lua::RegisterMethodType(L, "Collider", kColliderFunctions);
}

} // namespace Physics
