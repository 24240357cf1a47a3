#include "Lua/LuaSystem.h"

#include "Debug/Logger.h"
#include "FileSystem/Paths.h"
#include "Lua/EngineRandom.h"
#include "Lua/Environments.h"
#include "Lua/SaveFile.h"

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

} // namespace

void* LuaSystem::Allocate(void* system, void* block, size_t oldSize, size_t newSize)
{
    LuaSystem& self = *static_cast<LuaSystem*>(system);
    // Without a block, oldSize tells the kind of object to be made, not a size.
    const size_t heldBefore = block != nullptr ? oldSize : 0;
    if (newSize == 0)
    {
        std::free(block);
        self.liveBytes -= heldBefore;
        return nullptr;
    }
    void* resized = std::realloc(block, newSize);
    if (resized != nullptr)
    {
        self.liveBytes += newSize - heldBefore;
    }
    return resized;
}

bool LuaSystem::Initialise(Core::Window*)
{
    if (state != nullptr)
    {
        Logger::Raise("LuaSystem", "Lua system already initialised");
    }
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
    AddSaveTable(state);
    return true;
}

void LuaSystem::Update(Core::Game&, Space&, double, double, double)
{
    // Runs the coroutines of the space's script components, which arrive with them.
}

void LuaSystem::RegisterScriptTypes(LuaSystem& lua)
{
    if (&lua != this)
    {
        Logger::Raise("LuaSystem", "Tried to initialise a lua system with another lua system!");
    }
    lua_pushvalue(state, LUA_REGISTRYINDEX);
    lua_setglobal(state, "__registry");
    MakeEnvironmentMetatable(state);
}

void LuaSystem::ObjectsDestroyed(Core::Game&, Space&)
{
    // Script components give up their references here, once they exist.
}

void LuaSystem::Shutdown()
{
    if (state != nullptr)
    {
        lua_close(state);
        state = nullptr;
    }
}

} // namespace Lua
