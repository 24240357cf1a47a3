#include "Lua/CoreScriptTypes.h"

#include "Lua/ScriptHandles.h"
#include "Lua/Stack.h"

namespace Lua
{
namespace
{

// The script API of these types comes with the level loader; until then their tables hold no functions.
constexpr luaL_Reg kNoFunctions[] = {{nullptr, nullptr}};

} // namespace

void RegisterCoreScriptTypes(lua_State* L)
{
    EnsureStack(L, 22);
    // Space and GameObject answer field reads with functions of their own, so they get no __index here.
    luaL_newmetatable(L, "Space");
    luaL_newmetatable(L, "GameObject");
    lua_pop(L, 2);
    RegisterMethodType(L, "Transform", kNoFunctions);
}

} // namespace Lua
