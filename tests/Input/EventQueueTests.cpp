// The queue between the window's thread and the game loop: order, the takeover by swapping, and who owns
// the path of a "FileDropped". A path freed twice or never is caught by AddressSanitizer in the debug build.

#include "Input/EventQueue.h"
#include "Support/InputEvents.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace
{

using Input::EventKind;
using Input::EventQueue;
using Input::InputEvent;

std::string Contents(const EventQueue& queue)
{
    std::vector<InputEvent> events;
    queue.CopyTo(events);
    return Describe(events);
}

// Order through Pop, Swap (with itself too), copies and Assign; a copy that freed the paths it shares
// would make the owner's later read and Drain a use after free.
TEST(EventQueue, EventsKeepTheirOrderAndOnlyTheOwnerFreesTheirPaths)
{
    EventQueue incoming;
    EventQueue frameEvents;
    InputEvent event;
    EXPECT_FALSE(incoming.Pop(event));
    incoming.Push(MakeEvent(EventKind::KeyDown, 65));
    incoming.Push(MakeDrop("Levels/A.lvl"));
    incoming.Push(MakeEvent(EventKind::MouseDown, 1, 2, 3));
    frameEvents.Push(MakeEvent(EventKind::Close));
    frameEvents.Clear();
    frameEvents.Swap(incoming);
    frameEvents.Swap(frameEvents);
    EXPECT_EQ(incoming.Size(), 0U);
    ASSERT_TRUE(frameEvents.Pop(event));
    EXPECT_EQ(Describe(event), "KeyDown 65,0,0");
    const std::string rest = "FileDropped Levels/A.lvl | MouseDown 1,2,3";
    {
        EventQueue copy(frameEvents);
        EventQueue assigned;
        assigned = frameEvents;
        assigned = assigned;
        EXPECT_EQ(Contents(copy), rest);
        EXPECT_EQ(Contents(assigned), rest);
        copy.Clear();
    }
    EXPECT_EQ(Contents(frameEvents), rest);
    std::vector<InputEvent> replacement;
    frameEvents.CopyTo(replacement);
    incoming.Push(MakeEvent(EventKind::Quit));
    incoming.Assign(replacement);
    EXPECT_EQ(Contents(incoming), rest);
    frameEvents.Drain();
    EXPECT_EQ(frameEvents.Size(), 0U);
    EXPECT_FALSE(frameEvents.Pop(event));
}

TEST(EventQueue, DrainFreesOnlyThePathsOfDrops)
{
    EventQueue queue;
    // Values whose bytes would make a path: freeing them would crash or be reported.
    queue.Push(MakeEvent(EventKind::SizeChanged, 0x1234, 0x5678));
    queue.Push(MakeDrop("x"));
    queue.Push(MakeDrop(nullptr));
    queue.Push(MakeDrop("y"));
    queue.Drain();
    EXPECT_EQ(queue.Size(), 0U);
}

TEST(EventQueue, EventsPushedWhileTheGameTakesThemOverAreNeitherLostNorReordered)
{
    constexpr int32_t kEvents = 20000;
    EventQueue incoming;
    std::thread window(
        [&incoming]
        {
            for (int32_t code = 0; code < kEvents; ++code)
            {
                incoming.Push(MakeEvent(EventKind::KeyDown, code));
            }
        });
    EventQueue frameEvents;
    std::vector<InputEvent> received;
    std::vector<InputEvent> frame;
    while (received.size() < static_cast<size_t>(kEvents))
    {
        frameEvents.Clear();
        frameEvents.Swap(incoming);
        frameEvents.CopyTo(frame);
        received.insert(received.end(), frame.begin(), frame.end());
    }
    window.join();
    bool inOrder = received.size() == static_cast<size_t>(kEvents);
    for (size_t index = 0; inOrder && index < received.size(); ++index)
    {
        inOrder = received[index].values.x == static_cast<int32_t>(index);
    }
    EXPECT_TRUE(inOrder);
    EXPECT_EQ(incoming.Size(), 0U);
}

} // namespace
