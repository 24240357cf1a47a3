#pragma once

// The system that owns the program's one Lua 5.3 state. Every Lua call of the engine happens on the thread
// that runs the game loop, from Initialise to Shutdown, so the state needs no lock.
//
// Scripts get all ten standard libraries, unchanged but for math.random and math.randomseed, which draw
// from the engine's own generator so that a seeded run repeats on every platform.

#include "Components/Handle.h"
#include "Core/System.h"
#include "Lua/LuaHeap.h"
#include "Lua/ScriptChunks.h"
#include "Lua/ScriptSchedule.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>

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
    size_t LiveBytes() const { return heap ? heap->LiveBytes() : 0; }

    // The system that owns the state: the allocation function's user data, which no script can reach.
    static LuaSystem& Of(lua_State* L);

    // The serial of a Space that script handles carry, given on first use. A destroyed Space is forgotten,
    // so a later Space at the same address gets a new serial and old handles stop resolving.
    uint32_t SpaceSerial(const Space* space);
    bool IsLiveSpace(const Space* space, uint32_t serial) const;
    // Drops the Space's handle, serial and schedule. Called as the Space is destroyed.
    void ForgetSpace(Space& space);

    // The script schedule of the Space, made on first use.
    ScriptSchedule& ScheduleOf(const Space& space) { return schedules[&space]; }
    // A copy of the name that lives as long as the system: profile records keep only the pointer, and a
    // script's source can be replaced or swept before the overlay reads them.
    const char* InternName(const std::string& name);

    // The main state; null before Initialise and after Shutdown.
    lua_State* state = nullptr;
    // The script files compiled in this state.
    ScriptChunks scriptChunks;
    // Whether the state's small blocks come from a pool of its own; read when the state is made. Off, every
    // block goes to realloc, which benchmarks compare against.
    bool pooledHeap = true;

private:
    static void* Allocate(void* system, void* block, size_t oldSize, size_t newSize);

    // Made with the state and gone with it.
    std::optional<LuaHeap> heap;
    uint32_t lastSpaceSerial = 0;
    std::unordered_map<const Space*, uint32_t> spaceSerials;
    mutable const Space* lastLiveSpace = nullptr;
    mutable uint32_t lastLiveSerial = 0;
    std::unordered_map<const Space*, ScriptSchedule> schedules;
    std::unordered_set<std::string> names;
};

} // namespace Lua
