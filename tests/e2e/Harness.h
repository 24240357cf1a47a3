#pragma once

// Runs the real executable in a directory that holds a copy of a test's own Data folder, with HOME and
// XDG_DATA_HOME pointed inside it, headless and silent, under a time limit.

#include <csignal>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <vector>

struct RunOptions
{
    std::string executable = QUELLMAR_EXECUTABLE;
    std::string dataFolder; // a folder under tests/e2e/data copied as Data; empty for none
    // Where to run; empty for a fresh temporary directory. A given one is kept, so runs can share a save.
    std::filesystem::path directory;
    std::vector<std::string> arguments;
    std::vector<std::string> environment; // NAME=value settings over the default ones
    double timeLimitSeconds = 60.0;
    // The signal is sent once, this long after standard output first holds the text.
    std::string signalAfterOutput;
    double signalDelaySeconds = 0.0;
    int signal = SIGTERM;
    bool closeOutputAfterSignal = false; // as a reader that went away would
    rlim_t fileSizeLimit = 0;            // RLIMIT_FSIZE, 0 for none; a limited run dumps no core
    bool ignoreFileSizeSignal = false;   // so a write past the limit fails with EFBIG instead
    rlim_t addressSpaceLimit = 0;        // RLIMIT_AS, 0 for none
};

struct RunResult
{
    int exitCode = -1; // -1 if a signal ended the process
    int terminatingSignal = 0;
    bool timedOut = false;
    std::string output;
    std::string errors;
};

RunResult RunEngine(const RunOptions& options);

// A fresh temporary directory, removed with everything in it.
class RunDirectory
{
public:
    RunDirectory();
    ~RunDirectory();
    RunDirectory(const RunDirectory&) = delete;
    RunDirectory& operator=(const RunDirectory&) = delete;

    // Writes the file at the path, relative to the directory, making its folders.
    void Write(const std::string& name, const std::string& text) const;
    std::filesystem::path Save() const { return path / "xdg/Velmora/Quellmar/Save.lua"; }

    std::filesystem::path path;
};

std::vector<std::string> SplitLines(const std::string& text);

// The lines of standard output that are no log lines: what scripts printed, in order.
std::vector<std::string> PrintedLines(const std::string& text);

// The messages of the log lines "... [category] [level]: message", in order.
std::vector<std::string> LogMessages(const std::string& text, const std::string& category,
                                     const std::string& level);

// Whether the run ended in order: the root space's deletion, then graphics shutting down.
bool EndsWithShutdown(const std::string& output);

// The whole content of a file; empty if it can't be read.
std::string ReadFile(const std::filesystem::path& path);
