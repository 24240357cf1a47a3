#include "Core/Game.h"
#include "FileSystem/AssetManager.h"
#include "Graphics/Bitmap.h"
#include "Support/ImageWriters.h"
#include "Support/LogCapture.h"
#include "Support/RaiseCheck.h"
#include "Support/TempFolder.h"

#include <functional>
#include <gtest/gtest.h>

namespace
{

struct UpdateCall
{
    uint64_t frame;
    const Space* space;
    double dt;
    double spaceTime;
    double absoluteTime;
};

// Records what the loop hands it and ends the game after a given number of frames, as Game.Quit would.
class RecordingSystem final : public Core::System
{
public:
    RecordingSystem(const char* systemName, std::vector<std::string>& sharedJournal)
        : name(systemName), journal(sharedJournal)
    {
    }

    const char* Name() const override { return name; }
    bool Initialise(Core::Window*) override
    {
        journal.push_back(std::string(name) + " Initialise");
        return !refuses;
    }
    void Update(Core::Game& game, Space& space, double dt, double spaceTime, double absoluteTime) override
    {
        calls.push_back(UpdateCall{game.frame, &space, dt, spaceTime, absoluteTime});
        if (onUpdate)
        {
            onUpdate(game, space);
        }
        if (&space == &game.rootSpace && game.frame >= framesToRun)
        {
            game.running = false;
        }
    }
    void RegisterScriptTypes(Lua::LuaSystem&) override {}
    void ObjectsDestroyed(Core::Game&, Space&) override {}
    void Shutdown() override { journal.push_back(std::string(name) + " Shutdown"); }

    std::vector<UpdateCall> CallsFor(const Space* space) const
    {
        std::vector<UpdateCall> found;
        for (const UpdateCall& call : calls)
        {
            if (call.space == space)
            {
                found.push_back(call);
            }
        }
        return found;
    }

    const char* name;
    std::vector<std::string>& journal;
    uint64_t framesToRun = 3;
    bool refuses = false;
    std::function<void(Core::Game&, Space&)> onUpdate;
    std::vector<UpdateCall> calls;
};

class GameLoop : public testing::Test
{
protected:
    void Run()
    {
        game.running = true;
        game.GameLoop();
    }

    Core::Game game{nullptr, Core::GameSettings{}};
    std::vector<std::string> journal;
    RecordingSystem recorder{"Recorder", journal};
};

TEST_F(GameLoop, TheLoadingFrameStepsByOneSixtiethAndTheNextMeasuresFromItsStart)
{
    game.AddSystem(recorder, nullptr);
    recorder.framesToRun = 3;
    recorder.onUpdate = [](Core::Game& running, Space&)
    {
        if (running.frame == 2)
        {
            running.rootSpace.ScheduleLevel("Levels/Other.lvl");
        }
    };
    Run();
    const std::vector<UpdateCall> calls = recorder.CallsFor(&game.rootSpace);
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0].dt, 1.0 / 60.0);
    EXPECT_EQ(calls[0].spaceTime, 1.0 / 60.0);
    EXPECT_GT(calls[1].dt, 0.0);
    EXPECT_EQ(calls[1].dt, calls[1].absoluteTime - calls[0].absoluteTime);
    EXPECT_EQ(calls[2].dt, 1.0 / 60.0) << "the frame after a scheduled level loads it";
    EXPECT_EQ(calls[2].spaceTime, calls[0].dt + calls[1].dt + calls[2].dt);
    EXPECT_EQ(game.frame, 3u);

    // The history keeps what was measured, newest first, and holds 60 samples.
    const std::vector<double>& history = game.FrameTimes();
    ASSERT_EQ(history.size(), 60u);
    EXPECT_EQ(history[1], calls[1].dt);
    EXPECT_GT(history[0], 0.0);
    EXPECT_EQ(history[3], 1.0 / 60.0);
}

TEST_F(GameLoop, SpacesKeepTheirOwnClocksAndFlaggedOnesGoBeforeTheNextUpdate)
{
    Space& fast = game.rootSpace.CreateChild();
    fast.timescale = 2.0;
    Space& still = game.rootSpace.CreateChild();
    still.timescale = 0.0;
    Space& paused = game.rootSpace.CreateChild();
    Space& doomed = paused.CreateChild();
    Space* created = nullptr;
    game.AddSystem(recorder, nullptr);
    recorder.framesToRun = 4;
    recorder.onUpdate = [&](Core::Game& running, Space& space)
    {
        paused.paused = paused.paused || (running.frame == 2 && &space == &paused);
        // Flagged spaces go at the next frame's start, before any update; one made and flagged in the
        // same frame is never updated.
        if (running.frame == 1 && &space == &running.rootSpace)
        {
            doomed.destroyRequested = true;
            created = &running.rootSpace.CreateChild();
            created->destroyRequested = true;
        }
    };
    Run();
    const std::vector<UpdateCall> root = recorder.CallsFor(&game.rootSpace);
    const std::vector<UpdateCall> doubled = recorder.CallsFor(&fast);
    const std::vector<UpdateCall> stopped = recorder.CallsFor(&still);
    const std::vector<UpdateCall> pausedCalls = recorder.CallsFor(&paused);
    ASSERT_EQ(doubled.size(), 4u);
    ASSERT_EQ(pausedCalls.size(), 4u) << "paused spaces are still passed to systems";
    for (size_t frame = 0; frame < 4; ++frame)
    {
        EXPECT_EQ(doubled[frame].dt, root[frame].dt * 2.0);
        EXPECT_EQ(stopped[frame].dt, 0.0);
        EXPECT_EQ(stopped[frame].spaceTime, 0.0);
        EXPECT_EQ(doubled[frame].absoluteTime, root[frame].absoluteTime);
    }
    EXPECT_EQ(pausedCalls[2].dt, pausedCalls[1].dt);
    EXPECT_EQ(pausedCalls[3].spaceTime, pausedCalls[1].spaceTime);
    EXPECT_EQ(recorder.CallsFor(created).size(), 0u);
    EXPECT_EQ(recorder.CallsFor(&doomed).size(), 1u);
}

// Every space sees one system before any sees the next; leaving the loop destroys every space, then shuts
// the systems down in reverse order.
TEST_F(GameLoop, OneFrameRunsSystemsInTurnSweepsBitmapsAndEndsInOrder)
{
    RecordingSystem second{"Second", journal};
    Space& child = game.rootSpace.CreateChild();
    child.priority = 5;
    game.AddSystem(recorder, nullptr);
    game.AddSystem(second, nullptr);
    recorder.framesToRun = 1;
    second.framesToRun = 1;
    std::vector<std::string> order;
    recorder.onUpdate = [&](Core::Game&, Space& space)
    { order.push_back(&space == &child ? "R child" : "R root"); };
    second.onUpdate = [&](Core::Game&, Space& space)
    { order.push_back(&space == &child ? "S child" : "S root"); };
    // The first frame's level load sweeps the bitmap cache's expired entries and keeps the live ones.
    const TempFolder directory;
    const std::string expired = directory.Write("expired.bmp", MakeBmp(1, 1, {1, 2, 3}));
    const std::shared_ptr<Graphics::Bitmap> kept =
        FileSystem::LoadBitmap(directory.Write("live.bmp", MakeBmp(1, 1, {1, 2, 3})));
    FileSystem::LoadBitmap(expired);
    LogCapture capture;
    Run();
    EXPECT_EQ(FileSystem::LoadBitmap(directory.PathOf("live.bmp")), kept);
    FileSystem::LoadBitmap(expired);
    EXPECT_EQ(capture.Messages("AssetManager", LogLevel::Info),
              std::vector<std::string>{"Loading bitmap \"" + expired + "\""});
    EXPECT_EQ(order, (std::vector<std::string>{"R child", "R root", "S child", "S root"}));
    EXPECT_EQ(journal, (std::vector<std::string>{"Recorder Initialise", "Second Initialise",
                                                 "Second Shutdown", "Recorder Shutdown"}));
    EXPECT_EQ(game.rootSpace.firstChild, nullptr);
    EXPECT_EQ(capture.Messages("Space", LogLevel::Debug), std::vector<std::string>{"Deleting top space"});
    EXPECT_EQ(capture.Messages("Game", LogLevel::Warning),
              std::vector<std::string>{"Game does not have a window"});
}

TEST_F(GameLoop, ResetDestroysChildrenAtOnceAndSchedulesTheStartLevel)
{
    game.settings.level = "Levels/Menu.lvl";
    game.rootSpace.CreateChild().CreateChild();
    game.rootSpace.CreateChild();
    game.Reset();
    EXPECT_EQ(game.rootSpace.firstChild, nullptr);
    EXPECT_EQ(game.rootSpace.levelName, "Levels/Menu.lvl");
    EXPECT_TRUE(game.rootSpace.levelScheduled);
}

// Pausing logs only a change of state; a paused game sleeps between frames but keeps updating.
TEST_F(GameLoop, APausedGameSleepsBetweenFramesButKeepsUpdating)
{
    LogCapture capture;
    game.SetPaused(false);
    game.SetPaused(true);
    game.SetPaused(true);
    EXPECT_EQ(capture.Messages("Core", LogLevel::Debug), std::vector<std::string>{"pausing game"});
    game.AddSystem(recorder, nullptr);
    recorder.framesToRun = 3;
    Run();
    const std::vector<UpdateCall> calls = recorder.CallsFor(&game.rootSpace);
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_GE(calls[1].dt, 0.066);
    EXPECT_GE(calls[2].dt, 0.066);
    game.SetPaused(false);
    EXPECT_EQ(capture.Messages("Core", LogLevel::Debug),
              (std::vector<std::string>{"pausing game", "Unpausing game"}));
}

// End to end, these end the process before its coverage counts are written.
TEST_F(GameLoop, AFailedSystemStartAndASecondRunRaise)
{
    RecordingSystem refuser("Refuser", journal);
    refuser.refuses = true;
    ExpectRaise([&] { game.AddSystem(refuser, nullptr); }, "Game", "Failed to initialise system Refuser");
    EXPECT_TRUE(game.systems.empty());
    game.running = true;
    ExpectRaise([&] { game.Run(); }, "Game", "Game is already running!");
}

} // namespace
