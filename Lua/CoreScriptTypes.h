#pragma once

// The handle types that belong to no system: "Space", "GameObject" and "Transform". The loop makes them
// after the systems have started and before they register their own types.

#include <lua.hpp>

namespace Lua
{

void RegisterCoreScriptTypes(lua_State* L);

} // namespace Lua
