// The executable's start and end: help, command line warnings, signals and raises.

#include "Harness.h"

#include <gtest/gtest.h>

namespace
{

const char* const kHelpText = "Options:\n"
                              "  help                   - prints this help screen\n"
                              "  width <number>         - initial window width\n"
                              "  height <number>        - initial window height\n"
                              "  fullscreen <y/n>       - initially start in fullscreen\n"
                              "  reset-keys <y/n>       - if f4, and f5 debug reset keys enabled \n"
                              "  level <filename>       - default level to load (relative to data folder)\n"
                              "  multithreaded <y/n>    - run in multithreaded mode\n"
                              "  record <demo filename> - record a demo to the filename\n"
                              "  play <demo filename>   - play a demo from the filename\n"
                              "  seed <number>          - the random seed to use\n"
                              "  vsync <y/n>            - whether to use vsync or not\n";

constexpr const char* kFirstFrameLine = "[Graphics] [Debug]: Finished GL function Grab";

RunOptions UntilFirstFrame(std::vector<std::string> arguments)
{
    RunOptions options;
    options.dataFolder = "empty";
    options.arguments = std::move(arguments);
    options.signalAfterOutput = kFirstFrameLine;
    return options;
}

TEST(StartAndStop, HelpPrintsTheTextAndEndsWhateverCameBefore)
{
    for (const char* spelling : {"--HELP", "/h", "-?", "list", "/--Commands"})
    {
        RunOptions options;
        options.arguments = {"-width", "800", "-bogus", spelling, "-level"};
        const RunResult result = RunEngine(options);
        EXPECT_EQ(result.exitCode, 0) << spelling;
        ASSERT_TRUE(result.output.ends_with(kHelpText)) << spelling << "\n" << result.output;
        EXPECT_EQ(LogMessages(result.output, "Command Line", "Warning"),
                  std::vector<std::string>{"Unrecognised command line option: bogus"});
        EXPECT_EQ(result.output.find("Starting Game"), std::string::npos);
    }
}

TEST(StartAndStop, UnrecognisedOptionsWarnAndTheRunGoesOn)
{
    RunOptions options = UntilFirstFrame({"-foo", "bar", "--WIDTH", "800", "", "/x"});
    const RunResult result = RunEngine(options);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(LogMessages(result.output, "Command Line", "Warning"),
              (std::vector<std::string>{
                  "Unrecognised command line option: foo", "Unrecognised command line option: bar",
                  "Unrecognised command line option: ", "Unrecognised command line option: x"}));
    // The empty Data folder has no start level; the run goes on regardless.
    EXPECT_EQ(SplitLines(result.errors).size(), LogMessages(result.errors, "Space", "Error").size())
        << result.errors;
}

TEST(StartAndStop, QuitSignalsEndTheRunInOrderInBothThreadModes)
{
    for (const char* threaded : {"y", "n"})
    {
        for (const int signal : {SIGTERM, SIGINT})
        {
            RunOptions options = UntilFirstFrame({"-multithreaded", threaded});
            options.signal = signal;
            const RunResult result = RunEngine(options);
            EXPECT_EQ(result.exitCode, 0) << threaded << " " << signal << result.errors;
            EXPECT_FALSE(result.timedOut);
            const std::vector<std::string> lines = SplitLines(result.output);
            ASSERT_GE(lines.size(), 4u);
            EXPECT_NE(lines[0].find("[Game] [Debug]: Starting Game..."), std::string::npos);
            EXPECT_NE(lines[1].find("[Graphics] [Debug]: Started GL function Grab"), std::string::npos);
            EXPECT_NE(lines[2].find(kFirstFrameLine), std::string::npos);
            EXPECT_NE(lines[lines.size() - 2].find("[Space] [Debug]: Deleting top space"), std::string::npos);
            EXPECT_NE(lines.back().find("[Graphics] [Info]: Graphics is cleaning up"), std::string::npos);
        }
    }
}

TEST(StartAndStop, AReaderThatWentAwayDoesNotKillTheRun)
{
    RunOptions options = UntilFirstFrame({});
    options.closeOutputAfterSignal = true;
    const RunResult result = RunEngine(options);
    EXPECT_EQ(result.terminatingSignal, 0);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
}

TEST(StartAndStop, LogLinesArePlainTextWhenPiped)
{
    const RunResult result = RunEngine(UntilFirstFrame({"-bogus"}));
    EXPECT_EQ(result.output.find('\033'), std::string::npos);
    for (const std::string& line : SplitLines(result.output))
    {
        EXPECT_TRUE(line.starts_with("[")) << line;
    }
}

TEST(StartAndStop, ASystemThatFailsToStartEndsTheProcessWithTheFatalLine)
{
    RunOptions options;
    options.executable = QUELLMAR_TEST_DRIVER;
    options.arguments = {"init-fails"};
    const RunResult result = RunEngine(options);
    EXPECT_EQ(result.exitCode, 3);
    const std::vector<std::string> fatal = LogMessages(result.errors, "Game", "Fatal");
    ASSERT_EQ(fatal.size(), 1u) << result.errors;
    EXPECT_EQ(fatal[0], "Exception: Failed to initialise system Failing");
    EXPECT_NE(result.errors.find("\nat: "), std::string::npos);
}

TEST(StartAndStop, ARaiseOnTheGameThreadEndsTheProcessAtOnce)
{
    RunOptions options;
    options.executable = QUELLMAR_TEST_DRIVER;
    options.arguments = {"update-raises"};
    options.timeLimitSeconds = 10;
    const RunResult result = RunEngine(options);
    EXPECT_FALSE(result.timedOut);
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(LogMessages(result.errors, "Failing", "Fatal"),
              std::vector<std::string>{"Exception: Update failed on purpose"});
    EXPECT_EQ(result.output.find("must not"), std::string::npos) << result.output;
    EXPECT_EQ(result.output.find("Deleting top space"), std::string::npos);
}

} // namespace
