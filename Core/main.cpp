#include "Core/CommandLine.h"
#include "Core/Game.h"
#include "Core/Process.h"
#include "Core/Random.h"
#include "Core/Window.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <random>

int main(int argc, char** argv)
{
    Core::InstallProcessHandlers();
    std::setlocale(LC_ALL, "en_US.utf8");

    Core::GameSettings settings;
    Core::SeedRand(std::random_device{}());
    if (Core::ParseCommandLine(argc, argv, settings) == Core::CommandLineResult::ShowHelp)
    {
        std::fputs(Core::HelpText(), stdout);
        return 0;
    }
    Core::Rand();

    // The settings keep the size asked for; the window never opens smaller than it can be made by hand.
    Core::Window window(std::max(settings.width, Core::Window::kMinimumWidth),
                        std::max(settings.height, Core::Window::kMinimumHeight), settings.fullscreen);
    Core::Game game(&window, settings);
    return game.Run();
}
