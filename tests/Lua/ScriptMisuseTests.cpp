#include "FileSystem/Paths.h"
#include "Support/FuzzBitmap.h"
#include "Support/ScriptMisuse.h"
#include "Support/ScriptScenario.h"

#include <filesystem>
#include <lua.hpp>
#include <random>

namespace
{

// The calls save values that don't load back, such as handles: the save goes with the test, so that later
// tests of the process start without one.
class HostileScripts : public ScriptScenario
{
protected:
    void TearDown() override
    {
        ScriptScenario::TearDown();
        if (const std::string* save = FileSystem::GetSavePath())
        {
            std::filesystem::remove(*save);
        }
    }
};

// Thousands of seeded hostile calls on the whole script surface, frames between them: every call comes back
// through its pcall, the main stack stays where it was, and the sanitizers of the debug build watch memory.
TEST_F(HostileScripts, HostileCallsOnTheScriptSurfaceLeaveTheEngineRunningAndTheStackBalanced)
{
    std::mt19937 random(20261123);
    // The calls log thousands of errors; the capture keeps them and the console stays readable.
    SilenceStandardSinks();
    {
        ScriptMisuse misuse(game, [&random](uint32_t count)
                            { return std::uniform_int_distribution<uint32_t>(0, count - 1)(random); });
        for (int step = 0; step < 50000; ++step)
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
    EXPECT_EQ(lua_gettop(L()), 0);
}

} // namespace
