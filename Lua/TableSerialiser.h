#pragma once

// Writes a Lua table as Lua source that reads it back: "{" entries joined by "," "}", each entry
// "[" key "]=" value, strings quoted and escaped, tables nested, everything else as the global tostring
// gives it. Entries come in lua_next order, which nothing sorts.
//
// A table that holds itself on its path, or nesting deeper than the loader can read back, is refused with
// a Lua error, since such data would be lost at the next start.

#include <lua.hpp>

namespace Lua
{

// The deepest nesting of tables that a save file can hold and still load.
constexpr int kMaxSavedDepth = 198;

// Pushes the serialised form of the table at the index; a non-table logs a Warning and gives "{}".
void TableToString(lua_State* L, int index);

// Pushes the string at the index escaped for a double-quoted Lua string, without the quotes.
void EscapeString(lua_State* L, int index);

// Raises a Lua error if the value at the index, stored inside the table at containerIndex, would form a
// cycle or nest too deeply to be saved. Reads only.
void CheckSavable(lua_State* L, int index, int containerIndex);

} // namespace Lua
