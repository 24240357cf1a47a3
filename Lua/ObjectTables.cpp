// How one table becomes one object: the classifier of descriptions, and the walk of an object table and
// its component tables. Keys and values come from files, so every type is checked before it is used.

#include "Components/Space.h"
#include "Debug/Logger.h"
#include "Lua/Environments.h"
#include "Lua/GameObjectScript.h"
#include "Lua/LevelLoader.h"
#include "Lua/ScriptHandles.h"
#include "Lua/Stack.h"

#include <cstring>

namespace Lua
{
namespace
{

// The most values that the Lua stack can hold; a larger count is refused before any arithmetic on it.
constexpr lua_Integer kMaxStack = 1000000;
// A list takes room for three values per entry while its objects are made.
constexpr lua_Integer kMaxListEntries = kMaxStack / 3;

bool IsDescriptionValue(int type)
{
    return type == LUA_TSTRING || type == LUA_TTABLE;
}

bool IsKey(int type)
{
    return type == LUA_TSTRING || type == LUA_TNUMBER;
}

Description ClassifySingle(lua_State* L)
{
    const int first = lua_geti(L, 2, 1);
    const int override = lua_getfield(L, 2, "Override");
    lua_pop(L, 2);
    if (!IsDescriptionValue(first) || (override != LUA_TNIL && override != LUA_TTABLE))
    {
        return Description::Invalid;
    }
    return override == LUA_TTABLE ? Description::Override : Description::List;
}

Description ClassifyArray(lua_State* L, lua_Integer length)
{
    for (lua_Integer i = 1; i <= length; ++i)
    {
        const int type = lua_geti(L, 2, i);
        lua_pop(L, 1);
        if (!IsDescriptionValue(type))
        {
            return Description::Invalid;
        }
    }
    return Description::List;
}

Description ClassifyTable(lua_State* L)
{
    lua_pushnil(L);
    if (lua_next(L, 2) == 0)
    {
        return Description::Empty;
    }
    do
    {
        const bool valid = IsDescriptionValue(lua_type(L, -1));
        lua_pop(L, 1);
        if (!valid)
        {
            lua_pop(L, 1);
            return Description::Invalid;
        }
    } while (lua_next(L, 2) != 0);
    return Description::Object;
}

// Runs protected: (setter, handle, value). A table with a positive length gives its array part as the
// arguments, any other value is the one argument. Failures here, a bad __len included, fail the member.
int CallSetter(lua_State* L)
{
    if (lua_type(L, 3) != LUA_TTABLE)
    {
        lua_call(L, 2, 0);
        return 0;
    }
    const lua_Integer length = luaL_len(L, 3);
    if (length <= 0)
    {
        lua_call(L, 2, 0);
        return 0;
    }
    if (length > kMaxStack)
    {
        return luaL_error(L, "stack overflow");
    }
    EnsureStack(L, static_cast<int>(length) + 20);
    lua_pushvalue(L, 1);
    lua_pushvalue(L, 2);
    for (lua_Integer i = 1; i <= length; ++i)
    {
        lua_geti(L, 3, i);
    }
    lua_call(L, static_cast<int>(length) + 1, 0);
    return 0;
}

// Pushes the setter for the key on top, looked up through the handle's metatable; false if there is none.
bool PushSetter(lua_State* L, int handle, const char* key)
{
    if (!lua_getmetatable(L, handle))
    {
        return false;
    }
    lua_pop(L, 1);
    lua_pushfstring(L, "Set%s", key);
    lua_gettable(L, handle);
    return lua_type(L, -1) == LUA_TFUNCTION;
}

// Leaves the reason on top and returns false.
bool Fail(lua_State* L, const char* format, const char* detail)
{
    lua_pushfstring(L, format, detail);
    return false;
}

// Gives the object a component of the type if it lacks one, and pushes its handle.
void PushNewOrExisting(lua_State* L, GameObjectHandle object, int32_t type)
{
    GameObject& resolved = *object.space->objects.Find(object.handle);
    Handle component = resolved.GetComponent(type);
    if (component.IsNull())
    {
        component = resolved.AddComponent(type);
    }
    PushComponent(L, object.space, type, component);
}

bool ApplyComponent(lua_State* L, GameObjectHandle object, int32_t type, int value)
{
    const char* name = Components::ComponentTypeName(type);
    const char* shortKey = type == Components::Sprite   ? "Frames"
                           : type == Components::Script ? "Source"
                                                        : nullptr;
    if (shortKey != nullptr && lua_type(L, value) == LUA_TSTRING)
    {
        lua_createtable(L, 0, 1);
        lua_pushvalue(L, value);
        lua_setfield(L, -2, shortKey);
        lua_replace(L, value);
    }
    if (lua_type(L, value) != LUA_TTABLE)
    {
        lua_pushfstring(L, "Bad argument for component %s: table expected, got %s", name,
                        luaL_typename(L, value));
        return false;
    }
    PushNewOrExisting(L, object, type);
    if (!InitialiseMembers(L, value))
    {
        Logger::Log("Space", LogLevel::Error,
                    std::string("Failed to initialise component ") + name + " from table");
        return false;
    }
    return true;
}

// Makes the objects of the description and attaches them to the object's transform, keeping their local
// placement. A failure is logged: the object itself has not failed.
void ApplyChildren(lua_State* L, GameObjectHandle object, int value)
{
    if (object.space->objects.Find(object.handle)->GetTransform().IsNull())
    {
        Logger::Log("Space", LogLevel::Warning,
                    "Tried to add children to an object with no transform, adding a blank one");
        object.space->objects.Find(object.handle)->AddComponent(Components::Transform);
    }
    lua_pushcfunction(L, TracebackHandler);
    const int handler = lua_gettop(L);
    lua_pushcfunction(L, CreateFromArchetype);
    lua_pushvalue(L, 1);
    lua_pushvalue(L, value);
    if (lua_pcall(L, 2, LUA_MULTRET, handler) != LUA_OK)
    {
        Logger::Log("Space", LogLevel::Error,
                    std::string("Failed to create child objects: ") + lua_tostring(L, -1));
        return;
    }
    const Handle parent = object.space->objects.Find(object.handle)->GetTransform();
    for (int index = handler + 1; index <= lua_gettop(L); ++index)
    {
        const GameObjectHandle child = ToGameObject(L, index);
        GameObject& childObject = *child.space->objects.Find(child.handle);
        Handle transform = childObject.GetTransform();
        if (transform.IsNull())
        {
            transform = childObject.AddComponent(Components::Transform);
        }
        Components::TransformComponent& childTransform = *object.space->transforms.components.Find(transform);
        if (childTransform.IsDescendant(parent))
        {
            Logger::Log("Space", LogLevel::Error, "Child object is an ancestor of its parent");
            continue;
        }
        childTransform.SetParent(parent, true);
    }
}

// One entry of an object table, its key at -2 and its value at -1. False with the reason on top.
bool ApplyEntry(lua_State* L, GameObjectHandle object)
{
    const int value = lua_gettop(L);
    if (!IsKey(lua_type(L, value - 1)))
    {
        return Fail(L, "Object table keys must be strings or numbers, got %s", luaL_typename(L, value - 1));
    }
    lua_pushvalue(L, value - 1);
    const char* key = lua_tostring(L, -1);
    const int32_t type = ComponentTypeAt(L, -1);
    if (type == Components::Transform)
    {
        return true;
    }
    if (type >= 0)
    {
        return ApplyComponent(L, object, type, value);
    }
    if (std::strcmp(key, "Name") == 0)
    {
        if (!IsKey(lua_type(L, value)))
        {
            return Fail(L, "Name must be a string or number, got %s", luaL_typename(L, value));
        }
        object.space->objects.Find(object.handle)->name = lua_tostring(L, value);
        return true;
    }
    if (std::strcmp(key, "Children") == 0)
    {
        ApplyChildren(L, object, value);
        return true;
    }
    if (std::strcmp(key, "Override") == 0)
    {
        return Fail(L, "%s", "Tried to apply an override archetype as an override");
    }
    Logger::Log("Space", LogLevel::Warning,
                std::string("Creating object from archetype: No component \"") + key + "\" exists");
    return true;
}

} // namespace

Description ClassifyDescription(lua_State* L)
{
    EnsureStack(L, 22);
    const lua_Integer length = luaL_len(L, 2);
    if (length == 1)
    {
        return ClassifySingle(L);
    }
    if (length > kMaxListEntries)
    {
        luaL_error(L, "stack overflow");
    }
    if (length > 1)
    {
        return ClassifyArray(L, length);
    }
    return length == 0 ? ClassifyTable(L) : Description::Invalid;
}

bool InitialiseMembers(lua_State* L, int tableIndex)
{
    EnsureStack(L, 25);
    const int table = lua_absindex(L, tableIndex);
    const int handle = lua_gettop(L);
    lua_pushnil(L);
    while (lua_next(L, table) != 0)
    {
        const int key = lua_gettop(L) - 1;
        if (!IsKey(lua_type(L, key)))
        {
            return Fail(L, "Component table keys must be strings or numbers, got %s", luaL_typename(L, key));
        }
        lua_pushvalue(L, key);
        const char* name = lua_tostring(L, -1);
        lua_pushcfunction(L, CallSetter);
        if (!PushSetter(L, handle, name))
        {
            Logger::Log("Lua", LogLevel::Warning, std::string("Component has no member ") + name);
            lua_settop(L, key);
            continue;
        }
        lua_pushvalue(L, handle);
        lua_pushvalue(L, key + 1);
        if (lua_pcall(L, 3, 0, 0) != LUA_OK)
        {
            lua_pushfstring(L, "Failed to initialise member %s: %s", name, lua_tostring(L, -1));
            return false;
        }
        lua_settop(L, key);
    }
    lua_settop(L, handle);
    return true;
}

bool ApplyOverrides(lua_State* L, GameObjectHandle object, int tableIndex)
{
    EnsureStack(L, 24);
    const int table = lua_absindex(L, tableIndex);
    const int top = lua_gettop(L);
    lua_pushliteral(L, "Transform");
    if (lua_rawget(L, table) == LUA_TTABLE)
    {
        PushNewOrExisting(L, object, Components::Transform);
        if (!InitialiseMembers(L, top + 1))
        {
            Logger::Log("Space", LogLevel::Error, "Failed to initialise component Transform from table");
            return false;
        }
    }
    lua_settop(L, top);
    lua_pushnil(L);
    while (lua_next(L, table) != 0)
    {
        const int key = lua_gettop(L) - 1;
        if (!ApplyEntry(L, object))
        {
            return false;
        }
        lua_settop(L, key);
    }
    if (lua_gettop(L) != top)
    {
        Logger::Log("Space", LogLevel::Warning, "ApplyOverrides function did not clean up the lua stack");
        lua_settop(L, top);
    }
    return true;
}

} // namespace Lua
