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

TEST(Fullscreen, OpensHiddenAtTheOriginWithTheClientSizeAndTitle)
{
    const std::unique_ptr<Core::Window> window = OpenOffscreenWindow(800, 600);
    EXPECT_STREQ(SDL_GetWindowTitle(window->handle), "Quell Mar!");
    EXPECT_NE(SDL_GetWindowFlags(window->handle) & SDL_WINDOW_HIDDEN, 0u);
    EXPECT_NE(SDL_GetWindowFlags(window->handle) & SDL_WINDOW_OPENGL, 0u);
    EXPECT_EQ(window->savedRect.x, 0);
    EXPECT_EQ(window->savedRect.y, 0);
    EXPECT_EQ(window->savedRect.width, 800);
    EXPECT_EQ(window->savedRect.height, 600);
    int minimumWidth = 0;
    int minimumHeight = 0;
    SDL_GetWindowMinimumSize(window->handle, &minimumWidth, &minimumHeight);
    EXPECT_EQ(minimumWidth, 640);
    EXPECT_EQ(minimumHeight, 480);
}

TEST(Fullscreen, GoesOnAndComesBackToTheSavedPlaceAndSize)
{
    const std::unique_ptr<Core::Window> window = OpenOffscreenWindow(800, 600);
    window->SetFullscreen(true);
    EXPECT_TRUE(window->fullscreen);
    EXPECT_TRUE(PlatformFullscreen(*window));

    window->SetFullscreen(false);
    EXPECT_FALSE(window->fullscreen);
    EXPECT_FALSE(PlatformFullscreen(*window));
    int width = 0;
    int height = 0;
    SDL_GetWindowSize(window->handle, &width, &height);
    EXPECT_EQ(width, 800);
    EXPECT_EQ(height, 600);
    int x = -1;
    int y = -1;
    SDL_GetWindowPosition(window->handle, &x, &y);
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 0);
}

TEST(Fullscreen, AskingForTheCurrentStateChangesNothing)
{
    const std::unique_ptr<Core::Window> window = OpenOffscreenWindow(800, 600);
    window->SetFullscreen(true);
    window->savedRect = {1, 2, 3, 4};
    window->savedMaximized = true;
    window->SetFullscreen(true);
    EXPECT_EQ(window->savedRect.width, 3) << "the saved place is read only on entering";
    EXPECT_TRUE(window->savedMaximized);
    EXPECT_TRUE(PlatformFullscreen(*window));
    window->savedRect = {0, 0, 800, 600};
    window->savedMaximized = false;
    window->SetFullscreen(false);
    window->SetFullscreen(false);
    EXPECT_FALSE(PlatformFullscreen(*window));
}

TEST(Fullscreen, AWindowOpenedFullscreenStartsFullscreenAndHidden)
{
    setenv("SDL_VIDEODRIVER", "offscreen", 0);
    Core::Window window(640, 480, true);
    EXPECT_TRUE(window.fullscreen);
    EXPECT_TRUE(PlatformFullscreen(window));
    EXPECT_NE(SDL_GetWindowFlags(window.handle) & SDL_WINDOW_HIDDEN, 0u);
    EXPECT_EQ(window.savedRect.width, 640);
}

TEST(Fullscreen, MovingTakesTheWindowAlong)
{
    std::unique_ptr<Core::Window> window = OpenOffscreenWindow();
    SDL_Window* handle = window->handle;
    Core::Window moved(std::move(*window));
    EXPECT_EQ(moved.handle, handle);
    EXPECT_EQ(window->handle, nullptr);
}

} // namespace
