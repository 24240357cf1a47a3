#include "Core/CommandLine.h"
#include "Core/Random.h"
#include "Support/LogCapture.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace
{

using Core::CommandLineResult;
using Core::GameSettings;

// Parses mutable copies of the arguments, as the parser normalises them in place.
CommandLineResult Parse(std::vector<std::string> texts, GameSettings& settings)
{
    texts.insert(texts.begin(), "quellmar");
    std::vector<char*> pointers;
    for (std::string& text : texts)
    {
        pointers.push_back(text.data());
    }
    return Core::ParseCommandLine(static_cast<int>(pointers.size()), pointers.data(), settings);
}

// The fields that differ from the defaults, as "name=value" words, so a table row names what it expects.
std::string Changes(const GameSettings& settings)
{
    const GameSettings defaults;
    std::string changes;
    const auto add = [&](const char* name, const auto& value, const auto& initial)
    {
        if (value != initial)
        {
            changes += std::string(changes.empty() ? "" : " ") + name + "=" + testing::PrintToString(value);
        }
    };
    add("width", settings.width, defaults.width);
    add("height", settings.height, defaults.height);
    add("fullscreen", settings.fullscreen, defaults.fullscreen);
    add("vsync", settings.vsync, defaults.vsync);
    add("multithreaded", settings.multithreaded, defaults.multithreaded);
    add("debugKeys", settings.debugKeys, defaults.debugKeys);
    add("level", settings.level, defaults.level);
    add("demo", static_cast<int>(settings.demoMode), static_cast<int>(defaults.demoMode));
    add("demoFile", settings.demoFile, defaults.demoFile);
    return changes;
}

std::string Unrecognised(const std::string& option)
{
    return "Unrecognised command line option: " + option;
}

TEST(CommandLine, OptionsSetTheirFieldAndReportWhatTheyCannotRead)
{
    struct Row
    {
        std::vector<std::string> arguments;
        std::string expected;
        std::vector<std::string> warnings;
    };
    const Row rows[] = {
        {{}, "", {}},
        // Names lose one slash, then up to two dashes, and their case; values are kept as given.
        {{"--WIDTH", "800", "-height", "600", "/fullscreen", "n", "/--LEVEL", "Levels/Big.LVL", "/-vsync",
          "0"},
         "width=800 height=600 fullscreen=false vsync=false level=\"Levels/Big.LVL\"",
         {}},
        {{"//width", "1", "---width", "2"},
         "",
         {Unrecognised("/width"), Unrecognised("1"), Unrecognised("-width"), Unrecognised("2")}},
        // Yes and no are judged by the first character alone.
        {{"-debugkeys", "yes", "-multithreaded", "no"}, "multithreaded=false debugKeys=true", {}},
        {{"-reset-keys", "1", "-fullscreen", "Y"}, "fullscreen=false debugKeys=true", {}},
        {{"-fullscreen", "true"}, "fullscreen=false", {}},
        {{"-fullscreen", ""}, "fullscreen=false", {}},
        // Numbers read like atoi and stay unclamped.
        {{"-width", "abc", "-height", "-479"}, "width=0 height=-479", {}},
        {{"-width", "12px", "-height", "4294967297"}, "width=12 height=1", {}},
        {{"-height", "99999999999999999999999"}, "height=-1", {}},
        // A value option takes the next argument whatever it looks like.
        {{"-level", "-width", "-width", "700"}, "width=700 level=\"-width\"", {}},
        {{"-width", "900", "-LEVEL"}, "width=900", {"Command line option needs a value: level"}},
        // The last demo option wins both mode and file.
        {{"-record", "a.dem", "--play-demo", "b.dem"}, "demo=2 demoFile=\"b.dem\"", {}},
        {{"/playdemo", "b.dem", "-RecordDemo", "c.dem"}, "demo=1 demoFile=\"c.dem\"", {}},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        LogCapture capture;
        GameSettings settings;
        EXPECT_EQ(Parse(row.arguments, settings), CommandLineResult::Run);
        EXPECT_EQ(Changes(settings), row.expected);
        EXPECT_EQ(capture.Messages("Command Line", LogLevel::Warning), row.warnings);
    }
}

TEST(CommandLine, SeedReseedsTheGeneratorAtOnce)
{
    GameSettings settings;
    Core::SeedRand(7);
    Parse({"-seed", "1"}, settings);
    EXPECT_EQ(Core::Rand(), 41);
    Parse({"-seed", "nonsense"}, settings);
    const int32_t afterZero = Core::Rand();
    Core::SeedRand(0);
    EXPECT_EQ(afterZero, Core::Rand());
}

// Random argument vectors: well-formed options in random spellings mixed with junk. The parser never
// fails, and the last value given for each option wins.
TEST(CommandLine, RandomArgumentVectorsFollowTheLastValueGiven)
{
    const std::vector<std::string> widthSpellings = {"width", "-WIDTH", "--Width", "/width", "/--wIdTh"};
    const std::vector<std::string> levelSpellings = {"level", "-Level", "/-LEVEL"};
    const std::vector<std::string> numbers = {"0", "-1", "640", "abc", "99999999999999999999", "\xff"};
    const std::vector<std::string> junk = {
        "", "-", "/", "---width", "name=value", "\xc3\x28\xff", std::string(100000, 'w')};
    std::mt19937 generator(1234);
    LogCapture capture;
    for (int round = 0; round < 3000; ++round)
    {
        std::vector<std::string> arguments;
        GameSettings expected;
        const size_t count = generator() % 10;
        for (size_t index = 0; index < count; ++index)
        {
            switch (generator() % 3)
            {
            case 0:
            {
                const std::string& value = numbers[generator() % numbers.size()];
                arguments.push_back(widthSpellings[generator() % widthSpellings.size()]);
                arguments.push_back(value);
                expected.width = static_cast<int32_t>(std::strtol(value.c_str(), nullptr, 10));
                break;
            }
            case 1:
            {
                const std::string value = junk[generator() % junk.size()];
                arguments.push_back(levelSpellings[generator() % levelSpellings.size()]);
                arguments.push_back(value);
                expected.level = value;
                break;
            }
            default:
                arguments.push_back(junk[generator() % junk.size()]);
            }
        }
        GameSettings settings;
        ASSERT_EQ(Parse(arguments, settings), CommandLineResult::Run);
        ASSERT_EQ(settings.width, expected.width) << round;
        ASSERT_EQ(settings.level, expected.level) << round;
        capture.Clear();
    }
}

} // namespace
