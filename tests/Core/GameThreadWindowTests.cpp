#include "Core/Game.h"
#include "Core/Window.h"
#include "Support/OffscreenWindow.h"
#include "Support/TempFolder.h"

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

namespace
{

std::vector<uint8_t> Bytes(const std::string& text)
{
    return {text.begin(), text.end()};
}

TEST(GameThread, RunOnItsOwnThreadEndsWhenTheGameDoes)
{
    // The main thread pumps the window until the game thread, ended by its start level's Game.Quit, shuts
    // input down and so wakes the pump. A watchdog ends a game that never quits, so a fault fails the test
    // instead of hanging it.
    const std::unique_ptr<Core::Window> window = OpenOffscreenWindow();
    Core::GameSettings settings;
    settings.multithreaded = true;
    Core::Game game(window.get(), settings);
    TempFolder folder;
    folder.Write("Data/Levels/Start.lvl", Bytes(R"(return { Name = "Quitter", Script = "Quit.lua" })"));
    folder.Write("Data/Quit.lua", Bytes("Game.Quit()"));
    ScopedWorkingDirectory start(folder.Path());

    std::mutex mutex;
    std::condition_variable returned;
    bool runReturned = false;
    bool watchdogFired = false;
    std::thread watchdog(
        [&]
        {
            std::unique_lock lock(mutex);
            if (!returned.wait_for(lock, std::chrono::seconds(60), [&] { return runReturned; }))
            {
                watchdogFired = true;
                game.running = false;
            }
        });
    EXPECT_EQ(game.Run(), 0);
    {
        const std::lock_guard lock(mutex);
        runReturned = true;
    }
    returned.notify_one();
    watchdog.join();

    EXPECT_FALSE(watchdogFired) << "the start level's script never ended the game";
    EXPECT_FALSE(game.thread.joinable());
    EXPECT_GE(game.frame, 1u);
    EXPECT_EQ(game.input.window, nullptr);
    EXPECT_TRUE(std::filesystem::equivalent(std::filesystem::current_path(), folder.Path() / "Data"));
}

} // namespace
