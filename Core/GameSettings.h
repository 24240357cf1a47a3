#pragma once

#include <cstdint>
#include <string>

namespace Core
{

enum class DemoMode : int32_t
{
    None = 0,
    Record = 1,
    Play = 2,
};

// What the user chose on the command line; copied into the Game.
struct GameSettings
{
    std::string level = "Levels/Start.lvl"; // relative to the data folder
    std::string demoFile;
    DemoMode demoMode = DemoMode::None;
    int32_t width = 1366; // the window clamps, the settings keep what was given
    int32_t height = 768;
    bool multithreaded = true;
    bool fullscreen = true;
    bool pumpMessages = true; // no option clears it
    bool debugKeys = false;
    bool vsync = true;
};

} // namespace Core
