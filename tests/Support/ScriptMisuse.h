#pragma once

// A generator of hostile calls on the script surface of a running game: the methods of spaces, objects,
// transforms, scripts, bodies and colliders, the Physics table, a script environment's Spawn, wait, dofile
// and Input, reads and writes of os.SaveFile, and in a game that draws, the methods of sprites, squares and
// texts and the Graphics table. Each call runs in a protected call with its handle, a
// wrong value or nothing before the colon's place, and arguments from a hostile pool: nil, NaN, infinities,
// extreme integers, odd strings, cyclic and deep tables, functions, coroutines, live, stale and wrong-type
// handles. What calls return joins the pool, and frames run now and then, so objects made and destroyed by
// the calls come back as stale handles.
//
// Every choice comes from the chooser, so one seed (the unit test) or one input (the fuzz target) gives
// one run. The game must have started its systems, with the working directory a writable Data folder.

#include <cstdint>
#include <functional>
#include <string>

namespace Core
{
class Game;
}

class ScriptMisuse
{
public:
    // Returns a number below its argument, which is at least 1.
    using Chooser = std::function<uint32_t(uint32_t)>;

    ScriptMisuse(Core::Game& game, Chooser choose);
    ~ScriptMisuse();
    ScriptMisuse(const ScriptMisuse&) = delete;
    ScriptMisuse& operator=(const ScriptMisuse&) = delete;

    // One call or one frame. Returns what went wrong with the engine, or "" when nothing did: a call may
    // fail, but the main Lua stack must come back to the depth it had before.
    std::string Step();

    uint64_t Calls() const { return calls; }
    uint64_t FailedCalls() const { return failedCalls; }
    uint64_t Frames() const { return frames; }

private:
    void RunChunk(const char* name, const char* chunk);
    void Frame();
    void Call();
    // Both take the stack index of the generator's table.
    void PushPoolValue(int misuse);
    void Harvest(int misuse, int firstResult);

    Core::Game& game;
    Chooser choose;
    int registryReference = 0;
    int restingTop = 0;
    double clock = 0.0;
    uint64_t calls = 0;
    uint64_t failedCalls = 0;
    uint64_t frames = 0;
};
