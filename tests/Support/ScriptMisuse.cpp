#include "Support/ScriptMisuse.h"

#include "Components/Space.h"
#include "Core/Game.h"
#include "Debug/Profile.h"

#include <array>
#include <fstream>
#include <lua.hpp>
#include <stdexcept>

namespace
{

// Attached to the first objects: hands each script environment's own functions to the generator, with
// handlers whose environment is a script's, so that connecting them succeeds and collisions start them.
constexpr const char* kExposeScript = R"lua(
_G.MisuseEnvironments = _G.MisuseEnvironments or {}
MisuseEnvironments[GameObject.Name] = {
    Spawn = Spawn, wait = wait, dofile = dofile, Input = Input, Script = Script,
    handlers = {
        function(own, other) own:Destroy() other:Destroy() end,
        function() coroutine.yield() end,
        function() error({}) end,
        function()
            -- A few only: every contact of the host starts this, and what it makes may touch the host in
            -- turn, so unbounded the objects could multiply every frame.
            Grown = (Grown or 0) + 1
            if Grown <= 64 then
                Space:CreateObject({ Name = "Grown", RigidBody = {}, Collider = {},
                                     Transform = { Position = { math.random(-1000, 1000), 0 } } })
            end
        end,
        function() Spawn(error) wait(-1) end,
    },
}
)lua";

// The first objects: two touching objects with every scripted component in the root space and one in a
// child, and the same in an object and in a space that are destroyed before the first call.
constexpr const char* kSetupChunk = R"lua(
-- The engine's generator outlives a game; seeded here, the handlers place their objects alike every run.
math.randomseed(1)
-- A game with a window draws, and its objects show a sprite, a square, a text and particles as well.
local drawing = Graphics ~= nil
-- A tenth of a second of 8 kHz silence for every object to play.
local samples = string.rep("\0", 1600)
local sound = assert(io.open("Sound.wav", "wb"))
sound:write(string.pack("<c4I4c4c4I4I2I2I4I4I2I2c4I4", "RIFF", 36 + #samples, "WAVE", "fmt ", 16, 1, 1, 8000,
                        16000, 2, 16, "data", #samples), samples)
sound:close()
local function Full(space, name, x)
    local object = space:CreateObject({ Name = name, Transform = { Position = { x or 0, 0 } }, RigidBody = {},
                                        Collider = {}, Audio = { Source = "Sound.wav" },
                                        Script = "MisuseExpose.lua" })
    if drawing then
        object:AddComponent("Sprite"):SetFrames("Missing.png")
        object:AddComponent("Square")
        object:AddComponent("TextSprite"):SetText(name)
        object:AddComponent("Particle")
    end
    return object
end
local function WithComponents(object)
    if drawing then
        return object, object.Transform, object.RigidBody, object.Collider, object.Audio, object.Script,
               object.Sprite, object.Square, object.TextSprite, object.Particle
    end
    return object, object.Transform, object.RigidBody, object.Collider, object.Audio, object.Script
end
local host = Full(MainSpace, "Host")
local neighbour = Full(MainSpace, "Neighbour", 0.5)
local child = MainSpace:CreateChildSpace()
local guest = Full(child, "Guest")
local doomed = Full(MainSpace, "Doomed")
local doomedSpace = MainSpace:CreateChildSpace()
local lost = Full(doomedSpace, "Lost")
MisuseHandles = { MainSpace, child, doomedSpace, WithComponents(host) }
MisuseHandles.host, MisuseHandles.neighbour = host, neighbour
for _, object in ipairs({ neighbour, guest, doomed, lost }) do
    local components = { WithComponents(object) }
    table.move(components, 1, #components, #MisuseHandles + 1, MisuseHandles)
end
doomed:Destroy()
doomedSpace:Destroy()
)lua";

// Builds the generator's table: the targets {kind, name, function} sorted by kind and name, the handles
// that belong before the colon by kind, and the pool of arguments, whose last slots take what calls return.
constexpr const char* kPoolChunk = R"lua(
local handles, environments = MisuseHandles, MisuseEnvironments
MisuseHandles, MisuseEnvironments = nil, nil
local environment = environments.Host
-- The two touching objects start handlers from the first frame: one yields, one raises a table, one adds
-- an object and one spawns a failing coroutine and waits.
for index = 2, 5 do
    handles.host.Collider:ConnectCollision(environment.handlers[index])
end
handles.neighbour.Collider:ConnectCollision(environment.handlers[3])

local targets = {}
local function AddFunctions(kind, functions)
    for name, value in pairs(functions) do
        if type(value) == "function" then
            targets[#targets + 1] = { kind, name, value }
        end
    end
end
local registry = debug.getregistry()
local kinds = { "Space", "GameObject", "Transform", "Script", "RigidBody", "Collider", "Audio" }
if Graphics then
    table.move({ "Sprite", "Square", "TextSprite", "Particle" }, 1, 4, #kinds + 1, kinds)
    AddFunctions("Graphics", Graphics)
end
for _, kind in ipairs(kinds) do
    AddFunctions(kind, registry[kind])
end
AddFunctions("Physics", Physics)
AddFunctions("Sound", Audio)
AddFunctions("Input", environment.Input)
AddFunctions("Environment", { Spawn = environment.Spawn, wait = environment.wait, dofile = environment.dofile })
AddFunctions("Save", { Set = function(save, key, value) save[key] = value end,
                       Get = function(save, key) return save[key] end })
table.sort(targets, function(a, b) return a[1] .. "." .. a[2] < b[1] .. "." .. b[2] end)

-- Functions called with a dot take a handler where methods take their handle. A drawing game never hears
-- "Transform" as a component name: a square whose Transform was removed ends the program by design.
local selves = { Physics = { Physics }, Sound = { Audio }, Graphics = { Graphics }, Input = environment.handlers, Environment = environment.handlers,
                 Save = { os.SaveFile } }
for _, handle in ipairs(handles) do
    local kind = getmetatable(handle).__name
    selves[kind] = selves[kind] or {}
    table.insert(selves[kind], handle)
end
for _, target in ipairs(targets) do
    assert(selves[target[1]], target[1])
end

local cyclic = {}
cyclic.self = cyclic
local deep = {}
for _ = 1, 300 do deep = { deep } end
local raising = setmetatable({}, { __index = error, __newindex = error, __len = error, __call = error,
                                   __tostring = error, __eq = error, __lt = error, __concat = error })
local dead = coroutine.create(function() end)
coroutine.resume(dead)
local suspended = coroutine.create(function() coroutine.yield() end)
coroutine.resume(suspended)

local function Pack(...) return { n = select("#", ...), ... } end
local pool = Pack(nil, true, false, 0, -1, 1, 2, 0.5, -0.0, 0 / 0, math.huge, -math.huge, math.maxinteger,
    math.mininteger, 2 ^ 53, 2 ^ 63, -2 ^ 63, 1e308, 65535, 65536, 1 << 31, "", "1e999", "0x7fffffffffffffff",
    " 12 ", "nan", "AABB", "Circle", Graphics and "Name" or "Transform", "RigidBody", "Collider", "Script", "Sprite", "Name", "Host",
    "Constant", "Once", "Pulse", "Random", "Position", "FadeOut", "Sound.wav", "Missing.wav", "Audio",
    "MisuseExpose.lua", "Missing.lua", "Levels/Missing.lvl", "/", "\0", string.rep("x", 1000), {}, { 1, 2, 3 },
    { Name = "Made", Transform = { Position = { 0.2, 0 } }, Collider = {} }, { "Missing.arch" }, cyclic, deep,
    raising, tostring, error, function() end, function(...) return ... end, function() return handles end,
    coroutine.create(function() end), dead, suspended, coroutine.running(), io.stdout, Physics, Audio,
    environment.Input, environment, os.SaveFile, table.unpack(environment.handlers))
-- The functions of the live script's environment, so that Spawn can start wait or dofile, and those of the
-- environments of the destroyed objects, whose scripts are gone.
for _, name in ipairs({ "Host", "Doomed", "Lost" }) do
    for _, key in ipairs({ "Spawn", "wait", "dofile", "Input", "Script" }) do
        pool.n = pool.n + 1
        pool[pool.n] = (environments[name] or {})[key]
    end
end
for _, handle in ipairs(handles) do
    pool.n = pool.n + 1
    pool[pool.n] = handle
end
local returned = pool.n
for slot = 1, 32 do
    pool[returned + slot] = handles[slot % #handles + 1]
end
return { targets = targets, selves = selves, pool = pool, poolSize = returned + 32, returnedStart = returned,
         returnedSlots = 32 }
)lua";

constexpr std::array<double, 4> kFrameTimes = {1.0 / 60.0, 1.0 / 30.0, 0.0, 0.25};

} // namespace

ScriptMisuse::ScriptMisuse(Core::Game& gameToMisuse, Chooser chooser)
    : game(gameToMisuse), choose(std::move(chooser))
{
    lua_State* L = game.lua.state;
    restingTop = lua_gettop(L);
    std::ofstream("MisuseExpose.lua") << kExposeScript;
    RunChunk("misuse setup", kSetupChunk);
    // The scripts start and the destroyed object and space go.
    Frame();
    RunChunk("misuse pool", kPoolChunk);
    registryReference = luaL_ref(L, LUA_REGISTRYINDEX);
}

ScriptMisuse::~ScriptMisuse()
{
    luaL_unref(game.lua.state, LUA_REGISTRYINDEX, registryReference);
}

std::string ScriptMisuse::Step()
{
    lua_State* L = game.lua.state;
    if (choose(64) == 0)
    {
        Frame();
    }
    else
    {
        Call();
    }
    const int top = lua_gettop(L);
    if (top != restingTop)
    {
        lua_settop(L, restingTop);
        return "the main Lua stack holds " + std::to_string(top) + " values instead of " +
               std::to_string(restingTop);
    }
    return "";
}

void ScriptMisuse::RunChunk(const char* name, const char* chunk)
{
    lua_State* L = game.lua.state;
    if (luaL_loadbuffer(L, chunk, std::char_traits<char>::length(chunk), name) != LUA_OK ||
        lua_pcall(L, 0, LUA_MULTRET, 0) != LUA_OK)
    {
        const std::string error = lua_tostring(L, -1);
        lua_pop(L, 1);
        throw std::runtime_error(error);
    }
}

// The work of the loop's frame: flagged child spaces go, scheduled levels load, the systems update
// and destroyed objects are deleted. A root flagged for destruction stays: the real loop ends the game.
void ScriptMisuse::Frame()
{
    // As in the loop, each frame's profile records are taken and the systems' blocks sum under a root block;
    // untaken, they would pile up for the whole run.
    Debug::TakeProfile();
    Debug::ProfileBlock frameBlock("Root");
    for (Space* child = game.rootSpace.firstChild.get(); child != nullptr;)
    {
        Space* next = child->nextSibling.get();
        child->DestroyFlagged(game);
        child = next;
    }
    game.rootSpace.LoadScheduledLevels(game);
    const double dt = kFrameTimes[choose(kFrameTimes.size())];
    clock += dt;
    game.UpdateSystems(dt, clock);
    game.rootSpace.DeleteDestroyedTree(game);
    ++frames;
}

// Calls one target with its handle, a wrong value or nothing where the colon puts the handle, and up to
// four pool values after it.
void ScriptMisuse::Call()
{
    lua_State* L = game.lua.state;
    if (!lua_checkstack(L, 16))
    {
        return;
    }
    const int misuse = lua_gettop(L) + 1;
    lua_rawgeti(L, LUA_REGISTRYINDEX, registryReference);
    lua_getfield(L, misuse, "targets");
    lua_rawgeti(L, misuse + 1, static_cast<lua_Integer>(choose(lua_rawlen(L, misuse + 1))) + 1);
    const int target = misuse + 2;
    lua_getfield(L, misuse, "selves");
    lua_rawgeti(L, target, 1);
    lua_rawget(L, -2);
    const int selves = misuse + 4;
    const int function = misuse + 5;
    lua_rawgeti(L, target, 3);
    int arguments = 0;
    switch (choose(4))
    {
    case 0:
    case 1:
        lua_rawgeti(L, selves, static_cast<lua_Integer>(choose(lua_rawlen(L, selves))) + 1);
        ++arguments;
        break;
    case 2:
        PushPoolValue(misuse);
        ++arguments;
        break;
    default:
        break;
    }
    for (uint32_t extra = choose(5); extra > 0; --extra)
    {
        PushPoolValue(misuse);
        ++arguments;
    }
    ++calls;
    if (lua_pcall(L, arguments, LUA_MULTRET, 0) != LUA_OK)
    {
        ++failedCalls;
    }
    else
    {
        Harvest(misuse, function);
    }
    lua_settop(L, misuse - 1);
}

void ScriptMisuse::PushPoolValue(int misuse)
{
    lua_State* L = game.lua.state;
    lua_getfield(L, misuse, "poolSize");
    const auto size = static_cast<uint32_t>(lua_tointeger(L, -1));
    lua_pop(L, 1);
    lua_getfield(L, misuse, "pool");
    lua_rawgeti(L, -1, static_cast<lua_Integer>(choose(size)) + 1);
    lua_remove(L, -2);
}

// Handles, tables, functions and coroutines that a call returned replace values in the pool's last slots.
void ScriptMisuse::Harvest(int misuse, int firstResult)
{
    lua_State* L = game.lua.state;
    lua_getfield(L, misuse, "pool");
    const int pool = lua_gettop(L);
    lua_getfield(L, misuse, "returnedStart");
    const lua_Integer start = lua_tointeger(L, -1);
    lua_getfield(L, misuse, "returnedSlots");
    const auto slots = static_cast<uint32_t>(lua_tointeger(L, -1));
    lua_pop(L, 2);
    for (int result = firstResult; result < pool; ++result)
    {
        const int type = lua_type(L, result);
        if (type == LUA_TUSERDATA || type == LUA_TTABLE || type == LUA_TFUNCTION || type == LUA_TTHREAD)
        {
            lua_pushvalue(L, result);
            lua_rawseti(L, pool, start + static_cast<lua_Integer>(choose(slots)) + 1);
        }
    }
}
