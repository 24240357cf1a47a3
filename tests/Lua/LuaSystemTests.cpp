#include "Core/Process.h"
#include "Core/Random.h"
#include "Debug/Exception.h"
#include "Lua/Environments.h"
#include "Lua/LuaSystem.h"
#include "Support/LogCapture.h"

#include <gtest/gtest.h>
#include <lua.hpp>
#include <string>
#include <thread>

namespace
{

class LuaSystem : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(lua.Initialise(nullptr));
        lua.RegisterScriptTypes(lua);
        L = lua.state;
    }
    void TearDown() override { lua.Shutdown(); }

    // Runs a chunk in the globals; returns its error text, or "" when it succeeded.
    std::string Run(const char* chunk)
    {
        const int top = lua_gettop(L);
        std::string error;
        if (luaL_dostring(L, chunk) != LUA_OK)
        {
            error = lua_tostring(L, -1);
        }
        lua_settop(L, top);
        return error;
    }

    // Evaluates an expression to a string through tostring.
    std::string Eval(const std::string& expression)
    {
        const int top = lua_gettop(L);
        std::string result;
        if (luaL_dostring(L, ("return tostring(" + expression + ")").c_str()) == LUA_OK)
        {
            result = lua_tostring(L, -1);
        }
        else
        {
            result = std::string("error: ") + lua_tostring(L, -1);
        }
        lua_settop(L, top);
        return result;
    }

    Lua::LuaSystem lua;
    lua_State* L = nullptr;
};

TEST_F(LuaSystem, AllTenLibrariesAndTheEnginesGlobalsAreThere)
{
    for (const char* name :
         {"_G", "package", "coroutine", "table", "io", "os", "string", "math", "utf8", "debug"})
    {
        EXPECT_EQ(Eval("type(" + std::string(name) + ")"), "table") << name;
    }
    EXPECT_EQ(Eval("type(dofile) .. type(require) .. type(print)"), "functionfunctionfunction");
    EXPECT_EQ(Eval("__registry == debug.getregistry()"), "true");
    EXPECT_EQ(Eval("getmetatable(__registry.EnvMeta) == nil and __registry.EnvMeta.__index == _G"), "true");
    EXPECT_EQ(Eval("__registry.EnvMeta.__name"), "EnvMeta");
}

TEST_F(LuaSystem, PrintWritesStandardOutputAndNotTheLog)
{
    LogCapture capture;
    testing::internal::CaptureStdout();
    EXPECT_EQ(Run("print('x', 1, 2.5, nil)"), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "x\t1\t2.5\tnil\n");
    EXPECT_TRUE(capture.Entries().empty());
}

TEST_F(LuaSystem, MathRandomDrawsFromTheEnginesGenerator)
{
    EXPECT_EQ(Run("math.randomseed(4242)"), "");
    Core::SeedRand(4242);
    Core::Rand();
    const double first = Core::Rand() / 32768.0;
    const int32_t second = Core::Rand();
    const int32_t third = Core::Rand();
    Core::SeedRand(4242);
    EXPECT_EQ(Run("math.randomseed(4242)"), "");
    lua_getglobal(L, "math");
    lua_getfield(L, -1, "random");
    lua_call(L, 0, 1);
    EXPECT_EQ(lua_tonumber(L, -1), first);
    lua_pop(L, 2);
    EXPECT_EQ(Eval("math.random(10)"), std::to_string(static_cast<int64_t>(second / 32768.0 * 10.0) + 1));
    EXPECT_EQ(Eval("math.random(-5, 5)"), std::to_string(static_cast<int64_t>(third / 32768.0 * 11.0) - 5));
}

TEST_F(LuaSystem, MathRandomKeepsLuasRulesAndSeedsSafely)
{
    EXPECT_EQ(Eval("math.random(2, 1)"), "error: [string \"return tostring(math.random(2, 1))\"]:1: "
                                         "bad argument #1 to 'random' (interval is empty)");
    EXPECT_EQ(Eval("math.random(1, 2, 3)"),
              "error: [string \"return tostring(math.random(1, 2, 3))\"]:1: wrong number of arguments");
    EXPECT_NE(Eval("math.random(math.mininteger, math.maxinteger)").find("interval too large"),
              std::string::npos);
    EXPECT_NE(Eval("math.random(1.5)").find("number has no integer representation"), std::string::npos);
    EXPECT_EQ(Eval("math.random(3, 3)"), "3");
    // Seeds without an integer value act as 0; a large one keeps its low 32 bits.
    for (const char* seed : {"0/0", "math.huge", "-math.huge", "2^63", "0"})
    {
        Run((std::string("math.randomseed(") + seed + ")").c_str());
        const std::string drawn = Eval("math.random(1000000)");
        Run("math.randomseed(0)");
        EXPECT_EQ(drawn, Eval("math.random(1000000)")) << seed;
    }
    Run("math.randomseed(4294967296 + 7.9)");
    const std::string wrapped = Eval("math.random(1000000)");
    Run("math.randomseed(7)");
    EXPECT_EQ(wrapped, Eval("math.random(1000000)"));
}

TEST_F(LuaSystem, TheReadOnlyEnvironmentReadsGlobalsAndRefusesNewOnesAndIsMadeOnce)
{
    Lua::PushReadOnlyEnvironment(L);
    const void* first = lua_topointer(L, -1);
    ASSERT_EQ(luaL_loadstring(L, "x = math.pi"), LUA_OK);
    lua_pushvalue(L, -2);
    lua_setupvalue(L, -2, 1);
    ASSERT_NE(lua_pcall(L, 0, 0, 0), LUA_OK);
    EXPECT_STREQ(lua_tostring(L, -1), "Making global variables in serialisation is not allowed");
    lua_pop(L, 2);
    EXPECT_EQ(Eval("x"), "nil");

    Lua::PushReadOnlyEnvironment(L);
    EXPECT_EQ(lua_topointer(L, -1), first);
    lua_getfield(L, -1, "math");
    EXPECT_TRUE(lua_istable(L, -1));
    lua_pop(L, 2);
    EXPECT_EQ(Eval("__registry.ReadOnlyTableMeta.__index == _G"), "true");
}

TEST_F(LuaSystem, TheTracebackHandlerGivesTextAndStackInOneString)
{
    lua_pushcfunction(L, Lua::TracebackHandler);
    ASSERT_EQ(luaL_loadstring(L, "local function inner() error('deep trouble') end inner()"), LUA_OK);
    ASSERT_EQ(lua_pcall(L, 0, 0, -2), LUA_ERRRUN);
    const std::string text = lua_tostring(L, -1);
    EXPECT_TRUE(text.starts_with("[string \"local function inner()")) << text;
    EXPECT_NE(text.find("deep trouble\nstack traceback:\n"), std::string::npos) << text;
    EXPECT_NE(text.find("in local 'inner'"), std::string::npos) << text;
    lua_pop(L, 2);

    lua_pushcfunction(L, Lua::TracebackHandler);
    ASSERT_EQ(luaL_loadstring(L, "error({})"), LUA_OK);
    ASSERT_EQ(lua_pcall(L, 0, 0, -2), LUA_ERRRUN);
    EXPECT_TRUE(std::string(lua_tostring(L, -1)).starts_with("table: "))
        << "non-string errors still say something";
    lua_pop(L, 2);
}

TEST_F(LuaSystem, TheAllocatorCountsLiveBytesBackToNothing)
{
    const size_t before = lua.LiveBytes();
    EXPECT_GT(before, 0u);
    Run("big = string.rep('x', 1000000)");
    EXPECT_GE(lua.LiveBytes(), before + 1000000);
    Run("big = nil collectgarbage()");
    EXPECT_LT(lua.LiveBytes(), before + 1000000);
    lua.Shutdown();
    EXPECT_EQ(lua.LiveBytes(), 0u);
    EXPECT_EQ(lua.state, nullptr);
    lua.Shutdown();
}

TEST_F(LuaSystem, StartingTwiceOrWithAnotherSystemRaises)
{
    LogCapture capture;
    EXPECT_THROW(lua.Initialise(nullptr), Debug::Exception);
    Lua::LuaSystem other;
    EXPECT_THROW(other.RegisterScriptTypes(lua), Debug::Exception);
    const std::vector<std::string> fatal = capture.Messages("LuaSystem", LogLevel::Fatal);
    ASSERT_EQ(fatal.size(), 2u);
    EXPECT_TRUE(fatal[0].starts_with("Exception: Lua system already initialised\n"));
    EXPECT_TRUE(
        fatal[1].starts_with("Exception: Tried to initialise a lua system with another lua system!\n"));
}

TEST_F(LuaSystem, AnUnprotectedErrorEndsTheGameAsAFatal)
{
    // As on the game thread: nothing catches the raise, so the process ends with the raise's code.
    EXPECT_EXIT(
        {
            Core::InstallProcessHandlers();
            std::thread(
                [this]
                {
                    lua_pushstring(L, "nobody catches this");
                    lua_error(L);
                })
                .join();
        },
        testing::ExitedWithCode(Core::kRaiseExitCode),
        "\\[LuaSystem\\] \\[Fatal\\]: Exception: nobody catches this\nstack traceback:");
}

} // namespace
