// The Data folder: required at start, and the run with nothing in it.

#include "Harness.h"

#include <fstream>
#include <gtest/gtest.h>
#include <stdlib.h>

namespace
{

namespace fs = std::filesystem;

constexpr int kRaiseExitCode = 3;

TEST(DataFolder, WithoutAUsableDataFolderTheRunEndsWithTheSystemsErrorNumber)
{
    RunOptions missing;
    const RunResult noFolder = RunEngine(missing);
    EXPECT_EQ(noFolder.exitCode, kRaiseExitCode) << noFolder.errors;
    EXPECT_EQ(LogMessages(noFolder.errors, "AssetManager", "Fatal"),
              std::vector<std::string>{"Exception: Failed to change working directory: (2)"});
    EXPECT_EQ(noFolder.output.find("Finished GL function Grab"), std::string::npos);

    std::string directory = (fs::temp_directory_path() / "quellmar-e2e-XXXXXX").string();
    ASSERT_NE(mkdtemp(directory.data()), nullptr);
    std::ofstream(fs::path(directory) / "Data") << "not a folder";
    RunOptions file;
    file.directory = directory;
    const RunResult notAFolder = RunEngine(file);
    fs::remove_all(directory);
    EXPECT_EQ(notAFolder.exitCode, kRaiseExitCode);
    EXPECT_EQ(LogMessages(notAFolder.errors, "AssetManager", "Fatal"),
              std::vector<std::string>{"Exception: Failed to change working directory: (20)"});
}

TEST(DataFolder, AnEmptyDataFolderFailsTheStartLevelOnceAndRunsOn)
{
    RunOptions options;
    options.dataFolder = "empty";
    options.arguments = {"-level", "Levels/Start.lvl"};
    // The failed load must not be retried: the signal comes only after many frames have run.
    options.signalAfterOutput = "Finished GL function Grab";
    options.signalDelaySeconds = 0.5;
    const RunResult result = RunEngine(options);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(
        LogMessages(result.errors, "Space", "Error"),
        (std::vector<std::string>{"Failed to load archetype/level file \"Levels/Start.lvl\": cannot open "
                                  "Levels/Start.lvl: No such file or directory",
                                  "Failed to load level: Levels/Start.lvl"}));
    EXPECT_NE(result.output.find("[Space] [Debug]: Deleting top space"), std::string::npos);
}

} // namespace
