// What engine calls cost at the bottom of a full Lua stack: half a million nested calls, each with a call
// record of its own, which Lua walks whole when a protected call fails down there, when a traceback is
// written there and when the stack is reallocated. Run on the state's pool and on realloc.

#include "BenchGame.h"
#include "Debug/Logger.h"

#include <benchmark/benchmark.h>
#include <iterator>
#include <lua.hpp>
#include <string_view>

namespace
{

constexpr int kRounds = 20;

// A dive that can't be a tail call recurses until the stack overflows, which tells how deep it goes:
// about half a million levels of two slots each. Then each round descends again, to 20 to 23 levels short
// of that, in turn: room for pcall and for an engine function to start, not always for what the function
// then calls. There it creates an object with two children, looks it up, writes the save file and spawns
// a coroutine, each in pcall, and unwinds. So calls fail as they start, or succeed while their children
// fail and are logged with a traceback of the whole stack, or succeed outright; all are counted.
constexpr const char* kDeepScript = R"lua(
local counts = DeepStackCounts
local depth = 0
local last = 0
local function dive(n)
    depth = n
    return dive(n + 1) + 0
end
local function tally(ok, succeeded, failed)
    if ok then
        counts[succeeded] = counts[succeeded] + 1
    else
        counts[failed] = counts[failed] + 1
    end
end
local function save(value)
    os.SaveFile.deepStack = value
end
local function nothing()
end
local function bottom()
    tally(pcall(Space.CreateObject, Space, { Name = 'Deep', Transform = { Position = { 1, 2 } },
        Children = { { Name = 'DeepChild' }, { Name = 'DeepChild' } } }), 'createOk', 'createFailed')
    tally(pcall(Space.FindFirstObject, Space, 'Deep'), 'findOk', 'findFailed')
    tally(pcall(save, last), 'saveOk', 'saveFailed')
    tally(pcall(Spawn, nothing), 'spawnOk', 'spawnFailed')
    return 0
end
local function descend(n)
    if n == last then
        return bottom()
    end
    return descend(n + 1) + 0
end
local overflowed, message = pcall(dive, 1)
if not overflowed and tostring(message):find('stack overflow', 1, true) then
    counts.deepest = depth
end
while true do
    for round = 1, DeepStackRounds do
        last = depth - 20 - round % 4
        if not pcall(descend, 1) then
            counts.roundsLost = counts.roundsLost + 1
        end
    end
    wait()
end
)lua";

constexpr const char* kCountNames[] = {"deepest", "roundsLost", "createOk", "createFailed",
                                       "findOk",  "findFailed", "saveOk",   "saveFailed",
                                       "spawnOk", "spawnFailed"};

int errorLines = 0;

// Failures log Error lines, those of the children with a traceback of the whole stack: counted, not printed
// among the report's lines.
void CountErrors(std::string_view, LogLevel level, std::string_view)
{
    errorLines += level == LogLevel::Error ? 1 : 0;
}

double Count(lua_State* L, const char* name)
{
    lua_getglobal(L, "DeepStackCounts");
    lua_getfield(L, -1, name);
    const double count = lua_tonumber(L, -1);
    lua_pop(L, 2);
    return count;
}

// One iteration is one script update, in which the script runs kRounds rounds; the first also finds the
// depth. Argument 0 runs the state on realloc, 1 on its pool. On realloc the twenty rounds take seconds, so
// every repetition is one iteration of a fresh game, the overflow that finds the depth included.
//
// The stack itself, 16 MiB at the bottom, is a block for realloc either way. The C library maps a block that
// large, with fresh pages as it grows, unless the process has already freed a mapped block as large, which
// raises its threshold: so a run that follows another in the same process can find the stack cheaper than
// a run in a process of its own.
void DeepStackEngineCalls(benchmark::State& state)
{
    const LuaBlocks blocks = state.range(0) != 0 ? LuaBlocks::Pooled : LuaBlocks::Realloc;
    BenchGame bench(BenchFiles{{"deep.lua", kDeepScript}}, false, blocks);
    lua_State* L = bench.game.lua.state;
    lua_createtable(L, 0, static_cast<int>(std::size(kCountNames)));
    for (const char* name : kCountNames)
    {
        lua_pushinteger(L, 0);
        lua_setfield(L, -2, name);
    }
    lua_setglobal(L, "DeepStackCounts");
    lua_pushinteger(L, kRounds);
    lua_setglobal(L, "DeepStackRounds");
    bench.AttachScript("deep.lua");
    // Saving logs a line a round, and the failures their tracebacks.
    Logger::Detach(StandardOutputSink);
    Logger::Detach(StandardErrorSink);
    Logger::Attach(StandardErrorSink, static_cast<int32_t>(LogLevel::Fatal));
    Logger::Attach(CountErrors, static_cast<int32_t>(LogLevel::Error));
    errorLines = 0;
    for (auto _ : state)
    {
        bench.UpdateScripts();
    }
    Logger::Detach(CountErrors);
    Logger::Detach(StandardErrorSink);
    Logger::Attach(StandardOutputSink, 7);
    Logger::Attach(StandardErrorSink, 24);
    const auto perIteration = [](double count)
    { return benchmark::Counter(count, benchmark::Counter::kAvgIterations); };
    const double succeeded =
        Count(L, "createOk") + Count(L, "findOk") + Count(L, "saveOk") + Count(L, "spawnOk");
    const double failed =
        Count(L, "createFailed") + Count(L, "findFailed") + Count(L, "saveFailed") + Count(L, "spawnFailed");
    state.counters["Deepest"] = Count(L, "deepest");
    state.counters["RoundsLost"] = perIteration(Count(L, "roundsLost"));
    state.counters["CallsOk"] = perIteration(succeeded);
    state.counters["CallsFailed"] = perIteration(failed);
    state.counters["CreateOk"] = perIteration(Count(L, "createOk"));
    state.counters["FindOk"] = perIteration(Count(L, "findOk"));
    state.counters["SaveOk"] = perIteration(Count(L, "saveOk"));
    state.counters["SpawnOk"] = perIteration(Count(L, "spawnOk"));
    state.counters["ErrorLines"] = perIteration(errorLines);
}
BENCHMARK(DeepStackEngineCalls)->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
