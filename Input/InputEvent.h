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

// An event of a kind that carries values, or none (Quit, Minimize, Close).
inline InputEvent MakeEvent(EventKind kind, int32_t x = 0, int32_t y = 0, int32_t button = 0)
{
    InputEvent event;
    event.type = kind;
    event.values = {x, y, button};
    return event;
}

// An event of a kind that carries one flag: Activate, MouseWheel.
inline InputEvent MakeSwitch(EventKind kind, bool state)
{
    InputEvent event;
    event.type = kind;
    event.state = state;
    return event;
}

// A FileDropped that takes over the heap path (or null) and lies at the window point.
inline InputEvent MakeDrop(char* path, int32_t x, int32_t y)
{
    InputEvent event;
    event.type = EventKind::FileDropped;
    event.drop = {path, x, y};
    return event;
}

// A heap copy of the text for a FileDropped event, and its release; FreePath ignores other kinds.
char* CopyPath(const char* text, std::size_t length);
void FreePath(InputEvent& event);

} // namespace Input
