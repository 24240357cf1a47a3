// What levels and the object API cost: loading a level of ten thousand objects, finding an object by name,
// and ten thousand scripts that move their transforms every frame.

#include "AllocationCounter.h"
#include "BenchGame.h"

#include <benchmark/benchmark.h>
#include <lua.hpp>
#include <sstream>

namespace
{

constexpr int kLevelObjects = 10000;

// 100 parents with 10 children each, and 8,900 more: one in ten from an archetype with an override, one in
// ten with a script and its variables, every one named and placed.
std::string BigLevel()
{
    std::ostringstream level;
    level << "return {\n";
    for (int parent = 0; parent < 100; ++parent)
    {
        level << "{ Name = 'Parent" << parent << "', Transform = { Position = { " << parent
              << ", 0 } }, Children = {";
        for (int child = 0; child < 10; ++child)
        {
            level << "{ Name = 'Child', Transform = { Position = { " << child << ", 1 } } },";
        }
        level << "} },\n";
    }
    for (int index = 0; index < kLevelObjects - 1100; ++index)
    {
        if (index % 10 == 0)
        {
            level << "{ 'Rock.arch', Override = { Name = 'Rock" << index << "', Transform = { Position = { "
                  << index << ", 2 } } } },\n";
        }
        else if (index % 10 == 1)
        {
            level << "{ Name = 'Runner" << index << "', Transform = { Position = { " << index
                  << ", 3 } }, Script = { Source = 'idle.lua', Variables = { speed = " << index
                  << " } } },\n";
        }
        else
        {
            level << "{ Name = 'Object" << index << "', Transform = { Position = { " << index
                  << ", 4 }, Rotation = 1 } },\n";
        }
    }
    level << "}\n";
    return level.str();
}

void LevelLoad(benchmark::State& state)
{
    BenchGame bench(BenchFiles{{"Big.lvl", BigLevel()},
                               {"Rock.arch", "return { Name = 'Rock', Transform = { Scale = { 2, 2 } } }"},
                               {"idle.lua", "while true do wait(1) end"}});
    Space& space = bench.game.rootSpace;
    const size_t luaBefore = bench.game.lua.LiveBytes();
    const uint64_t cppBefore = AllocatedBytes();
    for (auto _ : state)
    {
        space.ScheduleLevel("Big.lvl");
        if (!space.LoadLevel(bench.game))
        {
            state.SkipWithError("the level failed to load");
            return;
        }
    }
    // What stays alive, not what the loads left for the collector.
    lua_gc(bench.game.lua.state, LUA_GCCOLLECT, 0);
    state.counters["Objects"] = static_cast<double>(space.objects.size());
    state.counters["LuaBytesPerObject"] =
        static_cast<double>(bench.game.lua.LiveBytes() - luaBefore) / kLevelObjects;
    state.counters["CppBytesAllocatedPerObjectPerLoad"] = static_cast<double>(AllocatedBytes() - cppBefore) /
                                                          kLevelObjects /
                                                          static_cast<double>(state.iterations());
}
BENCHMARK(LevelLoad)->Unit(benchmark::kMillisecond)->Iterations(5);

// ns per lookup by the script function, of the last object and of a name that no object has.
void FindFirstObject(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    const bool miss = state.range(1) != 0;
    BenchGame bench(BenchFiles{});
    Space& space = bench.game.rootSpace;
    for (int index = 0; index < count; ++index)
    {
        space.objects.at(space.CreateObject().handle).name = "Object" + std::to_string(index);
    }
    lua_State* L = bench.game.lua.state;
    const std::string name = miss ? "Nobody" : "Object" + std::to_string(count - 1);
    luaL_dostring(L, "return function(space, name) return space:FindFirstObject(name) end");
    for (auto _ : state)
    {
        lua_pushvalue(L, -1);
        lua_getglobal(L, "MainSpace");
        lua_pushstring(L, name.c_str());
        lua_call(L, 2, 1);
        benchmark::DoNotOptimize(lua_touserdata(L, -1));
        lua_pop(L, 1);
    }
    lua_pop(L, 1);
}
BENCHMARK(FindFirstObject)->Args({1000, 0})->Args({1000, 1})->Args({10000, 0})->Args({10000, 1});

void ScriptsMoveTransforms(benchmark::State& state)
{
    BenchGame bench(BenchFiles{{"move.lua", "local t = GameObject.Transform\n"
                                            "while true do\n"
                                            "  local x, y = t:GetPosition()\n"
                                            "  t:SetPosition(x + 0.1, y - 0.1)\n"
                                            "  t:SetRotation(t:GetRotation() + 0.01)\n"
                                            "  wait()\n"
                                            "end\n"}});
    for (int index = 0; index < kLevelObjects; ++index)
    {
        const GameObjectHandle object = bench.game.rootSpace.CreateObject();
        object.Get().AddComponent(Components::Transform);
        bench.AttachScript(object, "move.lua");
    }
    for (auto _ : state)
    {
        bench.UpdateScripts();
    }
}
BENCHMARK(ScriptsMoveTransforms)->Unit(benchmark::kMillisecond);

} // namespace
