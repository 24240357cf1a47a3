#pragma once

// A game for benchmarks: its systems started, with a temporary folder that holds the given files as the
// working directory while it lives. A windowed game draws offscreen on an 800 × 600 window with the shipped
// shaders and font, and never swaps.

#include "Core/Game.h"
#include "Core/Window.h"
#include "Support/TempFolder.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

// File names and their texts.
using BenchFiles = std::vector<std::pair<std::string, std::string>>;

// Where the game's Lua state takes its memory: its own pool, or realloc for every block, which the pool is
// measured against. By default the pool, unless QUELLMAR_BENCH_LUA_REALLOC is set to anything but 0, so that
// any benchmark can be run both ways from one build.
enum class LuaBlocks
{
    FromEnvironment,
    Pooled,
    Realloc,
};

class BenchGame
{
public:
    explicit BenchGame(const BenchFiles& files, bool windowed = false,
                       LuaBlocks blocks = LuaBlocks::FromEnvironment);
    ~BenchGame() { game.LeaveLoop(); }
    BenchGame(const BenchGame&) = delete;
    BenchGame& operator=(const BenchGame&) = delete;

    // Adds a script component to the object that runs the file from the next script update.
    void AttachScript(GameObjectHandle object, const char* fileName);
    // A new object of the top Space with such a script.
    GameObjectHandle AttachScript(const char* fileName);
    // The script update of one frame of the top Space, kDt later than the last.
    void UpdateScripts();

    static constexpr double kDt = 1.0 / 60.0;
    TempFolder data;
    ScopedWorkingDirectory cwd;
    std::unique_ptr<Core::Window> window;
    Core::Game game;
    double time = 0.0;
};
