#pragma once

// The global table Game: the script functions that act on the game as a whole, and the root Space.

#include <lua.hpp>

namespace Core
{

class Game;

// +1: the table Game. Its functions hold the game as a light userdata upvalue.
void PushGameTable(lua_State* L, Game& game);

} // namespace Core
