// Playing a loaded demo: which frame gets which recorded events, what is skipped, when the replay ends, and
// that whatever the writer records comes back unchanged at its frame.

#include "Input/Demo.h"
#include "Support/InputEvents.h"
#include "Support/LogCapture.h"

#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using Input::EventKind;
using Input::InputEvent;

void Load(const std::string& text, OwnedDemo& demo)
{
    std::istringstream stream(text);
    Input::LoadDemo(stream, demo.frames);
}

// What one replayed frame hands to the game: "events" while playing, "end" once the replay is over.
std::string TakeFrame(OwnedDemo& demo, uint64_t frame)
{
    OwnedEvents taken;
    taken.events.push_back(MakeEvent(EventKind::KeyDown, 65)); // what the game held before is dropped
    const bool playing = Input::TakeEventsOfFrame(demo.frames, frame, taken.events);
    return playing ? Describe(taken.events) : "end " + Describe(taken.events);
}

TEST(DemoReplay, RecordsPlayAtTheirFramesPassedOnesAreSkippedAndTheReplayEndsWhenNoneAreLeft)
{
    const struct
    {
        const char* name;
        const char* demo;
        std::vector<std::pair<uint64_t, std::string>> takes;
        std::vector<std::string> warnings;
    } rows[] = {
        {"due and waiting",
         "<1> Frame 1\n<1> Frame 5\n[5] KeyDown (65)\n[7] Char (97)\n<1> Frame 6\n<1> Frame 9\n"
         "[12] FileDropped (Levels/A (1).lvl)\n<1> Frame 10\n",
         {{1, ""},
          {5, "KeyDown 65,0,0 | Char 97,0,0"},
          {6, ""},
          {9, "FileDropped Levels/A (1).lvl"},
          {10, "end "}},
         {}},
        {"passed records are skipped",
         "[12] FileDropped (early.lvl)\n<1> Frame 2\n[12] FileDropped (a.lvl)\n<1> Frame 3\n[0] Quit ()\n"
         "<1> Frame 7\n[3] Close ()\n<1> Frame 8\n",
         {{5, ""}},
         {"Skipped replay frame 0", "Skipped replay frame 2", "Skipped replay frame 3"}},
        {"the one due still plays after a skip",
         "<1> Frame 1\n[2] Minimize ()\n<1> Frame 4\n[3] Close ()\n<1> Frame 5\n",
         {{4, "Close"}},
         {"Skipped replay frame 1"}},
        {"a second record of a frame is skipped at the next",
         "<1> Frame 5\n[5] KeyDown (65)\n<1> Frame 5\n[6] KeyUp (65)\n<1> Frame 6\n",
         {{5, "KeyDown 65,0,0"}, {6, "end "}},
         {"Skipped replay frame 5"}},
        {"an empty demo ends at once", "<1> Frame 1\n<2> Frame 2\n", {{1, "end "}}, {}},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        LogCapture log;
        OwnedDemo demo;
        Load(row.demo, demo);
        for (const auto& [frame, events] : row.takes)
        {
            EXPECT_EQ(TakeFrame(demo, frame), events) << "frame " << frame;
        }
        EXPECT_EQ(log.Messages("Input", LogLevel::Warning), row.warnings);
        const bool ended = row.takes.back().second == "end ";
        EXPECT_EQ(log.Messages("Input", LogLevel::Info),
                  ended ? std::vector<std::string>{"Ending replay"} : std::vector<std::string>{});
    }
}

TEST(DemoReplay, TheLastPossibleFrameKeepsItsRecordWaiting)
{
    OwnedDemo demo;
    Load("<1> Frame 18446744073709551615\n[12] FileDropped (late.lvl)\n<2> Frame 1\n", demo);
    for (uint64_t frame = 1; frame < 1000; ++frame)
    {
        ASSERT_EQ(TakeFrame(demo, frame), "");
    }
    EXPECT_EQ(TakeFrame(demo, UINT64_MAX), "FileDropped late.lvl");
}

// A random event of any kind with values that a window can produce: character codes are never negative,
// and a path is printable text without line ends.
InputEvent RandomEvent(std::mt19937& random)
{
    const auto kind = static_cast<EventKind>(std::uniform_int_distribution<int32_t>(0, 12)(random));
    std::uniform_int_distribution<int32_t> anyInt(INT32_MIN, INT32_MAX);
    switch (kind)
    {
    case EventKind::Activate:
    case EventKind::MouseWheel:
        return MakeSwitch(kind, random() % 2 == 0);
    case EventKind::Char:
        return MakeEvent(kind, std::uniform_int_distribution<int32_t>(0, INT32_MAX)(random));
    case EventKind::KeyDown:
    case EventKind::KeyUp:
        return MakeEvent(kind, anyInt(random));
    case EventKind::SizeChanged:
    case EventKind::MouseMove:
        return MakeEvent(kind, anyInt(random), anyInt(random));
    case EventKind::MouseDown:
    case EventKind::MouseUp:
        return MakeEvent(kind, anyInt(random), anyInt(random), anyInt(random));
    case EventKind::FileDropped:
    {
        std::string path(random() % 12, ' ');
        for (char& character : path)
        {
            character = static_cast<char>(std::uniform_int_distribution<int32_t>(' ', '~')(random));
        }
        return MakeDrop(path.empty() ? nullptr : path.c_str());
    }
    default:
        return MakeEvent(kind);
    }
}

TEST(DemoRoundTrip, RandomRecordingsPlayBackTheirEventsAtTheirFrames)
{
    LogCapture log;
    std::mt19937 random(20261123);
    for (int run = 0; run < 50; ++run)
    {
        OwnedEvents recorded;
        std::vector<std::string> expected;
        std::ostringstream file;
        const uint64_t frames = 1 + random() % 40;
        for (uint64_t frame = 1; frame <= frames; ++frame)
        {
            Input::WriteFrameLine(file, static_cast<double>(random() % 100000) / 64.0, frame);
            const size_t first = recorded.events.size();
            for (uint32_t count = random() % 4; count > 0; --count)
            {
                recorded.events.push_back(RandomEvent(random));
                Input::WriteEvent(file, recorded.events.back());
            }
            const std::vector<InputEvent> events(recorded.events.begin() + static_cast<ptrdiff_t>(first),
                                                 recorded.events.end());
            expected.push_back(Describe(events));
        }
        // The recording's last frame plays only if a frame line follows it.
        Input::WriteFrameLine(file, 0.0, frames + 1);

        OwnedDemo demo;
        Load(file.str(), demo);
        for (uint64_t frame = 1; frame <= frames; ++frame)
        {
            const std::string taken = TakeFrame(demo, frame); // frames without events may end it early
            ASSERT_EQ(taken.starts_with("end ") ? taken.substr(4) : taken, expected[frame - 1])
                << "run " << run << ", frame " << frame << "\n"
                << file.str();
        }
        EXPECT_EQ(TakeFrame(demo, frames + 1), "end ");
    }
    EXPECT_EQ(log.Count(LogLevel::Warning), 0U);
}

} // namespace
