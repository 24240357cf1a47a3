#pragma once

// The system that moves rigid bodies, finds circle contacts and answers them with impulses, in single
// precision, each space by itself with its own dt. A step is integration, then detection, then response;
// there is no sub-stepping and no solver iteration, and the same scene stepped with the same dts gives the
// same bits. Gravity and drag belong to the system, are shared by all spaces and survive level loads.
//
// Scripts reach it through the RigidBody and Collider script types and the Physics table; contacts of
// colliders with connected handlers go to those handlers through collisionListener.

#include "Components/Vec2.h"
#include "Core/System.h"
#include "Physics/Contact.h"
#include "Physics/ContactFinder.h"
#include "Physics/Raycast.h"
#include "Physics/ScriptCollisionDispatch.h"

#include <vector>

namespace Graphics
{
class GraphicsSystem;
}

namespace Physics
{

class CollisionListener;

class PhysicsSystem final : public Core::System
{
public:
    const char* Name() const override { return "Physics"; }
    // Gravity starts at (0, 0); drag keeps its value.
    bool Initialise(Core::Window* window) override;
    // Steps the space unless it is paused.
    void Update(Core::Game& game, Space& space, double dt, double spaceTime, double absoluteTime) override;
    // Makes the RigidBody and Collider script types and starts sending contacts to script handlers.
    void RegisterScriptTypes(Lua::LuaSystem& lua) override;
    // Releases the handler tables of the space's flagged colliders before the sweep.
    void ObjectsDestroyed(Core::Game& game, Space& space) override;
    // Stops sending contacts to scripts: the Lua state goes before the physics.
    void Shutdown() override;

    // One step of the space, paused or not. With debugDraw, bodies show arrows and colliders outlines.
    void Step(Space& space, float dt, Graphics::GraphicsSystem* debugDraw = nullptr);

    // A constant force on every body, divided by its mass like any other.
    Vec2 gravity;
    // The quadratic drag coefficient.
    float drag = 0.03125f;
    // Hears every contact of a collider with handlers; none while null.
    CollisionListener* collisionListener = nullptr;
    // The hits of the latest script ray query, kept so that queries allocate only while they grow.
    std::vector<RaycastHit> raycastHits;

private:
    ScriptCollisionDispatch scriptDispatch;
    // Kept between steps so that a step allocates only while a scene grows.
    ContactFinder contactFinder;
    std::vector<Contact> contacts;
};

} // namespace Physics
