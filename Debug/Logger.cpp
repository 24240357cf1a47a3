#include "Debug/Logger.h"

#include "Debug/Exception.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <unistd.h>
#include <vector>

namespace
{

constexpr int kLevelCount = 5;

int LevelIndex(LogLevel level)
{
    switch (level)
    {
    case LogLevel::Debug:
        return 0;
    case LogLevel::Info:
        return 1;
    case LogLevel::Warning:
        return 2;
    case LogLevel::Error:
        return 3;
    case LogLevel::Fatal:
        return 4;
    }
    return -1;
}

// Terminal colours standing in for the console attributes grey, bright white, yellow, red and magenta.
constexpr std::array<const char*, kLevelCount> kLevelColours = {"\033[37m", "\033[97m", "\033[93m",
                                                                "\033[91m", "\033[95m"};
constexpr const char* kResetColour = "\033[0m";

// The wall clock to the second changes far less often than lines are written: format it once a second.
std::string_view LocalTimeStamp()
{
    thread_local std::time_t lastSecond = -1;
    thread_local std::array<char, 256> stamp{};
    thread_local size_t stampLength = 0;
    const std::time_t now = std::time(nullptr);
    if (now != lastSecond)
    {
        std::tm local{};
        localtime_r(&now, &local);
        stampLength = std::strftime(stamp.data(), stamp.size(), "%x %X", &local);
        lastSecond = now;
    }
    return {stamp.data(), stampLength};
}

void Write(std::FILE* stream, std::string_view text)
{
    fwrite_unlocked(text.data(), 1, text.size(), stream);
}

} // namespace

void WriteLogLine(std::FILE* stream, bool coloured, std::string_view category, LogLevel level,
                  std::string_view message)
{
    flockfile(stream);
    if (coloured)
    {
        Write(stream, kLevelColours[static_cast<size_t>(LevelIndex(level))]);
    }
    Write(stream, "[");
    Write(stream, LocalTimeStamp());
    Write(stream, "] [");
    Write(stream, category);
    Write(stream, "] [");
    Write(stream, LogLevelName(level));
    Write(stream, "]: ");
    Write(stream, message);
    if (coloured)
    {
        Write(stream, kResetColour);
    }
    Write(stream, "\n");
    fflush_unlocked(stream);
    funlockfile(stream);
}

// Colour only for a terminal: piped output stays plain text, byte for byte the line format.
void StandardOutputSink(std::string_view category, LogLevel level, std::string_view message)
{
    static const bool coloured = isatty(STDOUT_FILENO) == 1;
    WriteLogLine(stdout, coloured, category, level, message);
}

void StandardErrorSink(std::string_view category, LogLevel level, std::string_view message)
{
    static const bool coloured = isatty(STDERR_FILENO) == 1;
    WriteLogLine(stderr, coloured, category, level, message);
}

namespace
{

class SinkTable
{
public:
    SinkTable()
    {
        Attach(StandardOutputSink, 7);
        Attach(StandardErrorSink, 24);
    }

    // Returns false when the mask names no level.
    bool Attach(Logger::Sink sink, int32_t levelMask)
    {
        bool attached = false;
        for (int index = 0; index < kLevelCount; ++index)
        {
            if ((levelMask & (1 << index)) != 0)
            {
                sinks[static_cast<size_t>(index)].push_back(sink);
                attached = true;
            }
        }
        return attached;
    }

    void Detach(Logger::Sink sink)
    {
        for (auto& levelSinks : sinks)
        {
            std::erase(levelSinks, sink);
        }
    }

    const std::vector<Logger::Sink>& For(LogLevel level) const
    {
        return sinks[static_cast<size_t>(LevelIndex(level))];
    }

private:
    std::array<std::vector<Logger::Sink>, kLevelCount> sinks;
};

// Built on first use, so code that logs while other globals are constructed finds the standard sinks.
SinkTable& Sinks()
{
    static SinkTable table;
    return table;
}

template <typename ExceptionType>
[[noreturn]] void RaiseAs(std::string_view category, const std::string& message)
{
    const ExceptionType exception(message);
    const std::string text = exception.Text();
    for (Logger::Sink sink : Sinks().For(LogLevel::Fatal))
    {
        sink(category, LogLevel::Fatal, text);
    }
    throw exception;
}

} // namespace

const char* LogLevelName(LogLevel level)
{
    static constexpr std::array<const char*, kLevelCount> names = {"Debug", "Info", "Warning", "Error",
                                                                   "Fatal"};
    const int index = LevelIndex(level);
    return index < 0 ? "Unknown" : names[static_cast<size_t>(index)];
}

std::string FormatLogLine(std::string_view category, LogLevel level, std::string_view message)
{
    std::string line;
    line.reserve(48 + category.size() + message.size());
    line.append("[").append(LocalTimeStamp()).append("] [").append(category).append("] [");
    line.append(LogLevelName(level)).append("]: ").append(message);
    return line;
}

void Logger::Attach(Sink sink, int32_t levelMask)
{
    if (!Sinks().Attach(sink, levelMask))
    {
        Log("Logger", LogLevel::Warning, "No valid level selected for attaching. No action taken.");
    }
}

void Logger::Detach(Sink sink)
{
    Sinks().Detach(sink);
}

void Logger::Log(std::string_view category, LogLevel level, std::string_view message)
{
    if (LevelIndex(level) < 0)
    {
        std::string composed = "Security Level can not be more than 1 level. Message:[";
        composed.append(category).append("]: [UNKNOWN]: ").append(message);
        Log("Logger", LogLevel::Error, composed);
        return;
    }
    for (Sink sink : Sinks().For(level))
    {
        sink(category, level, message);
    }
}

void Logger::Raise(std::string_view category, const std::string& message)
{
    RaiseAs<Debug::Exception>(category, message);
}

void Logger::RaiseSerializerError(std::string_view category, const std::string& message)
{
    RaiseAs<FileSystem::SerializerError>(category, message);
}
