#include "Core/Window.h"
#include "Support/OffscreenWindow.h"

#include <SDL.h>
#include <gtest/gtest.h>

namespace
{

bool PlatformFullscreen(const Core::Window& window)
{
    return (SDL_GetWindowFlags(window.handle) & SDL_WINDOW_FULLSCREEN_DESKTOP) ==
           SDL_WINDOW_FULLSCREEN_DESKTOP;
}

// Opens hidden at the origin with the client size and title; fullscreen goes on and comes back to the saved
// place, which is read only on entering; asking for the current state changes nothing.
TEST(Fullscreen, OpensHiddenGoesOnAndComesBackToTheSavedPlace)
{
    const std::unique_ptr<Core::Window> window = OpenOffscreenWindow(800, 600);
    EXPECT_STREQ(SDL_GetWindowTitle(window->handle), "Quell Mar!");
    EXPECT_NE(SDL_GetWindowFlags(window->handle) & SDL_WINDOW_HIDDEN, 0u);
    EXPECT_NE(SDL_GetWindowFlags(window->handle) & SDL_WINDOW_OPENGL, 0u);
    int width = 0;
    int height = 0;
    SDL_GetWindowMinimumSize(window->handle, &width, &height);
    EXPECT_EQ(width * 10000 + height, 640 * 10000 + 480);

    window->SetFullscreen(true);
    EXPECT_TRUE(window->fullscreen && PlatformFullscreen(*window));
    const auto saved = window->savedRect;
    window->savedRect = {1, 2, 3, 4};
    window->savedMaximized = true;
    window->SetFullscreen(true);
    EXPECT_EQ(window->savedRect.width, 3);
    EXPECT_TRUE(window->savedMaximized && PlatformFullscreen(*window));
    window->savedRect = saved;
    window->savedMaximized = false;

    window->SetFullscreen(false);
    window->SetFullscreen(false);
    EXPECT_FALSE(window->fullscreen || PlatformFullscreen(*window));
    SDL_GetWindowSize(window->handle, &width, &height);
    int x = -1;
    int y = -1;
    SDL_GetWindowPosition(window->handle, &x, &y);
    EXPECT_EQ((std::vector<int>{x, y, width, height}), (std::vector<int>{0, 0, 800, 600}));
    EXPECT_EQ((std::vector<int>{saved.x, saved.y, saved.width, saved.height}),
              (std::vector<int>{0, 0, 800, 600}));
}

// A window opened fullscreen starts so, hidden; moving it takes the platform window along.
TEST(Fullscreen, AWindowOpenedFullscreenStartsHiddenAndMovesWhole)
{
    setenv("SDL_VIDEODRIVER", "offscreen", 0);
    Core::Window window(640, 480, true);
    EXPECT_TRUE(window.fullscreen && PlatformFullscreen(window));
    EXPECT_NE(SDL_GetWindowFlags(window.handle) & SDL_WINDOW_HIDDEN, 0u);
    EXPECT_EQ(window.savedRect.width, 640);
    SDL_Window* handle = window.handle;
    const Core::Window moved(std::move(window));
    EXPECT_EQ(moved.handle, handle);
    EXPECT_EQ(window.handle, nullptr);
    // The video system started once serves a second window of the process.
    const std::unique_ptr<Core::Window> second = OpenOffscreenWindow(320, 240);
    EXPECT_NE(second->handle, nullptr);
}

} // namespace
