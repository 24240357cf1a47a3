// The Graphics table. Its functions carry the system as their upvalue and are called with a colon:
// argument 1 is the table and isn't looked at. An optional argument counts as absent when it is nil or
// missing.

#include "Graphics/DrawableScripts.h"
#include "Graphics/GraphicsSystem.h"
#include "Lua/ScriptArguments.h"
#include "Lua/Stack.h"

#include <algorithm>
#include <cmath>
#include <epoxy/gl.h>

namespace Graphics
{
namespace
{

using Lua::CheckFloat;
using Lua::CheckVec2;
using Lua::OptFloat;

GraphicsSystem& UpvalueSystem(lua_State* L)
{
    return Lua::UpvalueSystem<GraphicsSystem>(L, "GraphicsSystem method has a NULL Graphics System!");
}

bool OptOutline(lua_State* L, int index)
{
    return lua_isnoneornil(L, index) ? false : Lua::CheckBoolean(L, index);
}

int SetCamera(lua_State* L)
{
    GraphicsSystem& graphics = UpvalueSystem(L);
    const Vec2 position = CheckVec2(L, 2);
    graphics.SetCamera(position, OptFloat(L, 4, graphics.cameraSize));
    return 0;
}

int GetCamera(lua_State* L)
{
    const GraphicsSystem& graphics = UpvalueSystem(L);
    Lua::EnsureStack(L, 3);
    lua_pushnumber(L, graphics.cameraPosition.x);
    lua_pushnumber(L, graphics.cameraPosition.y);
    lua_pushnumber(L, graphics.cameraSize);
    return 3;
}

int DebugDrawRect(lua_State* L)
{
    GraphicsSystem& graphics = UpvalueSystem(L);
    const Vec2 position = CheckVec2(L, 2);
    const Vec2 size = CheckVec2(L, 4);
    const float r = CheckFloat(L, 6);
    const float g = CheckFloat(L, 7);
    const float b = CheckFloat(L, 8);
    const float a = OptFloat(L, 9, 1.0f);
    const float rotation = OptFloat(L, 10, 0.0f);
    const bool outline = OptOutline(L, 11);
    graphics.AddDebugSquare(position, size, Colour{r, g, b, a}, rotation, outline);
    return 0;
}

// Black unless a red follows the text; then green and blue are required too.
int DebugDrawText(lua_State* L)
{
    GraphicsSystem& graphics = UpvalueSystem(L);
    const Vec2 position = CheckVec2(L, 2);
    const char* text = luaL_checkstring(L, 4);
    Colour colour{0.0f, 0.0f, 0.0f, 1.0f};
    if (!lua_isnoneornil(L, 5))
    {
        const float r = CheckFloat(L, 5);
        const float g = CheckFloat(L, 6);
        colour = Colour{r, g, CheckFloat(L, 7), OptFloat(L, 8, 1.0f)};
    }
    graphics.DrawText(position, text, colour);
    return 0;
}

// The clear colour is held by GL alone.
int SetClearColour(lua_State* L)
{
    UpvalueSystem(L);
    const float r = CheckFloat(L, 2);
    const float g = CheckFloat(L, 3);
    glClearColor(r, g, CheckFloat(L, 4), 1.0f);
    return 0;
}

int ScreenToWorld(lua_State* L)
{
    const GraphicsSystem& graphics = UpvalueSystem(L);
    const Vec2 world = graphics.ScreenToWorld(CheckVec2(L, 2));
    Lua::EnsureStack(L, 2);
    lua_pushnumber(L, world.x);
    lua_pushnumber(L, world.y);
    return 2;
}

int GetScreenSize(lua_State* L)
{
    const GraphicsSystem& graphics = UpvalueSystem(L);
    Lua::EnsureStack(L, 2);
    lua_pushinteger(L, graphics.screenWidth);
    lua_pushinteger(L, graphics.screenHeight);
    return 2;
}

// The name is relative to Data, like every file name scripts give; the file is written at the end of the
// frame's drawing, and success or failure is logged then.
int Screenshot(lua_State* L)
{
    GraphicsSystem& graphics = UpvalueSystem(L);
    size_t length = 0;
    const char* name = luaL_checklstring(L, 2, &length);
    graphics.RequestScreenshot(std::string(name, length));
    return 0;
}

// The largest burst, and what the live bursts may hold together, each counting as at least one particle:
// a script in a loop can't take all memory, nor make the frame crawl through millions of empty bursts.
constexpr lua_Integer kMaxBurstCount = 100000;
constexpr uint64_t kMaxSpawnedParticles = 1000000;

float CheckTime(lua_State* L, int index, float fallback)
{
    const float time = OptFloat(L, index, fallback);
    luaL_argcheck(L, std::isfinite(time) && time >= 0.0f, index,
                  "time must be a finite number of seconds, 0 or more");
    return time;
}

// x, y, [scale], [count], [minSpeed], [maxSpeed], [lifeTime], [fadeTime], [r], [g], [b], [a]: a different
// order from the C++ function's.
int SpawnParticles(lua_State* L)
{
    GraphicsSystem& graphics = UpvalueSystem(L);
    const Vec2 position = CheckVec2(L, 2);
    const float scale = OptFloat(L, 4, 0.0625f);
    const lua_Integer count = luaL_optinteger(L, 5, 128);
    luaL_argcheck(L, count >= 0 && count <= kMaxBurstCount, 5, "count must be from 0 to 100000");
    const float minSpeed = OptFloat(L, 6, 1.0f);
    const float maxSpeed = OptFloat(L, 7, 8.0f);
    const float lifeTime = CheckTime(L, 8, 0.5f);
    const float fadeTime = CheckTime(L, 9, static_cast<float>(1.0 / 3.0));
    const float r = OptFloat(L, 10, 1.0f);
    const float g = OptFloat(L, 11, 0.0f);
    const float b = OptFloat(L, 12, 0.0f);
    const float a = OptFloat(L, 13, 0.75f);
    if (graphics.SpawnedParticleCount() + static_cast<uint64_t>(std::max<lua_Integer>(count, 1)) >
        kMaxSpawnedParticles)
    {
        return luaL_error(L, "Too many spawned particles: limit %d", static_cast<int>(kMaxSpawnedParticles));
    }
    graphics.SpawnParticles(position, Colour{r, g, b, a}, static_cast<uint32_t>(count), minSpeed, maxSpeed,
                            scale, lifeTime, fadeTime);
    return 0;
}

constexpr luaL_Reg kGraphicsFunctions[] = {
    {"SetCamera", SetCamera},
    {"GetCamera", GetCamera},
    {"DebugDrawRect", DebugDrawRect},
    {"DebugDrawText", DebugDrawText},
    {"SetClearColour", SetClearColour},
    {"SetClearColor", SetClearColour},
    {"ScreenToWorld", ScreenToWorld},
    {"GetScreenSize", GetScreenSize},
    {"Screenshot", Screenshot},
    {"SpawnParticles", SpawnParticles},
    {nullptr, nullptr},
};

} // namespace

void PushGraphicsTable(lua_State* L, GraphicsSystem& graphics)
{
    Lua::EnsureStack(L, 24);
    lua_createtable(L, 0, static_cast<int>(std::size(kGraphicsFunctions)) - 1);
    lua_pushlightuserdata(L, &graphics);
    luaL_setfuncs(L, kGraphicsFunctions, 1);
}

} // namespace Graphics
