#pragma once

// Lua code attached to an object: the chunk of `source` runs as a coroutine, and so does every function
// that it spawns or connects. The coroutines themselves are records of the Space's script schedule, which
// holds their threads; the component heads the list of its own, in start order. The component owns
// registry references to its environment and its variables table. Invariants:
//  - a reference is above 0 while held and 0 once given up; each one is given up exactly once, in
//    Cleanup, or by a move, which leaves the source with none;
//  - Cleanup ends every coroutine of the list; a move hands the list over and leaves the source empty;
//  - the destructor runs on an emptied component only (Cleanup or moved-from), else it logs an Error.
// Every operation that takes a lua_State may run script code (metamethods, finalizers): callers hold
// positions or handles across it, never a reference into a component array.

#include "Components/Component.h"

#include <cstdint>
#include <string>

struct lua_State;

namespace Components
{

class ScriptComponent : public Component
{
public:
    static constexpr uint32_t kNoCoroutine = 0xFFFFFFFFu;

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
    // Ends every coroutine, gives up every reference and forgets the script. Suspended coroutines are never
    // resumed again.
    void Cleanup(lua_State* L);

    std::string source;
    // The interned copy of source that profile blocks are named by; it outlives a replaced source.
    const char* profileName = "";
    int32_t environment = 0;
    int32_t variables = 0;
    int32_t priority = 0;
    // Indices of the first and last record of this component's coroutines in the schedule's table.
    uint32_t firstCoroutine = kNoCoroutine;
    uint32_t lastCoroutine = kNoCoroutine;
    uint32_t coroutineCount = 0;
    uint32_t slot = 0;

private:
    void TakeFrom(ScriptComponent& other) noexcept;
    // Pushes the environment, making it on first use; false (nothing pushed) if the reference is broken.
    bool PushEnvironment(lua_State* L);
    Handle OwnHandle() const;
};

} // namespace Components
