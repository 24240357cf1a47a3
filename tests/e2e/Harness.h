#pragma once

// Runs the real executable in a fresh temporary directory that holds a copy of a test's own Data folder,
// with HOME and XDG_DATA_HOME pointed inside it, under a time limit.

#include <csignal>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <vector>

struct RunOptions
{
    std::string executable = QUELLMAR_EXECUTABLE;
    // Name of a folder under tests/e2e/data copied as Data; empty for none.
    std::string dataFolder;
    // Where to run; empty for a fresh temporary directory that is removed afterwards. A given directory
    // is kept, so consecutive runs can share a save folder.
    std::filesystem::path directory;
    std::vector<std::string> arguments;
    // NAME=value settings over the environment; the run is headless and silent unless these say otherwise.
    std::vector<std::string> environment;
    double timeLimitSeconds = 20.0;
    // When standard output first holds this text, the signal is sent once.
    std::string signalAfterOutput;
    // How long after that text appeared the signal waits, so the run can go through many frames first.
    double signalDelaySeconds = 0.0;
    int signal = SIGTERM;
    // Close our end of standard output right after signalling, as a reader that went away would.
    bool closeOutputAfterSignal = false;
    // The largest file the run may write, in bytes (RLIMIT_FSIZE); 0 for no limit. A limited run also
    // dumps no core, which the limit would cut short anyway.
    rlim_t fileSizeLimit = 0;
    // With a limit: start with SIGXFSZ ignored, so that a write past the limit fails with EFBIG instead of
    // ending the process by the signal.
    bool ignoreFileSizeSignal = false;
    // The most address space the run may map, in bytes (RLIMIT_AS); 0 for no limit.
    rlim_t addressSpaceLimit = 0;
};

struct RunResult
{
    int exitCode = -1; // the exit status, or -1 if a signal ended the process
    int terminatingSignal = 0;
    bool timedOut = false;
    std::string output; // standard output
    std::string errors; // standard error
};

RunResult RunEngine(const RunOptions& options);

// A fresh temporary directory for runs that keep their directory, removed with everything in it.
class RunDirectory
{
public:
    RunDirectory();
    ~RunDirectory();
    RunDirectory(const RunDirectory&) = delete;
    RunDirectory& operator=(const RunDirectory&) = delete;

    void Write(const std::string& name, const std::string& text) const;

    std::filesystem::path path;
};

// Lines of a text, without their line ends.
std::vector<std::string> SplitLines(const std::string& text);

// The lines of standard output that are no log lines: what scripts printed, in order.
std::vector<std::string> PrintedLines(const std::string& text);

// The lines of a log that end with "] [category] [level]: message", in order, message only.
std::vector<std::string> LogMessages(const std::string& text, const std::string& category,
                                     const std::string& level);

// The whole content of a file; empty if it can't be read.
std::string ReadFile(const std::filesystem::path& path);
