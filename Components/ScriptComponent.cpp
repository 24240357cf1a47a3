#include "Components/ScriptComponent.h"

#include "Components/Space.h"
#include "Debug/Logger.h"
#include "Lua/LuaSystem.h"
#include "Lua/ScriptEnvironment.h"
#include "Lua/Stack.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <lua.hpp>
#include <utility>

namespace Components
{
namespace
{

void LogLoadFailure(const char* fileName, const char* message)
{
    Logger::Log("LuaSystem", LogLevel::Error,
                std::string("Failed to load script \"") + fileName +
                    "\": " + (message != nullptr ? message : ""));
}

void LogInvalidEnvironment(const char* typeName)
{
    Logger::Log("LuaSystem", LogLevel::Error,
                std::string("Script component has invalid environment ") + typeName);
}

// Points the function's upvalue named _ENV at the environment on top, and pops it. Upvalues are shared, so
// a function from another script's chunk switches that whole chunk; a function without one uses no globals.
void SetEnvironmentUpvalue(lua_State* L, int function)
{
    for (int upvalue = 1;; ++upvalue)
    {
        const char* name = lua_getupvalue(L, function, upvalue);
        if (name == nullptr)
        {
            break;
        }
        lua_pop(L, 1);
        if (std::strcmp(name, "_ENV") == 0)
        {
            lua_pushvalue(L, -1);
            lua_setupvalue(L, function, upvalue);
            break;
        }
    }
    lua_pop(L, 1);
}

void Unref(lua_State* L, int32_t& ref)
{
    if (ref > 0)
    {
        luaL_unref(L, LUA_REGISTRYINDEX, ref);
    }
    ref = 0;
}

} // namespace

ScriptComponent::~ScriptComponent()
{
    if (coroutineCount != 0 || environment != 0 || variables != 0)
    {
        Logger::Log("LuaSystem", LogLevel::Error, "Script component was not cleaned up!");
    }
}

ScriptComponent::ScriptComponent(ScriptComponent&& other) noexcept : Component(other.owner)
{
    TakeFrom(other);
}

ScriptComponent& ScriptComponent::operator=(ScriptComponent&& other) noexcept
{
    if (this != &other)
    {
        TakeFrom(other);
    }
    return *this;
}

void ScriptComponent::TakeFrom(ScriptComponent& other) noexcept
{
    owner = other.owner;
    destroyed = other.destroyed;
    firstCoroutine = std::exchange(other.firstCoroutine, kNoCoroutine);
    lastCoroutine = std::exchange(other.lastCoroutine, kNoCoroutine);
    coroutineCount = std::exchange(other.coroutineCount, 0);
    source = std::exchange(other.source, {});
    profileName = other.profileName;
    environment = std::exchange(other.environment, 0);
    variables = std::exchange(other.variables, 0);
    priority = other.priority;
    slot = other.slot;
}

Handle ScriptComponent::OwnHandle() const
{
    return Handle{slot, owner.space->scripts.components.Slots()[slot].generation};
}

bool ScriptComponent::SetScript(lua_State* L, const char* fileName)
{
    const int top = lua_gettop(L);
    Lua::EnsureStack(L, 24);
    if (coroutineCount != 0 || environment != 0)
    {
        Logger::Log("LuaSystem", LogLevel::Warning, "Replacing existing script component");
        Cleanup(L);
    }
    if (Lua::LuaSystem::Of(L).scriptChunks.PushMainFunction(L, fileName) != LUA_OK)
    {
        LogLoadFailure(fileName, lua_tostring(L, -1));
        lua_settop(L, top);
        return false;
    }
    // Named before the start, since the new coroutine keeps the name that its runs are profiled under.
    profileName = Lua::LuaSystem::Of(L).InternName(fileName);
    const bool started = StartCoroutine(L, 0);
    lua_settop(L, top);
    source = fileName;
    return started;
}

bool ScriptComponent::PushEnvironment(lua_State* L)
{
    if (environment == 0)
    {
        environment = Lua::MakeScriptEnvironment(L, owner, variables);
        return true;
    }
    const int type = lua_rawgeti(L, LUA_REGISTRYINDEX, environment);
    if (type == LUA_TTABLE)
    {
        return true;
    }
    LogInvalidEnvironment(lua_typename(L, type));
    lua_pop(L, 1);
    return false;
}

bool ScriptComponent::StartCoroutine(lua_State* L, int argumentCount)
{
    Lua::EnsureStack(L, 24);
    const int function = lua_gettop(L) - argumentCount;
    // The thread comes before a new environment, so that a script's function, thread and environment, which
    // every wake touches, lie close together in memory.
    lua_State* thread = lua_newthread(L);
    const int ref = luaL_ref(L, LUA_REGISTRYINDEX);
    if (!PushEnvironment(L))
    {
        luaL_unref(L, LUA_REGISTRYINDEX, ref);
        lua_settop(L, function - 1);
        return false;
    }
    SetEnvironmentUpvalue(L, function);
    if (!lua_checkstack(thread, argumentCount + 1))
    {
        luaL_unref(L, LUA_REGISTRYINDEX, ref);
        luaL_error(L, "stack overflow");
    }
    lua_xmove(L, thread, argumentCount + 1);
    Lua::LuaSystem::Of(L).ScheduleOf(*owner.space).Start(*this, OwnHandle(), ref, profileName);
    return true;
}

void ScriptComponent::SetVariables(lua_State* L, int tableIndex)
{
    Lua::EnsureStack(L, 24);
    const int table = lua_absindex(L, tableIndex);
    if (variables > 0 && lua_rawgeti(L, LUA_REGISTRYINDEX, variables) == LUA_TTABLE)
    {
        Lua::CopyPairs(L, table, -1);
        lua_pop(L, 1);
    }
    else
    {
        if (variables > 0)
        {
            // A script replaced the table in the registry: the given one takes its place.
            lua_pop(L, 1);
            Unref(L, variables);
        }
        lua_pushvalue(L, table);
        variables = luaL_ref(L, LUA_REGISTRYINDEX);
    }
    if (environment > 0 && lua_rawgeti(L, LUA_REGISTRYINDEX, environment) == LUA_TTABLE)
    {
        Lua::CopyPairs(L, table, -1);
    }
    if (environment > 0)
    {
        lua_pop(L, 1);
    }
}

void ScriptComponent::SetPriority(lua_State* L, int64_t value)
{
    priority = static_cast<int32_t>(
        std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
    Lua::LuaSystem::Of(L).ScheduleOf(*owner.space).MarkUnsorted();
}

void ScriptComponent::Cleanup(lua_State* L)
{
    if (coroutineCount != 0)
    {
        Lua::LuaSystem::Of(L).ScheduleOf(*owner.space).EndAll(L, *this);
    }
    Unref(L, environment);
    Unref(L, variables);
    source.clear();
}

} // namespace Components
