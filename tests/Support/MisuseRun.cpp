#include "Support/MisuseRun.h"

#include "Core/Game.h"
#include "FileSystem/Paths.h"
#include "Support/FuzzBitmap.h"
#include "Support/ScriptMisuse.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <lua.hpp>
#include <random>

void ExpectHostileCallsLeaveTheEngineRunning(Core::Game& game, uint32_t seed, int steps)
{
    std::mt19937 random(seed);
    // The calls log thousands of errors; the capture keeps them and the console stays readable.
    SilenceStandardSinks();
    {
        ScriptMisuse misuse(game, [&random](uint32_t count)
                            { return std::uniform_int_distribution<uint32_t>(0, count - 1)(random); });
        for (int step = 0; step < steps; ++step)
        {
            const std::string problem = misuse.Step();
            if (!problem.empty())
            {
                ADD_FAILURE() << "step " << step << ": " << problem;
                break;
            }
        }
        // The generator reached the engine: calls both succeeded and failed, and frames ran between them.
        EXPECT_GT(misuse.Calls() - misuse.FailedCalls(), misuse.Calls() / 50);
        EXPECT_GT(misuse.FailedCalls(), misuse.Calls() / 2);
        EXPECT_GT(misuse.Frames(), 20u);
    }
    RestoreStandardSinks();
    EXPECT_EQ(lua_gettop(game.lua.state), 0);
    // The calls save values that don't load back, such as handles: the save goes with the run, so that later
    // tests of the process start without one.
    if (const std::string* save = FileSystem::GetSavePath())
    {
        std::filesystem::remove(*save);
    }
}
