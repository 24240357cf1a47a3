#pragma once

// The one way input reaches the game: the window's events become a stream of InputEvents, the game acts
// on some of them (quit, pause, fullscreen, resize, debug keys) and every Space's scripts receive them
// through the functions they connected. A demo records that stream or replays it in place of live input.
//
// Threads: the pump runs on the thread that made the window and fills `incoming` at any moment; the game
// loop takes a frame's events over with one swap and does everything else.

#include "Core/GameSettings.h"
#include "Core/System.h"
#include "Input/Demo.h"
#include "Input/EventQueue.h"
#include "Platform/EventTranslator.h"

#include <atomic>
#include <deque>
#include <fstream>
#include <string>
#include <vector>

union SDL_Event;

namespace Input
{

class InputSystem final : public Core::System
{
public:
    InputSystem() = default;
    // Frees what the queues and the replay still own and closes a demo being recorded.
    ~InputSystem() override;
    InputSystem(const InputSystem&) = delete;
    InputSystem& operator=(const InputSystem&) = delete;

    const char* Name() const override { return "Input"; }
    // Connects the window's events to `incoming`. A missing window, or one without a handle, is fatal.
    bool Initialise(Core::Window* window) override;
    // Offers the frame's events to the scripts of the Space.
    void Update(Core::Game& game, Space& space, double dt, double spaceTime, double absoluteTime) override;
    void RegisterScriptTypes(Lua::LuaSystem& lua) override;
    void ObjectsDestroyed(Core::Game& game, Space& space) override;
    // Disconnects the window, wakes a pump that waits and frees the events still queued.
    void Shutdown() override;

    // Serves the window's events: until none is left, or with wait until Shutdown. Returns how many it
    // handled; stops at once when the window is disconnected.
    int Pump(bool wait);
    // The frame's events become exactly those that arrived since the last frame.
    void TakeFrameEvents();
    // Records or replays the frame's events, then acts on each for the game.
    void ProcessFrameEvents(Core::Game& game);
    // Empties the frame's events, freeing what they own.
    void DrainFrameEvents();
    // Opens the demo file for the mode in demoMode; on failure the run goes on with live input.
    void OpenDemo(const std::string& fileName);

    std::atomic<Core::Window*> window = nullptr;
    EventQueue incoming;
    EventQueue frameEvents;
    std::ofstream demoStream;
    bool closeRequested = false;
    Core::DemoMode demoMode = Core::DemoMode::None;
    std::deque<DemoFrame> demoFrames;

private:
    bool OpenDemoStream(const std::string& fileName);
    void Dispatch(const SDL_Event& event);
    void ReplaceWithReplay(uint64_t frame);
    void Act(Core::Game& game, const InputEvent& event);
    void ActOnKey(Core::Game& game, int32_t key);
    void OfferToScripts(Core::Game& game, Space& space, const InputEvent& event);

    // Where the pump puts events: `incoming` while the system runs, null before and after.
    std::atomic<EventQueue*> queue = nullptr;
    Platform::EventTranslator translator;
    // The frame's events as processing saw them, which scripts are then offered; reused every frame, so
    // that copying allocates nothing once grown.
    std::vector<InputEvent> frameCopy;
};

} // namespace Input
