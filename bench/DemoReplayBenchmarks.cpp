// Replaying a long demo through the real executable: how many frames a second the game loop keeps up
// while every event of the demo goes through processing and on to a script connected to every kind.

#include "Support/TempFolder.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr int kFrames = 10000;
constexpr const char* kStartLine = "replay started";

// Listens to every kind and quits at the marker key, which the demo's last frame but one carries.
constexpr const char* kListener = R"(
local count = 0
local function listen(...) count = count + 1 end
for _, name in ipairs({"Quit", "Activate", "Minimize", "Close", "SizeChanged", "KeyDown", "KeyUp", "Char",
                       "MouseMove", "MouseDown", "MouseUp", "MouseWheel", "FileDropped"}) do
    Input["Connect" .. name](listen)
end
Input.ConnectKeyUp(function(key)
    if key == "Q" then Game.Quit() end
end)
print("replay started")
while true do wait() end
)";

// Three events a frame, none of which pauses the game, then the marker and one more frame line.
std::string MakeDemo()
{
    std::string demo;
    for (int frame = 1; frame <= kFrames; ++frame)
    {
        const int x = frame % 640;
        demo += "<0.016> Frame " + std::to_string(frame) + "\n";
        demo += "[8] MouseMove (" + std::to_string(x) + ", 100)\n";
        demo += frame % 2 == 0 ? "[5] KeyDown (65)\n" : "[6] KeyUp (65)\n";
        demo += "[7] Char (97)\n";
    }
    demo += "<0.016> Frame " + std::to_string(kFrames + 1) + "\n[6] KeyUp (81)\n";
    demo += "<0.016> Frame " + std::to_string(kFrames + 2) + "\n";
    return demo;
}

// Runs the engine on the folder's Data and demo; returns the seconds from the level's start to the exit,
// or a negative number if the run failed.
double TimeReplay(const TempFolder& folder)
{
    int output[2];
    if (pipe(output) != 0)
    {
        return -1.0;
    }
    const pid_t child = fork();
    if (child == 0)
    {
        dup2(output[1], STDOUT_FILENO);
        close(output[0]);
        const int quiet = open("/dev/null", O_WRONLY);
        dup2(quiet, STDERR_FILENO);
        if (chdir(folder.Path().c_str()) != 0)
        {
            _exit(126);
        }
        execl(QUELLMAR_EXECUTABLE, QUELLMAR_EXECUTABLE, "play", "replay.dem", "vsync", "n", "multithreaded",
              "n", "fullscreen", "n", static_cast<char*>(nullptr));
        _exit(127);
    }
    close(output[1]);
    std::string seen;
    char buffer[4096];
    auto start = std::chrono::steady_clock::now();
    bool started = false;
    for (ssize_t count; (count = read(output[0], buffer, sizeof buffer)) > 0;)
    {
        seen.append(buffer, static_cast<size_t>(count));
        if (!started && seen.find(kStartLine) != std::string::npos)
        {
            started = true;
            start = std::chrono::steady_clock::now();
        }
    }
    close(output[0]);
    int status = 0;
    waitpid(child, &status, 0);
    const auto end = std::chrono::steady_clock::now();
    if (!started || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
    {
        return -1.0;
    }
    return std::chrono::duration<double>(end - start).count();
}

void WriteText(const TempFolder& folder, const std::string& name, const std::string& text)
{
    folder.Write(name, std::vector<uint8_t>(text.begin(), text.end()));
}

void DemoReplay(benchmark::State& state)
{
    setenv("SDL_VIDEODRIVER", "offscreen", 0);
    TempFolder folder;
    WriteText(folder, "Data/Levels/Start.lvl",
              R"(return { { Name = "Listener", Script = "Scripts/Listener.lua" } })");
    WriteText(folder, "Data/Scripts/Listener.lua", kListener);
    WriteText(folder, "replay.dem", MakeDemo());
    double frames = 0.0;
    double seconds = 0.0;
    for (auto _ : state)
    {
        const double elapsed = TimeReplay(folder);
        if (elapsed < 0.0)
        {
            state.SkipWithError("the replay run failed");
            return;
        }
        state.SetIterationTime(elapsed);
        frames += kFrames;
        seconds += elapsed;
    }
    state.counters["frames/s"] = frames / seconds;
}

} // namespace

BENCHMARK(DemoReplay)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
