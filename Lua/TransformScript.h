#pragma once

// The script functions of a Transform handle: local and world placement, draw order and the parent links.

#include <lua.hpp>

namespace Lua
{

// Makes the metatable "Transform".
void RegisterTransformType(lua_State* L);

// The script function SetParent: (transform, parent Transform, GameObject or nil, optional keepLocal).
// GameObject's SetParent hands over to it.
int SetTransformParent(lua_State* L);

} // namespace Lua
