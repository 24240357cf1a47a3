// What script coroutines cost per frame: ten thousand scripts that wake every frame, a hundred thousand that
// sleep, and the memory that one running script takes. One iteration is one LuaSystem::Update of one Space.

#include "Core/Game.h"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <fstream>
#include <lua.hpp>
#include <unistd.h>
#include <vector>

namespace
{

// A game with the systems started and `count` objects running the chunk, each having run once, so every
// coroutine sits in its first wait. The working directory is a temporary folder holding the script.
class ScriptWorld
{
public:
    ScriptWorld(const char* chunk, int count) : game(nullptr, Core::GameSettings{})
    {
        char pattern[] = "/tmp/quellmar-bench-XXXXXX";
        folder = mkdtemp(pattern);
        previous = std::filesystem::current_path();
        std::filesystem::current_path(folder);
        std::ofstream("bench.lua") << chunk;
        game.StartSystems();
        for (int index = 0; index < count; ++index)
        {
            const GameObjectHandle object = game.rootSpace.CreateObject();
            const Handle script = object.Get().AddComponent(Components::Script);
            game.rootSpace.scripts.components.at(script).SetScript(game.lua.state, "bench.lua");
        }
        Step();
    }
    ~ScriptWorld()
    {
        game.LeaveLoop();
        std::filesystem::current_path(previous);
        std::filesystem::remove_all(folder);
    }
    ScriptWorld(const ScriptWorld&) = delete;
    ScriptWorld& operator=(const ScriptWorld&) = delete;

    void Step()
    {
        time += kDt;
        game.rootSpace.time += kDt;
        game.lua.Update(game, game.rootSpace, kDt, game.rootSpace.time, time);
    }

    static constexpr double kDt = 1.0 / 60.0;
    Core::Game game;
    std::filesystem::path folder;
    std::filesystem::path previous;
    double time = 0.0;
};

void ScriptWake(benchmark::State& state)
{
    ScriptWorld world("while true do wait() end", 10000);
    for (auto _ : state)
    {
        world.Step();
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
        world.Step();
    }
}
BENCHMARK(ScriptWakeLocalWait)->Unit(benchmark::kMillisecond);

void ScriptSleep(benchmark::State& state)
{
    ScriptWorld world("wait(3600)", 100000);
    for (auto _ : state)
    {
        world.Step();
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
