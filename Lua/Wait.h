#pragma once

// The global `wait` (also `Wait`): the only way a script lets time pass.

#include <lua.hpp>

namespace Lua
{

// wait(seconds): yields the number (nil and nothing mean 0) and a marker that only this function yields.
// The scheduler resumes the coroutine with elapsed, spaceTime and absoluteTime once the sleep is over.
int Wait(lua_State* L);

// True if the thread's last yield came from wait: at least two values, the marker on top.
bool IsWaitYield(lua_State* thread);

} // namespace Lua
