// The Physics script table: world constants and ray queries. Its functions carry two upvalues, the system
// and the root space's handle, so rays only ever see the colliders of the root space.

#include "Physics/PhysicsScript.h"

#include "Components/GameObject.h"
#include "Components/Space.h"
#include "Lua/ScriptArguments.h"
#include "Lua/ScriptHandles.h"
#include "Lua/Stack.h"
#include "Physics/ComponentScripts.h"
#include "Physics/PhysicsSystem.h"
#include "Physics/Raycast.h"

namespace Physics
{
namespace
{

using Lua::CheckFloat;
using Lua::CheckVec2;

PhysicsSystem& UpvalueSystem(lua_State* L)
{
    return Lua::UpvalueSystem<PhysicsSystem>(L, "PhysicsSystem method has a NULL Physics System!");
}

int SetGravity(lua_State* L)
{
    PhysicsSystem& physics = UpvalueSystem(L);
    const float y = CheckFloat(L, 3);
    physics.gravity = Vec2{CheckFloat(L, 2), y};
    return 0;
}

int GetGravity(lua_State* L)
{
    const PhysicsSystem& physics = UpvalueSystem(L);
    lua_pushnumber(L, physics.gravity.x);
    lua_pushnumber(L, physics.gravity.y);
    return 2;
}

int SetDrag(lua_State* L)
{
    PhysicsSystem& physics = UpvalueSystem(L);
    physics.drag = CheckFloat(L, 2);
    return 0;
}

int GetDrag(lua_State* L)
{
    lua_pushnumber(L, UpvalueSystem(L).drag);
    return 1;
}

Space& UpvalueSpace(lua_State* L)
{
    Space* space = Lua::ToSpace(L, lua_upvalueindex(2));
    if (space == nullptr)
    {
        luaL_error(L, "PhysicsSystem method has a NULL Space!");
    }
    return *space;
}

// One table per hit: {Object = the owner, Hit = {x, y}, Distance = d}.
void PushHit(lua_State* L, Space& space, const RaycastHit& hit)
{
    lua_createtable(L, 0, 3);
    GameObject* object = space.FindObject(hit.object);
    if (object != nullptr)
    {
        Lua::PushGameObject(*object, L);
    }
    else
    {
        lua_pushnil(L);
    }
    lua_setfield(L, -2, "Object");
    lua_createtable(L, 2, 0);
    lua_pushnumber(L, hit.hit.x);
    lua_rawseti(L, -2, 1);
    lua_pushnumber(L, hit.hit.y);
    lua_rawseti(L, -2, 2);
    lua_setfield(L, -2, "Hit");
    lua_pushnumber(L, hit.distance);
    lua_setfield(L, -2, "Distance");
}

int CastRay(lua_State* L)
{
    PhysicsSystem& physics = UpvalueSystem(L);
    Space& space = UpvalueSpace(L);
    const Vec2 start = CheckVec2(L, 2);
    const Vec2 ray = CheckVec2(L, 4);
    int16_t group = 0;
    if (lua_gettop(L) >= 6 && !lua_isnil(L, 6))
    {
        group = static_cast<int16_t>(static_cast<uint16_t>(luaL_checkinteger(L, 6)));
    }
    std::vector<RaycastHit>& hits = physics.raycastHits;
    Raycast(space, start, ray, group, hits);
    if (hits.size() > 100000 || !lua_checkstack(L, static_cast<int>(hits.size()) + 22))
    {
        luaL_error(L, "stack overflow");
    }
    for (const RaycastHit& hit : hits)
    {
        PushHit(L, space, hit);
    }
    return static_cast<int>(hits.size());
}

constexpr luaL_Reg kPhysicsFunctions[] = {
    {"SetGravity", SetGravity}, {"GetGravity", GetGravity}, {"SetDrag", SetDrag},
    {"GetDrag", GetDrag},       {"Raycast", CastRay},       {nullptr, nullptr},
};

} // namespace

void RegisterPhysicsScriptTypes(lua_State* L)
{
    Lua::EnsureStack(L, 22);
    RegisterRigidBodyScriptType(L);
    RegisterColliderScriptType(L);
}

void PushPhysicsTable(lua_State* L, PhysicsSystem& physics, Space& rootSpace)
{
    Lua::EnsureStack(L, 24);
    lua_createtable(L, 0, 5);
    lua_pushlightuserdata(L, &physics);
    Lua::PushSpace(&rootSpace, L);
    luaL_setfuncs(L, kPhysicsFunctions, 2);
}

} // namespace Physics
