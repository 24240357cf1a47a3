#pragma once

// The system that owns the program's one Lua 5.3 state. Every Lua call of the engine happens on the thread
// that runs the game loop, from Initialise to Shutdown, so the state needs no lock.
//
// Scripts get all ten standard libraries, unchanged but for math.random and math.randomseed, which draw
// from the engine's own generator so that a seeded run repeats on every platform.

#include "Core/System.h"

#include <cstddef>

struct lua_State;

namespace Lua
{

class LuaSystem final : public Core::System
{
public:
    LuaSystem() = default;
    LuaSystem(const LuaSystem&) = delete;
    LuaSystem& operator=(const LuaSystem&) = delete;

    const char* Name() const override { return "Lua"; }
    // Creates the state, opens the libraries and adds the engine's globals. Raises if already initialised.
    bool Initialise(Core::Window* window) override;
    void Update(Core::Game& game, Space& space, double dt, double spaceTime, double absoluteTime) override;
    // Publishes the registry as the global __registry and makes the script environments' metatable.
    void RegisterScriptTypes(LuaSystem& lua) override;
    void ObjectsDestroyed(Core::Game& game, Space& space) override;
    // Closes the state; all spaces and with them all references are gone by then.
    void Shutdown() override;

    // Bytes the state holds now, as its allocation function counts them.
    size_t LiveBytes() const { return liveBytes; }

    // The main state; null before Initialise and after Shutdown.
    lua_State* state = nullptr;

private:
    static void* Allocate(void* system, void* block, size_t oldSize, size_t newSize);

    size_t liveBytes = 0;
};

} // namespace Lua
