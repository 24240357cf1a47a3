// Offering the frame's events to the scripts of a Space: each script that connected a function to the
// event's kind gets a new coroutine of that function with the event's arguments.

#include "Core/Game.h"
#include "Debug/Logger.h"
#include "Input/InputSystem.h"

#include <lua.hpp>

namespace Input
{
namespace
{

// Room for the arguments of any event and the lookups of one script.
constexpr int kEventStackRoom = 27;
// Room that a script's coroutine start needs beyond the arguments.
constexpr int kHandlerStackRoom = 20;

void EnsureRoom(lua_State* L, int slots)
{
    if (!lua_checkstack(L, slots))
    {
        Logger::Raise("Input", "stack overflow");
    }
}

void PushKeyByte(lua_State* L, int32_t code)
{
    const char byte = static_cast<char>(code & 0xFF);
    lua_pushlstring(L, &byte, 1);
}

// The world point under a window point, by the camera of the frame.
void PushPoint(lua_State* L, const Graphics::GraphicsSystem& graphics, int32_t x, int32_t y)
{
    const Vec2 world = graphics.ScreenToWorld(Vec2{static_cast<float>(x), static_cast<float>(y)});
    lua_pushnumber(L, world.x);
    lua_pushnumber(L, world.y);
}

void PushWindowPoint(lua_State* L, int32_t x, int32_t y)
{
    lua_pushnumber(L, x);
    lua_pushnumber(L, y);
}

// Pushes the arguments that a script function receives for the event; returns their count.
int PushEventArguments(lua_State* L, const InputEvent& event, const Graphics::GraphicsSystem& graphics)
{
    const auto& values = event.values;
    switch (event.type)
    {
    case EventKind::Activate:
        lua_pushboolean(L, event.state);
        return 1;
    case EventKind::SizeChanged:
        lua_pushinteger(L, values.x);
        lua_pushinteger(L, values.y);
        return 2;
    case EventKind::KeyDown:
    case EventKind::KeyUp:
    case EventKind::Char:
        PushKeyByte(L, values.x);
        return 1;
    case EventKind::MouseMove:
        PushPoint(L, graphics, values.x, values.y);
        PushWindowPoint(L, values.x, values.y);
        return 4;
    case EventKind::MouseDown:
    case EventKind::MouseUp:
        PushPoint(L, graphics, values.x, values.y);
        lua_pushnumber(L, values.button);
        PushWindowPoint(L, values.x, values.y);
        return 5;
    case EventKind::MouseWheel:
        lua_pushnumber(L, event.state ? 1.0 : -1.0);
        return 1;
    case EventKind::FileDropped:
        if (event.drop.path == nullptr)
        {
            Logger::Log("Input", LogLevel::Error, "File Drag-Drop event has no filename!");
            return 0;
        }
        lua_pushstring(L, event.drop.path);
        PushPoint(L, graphics, event.drop.x, event.drop.y);
        PushWindowPoint(L, event.drop.x, event.drop.y);
        return 5;
    default:
        return 0;
    }
}

// Pushes the function that the environment connected to the kind; false, with nothing pushed, if none.
// Raw reads only: looking up a handler must run no script code.
bool PushHandler(lua_State* L, int32_t environment, EventKind kind)
{
    const int top = lua_gettop(L);
    if (environment != 0 && lua_rawgeti(L, LUA_REGISTRYINDEX, environment) == LUA_TTABLE)
    {
        lua_pushliteral(L, "__inputFuncs");
        if (lua_rawget(L, -2) == LUA_TTABLE &&
            lua_rawgeti(L, -1, static_cast<lua_Integer>(kind)) == LUA_TFUNCTION)
        {
            lua_replace(L, top + 1);
            lua_settop(L, top + 1);
            return true;
        }
    }
    lua_settop(L, top);
    return false;
}

} // namespace

void InputSystem::OfferToScripts(Core::Game& game, Space& space, const InputEvent& event)
{
    lua_State* L = game.lua.state;
    EnsureRoom(L, kEventStackRoom);
    const int top = lua_gettop(L);
    const int argumentCount = PushEventArguments(L, event, game.graphics);
    bool handled = false;
    // By position: starting a coroutine can collect garbage, and a finalizer may add or remove scripts.
    for (size_t index = 0; index < space.scripts.components.size(); ++index)
    {
        if (!PushHandler(L, space.scripts.components[index].environment, event.type))
        {
            continue;
        }
        handled = true;
        EnsureRoom(L, argumentCount + kHandlerStackRoom);
        for (int argument = 1; argument <= argumentCount; ++argument)
        {
            lua_pushvalue(L, top + argument);
        }
        space.scripts.components[index].StartCoroutine(L, argumentCount);
        lua_settop(L, top + argumentCount);
    }
    // A game that listens for the close box decides itself whether and when to quit.
    if (event.type == EventKind::Close && handled)
    {
        closeRequested = false;
    }
    lua_settop(L, top);
}

} // namespace Input
