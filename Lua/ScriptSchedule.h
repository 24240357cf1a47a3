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
// at the next Update. Entries name a component by handle and a coroutine by id: whatever has gone since is
// skipped when its turn comes.

#include "Components/Handle.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class Space;
struct lua_State;

namespace Lua
{

class ScriptSchedule
{
public:
    // A coroutine that has not run yet: it runs at the next chance in the order above.
    void AddNew(Handle component, uint64_t id) { fresh.push_back(Entry{component, id}); }
    // Priorities changed or components were swept: sort before the next pass.
    void MarkUnsorted() { sortNeeded = true; }

    // One pass over the Space's due and new coroutines.
    void Run(lua_State* L, Space& space, double dt, double spaceTime, double absoluteTime);

private:
    struct Entry
    {
        Handle component;
        uint64_t id;
    };
    struct Sleeper
    {
        double waitTime;
        Handle component;
        uint64_t id;
    };
    struct Cohort
    {
        double elapsed;
        std::vector<Sleeper> sleepers;
        size_t woken;
    };
    struct Due
    {
        uint32_t position;
        uint64_t id;
        Handle component;
        double elapsed;
    };

    void SortIfNeeded(Space& space);
    void CollectDue(Space& space, double dt);
    void WakeCohorts(Space& space, double dt);
    void AddDue(Space& space, Handle component, uint64_t id, double elapsed);
    // Moves coroutines started during the pass into it, or keeps them for the next pass when their place
    // lies behind the one that just ran.
    void AdmitStarted(Space& space, const Due& current, double dt);
    bool NextDue(size_t& cursor, Due& next);
    void RunOne(lua_State* L, Space& space, const Due& entry, double spaceTime, double absoluteTime);
    void FallAsleep(const Due& entry, double waitTime);
    void CloseCohort();

    std::vector<Cohort> cohorts;
    std::vector<Sleeper> fallingAsleep;
    std::vector<Entry> fresh;
    std::vector<Entry> deferred;
    std::vector<Entry> wakeNext;
    std::vector<Due> due;
    // Entries started during the pass, as a min-heap in run order.
    std::vector<Due> started;
    std::vector<std::vector<Sleeper>> spareCohorts;
    uint32_t sortedCount = 0;
    bool sortNeeded = false;
};

} // namespace Lua
