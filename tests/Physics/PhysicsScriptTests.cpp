#include "Lua/ScriptHandles.h"
#include "Physics/PhysicsScript.h"
#include "Support/PhysicsScene.h"
#include "Support/ScriptScenario.h"

#include <lua.hpp>

namespace
{

using namespace PhysicsScene;

class PhysicsScript : public ScriptScenario
{
protected:
    // An object of the root space with a circle of radius 0.5 at the position.
    GameObjectHandle Circle(Vec2 position)
    {
        const GameObjectHandle object = AddObject(game.rootSpace, position);
        AddCircle(object, 0.5f);
        return object;
    }
    // Publishes the object's component as a global for the scripts.
    void Publish(const char* name, GameObjectHandle object, int32_t type)
    {
        Lua::PushComponent(L(), object.space, type, object.Get().components[static_cast<size_t>(type)]);
        lua_setglobal(L(), name);
    }
};

TEST_F(PhysicsScript, BodiesAndCollidersReadAndWriteTheirFields)
{
    const GameObjectHandle object = AddObject(game.rootSpace, Vec2{});
    AddBody(object, Vec2{});
    TransformOf(object).scale = {2, 4};
    object.Get().AddComponent(Components::Collider);
    Publish("body", object, Components::RigidBody);
    Publish("collider", object, Components::Collider);
    EXPECT_EQ(Run(R"lua(
        body:SetMass(2) body:ApplyForce(8, 0)
        local vx, vy = body:GetVelocity()
        assert(vx == 2 and vy == 0, "velocity " .. vx)
        body:SetIgnoreDrag(true) assert(body:GetIgnoreDrag())
        assert(table.concat(body:GetAllMembers(), ",") == "Velocity,Mass,IgnoreDrag")

        assert(collider:GetRadius() == 1.5)
        local w, h = collider:GetSize() assert(w == 3 and h == 3)
        collider:SetType("AABB") collider:SetSize(2, 2) collider:SetRadius(2)
        w, h = collider:GetSize() assert(w == 4 and h == 2 and collider:GetType() == "AABB")
        collider:SetCollisionGroup(65535) assert(collider:GetCollisionGroup() == -1)
        collider:SetCollisionGroup(40000) assert(collider:GetCollisionGroup() == -25536)
        collider:SetGhost(true) assert(collider:GetGhost())
        collider:SetRestitution(0.5) assert(collider:GetRestitution() == 0.5)
        assert(table.concat(collider:GetAllMembers(), ",") == "Restitution,Type,Size,Ghost")
    )lua"),
              "");
}

TEST_F(PhysicsScript, ConnectingChecksTheHandlersEnvironmentAndDisconnectingEmptiesTheTable)
{
    const GameObjectHandle object = Circle(Vec2{});
    Publish("collider", object, Components::Collider);
    EXPECT_EQ(Run("collider:ConnectCollision(function() end)"), "") << "no upvalue: nothing connected";
    EXPECT_EQ(ColliderOf(object).collisionEvents, 0);
    EXPECT_NE(Run("collider:ConnectCollision(function() return print end)")
                  .find("Couldn't get Spawn() from secret environment of function"),
              std::string::npos)
        << "the globals have no Spawn: only script environments do";
    Write("Connect.lua", R"lua(
        handler = function() print("x") end
        collider:ConnectCollision(handler)
        collider:ConnectCollision(handler)
        wait()
        collider:DisconnectCollision(handler)
    )lua");
    Attach("Connect.lua");
    Frame(1.0 / 60.0);
    EXPECT_NE(ColliderOf(object).collisionEvents, 0);
    Frame(1.0 / 60.0);
    EXPECT_EQ(ColliderOf(object).collisionEvents, 0);
}

TEST_F(PhysicsScript, AHandlerWhoseStartFailsIsLoggedAndDisconnected)
{
    const GameObjectHandle left = Circle(Vec2{});
    Circle(Vec2{0.5f, 0.0f});
    Publish("collider", left, Components::Collider);
    Write("Failing.lua", R"lua(
        Spawn = function() error("no start today") end
        collider:ConnectCollision(function() print("never") end)
    )lua");
    Attach("Failing.lua");
    Frame(1.0 / 60.0);
    Frame(1.0 / 60.0);
    Frame(1.0 / 60.0);
    const std::vector<std::string> errors = log.Messages("Collider", LogLevel::Error);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_TRUE(errors[0].starts_with("Error Dispatching collision event: ")) << errors[0];
    EXPECT_NE(errors[0].find("no start today"), std::string::npos);
}

TEST_F(PhysicsScript, ThePhysicsTableSetsTheWorldAndCastsRaysInTheRootSpaceOnly)
{
    const GameObjectHandle target = Circle(Vec2{5.0f, 0.0f});
    AddCircle(AddObject(game.rootSpace.CreateChild(), Vec2{}), 0.5f);
    ColliderOf(target).collisionGroup = 5;
    Physics::PushPhysicsTable(L(), game.physics, game.rootSpace);
    lua_setglobal(L(), "Physics");
    Publish("collider", target, Components::Collider);
    EXPECT_EQ(Run(R"lua(
        Physics:SetGravity(0, -9.5) Physics:SetDrag(0.25)
        local gx, gy = Physics:GetGravity()
        assert(gx == 0 and gy == -9.5 and Physics:GetDrag() == 0.25)
        local hit = Physics:Raycast(-10, 0, 20, 0)
        assert(hit.Distance == 14.5 and hit.Hit[1] == 4.5 and hit.Hit[2] == 0, hit.Distance)
        assert(getmetatable(hit.Object).__name == "GameObject")
        assert(select("#", Physics:Raycast(-10, 0, 20, 0, 5)) == 0)
        assert(select("#", Physics:Raycast(-10, 0, 20, 0, nil)) == 1)
        assert(select("#", Physics:Raycast(-10, 0, 1, 0)) == 0)
    )lua"),
              "");
    EXPECT_EQ(game.physics.gravity.y, -9.5f);
    EXPECT_NE(Run("Physics:SetGravity('a', 'b')").find("bad argument #2 to 'SetGravity' (number expected"),
              std::string::npos)
        << "the second number is checked first";
}

} // namespace
