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
using Core::DemoMode;
using Core::GameSettings;

// Owns mutable copies of the arguments, as the parser normalises them in place.
struct Arguments
{
    explicit Arguments(std::vector<std::string> given) : texts(std::move(given))
    {
        texts.insert(texts.begin(), "quellmar");
        for (std::string& text : texts)
        {
            pointers.push_back(text.data());
        }
    }

    CommandLineResult Parse(GameSettings& settings)
    {
        return Core::ParseCommandLine(static_cast<int>(pointers.size()), pointers.data(), settings);
    }

    std::vector<std::string> texts;
    std::vector<char*> pointers;
};

GameSettings Parse(std::vector<std::string> arguments)
{
    GameSettings settings;
    Arguments(std::move(arguments)).Parse(settings);
    return settings;
}

TEST(CommandLine, NoArgumentsKeepTheDefaults)
{
    const GameSettings settings = Parse({});
    EXPECT_EQ(settings.level, "Levels/Start.lvl");
    EXPECT_EQ(settings.demoMode, DemoMode::None);
    EXPECT_EQ(settings.width, 1366);
    EXPECT_EQ(settings.height, 768);
    EXPECT_TRUE(settings.multithreaded && settings.fullscreen && settings.pumpMessages && settings.vsync);
    EXPECT_FALSE(settings.debugKeys);
}

TEST(CommandLine, NamesAreNormalisedButValuesAreNot)
{
    const GameSettings settings = Parse({"--WIDTH", "800", "-height", "600", "/fullscreen", "n", "/--LEVEL",
                                         "Levels/Big.LVL", "/-vsync", "0"});
    EXPECT_EQ(settings.width, 800);
    EXPECT_EQ(settings.height, 600);
    EXPECT_FALSE(settings.fullscreen);
    EXPECT_FALSE(settings.vsync);
    EXPECT_EQ(settings.level, "Levels/Big.LVL");
    // Only one slash and two dashes are stripped.
    LogCapture capture;
    Parse({"//width", "1", "---width", "2"});
    EXPECT_EQ(capture.Messages("Command Line", LogLevel::Warning),
              (std::vector<std::string>{
                  "Unrecognised command line option: /width", "Unrecognised command line option: 1",
                  "Unrecognised command line option: -width", "Unrecognised command line option: 2"}));
}

TEST(CommandLine, YesNoValuesAreJudgedByTheirFirstCharacter)
{
    EXPECT_TRUE(Parse({"-debugkeys", "yes"}).debugKeys);
    EXPECT_TRUE(Parse({"-reset-keys", "1"}).debugKeys);
    EXPECT_TRUE(Parse({"-multithreaded", "no"}).multithreaded == false);
    EXPECT_FALSE(Parse({"-fullscreen", "Y"}).fullscreen);
    EXPECT_FALSE(Parse({"-fullscreen", "true"}).fullscreen);
    EXPECT_FALSE(Parse({"-fullscreen", ""}).fullscreen);
}

TEST(CommandLine, NumbersReadLikeAtoiAndSizesAreKeptUnclamped)
{
    EXPECT_EQ(Parse({"-width", "100"}).width, 100);
    EXPECT_EQ(Parse({"-width", "abc"}).width, 0);
    EXPECT_EQ(Parse({"-width", "12px"}).width, 12);
    EXPECT_EQ(Parse({"-height", "-479"}).height, -479);
    EXPECT_EQ(Parse({"-height", "4294967297"}).height, 1);
    EXPECT_EQ(Parse({"-height", "99999999999999999999999"}).height, -1);
}

TEST(CommandLine, AValueOptionTakesTheNextArgumentWhateverItLooksLike)
{
    const GameSettings settings = Parse({"-level", "-width", "-width", "700"});
    EXPECT_EQ(settings.level, "-width");
    EXPECT_EQ(settings.width, 700);
}

TEST(CommandLine, UnrecognisedOptionsAreReportedAndTheirValuesReadAsOptions)
{
    LogCapture capture;
    const GameSettings settings = Parse({"-foo", "bar", "-width", "800", "", "name=value"});
    EXPECT_EQ(settings.width, 800);
    EXPECT_EQ(capture.Messages("Command Line", LogLevel::Warning),
              (std::vector<std::string>{
                  "Unrecognised command line option: foo", "Unrecognised command line option: bar",
                  "Unrecognised command line option: ", "Unrecognised command line option: name=value"}));
}

TEST(CommandLine, AValueOptionWithoutItsValueIsReportedAndIgnored)
{
    LogCapture capture;
    const GameSettings settings = Parse({"-width", "900", "-LEVEL"});
    EXPECT_EQ(settings.width, 900);
    EXPECT_EQ(settings.level, "Levels/Start.lvl");
    EXPECT_EQ(capture.Messages("Command Line", LogLevel::Warning),
              std::vector<std::string>{"Command line option needs a value: level"});
}

TEST(CommandLine, HelpStopsTheWalkWhereverItStands)
{
    for (const char* help : {"h", "-HELP", "/commands", "--list", "?"})
    {
        GameSettings settings;
        Arguments arguments({"-width", "800", "-bogus", help, "-height", "500"});
        EXPECT_EQ(arguments.Parse(settings), CommandLineResult::ShowHelp) << help;
        EXPECT_EQ(settings.width, 800);
        EXPECT_EQ(settings.height, 768);
    }
    EXPECT_TRUE(std::string(Core::HelpText()).ends_with("whether to use vsync or not\n"));
}

TEST(CommandLine, TheLastDemoOptionWinsModeAndFile)
{
    GameSettings settings = Parse({"-record", "a.dem", "--play-demo", "b.dem"});
    EXPECT_EQ(settings.demoMode, DemoMode::Play);
    EXPECT_EQ(settings.demoFile, "b.dem");
    settings = Parse({"/playdemo", "b.dem", "-RecordDemo", "c.dem"});
    EXPECT_EQ(settings.demoMode, DemoMode::Record);
    EXPECT_EQ(settings.demoFile, "c.dem");
}

TEST(CommandLine, SeedReseedsTheGeneratorAtOnce)
{
    Core::SeedRand(7);
    Parse({"-seed", "1"});
    EXPECT_EQ(Core::Rand(), 41);
    Parse({"-seed", "nonsense"});
    const int32_t afterZero = Core::Rand();
    Core::SeedRand(0);
    EXPECT_EQ(afterZero, Core::Rand());
}

// Random argument vectors: well-formed options in random spellings mixed with unknown junk. The parser
// never fails, and the last value given for each option wins.
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
        ASSERT_EQ(Arguments(arguments).Parse(settings), CommandLineResult::Run);
        ASSERT_EQ(settings.width, expected.width) << round;
        ASSERT_EQ(settings.level, expected.level) << round;
        capture.Clear();
    }
}

} // namespace
