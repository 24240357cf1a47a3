#pragma once

// Every coroutine of one Space's script components, as records in one dense array reached by handles: the
// scheduler walks its queues of handles and reads everything a run needs from the record, without touching
// the component. Invariants:
//  - a handle resolves while its record lives; ending a record advances its generation, so a handle kept
//    in a queue stops resolving even after the record has been reused;
//  - each live record holds one registry reference to its thread, given up exactly once, when it ends;
//  - the records of a component form a doubly linked list in start order, headed in the component, so a
//    component can end all of its coroutines without a search;
//  - serials ascend in start order across the Space, so they order the coroutines of one component.

#include "Components/Handle.h"

#include <cstdint>
#include <vector>

struct lua_State;

namespace Components
{
class ScriptComponent;
}

namespace Lua
{

struct CoroutineRecord
{
    uint64_t serial = 0;
    // The owner's interned source at the start: the profile block that its runs count towards.
    const char* profileName = "";
    Handle component;
    // Registry reference to the Lua thread; it is what keeps the thread alive.
    int32_t thread = 0;
    // Registry reference to the owner's environment, which the coroutine runs in: kept here too, so the
    // schedule can look ahead at it without touching the component.
    int32_t environment = 0;
    uint32_t generation = 1;
    // Neighbours in the component's list; ScriptComponent::kNoCoroutine at its ends.
    uint32_t previous = 0;
    uint32_t next = 0;
    // Filed in a sleeping cohort; a record that ends while asleep leaves a stale entry there.
    bool asleep = false;
};

class CoroutineTable
{
public:
    // A new record at the end of the owner's list, owning the thread reference.
    Handle Add(Components::ScriptComponent& owner, Handle ownerHandle, int32_t thread,
               const char* profileName);
    // The record, or null once it has ended.
    CoroutineRecord* Find(Handle coroutine)
    {
        if (coroutine.slot >= records.size() || records[coroutine.slot].generation != coroutine.generation)
        {
            return nullptr;
        }
        return &records[coroutine.slot];
    }
    // Unlinks the record from its owner, gives up its thread and frees it. True if it was asleep.
    bool End(lua_State* L, Components::ScriptComponent& owner, Handle coroutine);
    // Ends every record of the owner; returns how many of them were asleep.
    uint32_t EndAll(lua_State* L, Components::ScriptComponent& owner);

private:
    bool EndRecord(lua_State* L, Components::ScriptComponent& owner, uint32_t index);

    std::vector<CoroutineRecord> records;
    std::vector<uint32_t> freeRecords;
    uint64_t lastSerial = 0;
};

} // namespace Lua
