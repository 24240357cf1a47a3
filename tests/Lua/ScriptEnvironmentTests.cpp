#include "Support/ScriptScenario.h"

#include <lua.hpp>

namespace
{

using ScriptEnvironments = ScriptScenario;

TEST_F(ScriptEnvironments, AssignmentsStayInTheScriptAndHandlesReachThem)
{
    Write("a.lua", "mine = 'a' _G.shared = 'global' _G.a = Script wait() print(mine, fromB)\n");
    Write("b.lua", "print(mine, shared, a.mine, a.math == math, a.GameObject ~= GameObject)\n"
                   "a.fromB = 'b' print(Script == Script, a == Script, Script ~= nil)\n");
    Attach("a.lua");
    Attach("b.lua");
    EXPECT_EQ(Frame(0.1), "nil\tglobal\ta\ttrue\ttrue\ntrue\tfalse\ttrue\n");
    EXPECT_EQ(Frame(0.1), "a\tb\n");
    EXPECT_EQ(Run("return mine"), "");
    EXPECT_EQ(Run("assert(mine == nil and shared == 'global')"), "");
}

TEST_F(ScriptEnvironments, VariablesSetBeforeOrAfterTheStartAreSeenFromTheFirstLine)
{
    Write("v.lua",
          "print(speed, name, type(Spawn), Script:GetVariables() == vars, Script:GetVariables() == more)\n");
    const GameObjectHandle before = game.rootSpace.CreateObject();
    before.Get().AddComponent(Components::Script);
    Run("vars = {speed = 3, Spawn = 'shadowed'} more = {speed = 7, name = 'late'}");
    lua_getglobal(L(), "vars");
    ScriptOf(before).SetVariables(L(), -1);
    lua_pop(L(), 1);
    ScriptOf(before).SetScript(L(), "v.lua");
    const GameObjectHandle after = Attach("v.lua");
    lua_getglobal(L(), "more");
    ScriptOf(after).SetVariables(L(), -1);
    ScriptOf(before).SetVariables(L(), -1);
    lua_pop(L(), 1);
    EXPECT_EQ(Frame(0.1), "7\tlate\tstring\ttrue\tfalse\n7\tlate\tfunction\tfalse\ttrue\n");
    EXPECT_EQ(Run("assert(vars.speed == 7 and vars.name == 'late')"), "")
        << "one level copied into the first table";
    ScriptOf(before).SetScript(L(), "v.lua");
    EXPECT_EQ(Frame(0.1), "nil\tnil\tfunction\tfalse\tfalse\n") << "a new script starts without variables";
}

TEST_F(ScriptEnvironments, ConnectStoresHandlersAndWarnsWhenOneIsReplaced)
{
    Write(
        "c.lua",
        "Input.ConnectKeyDown(print) Input.ConnectKeyDown(type) Input.ConnectFileDropped(print)\n"
        "print(__inputFuncs[5] == type, __inputFuncs[12] == print, rawget(_G, '__inputFuncs'))\n"
        "print(select(2, pcall(function() Input.ConnectQuit(5) end)))\n"
        "local saved = tostring _G.tostring = function() return {} end Input.ConnectFileDropped(type)\n"
        "_G.tostring = function() error('no name') end local ok, e = pcall(Input.ConnectFileDropped, print)\n"
        "_G.tostring = saved print(e)\n");
    Attach("c.lua");
    EXPECT_EQ(Frame(0.1),
              "true\ttrue\tnil\nc.lua:3: bad argument #1 to 'ConnectQuit' (function expected, got number)\n"
              "c.lua:5: no name\n");
    const std::vector<std::string> warnings = log.Messages("LuaSystem", LogLevel::Warning);
    ASSERT_EQ(warnings.size(), 2u);
    EXPECT_TRUE(warnings[0].starts_with("Replaced input handler for \"KeyDown\" for object \"Object "))
        << warnings[0];
    EXPECT_EQ(warnings[1], "Replaced input handler for \"FileDropped\" for object \"NULL\"");
    EXPECT_TRUE(Errors().empty());
}

TEST_F(ScriptEnvironments, DofileRunsInTheCallersEnvironmentAndMayWait)
{
    Write("lib.lua", "helper = 'from lib' local e = wait(0.1) return 'done', e\n");
    Write("d.lua", "print(dofile('lib.lua')) print(helper, rawget(_G, 'helper'))\n"
                   "print(select(2, pcall(dofile, 'nothing.lua')))\n"
                   "print(select(2, pcall(dofile, {})))\n");
    Write("e.lua", "wait() print(helper)\n");
    Attach("d.lua");
    Attach("e.lua");
    EXPECT_EQ(Frame(0.1), "");
    EXPECT_EQ(Frame(0.1), "done\t0.1\nfrom lib\tnil\ncannot open nothing.lua: No such file or directory\n"
                          "bad argument #1 to '?' (string expected, got table)\nnil\n");
}

} // namespace
