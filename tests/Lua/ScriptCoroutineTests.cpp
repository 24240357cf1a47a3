#include "Support/ScriptScenario.h"

#include <lua.hpp>

namespace
{

using Scripts = ScriptScenario;

TEST_F(Scripts, WaitReturnsElapsedSpaceTimeAndAbsoluteTimeAsSumsOfTheFrames)
{
    Write("w.lua", "print('first', ...)\n"
                   "local e, s, a = wait(0.25)\n"
                   "print(string.format('%.17g %.17g %.17g', e, s, a))\n");
    Write("string.lua", "wait('0.35') print('a numeric string sleeps') wait({})\n");
    Attach("w.lua");
    Attach("string.lua");
    EXPECT_EQ(Frame(0.1), "first\n") << "the chunk gets no arguments";
    EXPECT_EQ(Frame(0.1), "");
    EXPECT_EQ(Frame(0.1), "");
    // Slept at 0.1: three dts of 0.1 summed from 0.0 reach 0.30000000000000004, the first sum past 0.25.
    EXPECT_EQ(Frame(0.1), "0.30000000000000004 0.40000000000000002 0.40000000000000002\n");
    EXPECT_TRUE(Errors().empty());
    EXPECT_EQ(Frame(0.1), "a numeric string sleeps\n");
    EXPECT_EQ(ErrorHeads(), std::vector<std::string>{"Lua error in component coroutine: string.lua:1: bad "
                                                     "argument #1 to 'wait' (number expected, got table)"});
}

TEST_F(Scripts, ShortWaitsWakeAtTheNextUpdateAndEqualTimesWake)
{
    Write("w.lua", "for _, t in ipairs({1/60, 0, -1}) do Spawn(function() wait(t) print(t) end) end\n"
                   "Spawn(function() wait() print('none') end)\n"
                   "Spawn(function() wait(nil) print('nil') end)\n"
                   "Spawn(function() wait(0/0) print('nan') wait(0/0) print('nan again') end)\n"
                   "Spawn(function() while true do wait() print('loop') end end)\n");
    Attach("w.lua");
    EXPECT_EQ(Frame(1.0 / 60.0), "");
    EXPECT_EQ(Frame(1.0 / 60.0), "0.016666666666667\n0\n-1\nnone\nnil\nnan\nloop\n");
    EXPECT_EQ(Frame(1.0 / 60.0), "nan again\nloop\n") << "at most one resume per Update";
}

TEST_F(Scripts, TimescaleStretchesSleepsAndPauseFreezesThem)
{
    Write("slow.lua", "wait(0.5) print('slow')\n");
    Write("frozen.lua",
          "Spawn(function() while true do wait(0) print('tick') end end) wait(1) print('never')\n");
    Space& slow = game.rootSpace.CreateChild();
    Space& frozen = game.rootSpace.CreateChild();
    slow.timescale = 0.5;
    frozen.timescale = 0.0;
    Attach("slow.lua", &slow);
    Attach("frozen.lua", &frozen);
    EXPECT_EQ(Frame(0.25), "");
    EXPECT_EQ(Frame(0.25), "tick\n");
    slow.paused = true;
    EXPECT_EQ(Frame(0.25), "tick\n");
    EXPECT_EQ(Frame(10.0), "tick\n") << "a paused Space's sleep stands still";
    slow.paused = false;
    EXPECT_EQ(Frame(0.25), "tick\n");
    EXPECT_EQ(Frame(0.25), "tick\n");
    // The newer child Space comes first in the loop's order.
    EXPECT_EQ(Frame(0.25), "tick\nslow\n") << "four frames of 0.125 in Space time";
}

TEST_F(Scripts, HigherPriorityRunsFirstAndEqualPrioritiesKeepTheirOrder)
{
    Write("p.lua", "while true do print(name) wait() end\n");
    std::vector<GameObjectHandle> objects;
    for (const char* name : {"a", "b", "c", "d"})
    {
        objects.push_back(Attach("p.lua"));
        Run(std::string("tmp = {name = '") + name + "'}");
        lua_getglobal(L(), "tmp");
        ScriptOf(objects.back()).SetVariables(L(), -1);
        lua_pop(L(), 1);
    }
    ScriptOf(objects[2]).SetPriority(L(), 10);
    EXPECT_EQ(Frame(0.1), "c\na\nb\nd\n");
    ScriptOf(objects[3]).SetPriority(L(), int64_t{1} << 40);
    ScriptOf(objects[0]).SetPriority(L(), -(int64_t{1} << 40));
    EXPECT_EQ(ScriptOf(objects[3]).priority, 2147483647);
    EXPECT_EQ(ScriptOf(objects[0]).priority, -2147483647 - 1);
    EXPECT_EQ(Frame(0.1), "d\nc\nb\na\n");
    objects[1].Get().Destroy();
    EXPECT_EQ(Frame(0.1), "d\nc\nb\na\n") << "a destroyed object's script runs until the sweep";
    EXPECT_EQ(Frame(0.1), "d\nc\na\n");
}

TEST_F(Scripts, APriorityChangedFromAScriptAppliesFromTheNextUpdate)
{
    Write("low.lua", "while true do print('low') wait() end\n");
    Write("high.lua", "print('high') Script:SetPriority(5) print(Script:GetPriority())\n"
                      "print(select(2, pcall(function() Script:SetPriority(1.5) end)))\n"
                      "while true do wait() print('high') end\n");
    Attach("low.lua");
    Attach("high.lua");
    EXPECT_EQ(Frame(0.1), "low\nhigh\n5\nhigh.lua:2: bad argument #1 to 'SetPriority' "
                          "(number has no integer representation)\n");
    EXPECT_EQ(Frame(0.1), "high\nlow\n");
}

TEST_F(Scripts, SpawnedCoroutinesRunInTheSamePassWithTheirArguments)
{
    Write("s.lua", "Spawn(function(a, b) print('spawned', a, b) wait() print('again') end, 1, 2)\n"
                   "print('spawner')\n"
                   "print(select(2, pcall(function() Spawn(5) end)))\n"
                   "Spawn(function() error('boom') end)\n"
                   "Spawn(function() print('sibling lives') end)\n");
    Attach("s.lua");
    EXPECT_EQ(Frame(0.1), "spawner\ns.lua:3: bad argument #1 to 'Spawn' (function expected, got number)\n"
                          "spawned\t1\t2\nsibling lives\n");
    EXPECT_EQ(Frame(0.1), "again\n");
    ASSERT_EQ(ErrorHeads().size(), 1u);
    EXPECT_EQ(ErrorHeads()[0], "Lua error in component coroutine: s.lua:4: boom");
}

TEST_F(Scripts, SpawningIntoAScriptThatAlreadyRanWaitsForTheNextPass)
{
    Write("first.lua", "_G.first = Script while true do wait() print('first') end\n");
    Write("second.lua", "wait() print('second')\n"
                        "first.Spawn(function() print('into first') end)\n"
                        "third.Spawn(function() print('into third') end)\n");
    Write("third.lua", "_G.third = Script while true do wait() print('third') end\n");
    Attach("first.lua");
    Attach("second.lua");
    Attach("third.lua");
    EXPECT_EQ(Frame(0.1), "");
    EXPECT_EQ(Frame(0.1), "first\nsecond\nthird\ninto third\n");
    EXPECT_EQ(Frame(0.1), "first\ninto first\nthird\n");
    EXPECT_TRUE(Errors().empty());
}

TEST_F(Scripts, AnEndedSleeperIsNeverResumedAndItsEntryGoes)
{
    Write("gone.lua", "wait(0.3) print('gone woke')\n");
    Write("late.lua", "wait(0.85) print('late woke')\n");
    Write("long.lua", "wait(3600) print('long woke')\n");
    const GameObjectHandle gone = Attach("gone.lua");
    EXPECT_EQ(Frame(0.1), "");
    gone.Get().Destroy();
    EXPECT_EQ(Frame(0.1), "");
    // Takes the place that the swept coroutine left, and sleeps far longer.
    Attach("late.lua");
    EXPECT_EQ(Frame(0.1), "");
    EXPECT_EQ(Frame(0.1), "") << "the ended sleeper's turn comes and must wake nobody";
    EXPECT_EQ(Frame(0.1), "");
    const Lua::ScriptSchedule& schedule = game.lua.ScheduleOf(game.rootSpace);
    EXPECT_EQ(schedule.SleeperEntries(), 1u);

    std::vector<GameObjectHandle> sleepers;
    for (int index = 0; index < 4; ++index)
    {
        sleepers.push_back(Attach("long.lua"));
    }
    EXPECT_EQ(Frame(0.1), "");
    EXPECT_EQ(schedule.SleeperEntries(), 5u);
    for (int index = 0; index < 3; ++index)
    {
        sleepers[static_cast<size_t>(index)].Get().Destroy();
    }
    EXPECT_EQ(Frame(0.1), "");
    EXPECT_EQ(Frame(0.1), "");
    EXPECT_EQ(schedule.SleeperEntries(), 2u) << "stale entries outnumbered live ones and were dropped";
    for (int frame = 0; frame < 3; ++frame)
    {
        EXPECT_EQ(Frame(0.1), "") << frame;
    }
    EXPECT_EQ(Frame(0.1), "late woke\n");
    EXPECT_EQ(schedule.SleeperEntries(), 1u);
    EXPECT_TRUE(Errors().empty());
}

} // namespace
