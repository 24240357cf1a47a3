#pragma once

// Number arguments of the physics script functions, read as Lua numbers and narrowed to float.

#include "Components/Vec2.h"

#include <lua.hpp>

namespace Physics
{

inline float CheckFloat(lua_State* L, int index)
{
    return static_cast<float>(luaL_checknumber(L, index));
}

inline Vec2 CheckVec2(lua_State* L, int index)
{
    const float x = CheckFloat(L, index);
    return Vec2{x, CheckFloat(L, index + 1)};
}

// A boolean argument must really be a boolean: nil and numbers are refused.
inline bool CheckBoolean(lua_State* L, int index)
{
    luaL_checktype(L, index, LUA_TBOOLEAN);
    return lua_toboolean(L, index) != 0;
}

// Makes the metatables of the two component types.
void RegisterRigidBodyScriptType(lua_State* L);
void RegisterColliderScriptType(lua_State* L);

} // namespace Physics
