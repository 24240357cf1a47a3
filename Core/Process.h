#pragma once

// How the process meets the operating system: signals that end a run, and how a raise ends it.

namespace Core
{

// The exit code of a process ended by a raise (an exception that nothing catches).
constexpr int kRaiseExitCode = 3;

// SIGINT and SIGTERM ask the game to quit as the window's close would: the flag below is set, and a
// second signal ends the process at once with 128 plus the signal number. SIGPIPE is ignored, so writing
// to an output nobody reads is harmless. An exception that nothing catches ends the process with
// kRaiseExitCode once both output streams are flushed, without unwinding any further.
void InstallProcessHandlers();

// True once a quit signal arrived; never cleared.
bool QuitSignalled();

} // namespace Core
