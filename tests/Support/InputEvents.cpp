#include "Support/InputEvents.h"

#include <cstring>

using Input::EventKind;
using Input::InputEvent;

InputEvent MakeDrop(const char* path, int32_t x, int32_t y)
{
    return Input::MakeDrop(path != nullptr ? Input::CopyPath(path, std::strlen(path)) : nullptr, x, y);
}

std::string Describe(const InputEvent& event)
{
    const char* name = Input::EventName(event.type);
    std::string text = name != nullptr ? name : "None";
    switch (event.type)
    {
    case EventKind::Activate:
    case EventKind::MouseWheel:
        return text + (event.state ? " true" : " false");
    case EventKind::FileDropped:
        return text + " " + (event.drop.path != nullptr ? event.drop.path : "(null)");
    case EventKind::Quit:
    case EventKind::Minimize:
    case EventKind::Close:
    case EventKind::None:
        return text;
    default:
        return text + " " + std::to_string(event.values.x) + "," + std::to_string(event.values.y) + "," +
               std::to_string(event.values.button);
    }
}

std::string Describe(const std::vector<InputEvent>& events)
{
    std::string text;
    for (const InputEvent& event : events)
    {
        text += (text.empty() ? "" : " | ") + Describe(event);
    }
    return text;
}

OwnedEvents::~OwnedEvents()
{
    for (InputEvent& event : events)
    {
        Input::FreePath(event);
    }
}

OwnedDemo::~OwnedDemo()
{
    Input::DiscardDemoFrames(frames);
}
