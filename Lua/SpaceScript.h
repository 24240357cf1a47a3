#pragma once

// The script functions of a Space handle: queries of its objects, the requests that change the tree of
// Spaces or its level at the next frame start, its clock and its priority.

#include <lua.hpp>

namespace Lua
{

// Makes the metatable "Space" with its functions and its __index.
void RegisterSpaceType(lua_State* L);

} // namespace Lua
