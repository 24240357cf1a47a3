// Bodies, contacts, handlers and rays through levels and scripts; the save file across runs.

#include "Harness.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

// Two circles of radius 0.5 close at 4 units a second from 2 apart; the handler of the first contact
// sees both objects and the point between them.
TEST(PhysicsAndSave, BodiesMeetAndHandlersRunWithBothObjectsAndThePoint)
{
    RunOptions options;
    options.dataFolder = "physics";
    options.arguments = {"-multithreaded", "n"};
    const RunResult result = RunEngine(options);
    ASSERT_EQ(result.exitCode, 0) << result.errors;
    const std::vector<std::string> printed = PrintedLines(result.output);
    EXPECT_EQ(printed, (std::vector<std::string>{"ray\t2\tLeft\tRight\ttrue", "group\t2\t0",
                                                 "hit\tLeft\tRight\ttrue\t0.0\ttrue\ttrue"}));
    EXPECT_EQ(result.errors, "");
}

TEST(PhysicsAndSave, TheSaveFileCarriesDataToTheNextRunAndIsReplacedWhole)
{
    const fs::path directory = fs::temp_directory_path() / ("quellmar-save-" + std::to_string(getpid()));
    fs::remove_all(directory);
    fs::create_directories(directory);
    RunOptions options;
    options.dataFolder = "save";
    options.directory = directory;
    const RunResult first = RunEngine(options);
    const RunResult second = RunEngine(options);
    const fs::path save = directory / "xdg/Velmora/Quellmar/Save.lua";
    const std::string content = ReadFile(save);
    fs::remove_all(directory);

    ASSERT_EQ(first.exitCode, 0) << first.errors;
    ASSERT_EQ(second.exitCode, 0) << second.errors;
    EXPECT_EQ(PrintedLines(first.output),
              (std::vector<std::string>{"runs before\tnil\tbest\tnil", "cycle refused\ttrue\tnil"}));
    EXPECT_EQ(PrintedLines(second.output),
              (std::vector<std::string>{"runs before\t1\tbest\t10", "cycle refused\ttrue\tnil"}));
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
