// The sample game in the repository's Data folder, played to its end. It runs as the main level, since the
// collector's rays see only the main Space, with the main Space at timescale 8: the game takes its clock from
// the Space that loads it, so 20 s of play take 2.5 s.

#include "Screenshot.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <stdlib.h>

namespace
{

namespace fs = std::filesystem;

// A copy of the sample game and a level that starts it fast, with a child Space that takes a screenshot a
// second into the game.
void MakeGame(const RunDirectory& directory)
{
    fs::copy(fs::path(QUELLMAR_E2E_DATA) / ".." / ".." / ".." / "Data", directory.path / "Data",
             fs::copy_options::recursive);
    directory.Write("Data/Levels/Fast.lvl",
                    "MainSpace:SetTimescale(8) MainSpace:LoadLevel('Levels/Start.lvl') "
                    "MainSpace:CreateChildSpace('Levels/Shot.lvl') return {}\n");
    directory.Write("Data/Levels/Shot.lvl", "return { { Name = 'Shooter', Script = 'Scripts/Shot.lua' } }\n");
    directory.Write("Data/Scripts/Shot.lua", "wait(1) Graphics:Screenshot('shot.png')\n");
}

// Plays the game once; the run must end cleanly.
std::vector<std::string> Play(const RunDirectory& directory, std::vector<std::string> environment = {})
{
    RunOptions options;
    options.environment = std::move(environment);
    options.directory = directory.path;
    options.arguments = {"-level", "Levels/Fast.lvl"};
    const RunResult result = RunEngine(options);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    return PrintedLines(result.output);
}

std::vector<std::string> StartingWith(const std::vector<std::string>& lines, const std::string& prefix)
{
    std::vector<std::string> found;
    for (const std::string& line : lines)
    {
        if (line.starts_with(prefix))
        {
            found.push_back(line);
        }
    }
    return found;
}

// The one line about the best score; the game may print more in its last frame, after quitting.
std::string BestScoreLine(const std::vector<std::string>& lines)
{
    std::vector<std::string> found;
    for (const char* prefix : {"First best score: ", "New best score: ", "Best score stays "})
    {
        const std::vector<std::string> matching = StartingWith(lines, prefix);
        found.insert(found.end(), matching.begin(), matching.end());
    }
    return found.size() == 1 ? found[0] : "(" + std::to_string(found.size()) + " best score lines)";
}

// The number after a prefix in the first line that starts with it; -1 if there is none.
int NumberAfter(const std::vector<std::string>& lines, const std::string& prefix)
{
    const std::vector<std::string> found = StartingWith(lines, prefix);
    return found.empty() ? -1 : std::atoi(found.front().c_str() + prefix.size());
}

// Four games in one save folder: the first is checked in full and sets the best score, the second compares
// with it. Seeded save files then take each side of the comparison for certain, whatever the games score.
TEST(SampleGame, PlaysToItsEndAndKeepsTheBestScoreInTheSaveFolder)
{
    RunDirectory directory;
    MakeGame(directory);
    const std::vector<std::string> printed = Play(directory);
    const std::string firstSave = ReadFile(directory.Save());
    const std::vector<std::string> secondPrinted = Play(directory);
    const std::string secondSave = ReadFile(directory.Save());
    directory.Write(directory.Save(), "return {[\"best\"]=0,[\"other\"]=\"kept\"}\n");
    const std::vector<std::string> beatenPrinted = Play(directory);
    const std::string beatenSave = ReadFile(directory.Save());
    directory.Write(directory.Save(), "return {[\"best\"]=1000}\n");
    // A machine without any sound device plays the game as silently as the null device does.
    const std::vector<std::string> unbeatenPrinted = Play(directory, {"ALSOFT_DRIVERS=none"});

    // The sun in the middle of the screen, and the score in yellow letters in the top left corner.
    const Shot shot(directory.path / "Data/shot.png");
    ASSERT_TRUE(shot.Loaded());
    const Rgb sun = shot.Pixel(static_cast<int>(shot.Width() / 2), static_cast<int>(shot.Height() / 2));
    EXPECT_TRUE(sun[0] > 200 && sun[1] > 120 && sun[2] < 120) << sun[0] << "," << sun[1] << "," << sun[2];
    const auto isScore = [](Rgb pixel) { return pixel[0] > 200 && pixel[1] > 150 && pixel[2] < 120; };
    EXPECT_GT(shot.Count(0, 0, 200, 40, isScore), 20);

    ASSERT_FALSE(printed.empty());
    EXPECT_EQ(printed.front(), "Comet Collector: catch the comets before the time runs out");
    // One comet every 1.5 s of game time; a slow machine's long frames can only lose some.
    const auto comets = static_cast<size_t>(std::count_if(
        printed.begin(), printed.end(), [](const std::string& line) { return line.ends_with(" appears"); }));
    EXPECT_GE(comets, 10u);
    EXPECT_LE(comets, 14u);
    EXPECT_EQ(StartingWith(printed, "Game paused").size(), 1u);
    EXPECT_EQ(StartingWith(printed, "Game resumed").size(), 1u);
    EXPECT_GE(StartingWith(printed, "Score: ").size(), 3u);

    // The rays find a comet once there is one, and say so once.
    const std::vector<std::string> spotted = StartingWith(printed, "Collector spots a comet ");
    ASSERT_EQ(spotted.size(), 1u);
    EXPECT_TRUE(spotted.front().ends_with(" away")) << spotted.front();
    EXPECT_GT(std::find(printed.begin(), printed.end(), spotted.front()),
              std::find(printed.begin(), printed.end(), "Comet 1 appears"));

    // Contacts are reported in every frame that two colliders overlap, yet each comet is caught once: the
    // catches count up one by one, never past the comets there were, and the summary agrees with them.
    const std::vector<std::string> caught = StartingWith(printed, "Collector caught a comet: score ");
    ASSERT_GE(caught.size(), 1u);
    EXPECT_LE(caught.size(), comets);
    for (size_t i = 0; i < caught.size(); ++i)
    {
        EXPECT_EQ(caught[i], "Collector caught a comet: score " + std::to_string(i + 1));
    }
    // Comets are thrown towards the sun, which stands as an immovable rock in their way.
    EXPECT_GE(NumberAfter(printed, "Comets bounced "), 1);
    // The game quits in its last frame, whose other scripts still run: a catch may come after the summary.
    const auto gameOver =
        std::find_if(printed.begin(), printed.end(),
                     [](const std::string& line) { return line.starts_with("Game over: "); });
    ASSERT_NE(gameOver, printed.end());
    const size_t caughtBefore =
        StartingWith({printed.begin(), gameOver}, "Collector caught a comet: ").size();
    EXPECT_TRUE(gameOver->starts_with("Game over: " + std::to_string(caughtBefore) + " of " +
                                      std::to_string(comets) + " comets caught, the moon ended at ("))
        << *gameOver;

    const int firstScore = NumberAfter(printed, "Game over: ");
    const int secondScore = NumberAfter(secondPrinted, "Game over: ");
    const int beatenScore = NumberAfter(beatenPrinted, "Game over: ");
    ASSERT_TRUE(firstScore >= 1 && secondScore >= 1 && beatenScore >= 1);
    EXPECT_EQ(StartingWith(printed, "First best score: "),
              std::vector<std::string>{"First best score: " + std::to_string(firstScore)});
    EXPECT_EQ(firstSave, "return {[\"best\"]=" + std::to_string(firstScore) + "}\n");
    const std::string secondExpected =
        secondScore > firstScore
            ? "New best score: " + std::to_string(secondScore) + ", was " + std::to_string(firstScore)
            : "Best score stays " + std::to_string(firstScore);
    EXPECT_EQ(BestScoreLine(secondPrinted), secondExpected);
    EXPECT_EQ(secondSave, "return {[\"best\"]=" + std::to_string(std::max(firstScore, secondScore)) + "}\n");
    EXPECT_EQ(BestScoreLine(beatenPrinted), "New best score: " + std::to_string(beatenScore) + ", was 0");
    EXPECT_NE(beatenSave.find("[\"best\"]=" + std::to_string(beatenScore)), std::string::npos) << beatenSave;
    EXPECT_NE(beatenSave.find("[\"other\"]=\"kept\""), std::string::npos) << beatenSave;
    EXPECT_EQ(BestScoreLine(unbeatenPrinted), "Best score stays 1000");
    EXPECT_EQ(ReadFile(directory.Save()), "return {[\"best\"]=1000}\n");
}

} // namespace
