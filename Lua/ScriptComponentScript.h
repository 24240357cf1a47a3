#pragma once

// The script functions of a "Script" handle. Reading or assigning any other field of the handle reaches
// the component's environment, so scripts share variables through each other's handles.

#include <lua.hpp>

namespace Lua
{

// Makes the metatable "Script". Every setter is found in it as "Set" and the member's name.
void RegisterScriptComponentType(lua_State* L);

} // namespace Lua
