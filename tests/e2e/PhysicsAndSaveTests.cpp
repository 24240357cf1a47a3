// Bodies, contacts, handlers and rays through levels and scripts, and the save file across two runs.

#include "Harness.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace
{

// Two circles of radius 0.5 close at 4 units a second from 2 apart; the handler of the first contact sees
// both objects and the point between them, and quits. The save file carries data to the next run and is
// replaced whole.
TEST(PhysicsAndSave, BodiesMeetHandlersSeeBothObjectsAndTheSaveCarriesDataToTheNextRun)
{
    RunDirectory directory;
    RunOptions options;
    options.dataFolder = "save";
    options.directory = directory.path;
    options.arguments = {"-multithreaded", "n"};
    const RunResult first = RunEngine(options);
    const RunResult second = RunEngine(options);
    const std::string content = ReadFile(directory.Save());

    for (const RunResult* result : {&first, &second})
    {
        ASSERT_EQ(result->exitCode, 0) << result->errors;
        EXPECT_EQ(result->errors, "");
    }
    const std::vector<std::string> physics = {"ray\t2\tLeft\tRight\ttrue", "group\t2\t0",
                                              "hit\tLeft\tRight\ttrue\t0.0\ttrue\ttrue"};
    std::vector<std::string> expected = {"runs before\tnil\tbest\tnil", "cycle refused\ttrue\tnil"};
    expected.insert(expected.end(), physics.begin(), physics.end());
    EXPECT_EQ(PrintedLines(first.output), expected);
    expected[0] = "runs before\t1\tbest\t10";
    EXPECT_EQ(PrintedLines(second.output), expected);
    EXPECT_EQ(LogMessages(second.output, "Lua", "Info"),
              (std::vector<std::string>{"Saving (runs)...", "Saving (best)...", "Saving (names)...",
                                        "Saving (loop)..."}));
    EXPECT_TRUE(content.starts_with("return {")) << content;
    EXPECT_TRUE(content.ends_with("}\n"));
    EXPECT_NE(content.find("[\"names\"]={[1]=\"first\",[2]=\"second \\\"quoted\\\"\\n\"}"), std::string::npos)
        << content;
    EXPECT_EQ(std::count(content.begin(), content.end(), '\n'), 1);
}

} // namespace
