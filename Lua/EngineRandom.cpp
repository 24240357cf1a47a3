#include "Lua/EngineRandom.h"

#include "Core/Random.h"
#include "Lua/Stack.h"

#include <cmath>
#include <cstdint>

namespace Lua
{
namespace
{

int Random(lua_State* L)
{
    double r = static_cast<double>(Core::Rand()) * (1.0 / (static_cast<double>(Core::kRandMax) + 1.0));
    lua_Integer low = 1;
    lua_Integer up = 1;
    switch (lua_gettop(L))
    {
    case 0:
        lua_pushnumber(L, r);
        return 1;
    case 1:
        up = luaL_checkinteger(L, 1);
        break;
    case 2:
        low = luaL_checkinteger(L, 1);
        up = luaL_checkinteger(L, 2);
        break;
    default:
        return luaL_error(L, "wrong number of arguments");
    }
    luaL_argcheck(L, low <= up, 1, "interval is empty");
    luaL_argcheck(L, low >= 0 || up <= LUA_MAXINTEGER + low, 1, "interval too large");
    r *= static_cast<double>(up - low) + 1.0;
    lua_pushinteger(L, static_cast<lua_Integer>(r) + low);
    return 1;
}

// Lua truncates the seed toward zero into an integer; what has no integer value seeds as the lowest one,
// whose low 32 bits are 0, instead of an undefined conversion.
uint32_t SeedOf(lua_Number value)
{
    constexpr lua_Number kLimit = 9223372036854775808.0; // 2^63
    if (!(value >= -kLimit && value < kLimit))
    {
        return 0;
    }
    return static_cast<uint32_t>(static_cast<uint64_t>(static_cast<int64_t>(value)));
}

int RandomSeed(lua_State* L)
{
    Core::SeedRand(SeedOf(luaL_checknumber(L, 1)));
    Core::Rand();
    return 0;
}

} // namespace

void InstallEngineRandom(lua_State* L)
{
    EnsureStack(L, 22);
    lua_getglobal(L, "math");
    lua_pushcfunction(L, Random);
    lua_setfield(L, -2, "random");
    lua_pushcfunction(L, RandomSeed);
    lua_setfield(L, -2, "randomseed");
    lua_pop(L, 1);
}

} // namespace Lua
