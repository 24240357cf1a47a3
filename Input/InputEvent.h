#pragma once

// One input event: the unit of the stream that the window fills, the game acts on, scripts receive and a
// demo records. Plain data of fixed size, copied freely; only a "FileDropped" carries a heap string, which
// belongs to the queue that holds the event last (see EventQueue).

#include <cstddef>
#include <cstdint>

namespace Input
{

enum class EventKind : int32_t
{
    Quit = 0,
    Activate = 1,
    Minimize = 2,
    Close = 3,
    SizeChanged = 4,
    KeyDown = 5,
    KeyUp = 6,
    Char = 7,
    MouseMove = 8,
    MouseDown = 9,
    MouseUp = 10,
    MouseWheel = 11,
    FileDropped = 12,
    None = 13, // what a fresh record holds: no event
};

inline constexpr int32_t kEventKindCount = 13;

// The name that a demo writes and by which scripts connect to the kind; null for None.
const char* EventName(EventKind kind);

// SizeChanged: width and height. Keys and Char: the code in x. Mouse: window x, y and the button.
struct EventValues
{
    int32_t x, y, button;
};

// FileDropped: the path, null when the drop named no file, and the window point of the drop.
struct DropValues
{
    char* path;
    int32_t x, y;
};

// The payload types stand outside the union: ISO C++ allows no type declared inside an anonymous one.
struct InputEvent
{
    EventKind type = EventKind::None;
    union
    {
        EventValues values{0, 0, 0};
        // Activate: active. MouseWheel: turned away from the user.
        bool state;
        DropValues drop;
    };
};

// A heap copy of the text for a FileDropped event, and its release; FreePath ignores other kinds.
char* CopyPath(const char* text, std::size_t length);
void FreePath(InputEvent& event);

} // namespace Input
