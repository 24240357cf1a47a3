#pragma once

// Records every log line while in scope, so tests can assert on exact texts.

#include "Debug/Logger.h"

#include <string>
#include <vector>

struct LogEntry
{
    std::string category;
    LogLevel level;
    std::string message;
};

class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    const std::vector<LogEntry>& Entries() const;
    // Entries of this category and level, in order.
    std::vector<std::string> Messages(const std::string& category, LogLevel level) const;
    size_t Count(LogLevel level) const;
    void Clear();
};
