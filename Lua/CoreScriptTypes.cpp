#include "Lua/CoreScriptTypes.h"

#include "Lua/GameObjectScript.h"
#include "Lua/SpaceScript.h"
#include "Lua/TransformScript.h"

namespace Lua
{

void RegisterCoreScriptTypes(lua_State* L)
{
    RegisterSpaceType(L);
    RegisterGameObjectType(L);
    RegisterTransformType(L);
}

} // namespace Lua
