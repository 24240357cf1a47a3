#include "Core/Game.h"
#include "Physics/ContactFinder.h"
#include "Physics/Raycast.h"
#include "Support/PhysicsScene.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace
{

using namespace PhysicsScene;

constexpr int kFrames = 600;

// A varying frame time, as a real loop measures it: the same list for every run.
double FrameTime(int frame)
{
    return (1.0 + 0.5 * std::sin(frame * 0.37)) / 60.0;
}

class Determinism : public testing::Test
{
protected:
    ~Determinism() override { game.rootSpace.Destroy(game); }

    // About 500 circles overlapping from the start: bodies of several masses, groups, ghosts, bodiless
    // posts, boxes and circles carried by turning parents.
    void BuildMixedScene(Space& space)
    {
        std::mt19937 random(2024);
        auto uniform = [&](float low, float high)
        { return std::uniform_real_distribution<float>(low, high)(random); };
        std::vector<GameObjectHandle> parents;
        for (int index = 0; index < 10; ++index)
        {
            const GameObjectHandle parent =
                AddObject(space, Vec2{uniform(0.0f, 20.0f), uniform(0.0f, 20.0f)});
            AddBody(parent, Vec2{uniform(-1.0f, 1.0f), uniform(-1.0f, 1.0f)});
            TransformOf(parent).rotation = uniform(-3.0f, 3.0f);
            parents.push_back(parent);
        }
        for (int index = 0; index < 500; ++index)
        {
            const GameObjectHandle object =
                AddObject(space, Vec2{uniform(0.0f, 20.0f), uniform(0.0f, 20.0f)});
            Components::ColliderComponent& collider = AddCircle(object, uniform(0.2f, 0.6f));
            collider.restitution = uniform(0.2f, 1.0f);
            collider.collisionGroup = static_cast<int16_t>(index % 7 == 0 ? 1 + index % 3 : 0);
            collider.ghost = index % 23 == 0;
            if (index % 31 == 0)
            {
                collider.type = Components::ColliderType::AABB;
            }
            if (index % 9 != 0)
            {
                AddBody(object, Vec2{uniform(-3.0f, 3.0f), uniform(-3.0f, 3.0f)}, uniform(0.5f, 3.0f));
                BodyOf(object).ignoreDrag = index % 5 == 0;
            }
            if (index % 17 == 0)
            {
                TransformOf(object).SetParent(
                    parents[static_cast<size_t>(index) % parents.size()].Get().GetTransform(), false);
            }
        }
    }

    std::vector<uint64_t> Run()
    {
        Space& space = game.rootSpace.CreateChild();
        BuildMixedScene(space);
        Physics::PhysicsSystem physics;
        physics.gravity = Vec2{0.0f, -2.0f};
        std::vector<uint64_t> hashes;
        for (int frame = 0; frame < kFrames; ++frame)
        {
            physics.Update(game, space, FrameTime(frame), 0.0, 0.0);
            hashes.push_back(HashState(space));
        }
        space.destroyRequested = true;
        game.rootSpace.DestroyFlagged(game);
        return hashes;
    }

    Core::Game game{nullptr, Core::GameSettings{}};
};

TEST_F(Determinism, TheSameSceneAndFrameTimesGiveBitIdenticalRuns)
{
    {
        Space& space = game.rootSpace.CreateChild();
        BuildMixedScene(space);
        EXPECT_GT(AllPairContacts(space).size(), 200u) << "the scene must start crowded";
        space.destroyRequested = true;
        game.rootSpace.DestroyFlagged(game);
    }
    const std::vector<uint64_t> first = Run();
    const std::vector<uint64_t> second = Run();
    ASSERT_EQ(first.size(), static_cast<size_t>(kFrames));
    EXPECT_EQ(first, second);
    EXPECT_NE(first.front(), first.back()) << "the scene must move";
}

// Every field that scripts can set, and gravity, drag and dt, drawn from a pool of NaN, infinities,
// extremes and denormals. Nothing may crash or trip a sanitizer, and the contact search must still agree
// with the plain walk over all pairs in every frame.
TEST_F(Determinism, HostileValuesNeverBreakTheStepTheSearchOrRays)
{
    std::mt19937 random(77);
    auto hostileOr = [&](float usual)
    { return std::bernoulli_distribution(0.3)(random) ? HostileValue(random) : usual; };
    Physics::PhysicsSystem physics;
    Physics::ContactFinder finder;
    std::vector<Physics::Contact> found;
    std::vector<Physics::RaycastHit> hits;
    for (int scene = 0; scene < 12; ++scene)
    {
        Space& space = game.rootSpace.CreateChild();
        for (int index = 0; index < 60; ++index)
        {
            const GameObjectHandle object = AddObject(space, Vec2{hostileOr(static_cast<float>(index % 8)),
                                                                  hostileOr(static_cast<float>(index / 8))});
            TransformOf(object).rotation = hostileOr(0.0f);
            Components::ColliderComponent& collider = AddCircle(object, hostileOr(0.6f));
            collider.restitution = hostileOr(0.5f);
            collider.collisionGroup = static_cast<int16_t>(index % 4);
            if (index % 4 != 3)
            {
                AddBody(object, Vec2{hostileOr(1.0f), hostileOr(-1.0f)}, hostileOr(1.0f));
            }
            if (index % 10 == 0 && index > 0)
            {
                TransformOf(object).SetParent(space.objects[0].GetTransform(), true);
            }
        }
        physics.gravity = Vec2{hostileOr(0.0f), hostileOr(-1.0f)};
        physics.drag = hostileOr(0.03125f);
        for (int frame = 0; frame < 20; ++frame)
        {
            physics.Update(game, space, static_cast<double>(hostileOr(1.0f / 60.0f)), 0.0, 0.0);
            finder.FindContacts(space, found);
            EXPECT_TRUE(SameContacts(found, AllPairContacts(space)))
                << "scene " << scene << " frame " << frame;
            Physics::Raycast(space, Vec2{hostileOr(0.0f), hostileOr(0.0f)},
                             Vec2{hostileOr(8.0f), hostileOr(8.0f)}, static_cast<int16_t>(frame % 3), hits);
            for (size_t index = 1; index < hits.size(); ++index)
            {
                EXPECT_FALSE(hits[index].distance < hits[index - 1].distance) << "nearest first";
                EXPECT_FALSE(std::isnan(hits[index - 1].distance) && !std::isnan(hits[index].distance))
                    << "NaN distances last";
            }
        }
        space.destroyRequested = true;
        game.rootSpace.DestroyFlagged(game);
    }
}

} // namespace
