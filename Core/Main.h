#pragma once

// The whole program: process set-up, the command line, the window and the game, run to the end.

namespace Core
{

// Returns the process's exit code.
int Main(int argc, char** argv);

} // namespace Core
