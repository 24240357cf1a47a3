// What script coroutines cost per frame: ten thousand scripts that wake every frame, a hundred thousand that
// sleep, and the memory that one running script takes. One iteration is one LuaSystem::Update of one Space.

#include "BenchGame.h"

#include <benchmark/benchmark.h>
#include <lua.hpp>
#include <vector>

namespace
{

// A game with `count` objects running the chunk, each having run once, so that every coroutine sits in its
// first wait.
class ScriptWorld : public BenchGame
{
public:
    ScriptWorld(const char* chunk, int count) : BenchGame(BenchFiles{{"bench.lua", chunk}})
    {
        for (int index = 0; index < count; ++index)
        {
            AttachScript("bench.lua");
        }
        UpdateScripts();
    }
};

void ScriptWake(benchmark::State& state)
{
    ScriptWorld world("while true do wait() end", 10000);
    for (auto _ : state)
    {
        world.UpdateScripts();
    }
}
BENCHMARK(ScriptWake)->Unit(benchmark::kMillisecond);
// ScriptWake without the global lookup of `wait` in each script's own environment table: what that lookup,
// a cache miss or two per script, costs.
void ScriptWakeLocalWait(benchmark::State& state)
{
    ScriptWorld world("local wait = wait while true do wait() end", 10000);
    for (auto _ : state)
    {
        world.UpdateScripts();
    }
}
BENCHMARK(ScriptWakeLocalWait)->Unit(benchmark::kMillisecond);

void ScriptSleep(benchmark::State& state)
{
    ScriptWorld world("wait(3600)", 100000);
    for (auto _ : state)
    {
        world.UpdateScripts();
    }
}
BENCHMARK(ScriptSleep)->Unit(benchmark::kMillisecond);

// The floor under ScriptWake: Lua alone resuming ten thousand threads that yield at once, with no engine
// around them. Each thread runs a closure of its own, as each script does; `fresh` gives each its own
// compiled chunk too, as loading a script file for each object does, instead of one shared prototype.
void LuaResumeFloor(benchmark::State& state)
{
    constexpr int kThreads = 10000;
    const bool fresh = state.range(0) != 0;
    lua_State* L = luaL_newstate();
    luaL_openlibs(L);
    std::vector<lua_State*> threads;
    luaL_loadstring(L, "return function() return function() while true do coroutine.yield() end end end");
    lua_call(L, 0, 1);
    const int factory = lua_gettop(L);
    for (int index = 0; index < kThreads; ++index)
    {
        lua_State* thread = lua_newthread(L);
        luaL_ref(L, LUA_REGISTRYINDEX);
        threads.push_back(thread);
        if (fresh)
        {
            luaL_loadstring(L, "while true do coroutine.yield() end");
        }
        else
        {
            lua_pushvalue(L, factory);
            lua_call(L, 0, 1);
        }
        lua_xmove(L, thread, 1);
        lua_resume(thread, L, 0);
        lua_settop(thread, 0);
    }
    for (auto _ : state)
    {
        for (lua_State* thread : threads)
        {
            lua_resume(thread, L, 0);
            lua_settop(thread, 0);
        }
    }
    lua_close(L);
}
BENCHMARK(LuaResumeFloor)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// The Lua state's growth per script, as its allocation function counts it, plus the C++ sizes: the
// component, its coroutine record and the sleeper entry that files it in its cohort.
void BytesPerScript(benchmark::State& state)
{
    constexpr int kScripts = 10000;
    constexpr size_t kSleeperEntry = sizeof(double) + sizeof(Handle);
    for (auto _ : state)
    {
        Core::Game probe(nullptr, Core::GameSettings{});
        probe.StartSystems();
        const size_t luaBefore = probe.lua.LiveBytes();
        probe.LeaveLoop();
        ScriptWorld world("while true do wait(1) end", kScripts);
        const double lua = static_cast<double>(world.game.lua.LiveBytes() - luaBefore) / kScripts;
        const double cpp = sizeof(Components::ScriptComponent) + sizeof(Lua::CoroutineRecord) + kSleeperEntry;
        state.counters["LuaBytesPerScript"] = lua;
        state.counters["CppBytesPerScript"] = cpp;
        state.counters["BytesPerScript"] = lua + cpp;
    }
}
BENCHMARK(BytesPerScript)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
