#pragma once

// The script types of the two physics component types.

#include <lua.hpp>

namespace Physics
{

// Makes the metatables of the two component types.
void RegisterRigidBodyScriptType(lua_State* L);
void RegisterColliderScriptType(lua_State* L);

} // namespace Physics
