#include "Core/CommandLine.h"

#include "Core/Random.h"
#include "Debug/Logger.h"

#include <cctype>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <string_view>

namespace Core
{
namespace
{

constexpr const char* kHelpText =
    "Options:\n"
    "  help                   - prints this help screen\n"
    "  width <number>         - initial window width\n"
    "  height <number>        - initial window height\n"
    "  fullscreen <y/n>       - initially start in fullscreen\n"
    "  reset-keys <y/n>       - if f4, and f5 debug reset keys enabled \n"
    "  level <filename>       - default level to load (relative to data folder)\n"
    "  multithreaded <y/n>    - run in multithreaded mode\n"
    "  record <demo filename> - record a demo to the filename\n"
    "  play <demo filename>   - play a demo from the filename\n"
    "  seed <number>          - the random seed to use\n"
    "  vsync <y/n>            - whether to use vsync or not\n";

// Strips one "/" and up to two "-" and lowers the rest in place; returns the start of the name.
char* NormaliseOption(char* argument)
{
    if (*argument == '/')
    {
        ++argument;
    }
    for (int dash = 0; dash < 2 && *argument == '-'; ++dash)
    {
        ++argument;
    }
    for (char* c = argument; *c != '\0'; ++c)
    {
        *c = static_cast<char>(std::tolower(static_cast<unsigned char>(*c)));
    }
    return argument;
}

bool IsOneOf(std::string_view name, std::initializer_list<std::string_view> names)
{
    for (const std::string_view candidate : names)
    {
        if (name == candidate)
        {
            return true;
        }
    }
    return false;
}

// A y/n value is judged by its first character alone.
bool ParseYesNo(const char* value)
{
    return value[0] == '1' || value[0] == 'y';
}

// atoi with defined behaviour: non-numbers give 0 and out-of-range values wrap to 32 bits.
int32_t ParseNumber(const char* value)
{
    return static_cast<int32_t>(std::strtol(value, nullptr, 10));
}

enum class Option
{
    Unknown,
    Help,
    Width,
    Height,
    Fullscreen,
    DebugKeys,
    Level,
    Multithreaded,
    Seed,
    Vsync,
    Record,
    Play,
};

// Tested in the order of the options table, so an earlier match wins.
Option Identify(std::string_view name)
{
    if (IsOneOf(name, {"h", "help", "commands", "list", "?"}))
        return Option::Help;
    if (name == "width")
        return Option::Width;
    if (name == "height")
        return Option::Height;
    if (name == "fullscreen")
        return Option::Fullscreen;
    if (IsOneOf(name, {"reset-keys", "resetkeys", "debug-keys", "debugkeys"}))
        return Option::DebugKeys;
    if (name == "level")
        return Option::Level;
    if (name == "multithreaded")
        return Option::Multithreaded;
    if (name == "seed")
        return Option::Seed;
    if (name == "vsync")
        return Option::Vsync;
    if (IsOneOf(name, {"record", "record-demo", "recorddemo"}))
        return Option::Record;
    if (IsOneOf(name, {"play", "play-demo", "playdemo"}))
        return Option::Play;
    return Option::Unknown;
}

void Apply(Option option, const char* value, GameSettings& settings)
{
    switch (option)
    {
    case Option::Width:
        settings.width = ParseNumber(value);
        break;
    case Option::Height:
        settings.height = ParseNumber(value);
        break;
    case Option::Fullscreen:
        settings.fullscreen = ParseYesNo(value);
        break;
    case Option::DebugKeys:
        settings.debugKeys = ParseYesNo(value);
        break;
    case Option::Level:
        settings.level = value;
        break;
    case Option::Multithreaded:
        settings.multithreaded = ParseYesNo(value);
        break;
    case Option::Seed:
        SeedRand(static_cast<uint32_t>(ParseNumber(value)));
        break;
    case Option::Vsync:
        settings.vsync = ParseYesNo(value);
        break;
    case Option::Record:
        settings.demoMode = DemoMode::Record;
        settings.demoFile = value;
        break;
    case Option::Play:
        settings.demoMode = DemoMode::Play;
        settings.demoFile = value;
        break;
    case Option::Unknown:
    case Option::Help:
        break;
    }
}

} // namespace

CommandLineResult ParseCommandLine(int argc, char** argv, GameSettings& settings)
{
    for (int index = 1; index < argc; ++index)
    {
        const std::string_view name = NormaliseOption(argv[index]);
        const Option option = Identify(name);
        if (option == Option::Help)
        {
            return CommandLineResult::ShowHelp;
        }
        if (option == Option::Unknown)
        {
            Logger::Log("Command Line", LogLevel::Warning,
                        "Unrecognised command line option: " + std::string(name));
            continue;
        }
        if (index + 1 >= argc)
        {
            Logger::Log("Command Line", LogLevel::Warning,
                        "Command line option needs a value: " + std::string(name));
            break;
        }
        Apply(option, argv[++index], settings);
    }
    return CommandLineResult::Run;
}

const char* HelpText()
{
    return kHelpText;
}

} // namespace Core
