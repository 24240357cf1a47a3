#pragma once

// The script functions of a GameObject handle. Scripts read an object like a table: its methods, "Name",
// "Parent", its components by type name and its children by name, in that order; only "Name" can be
// assigned.

#include <cstdint>
#include <lua.hpp>

namespace Lua
{

// Makes the metatable "GameObject".
void RegisterGameObjectType(lua_State* L);

// The component type whose script name is the string at the index; -1 for any other value.
int32_t ComponentTypeAt(lua_State* L, int index);

} // namespace Lua
