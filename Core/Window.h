#pragma once

// The one top-level window of the program: created hidden by main, shown by the game loop once every
// system runs, switched between windowed and borderless desktop fullscreen by F11 and scripts.
//
// The platform lets only the thread that made the window act on it, while the game loop may run on a
// thread of its own. An operation called from another thread is therefore queued to the pump, which runs
// on the window's thread and serves queued operations in order (PerformQueued).

#include <cstdint>
#include <thread>

struct SDL_Window;
struct SDL_UserEvent;

namespace Core
{

class Window
{
public:
    inline static constexpr int32_t kMinimumWidth = 640;
    inline static constexpr int32_t kMinimumHeight = 480;

    // Opens the window hidden at (0, 0) with the client size given, then enters fullscreen if wanted.
    // Raises in category "Window" when the platform can't start video or open the window.
    Window(int32_t width, int32_t height, bool fullscreen);
    ~Window();
    Window(Window&& other) noexcept;
    Window& operator=(Window&&) = delete;
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    // The state changes at once on the calling thread; the platform follows when the operation runs.
    void SetFullscreen(bool wanted);
    // Shows the window and brings it to the front.
    void Show();
    // Brings the window to the front, as a close request does.
    void Raise();
    void Minimise();
    // Sets the client size, keeping the position.
    void Resize(int32_t width, int32_t height);

    // What a window can be asked to do; the code of a queued operation's event.
    enum class Operation : int32_t
    {
        EnterFullscreen,
        LeaveFullscreen,
        Show,
        Raise,
        Minimise,
        Resize,
    };

    // Runs an operation that another thread queued; called by the pump for events of
    // Platform::WindowOperationEventType.
    static void PerformQueued(const SDL_UserEvent& event);

    SDL_Window* handle = nullptr;
    // Where the window was before it went fullscreen, to put it back on leaving.
    struct
    {
        int32_t x = 0, y = 0, width = 0, height = 0;
    } savedRect;
    bool savedMaximized = false;
    bool fullscreen = false;

private:
    // Runs the operation now on the window's own thread, or queues it to the pump from any other.
    void Request(Operation operation, int32_t width = 0, int32_t height = 0);
    void Perform(Operation operation, int32_t width, int32_t height);
    void EnterFullscreen();
    void LeaveFullscreen();
    void SaveRect();

    std::thread::id owner;
};

} // namespace Core
