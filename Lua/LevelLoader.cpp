// Files to objects: loading level and archetype chunks, following archetype names, and the recursive walk
// of descriptions. CreateFromArchetype recurses only through lua_call of itself, so runaway nesting meets
// Lua's limit on nested C calls as a Lua error instead of overflowing the native stack.

#include "Lua/LevelLoader.h"

#include "Components/Space.h"
#include "Debug/Logger.h"
#include "Lua/Environments.h"
#include "Lua/ScriptHandles.h"
#include "Lua/Stack.h"

#include <string>

namespace Lua
{
namespace
{

// Archetype files that return names are followed in a loop; a chain this long is taken for a cycle.
constexpr int kMaxArchetypeHops = 64;

void LogFileError(const char* what, const char* fileName, const char* message)
{
    Logger::Log("Space", LogLevel::Error, std::string(what) + "\"" + fileName + "\": " + message);
}

// Replaces a name at index 2 by what its file returns, following names that files return in turn.
void ResolveArchetypeNames(lua_State* L)
{
    for (int hops = 0; lua_type(L, 2) == LUA_TSTRING; ++hops)
    {
        const char* name = lua_tostring(L, 2);
        if (hops == kMaxArchetypeHops)
        {
            lua_pushfstring(L, "Failed to load archetype: %s: more than %d archetype names in a row", name,
                            kMaxArchetypeHops);
            lua_error(L);
        }
        if (LoadArchetype(L, name) < 0)
        {
            lua_pushfstring(L, "Failed to load archetype: %s", name);
            lua_error(L);
        }
        lua_replace(L, 2);
    }
}

int CreateBlank(lua_State* L, Space& space)
{
    Logger::Log("Space", LogLevel::Warning, "Creating a blank gameobject from CreateFromArchetype");
    PushGameObject(space.objects.at(space.CreateObject().handle), L);
    return 1;
}

int CreateObject(lua_State* L, Space& space)
{
    const GameObjectHandle object = space.CreateObject();
    PushGameObject(space.objects.at(object.handle), L);
    if (!ApplyOverrides(L, object, 2))
    {
        space.objects.at(object.handle).Destroy();
        return lua_error(L);
    }
    return 1;
}

// Calls CreateFromArchetype with this Space and the value on top, which it takes; leaves all results.
void CreateNested(lua_State* L)
{
    lua_pushcfunction(L, CreateFromArchetype);
    lua_pushvalue(L, 1);
    lua_rotate(L, -3, 2);
    lua_call(L, 2, LUA_MULTRET);
}

int CreateOverridden(lua_State* L)
{
    lua_geti(L, 2, 1);
    CreateNested(L);
    const int count = lua_gettop(L) - 2;
    if (count == 0)
    {
        Logger::Log("Space", LogLevel::Warning, "Applying an override archetype to no base object");
        return 0;
    }
    if (count > 1)
    {
        Logger::Log("Space", LogLevel::Warning,
                    "Applying archetype override to " + std::to_string(count) + " objects");
    }
    EnsureStack(L, 22);
    lua_getfield(L, 2, "Override");
    const int override = lua_gettop(L);
    for (int i = 1; i <= count; ++i)
    {
        if (!ApplyOverrides(L, ToGameObject(L, 2 + i), override))
        {
            Logger::Log("Space", LogLevel::Error,
                        "Failed to apply override to object " + std::to_string(i) + ": " +
                            lua_tostring(L, -1));
            lua_settop(L, override);
        }
    }
    lua_settop(L, override - 1);
    return count;
}

int CreateList(lua_State* L)
{
    // The classifier refused lengths beyond what the stack can hold.
    const lua_Integer length = luaL_len(L, 2);
    EnsureStack(L, static_cast<int>(length) * 3 + 20);
    for (lua_Integer i = 1; i <= length; ++i)
    {
        lua_geti(L, 2, i);
        CreateNested(L);
    }
    return lua_gettop(L) - 2;
}

} // namespace

bool LoadDataFile(lua_State* L, const char* fileName)
{
    // Text or precompiled, as scripts are: shipped bytecode is trusted, as the README says.
    if (luaL_loadfilex(L, fileName, nullptr) != LUA_OK)
    {
        LogFileError("Failed to load archetype/level file ", fileName, lua_tostring(L, -1));
        lua_pop(L, 1);
        return false;
    }
    PushReadOnlyEnvironment(L);
    if (lua_setupvalue(L, -2, 1) == nullptr)
    {
        Logger::Log("Space", LogLevel::Error,
                    "Failed to set read-only environment table for loading archetype/level");
        lua_pop(L, 1);
    }
    return true;
}

int LoadArchetype(lua_State* L, const char* fileName)
{
    EnsureStack(L, 22);
    const int top = lua_gettop(L);
    lua_pushcfunction(L, TracebackHandler);
    if (!LoadDataFile(L, fileName))
    {
        lua_settop(L, top);
        return -1;
    }
    if (lua_pcall(L, 0, 1, top + 1) != LUA_OK)
    {
        LogFileError("Failed to load archetype/level file ", fileName, lua_tostring(L, -1));
        lua_settop(L, top);
        return -1;
    }
    lua_remove(L, top + 1);
    return lua_type(L, -1);
}

int CreateFromArchetype(lua_State* L)
{
    Space& space = CheckSpace(L);
    lua_settop(L, 2);
    ResolveArchetypeNames(L);
    if (lua_isnil(L, 2))
    {
        return CreateBlank(L, space);
    }
    if (!lua_istable(L, 2))
    {
        return RaiseTypeError(L, 2, "table");
    }
    switch (ClassifyDescription(L))
    {
    case Description::Object:
        return CreateObject(L, space);
    case Description::Empty:
        return CreateBlank(L, space);
    case Description::Override:
        return CreateOverridden(L);
    case Description::List:
        return CreateList(L);
    case Description::Invalid:
        break;
    }
    return luaL_error(L, "Failed to create objects from archetype: invalid table passed");
}

int BeginLevelLoad(lua_State* L, Space& space)
{
    EnsureStack(L, 24);
    const int top = lua_gettop(L);
    lua_pushcfunction(L, TracebackHandler);
    lua_pushcfunction(L, CreateFromArchetype);
    PushSpace(&space, L);
    if (!LoadDataFile(L, space.levelName.c_str()))
    {
        lua_settop(L, top);
        return -1;
    }
    return top;
}

bool FinishLevelLoad(lua_State* L, Space& space, int top)
{
    const int handler = top + 1;
    if (lua_pcall(L, 0, 1, handler) != LUA_OK)
    {
        LogFileError("Failed to load level ", space.levelName.c_str(), lua_tostring(L, -1));
        lua_settop(L, top);
        return false;
    }
    if (!lua_istable(L, -1))
    {
        LogFileError("Failed to load level ", space.levelName.c_str(),
                     (std::string("level table expected, got ") + luaL_typename(L, -1)).c_str());
        lua_settop(L, top);
        return false;
    }
    if (lua_pcall(L, 2, 0, handler) != LUA_OK)
    {
        LogFileError("Failed to load level ", space.levelName.c_str(), lua_tostring(L, -1));
        lua_settop(L, top);
        return false;
    }
    lua_settop(L, top);
    return true;
}

} // namespace Lua
