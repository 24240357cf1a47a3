#pragma once

// Stack room for engine code that pushes onto a Lua stack.

#include <lua.hpp>

namespace Lua
{

// Makes sure of the given number of free slots, or raises the Lua error "stack overflow".
inline void EnsureStack(lua_State* L, int slots)
{
    if (!lua_checkstack(L, slots))
    {
        luaL_error(L, "stack overflow");
    }
}

} // namespace Lua
