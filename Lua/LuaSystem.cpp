#include "Lua/LuaSystem.h"

#include "Components/ComponentType.h"
#include "Components/Space.h"
#include "Debug/Logger.h"
#include "Debug/Profile.h"
#include "FileSystem/Paths.h"
#include "Lua/EngineRandom.h"
#include "Lua/Environments.h"
#include "Lua/FileSystemScript.h"
#include "Lua/SaveFile.h"
#include "Lua/ScriptComponentScript.h"
#include "Lua/ScriptHandles.h"
#include "Lua/Wait.h"

#include <array>
#include <cstdlib>
#include <lua.hpp>
#include <string>

namespace Lua
{
namespace
{

struct Library
{
    const char* name;
    lua_CFunction open;
};

// Opened in this order, each with its global set.
constexpr std::array<Library, 10> kLibraries = {{
    {"_G", luaopen_base},
    {LUA_LOADLIBNAME, luaopen_package},
    {LUA_COLIBNAME, luaopen_coroutine},
    {LUA_TABLIBNAME, luaopen_table},
    {LUA_IOLIBNAME, luaopen_io},
    {LUA_OSLIBNAME, luaopen_os},
    {LUA_STRLIBNAME, luaopen_string},
    {LUA_MATHLIBNAME, luaopen_math},
    {LUA_UTF8LIBNAME, luaopen_utf8},
    {LUA_DBLIBNAME, luaopen_debug},
}};

// An error outside any protected call: nothing can go on, so it ends the game as a Fatal.
int Panic(lua_State* L)
{
    const char* text = lua_tostring(L, -1);
    if (text == nullptr)
    {
        text = "error object is not a string";
    }
    if (lua_checkstack(L, 1))
    {
        luaL_traceback(L, L, text, 0);
        text = lua_tostring(L, -1);
    }
    Logger::Raise("LuaSystem", text);
}

// os.SaveFile, loaded from the save file now, before any script exists.
void AddSaveTable(lua_State* L)
{
    lua_getglobal(L, "os");
    const std::string* path = FileSystem::GetSavePath();
    BuildSaveTable(L, path != nullptr ? path->c_str() : nullptr);
    lua_setfield(L, -2, "SaveFile");
    lua_pop(L, 1);
}

// The drawable components have no script functions in a game without a window, whose graphics never
// start. Their metatables are registered empty, so a level key such as "Sprite" adds the component and each
// of its members logs the missing-member Warning; graphics, when it starts, replaces the placeholders.
void RegisterDrawablePlaceholders(lua_State* L)
{
    static constexpr luaL_Reg kNoFunctions[] = {{nullptr, nullptr}};
    for (const int32_t type :
         {Components::Square, Components::Sprite, Components::TextSprite, Components::Particle})
    {
        RegisterMethodType(L, Components::ComponentTypeName(type), kNoFunctions);
    }
}

} // namespace

void* LuaSystem::Allocate(void* system, void* block, size_t oldSize, size_t newSize)
{
    return static_cast<LuaSystem*>(system)->heap->Reallocate(block, oldSize, newSize);
}

bool LuaSystem::Initialise(Core::Window*)
{
    if (state != nullptr)
    {
        Logger::Raise("LuaSystem", "Lua system already initialised");
    }
    heap.emplace(pooledHeap ? LuaHeap::kRegionBytes : 0);
    state = lua_newstate(Allocate, this);
    if (state == nullptr)
    {
        Logger::Raise("LuaSystem", "Failed to start lua system");
    }
    lua_atpanic(state, Panic);
    for (const Library& library : kLibraries)
    {
        luaL_requiref(state, library.name, library.open, 1);
        lua_pop(state, 1);
    }
    InstallEngineRandom(state);
    lua_pushcfunction(state, Wait);
    lua_pushvalue(state, -1);
    lua_setglobal(state, "wait");
    lua_setglobal(state, "Wait");
    AddSaveTable(state);
    lua_pushcfunction(state, GetFilesInDirectory);
    lua_setglobal(state, "GetFilesInDirectory");
    return true;
}

void LuaSystem::Update(Core::Game&, Space& space, double dt, double spaceTime, double absoluteTime)
{
    // A paused Space stands still: its sleeps keep their elapsed time, and nothing new starts.
    if (space.paused)
    {
        return;
    }
    Debug::ProfileBlock block("Lua Scripts");
    ScheduleOf(space).Run(state, space, dt, spaceTime, absoluteTime);
}

void LuaSystem::RegisterScriptTypes(LuaSystem& lua)
{
    if (&lua != this)
    {
        Logger::Raise("LuaSystem", "Tried to initialise a lua system with another lua system!");
    }
    lua_pushvalue(state, LUA_REGISTRYINDEX);
    lua_setglobal(state, "__registry");
    RegisterScriptComponentType(state);
    RegisterDrawablePlaceholders(state);
    MakeEnvironmentMetatable(state);
}

void LuaSystem::ObjectsDestroyed(Core::Game&, Space& space)
{
    for (Components::ScriptComponent& script : space.scripts.components)
    {
        if (script.destroyed)
        {
            script.Cleanup(state);
        }
    }
    // The sweep that follows moves components around.
    ScheduleOf(space).MarkUnsorted();
}

LuaSystem& LuaSystem::Of(lua_State* L)
{
    void* system = nullptr;
    lua_getallocf(L, &system);
    return *static_cast<LuaSystem*>(system);
}

uint32_t LuaSystem::SpaceSerial(const Space* space)
{
    auto [entry, added] = spaceSerials.try_emplace(space, lastSpaceSerial + 1);
    if (added)
    {
        ++lastSpaceSerial;
    }
    return entry->second;
}

// Every handle a script uses is checked here, mostly handles of one Space in a row, so the last live answer
// is remembered. ForgetSpace clears it before the address can come back with another serial.
bool LuaSystem::IsLiveSpace(const Space* space, uint32_t serial) const
{
    if (space == lastLiveSpace && serial == lastLiveSerial)
    {
        return true;
    }
    auto entry = spaceSerials.find(space);
    if (entry == spaceSerials.end() || entry->second != serial)
    {
        return false;
    }
    lastLiveSpace = space;
    lastLiveSerial = serial;
    return true;
}

void LuaSystem::ForgetSpace(Space& space)
{
    spaceSerials.erase(&space);
    if (lastLiveSpace == &space)
    {
        lastLiveSpace = nullptr;
    }
    schedules.erase(&space);
    if (state != nullptr)
    {
        Lua::ForgetSpace(state, &space);
    }
}

const char* LuaSystem::InternName(const std::string& name)
{
    return names.insert(name).first->c_str();
}

void LuaSystem::Shutdown()
{
    if (state != nullptr)
    {
        lua_close(state);
        state = nullptr;
    }
    heap.reset();
    spaceSerials.clear();
    lastLiveSpace = nullptr;
    schedules.clear();
    scriptChunks.Clear();
}

} // namespace Lua
