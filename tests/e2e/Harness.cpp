#include "Harness.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <optional>
#include <poll.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace
{

namespace fs = std::filesystem;

void PrepareDirectory(const RunOptions& options, const fs::path& directory)
{
    if (!options.dataFolder.empty())
    {
        const fs::path target = directory / "Data";
        fs::remove_all(target);
        fs::copy(fs::path(QUELLMAR_E2E_DATA) / options.dataFolder, target, fs::copy_options::recursive);
    }
    // Every game draws with shaders and a font: a Data folder without its own gets the shipped ones.
    if (fs::is_directory(directory / "Data"))
    {
        for (const char* shipped : {"Shaders", "Fonts"})
        {
            if (!fs::exists(directory / "Data" / shipped))
            {
                fs::copy(fs::path(QUELLMAR_SHIPPED_DATA) / shipped, directory / "Data" / shipped,
                         fs::copy_options::recursive);
            }
        }
    }
    fs::create_directories(directory / "home");
    fs::create_directories(directory / "xdg");
}

bool SetsVariable(const std::vector<std::string>& settings, std::string_view entry)
{
    const std::string_view name = entry.substr(0, entry.find('=') + 1);
    for (const std::string& setting : settings)
    {
        if (setting.starts_with(name))
        {
            return true;
        }
    }
    return false;
}

// The caller's environment with the user folders moved into the run's directory, no display or sound
// card needed, and the test's own settings over all of that.
std::vector<std::string> Environment(const RunOptions& options, const fs::path& directory)
{
    std::vector<std::string> settings = options.environment;
    for (const char* setting : {"SDL_VIDEODRIVER=offscreen", "SDL_AUDIODRIVER=dummy", "ALSOFT_DRIVERS=null"})
    {
        if (!SetsVariable(settings, setting))
        {
            settings.emplace_back(setting);
        }
    }
    settings.push_back("HOME=" + (directory / "home").string());
    settings.push_back("XDG_DATA_HOME=" + (directory / "xdg").string());
    std::vector<std::string> environment;
    for (char** entry = environ; *entry != nullptr; ++entry)
    {
        if (!SetsVariable(settings, *entry))
        {
            environment.emplace_back(*entry);
        }
    }
    environment.insert(environment.end(), settings.begin(), settings.end());
    return environment;
}

std::vector<char*> Pointers(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts)
    {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

// Runs in the child between fork and exec: only async-signal-safe calls. The limits and the disposition
// of SIGXFSZ survive exec; the disposition is set either way, so the test doesn't inherit ours.
void ApplyLimits(const RunOptions& options)
{
    const rlimit space = {options.addressSpaceLimit, options.addressSpaceLimit};
    if (options.addressSpaceLimit != 0 && setrlimit(RLIMIT_AS, &space) != 0)
    {
        _exit(125);
    }
    if (options.fileSizeLimit == 0)
    {
        return;
    }
    const rlimit size = {options.fileSizeLimit, options.fileSizeLimit};
    const rlimit noCore = {0, 0};
    struct sigaction disposition = {};
    disposition.sa_handler = options.ignoreFileSizeSignal ? SIG_IGN : SIG_DFL;
    if (setrlimit(RLIMIT_FSIZE, &size) != 0 || setrlimit(RLIMIT_CORE, &noCore) != 0 ||
        sigaction(SIGXFSZ, &disposition, nullptr) != 0)
    {
        _exit(125);
    }
}

pid_t Spawn(const RunOptions& options, const fs::path& directory, int outputPipe[2], int errorPipe[2])
{
    std::vector<std::string> arguments = {options.executable};
    arguments.insert(arguments.end(), options.arguments.begin(), options.arguments.end());
    std::vector<std::string> environment = Environment(options, directory);
    std::vector<char*> argv = Pointers(arguments);
    std::vector<char*> envp = Pointers(environment);

    const pid_t child = fork();
    if (child == 0)
    {
        dup2(outputPipe[1], STDOUT_FILENO);
        dup2(errorPipe[1], STDERR_FILENO);
        close(outputPipe[0]);
        close(errorPipe[0]);
        if (chdir(directory.c_str()) != 0)
        {
            _exit(126);
        }
        ApplyLimits(options);
        execve(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    close(outputPipe[1]);
    close(errorPipe[1]);
    return child;
}

// Appends what is ready on the descriptor; false once it reached its end.
bool Drain(int descriptor, std::string& into)
{
    std::array<char, 65536> buffer{};
    const ssize_t count = read(descriptor, buffer.data(), buffer.size());
    if (count > 0)
    {
        into.append(buffer.data(), static_cast<size_t>(count));
        return true;
    }
    return count < 0 && errno == EINTR;
}

void Collect(const RunOptions& options, pid_t child, int outputDescriptor, int errorDescriptor,
             RunResult& result)
{
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::duration<double>(options.timeLimitSeconds);
    bool signalled = false;
    std::optional<Clock::time_point> seen;
    std::array<pollfd, 2> streams = {pollfd{outputDescriptor, POLLIN, 0}, pollfd{errorDescriptor, POLLIN, 0}};
    while (streams[0].fd >= 0 || streams[1].fd >= 0)
    {
        if (Clock::now() > deadline)
        {
            kill(child, SIGKILL);
            result.timedOut = true;
            break;
        }
        poll(streams.data(), streams.size(), 50);
        for (size_t index = 0; index < streams.size(); ++index)
        {
            std::string& into = index == 0 ? result.output : result.errors;
            if (streams[index].fd >= 0 && streams[index].revents != 0 && !Drain(streams[index].fd, into))
            {
                close(streams[index].fd);
                streams[index].fd = -1;
            }
        }
        if (!seen && !options.signalAfterOutput.empty() &&
            result.output.find(options.signalAfterOutput) != std::string::npos)
        {
            seen = Clock::now();
        }
        if (!signalled && seen &&
            Clock::now() >= *seen + std::chrono::duration<double>(options.signalDelaySeconds))
        {
            kill(child, options.signal);
            signalled = true;
            if (options.closeOutputAfterSignal && streams[0].fd >= 0)
            {
                close(streams[0].fd);
                streams[0].fd = -1;
            }
        }
    }
    for (const pollfd& stream : streams)
    {
        if (stream.fd >= 0)
        {
            close(stream.fd);
        }
    }
}

} // namespace

RunResult RunEngine(const RunOptions& options)
{
    std::optional<RunDirectory> temporary;
    if (options.directory.empty())
    {
        temporary.emplace();
    }
    const fs::path directory = temporary ? temporary->path : options.directory;
    PrepareDirectory(options, directory);

    int outputPipe[2];
    int errorPipe[2];
    if (pipe2(outputPipe, O_CLOEXEC) != 0 || pipe2(errorPipe, O_CLOEXEC) != 0)
    {
        throw std::runtime_error("pipe failed");
    }
    RunResult result;
    const pid_t child = Spawn(options, directory, outputPipe, errorPipe);
    Collect(options, child, outputPipe[0], errorPipe[0], result);

    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR)
    {
    }
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.terminatingSignal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return result;
}

std::vector<std::string> SplitLines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
    {
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> PrintedLines(const std::string& text)
{
    std::vector<std::string> printed;
    for (const std::string& line : SplitLines(text))
    {
        if (!line.starts_with("["))
        {
            printed.push_back(line);
        }
    }
    return printed;
}

std::vector<std::string> LogMessages(const std::string& text, const std::string& category,
                                     const std::string& level)
{
    const std::string marker = "] [" + category + "] [" + level + "]: ";
    std::vector<std::string> messages;
    for (const std::string& line : SplitLines(text))
    {
        const size_t at = line.find(marker);
        if (line.starts_with("[") && at != std::string::npos)
        {
            messages.push_back(line.substr(at + marker.size()));
        }
    }
    return messages;
}

bool EndsWithShutdown(const std::string& output)
{
    const std::vector<std::string> lines = SplitLines(output);
    return lines.size() >= 2 && lines[lines.size() - 2].ends_with("[Space] [Debug]: Deleting top space") &&
           lines.back().ends_with("[Graphics] [Info]: Graphics is cleaning up");
}

std::string ReadFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

RunDirectory::RunDirectory()
{
    std::string pattern = (fs::temp_directory_path() / "quellmar-run-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
    {
        throw std::runtime_error("mkdtemp failed");
    }
    path = pattern;
}

RunDirectory::~RunDirectory()
{
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

void RunDirectory::Write(const std::string& name, const std::string& text) const
{
    fs::create_directories((path / name).parent_path());
    std::ofstream(path / name, std::ios::binary) << text;
}
