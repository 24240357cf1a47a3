// The "RigidBody" script type. Each function resolves its handle anew and narrows numbers to float.

#include "Components/RigidBodyComponent.h"
#include "Lua/ScriptArguments.h"
#include "Lua/ScriptHandles.h"
#include "Physics/ComponentScripts.h"
#include "Physics/PhysicsScript.h"

namespace Physics
{
namespace
{

using Lua::CheckBoolean;
using Lua::CheckFloat;
using Lua::CheckVec2;

int GetAllMembers(lua_State* L)
{
    Lua::CheckRigidBody(L);
    static constexpr const char* kMembers[] = {"Velocity", "Mass", "IgnoreDrag"};
    Lua::PushStringArray(L, kMembers, 3);
    return 1;
}

int SetVelocity(lua_State* L)
{
    Components::RigidBodyComponent& body = Lua::CheckRigidBody(L);
    body.velocity = CheckVec2(L, 2);
    return 0;
}

int GetVelocity(lua_State* L)
{
    const Components::RigidBodyComponent& body = Lua::CheckRigidBody(L);
    lua_pushnumber(L, body.velocity.x);
    lua_pushnumber(L, body.velocity.y);
    return 2;
}

int SetIgnoreDrag(lua_State* L)
{
    Components::RigidBodyComponent& body = Lua::CheckRigidBody(L);
    body.ignoreDrag = CheckBoolean(L, 2);
    return 0;
}

int GetIgnoreDrag(lua_State* L)
{
    lua_pushboolean(L, Lua::CheckRigidBody(L).ignoreDrag);
    return 1;
}

// A mass of 0 isn't refused here: the step treats such a body as absent.
int SetMass(lua_State* L)
{
    Components::RigidBodyComponent& body = Lua::CheckRigidBody(L);
    body.mass = CheckFloat(L, 2);
    return 0;
}

int GetMass(lua_State* L)
{
    lua_pushnumber(L, Lua::CheckRigidBody(L).mass);
    return 1;
}

// An instant change of velocity by the force divided by the mass twice, with no time factor: games tuned
// their forces to exactly this.
int ApplyForce(lua_State* L)
{
    Components::RigidBodyComponent& body = Lua::CheckRigidBody(L);
    const Vec2 force = CheckVec2(L, 2);
    body.velocity.x += force.x / body.mass / body.mass;
    body.velocity.y += force.y / body.mass / body.mass;
    return 0;
}

constexpr luaL_Reg kRigidBodyFunctions[] = {
    {"GetAllMembers", GetAllMembers},
    {"SetVelocity", SetVelocity},
    {"GetVelocity", GetVelocity},
    {"SetIgnoreDrag", SetIgnoreDrag},
    {"GetIgnoreDrag", GetIgnoreDrag},
    {"SetMass", SetMass},
    {"GetMass", GetMass},
    {"ApplyForce", ApplyForce},
    {nullptr, nullptr},
};

} // namespace

void RegisterRigidBodyScriptType(lua_State* L)
{
    Lua::RegisterMethodType(L, "RigidBody", kRigidBodyFunctions);
}

} // namespace Physics
