#pragma once

// The environment of one script component: a table under "EnvMeta", so it reads the globals and keeps what
// the script assigns. It holds from the start "GameObject", "Space", "Script" (the component's handle),
// "dofile" and "Spawn" (closures bound to this environment and handle), "Input" (the Connect functions)
// and then every variable, copied last so a variable may shadow any of them. Connected input handlers go
// to its field "__inputFuncs", a table from event number to function.

#include "Components/GameObjectHandle.h"

#include <cstdint>
#include <lua.hpp>

class Space;

namespace Lua
{

// Pushes a new environment for the script component of `owner` and returns a registry reference
// to it. `variables` is a registry reference to a table whose pairs are copied in, or 0.
int32_t MakeScriptEnvironment(lua_State* L, GameObjectHandle owner, int32_t variables);

// Copies the pairs of the table at `from` into the table at `to`, one level deep, through lua_settable.
void CopyPairs(lua_State* L, int from, int to);

} // namespace Lua
