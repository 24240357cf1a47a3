#include "Lua/Wait.h"

namespace Lua
{
namespace
{

// Its address is the marker; scripts can't make a light userdata of their own.
const char kWaitMarker = 0;

} // namespace

int Wait(lua_State* L)
{
    const lua_Number seconds = luaL_optnumber(L, 1, 0);
    lua_settop(L, 0);
    lua_pushnumber(L, seconds);
    lua_pushlightuserdata(L, const_cast<char*>(&kWaitMarker));
    return lua_yield(L, 2);
}

bool IsWaitYield(lua_State* thread)
{
    return lua_gettop(thread) >= 2 && lua_type(thread, -1) == LUA_TLIGHTUSERDATA &&
           lua_touserdata(thread, -1) == &kWaitMarker;
}

} // namespace Lua
