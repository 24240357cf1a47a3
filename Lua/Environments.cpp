#include "Lua/Environments.h"

#include "Lua/Stack.h"

namespace Lua
{
namespace
{

// Raised as a plain string, without the position that luaL_error would put in front of it.
int RefuseNewGlobal(lua_State* L)
{
    lua_pushstring(L, "Making global variables in serialisation is not allowed");
    return lua_error(L);
}

} // namespace

void MakeEnvironmentMetatable(lua_State* L)
{
    EnsureStack(L, 22);
    luaL_newmetatable(L, "EnvMeta");
    lua_rawgeti(L, LUA_REGISTRYINDEX, LUA_RIDX_GLOBALS);
    lua_setfield(L, -2, "__index");
    lua_pop(L, 1);
}

void PushReadOnlyEnvironment(lua_State* L)
{
    EnsureStack(L, 21);
    if (lua_getfield(L, LUA_REGISTRYINDEX, "ReadOnlyTable") == LUA_TTABLE)
    {
        return;
    }
    lua_pop(L, 1);
    lua_newtable(L);
    luaL_newmetatable(L, "ReadOnlyTableMeta");
    lua_pushcfunction(L, RefuseNewGlobal);
    lua_setfield(L, -2, "__newindex");
    lua_rawgeti(L, LUA_REGISTRYINDEX, LUA_RIDX_GLOBALS);
    lua_setfield(L, -2, "__index");
    lua_setmetatable(L, -2);
    lua_pushvalue(L, -1);
    lua_setfield(L, LUA_REGISTRYINDEX, "ReadOnlyTable");
}

int TracebackHandler(lua_State* L)
{
    const char* message = luaL_tolstring(L, 1, nullptr);
    luaL_traceback(L, L, message, 0);
    return 1;
}

} // namespace Lua
