#include "Lua/ScriptHandles.h"
#include "Support/ScriptScenario.h"

#include <lua.hpp>

namespace
{

using ScriptHandles = ScriptScenario;

// Calls fn(value) through Lua, as a script would, and returns its error text or "".
std::string CallWith(lua_State* L, lua_CFunction function, const char* name, const std::string& argumentChunk)
{
    lua_register(L, name, function);
    const int top = lua_gettop(L);
    std::string error;
    if (luaL_dostring(L, (std::string(name) + "(" + argumentChunk + ")").c_str()) != LUA_OK)
    {
        error = lua_tostring(L, -1);
    }
    lua_settop(L, top);
    return error;
}

int ProbeTransform(lua_State* L)
{
    Lua::CheckTransform(L);
    return 0;
}

int ProbeScript(lua_State* L)
{
    Lua::CheckScript(L);
    return 0;
}

int ProbeSpace(lua_State* L)
{
    Lua::CheckSpace(L);
    return 0;
}

int ProbeObject(lua_State* L)
{
    Lua::ToGameObject(L, 1);
    return 0;
}

int ProbeBoolean(lua_State* L)
{
    lua_pushboolean(L, Lua::OptBoolean(L, 1, true));
    lua_setglobal(L, "result");
    return 0;
}

void SetGlobal(lua_State* L, const char* name)
{
    lua_setglobal(L, name);
}

TEST_F(ScriptHandles, GameObjectsAndSpacesHaveOneHandleEachUntilTheyGo)
{
    const GameObjectHandle object = game.rootSpace.CreateObject();
    Lua::PushGameObject(object.Get(), L());
    Lua::PushGameObject(object.Get(), L());
    EXPECT_TRUE(lua_rawequal(L(), -1, -2));
    SetGlobal(L(), "a");
    SetGlobal(L(), "b");
    Lua::PushSpace(&game.rootSpace, L());
    Lua::PushSpace(&game.rootSpace, L());
    EXPECT_TRUE(lua_rawequal(L(), -1, -2));
    SetGlobal(L(), "space");
    lua_pop(L(), 1);
    EXPECT_EQ(Run("t = {[a] = 1} assert(t[b] == 1 and a == b)"), "");
    EXPECT_GT(object.Get().luaRef, 0);
    EXPECT_EQ(CallWith(L(), ProbeObject, "Probe", "a"), "");
    EXPECT_EQ(CallWith(L(), ProbeSpace, "Probe", "space"), "");

    object.Get().Destroy();
    Frame(0.1);
    EXPECT_EQ(CallWith(L(), ProbeObject, "Probe", "a"),
              "[string \"Probe(a)\"]:1: bad argument #1 to 'Probe' (GameObject or space is null)");
    EXPECT_EQ(CallWith(L(), ProbeObject, "Probe", "space"),
              "[string \"Probe(space)\"]:1: bad argument #1 to 'Probe' (GameObject expected, got Space)");

    Space& child = game.rootSpace.CreateChild();
    const GameObjectHandle inChild = child.CreateObject();
    Lua::PushGameObject(inChild.Get(), L());
    SetGlobal(L(), "c");
    Lua::PushSpace(&child, L());
    SetGlobal(L(), "childSpace");
    child.destroyRequested = true;
    game.rootSpace.DestroyFlagged(game);
    EXPECT_EQ(CallWith(L(), ProbeSpace, "Probe", "childSpace"),
              "[string \"Probe(childSpace)\"]:1: Space was NULL!");
    EXPECT_EQ(CallWith(L(), ProbeObject, "Probe", "c"),
              "[string \"Probe(c)\"]:1: bad argument #1 to 'Probe' (GameObject or space is null)");
    EXPECT_EQ(Run("for k, v in pairs(__registry) do assert(v ~= childSpace) end"), "");
}

TEST_F(ScriptHandles, ComponentChecksNameTheTypeAndTellStaleFromMissing)
{
    Write("s.lua", "");
    const GameObjectHandle object = Attach("s.lua");
    const Handle transform = object.Get().AddComponent(Components::Transform);
    Lua::PushComponent(L(), &game.rootSpace, Components::Transform, transform);
    SetGlobal(L(), "t");
    Lua::PushComponent(L(), &game.rootSpace, Components::Script,
                       object.Get().GetComponent(Components::Script));
    SetGlobal(L(), "s");
    Lua::PushComponent(L(), &game.rootSpace, Components::Transform, Handle{});
    EXPECT_TRUE(lua_isnil(L(), -1));
    Lua::PushComponent(L(), &game.rootSpace, 9, transform);
    EXPECT_TRUE(lua_isnil(L(), -1));
    lua_pop(L(), 2);

    EXPECT_EQ(CallWith(L(), ProbeTransform, "Probe", "t"), "");
    EXPECT_EQ(CallWith(L(), ProbeScript, "Probe", "s"), "");
    EXPECT_EQ(CallWith(L(), ProbeTransform, "Probe", "s"),
              "[string \"Probe(s)\"]:1: bad argument #1 to 'Probe' (Transform expected, got Script)");
    EXPECT_EQ(CallWith(L(), ProbeTransform, "Probe", ""),
              "[string \"Probe()\"]:1: bad argument #1 to 'Probe' (Transform expected, got no value)");
    EXPECT_EQ(Run("forged = debug.setmetatable(io.stdout, __registry.Script)"), "");
    EXPECT_EQ(CallWith(L(), ProbeScript, "Probe", "forged"),
              "[string \"Probe(forged)\"]:1: bad argument #1 to 'Probe' (Script expected, got Script)")
        << "a forged handle has the metatable but not the size";
    EXPECT_EQ(Run("debug.setmetatable(io.stdout, getmetatable(io.stdin))"), "");
    EXPECT_EQ(Run("assert(t ~= t == false) local a = s assert(a == s)"), "");

    object.Get().RemoveComponent(Components::Script);
    object.Get().RemoveComponent(Components::Transform);
    EXPECT_EQ(CallWith(L(), ProbeScript, "Probe", "s"),
              "[string \"Probe(s)\"]:1: Script component has been removed");
    EXPECT_EQ(CallWith(L(), ProbeTransform, "Probe", "t"), "") << "other types work until the sweep";
    object.Get().Destroy();
    Frame(0.1);
    EXPECT_EQ(CallWith(L(), ProbeScript, "Probe", "s"), "[string \"Probe(s)\"]:1: Script component is null");
    EXPECT_EQ(CallWith(L(), ProbeTransform, "Probe", "t"),
              "[string \"Probe(t)\"]:1: Transform component is null");
}

TEST_F(ScriptHandles, OptionalBooleansAndDirectoryListings)
{
    EXPECT_EQ(CallWith(L(), ProbeBoolean, "Probe", ""), "");
    EXPECT_EQ(Run("assert(result == true)"), "");
    EXPECT_EQ(CallWith(L(), ProbeBoolean, "Probe", "false"), "");
    EXPECT_EQ(Run("assert(result == false)"), "");
    EXPECT_EQ(CallWith(L(), ProbeBoolean, "Probe", "nil"),
              "[string \"Probe(nil)\"]:1: bad argument #1 to 'Probe' (boolean expected, got nil)");

    data.Touch("Levels/b.lvl");
    data.Touch("Levels/a.lvl");
    data.MakeFolder("Levels/c.lvl");
    EXPECT_EQ(
        Run("local t = GetFilesInDirectory('Levels/*.lvl') assert(#t == 3 and t[1] == 'a.lvl' and t[3] == "
            "'c.lvl')"),
        "");
    EXPECT_EQ(Run("local t = GetFilesInDirectory('Levels/*.lvl', false) assert(#t == 2 and t[2] == 'b.lvl')"),
              "");
    EXPECT_EQ(Run("assert(next(GetFilesInDirectory('Nowhere/*')) == nil)"), "");
    EXPECT_EQ(
        Run("GetFilesInDirectory({})"),
        "[string \"GetFilesInDirectory({})\"]:1: bad argument #1 to 'GetFilesInDirectory' (string expected, "
        "got table)");
    EXPECT_EQ(
        Run("GetFilesInDirectory('*', nil)"),
        "[string \"GetFilesInDirectory('*', nil)\"]:1: bad argument #2 to 'GetFilesInDirectory' (boolean "
        "expected, got nil)");
}

} // namespace
