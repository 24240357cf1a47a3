#pragma once

// Lua code attached to an object: the chunk of `source` runs as a coroutine, and so does every function
// that it spawns or connects. The component owns registry references: one per coroutine thread, its
// environment and its variables table. Invariants:
//  - a reference is above 0 while held and 0 once given up; each one is given up exactly once, in
//    Cleanup, in the run that ends its coroutine, or by a move, which leaves the source with none;
//  - coroutines stand in start order, so their ids ascend;
//  - the destructor runs on an emptied component only (Cleanup or moved-from), else it logs an Error.
// Every operation that takes a lua_State may run script code (metamethods, finalizers): callers hold
// positions or handles across it, never a reference into a component array.

#include "Components/Component.h"

#include <cstdint>
#include <string>
#include <vector>

struct lua_State;

namespace Components
{

struct Coroutine
{
    // Registry reference to the Lua thread; it is what keeps the thread alive.
    int32_t thread = 0;
    // Unique for the life of the Lua system; the scheduler finds the entry again by it after a run.
    uint64_t id = 0;
};

class ScriptComponent : public Component
{
public:
    explicit ScriptComponent(GameObjectHandle ownerHandle) : Component(ownerHandle) {}
    ~ScriptComponent();
    ScriptComponent(ScriptComponent&& other) noexcept;
    ScriptComponent& operator=(ScriptComponent&& other) noexcept;
    ScriptComponent(const ScriptComponent&) = delete;
    ScriptComponent& operator=(const ScriptComponent&) = delete;

    // Loads the file and queues its chunk as a new coroutine that first runs in the next Update. Replaces
    // a running script (with a Warning); a file that can't be loaded is logged and gives false.
    bool SetScript(lua_State* L, const char* fileName);
    // Takes the function and argumentCount arguments from the top of L and queues them as a new coroutine,
    // in this component's environment; false if the environment is broken.
    bool StartCoroutine(lua_State* L, int argumentCount);
    // Merges the table at the index into the variables, and into the environment once there is one.
    void SetVariables(lua_State* L, int tableIndex);
    // Saturates to the range of int32; the new order applies from the next Update.
    void SetPriority(lua_State* L, int64_t value);
    // Gives up every reference and forgets the script. Suspended coroutines are never resumed again.
    void Cleanup(lua_State* L);
    // Finds a coroutine by id; null if it has gone.
    Coroutine* FindCoroutine(uint64_t id);
    // Erases a coroutine by id and gives up its thread; false if it had gone already.
    bool EndCoroutine(lua_State* L, uint64_t id);

    std::vector<Coroutine> coroutines;
    std::string source;
    // The interned copy of source that profile blocks are named by; it outlives a replaced source.
    const char* profileName = "";
    int32_t environment = 0;
    int32_t variables = 0;
    int32_t priority = 0;
    uint32_t slot = 0;

private:
    void TakeFrom(ScriptComponent& other) noexcept;
    // Pushes the environment, making it on first use; false (nothing pushed) if the reference is broken.
    bool PushEnvironment(lua_State* L);
    Handle OwnHandle() const;
};

} // namespace Components
