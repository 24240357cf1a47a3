#include "Support/LogCapture.h"

namespace
{

std::vector<LogEntry> captured;

void CaptureSink(std::string_view category, LogLevel level, std::string_view message)
{
    captured.push_back(LogEntry{std::string(category), level, std::string(message)});
}

} // namespace

LogCapture::LogCapture()
{
    captured.clear();
    Logger::Attach(CaptureSink, Logger::kAllLevels);
}

LogCapture::~LogCapture()
{
    Logger::Detach(CaptureSink);
    captured.clear();
}

const std::vector<LogEntry>& LogCapture::Entries() const
{
    return captured;
}

std::vector<std::string> LogCapture::Messages(const std::string& category, LogLevel level) const
{
    std::vector<std::string> messages;
    for (const LogEntry& entry : captured)
    {
        if (entry.category == category && entry.level == level)
        {
            messages.push_back(entry.message);
        }
    }
    return messages;
}

size_t LogCapture::Count(LogLevel level) const
{
    size_t count = 0;
    for (const LogEntry& entry : captured)
    {
        count += entry.level == level ? 1 : 0;
    }
    return count;
}

void LogCapture::Clear()
{
    captured.clear();
}
