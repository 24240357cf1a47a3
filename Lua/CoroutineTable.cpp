#include "Lua/CoroutineTable.h"

#include "Components/ScriptComponent.h"

#include <lua.hpp>

namespace Lua
{
namespace
{

constexpr uint32_t kNone = Components::ScriptComponent::kNoCoroutine;

} // namespace

Handle CoroutineTable::Add(Components::ScriptComponent& owner, Handle ownerHandle, int32_t thread,
                           const char* profileName)
{
    uint32_t index;
    if (freeRecords.empty())
    {
        index = static_cast<uint32_t>(records.size());
        records.emplace_back();
    }
    else
    {
        index = freeRecords.back();
        freeRecords.pop_back();
    }
    CoroutineRecord& record = records[index];
    record.serial = ++lastSerial;
    record.profileName = profileName;
    record.component = ownerHandle;
    record.thread = thread;
    record.environment = owner.environment;
    record.previous = owner.lastCoroutine;
    record.next = kNone;
    record.asleep = false;
    if (owner.lastCoroutine == kNone)
    {
        owner.firstCoroutine = index;
    }
    else
    {
        records[owner.lastCoroutine].next = index;
    }
    owner.lastCoroutine = index;
    ++owner.coroutineCount;
    return Handle{index, record.generation};
}

bool CoroutineTable::End(lua_State* L, Components::ScriptComponent& owner, Handle coroutine)
{
    return Find(coroutine) != nullptr && EndRecord(L, owner, coroutine.slot);
}

uint32_t CoroutineTable::EndAll(lua_State* L, Components::ScriptComponent& owner)
{
    uint32_t asleep = 0;
    while (owner.firstCoroutine != kNone)
    {
        asleep += EndRecord(L, owner, owner.firstCoroutine) ? 1 : 0;
    }
    return asleep;
}

bool CoroutineTable::EndRecord(lua_State* L, Components::ScriptComponent& owner, uint32_t index)
{
    CoroutineRecord& record = records[index];
    (record.previous == kNone ? owner.firstCoroutine : records[record.previous].next) = record.next;
    (record.next == kNone ? owner.lastCoroutine : records[record.next].previous) = record.previous;
    --owner.coroutineCount;
    const bool asleep = record.asleep;
    if (record.thread > 0)
    {
        luaL_unref(L, LUA_REGISTRYINDEX, record.thread);
    }
    record.thread = 0;
    record.asleep = false;
    ++record.generation;
    freeRecords.push_back(index);
    return asleep;
}

} // namespace Lua
