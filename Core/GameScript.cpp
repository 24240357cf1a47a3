#include "Core/GameScript.h"

#include "Core/Game.h"
#include "Core/Window.h"
#include "Lua/ScriptHandles.h"
#include "Lua/Stack.h"

namespace Core
{
namespace
{

Game& GameOf(lua_State* L)
{
    return *static_cast<Game*>(lua_touserdata(L, lua_upvalueindex(1)));
}

// The frame runs to its end: later scripts, spaces and systems still update.
int Quit(lua_State* L)
{
    GameOf(L).running = false;
    return 0;
}

// Without a window there is no fullscreen to switch: the argument is still checked, and nothing changes.
int SetFullscreen(lua_State* L)
{
    luaL_checktype(L, 2, LUA_TBOOLEAN);
    if (Window* window = GameOf(L).window; window != nullptr)
    {
        window->SetFullscreen(lua_toboolean(L, 2) != 0);
    }
    return 0;
}

int GetFullscreen(lua_State* L)
{
    const Window* window = GameOf(L).window;
    lua_pushboolean(L, window != nullptr && window->fullscreen);
    return 1;
}

int ToggleFullscreen(lua_State* L)
{
    if (Window* window = GameOf(L).window; window != nullptr)
    {
        window->SetFullscreen(!window->fullscreen);
    }
    return 0;
}

int SetDebugDraw(lua_State* L)
{
    luaL_checktype(L, 2, LUA_TBOOLEAN);
    GameOf(L).debugDraw = lua_toboolean(L, 2) != 0;
    return 0;
}

constexpr luaL_Reg kFunctions[] = {
    {"Quit", Quit},
    {"SetFullscreen", SetFullscreen},
    {"GetFullscreen", GetFullscreen},
    {"ToggleFullscreen", ToggleFullscreen},
    {"SetDebugDraw", SetDebugDraw},
    {nullptr, nullptr},
};

} // namespace

void PushGameTable(lua_State* L, Game& game)
{
    Lua::EnsureStack(L, 23);
    lua_newtable(L);
    lua_pushlightuserdata(L, &game);
    luaL_setfuncs(L, kFunctions, 1);
    Lua::PushSpace(&game.rootSpace, L);
    lua_setfield(L, -2, "MainSpace");
}

} // namespace Core
