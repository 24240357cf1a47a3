#include "Support/ScriptScenario.h"

#include <lua.hpp>

namespace
{

using ScriptErrors = ScriptScenario;

TEST_F(ScriptErrors, FilesThatCannotLoadAreLoggedAndAnEmptyFileIsAScript)
{
    Write("bad.lua", "this is not lua");
    Write("empty.lua", "");
    data.MakeFolder("folder.lua");
    const GameObjectHandle object = Attach("empty.lua");
    EXPECT_EQ(ScriptOf(object).source, "empty.lua");
    EXPECT_EQ(ScriptOf(object).coroutineCount, 1u);
    EXPECT_FALSE(ScriptOf(object).SetScript(L(), "missing.lua"));
    EXPECT_FALSE(ScriptOf(object).SetScript(L(), "bad.lua"));
    EXPECT_FALSE(ScriptOf(object).SetScript(L(), "folder.lua"));
    EXPECT_EQ(ScriptOf(object).source, "") << "a failed load keeps no name";
    const std::vector<std::string> errors = Errors();
    ASSERT_EQ(errors.size(), 3u);
    EXPECT_EQ(errors[0],
              "Failed to load script \"missing.lua\": cannot open missing.lua: No such file or directory");
    EXPECT_TRUE(errors[1].starts_with("Failed to load script \"bad.lua\": bad.lua:1: syntax error"))
        << errors[1];
    EXPECT_TRUE(errors[2].starts_with("Failed to load script \"folder.lua\": cannot read folder.lua"))
        << errors[2];
    EXPECT_EQ(log.Messages("LuaSystem", LogLevel::Warning),
              std::vector<std::string>{"Replacing existing script component"});
    EXPECT_EQ(Frame(0.1), "");
}

TEST_F(ScriptErrors, AnErrorEndsOnlyItsCoroutineAndLogsItsTraceback)
{
    Write("e.lua", "Spawn(function() while true do wait() print('other') end end)\n"
                   "local function deep() error('bad thing') end\n"
                   "wait() deep()\n");
    Write("odd.lua", "Spawn(function() error() end) Spawn(function() error({}) end)\n"
                     "Spawn(function() error(setmetatable({}, {__tostring = function() wait() end})) end)\n"
                     "Spawn(function() error(42) end)\n");
    Attach("e.lua");
    Attach("odd.lua");
    EXPECT_EQ(Frame(0.1), "");
    EXPECT_EQ(Frame(0.1), "other\n");
    EXPECT_EQ(Frame(0.1), "other\n");
    const std::vector<std::string> errors = Errors();
    ASSERT_EQ(errors.size(), 5u);
    EXPECT_EQ(errors[0], "Lua error in component coroutine: (error object is a nil value)\nstack traceback:\n"
                         "\t[C]: in function 'error'\n\todd.lua:1: in function <odd.lua:1>");
    EXPECT_TRUE(errors[1].starts_with("Lua error in component coroutine: (error object is a table value)\n"));
    EXPECT_TRUE(errors[2].starts_with("Lua error in component coroutine: (error object is a table value)\n"));
    EXPECT_TRUE(errors[3].starts_with("Lua error in component coroutine: 42\n"));
    EXPECT_EQ(errors[4], "Lua error in component coroutine: e.lua:2: bad thing\nstack traceback:\n"
                         "\t[C]: in function 'error'\n\te.lua:2: in local 'deep'\n\te.lua:3: in main chunk");
}

TEST_F(ScriptErrors, ForeignYieldsAndWaitsThatCannotYieldEndTheCoroutine)
{
    Write("y.lua",
          "Spawn(function() coroutine.yield(1, 2) print('never') end)\n"
          "Spawn(function() setmetatable({}, {__index = function() wait() end}).x = nil end)\n"
          "Spawn(function() local t = setmetatable({}, {__index = function() wait() end}) return t.x end)\n"
          "Spawn(function() table.sort({3, 2, 1}, function(a, b) wait() return a < b end) end)\n"
          "local co = coroutine.wrap(function() print(wait(5)) end) print(select('#', co()))\n");
    Attach("y.lua");
    EXPECT_EQ(Frame(0.1), "2\n") << "inside a script's own coroutine, wait yields to that coroutine";
    EXPECT_EQ(ErrorHeads(),
              (std::vector<std::string>{
                  "Lua error in component coroutine: Cannot yield from outside a coroutine",
                  "Lua error in component coroutine: attempt to yield across a C-call boundary"}));
    EXPECT_EQ(Run("wait()"), "attempt to yield from outside a coroutine");
}

TEST_F(ScriptErrors, DeepRecursionAndHugeAllocationsFailInTheirCoroutine)
{
    Write("deep.lua",
          "Spawn(function() local function f() return 1 + f() end f() end)\n"
          "Spawn(function() local t = setmetatable({}, {}) getmetatable(t).__index = function(s, k)"
          " return s[k] end return t.x end)\n"
          "Spawn(function() dofile('again.lua') end)\n"
          "Spawn(function() return string.rep('x', 1 << 50) end)\n"
          "Spawn(function() local f = io.open('deep.lua') f:read(1 << 50) end)\n");
    Write("again.lua", "dofile('again.lua')\n");
    Attach("deep.lua");
    Frame(0.1);
    const std::vector<std::string> heads = ErrorHeads();
    ASSERT_EQ(heads.size(), 5u);
    EXPECT_TRUE(heads[0].ends_with("stack overflow")) << heads[0];
    EXPECT_NE(heads[1].find("C stack overflow"), std::string::npos) << heads[1];
    EXPECT_EQ(heads.back(),
              "Lua error in component coroutine: deep.lua:5: not enough memory for buffer allocation");
    EXPECT_NE(heads[2].find("again.lua:1: too many C levels (limit is 200)"), std::string::npos) << heads[2];
    EXPECT_NE(heads[3].find("resulting string too large"), std::string::npos);
}

// The Spawn of a script's environment checks its component as the handle functions do.
TEST_F(ScriptErrors, TheSpawnOfAGoneScriptIsRefused)
{
    Write("victim.lua", "_G.victim = Script while true do wait() end\n");
    const GameObjectHandle victim = Attach("victim.lua");
    EXPECT_EQ(Frame(0.1), "");
    victim.Get().RemoveComponent(Components::Script);
    EXPECT_EQ(Outcome("victim.Spawn(print)"), "Script component has been removed");
    victim.Get().Destroy();
    EXPECT_EQ(Frame(0.1), "");
    EXPECT_EQ(Outcome("victim.Spawn(print)"), "Script component is null");
}

TEST_F(ScriptErrors, AScriptThatReplacesItselfEndsOnceAndTheNewOneRunsInTheSamePass)
{
    Write("a.lua", "print('a') Script:SetSource('b.lua') print('a goes on') wait() print('never')\n");
    Write("b.lua", "print('b') wait() print('b again')\n");
    const GameObjectHandle object = Attach("a.lua");
    EXPECT_EQ(Frame(0.1), "a\na goes on\nb\n");
    EXPECT_EQ(Frame(0.1), "b again\n");
    EXPECT_EQ(ScriptOf(object).source, "b.lua");
    EXPECT_EQ(ScriptOf(object).coroutineCount, 0u);
    EXPECT_TRUE(Errors().empty());
    // A reference given up twice would hand out one registry slot to two owners.
    EXPECT_EQ(Run("local seen = {} for i = 1, 50 do local r = {} seen[r] = true end"), "");
    Write("c.lua", "Spawn(function() wait() print('c1') end) Spawn(function() wait() print('c2') end)\n");
    ScriptOf(object).SetScript(L(), "c.lua");
    Frame(0.1);
    EXPECT_EQ(Frame(0.1), "c1\nc2\n");
}

TEST_F(ScriptErrors, TamperingWithTheRegistryIsSurvived)
{
    Write("t.lua",
          "for k, v in pairs(__registry) do if v == coroutine.running() then __registry[k] = 42 end end\n"
          "wait() print('never')\n");
    Write("meta.lua", "__registry.Script = 5 __registry.EnvMeta = 'x' print(Script, x)\n");
    Attach("t.lua");
    EXPECT_EQ(Frame(0.1), "");
    EXPECT_EQ(Frame(0.1), "");
    EXPECT_EQ(ErrorHeads(), std::vector<std::string>{"Coroutine had an invalid thread type"});
    // A thread taken from the registry several places ahead of the running coroutine, which the pass looks
    // at before that coroutine's turn.
    Write("wiper.lua",
          "wait() for k, v in pairs(__registry) do if v == _G.victim then __registry[k] = 42 end end\n");
    Write("bystander.lua", "while true do wait() end\n");
    Write("victim.lua", "_G.victim = coroutine.running() wait() print('never')\n");
    Attach("wiper.lua");
    for (int index = 0; index < 5; ++index)
    {
        Attach("bystander.lua");
    }
    Attach("victim.lua");
    EXPECT_EQ(Frame(0.1), "");
    EXPECT_EQ(Frame(0.1), "");
    EXPECT_EQ(ErrorHeads(), std::vector<std::string>(2, "Coroutine had an invalid thread type"));
    Attach("meta.lua");
    EXPECT_TRUE(Frame(0.1).starts_with("Script: "));
    Write("probe.lua", "print(Script)\n");
    Attach("probe.lua");
    EXPECT_EQ(Frame(0.1), "");
    EXPECT_EQ(ErrorHeads().back(),
              "Lua error in component coroutine: probe.lua:1: attempt to call a nil value (global 'print')")
        << "an environment made without its metatable reaches no globals, and nothing breaks";
}

} // namespace
