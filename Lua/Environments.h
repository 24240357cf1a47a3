#pragma once

// The two kinds of environment that loaded chunks run in. A script's own environment is a table whose
// metatable "EnvMeta" falls back to the globals, so what a script assigns stays its own. Level and archetype
// files share one read-only environment that reads the globals and refuses to make any.

#include <lua.hpp>

namespace Lua
{

// Registers "EnvMeta", whose __index is the globals table.
void MakeEnvironmentMetatable(lua_State* L);

// Pushes the read-only environment, making it on first use; it is kept in the registry as "ReadOnlyTable".
void PushReadOnlyEnvironment(lua_State* L);

// Message handler for protected calls: returns the error's text with a traceback of the failing stack.
int TracebackHandler(lua_State* L);

} // namespace Lua
