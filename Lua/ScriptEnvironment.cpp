#include "Lua/ScriptEnvironment.h"

#include "Components/ComponentType.h"
#include "Components/Space.h"
#include "Debug/Logger.h"
#include "Lua/ScriptHandles.h"
#include "Lua/Stack.h"

#include <array>
#include <string>

namespace Lua
{
namespace
{

// By input event number. The event's own name follows "Connect".
constexpr std::array<const char*, 13> kConnectNames = {
    "ConnectQuit",    "ConnectActivate",   "ConnectMinimize",   "ConnectClose",     "ConnectSizeChanged",
    "ConnectKeyDown", "ConnectKeyUp",      "ConnectChar",       "ConnectMouseMove", "ConnectMouseDown",
    "ConnectMouseUp", "ConnectMouseWheel", "ConnectFileDropped"};
constexpr size_t kConnectPrefix = 7;

// Scripts can replace a C closure's upvalues through the debug library, so each is checked before use.
int CheckedEventNumber(lua_State* L)
{
    int isInteger = 0;
    const lua_Integer event = lua_tointegerx(L, lua_upvalueindex(2), &isInteger);
    if (!lua_istable(L, lua_upvalueindex(1)) || !isInteger || event < 0 ||
        event >= static_cast<lua_Integer>(kConnectNames.size()))
    {
        luaL_error(L, "Input handler closure has been tampered with");
    }
    return static_cast<int>(event);
}

void LogReplacedHandler(int event, const char* owner)
{
    Logger::Log("LuaSystem", LogLevel::Warning,
                std::string("Replaced input handler for \"") +
                    (kConnectNames[static_cast<size_t>(event)] + kConnectPrefix) + "\" for object \"" +
                    owner + "\"");
}

// The owner is named by the script's own tostring, which may raise or yield: no C++ object is alive here.
void WarnReplacedHandler(lua_State* L, int event)
{
    const int top = lua_gettop(L);
    const char* owner = "NULL";
    if (lua_getglobal(L, "tostring") == LUA_TFUNCTION)
    {
        lua_pushliteral(L, "GameObject");
        lua_rawget(L, lua_upvalueindex(1));
        lua_call(L, 1, 1);
        if (lua_type(L, -1) == LUA_TSTRING)
        {
            owner = lua_tostring(L, -1);
        }
    }
    LogReplacedHandler(event, owner);
    lua_settop(L, top);
}

// Input.ConnectX(function), called with a dot.
int Connect(lua_State* L)
{
    luaL_checktype(L, 1, LUA_TFUNCTION);
    const int event = CheckedEventNumber(L);
    EnsureStack(L, 24);
    lua_settop(L, 1);
    lua_pushliteral(L, "__inputFuncs");
    if (lua_rawget(L, lua_upvalueindex(1)) != LUA_TTABLE)
    {
        lua_pop(L, 1);
        lua_newtable(L);
        lua_pushliteral(L, "__inputFuncs");
        lua_pushvalue(L, -2);
        lua_rawset(L, lua_upvalueindex(1));
    }
    if (lua_rawgeti(L, 2, event) != LUA_TNIL)
    {
        WarnReplacedHandler(L, event);
    }
    lua_pop(L, 1);
    lua_pushvalue(L, 1);
    lua_rawseti(L, 2, event);
    return 0;
}

int ContinueDoFile(lua_State* L, int, lua_KContext)
{
    return lua_gettop(L) - 1;
}

// dofile(name): the chunk runs in this environment and may wait, as a continuation carries its results.
int DoFile(lua_State* L)
{
    const char* name = luaL_checkstring(L, 1);
    EnsureStack(L, 22);
    lua_settop(L, 1);
    if (luaL_loadfilex(L, name, nullptr) != LUA_OK)
    {
        return lua_error(L);
    }
    lua_pushvalue(L, lua_upvalueindex(1));
    if (lua_setupvalue(L, -2, 1) == nullptr)
    {
        lua_pop(L, 1);
    }
    lua_callk(L, 0, LUA_MULTRET, 0, ContinueDoFile);
    return ContinueDoFile(L, LUA_OK, 0);
}

int Spawn(lua_State* L)
{
    const ComponentUserdata* handle = TestComponentHandle(L, lua_upvalueindex(1), Components::Script);
    if (handle == nullptr || handle->handle.handle.IsNull())
    {
        return luaL_error(L, "Handle to ScriptComponent in Spawn is NULL");
    }
    if (ResolveScript(L, *handle) == nullptr)
    {
        return luaL_error(L, "ScriptComponent in Spawn is NULL");
    }
    luaL_checktype(L, 1, LUA_TFUNCTION);
    ResolveScript(L, *handle)->StartCoroutine(L, lua_gettop(L) - 1);
    return 0;
}

void PushInputTable(lua_State* L, int environment)
{
    lua_createtable(L, 0, static_cast<int>(kConnectNames.size()));
    for (size_t event = 0; event < kConnectNames.size(); ++event)
    {
        lua_pushvalue(L, environment);
        lua_pushinteger(L, static_cast<lua_Integer>(event));
        lua_pushcclosure(L, Connect, 2);
        lua_setfield(L, -2, kConnectNames[event]);
    }
}

} // namespace

void CopyPairs(lua_State* L, int from, int to)
{
    EnsureStack(L, 23);
    from = lua_absindex(L, from);
    to = lua_absindex(L, to);
    lua_pushnil(L);
    while (lua_next(L, from) != 0)
    {
        lua_pushvalue(L, -2);
        lua_insert(L, -2);
        lua_settable(L, to);
    }
}

int32_t MakeScriptEnvironment(lua_State* L, GameObjectHandle owner, int32_t variables)
{
    EnsureStack(L, 23);
    // Room for the six fields below from the start, so that setting them rehashes nothing.
    lua_createtable(L, 0, 6);
    const int environment = lua_gettop(L);
    if (lua_getfield(L, LUA_REGISTRYINDEX, "EnvMeta") == LUA_TTABLE)
    {
        lua_setmetatable(L, environment);
    }
    else
    {
        lua_pop(L, 1);
    }
    GameObject* object = owner.space->objects.Find(owner.handle);
    if (object != nullptr)
    {
        PushGameObject(*object, L);
    }
    else
    {
        lua_pushnil(L);
    }
    lua_setfield(L, environment, "GameObject");
    PushSpace(owner.space, L);
    lua_setfield(L, environment, "Space");
    lua_pushvalue(L, environment);
    lua_pushcclosure(L, DoFile, 1);
    lua_setfield(L, environment, "dofile");
    // Pushing may have moved the objects: look the owner up again.
    object = owner.space->objects.Find(owner.handle);
    PushComponent(L, owner.space, Components::Script,
                  object != nullptr ? object->components[Components::Script] : Handle{});
    lua_pushvalue(L, -1);
    lua_pushcclosure(L, Spawn, 1);
    lua_setfield(L, environment, "Spawn");
    lua_setfield(L, environment, "Script");
    PushInputTable(L, environment);
    lua_setfield(L, environment, "Input");
    if (variables > 0 && lua_rawgeti(L, LUA_REGISTRYINDEX, variables) == LUA_TTABLE)
    {
        CopyPairs(L, -1, environment);
    }
    if (variables > 0)
    {
        lua_pop(L, 1);
    }
    lua_pushvalue(L, environment);
    return luaL_ref(L, LUA_REGISTRYINDEX);
}

} // namespace Lua
