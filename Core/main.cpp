#include "Core/CommandLine.h"
#include "Core/Game.h"
#include "Core/Process.h"
#include "Core/Random.h"

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

    Core::Game game(nullptr, settings);
    return game.Run();
}
