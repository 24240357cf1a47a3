#include "Core/Game.h"
#include "Physics/Integration.h"
#include "Support/PhysicsScene.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace
{

using namespace PhysicsScene;

class Integration : public testing::Test
{
protected:
    ~Integration() override { space.Destroy(game); }

    GameObjectHandle Body(Vec2 position, Vec2 velocity, float mass = 1.0f)
    {
        const GameObjectHandle object = AddObject(space, position);
        AddBody(object, velocity, mass);
        return object;
    }

    Core::Game game{nullptr, Core::GameSettings{}};
    Space& space = game.rootSpace;
    Physics::PhysicsSystem& physics = game.physics;
};

TEST_F(Integration, DragSlowsWithTheSquareOfSpeedAndGravityIsDividedByTheMass)
{
    const GameObjectHandle dragged = Body(Vec2{}, Vec2{10.0f, 0.0f});
    const GameObjectHandle diagonal = Body(Vec2{}, Vec2{3.0f, -4.0f});
    const GameObjectHandle heavy = Body(Vec2{}, Vec2{}, 2.0f);
    BodyOf(heavy).ignoreDrag = true;
    const GameObjectHandle coasting = Body(Vec2{1.0f, 1.0f}, Vec2{7.0f, -2.0f});
    BodyOf(coasting).ignoreDrag = true;

    physics.Step(space, 0.1f);
    // 10 * 10 * 0.03125 * 0.1 lost, and the position moves by the new velocity.
    EXPECT_FLOAT_EQ(BodyOf(dragged).velocity.x, 9.6875f);
    EXPECT_EQ(BodyOf(dragged).velocity.y, 0.0f);
    EXPECT_FLOAT_EQ(TransformOf(dragged).position.x, 0.96875f);
    // Speed 5 loses 25 * 0.03125 * 0.1 along its own direction.
    EXPECT_FLOAT_EQ(BodyOf(diagonal).velocity.x, 3.0f - 0.078125f * 0.6f);
    EXPECT_FLOAT_EQ(BodyOf(diagonal).velocity.y, -4.0f + 0.078125f * 0.8f);
    EXPECT_EQ(BodyOf(coasting).velocity, (Vec2{7.0f, -2.0f})) << "no gravity and no drag: exactly kept";
    EXPECT_EQ(TransformOf(heavy).position, Vec2{});

    physics.gravity = Vec2{0.0f, -10.0f};
    physics.Step(space, 0.5f);
    EXPECT_FLOAT_EQ(BodyOf(heavy).velocity.y, -2.5f) << "-10 / mass 2 * dt";
    EXPECT_FLOAT_EQ(TransformOf(heavy).position.y, -1.25f);
    EXPECT_FLOAT_EQ(BodyOf(coasting).velocity.y, -7.0f) << "ignoreDrag keeps gravity";
}

TEST_F(Integration, BodiesWithoutMassOrTransformStayAndRemovedBodiesMoveUntilTheSweep)
{
    const GameObjectHandle weightless = Body(Vec2{1.0f, 1.0f}, Vec2{5.0f, 5.0f}, 0.0f);
    const GameObjectHandle undefined =
        Body(Vec2{2.0f, 2.0f}, Vec2{5.0f, 5.0f}, std::numeric_limits<float>::quiet_NaN());
    const GameObjectHandle removed = Body(Vec2{}, Vec2{1.0f, 0.0f});
    BodyOf(removed).ignoreDrag = true;
    const Handle removedBody = removed.Get().GetComponent(Components::RigidBody);
    removed.Get().RemoveComponent(Components::RigidBody);
    const GameObjectHandle doomed = Body(Vec2{}, Vec2{0.0f, 1.0f});
    BodyOf(doomed).ignoreDrag = true;
    doomed.Get().Destroy();
    const GameObjectHandle orphan = Body(Vec2{}, Vec2{1.0f, 1.0f});
    BodyOf(orphan).transform = Handle{12345, 1};

    physics.gravity = Vec2{0.0f, -10.0f};
    physics.Step(space, 1.0f);
    EXPECT_EQ(TransformOf(weightless).position, (Vec2{1.0f, 1.0f}));
    EXPECT_EQ(BodyOf(weightless).velocity, (Vec2{5.0f, 5.0f}));
    EXPECT_EQ(TransformOf(undefined).position, (Vec2{2.0f, 2.0f}));
    EXPECT_EQ(space.rigidBodies.components.at(removedBody).velocity, (Vec2{1.0f, -10.0f}));
    EXPECT_EQ(TransformOf(removed).position, (Vec2{1.0f, -10.0f}));
    EXPECT_EQ(TransformOf(doomed).position, (Vec2{0.0f, -9.0f}));
    EXPECT_EQ(BodyOf(orphan).velocity, (Vec2{1.0f, 1.0f}));
}

TEST_F(Integration, APausedSpaceDoesNotStepTheSystemNarrowsDtAndStartingResetsGravity)
{
    const GameObjectHandle object = Body(Vec2{}, Vec2{1.0f, 0.0f});
    BodyOf(object).ignoreDrag = true;
    space.paused = true;
    physics.Update(game, space, 1.0, 1.0, 1.0);
    EXPECT_EQ(TransformOf(object).position, Vec2{});

    space.paused = false;
    const double dt = 0.1;
    physics.Update(game, space, dt, dt, dt);
    EXPECT_EQ(TransformOf(object).position.x, static_cast<float>(dt));

    physics.gravity = Vec2{3.0f, 4.0f};
    physics.drag = 0.5f;
    EXPECT_TRUE(physics.Initialise(nullptr));
    EXPECT_EQ(physics.gravity, Vec2{}) << "gravity resets at the start, drag keeps its value";
    EXPECT_EQ(physics.drag, 0.5f);
}

} // namespace
