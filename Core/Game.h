#pragma once

// The one object that owns everything that lives for a run: the systems, the root Space, a copy of the
// settings, the frame counter and the game thread. main constructs it on the stack, calls Run once and
// destroys it.

#include "Audio/AudioSystem.h"
#include "Components/Space.h"
#include "Core/GameSettings.h"
#include "Core/System.h"
#include "Graphics/GraphicsSystem.h"
#include "Input/InputSystem.h"
#include "Lua/LuaSystem.h"
#include "Physics/PhysicsSystem.h"

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace Debug
{
struct ProfileRecord;
}

namespace Core
{

class Game
{
public:
    Game(Window* window, const GameSettings& settings);
    // Clears running and joins the game thread if Run left it running.
    ~Game();
    Game(const Game&) = delete;
    Game& operator=(const Game&) = delete;

    // Starts the game and returns 0 once it has ended. Raises if the game is already running.
    int Run();
    // The body of the game thread, or in single-threaded mode a plain call from Run.
    void GameLoop();
    // Initialises the system and appends it to systems; raises if it fails to start.
    void AddSystem(System& system, Window* systemWindow);
    void SetPaused(bool pause);
    // Destroys every child space at once and schedules the start level on the root (the F4 key).
    void Reset();

    // The steps of GameLoop that in-process tests drive themselves: starting the systems; one frame's
    // clock advance and system updates at a given dt and clock reading; destroying all spaces and shutting
    // the systems down.
    void StartSystems();
    void UpdateSystems(double dt, double time);
    void LeaveLoop();

    // The frame times of the last 60 frames, newest first, in seconds.
    const std::vector<double>& FrameTimes() const { return frameTimes; }

    // The systems come first: they outlive the spaces whose contents hold their resources.
    Input::InputSystem input;
    Lua::LuaSystem lua;
    Physics::PhysicsSystem physics;
    Graphics::GraphicsSystem graphics;
    Audio::AudioSystem audio;
    Space rootSpace;
    bool debugDraw = false;
    GameSettings settings;
    // The only flag that the two threads share: written by exchange, read plainly.
    std::atomic<bool> running = false;
    uint64_t frame = 0;
    std::vector<System*> systems;
    std::thread thread;
    Window* window;
    bool paused = false;

private:
    // One pass of the loop; false when the game ended before the systems were updated.
    bool RunFrame();
    void RecordFrameTime(double dt);
    void DestroyRequestedSpaces();
    bool TakeInput();
    void DestroyFlaggedChildren();
    void DestroyAllChildren();
    // Loads scheduled levels; true if any was scheduled.
    bool LoadScheduledLevels();
    void HandleGameEvents();
    // The F1 overlay: transform axes, the previous frame's profile and the frame rate.
    void DrawDebugOverlay(const std::vector<Debug::ProfileRecord>& previousProfile);
    // Shows the window with the swap interval set, once every system runs.
    void ShowWindow();
    // Builds the global table Game and the global MainSpace; run once, after all script types exist.
    void Lua_Push();

    double previousTime = 0.0;
    std::vector<double> frameTimes;
    // Reused every frame, so gathering the spaces allocates nothing once it has grown.
    std::vector<Space*> sortedSpaces;
};

} // namespace Core
