#include "Core/Game.h"
#include "Physics/Raycast.h"
#include "Support/PhysicsScene.h"

#include <gtest/gtest.h>

namespace
{

using namespace PhysicsScene;

class Raycast : public testing::Test
{
protected:
    ~Raycast() override { game.rootSpace.Destroy(game); }

    GameObjectHandle Circle(Vec2 position, float radius, int16_t group = 0)
    {
        const GameObjectHandle object = AddObject(space, position);
        AddCircle(object, radius).collisionGroup = group;
        return object;
    }
    std::vector<Physics::RaycastHit>& Cast(Vec2 start, Vec2 ray, int16_t group = 0)
    {
        Physics::Raycast(space, start, ray, group, hits);
        return hits;
    }

    Core::Game game{nullptr, Core::GameSettings{}};
    Space& space = game.rootSpace;
    std::vector<Physics::RaycastHit> hits;
};

TEST_F(Raycast, TheRayIsItsWholeLengthAndHitsComeNearestFirst)
{
    const GameObjectHandle far = Circle(Vec2{8.0f, 0.0f}, 1.0f);
    const GameObjectHandle near = Circle(Vec2{4.0f, 0.0f}, 1.0f);
    const GameObjectHandle beside = Circle(Vec2{4.0f, 3.0f}, 1.0f);

    ASSERT_EQ(Cast(Vec2{}, Vec2{10.0f, 0.0f}).size(), 2u);
    EXPECT_EQ(hits[0].object.handle, near.handle);
    EXPECT_FLOAT_EQ(hits[0].hit.x, 3.0f);
    EXPECT_EQ(hits[0].hit.y, 0.0f);
    EXPECT_FLOAT_EQ(hits[0].distance, 3.0f);
    EXPECT_EQ(hits[1].object.handle, far.handle);
    EXPECT_FLOAT_EQ(hits[1].distance, 7.0f);

    EXPECT_EQ(Cast(Vec2{}, Vec2{2.9f, 0.0f}).size(), 0u) << "ends short of the circle";
    EXPECT_EQ(Cast(Vec2{}, Vec2{3.0f, 0.0f}).size(), 1u) << "reaching the rim at t = 1";
    EXPECT_EQ(Cast(Vec2{12.0f, 0.0f}, Vec2{10.0f, 0.0f}).size(), 0u)
        << "pointing away, though the line through the ray meets both";
    ASSERT_EQ(Cast(Vec2{4.0f, -5.0f}, Vec2{0.0f, 10.0f}).size(), 2u);
    EXPECT_EQ(hits[1].object.handle, beside.handle);
    EXPECT_FLOAT_EQ(hits[1].distance, 7.0f);
}

TEST_F(Raycast, AStartInsideHitsAtTheStartEvenForAZeroLengthRay)
{
    const GameObjectHandle around = Circle(Vec2{1.0f, 1.0f}, 2.0f);
    ASSERT_EQ(Cast(Vec2{}, Vec2{}).size(), 1u);
    EXPECT_EQ(hits[0].object.handle, around.handle);
    EXPECT_EQ(hits[0].hit, Vec2{});
    EXPECT_EQ(hits[0].distance, 0.0f);
    EXPECT_EQ(Cast(Vec2{5.0f, 5.0f}, Vec2{}).size(), 0u) << "a zero-length ray outside hits nothing";
    EXPECT_EQ(Cast(Vec2{3.0f, 1.0f}, Vec2{1.0f, 0.0f}).size(), 1u) << "a start on the rim is inside";
}

TEST_F(Raycast, GroupsExcludeAndEqualDistancesKeepArrayOrder)
{
    const GameObjectHandle plain = Circle(Vec2{0.0f, 5.0f}, 1.0f);
    const GameObjectHandle five = Circle(Vec2{0.0f, 5.0f}, 1.0f, 5);
    const GameObjectHandle wrapped = Circle(Vec2{0.0f, 5.0f}, 1.0f, -1);

    ASSERT_EQ(Cast(Vec2{}, Vec2{0.0f, 10.0f}).size(), 3u) << "group 0 tests all, group 0 colliders too";
    EXPECT_EQ(hits[0].object.handle, plain.handle);
    EXPECT_EQ(hits[1].object.handle, five.handle);
    EXPECT_EQ(hits[2].object.handle, wrapped.handle);
    ASSERT_EQ(Cast(Vec2{}, Vec2{0.0f, 10.0f}, 5).size(), 2u);
    EXPECT_EQ(hits[1].object.handle, wrapped.handle);
    ASSERT_EQ(Cast(Vec2{}, Vec2{0.0f, 10.0f}, -1).size(), 2u) << "65535 stored is -1";
    EXPECT_EQ(hits[1].object.handle, five.handle);
}

// The ray reaches colliders through their owners: what the owner has now, not what the collider stored.
TEST_F(Raycast, OnlyLiveCirclesOfLiveOwnersAreHitWhereTheirParentsCarryThem)
{
    const GameObjectHandle box = Circle(Vec2{0.0f, 2.0f}, 1.0f);
    ColliderOf(box).type = Components::ColliderType::AABB;
    const GameObjectHandle removed = Circle(Vec2{0.0f, 4.0f}, 1.0f);
    removed.Get().RemoveComponent(Components::Collider);
    const GameObjectHandle doomed = Circle(Vec2{0.0f, 6.0f}, 1.0f);
    doomed.Get().Destroy();
    const GameObjectHandle moved = Circle(Vec2{0.0f, 8.0f}, 1.0f);
    moved.Get().RemoveComponent(Components::Transform);
    const GameObjectHandle replaced = Circle(Vec2{0.0f, 50.0f}, 1.0f);
    replaced.Get().RemoveComponent(Components::Transform);
    replaced.Get().AddComponent(Components::Transform);
    TransformOf(replaced).position = Vec2{0.0f, 10.0f};

    ASSERT_EQ(Cast(Vec2{}, Vec2{0.0f, 100.0f}).size(), 1u);
    EXPECT_EQ(hits[0].object.handle, replaced.handle);
    EXPECT_FLOAT_EQ(hits[0].distance, 9.0f);

    AddCircle(AddObject(space.CreateChild(), Vec2{0.0f, 1.0f}), 1.0f);
    EXPECT_EQ(Cast(Vec2{}, Vec2{0.0f, 3.0f}).size(), 0u) << "a space's ray sees only its own colliders";

    const GameObjectHandle parent = AddObject(space, Vec2{5.0f, 5.0f});
    TransformOf(parent).rotation = 1.5707963f;
    const GameObjectHandle child = Circle(Vec2{1.0f, 0.0f}, 0.5f);
    TransformOf(child).SetParent(parent.Get().GetTransform(), true);
    ASSERT_EQ(Cast(Vec2{5.0f, 0.0f}, Vec2{0.0f, 10.0f}).size(), 1u);
    EXPECT_NEAR(hits[0].hit.y, 5.5f, 1e-5f) << "a turned parent carries its child to (5, 6) in the world";
}

} // namespace
