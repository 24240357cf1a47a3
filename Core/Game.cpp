#include "Core/Game.h"

#include "Audio/AudioScript.h"
#include "Core/GameScript.h"
#include "Core/Process.h"
#include "Core/Window.h"
#include "Debug/Clock.h"
#include "Debug/Logger.h"
#include "Debug/Profile.h"
#include "FileSystem/AssetManager.h"
#include "FileSystem/Paths.h"
#include "Graphics/Bitmap.h"
#include "Graphics/DrawableScripts.h"
#include "Graphics/GLContext.h"
#include "Lua/CoreScriptTypes.h"
#include "Lua/ScriptHandles.h"
#include "Physics/PhysicsScript.h"
#include "Platform/Video.h"

#include <chrono>
#include <cmath>
#include <cstdio>

namespace Core
{
namespace
{

// Two lines per transform, flagged ones too, descendants' spaces first: red along the transform's x axis,
// green along its y axis, each half the scale long.
void DrawTransforms(Space& space, Graphics::GraphicsSystem& graphics)
{
    for (Space* child = space.firstChild.get(); child != nullptr; child = child->nextSibling.get())
    {
        DrawTransforms(*child, graphics);
    }
    for (const Components::TransformComponent& transform : space.transforms.components)
    {
        const Vec2 p = transform.GetWorldPosition();
        const float r = transform.GetWorldRotation();
        const Vec2 s = transform.scale;
        graphics.AddDebugLine(p, p + Vec2{s.x / 2 * std::cos(r), s.x / 2 * std::sin(r)},
                              Graphics::Colour{1.0f, 0.0f, 0.0f, 1.0f});
        graphics.AddDebugLine(p, p + Vec2{-s.y / 2 * std::sin(r), s.y / 2 * std::cos(r)},
                              Graphics::Colour{0.0f, 1.0f, 0.0f, 1.0f});
    }
}

constexpr double kNominalFrameTime = 1.0 / 60.0;
constexpr size_t kFrameTimeHistory = 60;
constexpr auto kPausedSleep = std::chrono::milliseconds(66);

double ReadSeconds()
{
    return Debug::NanosecondsToSeconds(Debug::ReadClock());
}

} // namespace

Game::Game(Window* gameWindow, const GameSettings& gameSettings) : settings(gameSettings), window(gameWindow)
{
}

Game::~Game()
{
    running = false;
    if (thread.joinable())
    {
        thread.join();
    }
}

int Game::Run()
{
    if (running.exchange(true))
    {
        Logger::Raise("Game", "Game is already running!");
    }
    Logger::Log("Game", LogLevel::Debug, "Starting Game...");
    // Before the move into the data folder: a demo's path is relative to where the program started.
    if (settings.demoMode == DemoMode::Record || settings.demoMode == DemoMode::Play)
    {
        input.demoMode = settings.demoMode;
        input.OpenDemo(settings.demoFile);
    }
    FileSystem::ChangeToDataFolder();
    frame = 0;
    systems.clear();
    // Input starts on the thread that pumps the window, so its events have somewhere to go from now on.
    AddSystem(input, window);
    if (!settings.multithreaded)
    {
        GameLoop();
        return 0;
    }
    thread = std::thread(
        [this]
        {
            GameLoop();
            // The platform keeps data for each thread that used it, which a thread of ours must give back.
            Platform::ReleaseThreadData();
        });
    // Without a pump the destructor joins the thread.
    if (settings.pumpMessages)
    {
        input.Pump(true);
        thread.join();
    }
    return 0;
}

void Game::AddSystem(System& system, Window* systemWindow)
{
    if (!system.Initialise(systemWindow))
    {
        Logger::Raise("Game", std::string("Failed to initialise system ") + system.Name());
    }
    systems.push_back(&system);
}

void Game::SetPaused(bool pause)
{
    if (pause == paused)
    {
        return;
    }
    Logger::Log("Core", LogLevel::Debug, pause ? "pausing game" : "Unpausing game");
    paused = pause;
}

void Game::Reset()
{
    DestroyAllChildren();
    rootSpace.ScheduleLevel(settings.level);
}

void Game::GameLoop()
{
    if (window == nullptr)
    {
        Logger::Log("Game", LogLevel::Warning, "Game does not have a window");
    }
    StartSystems();
    ShowWindow();
    rootSpace.ScheduleLevel(settings.level);
    previousTime = ReadSeconds() - kNominalFrameTime;
    frameTimes.assign(kFrameTimeHistory, kNominalFrameTime);
    while (running)
    {
        if (!RunFrame())
        {
            break;
        }
    }
    LeaveLoop();
}

// Systems start on the thread that runs the loop, in the order in which they update: physics reports
// contacts by queueing coroutines that lua then runs in the same frame; graphics makes its context on the
// thread that will draw. A game without a window (in-process tests and tools) runs without graphics, as
// nothing could show what it draws. Each system registers its script types once all have started and the
// handle types that belong to no system exist.
void Game::StartSystems()
{
    AddSystem(physics, window);
    AddSystem(lua, window);
    AddSystem(audio, window);
    if (window != nullptr)
    {
        AddSystem(graphics, window);
    }
    Lua::RegisterCoreScriptTypes(lua.state);
    for (System* system : systems)
    {
        system->RegisterScriptTypes(lua);
    }
    Lua_Push();
}

// The globals that scripts reach the game by. Each system's script table goes into Game and is also a
// global of the same name; Graphics only in a game with a window.
void Game::Lua_Push()
{
    lua_State* L = lua.state;
    const int top = lua_gettop(L);
    PushGameTable(L, *this);
    Physics::PushPhysicsTable(L, physics, rootSpace);
    lua_pushvalue(L, -1);
    lua_setglobal(L, "Physics");
    lua_setfield(L, -2, "Physics");
    Audio::PushAudioTable(L, audio);
    lua_pushvalue(L, -1);
    lua_setglobal(L, "Audio");
    lua_setfield(L, -2, "Audio");
    if (graphics.IsRunning())
    {
        Graphics::PushGraphicsTable(L, graphics);
        lua_pushvalue(L, -1);
        lua_setglobal(L, "Graphics");
        lua_setfield(L, -2, "Graphics");
    }
    Lua::PushSpace(&rootSpace, L);
    lua_setglobal(L, "MainSpace");
    lua_setglobal(L, "Game");
    if (lua_gettop(L) != top)
    {
        Logger::Log("Game", LogLevel::Error, "Game did not clear up Lua stack in Lua_Push");
        lua_settop(L, top);
    }
}

void Game::ShowWindow()
{
    if (window == nullptr)
    {
        return;
    }
    graphics.SetVsync(settings.vsync);
    window->Show();
}

bool Game::RunFrame()
{
    // The previous frame's records, for the debug overlay; dropped at the end of this frame.
    const std::vector<Debug::ProfileRecord> previousProfile = Debug::TakeProfile();
    Debug::ProfileBlock rootBlock("Root");

    const double time = ReadSeconds();
    double dt = time - previousTime;
    RecordFrameTime(dt);
    ++frame;

    DestroyRequestedSpaces();
    // The load's own duration is seen by no system: the frame that loads steps by the nominal time.
    if (LoadScheduledLevels())
    {
        dt = kNominalFrameTime;
    }

    if (window != nullptr)
    {
        graphics.ClearFrame();
    }
    if (!TakeInput())
    {
        return false;
    }
    UpdateSystems(dt, time);
    input.DrainFrameEvents();
    // An unanswered close ends the game before the frame is shown.
    if (input.closeRequested)
    {
        running = false;
        return false;
    }
    if (debugDraw && graphics.IsRunning())
    {
        DrawDebugOverlay(previousProfile);
    }
    // Children's subtrees first, then the root's own objects.
    rootSpace.DeleteDestroyedTree(*this);
    if (window != nullptr)
    {
        graphics.WriteScreenshots();
        Graphics::PresentFrame(graphics);
    }

    // The next frame's dt covers all of this one, a level load included.
    previousTime = time;
    if (paused)
    {
        std::this_thread::sleep_for(kPausedSleep);
    }
    return true;
}

// The axes of every transform and the profile bars show in the next frame, through the debug queues; the
// profile's names and the frame rate draw at once.
void Game::DrawDebugOverlay(const std::vector<Debug::ProfileRecord>& previousProfile)
{
    {
        Debug::ProfileBlock block("Debug Draw Transforms");
        DrawTransforms(rootSpace, graphics);
    }
    graphics.DrawProfile(previousProfile);
    double sum = 0.0;
    for (const double frameTime : frameTimes)
    {
        sum += frameTime;
    }
    char text[64];
    std::snprintf(text, sizeof(text), "FPS: %.3f", static_cast<double>(frameTimes.size()) / sum);
    graphics.DrawText(graphics.ScreenToWorld(Vec2{}), text, Graphics::Colour{0.0f, 0.0f, 0.0f, 1.0f});
}

void Game::DestroyRequestedSpaces()
{
    if (!rootSpace.IsDestroyRequested())
    {
        return;
    }
    Debug::ProfileBlock block("Destroy Spaces");
    if (rootSpace.destroyRequested)
    {
        rootSpace.Destroy(*this);
    }
    else
    {
        DestroyFlaggedChildren();
    }
}

// The frame's events are exactly those that arrived since the last frame; the game acts on them before any
// system sees them. False when one of them ended the game, which then skips the frame's update.
bool Game::TakeInput()
{
    if (!settings.multithreaded && settings.pumpMessages)
    {
        input.Pump(false);
    }
    input.TakeFrameEvents();
    HandleGameEvents();
    if (running)
    {
        return true;
    }
    input.DrainFrameEvents();
    return false;
}

void Game::RecordFrameTime(double dt)
{
    if (frameTimes.size() >= kFrameTimeHistory)
    {
        frameTimes.pop_back();
    }
    frameTimes.insert(frameTimes.begin(), dt);
}

void Game::DestroyFlaggedChildren()
{
    // A child may free itself, so its sibling link is read first.
    Space* child = rootSpace.firstChild.get();
    while (child != nullptr)
    {
        Space* next = child->nextSibling.get();
        child->DestroyFlagged(*this);
        child = next;
    }
}

void Game::DestroyAllChildren()
{
    for (Space* child = rootSpace.firstChild.get(); child != nullptr; child = child->nextSibling.get())
    {
        child->destroyRequested = true;
    }
    DestroyFlaggedChildren();
}

bool Game::LoadScheduledLevels()
{
    if (!rootSpace.IsLevelScheduled())
    {
        return false;
    }
    Debug::ProfileBlock block("Load Level");
    FileSystem::EraseExpiredBitmaps();
    {
        // Bitmaps the old level used are held across the load, so what the new level shares with it is
        // found alive instead of being decoded again; the rest dies when the hold ends.
        const std::vector<std::shared_ptr<Graphics::Bitmap>> held = FileSystem::LockCachedBitmaps();
        rootSpace.LoadScheduledLevels(*this);
    }
    // What no object holds any more leaves the card.
    if (graphics.IsRunning())
    {
        graphics.ReleaseUnusedTextures();
    }
    return true;
}

void Game::HandleGameEvents()
{
    input.ProcessFrameEvents(*this);
    // A quit signal acts as the window's "Quit" event: the frame ends before any update.
    if (QuitSignalled())
    {
        running = false;
    }
}

void Game::UpdateSystems(double dt, double time)
{
    rootSpace.GetSortedSpaces(sortedSpaces);
    for (Space* space : sortedSpaces)
    {
        if (!space->paused)
        {
            space->dt = dt * space->timescale;
            space->time += space->dt;
        }
    }
    // All spaces see one system before any sees the next.
    for (System* system : systems)
    {
        for (Space* space : sortedSpaces)
        {
            system->Update(*this, *space, space->dt, space->time, time);
        }
    }
}

void Game::LeaveLoop()
{
    DestroyAllChildren();
    rootSpace.Destroy(*this);
    for (auto system = systems.rbegin(); system != systems.rend(); ++system)
    {
        (*system)->Shutdown();
    }
}

} // namespace Core
