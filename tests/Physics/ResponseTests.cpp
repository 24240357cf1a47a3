#include "Core/Game.h"
#include "Physics/CollisionListener.h"
#include "Support/PhysicsScene.h"

#include <functional>
#include <gtest/gtest.h>
#include <limits>

namespace
{

using namespace PhysicsScene;

struct Heard
{
    int32_t handlers;
    GameObjectHandle own;
    GameObjectHandle other;
    Vec2 point;
};

// Records what the step reports, and can act on the space from inside the report as a script could.
class RecordingListener final : public Physics::CollisionListener
{
public:
    void CollisionOccurred(int32_t handlers, GameObjectHandle own, GameObjectHandle other,
                           Vec2 point) override
    {
        heard.push_back(Heard{handlers, own, other, point});
        if (onCollision)
        {
            onCollision();
        }
    }

    std::vector<Heard> heard;
    std::function<void()> onCollision;
};

// Steps with dt 0, so integration changes nothing and the response alone acts.
class Response : public testing::Test
{
protected:
    Response()
    {
        game.AddSystem(physics, nullptr);
        physics.collisionListener = &listener;
    }
    ~Response() override { space.Destroy(game); }

    GameObjectHandle Ball(Space& in, Vec2 position, Vec2 velocity, float mass = 1.0f, float radius = 0.5f)
    {
        const GameObjectHandle object = AddObject(in, position);
        AddCircle(object, radius);
        AddBody(object, velocity, mass);
        return object;
    }
    GameObjectHandle Post(Space& in, Vec2 position, float radius = 0.5f)
    {
        const GameObjectHandle object = AddObject(in, position);
        AddCircle(object, radius);
        return object;
    }

    Core::Game game{nullptr, Core::GameSettings{}};
    Space& space = game.rootSpace;
    Physics::PhysicsSystem& physics = game.physics;
    RecordingListener listener;
};

// One pair per row, A at the origin and B on the x axis, in a space of its own.
TEST_F(Response, PairImpulsesFollowRestitutionMassesBiasAndSlop)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    struct Row
    {
        const char* name;
        float x, radiusB, massA, massB, restitutionA;
        Vec2 velocityA, velocityB, expectedA, expectedB;
        bool bodyB = true;
        bool settles = true;
    };
    // Head on: j = 2 * 2 + (0.1 - 0.01) * 0.5 = 4.045, shared by two unit masses. Touching with masses 2
    // and 1: j = 1.5 * 1 / (1/2 + 1) = 1. Resting and 1.01 deep: bias 0.5, halved by two unit masses.
    const Row rows[] = {
        {"head on", 0.9f, 0.5f, 1, 1, 1, {1, 0}, {-1, 0}, {1.0f - 2.0225f, 0}, {-1.0f + 2.0225f, 0}},
        {"smaller restitution", 1.0f, 0.5f, 2, 1, 0.5f, {1, 0}, {}, {0.5f, 0}, {1, 0}},
        {"within the slop", 0.995f, 0.5f, 1, 1, 1, {}, {}, {}, {}},
        {"beyond the slop", 0.99f, 1.5f, 1, 1, 1, {}, {}, {-0.25f, 0}, {0.25f, 0}, true, false},
        {"massless wall", 1.0f, 0.5f, 1, 0, 1, {1, 0}, {5, 5}, {-1, 0}, {5, 5}},
        {"NaN mass wall", 1.0f, 0.5f, 1, nan, 1, {1, 0}, {-3, 0}, {-1, 0}, {-3, 0}},
        {"opposite masses", 1.0f, 0.5f, 1, -1, 1, {1, 0}, {-1, 0}, {1, 0}, {-1, 0}},
        {"no body on either side", 1.0f, 0.5f, 0, 1, 1, {1, 0}, {}, {1, 0}, {}, false},
        {"coincident centres", 0.0f, 0.5f, 1, 1, 1, {1, 2}, {-1, 0}, {1, 2}, {-1, 0}},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.name);
        Space& pair = space.CreateChild();
        const GameObjectHandle a = Ball(pair, Vec2{}, row.velocityA, row.massA);
        ColliderOf(a).restitution = row.restitutionA;
        const GameObjectHandle b = row.bodyB
                                       ? Ball(pair, Vec2{row.x, 0}, row.velocityB, row.massB, row.radiusB)
                                       : Post(pair, Vec2{row.x, 0.0f});
        physics.Step(pair, 0.0f);
        EXPECT_FLOAT_EQ(BodyOf(a).velocity.x, row.expectedA.x);
        EXPECT_FLOAT_EQ(BodyOf(a).velocity.y, row.expectedA.y);
        EXPECT_EQ(TransformOf(a).position, Vec2{}) << "the response never moves anything";
        if (row.bodyB)
        {
            EXPECT_FLOAT_EQ(BodyOf(b).velocity.x, row.expectedB.x);
            EXPECT_FLOAT_EQ(BodyOf(b).velocity.y, row.expectedB.y);
        }
        if (row.settles)
        {
            const Vec2 after = BodyOf(a).velocity;
            physics.Step(pair, 0.0f);
            EXPECT_EQ(BodyOf(a).velocity, after) << "separating or balanced: no second impulse";
        }
    }
    EXPECT_EQ(listener.heard.size(), 0u) << "no collider has handlers";
}

TEST_F(Response, TouchingCirclesMeetWhileAabbsAndSharedGroupsNever)
{
    const GameObjectHandle left = Post(space, Vec2{0.0f, 0.0f});
    const GameObjectHandle right = Post(space, Vec2{3.0f, 4.0f}, 4.5f);
    ColliderOf(Post(space, Vec2{0.5f, 0.0f})).type = Components::ColliderType::AABB;
    ASSERT_EQ(AllPairContacts(space).size(), 1u);
    EXPECT_EQ(AllPairContacts(space)[0].penetration, 0.0f) << "distance 5, radii 0.5 + 4.5";
    EXPECT_EQ(AllPairContacts(space)[0].point, (Vec2{0.3f, 0.4f}));

    ColliderOf(left).collisionGroup = 3;
    ColliderOf(right).collisionGroup = 3;
    EXPECT_TRUE(AllPairContacts(space).empty()) << "one non-zero group never meets itself";
    ColliderOf(right).collisionGroup = 4;
    EXPECT_EQ(AllPairContacts(space).size(), 1u);
    ColliderOf(left).collisionGroup = 0;
    ColliderOf(right).collisionGroup = 0;
    EXPECT_EQ(AllPairContacts(space).size(), 1u) << "group 0 is no group";

    Space& coincident = space.CreateChild();
    Post(coincident, Vec2{}, 0.75f);
    Post(coincident, Vec2{});
    const std::vector<Physics::Contact> contacts = AllPairContacts(coincident);
    ASSERT_EQ(contacts.size(), 1u);
    EXPECT_EQ(contacts[0].penetration, 0.75f) << "coincident centres: the first radius, normal (0, 0)";
    EXPECT_EQ(contacts[0].point, Vec2{});
}

// Handlers hear every contact in list order, first side then second, with the same point, before its
// impulse; ghosts and bodiless pairs are heard but never pushed.
TEST_F(Response, EveryContactIsReportedToBothSidesInListOrderBeforeItsImpulse)
{
    const GameObjectHandle a = Ball(space, Vec2{0.0f, 0.0f}, Vec2{1.0f, 0.0f});
    const GameObjectHandle b = Ball(space, Vec2{0.8f, 0.0f}, Vec2{});
    const GameObjectHandle c = Ball(space, Vec2{0.0f, 0.8f}, Vec2{});
    const GameObjectHandle ghost = Post(space, Vec2{20.0f, 0.0f});
    const GameObjectHandle ghostBall = Ball(space, Vec2{20.5f, 0.0f}, Vec2{-1.0f, 0.0f});
    ColliderOf(a).collisionEvents = 1;
    ColliderOf(b).collisionEvents = 2;
    ColliderOf(ghost).collisionEvents = 4;
    ColliderOf(ghost).ghost = true;
    ColliderOf(ghostBall).collisionEvents = 5;

    std::vector<Vec2> velocityOfAWhenHeard;
    listener.onCollision = [&] { velocityOfAWhenHeard.push_back(BodyOf(a).velocity); };
    physics.Step(space, 0.0f);

    // Contacts (a, b), (a, c), (ghost, ghostBall); c has no handlers.
    const std::vector<std::pair<GameObjectHandle, GameObjectHandle>> expected = {
        {a, b}, {b, a}, {a, c}, {ghost, ghostBall}, {ghostBall, ghost}};
    ASSERT_EQ(listener.heard.size(), expected.size());
    for (size_t index = 0; index < expected.size(); ++index)
    {
        EXPECT_EQ(listener.heard[index].own.handle, expected[index].first.handle) << index;
        EXPECT_EQ(listener.heard[index].other.handle, expected[index].second.handle) << index;
        EXPECT_EQ(listener.heard[index].handlers, ColliderOf(expected[index].first).collisionEvents) << index;
    }
    EXPECT_EQ(listener.heard[0].point, (Vec2{0.5f, 0.0f}));
    EXPECT_EQ(listener.heard[1].point, listener.heard[0].point) << "both sides: the point on the first rim";
    EXPECT_EQ(listener.heard[2].point, (Vec2{0.0f, 0.5f}));
    EXPECT_EQ(listener.heard[3].point, (Vec2{20.5f, 0.0f}));
    EXPECT_EQ(velocityOfAWhenHeard[0], (Vec2{1.0f, 0.0f})) << "the report comes before the impulse";
    EXPECT_NE(velocityOfAWhenHeard[2], (Vec2{1.0f, 0.0f})) << "later contacts see earlier impulses";
    EXPECT_EQ(BodyOf(ghostBall).velocity, (Vec2{-1.0f, 0.0f})) << "a ghost is never pushed";

    for (const GameObjectHandle object : {a, b, ghost, ghostBall})
    {
        ColliderOf(object).collisionEvents = 0;
    }
}

// A handler runs inside the step and may add objects, which moves every component array. Bodies are known
// by the owners' handles as they were before the report: one removed earlier is gone, one removed by a
// handler of the same contact still takes its impulse.
TEST_F(Response, HandlersThatAddOrRemoveComponentsLeaveTheStepSound)
{
    const GameObjectHandle a = Ball(space, Vec2{0.0f, 0.0f}, Vec2{1.0f, 0.0f});
    const GameObjectHandle b = Ball(space, Vec2{0.9f, 0.0f}, Vec2{-1.0f, 0.0f});
    const GameObjectHandle c = Ball(space, Vec2{10.0f, 0.0f}, Vec2{1.0f, 0.0f});
    const GameObjectHandle d = Ball(space, Vec2{11.0f, 0.0f}, Vec2{});
    const GameObjectHandle e = Ball(space, Vec2{20.0f, 0.0f}, Vec2{1.0f, 0.0f});
    const GameObjectHandle f = Ball(space, Vec2{21.0f, 0.0f}, Vec2{});
    const Handle bodyOfF = f.Get().GetComponent(Components::RigidBody);
    d.Get().RemoveComponent(Components::RigidBody);
    ColliderOf(a).collisionEvents = 1;
    ColliderOf(e).collisionEvents = 5;
    listener.onCollision = [&]
    {
        if (listener.heard.back().own.handle == a.handle)
        {
            for (int index = 0; index < 500; ++index)
            {
                Ball(space, Vec2{100.0f, 100.0f}, Vec2{}).Get().AddComponent(Components::Script);
            }
            ColliderOf(b).collisionEvents = 2;
        }
        else if (listener.heard.back().own.handle == e.handle)
        {
            f.Get().RemoveComponent(Components::RigidBody);
        }
    };
    physics.Step(space, 0.0f);

    ASSERT_EQ(listener.heard.size(), 3u) << "b's handlers connected during a's report are heard";
    EXPECT_EQ(listener.heard[1].own.handle, b.handle);
    EXPECT_FLOAT_EQ(BodyOf(a).velocity.x, 1.0f - 2.0225f);
    EXPECT_FLOAT_EQ(BodyOf(b).velocity.x, -1.0f + 2.0225f);
    EXPECT_EQ(BodyOf(c).velocity, (Vec2{-1.0f, 0.0f})) << "d's body was removed: c meets a wall";
    EXPECT_EQ(BodyOf(e).velocity, Vec2{}) << "f's body was known before the report";
    EXPECT_EQ(space.rigidBodies.components.at(bodyOfF).velocity, (Vec2{1.0f, 0.0f}));
    for (const GameObjectHandle object : {a, b, e})
    {
        ColliderOf(object).collisionEvents = 0;
    }
}

} // namespace
