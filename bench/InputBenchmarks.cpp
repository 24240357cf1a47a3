// What input costs the game loop: taking the window's events over each frame, a whole frame's handling of
// them, and reading a long demo before it plays.

#include "Input/Demo.h"
#include "Input/EventQueue.h"
#include "Support/TempFolder.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <fstream>
#include <sstream>
#include <vector>

namespace
{

Input::InputEvent KeyDown(int32_t code)
{
    Input::InputEvent event;
    event.type = Input::EventKind::KeyDown;
    event.values = {code, 0, 0};
    return event;
}

// The takeover holds the window's queue only for a swap of containers: its cost must not grow with the
// number of events waiting. Swapping back keeps them waiting, so nothing is freed inside the timing.
void EventTakeover(benchmark::State& state)
{
    Input::EventQueue incoming;
    Input::EventQueue frameEvents;
    for (int64_t index = 0; index < state.range(0); ++index)
    {
        incoming.Push(KeyDown(static_cast<int32_t>(index)));
    }
    for (auto _ : state)
    {
        frameEvents.Clear();
        frameEvents.Swap(incoming);
        frameEvents.Swap(incoming);
    }
    state.counters["event_bytes"] = sizeof(Input::InputEvent);
}
BENCHMARK(EventTakeover)->Arg(10)->Arg(1000)->Arg(100000);

// A busy frame: a thousand events arrive, the game takes them over, copies them to act on them and drains
// them at the frame's end. The copy's vector lives from frame to frame, as the game loop's does.
void EventTakeoverFrame(benchmark::State& state)
{
    Input::EventQueue incoming;
    Input::EventQueue frameEvents;
    std::vector<Input::InputEvent> copy;
    for (auto _ : state)
    {
        for (int32_t code = 0; code < 1000; ++code)
        {
            incoming.Push(KeyDown(code));
        }
        frameEvents.Clear();
        frameEvents.Swap(incoming);
        frameEvents.CopyTo(copy);
        frameEvents.Drain();
        benchmark::DoNotOptimize(copy.data());
    }
}
BENCHMARK(EventTakeoverFrame)->Unit(benchmark::kMicrosecond);

// An event of the kind with values from the frame number.
Input::InputEvent SampleEvent(Input::EventKind kind, uint64_t frame)
{
    constexpr const char* kPaths[] = {"Levels/A.lvl", "Levels/A (1).lvl", "Sounds/Long name with blanks.wav"};
    Input::InputEvent event;
    event.type = kind;
    event.values = {static_cast<int32_t>(frame), 768, 1};
    if (kind == Input::EventKind::Activate || kind == Input::EventKind::MouseWheel)
    {
        event.state = frame % 2 == 0;
    }
    if (kind == Input::EventKind::FileDropped)
    {
        const char* path = kPaths[frame % 3];
        event.drop = {Input::CopyPath(path, std::strlen(path)), 0, 0};
    }
    return event;
}

// Ten thousand frames with three events each, every kind among them, written as a recording would.
std::string LongDemoText()
{
    std::ostringstream demo;
    for (uint64_t frame = 1; frame <= 10000; ++frame)
    {
        Input::WriteFrameLine(demo, static_cast<double>(frame) / 60.0, frame);
        for (uint64_t slot = 0; slot < 3; ++slot)
        {
            Input::InputEvent event =
                SampleEvent(static_cast<Input::EventKind>((frame * 3 + slot) % 13), frame);
            Input::WriteEvent(demo, event);
            Input::FreePath(event);
        }
    }
    Input::WriteFrameLine(demo, 10001 / 60.0, 10001);
    return demo.str();
}

// Reading the demo file a replay starts with, from the page cache; the records are freed outside the timing.
void DemoLoad(benchmark::State& state)
{
    TempFolder folder;
    const std::string text = LongDemoText();
    const std::string path = folder.Write("long.dem", std::vector<uint8_t>(text.begin(), text.end()));
    std::deque<Input::DemoFrame> frames;
    for (auto _ : state)
    {
        std::ifstream demo(path);
        Input::LoadDemo(demo, frames);
        state.PauseTiming();
        state.counters["frames"] = static_cast<double>(frames.size());
        Input::DiscardDemoFrames(frames);
        state.ResumeTiming();
    }
    state.counters["file_bytes"] = static_cast<double>(text.size());
}
BENCHMARK(DemoLoad)->Unit(benchmark::kMillisecond);

} // namespace
