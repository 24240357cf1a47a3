#pragma once

// The global GetFilesInDirectory(pattern [, includeDirectories = true]): an array of the matching names.

#include <lua.hpp>

namespace Lua
{

int GetFilesInDirectory(lua_State* L);

} // namespace Lua
