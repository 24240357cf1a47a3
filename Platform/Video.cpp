#include "Platform/Video.h"

#include "Debug/Logger.h"

#include <SDL.h>
#include <atomic>
#include <mutex>
#include <string>

namespace Platform
{
namespace
{

// The process-wide record that video is started, and the user event type it registered.
std::mutex videoMutex;
bool videoStarted = false;
// Read by the pump for every event, so it is atomic rather than behind the mutex.
std::atomic<uint32_t> operationEventType = 0;

} // namespace

void StartVideo()
{
    const std::lock_guard lock(videoMutex);
    if (videoStarted)
    {
        return;
    }
    SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");
    SDL_SetHint(SDL_HINT_VIDEO_MINIMIZE_ON_FOCUS_LOSS, "0");
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0)
    {
        Logger::Raise("Window", std::string("Failed to register window class: (") + SDL_GetError() + ")");
    }
    operationEventType = SDL_RegisterEvents(2);
    videoStarted = true;
}

uint32_t WindowOperationEventType()
{
    return operationEventType.load(std::memory_order_relaxed);
}

} // namespace Platform

namespace Platform
{

uint32_t WakeEventType()
{
    return WindowOperationEventType() + 1;
}

void ReleaseThreadData()
{
    SDL_TLSCleanup();
}

} // namespace Platform
