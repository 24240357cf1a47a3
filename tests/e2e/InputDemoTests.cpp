// Demos drive the real executable: hand-written event files are played into a game whose scripts print
// every event they receive, and the game's reactions show in its output and log.

#include "Harness.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <random>

namespace
{

namespace fs = std::filesystem;

constexpr int kRaiseExitCode = 3;

// A directory for one test's runs, removed afterwards.
// Plays the demo text on the listening level; the demo must end the game itself.
RunResult Play(const std::string& demo, std::vector<std::string> arguments = {})
{
    RunDirectory directory;
    directory.Write("test.dem", demo);
    RunOptions options;
    options.dataFolder = "input";
    options.directory = directory.path;
    options.arguments = {"play", "test.dem", "vsync", "n"};
    options.arguments.insert(options.arguments.end(), arguments.begin(), arguments.end());
    return RunEngine(options);
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
const std::pair<int, std::string> kCloseAt20 = {20, "[3] Close ()"};

TEST(Demo, EventsReplayAtTheirRecordedFramesAndTheReplayThenEnds)
{
    const RunResult result =
        Play(Demo(22, {{5, "[5] KeyDown (65)"}, {9, "[6] KeyUp (65)"}, {9, "[7] Char (97)"}, kCloseAt20}));
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(PrintedLines(result.output),
              (std::vector<std::string>{"start", "5\tKeyDown\t65\ttrue", "9\tKeyUp\t65", "9\tChar\t97",
                                        "20\tClose"}));
    EXPECT_EQ(LogMessages(result.output, "Input", "Info"), std::vector<std::string>{"Ending replay"});
    EXPECT_TRUE(LogMessages(result.output, "Input", "Warning").empty()) << result.output;
}

TEST(Demo, LateAndRepeatedRecordsAreSkippedWithAWarning)
{
    const std::string demo = "[5] KeyDown (48)\n" + Demo(3, {{3, "[5] KeyDown (51)"}}) +
                             "<0.5> Frame 2\n[5] KeyDown (50)\n" + "<0.5> Frame 5\n[5] KeyDown (53)\n" +
                             "<0.5> Frame 5\n[5] KeyDown (54)\n" + Demo(22, {kCloseAt20}).substr(0);
    const RunResult result = Play(demo);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(PrintedLines(result.output), (std::vector<std::string>{"start", "3\tKeyDown\t51\ttrue",
                                                                     "5\tKeyDown\t53\ttrue", "20\tClose"}));
    EXPECT_EQ(LogMessages(result.output, "Input", "Warning"),
              (std::vector<std::string>{"Skipped replay frame 0", "Skipped replay frame 2",
                                        "Skipped replay frame 5"}));
}

TEST(Demo, PauseTogglesAndClicksEndAPause)
{
    const RunResult result = Play(Demo(22, {{3, "[5] KeyDown (19)"},
                                            {4, "[5] KeyDown (19)"},
                                            {5, "[5] KeyDown (19)"},
                                            {6, "[10] MouseUp (1: 5, 5)"},
                                            {7, "[9] MouseDown (2: 5, 5)"},
                                            {8, "[2] Minimize ()"},
                                            {9, "[1] Activate (true)"},
                                            {10, "[1] Activate (false)"},
                                            {11, "[5] KeyDown (65)"},
                                            kCloseAt20}));
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(LogMessages(result.output, "Core", "Debug"),
              (std::vector<std::string>{"pausing game", "Unpausing game", "pausing game", "Unpausing game",
                                        "pausing game", "Unpausing game", "pausing game", "Unpausing game"}));
}

TEST(Demo, F11AndScriptsSwitchFullscreenBothWays)
{
    const RunResult result = Play(Demo(22, {{3, "[5] KeyDown (122)"},
                                            {5, "[5] KeyDown (122)"},
                                            {6, "[5] KeyDown (84)"},
                                            {7, "[5] KeyDown (83)"},
                                            {8, "[5] KeyDown (83)"},
                                            kCloseAt20}),
                                  {"fullscreen", "n"});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(PrintedLines(result.output),
              (std::vector<std::string>{"start", "3\tKeyDown\t122\ttrue", "5\tKeyDown\t122\tfalse",
                                        "6\tKeyDown\t84\ttrue", "7\tKeyDown\t83\tfalse",
                                        "8\tKeyDown\t83\tfalse", "20\tClose"}));
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

TEST(Demo, DebugKeysReloadAndResetOnlyWhenEnabled)
{
    const std::string demo = Demo(22, {{3, "[5] KeyDown (116)"}, {6, "[5] KeyDown (115)"}, kCloseAt20});
    const RunResult enabled = Play(demo, {"debug-keys", "y"});
    EXPECT_EQ(enabled.exitCode, 0) << enabled.errors;
    const std::vector<std::string> printed = PrintedLines(enabled.output);
    EXPECT_EQ(std::count(printed.begin(), printed.end(), "start"), 3) << enabled.output;

    const RunResult disabled = Play(demo);
    const std::vector<std::string> plain = PrintedLines(disabled.output);
    EXPECT_EQ(std::count(plain.begin(), plain.end(), "start"), 1);
    EXPECT_EQ(plain.back(), "20\tClose");
}

TEST(Demo, ADroppedPathKeepsItsParentheses)
{
    const RunResult result = Play(Demo(22, {{4, "[12] FileDropped (Levels/A (1).lvl)"}, kCloseAt20}));
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(PrintedLines(result.output),
              (std::vector<std::string>{"start", "4\tFileDropped\tLevels/A (1).lvl", "20\tClose"}));
}

TEST(Demo, TheLastOfRecordAndPlayWins)
{
    RunDirectory directory;
    directory.Write("b.dem", Demo(22, {{4, "[5] KeyDown (66)"}, kCloseAt20}));
    RunOptions options;
    options.dataFolder = "input";
    options.directory = directory.path;
    options.arguments = {"record", "a.dem", "play", "b.dem", "vsync", "n"};
    const RunResult result = RunEngine(options);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(PrintedLines(result.output),
              (std::vector<std::string>{"start", "4\tKeyDown\t66\ttrue", "20\tClose"}));
    EXPECT_FALSE(fs::exists(directory.path / "a.dem"));
}

// Without a usable demo the run goes on with live input, which nothing here gives: a signal ends it.
RunResult PlayUntilStarted(const std::string& demoArgument, const std::function<void(RunDirectory&)>& prepare)
{
    RunDirectory directory;
    prepare(directory);
    RunOptions options;
    options.dataFolder = "input";
    options.directory = directory.path;
    options.arguments = {"play", demoArgument};
    options.signalAfterOutput = "start";
    options.signalDelaySeconds = 0.2;
    return RunEngine(options);
}

TEST(Demo, AFileThatCannotBePlayedLeavesLiveInput)
{
    for (const char* argument : {"missing.dem", "folder"})
    {
        const RunResult result = PlayUntilStarted(argument, [](RunDirectory& directory)
                                                  { fs::create_directory(directory.path / "folder"); });
        EXPECT_EQ(result.exitCode, 0) << argument << result.errors;
        EXPECT_EQ(LogMessages(result.output, "Input", "Warning"),
                  std::vector<std::string>{"Failed to open input replay file"})
            << argument;
        EXPECT_TRUE(LogMessages(result.output, "Input", "Info").empty());
    }
    const RunResult empty =
        PlayUntilStarted("empty.dem", [](RunDirectory& directory) { directory.Write("empty.dem", ""); });
    EXPECT_EQ(empty.exitCode, 0) << empty.errors;
    EXPECT_TRUE(LogMessages(empty.output, "Input", "Warning").empty());
    EXPECT_EQ(LogMessages(empty.output, "Input", "Info"), std::vector<std::string>{"Ending replay"});
}

TEST(Demo, ARecordForTheLastFrameNumberShutsLiveInputOutButASignalStillEnds)
{
    RunDirectory directory;
    directory.Write("far.dem", "<0> Frame 18446744073709551615\n[3] Close ()\n<0> Frame 1\n");
    RunOptions options;
    options.dataFolder = "input";
    options.directory = directory.path;
    options.arguments = {"play", "far.dem", "level", "Levels/Plain.lvl"};
    options.signalAfterOutput = "start";
    options.signalDelaySeconds = 0.3;
    options.signal = SIGINT;
    const RunResult result = RunEngine(options);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_FALSE(result.timedOut);
    EXPECT_TRUE(LogMessages(result.output, "Input", "Info").empty()) << "the replay never ends by itself";
}

TEST(Demo, JunkNeverStopsTheRun)
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
    junk += "\n<0.5> Frame 2\n";
    const RunResult result =
        PlayUntilStarted("junk.dem", [&](RunDirectory& directory) { directory.Write("junk.dem", junk); });
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_FALSE(result.timedOut);
    const std::vector<std::string> warnings = LogMessages(result.output, "Input", "Warning");
    // Kind 13 is the empty record, not an unknown one; junk lines mostly read as kind 0, "Quit".
    ASSERT_GE(warnings.size(), 2u);
    EXPECT_EQ(warnings[0], "Ignoring unknown event: [-1] Nothing ()");
    EXPECT_EQ(warnings[1], "Ignoring unknown event: [99999999999] Big (1)");
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

TEST(Platform, AVideoDriverThatCannotStartEndsTheRun)
{
    RunOptions options;
    options.dataFolder = "input";
    options.environment = {"SDL_VIDEODRIVER=nonesuch"};
    const RunResult result = RunEngine(options);
    EXPECT_EQ(result.exitCode, kRaiseExitCode);
    const std::vector<std::string> fatal = LogMessages(result.errors, "Window", "Fatal");
    ASSERT_EQ(fatal.size(), 1u) << result.errors;
    EXPECT_TRUE(fatal[0].starts_with("Exception: Failed to register window class: (")) << fatal[0];
}

TEST(Platform, AContextWithoutAnEntryPointEndsTheRunNamingIt)
{
    RunOptions options;
    options.dataFolder = "input";
    options.environment = {"MESA_GL_VERSION_OVERRIDE=2.1"};
    const RunResult result = RunEngine(options);
    EXPECT_EQ(result.exitCode, kRaiseExitCode);
    const std::vector<std::string> fatal = LogMessages(result.errors, "Graphics", "Fatal");
    ASSERT_EQ(fatal.size(), 1u) << result.errors;
    EXPECT_TRUE(
        fatal[0].starts_with("Exception: Failed to find address of glBindFragDataLocation. Error code: 0"))
        << fatal[0];
}

} // namespace
