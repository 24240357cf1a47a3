#include "Lua/ScriptSchedule.h"

#include "Components/Space.h"
#include "Debug/Logger.h"
#include "Debug/Profile.h"
#include "Lua/Wait.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <lua.hpp>
#include <optional>
#include <string>

namespace Lua
{
namespace
{

template <typename T>
bool RunsBefore(const T& a, const T& b)
{
    return a.position != b.position ? a.position < b.position : a.serial < b.serial;
}

// Greater-than for std::push_heap, so that the heap's front is the entry that runs first.
template <typename T>
bool RunsAfter(const T& a, const T& b)
{
    return RunsBefore(b, a);
}

// A thread taken from the registry can be anything a script put there: only a suspended coroutine, or one
// that holds a function and has never run, may be resumed.
bool IsResumable(lua_State* L, lua_State* thread)
{
    if (thread == nullptr || thread == L)
    {
        return false;
    }
    if (lua_status(thread) == LUA_YIELD)
    {
        return lua_checkstack(thread, 3) != 0;
    }
    lua_Debug frame;
    return lua_status(thread) == LUA_OK && lua_getstack(thread, 0, &frame) == 0 && lua_gettop(thread) > 0 &&
           lua_type(thread, 1) == LUA_TFUNCTION;
}

void LogScriptError(const char* text)
{
    Logger::Log("LuaSystem", LogLevel::Error, std::string("Lua error in component coroutine: ") + text);
}

// The error on top of the thread, or the given text, with a traceback when the thread has room for one.
// After a stack overflow it has none, and the bare text is logged.
void ReportError(lua_State* thread, const char* replacement)
{
    const bool room = lua_checkstack(thread, 20) != 0;
    const char* text = replacement;
    if (text == nullptr)
    {
        const int type = lua_type(thread, -1);
        if (type == LUA_TSTRING || type == LUA_TNUMBER)
        {
            text = lua_tostring(thread, -1);
        }
        else if (room)
        {
            text = lua_pushfstring(thread, "(error object is a %s value)", luaL_typename(thread, -1));
        }
        else
        {
            text = "(error object is not a string)";
        }
    }
    if (room)
    {
        luaL_traceback(thread, thread, text, 0);
        text = lua_tostring(thread, -1);
    }
    LogScriptError(text);
}

void LogBadThreadIndex(int32_t ref)
{
    Logger::Log("LuaSystem", LogLevel::Error,
                "Coroutine had an invalid thread index: " + std::to_string(ref));
}

// The dense position of the component, or false if it has gone. Reads the slot table only.
bool PositionOf(const Space& space, Handle component, uint32_t& position)
{
    const Slotmap<Components::ScriptComponent>& scripts = space.scripts.components;
    if (component.slot >= scripts.Slots().size())
    {
        return false;
    }
    const auto& slot = scripts.Slots()[component.slot];
    if (slot.index >= scripts.size() || slot.generation != component.generation)
    {
        return false;
    }
    position = slot.index;
    return true;
}

} // namespace

void ScriptSchedule::Run(lua_State* L, Space& space, double dt, double spaceTime, double absoluteTime)
{
    SortIfNeeded(space);
    CollectDue(space, dt);
    std::optional<Debug::ProfileBlock> block;
    const char* blockName = nullptr;
    size_t cursor = 0;
    Due current;
    while (NextDue(cursor, current))
    {
        const CoroutineRecord* record = coroutines.Find(current.coroutine);
        if (record == nullptr)
        {
            continue;
        }
        // One block for each run of entries under one name, since blocks of a name sum into one record
        // anyway; names are interned, so equal names are equal pointers. Sleepers open none.
        if (record->profileName != blockName)
        {
            block.reset();
            block.emplace(record->profileName);
            blockName = record->profileName;
        }
        // The cursor already stands on the entry after this one.
        PrefetchCoroutine(L, cursor - 1 + kPrefetchDistance);
        RunOne(L, space, current.coroutine, current.elapsed, spaceTime, absoluteTime);
        AdmitStarted(space, current, dt);
    }
    block.reset();
    due.clear();
    fresh.swap(deferred);
    deferred.clear();
    CloseCohort();
    DropStaleSleepers();
}

// A stable insertion sort, higher priority first: nearly free on the array that was sorted last time, and
// skipped altogether until a priority changes or components come or go.
void ScriptSchedule::SortIfNeeded(Space& space)
{
    Slotmap<Components::ScriptComponent>& scripts = space.scripts.components;
    if (!sortNeeded && sortedCount == scripts.size())
    {
        return;
    }
    for (uint32_t i = 1; i < scripts.size(); ++i)
    {
        for (uint32_t j = i; j > 0 && scripts[j - 1].priority < scripts[j].priority; --j)
        {
            scripts.Swap(j - 1, j);
        }
    }
    sortedCount = scripts.size();
    sortNeeded = false;
}

void ScriptSchedule::CollectDue(Space& space, double dt)
{
    WakeCohorts(space, dt);
    // A new coroutine and a NaN sleeper both count this Update's dt from 0.0.
    for (const Handle coroutine : wakeNext)
    {
        AddDue(space, coroutine, 0.0 + dt);
    }
    wakeNext.clear();
    for (const Handle coroutine : fresh)
    {
        AddDue(space, coroutine, 0.0 + dt);
    }
    fresh.clear();
    // Entries come in run order when nothing was sorted since they slept, which is the common case.
    if (!std::is_sorted(due.begin(), due.end(), RunsBefore<Due>))
    {
        std::sort(due.begin(), due.end(), RunsBefore<Due>);
    }
}

void ScriptSchedule::WakeCohorts(Space& space, double dt)
{
    for (Cohort& cohort : cohorts)
    {
        cohort.elapsed += dt;
        while (cohort.woken < cohort.sleepers.size() &&
               !(cohort.sleepers[cohort.woken].waitTime > cohort.elapsed))
        {
            const Handle coroutine = cohort.sleepers[cohort.woken].coroutine;
            ++cohort.woken;
            --sleeperEntries;
            CoroutineRecord* record = coroutines.Find(coroutine);
            if (record == nullptr)
            {
                --staleSleepers;
                continue;
            }
            record->asleep = false;
            AddDue(space, coroutine, cohort.elapsed);
        }
    }
    auto emptied =
        std::remove_if(cohorts.begin(), cohorts.end(),
                       [](const Cohort& cohort) { return cohort.woken == cohort.sleepers.size(); });
    for (auto cohort = emptied; cohort != cohorts.end(); ++cohort)
    {
        cohort->sleepers.clear();
        spareCohorts.push_back(std::move(cohort->sleepers));
    }
    cohorts.erase(emptied, cohorts.end());
}

void ScriptSchedule::AddDue(Space& space, Handle coroutine, double elapsed)
{
    const CoroutineRecord* record = coroutines.Find(coroutine);
    uint32_t position = 0;
    if (record != nullptr && PositionOf(space, record->component, position))
    {
        due.push_back(Due{position, coroutine, record->serial, elapsed});
    }
}

void ScriptSchedule::AdmitStarted(Space& space, const Due& current, double dt)
{
    for (const Handle coroutine : fresh)
    {
        const CoroutineRecord* record = coroutines.Find(coroutine);
        Due candidate{0, coroutine, 0, 0.0 + dt};
        if (record == nullptr || !PositionOf(space, record->component, candidate.position))
        {
            continue;
        }
        candidate.serial = record->serial;
        if (RunsBefore(current, candidate))
        {
            started.push_back(candidate);
            std::push_heap(started.begin(), started.end(), RunsAfter<Due>);
        }
        else
        {
            deferred.push_back(coroutine);
        }
    }
    fresh.clear();
}

bool ScriptSchedule::NextDue(size_t& cursor, Due& next)
{
    const bool haveDue = cursor < due.size();
    if (!started.empty() && (!haveDue || RunsBefore(started.front(), due[cursor])))
    {
        std::pop_heap(started.begin(), started.end(), RunsAfter<Due>);
        next = started.back();
        started.pop_back();
        return true;
    }
    if (!haveDue)
    {
        return false;
    }
    next = due[cursor++];
    return true;
}

// The thread stays on the main stack while it runs: if its component gives up the reference in the middle
// of the run (a new source, a cleanup), nothing collects it under our feet. Afterwards the record is found
// again by handle, since the run may have grown the table or ended the coroutine.
void ScriptSchedule::RunOne(lua_State* L, Space& space, Handle coroutine, double elapsed, double spaceTime,
                            double absoluteTime)
{
    const int32_t ref = coroutines.Find(coroutine)->thread;
    if (ref <= 0)
    {
        LogBadThreadIndex(ref);
        End(L, space, coroutine);
        return;
    }
    const int top = lua_gettop(L);
    lua_rawgeti(L, LUA_REGISTRYINDEX, ref);
    lua_State* thread = lua_tothread(L, -1);
    if (!IsResumable(L, thread))
    {
        Logger::Log("LuaSystem", LogLevel::Error, "Coroutine had an invalid thread type");
        lua_settop(L, top);
        End(L, space, coroutine);
        return;
    }
    int arguments = lua_gettop(thread) - 1;
    if (lua_status(thread) == LUA_YIELD)
    {
        lua_pushnumber(thread, elapsed);
        lua_pushnumber(thread, spaceTime);
        lua_pushnumber(thread, absoluteTime);
        arguments = 3;
    }
    const int status = lua_resume(thread, nullptr, arguments);
    bool lives = false;
    double waitTime = 0.0;
    if (status == LUA_YIELD && IsWaitYield(thread))
    {
        waitTime = lua_tonumber(thread, -2);
        lua_pop(thread, 2);
        lives = true;
    }
    else if (status == LUA_YIELD)
    {
        ReportError(thread, "Cannot yield from outside a coroutine");
    }
    else if (status != LUA_OK)
    {
        ReportError(thread, nullptr);
    }
    if (lua_gettop(L) != top + 1)
    {
        Logger::Log("LuaSystem", LogLevel::Error, "Running coroutine did not preserve the lua stack");
    }
    lua_settop(L, top);
    // A coroutine whose component dropped it during the run has no record left to file or to end.
    if (coroutines.Find(coroutine) == nullptr)
    {
        return;
    }
    if (lives)
    {
        FallAsleep(coroutine, waitTime);
        return;
    }
    End(L, space, coroutine);
}

// A live record's component is alive too: a component ends its coroutines in Cleanup, before any sweep.
void ScriptSchedule::End(lua_State* L, Space& space, Handle coroutine)
{
    Components::ScriptComponent* owner = space.scripts.components.Find(coroutines.Find(coroutine)->component);
    assert(owner != nullptr);
    staleSleepers += coroutines.End(L, *owner, coroutine) ? 1 : 0;
}

// With thousands of coroutines, a coroutine's memory has left the cache since its last run, and a resume
// stalls on one line after another: the thread, its function and that function's _ENV upvalue, the bottom of
// its stack, the environment table and then the slot of `wait` in its hash part. Asking for them a few
// entries ahead lets those misses overlap with the runs in between. Where they lie follows from the order in
// which a script is made: its function and upvalue just before the thread, the stack right after it, and the
// hash part right after the environment table, which is made with room for its fields. The addresses are only
// prefetched, never read, so a coroutine that ends before its turn, or memory laid out otherwise, costs the
// prefetches and nothing more.
void ScriptSchedule::PrefetchCoroutine(lua_State* L, size_t position)
{
    if (position >= due.size())
    {
        return;
    }
    const CoroutineRecord* record = coroutines.Find(due[position].coroutine);
    if (record == nullptr || record->thread <= 0)
    {
        return;
    }
    lua_rawgeti(L, LUA_REGISTRYINDEX, record->thread);
    // Null when a script has put something else in the registry: RunOne reports that in its turn.
    const auto* thread = static_cast<const char*>(static_cast<const void*>(lua_tothread(L, -1)));
    lua_pop(L, 1);
    if (thread == nullptr)
    {
        return;
    }
    for (int line = -kLinesBeforeThread; line < kLinesFromThread; ++line)
    {
        __builtin_prefetch(thread + line * kCacheLine);
    }
    if (record->environment > 0)
    {
        lua_rawgeti(L, LUA_REGISTRYINDEX, record->environment);
        const auto* environment = static_cast<const char*>(lua_topointer(L, -1));
        lua_pop(L, 1);
        for (int line = 0; line < kEnvironmentLines; ++line)
        {
            __builtin_prefetch(environment + line * kCacheLine);
        }
    }
}

void ScriptSchedule::FallAsleep(Handle coroutine, double waitTime)
{
    if (std::isnan(waitTime))
    {
        wakeNext.push_back(coroutine);
        return;
    }
    coroutines.Find(coroutine)->asleep = true;
    fallingAsleep.push_back(Sleeper{waitTime, coroutine});
}

void ScriptSchedule::CloseCohort()
{
    if (fallingAsleep.empty())
    {
        return;
    }
    auto byWaitTime = [](const Sleeper& a, const Sleeper& b) { return a.waitTime < b.waitTime; };
    // Stable, so sleepers of equal time stay in run order and wake in it without another sort.
    if (!std::is_sorted(fallingAsleep.begin(), fallingAsleep.end(), byWaitTime))
    {
        std::stable_sort(fallingAsleep.begin(), fallingAsleep.end(), byWaitTime);
    }
    sleeperEntries += fallingAsleep.size();
    cohorts.push_back(Cohort{0.0, std::move(fallingAsleep), 0});
    fallingAsleep.clear();
    if (!spareCohorts.empty())
    {
        fallingAsleep = std::move(spareCohorts.back());
        spareCohorts.pop_back();
    }
}

// Compacting costs a walk over every entry, so it waits until the stale ones are the majority: each stale
// entry then pays for at most two others, and the cohorts never hold more than twice the live sleepers.
void ScriptSchedule::DropStaleSleepers()
{
    if (staleSleepers * 2 <= sleeperEntries)
    {
        return;
    }
    auto isStale = [this](const Sleeper& sleeper) { return coroutines.Find(sleeper.coroutine) == nullptr; };
    for (Cohort& cohort : cohorts)
    {
        std::vector<Sleeper>& sleepers = cohort.sleepers;
        sleepers.erase(sleepers.begin(), sleepers.begin() + static_cast<std::ptrdiff_t>(cohort.woken));
        cohort.woken = 0;
        // remove_if keeps the order, and with it the order of equal wait times.
        sleepers.erase(std::remove_if(sleepers.begin(), sleepers.end(), isStale), sleepers.end());
    }
    auto emptied = std::remove_if(cohorts.begin(), cohorts.end(),
                                  [](const Cohort& cohort) { return cohort.sleepers.empty(); });
    for (auto cohort = emptied; cohort != cohorts.end(); ++cohort)
    {
        spareCohorts.push_back(std::move(cohort->sleepers));
    }
    cohorts.erase(emptied, cohorts.end());
    sleeperEntries -= staleSleepers;
    staleSleepers = 0;
}

} // namespace Lua
