#include "Core/Main.h"

#include "Core/CommandLine.h"
#include "Core/Game.h"
#include "Core/Process.h"
#include "Core/Random.h"
#include "Core/Window.h"
#include "Platform/SoundLibrary.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <random>

namespace Core
{

int Main(int argc, char** argv)
{
    InstallProcessHandlers();
    std::setlocale(LC_ALL, "en_US.utf8");

    GameSettings settings;
    SeedRand(std::random_device{}());
    if (ParseCommandLine(argc, argv, settings) == CommandLineResult::ShowHelp)
    {
        std::fputs(HelpText(), stdout);
        return 0;
    }
    Rand();
    // Before the window: it sets the environment, which only one thread may do.
    Platform::SoundLibrary::QuietLibraryLog();

    // The settings keep the size asked for; the window never opens smaller than it can be made by hand.
    Window window(std::max(settings.width, Window::kMinimumWidth),
                  std::max(settings.height, Window::kMinimumHeight), settings.fullscreen);
    Game game(&window, settings);
    return game.Run();
}

} // namespace Core
