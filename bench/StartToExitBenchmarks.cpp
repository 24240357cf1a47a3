// The whole life of the executable: start, run to the first frame, stop on SIGTERM, exit.

#include <benchmark/benchmark.h>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace
{

// The line the loop logs as its graphics start, just before its first frame.
constexpr const char* kFirstFrameLine = "Finished GL function Grab";

// Spawns the engine with its standard output on a pipe; returns its pid, or -1.
pid_t Spawn(int& output)
{
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0)
    {
        return -1;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeEnds[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, pipeEnds[0]);
    // Without a start level the run logs an Error line that would interleave with the report.
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    std::string executable = QUELLMAR_EXECUTABLE;
    char* argv[] = {executable.data(), nullptr};
    pid_t child = -1;
    const int failed = posix_spawn(&child, argv[0], &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipeEnds[1]);
    output = pipeEnds[0];
    return failed == 0 ? child : -1;
}

bool WaitForFirstFrame(int output)
{
    std::string seen;
    char buffer[4096];
    while (seen.find(kFirstFrameLine) == std::string::npos)
    {
        const ssize_t count = read(output, buffer, sizeof buffer);
        if (count <= 0)
        {
            return false;
        }
        seen.append(buffer, static_cast<size_t>(count));
    }
    return true;
}

void StartToExitUnderSigterm(benchmark::State& state)
{
    // The window opens off screen unless the caller chose a video driver.
    setenv("SDL_VIDEODRIVER", "offscreen", 0);
    for (auto _ : state)
    {
        const auto start = std::chrono::steady_clock::now();
        int output = -1;
        const pid_t child = Spawn(output);
        if (child < 0)
        {
            state.SkipWithError("cannot start the engine");
            return;
        }
        const bool reached = WaitForFirstFrame(output);
        kill(child, SIGTERM);
        char drain[4096];
        while (read(output, drain, sizeof drain) > 0)
        {
        }
        close(output);
        int status = 0;
        waitpid(child, &status, 0);
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        if (!reached || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        {
            state.SkipWithError("the engine did not run to its first frame and exit cleanly");
            return;
        }
        state.SetIterationTime(elapsed.count());
    }
}
BENCHMARK(StartToExitUnderSigterm)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(30);

} // namespace
