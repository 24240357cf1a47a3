#include "Input/InputEvent.h"

#include <cstdlib>
#include <cstring>

namespace Input
{

const char* EventName(EventKind kind)
{
    static constexpr const char* kNames[kEventKindCount] = {
        "Quit", "Activate",  "Minimize",  "Close",   "SizeChanged", "KeyDown",     "KeyUp",
        "Char", "MouseMove", "MouseDown", "MouseUp", "MouseWheel",  "FileDropped",
    };
    const auto index = static_cast<int32_t>(kind);
    return index >= 0 && index < kEventKindCount ? kNames[index] : nullptr;
}

char* CopyPath(const char* text, std::size_t length)
{
    auto* path = static_cast<char*>(std::malloc(length + 1));
    if (path != nullptr)
    {
        std::memcpy(path, text, length);
        path[length] = '\0';
    }
    return path;
}

void FreePath(InputEvent& event)
{
    if (event.type == EventKind::FileDropped)
    {
        std::free(event.drop.path);
        event.drop.path = nullptr;
    }
}

} // namespace Input
