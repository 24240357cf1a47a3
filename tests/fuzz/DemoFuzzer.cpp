// libFuzzer target: any bytes as a demo file, loaded and then played frame by frame until the replay ends
// or gives up waiting, with the records left discarded. Seeds: the demos in seeds/demo.

#include "Input/Demo.h"
#include "Support/FuzzBitmap.h"

#include <cstring>
#include <sstream>
#include <string>

namespace
{

// Far enough to reach every record of a seed and to skip records of frames out of order.
constexpr uint64_t kFramesPlayed = 64;

void ReadAndFree(std::vector<Input::InputEvent>& events)
{
    for (Input::InputEvent& event : events)
    {
        // Reads every byte of a path, so one cut short or freed shows up under AddressSanitizer.
        if (event.type == Input::EventKind::FileDropped && event.drop.path != nullptr)
        {
            volatile size_t length = std::strlen(event.drop.path);
            (void)length;
        }
        Input::FreePath(event);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    SilenceStandardSinks();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::istringstream demo(std::string(reinterpret_cast<const char*>(data), size));
    std::deque<Input::DemoFrame> frames;
    Input::LoadDemo(demo, frames);
    std::vector<Input::InputEvent> events;
    for (uint64_t frame = 0; frame < kFramesPlayed && Input::TakeEventsOfFrame(frames, frame, events);
         ++frame)
    {
        ReadAndFree(events);
    }
    Input::DiscardDemoFrames(frames);
    return 0;
}
