// The sample game in the repository's Data folder, played to its end. It runs in a child Space at
// timescale 8, as the game takes its clock from the Space that loads it, so 20 s of play take 2.5 s.

#include "Harness.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdlib.h>

namespace
{

namespace fs = std::filesystem;

const fs::path kSampleData = fs::path(QUELLMAR_E2E_DATA) / ".." / ".." / ".." / "Data";

size_t CountStartingWith(const std::vector<std::string>& lines, const std::string& prefix)
{
    size_t count = 0;
    for (const std::string& line : lines)
    {
        count += line.starts_with(prefix) ? 1 : 0;
    }
    return count;
}

size_t CountEndingWith(const std::vector<std::string>& lines, const std::string& suffix)
{
    size_t count = 0;
    for (const std::string& line : lines)
    {
        count += line.ends_with(suffix) ? 1 : 0;
    }
    return count;
}

TEST(SampleGame, PlaysToItsEndInAFastChildSpace)
{
    std::string directory = (fs::temp_directory_path() / "quellmar-sample-XXXXXX").string();
    ASSERT_NE(mkdtemp(directory.data()), nullptr);
    fs::copy(kSampleData, fs::path(directory) / "Data", fs::copy_options::recursive);
    std::ofstream(fs::path(directory) / "Data" / "Levels" / "Fast.lvl")
        << "MainSpace:CreateChildSpace('Levels/Start.lvl'):SetTimescale(8) return {}\n";
    RunOptions options;
    options.directory = directory;
    options.arguments = {"-level", "Levels/Fast.lvl"};
    options.timeLimitSeconds = 60.0;
    const RunResult result = RunEngine(options);
    fs::remove_all(directory);

    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    const std::vector<std::string> printed = PrintedLines(result.output);
    ASSERT_FALSE(printed.empty());
    EXPECT_EQ(printed.front(), "Comet Collector: catch the comets before the time runs out");
    // One comet every 1.5 s of game time; a slow machine's long frames can only lose some.
    const size_t comets = CountEndingWith(printed, " appears");
    EXPECT_GE(comets, 10u);
    EXPECT_LE(comets, 14u);
    EXPECT_EQ(CountStartingWith(printed, "Game paused"), 1u);
    EXPECT_EQ(CountStartingWith(printed, "Game resumed"), 1u);
    EXPECT_GE(CountStartingWith(printed, "Score: "), 3u);
    EXPECT_GE(CountStartingWith(printed, "Collector caught a comet"), 1u);
    EXPECT_TRUE(printed.back().starts_with("Game over: ")) << printed.back();
    EXPECT_NE(printed.back().find(" of " + std::to_string(comets) + " comets caught"), std::string::npos)
        << printed.back();
}

} // namespace
