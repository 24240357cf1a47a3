// The executable's start and end: help, command line warnings, the Data folder, signals, and the Fatal
// line of each way a start or a frame can fail.

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

// Unknown options only warn, and an empty Data folder fails its start level once, not at every frame: the
// signal comes only after many frames have run. Log lines are plain text when piped.
TEST(StartAndStop, UnrecognisedOptionsAndAMissingStartLevelLetTheRunGoOn)
{
    RunOptions options =
        UntilFirstFrame({"-foo", "bar", "--WIDTH", "800", "", "/x", "-level", "Levels/Start.lvl"});
    options.signalDelaySeconds = 0.5;
    const RunResult result = RunEngine(options);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(LogMessages(result.output, "Command Line", "Warning"),
              (std::vector<std::string>{
                  "Unrecognised command line option: foo", "Unrecognised command line option: bar",
                  "Unrecognised command line option: ", "Unrecognised command line option: x"}));
    EXPECT_EQ(SplitLines(result.errors).size(), 2u) << result.errors;
    EXPECT_EQ(
        LogMessages(result.errors, "Space", "Error"),
        (std::vector<std::string>{"Failed to load archetype/level file \"Levels/Start.lvl\": cannot open "
                                  "Levels/Start.lvl: No such file or directory",
                                  "Failed to load level: Levels/Start.lvl"}));
    EXPECT_NE(result.output.find("[Space] [Debug]: Deleting top space"), std::string::npos);
    EXPECT_EQ(result.output.find('\033'), std::string::npos);
    for (const std::string& line : SplitLines(result.output))
    {
        EXPECT_TRUE(line.starts_with("[")) << line;
    }
}

// Quit signals end the run in order in both thread modes, and a reader that went away doesn't kill it.
TEST(StartAndStop, QuitSignalsEndTheRunInOrder)
{
    struct Row
    {
        const char* threaded;
        int signal;
        bool closeOutput;
    };
    for (const Row row : {Row{"y", SIGTERM, false}, Row{"y", SIGINT, false}, Row{"n", SIGTERM, false},
                          Row{"n", SIGINT, false}, Row{"y", SIGTERM, true}})
    {
        SCOPED_TRACE(std::string(row.threaded) + " " + std::to_string(row.signal) + " " +
                     std::to_string(row.closeOutput));
        RunOptions options = UntilFirstFrame({"-multithreaded", row.threaded});
        options.signal = row.signal;
        options.closeOutputAfterSignal = row.closeOutput;
        const RunResult result = RunEngine(options);
        EXPECT_EQ(result.terminatingSignal, 0);
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        EXPECT_FALSE(result.timedOut);
        if (row.closeOutput)
        {
            continue;
        }
        const std::vector<std::string> lines = SplitLines(result.output);
        ASSERT_GE(lines.size(), 4u);
        EXPECT_NE(lines[0].find("[Game] [Debug]: Starting Game..."), std::string::npos);
        EXPECT_NE(lines[1].find("[Graphics] [Debug]: Started GL function Grab"), std::string::npos);
        EXPECT_NE(lines[2].find(kFirstFrameLine), std::string::npos);
        EXPECT_TRUE(EndsWithShutdown(result.output));
    }
}

// Each ends the process at once with exit code 3 and one Fatal line; a message ending in '*' is a prefix.
TEST(StartAndStop, AFailedStartOrARaiseEndsTheProcessWithItsFatalLine)
{
    struct Row
    {
        const char* name;
        std::string executable;
        const char* argument;
        const char* dataFolder;
        const char* environment;
        std::string category;
        std::string message;
    };
    const Row rows[] = {
        {"no Data folder", QUELLMAR_EXECUTABLE, "", "", "", "AssetManager",
         "Exception: Failed to change working directory: (2)"},
        {"Data is a file", QUELLMAR_EXECUTABLE, "", "", "", "AssetManager",
         "Exception: Failed to change working directory: (20)"},
        {"a system fails to start", QUELLMAR_TEST_DRIVER, "init-fails", "", "", "Game",
         "Exception: Failed to initialise system Failing"},
        {"a raise on the game thread", QUELLMAR_TEST_DRIVER, "update-raises", "", "", "Failing",
         "Exception: Update failed on purpose"},
        {"no video driver", QUELLMAR_EXECUTABLE, "", "input", "SDL_VIDEODRIVER=nonesuch", "Window",
         "Exception: Failed to register window class: (*"},
        {"no GL entry point", QUELLMAR_EXECUTABLE, "", "input", "MESA_GL_VERSION_OVERRIDE=2.1", "Graphics",
         "Exception: Failed to find address of glBindFragDataLocation. Error code: 0*"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.name);
        RunDirectory directory;
        if (row.name == std::string("Data is a file"))
        {
            directory.Write("Data", "not a folder");
        }
        RunOptions options;
        options.executable = row.executable;
        options.directory = directory.path;
        options.dataFolder = row.dataFolder;
        for (const auto& [value, into] :
             {std::pair{row.argument, &options.arguments}, {row.environment, &options.environment}})
        {
            if (*value != '\0')
            {
                into->push_back(value);
            }
        }
        options.timeLimitSeconds = 10;
        const RunResult result = RunEngine(options);
        EXPECT_FALSE(result.timedOut);
        EXPECT_EQ(result.exitCode, 3);
        const std::vector<std::string> fatal = LogMessages(result.errors, row.category, "Fatal");
        ASSERT_EQ(fatal.size(), 1u) << result.errors;
        if (row.message.ends_with('*'))
        {
            EXPECT_TRUE(fatal[0].starts_with(row.message.substr(0, row.message.size() - 1))) << fatal[0];
        }
        else
        {
            EXPECT_EQ(fatal[0], row.message);
        }
        EXPECT_NE(result.errors.find("\nat: "), std::string::npos)
            << "the Fatal line names where it was raised";
        EXPECT_EQ(result.output.find("must not"), std::string::npos) << result.output;
        EXPECT_EQ(result.output.find("Deleting top space"), std::string::npos);
        EXPECT_EQ(result.output.find("Finished GL function Grab"), std::string::npos);
    }
}

} // namespace
