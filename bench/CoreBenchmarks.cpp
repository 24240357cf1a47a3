// The spine's costs: one frame of the loop, one profile block, one log line.

#include "Core/Game.h"
#include "Debug/Logger.h"
#include "Debug/Profile.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>

namespace
{

// Ends the game after a fixed number of frames and does nothing else.
class FrameCounter final : public Core::System
{
public:
    const char* Name() const override { return "FrameCounter"; }
    bool Initialise(Core::Window*) override { return true; }
    void Update(Core::Game& game, Space& space, double, double, double) override
    {
        if (&space == &game.rootSpace && game.frame >= frames)
        {
            game.running = false;
        }
    }
    void RegisterScriptTypes(Lua::LuaSystem&) override {}
    void ObjectsDestroyed(Core::Game&, Space&) override {}
    void Shutdown() override {}

    uint64_t frames = 0;
};

void BuildTree(Space& root, int count)
{
    std::vector<Space*> spaces = {&root};
    for (int index = 1; index < count; ++index)
    {
        Space& child = spaces[static_cast<size_t>(index - 1) / 3]->CreateChild();
        child.priority = index % 4;
        spaces.push_back(&child);
    }
}

void Discard(std::string_view, LogLevel, std::string_view)
{
}

// One headless frame over a tree of 100 spaces with a system that does nothing.
void FrameOfHundredSpaces(benchmark::State& state)
{
    constexpr uint64_t kFrames = 2000;
    // The loop's start and end lines would interleave with the report.
    Logger::Detach(StandardOutputSink);
    for (auto _ : state)
    {
        Core::Game game(nullptr, Core::GameSettings{});
        BuildTree(game.rootSpace, 100);
        FrameCounter counter;
        counter.frames = kFrames;
        game.AddSystem(counter, nullptr);
        game.running = true;
        const auto start = std::chrono::steady_clock::now();
        game.GameLoop();
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(elapsed.count());
    }
    Logger::Attach(StandardOutputSink, 7);
    // Seconds per frame, shown in the report's own units.
    state.counters["per_frame"] =
        benchmark::Counter(static_cast<double>(state.iterations() * kFrames),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(FrameOfHundredSpaces)->UseManualTime()->Unit(benchmark::kMillisecond);

// A profile block opened and closed under a parent that already has its record.
void ProfileBlockSteadyState(benchmark::State& state)
{
    Debug::TakeProfile();
    Debug::ProfileBlock root("Root");
    for (auto _ : state)
    {
        Debug::ProfileBlock block("Script");
    }
    root.Finish();
    Debug::TakeProfile();
}
BENCHMARK(ProfileBlockSteadyState);

// Lines through the real console sink's formatting, written to the null device.
void LogToNullDevice(benchmark::State& state)
{
    std::FILE* null = std::fopen("/dev/null", "w");
    if (null == nullptr)
    {
        state.SkipWithError("cannot open the null device");
        return;
    }
    for (auto _ : state)
    {
        WriteLogLine(null, false, "Physics", LogLevel::Info, "A body moved a reasonable distance this frame");
    }
    std::fclose(null);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(LogToNullDevice);

// Dispatch alone: a level whose only sink discards the line.
void LogDispatchToDiscardingSink(benchmark::State& state)
{
    Logger::Detach(StandardErrorSink);
    Logger::Attach(Discard, static_cast<int32_t>(LogLevel::Fatal));
    for (auto _ : state)
    {
        Logger::Log("Physics", LogLevel::Fatal, "dispatch only");
    }
    Logger::Detach(Discard);
    Logger::Attach(StandardErrorSink, 24);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(LogDispatchToDiscardingSink);

} // namespace

BENCHMARK_MAIN();
