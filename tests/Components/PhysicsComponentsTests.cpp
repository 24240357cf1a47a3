#include "Components/Space.h"
#include "Core/Game.h"
#include "Support/LogCapture.h"
#include "Support/PhysicsScene.h"

#include <gtest/gtest.h>

namespace
{

using Components::ColliderComponent;
using Components::RigidBodyComponent;
using namespace PhysicsScene;

class PhysicsComponents : public testing::Test
{
protected:
    ~PhysicsComponents() override { space.Destroy(game); }

    Core::Game game{nullptr, Core::GameSettings{}};
    Space& space = game.rootSpace;
};

TEST_F(PhysicsComponents, BodiesAndCollidersGiveTheirOwnerATransformIfItHasNone)
{
    LogCapture capture;
    const GameObjectHandle bodyOwner = space.CreateObject();
    bodyOwner.Get().AddComponent(Components::RigidBody);
    EXPECT_FALSE(bodyOwner.Get().GetTransform().IsNull());
    EXPECT_EQ(BodyOf(bodyOwner).transform, bodyOwner.Get().GetTransform());
    EXPECT_EQ(BodyOf(bodyOwner).mass, 1.0f);
    EXPECT_TRUE(capture.Entries().empty()) << "a body repairs its owner silently";

    const GameObjectHandle colliderOwner = space.CreateObject();
    colliderOwner.Get().AddComponent(Components::Collider);
    EXPECT_EQ(ColliderOf(colliderOwner).transform, colliderOwner.Get().GetTransform());
    EXPECT_EQ(capture.Messages("Physics", LogLevel::Warning),
              std::vector<std::string>{"Collider component does not have a transform"});
    EXPECT_EQ(ColliderOf(colliderOwner).radius, 0.5f) << "a new transform has scale (1, 1)";

    // An object that has a transform keeps it; its collider is sized once, from half the mean of its own
    // local scale, without the parent's.
    const GameObjectHandle parent = AddObject(space, Vec2{});
    TransformOf(parent).scale = Vec2{10.0f, 10.0f};
    const GameObjectHandle placed = AddObject(space, Vec2{1.0f, 2.0f});
    TransformOf(placed).SetParent(parent.Get().GetTransform(), true);
    TransformOf(placed).scale = Vec2{2.0f, 4.0f};
    const Handle transform = placed.Get().GetTransform();
    placed.Get().AddComponent(Components::RigidBody);
    placed.Get().AddComponent(Components::Collider);
    EXPECT_EQ(BodyOf(placed).transform, transform);
    EXPECT_EQ(ColliderOf(placed).transform, transform);
    EXPECT_EQ(space.transforms.Count(), 4u);
    EXPECT_EQ(ColliderOf(placed).radius, 1.5f);
    EXPECT_EQ(ColliderOf(placed).halfHeight, 1.5f);
    TransformOf(placed).scale = Vec2{8.0f, 8.0f};
    EXPECT_EQ(ColliderOf(placed).radius, 1.5f) << "later changes of scale don't resize it";
}

// The Slotmap moves colliders on every reallocation and every sweep; the handler reference must travel with
// its collider, be released once, and a collider that still holds one when it dies must say so.
TEST_F(PhysicsComponents, HandlerReferencesTravelWithTheirColliderAndLeaksAreReported)
{
    game.AddSystem(game.physics, nullptr);
    LogCapture capture;
    std::vector<GameObjectHandle> objects;
    for (int32_t index = 0; index < 300; ++index)
    {
        objects.push_back(AddObject(space, Vec2{}));
        AddCircle(objects.back(), 1.0f).collisionEvents = 1000 + index;
    }
    for (size_t index = 0; index < objects.size(); index += 3)
    {
        objects[index].Get().Destroy();
    }
    // The physics system gives up the references of the dying colliders, then the sweep moves the rest.
    EXPECT_EQ(space.DeleteDestroyed(game), 300u);
    EXPECT_EQ(capture.Count(LogLevel::Error), 0u);
    for (size_t index = 1; index < objects.size(); index += 3)
    {
        EXPECT_EQ(ColliderOf(objects[index]).collisionEvents, 1000 + static_cast<int32_t>(index));
        ColliderOf(objects[index]).collisionEvents = 0;
    }

    // Without the system nobody releases it, and the dying collider reports the leak.
    game.systems.clear();
    objects[2].Get().Destroy();
    space.DeleteDestroyed(game);
    EXPECT_EQ(capture.Messages("Collider", LogLevel::Error),
              std::vector<std::string>{"Collider lua event index was not cleaned up!"});
    for (size_t index = 5; index < objects.size(); index += 3)
    {
        ColliderOf(objects[index]).collisionEvents = 0;
    }
}

} // namespace
