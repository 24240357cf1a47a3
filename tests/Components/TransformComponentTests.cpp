#include "Components/Space.h"
#include "Core/Game.h"
#include "Support/LogCapture.h"
#include "Support/RaiseCheck.h"

#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>

namespace
{

using Components::TransformComponent;

class Transforms : public testing::Test
{
protected:
    ~Transforms() override { space.Destroy(game); }

    GameObjectHandle NewObject(Vec2 position = {}, float rotation = 0.0f)
    {
        const GameObjectHandle handle = space.CreateObject();
        handle.Get().AddComponent(Components::Transform);
        Of(handle).position = position;
        Of(handle).rotation = rotation;
        return handle;
    }

    TransformComponent& Of(GameObjectHandle handle)
    {
        return space.transforms.components.at(handle.Get().GetTransform());
    }

    Handle HandleOf(GameObjectHandle handle) { return handle.Get().GetTransform(); }

    std::vector<Handle> Children(GameObjectHandle handle)
    {
        std::vector<Handle> children;
        for (Handle child = Of(handle).firstChild; !child.IsNull();
             child = space.transforms.components.at(child).nextSibling)
        {
            children.push_back(child);
        }
        return children;
    }

    Core::Game game{nullptr, Core::GameSettings{}};
    Space& space = game.rootSpace;
};

void ExpectNear(Vec2 actual, Vec2 expected, float tolerance = 1e-4f)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
}

// World values turn by the parent's rotation without its scale; a written world rotation reads back off by
// the grandparent's own rotation; a world position written at depth eight reads back.
TEST_F(Transforms, WorldValuesTurnByTheParentAndRoundTripAtDepth)
{
    const float quarter = static_cast<float>(M_PI / 2);
    const GameObjectHandle grandparent = NewObject({10, 0}, quarter);
    const GameObjectHandle parent = NewObject({1, 0}, quarter);
    const GameObjectHandle child = NewObject({2, 0}, 0.25f);
    Of(grandparent).scale = {5, 5};
    Of(parent).SetParent(HandleOf(grandparent), true);
    Of(child).SetParent(HandleOf(parent), true);
    ExpectNear(Of(parent).GetWorldPosition(), {10, 1});
    ExpectNear(Of(child).GetWorldPosition(), {8, 1});
    EXPECT_FLOAT_EQ(Of(child).GetWorldRotation(), 0.25f + quarter);
    Of(child).SetWorldRotation(1.0f);
    EXPECT_FLOAT_EQ(Of(child).rotation, 1.0f - 2 * quarter);
    EXPECT_FLOAT_EQ(Of(child).GetWorldRotation(), 1.0f - quarter);

    GameObjectHandle deepest = child;
    for (int depth = 3; depth < 8; ++depth)
    {
        const GameObjectHandle next =
            NewObject({1.5f, 0.5f * static_cast<float>(depth)}, 0.2f * static_cast<float>(depth));
        Of(next).SetParent(HandleOf(deepest), true);
        deepest = next;
    }
    for (const Vec2 target : {Vec2{0, 0}, Vec2{100, -40}, Vec2{-3.25f, 7.5f}})
    {
        Of(deepest).SetWorldPosition(target);
        ExpectNear(Of(deepest).GetWorldPosition(), target, 1e-3f);
    }
}

// Leavers are unlinked anywhere in their parent's list, also when the component is removed; clearing the
// parent with local values kept leaves them as they were; reparenting otherwise keeps the world place.
TEST_F(Transforms, LeaversAreUnlinkedAnywhereInTheChildList)
{
    const GameObjectHandle parent = NewObject({5, 5}, 0.5f);
    std::vector<GameObjectHandle> kids;
    for (int index = 0; index < 4; ++index)
    {
        kids.push_back(NewObject({1, 2}));
        Of(kids.back()).SetParent(HandleOf(parent), true);
    }
    EXPECT_EQ(Children(parent), (std::vector<Handle>{HandleOf(kids[3]), HandleOf(kids[2]), HandleOf(kids[1]),
                                                     HandleOf(kids[0])}));
    Of(kids[2]).ClearParent(true);
    EXPECT_EQ(Of(kids[2]).position, (Vec2{1, 2}));
    EXPECT_TRUE(Of(kids[2]).parent.IsNull() && Of(kids[2]).nextSibling.IsNull());
    kids[0].Get().RemoveComponent(Components::Transform);
    EXPECT_EQ(Children(parent), (std::vector<Handle>{HandleOf(kids[3]), HandleOf(kids[1])}));

    const GameObjectHandle mover = NewObject({1, 2}, 0.1f);
    Of(mover).SetParent(HandleOf(parent), false);
    ExpectNear(Of(mover).GetWorldPosition(), {1, 2});
    EXPECT_NEAR(Of(mover).GetWorldRotation(), 0.1f, 1e-5f) << "reparenting keeps the world place";
}

TEST_F(Transforms, BrokenTreesAndBadParentsRaise)
{
    const GameObjectHandle top = NewObject();
    const GameObjectHandle middle = NewObject();
    const GameObjectHandle bottom = NewObject();
    Of(middle).SetParent(HandleOf(top), true);
    Of(bottom).SetParent(HandleOf(middle), true);
    EXPECT_TRUE(Of(top).IsDescendant(HandleOf(bottom)));
    EXPECT_FALSE(Of(bottom).IsDescendant(HandleOf(top)));

    ExpectRaise([&] { Of(top).SetParent(HandleOf(bottom), true); }, "Transform",
                "Tried to set a transform component's parent to a descendant");
    Of(top).parent = Handle{}; // undo what the refused call left

    ExpectRaise(
        [&] {
            Of(top).SetParent(Handle{77, 3}, true);
        },
        "Transform", "Transform has a NULL parent object");
    Of(top).parent = Handle{};

    ExpectRaise([&] { Of(top).GetParentTransform(); }, "Transform", "Transform component has no parent");
    TransformComponent spaceless(GameObjectHandle{});
    ExpectRaise([&] { spaceless.GetParentTransform(); }, "Transform", "Transform has no space");
    spaceless.parent = Handle{0, 1};
    ExpectRaise([&] { spaceless.ClearParent(true); }, "Component", "Transform component has no space");

    LogCapture capture;
    TransformComponent stray(top);
    stray.nextSibling = HandleOf(top);
    stray.ClearParent(true);
    EXPECT_EQ(capture.Messages("Transform", LogLevel::Error),
              std::vector<std::string>{"Transform still has siblings after clearing parent"});
}

// Random create, reparent, detach, destroy and frame-end steps, checked against the tree's invariants.
class TransformModel : public Transforms
{
protected:
    // Each living child is listed once, under its own parent; no list holds a dangling or flagged link; no
    // parent chain has a cycle.
    void CheckTree()
    {
        std::map<uint64_t, uint64_t> listedUnder;
        for (const TransformComponent& transform : space.transforms.components)
        {
            for (Handle child = transform.firstChild; !transform.destroyed && !child.IsNull();)
            {
                const TransformComponent* found = space.transforms.components.Find(child);
                ASSERT_TRUE(found != nullptr && !found->destroyed) << "dangling or flagged link";
                ASSERT_TRUE(listedUnder.emplace(child.Value(), HandleOf(transform.owner).Value()).second);
                child = found->nextSibling;
            }
        }
        for (const GameObjectHandle handle : live)
        {
            const TransformComponent& transform = Of(handle);
            const auto listed = listedUnder.find(HandleOf(handle).Value());
            ASSERT_EQ(listed == listedUnder.end() ? Handle{}.Value() : listed->second,
                      transform.parent.Value());
            ASSERT_TRUE(!transform.parent.IsNull() || transform.nextSibling.IsNull());
            std::set<uint64_t> seen = {HandleOf(handle).Value()};
            for (Handle up = transform.parent; !up.IsNull(); up = space.transforms.components.at(up).parent)
            {
                ASSERT_TRUE(seen.insert(up.Value()).second) << "cycle";
            }
        }
    }

    std::vector<GameObjectHandle> live;
};

TEST_F(TransformModel, RandomStepsKeepTheTreeWhole)
{
    std::mt19937 random(777);
    LogCapture capture;
    const auto pick = [&] { return live[random() % live.size()]; };
    for (int step = 0; step < 6000; ++step)
    {
        const uint32_t choice = random() % 100;
        if (choice < 30 || live.size() < 2)
        {
            live.push_back(
                NewObject({static_cast<float>(random() % 200) - 100.0f, static_cast<float>(random() % 50)},
                          static_cast<float>(random() % 628) / 100.0f));
        }
        else if (choice < 65)
        {
            const GameObjectHandle child = pick();
            const GameObjectHandle parent = pick();
            if (Of(child).IsDescendant(HandleOf(parent)))
            {
                continue;
            }
            const bool keepLocal = random() % 2 == 0;
            const Vec2 before = Of(child).GetWorldPosition();
            Of(child).SetParent(HandleOf(parent), keepLocal);
            if (!keepLocal)
            {
                ExpectNear(Of(child).GetWorldPosition(), before, 5e-2f);
            }
        }
        else if (choice < 75)
        {
            const GameObjectHandle child = pick();
            const bool keepLocal = random() % 2 == 0;
            const Vec2 before = Of(child).GetWorldPosition();
            Of(child).ClearParent(keepLocal);
            if (!keepLocal)
            {
                ExpectNear(Of(child).GetWorldPosition(), before, 5e-2f);
            }
        }
        else if (choice < 90)
        {
            // Marked objects stay in the tree until the frame ends, but the model stops using them.
            pick().Get().Destroy();
            std::erase_if(live, [](GameObjectHandle handle) { return handle.Get().destroyed; });
        }
        else
        {
            space.DeleteDestroyed(game);
        }
        if (step % 50 == 0)
        {
            ASSERT_NO_FATAL_FAILURE(CheckTree()) << "step " << step;
        }
    }
    EXPECT_EQ(capture.Count(LogLevel::Error), 0u);
    EXPECT_EQ(capture.Count(LogLevel::Fatal), 0u);
}

} // namespace
