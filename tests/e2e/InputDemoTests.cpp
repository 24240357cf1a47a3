// Demos drive the real executable: hand-written event files are played into a game whose scripts print
// every event they receive, and the game's reactions show in its output and log.

#include "Harness.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <random>

namespace
{

namespace fs = std::filesystem;

// Plays the demo text on the listening level; the demo must end the game itself. The arguments come before
// "play", since the last of record and play wins.
RunResult Play(const std::string& demo, std::vector<std::string> arguments = {})
{
    RunDirectory directory;
    directory.Write("test.dem", demo);
    RunOptions options;
    options.dataFolder = "input";
    options.directory = directory.path;
    options.arguments = std::move(arguments);
    options.arguments.insert(options.arguments.end(), {"play", "test.dem", "vsync", "n"});
    const RunResult result = RunEngine(options);
    EXPECT_FALSE(std::filesystem::exists(directory.path / "a.dem")) << "a demo was recorded";
    return result;
}

// A demo of frames 1 to last: each frame line followed by the events listed for it.
std::string Demo(int last, const std::vector<std::pair<int, std::string>>& events)
{
    std::string text;
    for (int frame = 1; frame <= last; ++frame)
    {
        text += "<0.5> Frame " + std::to_string(frame) + "\n";
        for (const auto& [at, line] : events)
        {
            if (at == frame)
            {
                text += line + "\n";
            }
        }
    }
    return text;
}

// The listener answers the close box and quits one frame later; a frame line must follow for it to play.
const std::pair<int, std::string> kCloseAt30 = {30, "[3] Close ()"};

// Events replay at their recorded frames, then the replay ends. F11 and scripts switch fullscreen both
// ways; a dropped path keeps its parentheses; the debug keys do nothing unless enabled; pause toggles,
// and clicks end a pause; an earlier record argument loses to play.
TEST(Demo, EventsReplayAtTheirRecordedFramesAndTheReplayThenEnds)
{
    const RunResult result =
        Play(Demo(32, {{3, "[5] KeyDown (122)"},        {4, "[12] FileDropped (Levels/A (1).lvl)"},
                       {5, "[5] KeyDown (122)"},        {6, "[5] KeyDown (84)"},
                       {7, "[5] KeyDown (83)"},         {8, "[5] KeyDown (83)"},
                       {9, "[6] KeyUp (65)"},           {9, "[7] Char (97)"},
                       {10, "[5] KeyDown (116)"},       {11, "[5] KeyDown (115)"},
                       {13, "[5] KeyDown (19)"},        {14, "[5] KeyDown (19)"},
                       {15, "[5] KeyDown (19)"},        {16, "[10] MouseUp (1: 5, 5)"},
                       {17, "[9] MouseDown (2: 5, 5)"}, {18, "[2] Minimize ()"},
                       {19, "[1] Activate (true)"},     {20, "[1] Activate (false)"},
                       {21, "[5] KeyDown (65)"},        kCloseAt30}),
             {"record", "a.dem", "fullscreen", "n"});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(PrintedLines(result.output), (std::vector<std::string>{"start",
                                                                     "3\tKeyDown\t122\ttrue",
                                                                     "4\tFileDropped\tLevels/A (1).lvl",
                                                                     "5\tKeyDown\t122\tfalse",
                                                                     "6\tKeyDown\t84\ttrue",
                                                                     "7\tKeyDown\t83\tfalse",
                                                                     "8\tKeyDown\t83\tfalse",
                                                                     "9\tKeyUp\t65",
                                                                     "9\tChar\t97",
                                                                     "10\tKeyDown\t116\tfalse",
                                                                     "11\tKeyDown\t115\tfalse",
                                                                     "13\tKeyDown\t19\tfalse",
                                                                     "14\tKeyDown\t19\tfalse",
                                                                     "15\tKeyDown\t19\tfalse",
                                                                     "16\tMouseUp\t1.0\t5.0\t5.0",
                                                                     "17\tMouseDown\t2.0\t5.0\t5.0",
                                                                     "18\tMinimize",
                                                                     "19\tActivate\ttrue",
                                                                     "20\tActivate\tfalse",
                                                                     "21\tKeyDown\t65\tfalse",
                                                                     "30\tClose"}));
    EXPECT_EQ(LogMessages(result.output, "Input", "Info"), std::vector<std::string>{"Ending replay"});
    EXPECT_TRUE(LogMessages(result.output, "Input", "Warning").empty()) << result.output;
    EXPECT_EQ(LogMessages(result.output, "Core", "Debug"),
              (std::vector<std::string>{"pausing game", "Unpausing game", "pausing game", "Unpausing game",
                                        "pausing game", "Unpausing game", "pausing game", "Unpausing game"}));
}

TEST(Demo, LateAndRepeatedRecordsAreSkippedWithAWarning)
{
    const std::string demo = "[5] KeyDown (48)\n" + Demo(3, {{3, "[5] KeyDown (51)"}}) +
                             "<0.5> Frame 2\n[5] KeyDown (50)\n" + "<0.5> Frame 5\n[5] KeyDown (53)\n" +
                             "<0.5> Frame 5\n[5] KeyDown (54)\n" + Demo(32, {kCloseAt30});
    const RunResult result = Play(demo);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(PrintedLines(result.output), (std::vector<std::string>{"start", "3\tKeyDown\t51\ttrue",
                                                                     "5\tKeyDown\t53\ttrue", "30\tClose"}));
    EXPECT_EQ(LogMessages(result.output, "Input", "Warning"),
              (std::vector<std::string>{"Skipped replay frame 0", "Skipped replay frame 2",
                                        "Skipped replay frame 5"}));
}

TEST(Demo, AnUnansweredCloseEndsTheGameAfterThatFramesUpdate)
{
    const RunResult result = Play(
        Demo(
            12,
            {{3, "[5] KeyDown (65)"}, {5, "[3] Close ()"}, {5, "[5] KeyDown (66)"}, {7, "[5] KeyDown (67)"}}),
        {"level", "Levels/Plain.lvl"});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(PrintedLines(result.output),
              (std::vector<std::string>{"start", "3\tKeyDown\t65", "5\tKeyDown\t66"}));
}

TEST(Demo, DebugKeysReloadAndResetWhenEnabled)
{
    const RunResult result =
        Play(Demo(32, {{3, "[5] KeyDown (116)"}, {6, "[5] KeyDown (115)"}, kCloseAt30}), {"debug-keys", "y"});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    const std::vector<std::string> printed = PrintedLines(result.output);
    EXPECT_EQ(std::count(printed.begin(), printed.end(), "start"), 3) << result.output;
}

std::string Junk()
{
    std::mt19937 random(7);
    std::string junk = "<0.5> Frame 1\n[-1] Nothing ()\n[99999999999] Big (1)\n[13] None ()\n"
                       "[4] SizeChanged (99999999999, -99999999999)\n[9] MouseDown (\n[12] FileDropped\n"
                       "<1> Frame 18446744073709551616\n<0.5> Frame -3\n[5] KeyDown (65)\n";
    junk += std::string(1 << 20, 'x') + "\n";
    for (int index = 0; index < 4096; ++index)
    {
        junk += static_cast<char>(random() % 256);
    }
    return junk + "\n<0.5> Frame 2\n";
}

// Demos that never end the game themselves: the run goes on with live input, which nothing here gives, and
// a signal ends it. A record for the last frame number shuts live input out for good. In junk, kind 13 is
// the empty record, not an unknown one; junk lines mostly read as kind 0, "Quit".
TEST(Demo, DemosThatCannotBePlayedOrNeverEndLeaveTheRunToASignal)
{
    struct Row
    {
        const char* file;
        std::string content; // "-" for none, "/" for a folder
        std::vector<std::string> firstWarnings;
        std::vector<std::string> info;
    };
    const Row rows[] = {
        {"missing.dem", "-", {"Failed to open input replay file"}, {}},
        {"folder", "/", {"Failed to open input replay file"}, {}},
        {"empty.dem", "", {}, {"Ending replay"}},
        {"far.dem", "<0> Frame 18446744073709551615\n[3] Close ()\n<0> Frame 1\n", {}, {}},
        {"junk.dem",
         Junk(),
         {"Ignoring unknown event: [-1] Nothing ()", "Ignoring unknown event: [99999999999] Big (1)"},
         {}},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.file);
        RunDirectory directory;
        if (row.content == "/")
        {
            fs::create_directory(directory.path / row.file);
        }
        else if (row.content != "-")
        {
            directory.Write(row.file, row.content);
        }
        RunOptions options;
        options.dataFolder = "input";
        options.directory = directory.path;
        options.arguments = {"play", row.file};
        options.signalAfterOutput = "start";
        options.signalDelaySeconds = 0.3;
        const RunResult result = RunEngine(options);
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        EXPECT_FALSE(result.timedOut);
        const std::vector<std::string> printed = PrintedLines(result.output);
        ASSERT_FALSE(printed.empty());
        EXPECT_EQ(printed.front(), "start");
        EXPECT_FALSE(printed.back().ends_with("Close")) << "no record past the end plays";
        const std::vector<std::string> warnings = LogMessages(result.output, "Input", "Warning");
        ASSERT_GE(warnings.size(), row.firstWarnings.size());
        EXPECT_EQ(std::vector<std::string>(warnings.begin(), warnings.begin() + row.firstWarnings.size()),
                  row.firstWarnings);
        EXPECT_TRUE(!row.firstWarnings.empty() || warnings.empty());
        EXPECT_EQ(LogMessages(result.output, "Input", "Info"), row.info);
    }
}

// A run recorded while events were pushed at the window, then played back: the scripts must print the
// same lines at the same frames. Drops print their paths only, since a replayed drop has no point.
TEST(Demo, ARecordedRunPlaysBackTheSame)
{
    for (const char* threaded : {"n", "y"})
    {
        RunDirectory directory;
        RunOptions record;
        record.executable = QUELLMAR_TYPING_DRIVER;
        record.dataFolder = "input";
        record.directory = directory.path;
        record.arguments = {"record", "typed.dem", "vsync", "n", "multithreaded", threaded};
        const RunResult recorded = RunEngine(record);
        ASSERT_EQ(recorded.exitCode, 0) << threaded << recorded.errors;
        const std::vector<std::string> typed = PrintedLines(recorded.output);
        ASSERT_GE(typed.size(), 20u) << recorded.output;
        EXPECT_TRUE(typed.back().ends_with("\tClose")) << typed.back();

        RunOptions play = record;
        play.executable = QUELLMAR_EXECUTABLE;
        play.arguments = {"play", "typed.dem", "vsync", "n", "multithreaded", threaded};
        const RunResult played = RunEngine(play);
        ASSERT_EQ(played.exitCode, 0) << threaded << played.errors;
        EXPECT_EQ(PrintedLines(played.output), typed) << threaded;
    }
}

} // namespace
