// The demo file's text: what the writer puts in it byte for byte, and what the reader makes of every line,
// damaged ones included.

#include "Input/Demo.h"
#include "Support/InputEvents.h"
#include "Support/LogCapture.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace std::string_literals;
using Input::EventKind;
using Input::InputEvent;
using Records = std::vector<std::string>;

// Parses the line and describes the event, freeing its path.
std::string Parsed(std::string_view line)
{
    OwnedEvents parsed;
    parsed.events.push_back(Input::ParseEvent(line));
    return Describe(parsed.events.front());
}

TEST(DemoWriter, EveryKindWritesItsLineAndFrameTimesTakeThreeDecimalsFromTheFirstEventOn)
{
    OwnedEvents drops;
    drops.events = {MakeDrop("Levels/A (1).lvl", 17), MakeDrop(nullptr)};
    const std::vector<std::pair<InputEvent, std::string>> cases = {
        {MakeEvent(EventKind::Quit), "[0] Quit ()\n"},
        {MakeSwitch(EventKind::Activate, true), "[1] Activate (true)\n"},
        {MakeSwitch(EventKind::Activate, false), "[1] Activate (false)\n"},
        {MakeEvent(EventKind::Minimize), "[2] Minimize ()\n"},
        {MakeEvent(EventKind::Close), "[3] Close ()\n"},
        {MakeEvent(EventKind::SizeChanged, 1366, 768), "[4] SizeChanged (1366, 768)\n"},
        {MakeEvent(EventKind::KeyDown, 65), "[5] KeyDown (65)\n"},
        {MakeEvent(EventKind::KeyUp, 165), "[6] KeyUp (165)\n"},
        {MakeEvent(EventKind::Char, -1), "[7] Char (4294967295)\n"},
        {MakeEvent(EventKind::MouseMove, -100, 200), "[8] MouseMove (-100, 200)\n"},
        {MakeEvent(EventKind::MouseDown, 100, 200, 1), "[9] MouseDown (1: 100, 200)\n"},
        {MakeEvent(EventKind::MouseUp, 5, -6, 3), "[10] MouseUp (3: 5, -6)\n"},
        {MakeSwitch(EventKind::MouseWheel, true), "[11] MouseWheel (true)\n"},
        {drops.events[0], "[12] FileDropped (Levels/A (1).lvl)\n"}, // the drop point is not written
        {drops.events[1], "[12] FileDropped ()\n"},
    };
    for (const auto& [event, line] : cases)
    {
        std::ostringstream demo;
        Input::WriteEvent(demo, event);
        EXPECT_EQ(demo.str(), line);
    }
    std::ostringstream demo;
    Input::WriteFrameLine(demo, 12.5, 1);
    Input::WriteEvent(demo, MakeEvent(EventKind::KeyDown, 65));
    Input::WriteFrameLine(demo, 13.25, UINT64_MAX);
    EXPECT_EQ(demo.str(), "<12.5> Frame 1\n[5] KeyDown (65)\n<13.250> Frame 18446744073709551615\n");
}

TEST(DemoParser, EveryLineReadsAsAnEventAndUnknownKindsAreLogged)
{
    LogCapture log;
    const std::string digits(1 << 20, '9');
    const std::string longPath(1 << 20, 'a');
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"[0] Quit ()", "Quit"},
        {"[1] Activate (false)", "Activate false"},
        {"[2] Minimize ()", "Minimize"},
        {"[3] Close ()", "Close"},
        {"[4] SizeChanged (1366, 768)", "SizeChanged 1366,768,0"},
        {"[6] KeyUp (-7)", "KeyUp -7,0,0"},
        {"[7] Char (97)", "Char 97,0,0"},
        {"[8] MouseMove (-100, 200)", "MouseMove -100,200,0"},
        {"[9] MouseDown (1: 100, 200)", "MouseDown 100,200,1"},
        {"[10] MouseUp (3: 5, -6)", "MouseUp 5,-6,3"},
        {"[13] Nothing (1, 2)", "None"},
        // The kind is the number from the second character on, Quit without one; kinds out of range log.
        {"", "Quit"},
        {"[", "Quit"},
        {"5] KeyDown (65)", "Quit"},
        {"[x] KeyDown (65)", "Quit"},
        {"x5] KeyDown (65)", "KeyDown 65,0,0"},
        {"[ +5] KeyDown (65)", "KeyDown 65,0,0"},
        {"[005x KeyDown (65)", "KeyDown 65,0,0"},
        {"[11] KeyDown (65)", "MouseWheel true"},
        {"[14] Later (1)", "None"},
        {"[-1] Negative ()", "None"},
        {"[4294967301] KeyDown (65)", "None"}, // 5 modulo 2^32: a kind narrowed to 32 bits reads KeyDown
        {"[-2147483648] Min ()", "None"},
        {"[" + digits, "None"},
        // Booleans are true unless the payload starts with f.
        {"[1] Activate (f)", "Activate false"},
        {"[1] Activate (False)", "Activate true"},
        {"[1] Activate ( false)", "Activate true"},
        {"[1] Activate", "Activate true"},
        {"[11] MouseWheel (0)", "MouseWheel true"},
        {"[11] Wheel(f) (true)", "MouseWheel false"},
        // Numbers follow the C scanner and clamp to int.
        {"[4] SizeChanged (640)", "SizeChanged 640,0,0"},
        {"[4] SizeChanged (640,480)", "SizeChanged 640,480,0"},
        {"[4] SizeChanged ( 640 ,480)", "SizeChanged 640,0,0"},
        {"[4] SizeChanged (x, 480)", "SizeChanged 0,0,0"},
        {"[8] MouseMove (99999999999, -99999999999)", "MouseMove 2147483647,-2147483648,0"},
        {"[8] MouseMove (2147483648, -2147483648)", "MouseMove 2147483647,-2147483648,0"},
        {"[8] MouseMove (" + digits + ", " + digits + ")", "MouseMove 2147483647,2147483647,0"},
        {"[5] KeyDown (4294967361)", "KeyDown 2147483647,0,0"},
        {"[5] KeyDown 65", "KeyDown 0,0,0"},
        {"[5] Key(Down) (65)", "KeyDown 0,0,0"},
        {"[5\0] KeyDown (6\0005)"s, "KeyDown 6,0,0"},
        {"[7] Char (+97)", "Char 97,0,0"},
        {"[9] MouseDown (2 100, 200)", "MouseDown 0,0,2"},
        {"[9] MouseDown (2: 100 200)", "MouseDown 100,0,2"},
        {"[10] MouseUp (-3:-4,-5)", "MouseUp -4,-5,-3"},
        // A path runs from the first parenthesis to the line's last character.
        {"[12] FileDropped (Levels/A (1).lvl)", "FileDropped Levels/A (1).lvl"},
        {"[12] FileDropped (a b)x", "FileDropped a b)"},
        {"[12] FileDropped (x)", "FileDropped x"},
        {"[12] FileDropped ()", "FileDropped (null)"},
        {"[12] FileDropped (", "FileDropped (null)"},
        {"[12] FileDropped", "FileDropped (null)"},
        {"[12] FileDropped (" + longPath + ")", "FileDropped " + longPath},
    };
    for (const auto& [line, event] : cases)
    {
        EXPECT_EQ(Parsed(line), event) << line.substr(0, 40);
    }
    // The payload ends the view: nothing after it may be read, so the view is cut from a longer text.
    const std::string text = "[9] MouseDown (1: 2, 34567";
    EXPECT_EQ(Parsed(std::string_view(text).substr(0, text.size() - 4)), "MouseDown 2,3,1");
    EXPECT_EQ(Parsed(std::string_view(text).substr(0, 1)), "Quit");
    EXPECT_EQ(
        log.Messages("Input", LogLevel::Warning),
        (Records{"Ignoring unknown event: [14] Later (1)", "Ignoring unknown event: [-1] Negative ()",
                 "Ignoring unknown event: [4294967301] KeyDown (65)",
                 "Ignoring unknown event: [-2147483648] Min ()", "Ignoring unknown event: [" + digits}));
    EXPECT_EQ(log.Entries().size(), 5u);
}

TEST(DemoLoad, FramesKeepTheirEventsInFileOrderOnceTheNextFrameLineIsRead)
{
    LogCapture log;
    const std::vector<std::pair<std::string, Records>> cases = {
        {"<0.1> Frame 1\n<0.2> Frame 2\n[5] KeyDown (65)\n[6] KeyUp (65)\n<0.3> Frame 3\n<0.4> Frame 4\n"
         "[3] Close ()\n<0.5> Frame 9\n[0] Quit ()\n<0.6> Frame 5\n[2] Minimize ()\n<0.7> Frame 5\n",
         {"2: KeyDown 65,0,0 | KeyUp 65,0,0", "4: Close", "9: Quit", "5: Minimize"}},
        {"", {}},
        // Events ahead of the first frame line belong to frame 0.
        {"[5] KeyDown (65)\n\n<1> Frame 3\n[6] KeyUp (65)\n<2> Frame 4\n",
         {"0: KeyDown 65,0,0 | Quit", "3: KeyUp 65,0,0"}},
        // Events without a following frame line are never stored; a last line without its line feed is
        // not read, not even a frame line.
        {"<1> Frame 5\n[5] KeyDown (65)\n[12] FileDropped (Levels/A.lvl)\n", {}},
        {"<1> Frame 5\n[12] FileDropped (Levels/A.lvl)\n<2> Frame 6", {}},
        {"<1> Frame 5\n[0] Quit ()\n<2> Frame 6\n[3] Close ()", {"5: Quit"}},
        // One carriage return before a line feed is dropped.
        {"<1.000> Frame 5\r\n[12] FileDropped (Levels/A (1).lvl)\r\n[1] Activate (false)\r\n<2.000> Frame "
         "6\r\n",
         {"5: FileDropped Levels/A (1).lvl | Activate false"}},
        {"<1> Frame 5\n[12] FileDropped (a)\r\r\n<2> Frame 6\n", {"5: FileDropped a)"}},
        // Frame lines in any notation of their time and number; those missing a field are events.
        {"<12.5> Frame 1\n[0] Quit ()\n<1e3> Frame 2\n[0] Quit ()\n<  -1.5>   Frame\t 3\n[0] Quit ()\n"
         "<.5>Frame4\n[0] Quit ()\n<inf> Frame +5\n[0] Quit ()\n<7> Frame 6x\n",
         {"1: Quit", "2: Quit", "3: Quit", "4: Quit", "5: Quit"}},
        {"<1> Frame 1\n<> Frame 2\n<x> Frame 3\n<1 Frame 4\n<1> frame 5\n<1> Frame\n<1> Frame x\n <1> Frame "
         "6\n"
         "<1> Frame 9\n",
         {"1: Quit | Quit | Activate true | Activate true | Activate true | Activate true | Quit"}},
        // Frame numbers are unsigned 64 bits: a minus negates modulo 2^64, too many digits saturate.
        {"<1> Frame 18446744073709551615\n[0] Quit ()\n<1> Frame 99999999999999999999999\n[0] Quit ()\n"
         "<1> Frame -5\n[0] Quit ()\n<1> Frame 18446744073709551616\n[0] Quit ()\n<1> Frame 0\n",
         {"18446744073709551615: Quit", "18446744073709551615: Quit", "18446744073709551611: Quit",
          "18446744073709551615: Quit"}},
        {"\0\0\0\n[7\0x\n)(\n((((\n[12]\n[-1]\n"s + std::string(1 << 20, '(') + "\n<1> Frame 2\n",
         {"0: Quit | Char 0,0,0 | Quit | Quit | FileDropped (null) | None | Quit"}},
    };
    for (const auto& [text, records] : cases)
    {
        std::istringstream stream(text);
        OwnedDemo demo;
        Input::LoadDemo(stream, demo.frames);
        Records loaded;
        for (const Input::DemoFrame& record : demo.frames)
        {
            loaded.push_back(std::to_string(record.frame) + ": " + Describe(record.events));
        }
        EXPECT_EQ(loaded, records) << text.substr(0, 80);
    }
    EXPECT_EQ(log.Messages("Input", LogLevel::Warning), Records{"Ignoring unknown event: [-1]"});
}

} // namespace
