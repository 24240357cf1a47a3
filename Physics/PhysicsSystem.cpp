#include "Physics/PhysicsSystem.h"

#include "Core/Game.h"
#include "Debug/Profile.h"
#include "Physics/ColliderOutlines.h"
#include "Physics/Integration.h"
#include "Physics/PhysicsScript.h"
#include "Physics/Response.h"

#include <lua.hpp>

namespace Physics
{

bool PhysicsSystem::Initialise(Core::Window*)
{
    gravity = Vec2{};
    return true;
}

void PhysicsSystem::Update(Core::Game& game, Space& space, double dt, double, double)
{
    // A space without bodies or colliders has nothing to step: menus and HUDs cost no profile blocks.
    if (space.paused || (space.rigidBodies.Count() == 0 && space.colliders.Count() == 0))
    {
        return;
    }
    // Shapes may be queued only while something drains them.
    Graphics::GraphicsSystem* debugDraw =
        game.debugDraw && game.graphics.IsRunning() ? &game.graphics : nullptr;
    Step(space, static_cast<float>(dt), debugDraw);
}

void PhysicsSystem::Step(Space& space, float dt, Graphics::GraphicsSystem* debugDraw)
{
    Debug::ProfileBlock block("Physics");
    {
        Debug::ProfileBlock velocity("Velocity");
        Integrate(space.rigidBodies.components, space.transforms.components, gravity, drag, dt, debugDraw);
    }
    {
        Debug::ProfileBlock detection("Collision Detection");
        contactFinder.FindContacts(space, contacts);
    }
    if (debugDraw != nullptr)
    {
        Debug::ProfileBlock outlines("Debug Draw Colliders");
        DrawColliders(space, *debugDraw);
    }
    Debug::ProfileBlock response("Collision Response");
    RespondToContacts(space, contacts, collisionListener);
}

void PhysicsSystem::RegisterScriptTypes(Lua::LuaSystem& lua)
{
    RegisterPhysicsScriptTypes(lua.state);
    scriptDispatch.state = lua.state;
    collisionListener = &scriptDispatch;
}

void PhysicsSystem::Shutdown()
{
    collisionListener = nullptr;
    scriptDispatch.state = nullptr;
}

void PhysicsSystem::ObjectsDestroyed(Core::Game& game, Space& space)
{
    lua_State* state = game.lua.state;
    for (Components::ColliderComponent& collider : space.colliders.components)
    {
        if (!collider.destroyed || collider.collisionEvents == 0)
        {
            continue;
        }
        // Without a state no reference can have been taken, so there is nothing to give back.
        if (state != nullptr && collider.collisionEvents > 0)
        {
            luaL_unref(state, LUA_REGISTRYINDEX, collider.collisionEvents);
        }
        collider.collisionEvents = 0;
    }
}

} // namespace Physics
