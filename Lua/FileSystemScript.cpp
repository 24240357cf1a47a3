#include "Lua/FileSystemScript.h"

#include "FileSystem/DirectoryListing.h"
#include "Lua/ScriptHandles.h"
#include "Lua/Stack.h"

#include <string>
#include <vector>

namespace Lua
{
namespace
{

// Runs under lua_pcall, so a failing push unwinds no C++ frame: the names belong to the caller.
int FillNames(lua_State* L)
{
    const auto& names = *static_cast<const std::vector<std::string>*>(lua_touserdata(L, 1));
    lua_createtable(L, static_cast<int>(names.size()), 0);
    lua_Integer index = 0;
    for (const std::string& name : names)
    {
        lua_pushlstring(L, name.data(), name.size());
        lua_rawseti(L, -2, ++index);
    }
    return 1;
}

// Leaves the table, or the error of filling it, on top; the names die before any error is raised.
int ListInto(lua_State* L, const char* pattern, bool includeDirectories)
{
    const std::vector<std::string> names = FileSystem::ListDirectory(pattern, includeDirectories);
    lua_pushcfunction(L, FillNames);
    lua_pushlightuserdata(L, const_cast<std::vector<std::string>*>(&names));
    return lua_pcall(L, 1, 1, 0);
}

} // namespace

int GetFilesInDirectory(lua_State* L)
{
    const char* pattern = luaL_checkstring(L, 1);
    const bool includeDirectories = OptBoolean(L, 2, true);
    EnsureStack(L, 23);
    if (ListInto(L, pattern, includeDirectories) != LUA_OK)
    {
        return lua_error(L);
    }
    return 1;
}

} // namespace Lua
