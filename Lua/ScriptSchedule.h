#pragma once

// When the coroutines of one Space's script components run. The order scripts observe: components by
// position in the Space's script array, sorted by priority (higher first, stable among equals), and within
// a component its coroutines in start order. A coroutine started during a pass runs in that same pass if
// its place in that order still lies ahead, otherwise in the next one. Each coroutine is resumed at most
// once per Update.
//
// Sleepers are never visited. The coroutines that fall asleep in one Update form a cohort: they all count
// the same dts from 0.0, so one accumulator per cohort gives each of them the very sum that a counter of
// its own would hold. A cohort is ordered by wait time, and each Update takes out from its front whatever
// is no longer `waitTime > elapsed`. A wait of NaN never compares, so it stays out of the cohorts and wakes
// at the next Update.
//
// The schedule owns the Space's coroutines in a CoroutineTable, and every queue names them by handle: the
// walk reads the table's dense records and the slot table of the components, never a component. Whatever
// ended since it was queued no longer resolves and is skipped. A sleeper that ends leaves a stale entry in
// its cohort; once stale entries outnumber live ones the cohorts are compacted, so long sleeps of ended
// coroutines cost neither time nor memory for long.

#include "Components/Handle.h"
#include "Lua/CoroutineTable.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class Space;
struct lua_State;

namespace Components
{
class ScriptComponent;
}

namespace Lua
{

class ScriptSchedule
{
public:
    // Files a new coroutine of the component, which hands over the thread reference; it runs at the next
    // chance in the order above.
    void Start(Components::ScriptComponent& owner, Handle ownerHandle, int32_t thread,
               const char* profileName)
    {
        fresh.push_back(coroutines.Add(owner, ownerHandle, thread, profileName));
    }
    // Ends every coroutine of the component; queued entries of them are skipped from now on.
    void EndAll(lua_State* L, Components::ScriptComponent& owner)
    {
        staleSleepers += coroutines.EndAll(L, owner);
    }
    // Priorities changed or components were swept: sort before the next pass.
    void MarkUnsorted() { sortNeeded = true; }

    // One pass over the Space's due and new coroutines.
    void Run(lua_State* L, Space& space, double dt, double spaceTime, double absoluteTime);

    // Entries filed in cohorts and not yet woken, stale ones included.
    size_t SleeperEntries() const { return sleeperEntries; }

private:
    struct Sleeper
    {
        double waitTime;
        Handle coroutine;
    };
    struct Cohort
    {
        double elapsed;
        std::vector<Sleeper> sleepers;
        size_t woken;
    };
    // Run order is position, then serial.
    struct Due
    {
        uint32_t position;
        Handle coroutine;
        uint64_t serial;
        double elapsed;
    };

    void SortIfNeeded(Space& space);
    void CollectDue(Space& space, double dt);
    void WakeCohorts(Space& space, double dt);
    void AddDue(Space& space, Handle coroutine, double elapsed);
    // Moves coroutines started during the pass into it, or keeps them for the next pass when their place
    // lies behind the one that just ran.
    void AdmitStarted(Space& space, const Due& current, double dt);
    bool NextDue(size_t& cursor, Due& next);
    void RunOne(lua_State* L, Space& space, Handle coroutine, double elapsed, double spaceTime,
                double absoluteTime);
    void End(lua_State* L, Space& space, Handle coroutine);
    void PrefetchCoroutine(lua_State* L, size_t position);
    void FallAsleep(Handle coroutine, double waitTime);
    void CloseCohort();
    void DropStaleSleepers();

    // Entries ahead of the running one whose memory is prefetched: far enough for the misses to finish during
    // short runs, near enough not to be evicted again. This and the line counts below were measured on the
    // ScriptWake and ScriptsMoveTransforms benchmarks, frame by frame against each other.
    static constexpr size_t kPrefetchDistance = 3;
    static constexpr int kCacheLine = 64;
    // Lines around a thread's address: its function and upvalue before it, its state and stack after it.
    static constexpr int kLinesBeforeThread = 1;
    static constexpr int kLinesFromThread = 4;
    // Lines from an environment table's address: the table and its hash part.
    static constexpr int kEnvironmentLines = 4;
    CoroutineTable coroutines;
    std::vector<Cohort> cohorts;
    std::vector<Sleeper> fallingAsleep;
    std::vector<Handle> fresh;
    std::vector<Handle> deferred;
    std::vector<Handle> wakeNext;
    std::vector<Due> due;
    // Entries started during the pass, as a min-heap in run order.
    std::vector<Due> started;
    std::vector<std::vector<Sleeper>> spareCohorts;
    size_t sleeperEntries = 0;
    size_t staleSleepers = 0;
    uint32_t sortedCount = 0;
    bool sortNeeded = false;
};

} // namespace Lua
