#pragma once

// The game's one persistent table, seen by scripts as os.SaveFile. The save file is a Lua chunk that
// returns the data table; it is read once at start, and every assignment to os.SaveFile rewrites it whole.
// os.SaveFile itself is an empty proxy: reads and # reach the data through its metatable, and every
// assignment reaches the save operation.

#include <lua.hpp>

namespace Lua
{

// Pushes the proxy, loading the data from the file at the path. Without a path (the save folder couldn't
// be made) the data starts empty and every save fails with an Error line.
void BuildSaveTable(lua_State* L, const char* path);

} // namespace Lua
