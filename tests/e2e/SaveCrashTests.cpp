// The save file survives the process dying in the middle of a save and a write that runs out of room: the
// next run always finds the last complete save. A killed run may leave its temporary file beside the
// save; only Save.lua itself is checked.

#include "Harness.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>

namespace
{

namespace fs = std::filesystem;

// A run directory kept across runs, so they share the save folder.
class SaveCrash : public testing::Test
{
protected:
    RunResult Run(RunOptions options) const
    {
        options.directory = directory.path;
        options.arguments = {"-vsync", "n"};
        return RunEngine(options);
    }

    // The save file's Warnings stand under [Lua]; the Game's own about the missing window doesn't count.
    static std::vector<std::string> Warnings(const RunResult& result)
    {
        return LogMessages(result.output, "Lua", "Warning");
    }

    RunDirectory directory;
    const fs::path save = directory.Save();
    const fs::path saveFolder = save.parent_path();
};

// Each run reports what it loaded, then saves every frame until it is killed at a different moment. Every
// next run must find a whole save at least as far along as the one before, without a Warning.
TEST_F(SaveCrash, AKillDuringASaveLoopLeavesTheLastWholeSave)
{
    RunOptions options;
    options.dataFolder = "savecrash";
    options.signal = SIGKILL;
    options.signalAfterOutput = "saving\n";
    long previousCount = 0;
    for (int run = 0; run <= 20; ++run)
    {
        options.signalDelaySeconds = 0.007 * (run % 7);
        const RunResult result = Run(options);
        ASSERT_EQ(result.terminatingSignal, SIGKILL) << "run " << run << ": " << result.errors;
        EXPECT_EQ(Warnings(result), std::vector<std::string>{}) << "run " << run;
        const std::vector<std::string> printed = PrintedLines(result.output);
        ASSERT_GE(printed.size(), 2u) << "run " << run << ": " << result.output.substr(0, 2000);
        // Until one save is whole, a run finds nothing.
        if (printed[0] == "loaded\tnone")
        {
            EXPECT_EQ(previousCount, 0) << "run " << run << " lost the save";
            continue;
        }
        long count = -1;
        std::array<char, 8> whole = {};
        ASSERT_EQ(std::sscanf(printed[0].c_str(), "loaded\t%ld\t%7s", &count, whole.data()), 2) << printed[0];
        EXPECT_STREQ(whole.data(), "true") << "run " << run << " found a broken list: " << printed[0];
        EXPECT_GE(count, previousCount) << "run " << run << " lost saves";
        previousCount = count;
    }
    EXPECT_GT(previousCount, 0) << "the runs never got to save";
    EXPECT_TRUE(ReadFile(save).starts_with("return {"));
}

// A run whose save grows past the file size limit: the old save stays as it was, whether the signal ends
// the process or the write fails and the engine goes on.
TEST_F(SaveCrash, AWritePastTheFileSizeLimitKeepsTheOldSave)
{
    RunOptions options;
    options.dataFolder = "savelimit";
    for (const bool ignoreSignal : {false, true})
    {
        SCOPED_TRACE(ignoreSignal ? "SIGXFSZ ignored" : "SIGXFSZ at its default");
        fs::remove_all(saveFolder);
        options.fileSizeLimit = 0;
        const RunResult first = Run(options);
        ASSERT_EQ(first.exitCode, 0) << first.errors;
        const std::string good = ReadFile(save);
        ASSERT_EQ(good, "return {[\"best\"]=7}\n");

        options.fileSizeLimit = 4096;
        options.ignoreFileSizeSignal = ignoreSignal;
        const RunResult limited = Run(options);
        EXPECT_EQ(ReadFile(save), good);
        if (ignoreSignal)
        {
            EXPECT_EQ(limited.exitCode, 0) << limited.errors;
            EXPECT_EQ(PrintedLines(limited.output), (std::vector<std::string>{"loaded\t7\tnil", "went on"}));
            EXPECT_EQ(LogMessages(limited.output, "Lua", "Warning"),
                      std::vector<std::string>{"Failed to open save file"});
            EXPECT_EQ(std::distance(fs::directory_iterator(saveFolder), fs::directory_iterator()), 1)
                << "the failed write removed its temporary file";
        }
        else
        {
            EXPECT_EQ(limited.terminatingSignal, SIGXFSZ) << limited.output;
            EXPECT_EQ(PrintedLines(limited.output), std::vector<std::string>{"loaded\t7\tnil"});
        }

        options.fileSizeLimit = 0;
        const RunResult next = Run(options);
        EXPECT_EQ(next.exitCode, 0) << next.errors;
        EXPECT_EQ(Warnings(next), std::vector<std::string>{});
        EXPECT_EQ(PrintedLines(next.output), (std::vector<std::string>{"loaded\t7\tnil", "went on"}));
    }
}

} // namespace
