#pragma once

// What scripts see of the physics: the "RigidBody" and "Collider" handle types and the Physics table.

#include <lua.hpp>

class Space;

namespace Physics
{

class PhysicsSystem;

// Makes the metatables "RigidBody" and "Collider" with their functions.
void RegisterPhysicsScriptTypes(lua_State* L);

// +1: the Physics table, whose functions reach the system and, for rays, the root space.
void PushPhysicsTable(lua_State* L, PhysicsSystem& physics, Space& rootSpace);

} // namespace Physics
