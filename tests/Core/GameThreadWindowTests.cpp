#include "Core/Game.h"
#include "Core/Window.h"
#include "Support/OffscreenWindow.h"
#include "Support/TempFolder.h"

#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

namespace
{

TEST(GameThread, RunOnItsOwnThreadEndsWhenTheGameDoes)
{
    // The main thread pumps the window until the game thread, ended from outside as Game.Quit would end
    // it, shuts input down and so wakes the pump.
    const std::unique_ptr<Core::Window> window = OpenOffscreenWindow();
    Core::GameSettings settings;
    settings.multithreaded = true;
    Core::Game game(window.get(), settings);
    TempFolder folder;
    folder.MakeFolder("Data");
    ScopedWorkingDirectory start(folder.Path());
    std::thread quitter(
        [&]
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            game.running = false;
        });
    EXPECT_EQ(game.Run(), 0);
    quitter.join();
    EXPECT_FALSE(game.thread.joinable());
    EXPECT_GE(game.frame, 1u);
    EXPECT_EQ(game.input.window, nullptr);
    EXPECT_TRUE(std::filesystem::equivalent(std::filesystem::current_path(), folder.Path() / "Data"));
}

} // namespace
