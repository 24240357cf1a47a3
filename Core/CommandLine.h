#pragma once

// The command line: "option" or "option value" arguments in any order, later ones overriding earlier
// ones. Option names are normalised in place (one "/", then up to two "-", then lowered byte by byte);
// values are taken as they stand.

#include "Core/GameSettings.h"

namespace Core
{

enum class CommandLineResult
{
    Run,
    ShowHelp, // a help option was met; nothing after it was read
};

// Walks the arguments from index 1. Unrecognised options are logged and skipped; "seed" reseeds the
// calling thread's generator at once.
CommandLineResult ParseCommandLine(int argc, char** argv, GameSettings& settings);

// The help text, each line ended by a line feed, as the help option prints it.
const char* HelpText();

} // namespace Core
