#include "Lua/ScriptComponentScript.h"

#include "Components/ComponentType.h"
#include "Components/ScriptComponent.h"
#include "Lua/ScriptHandles.h"
#include "Lua/Stack.h"

#include <array>

namespace Lua
{
namespace
{

constexpr std::array<const char*, 3> kMembers = {"Source", "Priority", "Variables"};

int GetAllMembers(lua_State* L)
{
    CheckScript(L);
    PushStringArray(L, kMembers.data(), static_cast<int>(kMembers.size()));
    return 1;
}

// A conversion of an argument can run a finalizer, so the component is resolved again after the checks.
int SetScript(lua_State* L)
{
    CheckScript(L);
    const char* fileName = luaL_checkstring(L, 2);
    lua_pushboolean(L, CheckScript(L).SetScript(L, fileName));
    return 1;
}

int GetSource(lua_State* L)
{
    const Components::ScriptComponent& script = CheckScript(L);
    lua_pushlstring(L, script.source.data(), script.source.size());
    return 1;
}

int SetPriority(lua_State* L)
{
    CheckScript(L);
    const lua_Integer priority = luaL_checkinteger(L, 2);
    CheckScript(L).SetPriority(L, priority);
    return 0;
}

int GetPriority(lua_State* L)
{
    lua_pushinteger(L, CheckScript(L).priority);
    return 1;
}

int SetVariables(lua_State* L)
{
    CheckScript(L);
    luaL_checktype(L, 2, LUA_TTABLE);
    CheckScript(L).SetVariables(L, 2);
    return 0;
}

int GetVariables(lua_State* L)
{
    const int32_t variables = CheckScript(L).variables;
    EnsureStack(L, 21);
    if (variables > 0)
    {
        lua_rawgeti(L, LUA_REGISTRYINDEX, variables);
    }
    else
    {
        lua_pushnil(L);
    }
    return 1;
}

// Pushes the environment of the handle at 1, or raises.
void PushEnvironmentOf(lua_State* L, int32_t environment)
{
    if (environment == 0)
    {
        luaL_error(L, "Script component has no environment");
    }
    const int type = lua_rawgeti(L, LUA_REGISTRYINDEX, environment);
    if (type != LUA_TTABLE)
    {
        luaL_error(L, "Script component environment had bad type %s", lua_typename(L, type));
    }
}

int Index(lua_State* L)
{
    const int32_t environment = CheckScript(L).environment;
    EnsureStack(L, 22);
    lua_settop(L, 2);
    if (lua_getfield(L, LUA_REGISTRYINDEX, "Script") == LUA_TTABLE)
    {
        lua_pushvalue(L, 2);
        if (lua_rawget(L, -2) != LUA_TNIL)
        {
            return 1;
        }
    }
    lua_settop(L, 2);
    PushEnvironmentOf(L, environment);
    lua_pushvalue(L, 2);
    lua_gettable(L, -2);
    return 1;
}

int NewIndex(lua_State* L)
{
    const int32_t environment = CheckScript(L).environment;
    EnsureStack(L, 22);
    lua_settop(L, 3);
    PushEnvironmentOf(L, environment);
    lua_insert(L, 2);
    lua_settable(L, 2);
    return 0;
}

int Equal(lua_State* L)
{
    const ComponentUserdata* first = TestComponentHandle(L, 1, Components::Script);
    if (first == nullptr)
    {
        return RaiseTypeError(L, 1, "Script");
    }
    const ComponentUserdata* second = TestComponentHandle(L, 2, Components::Script);
    lua_pushboolean(L, second != nullptr && first->handle.space == second->handle.space &&
                           first->spaceSerial == second->spaceSerial &&
                           first->handle.handle == second->handle.handle);
    return 1;
}

constexpr luaL_Reg kFunctions[] = {
    {"GetAllMembers", GetAllMembers},
    {"SetScript", SetScript},
    {"SetSource", SetScript},
    {"GetSource", GetSource},
    {"SetPriority", SetPriority},
    {"GetPriority", GetPriority},
    {"SetVariables", SetVariables},
    {"GetVariables", GetVariables},
    {"__index", Index},
    {"__newindex", NewIndex},
    {"__eq", Equal},
    {nullptr, nullptr},
};

} // namespace

void RegisterScriptComponentType(lua_State* L)
{
    EnsureStack(L, 22);
    luaL_newmetatable(L, Components::ComponentTypeName(Components::Script));
    luaL_setfuncs(L, kFunctions, 0);
    lua_pop(L, 1);
}

} // namespace Lua
