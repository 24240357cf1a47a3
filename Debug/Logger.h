#pragma once

// The engine's one logger. Each level has its own list of sinks; a line reaches exactly the sinks attached
// to its level, in attach order. There is no other filter. The logger has no lock: the two threads may
// interleave lines, and in multithreaded mode the main thread logs little once the game thread runs.

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

enum class LogLevel : int32_t
{
    Debug = 1,
    Info = 2,
    Warning = 4,
    Error = 8,
    Fatal = 16,
};

class Logger
{
public:
    using Sink = void (*)(std::string_view category, LogLevel level, std::string_view message);

    static constexpr int32_t kAllLevels = 31;

    // Appends the sink to every level in the mask, in the order Debug, Info, Warning, Error, Fatal.
    static void Attach(Sink sink, int32_t levelMask);
    // Removes every attachment of the sink; lets tests and tools undo their Attach.
    static void Detach(Sink sink);
    static void Log(std::string_view category, LogLevel level, std::string_view message);

    // Logs the exception at level Fatal to every Fatal sink, then throws it. Never returns.
    [[noreturn]] static void Raise(std::string_view category, const std::string& message);
    // The same for failures of the binary file reader, thrown as FileSystem::SerializerError.
    [[noreturn]] static void RaiseSerializerError(std::string_view category, const std::string& message);
};

// The two sinks attached at start: levels up to Warning to standard output, Error and Fatal to standard
// error, each line coloured by level when the stream is a terminal and flushed at once.
void StandardOutputSink(std::string_view category, LogLevel level, std::string_view message);
void StandardErrorSink(std::string_view category, LogLevel level, std::string_view message);

// Writes one line in the log format, ended by a line feed, and flushes the stream.
void WriteLogLine(std::FILE* stream, bool coloured, std::string_view category, LogLevel level,
                  std::string_view message);

// "[" local time "] [" category "] [" level name "]: " message, without a line end.
std::string FormatLogLine(std::string_view category, LogLevel level, std::string_view message);
const char* LogLevelName(LogLevel level);
