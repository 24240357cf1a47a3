#include "Core/Game.h"
#include "Physics/ContactFinder.h"
#include "Support/PhysicsScene.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace
{

using namespace PhysicsScene;

enum class SceneKind
{
    EqualCircles,
    MixedSizes,
    Clutter,
    FarClusters,
    Grazing,
};

class SceneBuilder
{
public:
    SceneBuilder(Space& target, uint32_t seed) : space(target), random(seed) {}

    void Build(SceneKind kind, int count)
    {
        // About one contact per circle of radius 0.5 in the square.
        const float side = std::sqrt(static_cast<float>(count) * 1.6f) + 1.0f;
        for (int index = 0; index < count; ++index)
        {
            switch (kind)
            {
            case SceneKind::EqualCircles:
                Circle(Vec2{Uniform(0.0f, side), Uniform(0.0f, side)}, 0.5f);
                break;
            case SceneKind::MixedSizes:
                Circle(Vec2{Uniform(0.0f, side), Uniform(0.0f, side)}, std::exp(Uniform(-4.0f, 1.5f)));
                break;
            case SceneKind::Clutter:
                Clutter(side);
                break;
            case SceneKind::FarClusters:
                Circle(Vec2{Uniform(0.0f, 8.0f) + 1e6f * static_cast<float>(index % 3), Uniform(0.0f, 8.0f)},
                       Uniform(0.1f, 1.0f));
                break;
            case SceneKind::Grazing:
                Grazing(side);
                break;
            }
        }
    }

private:
    float Uniform(float low, float high) { return std::uniform_real_distribution<float>(low, high)(random); }
    bool Chance(double probability) { return std::bernoulli_distribution(probability)(random); }

    GameObjectHandle Circle(Vec2 position, float radius)
    {
        const GameObjectHandle object = AddObject(space, position);
        AddCircle(object, radius);
        return object;
    }

    // Groups, boxes, flagged colliders and transforms, coincident centres, tiny, negative and huge radii,
    // and circles carried by turned parents.
    void Clutter(float side)
    {
        const Vec2 position = Chance(0.1) ? Vec2{1.0f, 1.0f} : Vec2{Uniform(0.0f, side), Uniform(0.0f, side)};
        float radius = Uniform(0.05f, 1.0f);
        if (Chance(0.05))
        {
            radius = Chance(0.5) ? 0.0f : -radius;
        }
        if (Chance(0.02))
        {
            radius = Uniform(5.0f, 50.0f);
        }
        const GameObjectHandle object = Circle(position, radius);
        Components::ColliderComponent& collider = ColliderOf(object);
        collider.collisionGroup = static_cast<int16_t>(std::uniform_int_distribution<int>(-1, 2)(random));
        if (Chance(0.05))
        {
            collider.type = Components::ColliderType::AABB;
        }
        if (Chance(0.1))
        {
            const GameObjectHandle parent = AddObject(space, Vec2{Uniform(0.0f, side), Uniform(0.0f, side)});
            TransformOf(parent).rotation = Uniform(-3.0f, 3.0f);
            TransformOf(object).SetParent(parent.Get().GetTransform(), true);
        }
        if (Chance(0.03))
        {
            object.Get().RemoveComponent(Components::Collider);
        }
        else if (Chance(0.03))
        {
            object.Get().RemoveComponent(Components::Transform);
        }
    }

    // Pairs at exactly the sum of their radii, or one float step either side of it, also far from the
    // origin and at tiny scales, where the grid's margins are tested hardest.
    void Grazing(float side)
    {
        const float scale = Chance(0.5) ? 1.0f : (Chance(0.5) ? 1e-20f : 1e10f);
        const Vec2 position{Uniform(0.0f, side) * scale, Uniform(0.0f, side) * scale};
        const float radiusA = Uniform(0.1f, 1.0f) * scale;
        const float radiusB = Uniform(0.1f, 1.0f) * scale;
        float distance = radiusA + radiusB;
        const int step = std::uniform_int_distribution<int>(-1, 1)(random);
        distance = step < 0   ? std::nextafter(distance, 0.0f)
                   : step > 0 ? std::nextafter(distance, 1e30f)
                              : distance;
        const float angle = Uniform(0.0f, 6.3f);
        Circle(position, radiusA);
        Circle(Vec2{position.x + distance * std::cos(angle), position.y + distance * std::sin(angle)},
               radiusB);
    }

    Space& space;
    std::mt19937 random;
};

class ContactFinder : public testing::Test
{
protected:
    ~ContactFinder() override { game.rootSpace.Destroy(game); }

    // Builds many scenes of the kind and holds the finder's contacts against the plain walk over all pairs,
    // with one finder whose buffers carry over from scene to scene.
    void ExpectSameAsAllPairs(SceneKind kind, int scenes, int maxCount)
    {
        size_t total = 0;
        for (int scene = 0; scene < scenes; ++scene)
        {
            Space& space = game.rootSpace.CreateChild();
            const int count = scene * maxCount / scenes + 1;
            SceneBuilder(space, static_cast<uint32_t>(scene * 7919 + static_cast<int>(kind)))
                .Build(kind, count);
            const std::vector<Physics::Contact> expected = AllPairContacts(space);
            finder.FindContacts(space, found);
            EXPECT_TRUE(SameContacts(found, expected))
                << "scene " << scene << ": " << found.size() << " contacts, expected " << expected.size();
            total += expected.size();
            space.destroyRequested = true;
            game.rootSpace.DestroyFlagged(game);
        }
        EXPECT_GT(total, static_cast<size_t>(scenes)) << "the scenes must have contacts to compare";
    }

    Core::Game game{nullptr, Core::GameSettings{}};
    Physics::ContactFinder finder;
    std::vector<Physics::Contact> found;
};

TEST_F(ContactFinder, EveryKindOfSceneGivesThePlainWalksContactsInItsOrder)
{
    struct Row
    {
        SceneKind kind;
        int scenes, maxCount;
    };
    for (const Row row : {Row{SceneKind::EqualCircles, 20, 600}, Row{SceneKind::MixedSizes, 20, 400},
                          Row{SceneKind::Clutter, 30, 400}, Row{SceneKind::FarClusters, 10, 300},
                          Row{SceneKind::Grazing, 30, 300}})
    {
        SCOPED_TRACE(static_cast<int>(row.kind));
        ExpectSameAsAllPairs(row.kind, row.scenes, row.maxCount);
    }
}

TEST_F(ContactFinder, ANanCircleTouchesEveryOtherAndAnEmptySpaceHasNoContacts)
{
    finder.FindContacts(game.rootSpace, found);
    EXPECT_TRUE(found.empty());
    for (const float x : {0.0f, std::nanf(""), 100.0f})
    {
        AddCircle(AddObject(game.rootSpace, Vec2{x, 0.0f}), 0.5f);
    }
    finder.FindContacts(game.rootSpace, found);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(std::make_pair(found[0].first, found[0].second), std::make_pair(0u, 1u));
    EXPECT_EQ(std::make_pair(found[1].first, found[1].second), std::make_pair(1u, 2u));
}

} // namespace
