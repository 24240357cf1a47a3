#include "Core/Process.h"
#include "Core/Random.h"
#include "Debug/Exception.h"
#include "Lua/Environments.h"
#include "Support/ScriptScenario.h"

#include <lua.hpp>
#include <thread>

namespace
{

using LuaSystem = ScriptScenario;

TEST_F(LuaSystem, AllTenLibrariesTheEnginesGlobalsAndAPrintThatBypassesTheLog)
{
    for (const char* name :
         {"_G", "package", "coroutine", "table", "io", "os", "string", "math", "utf8", "debug"})
    {
        EXPECT_EQ(Outcome("return type(" + std::string(name) + ")"), "table") << name;
    }
    EXPECT_EQ(Outcome("return type(dofile) .. type(require) .. type(print)"), "functionfunctionfunction");
    EXPECT_EQ(Outcome("return __registry == debug.getregistry()"), "true");
    EXPECT_EQ(Outcome("return getmetatable(__registry.EnvMeta) == nil and __registry.EnvMeta.__index == _G"),
              "true");
    EXPECT_EQ(Outcome("return __registry.EnvMeta.__name"), "EnvMeta");
    const size_t logged = log.Entries().size();
    testing::internal::CaptureStdout();
    EXPECT_EQ(Run("print('x', 1, 2.5, nil)"), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "x\t1\t2.5\tnil\n");
    EXPECT_EQ(log.Entries().size(), logged) << "print writes standard output and not the log";
}

TEST_F(LuaSystem, MathRandomDrawsFromTheEnginesGeneratorUnderLuasRules)
{
    Core::SeedRand(4242);
    Core::Rand();
    const double first = Core::Rand() / 32768.0;
    const int32_t second = Core::Rand();
    const int32_t third = Core::Rand();
    EXPECT_EQ(Run("math.randomseed(4242) first = math.random()"), "");
    lua_getglobal(L(), "first");
    EXPECT_EQ(lua_tonumber(L(), -1), first);
    lua_pop(L(), 1);
    EXPECT_EQ(Outcome("return math.random(10)"),
              std::to_string(static_cast<int64_t>(second / 32768.0 * 10.0) + 1));
    EXPECT_EQ(Outcome("return math.random(-5, 5)"),
              std::to_string(static_cast<int64_t>(third / 32768.0 * 11.0) - 5));

    EXPECT_EQ(Outcome("return math.random(2, 1)"), "bad argument #1 to 'random' (interval is empty)");
    EXPECT_EQ(Outcome("return math.random(1, 2, 3)"), "wrong number of arguments");
    EXPECT_NE(Outcome("return math.random(math.mininteger, math.maxinteger)").find("interval too large"),
              std::string::npos);
    EXPECT_NE(Outcome("return math.random(1.5)").find("number has no integer representation"),
              std::string::npos);
    EXPECT_EQ(Outcome("return math.random(3, 3)"), "3");
    // Seeds without an integer value act as 0; a large one keeps its low 32 bits.
    for (const auto& [seed, same] : std::vector<std::pair<std::string, std::string>>{
             {"0/0", "0"}, {"math.huge", "0"}, {"-math.huge", "0"}, {"2^63", "0"}, {"4294967296 + 7.9", "7"}})
    {
        const auto draw = [this](const std::string& with)
        { return Outcome("math.randomseed(" + with + ") return math.random(1000000)"); };
        EXPECT_EQ(draw(seed), draw(same)) << seed;
    }
}

TEST_F(LuaSystem, TheTracebackHandlerGivesTextAndStackInOneString)
{
    const auto traceback = [this](const char* chunk)
    {
        lua_pushcfunction(L(), Lua::TracebackHandler);
        EXPECT_EQ(luaL_loadstring(L(), chunk), LUA_OK);
        EXPECT_EQ(lua_pcall(L(), 0, 0, -2), LUA_ERRRUN);
        const std::string text = lua_tostring(L(), -1);
        lua_pop(L(), 2);
        return text;
    };
    const std::string text = traceback("local function inner() error('deep trouble') end inner()");
    EXPECT_TRUE(text.starts_with("[string \"local function inner()")) << text;
    EXPECT_NE(text.find("deep trouble\nstack traceback:\n"), std::string::npos) << text;
    EXPECT_NE(text.find("in local 'inner'"), std::string::npos) << text;
    EXPECT_TRUE(traceback("error({})").starts_with("table: ")) << "non-string errors still say something";
}

TEST_F(LuaSystem, TheAllocatorCountsLiveBytesBackToNothingAndASecondStartRaises)
{
    Lua::LuaSystem lua;
    ASSERT_TRUE(lua.Initialise(nullptr));
    const size_t before = lua.LiveBytes();
    EXPECT_GT(before, 0u);
    luaL_dostring(lua.state, "big = string.rep('x', 1000000)");
    EXPECT_GE(lua.LiveBytes(), before + 1000000);
    luaL_dostring(lua.state, "big = nil collectgarbage()");
    EXPECT_LT(lua.LiveBytes(), before + 1000000);
    EXPECT_THROW(lua.Initialise(nullptr), Debug::Exception);
    EXPECT_THROW(lua.RegisterScriptTypes(game.lua), Debug::Exception);
    lua.Shutdown();
    EXPECT_EQ(lua.LiveBytes(), 0u);
    EXPECT_EQ(lua.state, nullptr);
    lua.Shutdown();
    const std::vector<std::string> fatal = log.Messages("LuaSystem", LogLevel::Fatal);
    ASSERT_EQ(fatal.size(), 2u);
    EXPECT_TRUE(fatal[0].starts_with("Exception: Lua system already initialised\n"));
    EXPECT_TRUE(
        fatal[1].starts_with("Exception: Tried to initialise a lua system with another lua system!\n"));
}

// As on the game thread: nothing catches the raise, so the process ends with the raise's code. Apart from
// the game, whose threads make a fork unsafe.
TEST(LuaSystemDeathTest, AnUnprotectedErrorEndsTheGameAsAFatal)
{
    Lua::LuaSystem lua;
    ASSERT_TRUE(lua.Initialise(nullptr));
    EXPECT_EXIT(
        {
            Core::InstallProcessHandlers();
            std::thread(
                [&lua]
                {
                    lua_pushstring(lua.state, "nobody catches this");
                    lua_error(lua.state);
                })
                .join();
        },
        testing::ExitedWithCode(Core::kRaiseExitCode),
        "\\[LuaSystem\\] \\[Fatal\\]: Exception: nobody catches this\nstack traceback:");
    lua.Shutdown();
}

} // namespace
