#include "Input/InputSystem.h"

#include "Core/Game.h"
#include "Core/Window.h"
#include "Debug/Logger.h"
#include "Debug/Profile.h"
#include "Platform/Video.h"

#include <SDL.h>
#include <algorithm>
#include <chrono>
#include <filesystem>

namespace Input
{
namespace
{

constexpr int32_t kKeyPause = 0x13;
constexpr int32_t kKeyF1 = 0x70;
constexpr int32_t kKeyF4 = 0x73;
constexpr int32_t kKeyF5 = 0x74;
constexpr int32_t kKeyF11 = 0x7A;

const std::chrono::steady_clock::time_point kProcessStart = std::chrono::steady_clock::now();

// A demo's frame times: whole milliseconds since the process began, in seconds.
double DemoClockSeconds()
{
    const auto elapsed = std::chrono::steady_clock::now() - kProcessStart;
    return static_cast<double>(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count()) /
           1000.0;
}

} // namespace

InputSystem::~InputSystem()
{
    // An event pushed after Shutdown's drain still owns its path.
    incoming.Drain();
    frameEvents.Drain();
    DiscardDemoFrames(demoFrames);
}

bool InputSystem::Initialise(Core::Window* gameWindow)
{
    if (gameWindow == nullptr)
    {
        Logger::Raise("InputSystem", "Tried to intiailise input with a NULL window");
    }
    if (gameWindow->handle == nullptr)
    {
        Logger::Raise("InputSystem", "Tried to initialise input with a window with bad handle");
    }
    // What happened to the window before the game listened (its creation, going fullscreen) is no event.
    SDL_Event event;
    while (SDL_PollEvent(&event) != 0)
    {
        Dispatch(event);
    }
    window = gameWindow;
    queue = &incoming;
    return true;
}

void InputSystem::Update(Core::Game& game, Space& space, double, double, double)
{
    if (space.paused)
    {
        return;
    }
    const Debug::ProfileBlock block("Input");
    // The copy that processing took holds exactly the frame's events, and nothing changes them until the
    // drain, so every Space reads it instead of copying the queue again.
    for (const InputEvent& event : frameCopy)
    {
        OfferToScripts(game, space, event);
    }
}

void InputSystem::RegisterScriptTypes(Lua::LuaSystem&)
{
}

void InputSystem::ObjectsDestroyed(Core::Game&, Space&)
{
}

void InputSystem::Shutdown()
{
    // Disconnect first, then wake: a pump woken before it could see the window gone would wait for good.
    Core::Window* const gameWindow = window.exchange(nullptr);
    queue = nullptr;
    if (gameWindow != nullptr)
    {
        SDL_Event wake = {};
        wake.type = Platform::WakeEventType();
        SDL_PushEvent(&wake);
    }
    DrainFrameEvents();
    incoming.Drain();
}

int InputSystem::Pump(bool wait)
{
    int handled = 0;
    SDL_Event event;
    while (window.load() != nullptr && (wait ? SDL_WaitEvent(&event) : SDL_PollEvent(&event)) != 0)
    {
        Dispatch(event);
        ++handled;
    }
    return handled;
}

void InputSystem::Dispatch(const SDL_Event& event)
{
    if (event.type == Platform::WindowOperationEventType())
    {
        Core::Window::PerformQueued(event.user);
        return;
    }
    Core::Window* const gameWindow = window.load();
    translator.Translate(event, gameWindow != nullptr ? gameWindow->handle : nullptr, queue.load());
}

void InputSystem::TakeFrameEvents()
{
    frameEvents.Clear();
    frameEvents.Swap(incoming);
}

void InputSystem::DrainFrameEvents()
{
    // The copy's paths go with the queue's.
    frameCopy.clear();
    frameEvents.Drain();
}

void InputSystem::ProcessFrameEvents(Core::Game& game)
{
    const Debug::ProfileBlock block("Input");
    if (demoMode == Core::DemoMode::Play)
    {
        ReplaceWithReplay(game.frame);
    }
    else
    {
        frameEvents.CopyTo(frameCopy);
    }
    const bool recording = demoMode == Core::DemoMode::Record;
    if (recording)
    {
        WriteFrameLine(demoStream, DemoClockSeconds(), game.frame);
    }
    for (const InputEvent& event : frameCopy)
    {
        if (recording)
        {
            WriteEvent(demoStream, event);
        }
        Act(game, event);
    }
    // A run that crashes keeps its demo up to the last frame.
    if (recording)
    {
        demoStream.flush();
    }
}

// While a demo plays nothing live reaches the game, the frame that finds the replay over included.
void InputSystem::ReplaceWithReplay(uint64_t frame)
{
    frameEvents.Drain();
    if (!TakeEventsOfFrame(demoFrames, frame, frameCopy))
    {
        demoMode = Core::DemoMode::None;
    }
    frameEvents.Assign(frameCopy);
}

void InputSystem::Act(Core::Game& game, const InputEvent& event)
{
    Core::Window* const gameWindow = window.load();
    switch (event.type)
    {
    case EventKind::Quit:
        game.running = false;
        break;
    case EventKind::Activate:
        if (!event.state && gameWindow != nullptr && gameWindow->fullscreen)
        {
            gameWindow->Minimise();
        }
        game.SetPaused(!event.state);
        break;
    case EventKind::Minimize:
        game.SetPaused(true);
        break;
    case EventKind::Close:
        if (gameWindow != nullptr)
        {
            gameWindow->Raise();
        }
        game.SetPaused(false);
        closeRequested = true;
        break;
    case EventKind::SizeChanged:
        // A replayed size is given to the real window too, so the view matches the recording.
        if (demoMode == Core::DemoMode::Play && gameWindow != nullptr)
        {
            gameWindow->Resize(event.values.x, event.values.y);
        }
        game.graphics.Resize(static_cast<uint32_t>(std::max(event.values.x, 0)),
                             static_cast<uint32_t>(std::max(event.values.y, 0)));
        break;
    case EventKind::KeyDown:
        ActOnKey(game, event.values.x);
        break;
    case EventKind::MouseDown:
        game.SetPaused(false);
        break;
    default:
        break;
    }
}

void InputSystem::ActOnKey(Core::Game& game, int32_t key)
{
    Core::Window* const gameWindow = window.load();
    if (key == kKeyF11 && gameWindow != nullptr)
    {
        gameWindow->SetFullscreen(!gameWindow->fullscreen);
    }
    if (game.settings.debugKeys && (key == kKeyF1 || key == kKeyF4 || key == kKeyF5))
    {
        if (key == kKeyF1)
        {
            game.debugDraw = !game.debugDraw;
        }
        else if (key == kKeyF5)
        {
            game.rootSpace.ScheduleReload();
        }
        else
        {
            game.Reset();
        }
        game.SetPaused(false);
        return;
    }
    // Pause pauses; any other key ends a pause.
    game.SetPaused(key == kKeyPause && !game.paused);
}

void InputSystem::OpenDemo(const std::string& fileName)
{
    if (demoMode != Core::DemoMode::Record && demoMode != Core::DemoMode::Play)
    {
        Logger::Log("Input", LogLevel::Warning, "Tried to open input replay file but replay setting not set");
        return;
    }
    if (!OpenDemoStream(fileName))
    {
        Logger::Log("Input", LogLevel::Warning, "Failed to open input replay file");
        demoMode = Core::DemoMode::None;
    }
}

// A recording keeps its stream open for the run; a replay is read whole at once.
bool InputSystem::OpenDemoStream(const std::string& fileName)
{
    std::error_code error;
    // A directory opens as a stream here, yet holds no demo.
    if (std::filesystem::is_directory(fileName, error))
    {
        return false;
    }
    if (demoMode == Core::DemoMode::Record)
    {
        demoStream.open(fileName, std::ios::out | std::ios::trunc);
        return demoStream.is_open();
    }
    std::ifstream replay(fileName);
    if (!replay.is_open())
    {
        return false;
    }
    LoadDemo(replay, demoFrames);
    return true;
}

} // namespace Input
