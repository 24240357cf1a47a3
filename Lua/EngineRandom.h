#pragma once

#include <lua.hpp>

namespace Lua
{

// Points math.random and math.randomseed at the engine's generator, keeping Lua's own rules for ranges,
// argument errors and seeding. Needs the math library open.
void InstallEngineRandom(lua_State* L);

} // namespace Lua
