// The demo file's text: what the writer puts in it byte for byte, and what the reader makes of every line,
// damaged ones included.

#include "Input/Demo.h"
#include "Support/InputEvents.h"
#include "Support/LogCapture.h"

#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{

using Input::EventKind;
using Input::InputEvent;

constexpr uint64_t kFrameMax = std::numeric_limits<uint64_t>::max();

std::string Written(const InputEvent& event)
{
    std::ostringstream demo;
    Input::WriteEvent(demo, event);
    return demo.str();
}

// Parses the line and describes the event, freeing its path.
std::string Parsed(std::string_view line)
{
    OwnedEvents parsed;
    parsed.events.push_back(Input::ParseEvent(line));
    return Describe(parsed.events.front());
}

// Loads the text and describes each record as "frame: events".
std::vector<std::string> Loaded(const std::string& text)
{
    std::istringstream stream(text);
    OwnedDemo demo;
    Input::LoadDemo(stream, demo.frames);
    std::vector<std::string> records;
    for (const Input::DemoFrame& record : demo.frames)
    {
        records.push_back(std::to_string(record.frame) + ": " + Describe(record.events));
    }
    return records;
}

using Records = std::vector<std::string>;

TEST(DemoWriter, EveryKindWritesItsLine)
{
    OwnedEvents drops;
    drops.events = {MakeDrop("Levels/A.lvl"), MakeDrop("Levels/A (1).lvl"), MakeDrop(nullptr)};
    drops.events[0].drop.x = 17;
    const std::vector<std::pair<InputEvent, std::string>> cases = {
        {MakeEvent(EventKind::Quit), "[0] Quit ()\n"},
        {MakeSwitch(EventKind::Activate, true), "[1] Activate (true)\n"},
        {MakeSwitch(EventKind::Activate, false), "[1] Activate (false)\n"},
        {MakeEvent(EventKind::Minimize), "[2] Minimize ()\n"},
        {MakeEvent(EventKind::Close), "[3] Close ()\n"},
        {MakeEvent(EventKind::SizeChanged, 1366, 768), "[4] SizeChanged (1366, 768)\n"},
        {MakeEvent(EventKind::KeyDown, 65), "[5] KeyDown (65)\n"},
        {MakeEvent(EventKind::KeyUp, 165), "[6] KeyUp (165)\n"},
        {MakeEvent(EventKind::Char, 97), "[7] Char (97)\n"},
        {MakeEvent(EventKind::Char, -1), "[7] Char (4294967295)\n"},
        {MakeEvent(EventKind::MouseMove, -100, 200), "[8] MouseMove (-100, 200)\n"},
        {MakeEvent(EventKind::MouseDown, 100, 200, 1), "[9] MouseDown (1: 100, 200)\n"},
        {MakeEvent(EventKind::MouseUp, 5, -6, 3), "[10] MouseUp (3: 5, -6)\n"},
        {MakeSwitch(EventKind::MouseWheel, false), "[11] MouseWheel (false)\n"},
        {MakeSwitch(EventKind::MouseWheel, true), "[11] MouseWheel (true)\n"},
        // The drop point is not written.
        {drops.events[0], "[12] FileDropped (Levels/A.lvl)\n"},
        {drops.events[1], "[12] FileDropped (Levels/A (1).lvl)\n"},
        {drops.events[2], "[12] FileDropped ()\n"},
    };
    for (const auto& [event, line] : cases)
    {
        EXPECT_EQ(Written(event), line);
    }
}

TEST(DemoWriter, FrameTimesTakeThreeDecimalsFromTheFirstEventOn)
{
    std::ostringstream demo;
    Input::WriteFrameLine(demo, 0.0, 0);
    Input::WriteFrameLine(demo, 12.5, 1);
    Input::WriteEvent(demo, MakeEvent(EventKind::KeyDown, 65));
    Input::WriteFrameLine(demo, 13.25, 2);
    Input::WriteFrameLine(demo, 0.0, kFrameMax);
    EXPECT_EQ(demo.str(), "<0> Frame 0\n"
                          "<12.5> Frame 1\n"
                          "[5] KeyDown (65)\n"
                          "<13.250> Frame 2\n"
                          "<0.000> Frame 18446744073709551615\n");
}

TEST(DemoParser, EachKindReadsBackFromItsLine)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"[0] Quit ()", "Quit"},
        {"[1] Activate (true)", "Activate true"},
        {"[1] Activate (false)", "Activate false"},
        {"[2] Minimize ()", "Minimize"},
        {"[3] Close ()", "Close"},
        {"[4] SizeChanged (1366, 768)", "SizeChanged 1366,768,0"},
        {"[5] KeyDown (65)", "KeyDown 65,0,0"},
        {"[6] KeyUp (-7)", "KeyUp -7,0,0"},
        {"[7] Char (97)", "Char 97,0,0"},
        {"[8] MouseMove (-100, 200)", "MouseMove -100,200,0"},
        {"[9] MouseDown (1: 100, 200)", "MouseDown 100,200,1"},
        {"[10] MouseUp (3: 5, -6)", "MouseUp 5,-6,3"},
        {"[11] MouseWheel (false)", "MouseWheel false"},
        {"[12] FileDropped (Levels/A.lvl)", "FileDropped Levels/A.lvl"},
        {"[13] Nothing (1, 2)", "None"},
    };
    for (const auto& [line, event] : cases)
    {
        EXPECT_EQ(Parsed(line), event) << line;
    }
}

TEST(DemoParser, TheKindIsTheNumberFromTheSecondCharacterAndDefaultsToQuit)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", "Quit"},
        {"[", "Quit"},
        {"5", "Quit"},
        {"5] KeyDown (65)", "Quit"},
        {"[x] KeyDown (65)", "Quit"},
        {"x5] KeyDown (65)", "KeyDown 65,0,0"},
        {"[ +5] KeyDown (65)", "KeyDown 65,0,0"},
        {"[005x KeyDown (65)", "KeyDown 65,0,0"},
        {"[11] KeyDown (65)", "MouseWheel true"},
    };
    for (const auto& [line, event] : cases)
    {
        EXPECT_EQ(Parsed(line), event) << line;
    }
}

TEST(DemoParser, UnknownKindsAreLoggedWithTheLineAndStayNone)
{
    LogCapture log;
    // 4294967301 is 5 modulo 2^32: a kind narrowed to 32 bits would read as "KeyDown".
    const std::vector<std::string> lines = {"[14] Later (1)", "[-1] Negative ()", "[99999999999] Big (65)",
                                            "[4294967301] KeyDown (65)", "[-2147483648] Min ()"};
    for (const std::string& line : lines)
    {
        EXPECT_EQ(Parsed(line), "None") << line;
    }
    std::vector<std::string> expected;
    for (const std::string& line : lines)
    {
        expected.push_back("Ignoring unknown event: " + line);
    }
    EXPECT_EQ(log.Messages("Input", LogLevel::Warning), expected);
    EXPECT_EQ(log.Entries().size(), lines.size());
}

TEST(DemoParser, BooleansAreTrueUnlessThePayloadStartsWithF)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"[1] Activate (f)", "Activate false"},
        {"[1] Activate (False)", "Activate true"},
        {"[1] Activate ( false)", "Activate true"},
        {"[1] Activate ()", "Activate true"},
        {"[1] Activate", "Activate true"},
        {"[11] MouseWheel (0)", "MouseWheel true"},
        {"[11] Wheel(f) (true)", "MouseWheel false"},
    };
    for (const auto& [line, event] : cases)
    {
        EXPECT_EQ(Parsed(line), event) << line;
    }
}

TEST(DemoParser, PayloadNumbersFollowTheScannerAndClampToInt)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"[4] SizeChanged (640)", "SizeChanged 640,0,0"},
        {"[4] SizeChanged (640,480)", "SizeChanged 640,480,0"},
        {"[4] SizeChanged ( 640 ,480)", "SizeChanged 640,0,0"},
        {"[4] SizeChanged (x, 480)", "SizeChanged 0,0,0"},
        {"[8] MouseMove (99999999999, -99999999999)", "MouseMove 2147483647,-2147483648,0"},
        {"[8] MouseMove (2147483648, -2147483648)", "MouseMove 2147483647,-2147483648,0"},
        {"[5] KeyDown (4294967361)", "KeyDown 2147483647,0,0"},
        {"[5] KeyDown 65", "KeyDown 0,0,0"},
        {"[5] Key(Down) (65)", "KeyDown 0,0,0"},
        {"[7] Char (+97)", "Char 97,0,0"},
        {"[9] MouseDown (2 100, 200)", "MouseDown 0,0,2"},
        {"[9] MouseDown (2: 100 200)", "MouseDown 100,0,2"},
        {"[10] MouseUp (-3:-4,-5)", "MouseUp -4,-5,-3"},
    };
    for (const auto& [line, event] : cases)
    {
        EXPECT_EQ(Parsed(line), event) << line;
    }
}

TEST(DemoParser, APathRunsFromTheFirstParenthesisToTheLinesLastCharacter)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"[12] FileDropped (Levels/A (1).lvl)", "FileDropped Levels/A (1).lvl"},
        {"[12] FileDropped (a b)x", "FileDropped a b)"},
        {"[12] FileDropped (My Level.lvl)", "FileDropped My Level.lvl"},
        {"[12] FileDropped (x)", "FileDropped x"},
        {"[12] FileDropped ()", "FileDropped (null)"},
        {"[12] FileDropped (", "FileDropped (null)"},
        {"[12] FileDropped", "FileDropped (null)"},
    };
    for (const auto& [line, event] : cases)
    {
        EXPECT_EQ(Parsed(line), event) << line;
    }
}

TEST(DemoParser, HugeLinesAndNulBytesStayInsideTheLine)
{
    LogCapture log;
    const std::string digits(1 << 20, '9');
    EXPECT_EQ(Parsed("[" + digits), "None");
    EXPECT_EQ(Parsed("[8] MouseMove (" + digits + ", " + digits + ")"), "MouseMove 2147483647,2147483647,0");

    OwnedEvents parsed;
    const std::string path(1 << 20, 'a');
    parsed.events.push_back(Input::ParseEvent("[12] FileDropped (" + path + ")"));
    EXPECT_EQ(parsed.events.front().drop.path, path);

    using namespace std::string_literals;
    EXPECT_EQ(Parsed("[5\0] KeyDown (6\0005)"s), "KeyDown 6,0,0");
    // The payload ends the view: nothing after it may be read, so the view is cut from a longer text.
    const std::string text = "[9] MouseDown (1: 2, 34567";
    EXPECT_EQ(Parsed(std::string_view(text).substr(0, text.size() - 4)), "MouseDown 2,3,1");
    EXPECT_EQ(Parsed(std::string_view(text).substr(0, 1)), "Quit");
}

TEST(DemoLoad, OnlyFramesWithEventsAreKeptAndInFileOrder)
{
    EXPECT_EQ(Loaded("<0.1> Frame 1\n<0.2> Frame 2\n[5] KeyDown (65)\n[6] KeyUp (65)\n<0.3> Frame 3\n"
                     "<0.4> Frame 4\n[3] Close ()\n<0.5> Frame 9\n[0] Quit ()\n<0.6> Frame 5\n"
                     "[2] Minimize ()\n<0.7> Frame 5\n<0.8> Frame 6\n"),
              (Records{"2: KeyDown 65,0,0 | KeyUp 65,0,0", "4: Close", "9: Quit", "5: Minimize"}));
    EXPECT_EQ(Loaded(""), Records{});
    EXPECT_EQ(Loaded("<1> Frame 1\n<2> Frame 2\n<3> Frame 3\n"), Records{});
}

TEST(DemoLoad, EventsAheadOfTheFirstFrameLineBelongToFrameZero)
{
    EXPECT_EQ(Loaded("[5] KeyDown (65)\n\n<1> Frame 3\n[6] KeyUp (65)\n<2> Frame 4\n"),
              (Records{"0: KeyDown 65,0,0 | Quit", "3: KeyUp 65,0,0"}));
}

TEST(DemoLoad, EventsWithoutAFollowingFrameLineAreNeverStored)
{
    EXPECT_EQ(Loaded("<1> Frame 5\n[5] KeyDown (65)\n[12] FileDropped (Levels/A.lvl)\n"), Records{});
    // A last line without its line feed is not read, not even a frame line.
    EXPECT_EQ(Loaded("<1> Frame 5\n[12] FileDropped (Levels/A.lvl)\n<2> Frame 6"), Records{});
    EXPECT_EQ(Loaded("<1> Frame 5\n[12] FileDropped (Levels/A.lvl)\n<2> Frame 6\n"),
              Records{"5: FileDropped Levels/A.lvl"});
    EXPECT_EQ(Loaded("<1> Frame 5\n[0] Quit ()\n<2> Frame 6\n[3] Close ()"), Records{"5: Quit"});
}

TEST(DemoLoad, CarriageReturnsBeforeLineFeedsAreDropped)
{
    EXPECT_EQ(Loaded("<1.000> Frame 5\r\n[12] FileDropped (Levels/A (1).lvl)\r\n[1] Activate (false)\r\n"
                     "[8] MouseMove (1, 2)\r\n<2.000> Frame 6\r\n"),
              Records{"5: FileDropped Levels/A (1).lvl | Activate false | MouseMove 1,2,0"});
    // Only one is dropped: the path of this line ends before the second.
    EXPECT_EQ(Loaded("<1> Frame 5\n[12] FileDropped (a)\r\r\n<2> Frame 6\n"), Records{"5: FileDropped a)"});
}

TEST(DemoLoad, FrameLinesAreRecognisedByTheirTimeAndNumberInAnyNotation)
{
    EXPECT_EQ(Loaded("<12.5> Frame 1\n[0] Quit ()\n<1e3> Frame 2\n[0] Quit ()\n<  -1.5>   Frame\t 3\n"
                     "[0] Quit ()\n<.5>Frame4\n[0] Quit ()\n<inf> Frame +5\n[0] Quit ()\n<7> Frame 6x\n"),
              (Records{"1: Quit", "2: Quit", "3: Quit", "4: Quit", "5: Quit"}));
    // Each of these misses a field or a literal, so it is read as an event line.
    EXPECT_EQ(
        Loaded("<1> Frame 1\n<> Frame 2\n<x> Frame 3\n<1 Frame 4\n<1> frame 5\n<1> Frame\n"
               "<1> Frame x\n <1> Frame 6\n<1> Frame 9\n"),
        (Records{"1: Quit | Quit | Activate true | Activate true | Activate true | Activate true | Quit"}));
}

TEST(DemoLoad, FrameNumbersAreReadAsUnsigned64BitsWithoutOverflow)
{
    EXPECT_EQ(
        Loaded("<1> Frame 18446744073709551615\n[0] Quit ()\n"
               "<1> Frame 99999999999999999999999\n[0] Quit ()\n"
               "<1> Frame -1\n[0] Quit ()\n"
               "<1> Frame -5\n[0] Quit ()\n"
               "<1> Frame 18446744073709551616\n[0] Quit ()\n<1> Frame 0\n"),
        (Records{"18446744073709551615: Quit", "18446744073709551615: Quit", "18446744073709551615: Quit",
                 "18446744073709551611: Quit", "18446744073709551615: Quit"}));
}

TEST(DemoLoad, JunkBecomesEventsWithoutEndingTheLoad)
{
    LogCapture log;
    using namespace std::string_literals;
    const std::string junk =
        "\0\0\0\n[7\0x\n)(\n((((\n[12]\n[-1]\n"s + std::string(1 << 20, '(') + "\n<1> Frame 2\n";
    EXPECT_EQ(Loaded(junk),
              (Records{"0: Quit | Char 0,0,0 | Quit | Quit | FileDropped (null) | None | Quit"}));
    EXPECT_EQ(log.Messages("Input", LogLevel::Warning),
              std::vector<std::string>{"Ignoring unknown event: [-1]"});
}

} // namespace
