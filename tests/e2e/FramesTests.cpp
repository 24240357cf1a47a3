// Requests that take effect at the next frame: level loads and their failures, reloads, priorities,
// timescale and pause, destroyed spaces and the handles into them, and quitting.

#include "Harness.h"

#include <gtest/gtest.h>

namespace
{

const std::vector<std::string> kPrinted = {
    "start level runs",
    "child made\t0",
    "child level runs\t1",
    "worker starts\t0",
    "worker\t0",
    "after one frame\t1\tWorker",
    "scheduled\t1",
    "worker\t0",
    "syntax error keeps the old level\t1",
    "good level runs",
    "Levels/Raises.lvl\t0",
    "good level runs",
    "Levels/String.lvl\t0",
    "good level runs",
    "Levels/Waits.lvl\t0",
    "reload tries the same file\t0",
    "priorities\t5\t3",
    "good level runs",
    "good level runs",
    "director\t0",
    "tick\t5\ttrue",
    "tick\t3\ttrue",
    "tick\t3\tfalse",
    "paused\t1.0",
    "tick\t3\ttrue",
    "destroy waits for the frame\t3",
    "false\tScripts/Director.lua:50: Space was NULL!",
    "false\tScripts/Director.lua:50: Space was NULL!",
    "false\tScripts/Director.lua:51: bad argument #1 to '__index' (GameObject or space is null)",
    "false\tScripts/Director.lua:51: Transform handle has no space",
    "false\tScripts/Director.lua:52: calling 'GetChildren' on bad self (GameObject or space is null)",
    "children\t0",
    "quit lets the script go on",
};

// Each failed load logs the reason, then the loop adds the name; a load that raised has a traceback too.
const std::vector<std::string> kLoadFailures = {
    "Failed to load archetype/level file \"Levels/Missing.arch\": cannot open Levels/Missing.arch: No such "
    "file or directory",
    "Failed to load level \"Levels/Child.lvl\": Failed to load archetype: Levels/Missing.arch",
    "Failed to load level: Levels/Child.lvl",
    "Failed to load archetype/level file \"Levels/Syntax.lvl\": Levels/Syntax.lvl:2: unexpected symbol near "
    "<eof>",
    "Failed to load level: Levels/Syntax.lvl",
    "Failed to load level \"Levels/Raises.lvl\": Levels/Raises.lvl:1: level raises",
    "Failed to load level: Levels/Raises.lvl",
    "Failed to load level \"Levels/String.lvl\": level table expected, got string",
    "Failed to load level: Levels/String.lvl",
    "Failed to load level \"Levels/Waits.lvl\": attempt to yield from outside a coroutine",
    "Failed to load level: Levels/Waits.lvl",
    "Failed to load level \"Levels/Waits.lvl\": attempt to yield from outside a coroutine",
    "Failed to load level: Levels/Waits.lvl",
};

// The quit folder: the late Space has the lowest priority, yet still updates in the frame in which Quit was
// called. The relevel folder: a quit during the load step ends the frame before any system updates, so the
// third script never runs.
TEST(Frames, RequestsTakeEffectAtTheNextFrameInBothThreadModes)
{
    struct Row
    {
        const char* folder;
        std::vector<std::string> printed;
        std::vector<std::string> loadFailures;
    };
    const Row rows[] = {
        {"frames", kPrinted, kLoadFailures},
        {"quit", {"quit asked\ttrue", "the caller goes on\tDoomed", "late space updates in frame 1"}, {}},
        {"relevel",
         {"load 1", "script of load 1 sees 1 object", "load 2", "script of load 2 sees 1 object", "load 3"},
         {}},
    };
    for (const Row& row : rows)
    {
        for (const char* threads : {"y", "n"})
        {
            SCOPED_TRACE(std::string(row.folder) + " multithreaded " + threads);
            RunOptions options;
            options.dataFolder = row.folder;
            options.arguments = {"-multithreaded", threads};
            const RunResult result = RunEngine(options);
            EXPECT_EQ(result.exitCode, 0) << result.errors;
            EXPECT_EQ(PrintedLines(result.output), row.printed);
            EXPECT_EQ(LogMessages(result.errors, "Space", "Error"), row.loadFailures);
            EXPECT_TRUE(!row.loadFailures.empty() || result.errors.empty()) << result.errors;
            EXPECT_TRUE(EndsWithShutdown(result.output));
        }
    }
}

} // namespace
