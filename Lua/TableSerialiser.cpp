#include "Lua/TableSerialiser.h"

#include "Debug/Logger.h"
#include "Lua/Stack.h"

#include <array>

namespace Lua
{
namespace
{

// The tables from the outermost down to the one being walked. Plain data only: a Lua error may jump out
// of any walk.
struct TablePath
{
    std::array<const void*, kMaxSavedDepth> tables;
    int depth = 0;
};

void EnterTable(lua_State* L, int index, TablePath& path)
{
    const void* table = lua_topointer(L, index);
    for (int level = 0; level < path.depth; ++level)
    {
        if (path.tables[static_cast<size_t>(level)] == table)
        {
            luaL_error(L, "cannot save a table that contains itself");
        }
    }
    if (path.depth >= kMaxSavedDepth)
    {
        luaL_error(L, "cannot save tables nested more than %d deep", kMaxSavedDepth);
    }
    path.tables[static_cast<size_t>(path.depth++)] = table;
}

void PushEscapeTable(lua_State* L)
{
    if (lua_getfield(L, LUA_REGISTRYINDEX, "QM_StringEscapes") == LUA_TTABLE)
    {
        return;
    }
    lua_pop(L, 1);
    static constexpr std::array<std::array<const char*, 2>, 10> kEscapes = {{
        {"\0", "\\0"},
        {"\a", "\\a"},
        {"\b", "\\b"},
        {"\t", "\\t"},
        {"\n", "\\n"},
        {"\v", "\\v"},
        {"\f", "\\f"},
        {"\r", "\\r"},
        {"\"", "\\\""},
        {"\\", "\\\\"},
    }};
    lua_createtable(L, 0, static_cast<int>(kEscapes.size()));
    for (const auto& [byte, escaped] : kEscapes)
    {
        // Keys are one byte long, the zero byte too.
        lua_pushlstring(L, byte, 1);
        lua_pushstring(L, escaped);
        lua_rawset(L, -3);
    }
    lua_pushvalue(L, -1);
    lua_setfield(L, LUA_REGISTRYINDEX, "QM_StringEscapes");
}

void PushTableText(lua_State* L, int index, TablePath& path);

// The text of a key or value: quoted and escaped strings, nested tables, tostring for the rest.
void PushValueText(lua_State* L, int index, TablePath& path)
{
    index = lua_absindex(L, index);
    EnsureStack(L, 23);
    switch (lua_type(L, index))
    {
    case LUA_TSTRING:
        lua_pushliteral(L, "\"");
        EscapeString(L, index);
        lua_pushliteral(L, "\"");
        lua_concat(L, 3);
        return;
    case LUA_TTABLE:
        PushTableText(L, index, path);
        return;
    default:
        lua_getglobal(L, "tostring");
        lua_pushvalue(L, index);
        lua_call(L, 1, 1);
        return;
    }
}

// Joins the entry texts in the array on top of the stack with the global table.concat, in braces.
void JoinEntries(lua_State* L)
{
    lua_getglobal(L, "table");
    lua_getfield(L, -1, "concat");
    lua_remove(L, -2);
    lua_pushvalue(L, -2);
    lua_pushliteral(L, ",");
    lua_call(L, 2, 1);
    lua_pushliteral(L, "{");
    lua_insert(L, -2);
    lua_pushliteral(L, "}");
    lua_concat(L, 3);
    lua_remove(L, -2);
}

void PushTableText(lua_State* L, int index, TablePath& path)
{
    index = lua_absindex(L, index);
    EnsureStack(L, 30);
    EnterTable(L, index, path);
    lua_newtable(L);
    const int entries = lua_gettop(L);
    lua_Integer count = 0;
    lua_pushnil(L);
    while (lua_next(L, index) != 0)
    {
        const int value = lua_gettop(L);
        lua_pushliteral(L, "[");
        PushValueText(L, value - 1, path);
        lua_pushliteral(L, "]=");
        PushValueText(L, value, path);
        lua_concat(L, 4);
        lua_rawseti(L, entries, ++count);
        lua_pop(L, 1);
    }
    JoinEntries(L);
    --path.depth;
}

void CheckTable(lua_State* L, int index, TablePath& path)
{
    index = lua_absindex(L, index);
    EnsureStack(L, 22);
    EnterTable(L, index, path);
    lua_pushnil(L);
    while (lua_next(L, index) != 0)
    {
        if (lua_istable(L, -2))
        {
            CheckTable(L, -2, path);
        }
        if (lua_istable(L, -1))
        {
            CheckTable(L, -1, path);
        }
        lua_pop(L, 1);
    }
    --path.depth;
}

} // namespace

void TableToString(lua_State* L, int index)
{
    if (!lua_istable(L, index))
    {
        Logger::Log("Lua", LogLevel::Warning, "Tried to convert a non-table to string with TableToString");
        lua_pushliteral(L, "{}");
        return;
    }
    TablePath path;
    PushTableText(L, index, path);
}

void EscapeString(lua_State* L, int index)
{
    index = lua_absindex(L, index);
    EnsureStack(L, 25);
    if (lua_type(L, index) != LUA_TSTRING)
    {
        Logger::Log("Lua", LogLevel::Error, "Tried to escape a non-string");
        lua_pushliteral(L, "");
        return;
    }
    lua_getglobal(L, "string");
    lua_getfield(L, -1, "gsub");
    lua_remove(L, -2);
    lua_pushvalue(L, index);
    lua_pushliteral(L, "%W");
    PushEscapeTable(L);
    lua_call(L, 3, 1);
}

void CheckSavable(lua_State* L, int index, int containerIndex)
{
    if (!lua_istable(L, index))
    {
        return;
    }
    TablePath path;
    path.tables[0] = lua_topointer(L, containerIndex);
    path.depth = 1;
    CheckTable(L, index, path);
}

} // namespace Lua
