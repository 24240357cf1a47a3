#include "Core/Window.h"

#include "Debug/Logger.h"
#include "Platform/Video.h"

#include <SDL.h>
#include <algorithm>
#include <string>
#include <utility>

namespace Core
{
namespace
{

// A queued resize carries its size in the event's pointer field, 16 bits a side: the platform's
// windows are far smaller than that.
constexpr int32_t kLargestQueuedSide = 0xFFFF;

void* PackSize(int32_t width, int32_t height)
{
    const auto w = static_cast<uintptr_t>(std::clamp(width, 1, kLargestQueuedSide));
    const auto h = static_cast<uintptr_t>(std::clamp(height, 1, kLargestQueuedSide));
    return reinterpret_cast<void*>(w << 16 | h);
}

std::pair<int32_t, int32_t> UnpackSize(void* packed)
{
    const auto bits = reinterpret_cast<uintptr_t>(packed);
    return {static_cast<int32_t>(bits >> 16 & 0xFFFF), static_cast<int32_t>(bits & 0xFFFF)};
}

// The visual is fixed when the window is made, so the context's wishes come first. No version is asked
// for (a compatibility context) and no accelerated visual (software renderers have none).
void SetContextAttributes()
{
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_COMPATIBILITY);
    SDL_GL_SetAttribute(SDL_GL_RED_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_GREEN_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_BLUE_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 24);
    SDL_GL_SetAttribute(SDL_GL_STENCIL_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
}

} // namespace

Window::Window(int32_t width, int32_t height, bool wantFullscreen) : owner(std::this_thread::get_id())
{
    Platform::StartVideo();
    SetContextAttributes();
    handle = SDL_CreateWindow("Quell Mar!", 0, 0, width, height,
                              SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN | SDL_WINDOW_RESIZABLE);
    if (handle == nullptr)
    {
        Logger::Raise("Window", std::string("Failed to open window: (") + SDL_GetError() + ")");
    }
    SDL_SetWindowMinimumSize(handle, kMinimumWidth, kMinimumHeight);
    SaveRect();
    SetFullscreen(wantFullscreen);
}

Window::~Window()
{
    if (handle != nullptr)
    {
        SDL_DestroyWindow(handle);
        handle = nullptr;
    }
}

Window::Window(Window&& other) noexcept
    : handle(std::exchange(other.handle, nullptr)), savedRect(other.savedRect),
      savedMaximized(other.savedMaximized), fullscreen(other.fullscreen), owner(other.owner)
{
}

void Window::SetFullscreen(bool wanted)
{
    if (wanted == fullscreen)
    {
        return;
    }
    fullscreen = wanted;
    Request(wanted ? Operation::EnterFullscreen : Operation::LeaveFullscreen);
}

void Window::Show()
{
    Request(Operation::Show);
}

void Window::Raise()
{
    Request(Operation::Raise);
}

void Window::Minimise()
{
    Request(Operation::Minimise);
}

void Window::Resize(int32_t width, int32_t height)
{
    Request(Operation::Resize, width, height);
}

void Window::PerformQueued(const SDL_UserEvent& event)
{
    const auto [width, height] = UnpackSize(event.data2);
    static_cast<Window*>(event.data1)->Perform(static_cast<Operation>(event.code), width, height);
}

void Window::Request(Operation operation, int32_t width, int32_t height)
{
    if (std::this_thread::get_id() == owner)
    {
        Perform(operation, width, height);
        return;
    }
    SDL_Event event = {};
    event.user.type = Platform::WindowOperationEventType();
    event.user.code = static_cast<int32_t>(operation);
    event.user.data1 = this;
    event.user.data2 = PackSize(width, height);
    SDL_PushEvent(&event);
}

void Window::Perform(Operation operation, int32_t width, int32_t height)
{
    switch (operation)
    {
    case Operation::EnterFullscreen:
        EnterFullscreen();
        break;
    case Operation::LeaveFullscreen:
        LeaveFullscreen();
        break;
    case Operation::Show:
        SDL_ShowWindow(handle);
        SDL_RaiseWindow(handle);
        break;
    case Operation::Raise:
        SDL_RaiseWindow(handle);
        break;
    case Operation::Minimise:
        SDL_MinimizeWindow(handle);
        break;
    case Operation::Resize:
        SDL_SetWindowSize(handle, width, height);
        break;
    }
}

void Window::EnterFullscreen()
{
    savedMaximized = (SDL_GetWindowFlags(handle) & SDL_WINDOW_MAXIMIZED) != 0;
    SaveRect();
    SDL_SetWindowFullscreen(handle, SDL_WINDOW_FULLSCREEN_DESKTOP);
}

// The platform puts a window back where it was only on some systems, so the saved place is restored here.
void Window::LeaveFullscreen()
{
    SDL_SetWindowFullscreen(handle, 0);
    SDL_SetWindowPosition(handle, savedRect.x, savedRect.y);
    SDL_SetWindowSize(handle, savedRect.width, savedRect.height);
    if (savedMaximized)
    {
        SDL_RestoreWindow(handle);
        SDL_MaximizeWindow(handle);
    }
}

void Window::SaveRect()
{
    SDL_GetWindowPosition(handle, &savedRect.x, &savedRect.y);
    SDL_GetWindowSize(handle, &savedRect.width, &savedRect.height);
}

} // namespace Core
