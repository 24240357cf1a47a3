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

TEST(EventQueue, EventsLeaveInTheOrderTheyCame)
{
    EventQueue queue;
    InputEvent event;
    EXPECT_FALSE(queue.Pop(event));
    queue.Push(MakeEvent(EventKind::KeyDown, 65));
    queue.Push(MakeSwitch(EventKind::Activate, false));
    queue.Push(MakeEvent(EventKind::MouseDown, 1, 2, 3));
    EXPECT_EQ(queue.Size(), 3U);
    ASSERT_TRUE(queue.Pop(event));
    EXPECT_EQ(Describe(event), "KeyDown 65,0,0");
    EXPECT_EQ(Contents(queue), "Activate false | MouseDown 1,2,3");
    queue.Clear();
    EXPECT_EQ(queue.Size(), 0U);
    EXPECT_FALSE(queue.Pop(event));
}

TEST(EventQueue, TakingOverBySwapKeepsEveryEventAndItsPath)
{
    EventQueue incoming;
    EventQueue frameEvents;
    incoming.Push(MakeEvent(EventKind::KeyDown, 65));
    incoming.Push(MakeDrop("Levels/A.lvl"));
    frameEvents.Push(MakeEvent(EventKind::Close));

    frameEvents.Clear();
    frameEvents.Swap(incoming);
    EXPECT_EQ(incoming.Size(), 0U);
    EXPECT_EQ(Contents(frameEvents), "KeyDown 65,0,0 | FileDropped Levels/A.lvl");

    frameEvents.Swap(frameEvents);
    EXPECT_EQ(Contents(frameEvents), "KeyDown 65,0,0 | FileDropped Levels/A.lvl");
    frameEvents.Drain();
    EXPECT_EQ(frameEvents.Size(), 0U);
}

TEST(EventQueue, CopiesOnlyLookAtThePathsTheOriginalOwns)
{
    EventQueue owner;
    owner.Push(MakeDrop("Levels/B.lvl"));
    owner.Push(MakeEvent(EventKind::MouseMove, 4, 5));
    {
        EventQueue copy(owner);
        EventQueue assigned;
        assigned = owner;
        assigned = assigned;
        EXPECT_EQ(Contents(copy), "FileDropped Levels/B.lvl | MouseMove 4,5,0");
        EXPECT_EQ(Contents(assigned), "FileDropped Levels/B.lvl | MouseMove 4,5,0");
        copy.Clear();
    }
    // The copies are gone and freed nothing: the owner's path is still there to read and to free.
    EXPECT_EQ(Contents(owner), "FileDropped Levels/B.lvl | MouseMove 4,5,0");

    EventQueue replaced;
    std::vector<InputEvent> replacement;
    owner.CopyTo(replacement);
    replaced.Push(MakeEvent(EventKind::Quit));
    replaced.Assign(replacement);
    EXPECT_EQ(Contents(replaced), "FileDropped Levels/B.lvl | MouseMove 4,5,0");
    owner.Drain();
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
