#pragma once

// Number, point and boolean arguments of script functions, and the system behind a script table. Numbers
// are read as Lua numbers (a numeric string counts) and narrowed to float; the errors are Lua's own
// argument errors.

#include "Components/Vec2.h"

#include <lua.hpp>

namespace Lua
{

inline float CheckFloat(lua_State* L, int index)
{
    return static_cast<float>(luaL_checknumber(L, index));
}

// An optional number: nil or a missing argument gives the fallback.
inline float OptFloat(lua_State* L, int index, float fallback)
{
    return static_cast<float>(luaL_optnumber(L, index, fallback));
}

inline Vec2 CheckVec2(lua_State* L, int index)
{
    const float x = CheckFloat(L, index);
    return Vec2{x, CheckFloat(L, index + 1)};
}

// The system that the functions of a system's script table carry as their first upvalue; the error names
// what is missing when a script has replaced it.
template <typename System>
System& UpvalueSystem(lua_State* L, const char* missing)
{
    auto* system = static_cast<System*>(lua_touserdata(L, lua_upvalueindex(1)));
    if (system == nullptr)
    {
        luaL_error(L, "%s", missing);
    }
    return *system;
}

// A boolean argument must really be a boolean: nil and numbers are refused.
inline bool CheckBoolean(lua_State* L, int index)
{
    luaL_checktype(L, index, LUA_TBOOLEAN);
    return lua_toboolean(L, index) != 0;
}

} // namespace Lua
