#include "Lua/SaveFile.h"

#include "Debug/Logger.h"
#include "FileSystem/AtomicFile.h"
#include "Lua/Stack.h"
#include "Lua/TableSerialiser.h"

#include <algorithm>
#include <climits>
#include <string>
#include <sys/stat.h>

namespace Lua
{
namespace
{

// A save file is data; one that runs on past this budget is refused rather than hanging the start.
constexpr long long kBaseInstructionBudget = 10'000'000;
constexpr long long kInstructionsPerByte = 8;

void RefuseLongRun(lua_State* L, lua_Debug*)
{
    luaL_error(L, "save file ran too long");
}

int InstructionBudget(const char* path)
{
    struct stat file = {};
    const long long size = stat(path, &file) == 0 ? static_cast<long long>(file.st_size) : 0;
    return static_cast<int>(
        std::min<long long>(kBaseInstructionBudget + kInstructionsPerByte * size, INT_MAX));
}

// Logs the error on top of the stack and replaces it with empty data. Error values that aren't text are
// named "NULL": their __tostring is the file's own code and must not run here.
void ReplaceFailedLoad(lua_State* L)
{
    const char* message = lua_type(L, -1) == LUA_TSTRING ? lua_tostring(L, -1) : "NULL";
    Logger::Log("Lua", LogLevel::Warning, std::string("Failed to load save file: ") + message);
    lua_pop(L, 1);
    lua_newtable(L);
}

// Pushes the data table read from the file, or an empty one.
void PushSaveData(lua_State* L, const char* path)
{
    if (path == nullptr)
    {
        lua_newtable(L);
        return;
    }
    // Text only: the engine never writes bytecode, and Lua doesn't verify what it loads.
    const int loaded = luaL_loadfilex(L, path, "t");
    if (loaded == LUA_ERRFILE)
    {
        lua_pop(L, 1);
        lua_newtable(L);
        return;
    }
    if (loaded != LUA_OK)
    {
        ReplaceFailedLoad(L);
        return;
    }
    lua_sethook(L, RefuseLongRun, LUA_MASKCOUNT, InstructionBudget(path));
    const int ran = lua_pcall(L, 0, 1, 0);
    lua_sethook(L, nullptr, 0, 0);
    if (ran != LUA_OK)
    {
        ReplaceFailedLoad(L);
        return;
    }
    if (!lua_istable(L, -1))
    {
        Logger::Log("Lua", LogLevel::Warning, "Failed to load save file: did not return a table");
        lua_pop(L, 1);
        lua_newtable(L);
    }
}

// The key is converted as a copy: converting the key itself would turn os.SaveFile[1] into "1".
void LogSaving(lua_State* L)
{
    lua_pushvalue(L, 2);
    const char* key = lua_tostring(L, -1);
    Logger::Log("Lua", LogLevel::Info, key != nullptr ? "Saving (" + std::string(key) + ")..." : "Saving...");
    lua_pop(L, 1);
}

void WriteSave(lua_State* L, const char* path)
{
    size_t length = 0;
    const char* text = lua_tolstring(L, -1, &length);
    if (path == nullptr || text == nullptr)
    {
        Logger::Log("Lua", LogLevel::Error, "Failed to get save file name or data");
        return;
    }
    if (!FileSystem::ReplaceFileContent(path, {"return ", std::string_view(text, length), "\n"}))
    {
        Logger::Log("Lua", LogLevel::Warning, "Failed to open save file");
    }
}

// __newindex of the proxy (proxy, key, value), over the metatable and the path: stores and saves at once.
// A value that couldn't be read back is refused before it is stored, so later saves still work.
int SaveOnAssignment(lua_State* L)
{
    EnsureStack(L, 24);
    LogSaving(L);
    lua_settop(L, 3);
    lua_getfield(L, lua_upvalueindex(1), "__index");
    lua_replace(L, 1);
    CheckSavable(L, 2, 1);
    CheckSavable(L, 3, 1);
    lua_settable(L, 1);
    TableToString(L, 1);
    WriteSave(L, lua_tostring(L, lua_upvalueindex(2)));
    return 0;
}

int DataLength(lua_State* L)
{
    lua_len(L, lua_upvalueindex(1));
    return 1;
}

} // namespace

void BuildSaveTable(lua_State* L, const char* path)
{
    EnsureStack(L, 24);
    lua_newtable(L);
    lua_newtable(L);
    PushSaveData(L, path);
    // proxy, metatable, data
    lua_pushvalue(L, -1);
    lua_setfield(L, -3, "__index");
    lua_pushcclosure(L, DataLength, 1);
    lua_setfield(L, -2, "__len");
    lua_pushvalue(L, -1);
    if (path != nullptr)
    {
        lua_pushstring(L, path);
    }
    else
    {
        lua_pushnil(L);
    }
    lua_pushcclosure(L, SaveOnAssignment, 2);
    lua_setfield(L, -2, "__newindex");
    lua_setmetatable(L, -2);
}

} // namespace Lua
