#include "Components/Space.h"
#include "Core/Game.h"
#include "Debug/Profile.h"
#include "Support/LogCapture.h"

#include <gtest/gtest.h>
#include <memory>

namespace
{

// Records, when a space's objects are reported deleted, what is then left in that space.
class RecordingSystem final : public Core::System
{
public:
    const char* Name() const override { return "Recording"; }
    bool Initialise(Core::Window*) override { return true; }
    void Update(Core::Game&, Space&, double, double, double) override {}
    void RegisterScriptTypes(Lua::LuaSystem&) override {}
    void ObjectsDestroyed(Core::Game&, Space& space) override
    {
        calls.push_back(Call{&space, space.objects.size(), space.transforms.Count()});
    }
    void Shutdown() override {}

    struct Call
    {
        Space* space;
        uint32_t objects;
        uint32_t transforms;
    };
    std::vector<Call> calls;
};

std::vector<std::string> SortedNames(Space& root)
{
    std::vector<Space*> sorted;
    root.GetSortedSpaces(sorted);
    std::vector<std::string> names;
    for (const Space* space : sorted)
    {
        names.push_back(space->levelName);
    }
    return names;
}

std::vector<std::string> ChildNames(const Space& space)
{
    std::vector<std::string> names;
    for (const Space* child = space.firstChild.get(); child != nullptr; child = child->nextSibling.get())
    {
        names.push_back(child->levelName);
    }
    return names;
}

class Spaces : public testing::Test
{
protected:
    Spaces() { game.AddSystem(recorder, nullptr); }
    ~Spaces() override
    {
        if (!destroyed)
        {
            root.Destroy(game);
        }
    }

    GameObjectHandle AddObject(Space& space, GameObjectHandle parent = {})
    {
        const GameObjectHandle handle = space.CreateObject();
        handle.Get().AddComponent(Components::Transform);
        if (parent.space != nullptr)
        {
            space.transforms.components.at(handle.Get().GetTransform())
                .SetParent(parent.Get().GetTransform(), true);
        }
        return handle;
    }

    Space& Child(Space& parent, const std::string& name, int32_t priority = 0)
    {
        Space& child = parent.CreateChild();
        child.levelName = name;
        child.priority = priority;
        return child;
    }

    Core::Game game{nullptr, Core::GameSettings{}};
    Space& root = game.rootSpace;
    RecordingSystem recorder;
    bool destroyed = false;
};

TEST_F(Spaces, SortedSpacesArePostOrderThenStableByPriorityDescending)
{
    root.levelName = "root";
    Space& a = Child(root, "a");
    Child(a, "a1");
    Child(a, "a2");
    Child(root, "b");
    EXPECT_EQ(SortedNames(root), (std::vector<std::string>{"b", "a2", "a1", "a", "root"}));

    Child(root, "low", -1);
    Child(a, "high", 2);
    Child(root, "one", 1);
    EXPECT_EQ(SortedNames(root),
              (std::vector<std::string>{"high", "one", "b", "a2", "a1", "a", "root", "low"}));
}

// Systems hear of deletions after the objects went and before the sweep, children first, and only where
// something died; the sum counts objects and components; the work is timed under its own profile block.
TEST_F(Spaces, DeletionsAreSummedChildrenFirstAndSystemsHearBeforeTheSweep)
{
    Space& a = root.CreateChild();
    Space& a1 = a.CreateChild();
    Space& b = root.CreateChild();
    const GameObjectHandle parent = AddObject(root);
    AddObject(root, parent);
    AddObject(root);
    EXPECT_EQ(root.DeleteDestroyedTree(game), 0u);
    EXPECT_TRUE(recorder.calls.empty()) << "nothing died, nobody is told";

    parent.Get().Destroy();
    for (Space* space : {&a, &a1, &a1, &b})
    {
        AddObject(*space).Get().Destroy();
    }
    EXPECT_EQ(root.DeleteDestroyedTree(game), 12u);
    std::vector<Space*> order;
    for (const RecordingSystem::Call& call : recorder.calls)
    {
        order.push_back(call.space);
    }
    EXPECT_EQ(order, (std::vector<Space*>{&b, &a1, &a, &root}));
    EXPECT_EQ(recorder.calls.back().objects, 1u);
    EXPECT_EQ(recorder.calls.back().transforms, 3u) << "the flagged transforms are still there to be read";
    EXPECT_EQ(root.transforms.Count(), 1u);
    bool timed = false;
    for (const Debug::ProfileRecord& record : Debug::CurrentProfile())
    {
        timed = timed || std::string(record.name) == "Delete Destroyed Objects";
    }
    EXPECT_TRUE(timed);
}

// Flagged spaces go with everything below them, flagged or not, objects included; the rest stays.
TEST_F(Spaces, DestroyFlaggedTakesFlaggedSpacesWithEverythingBelow)
{
    Space& a = Child(root, "a");
    EXPECT_EQ(a.parent, &root);
    Child(a, "a1");
    Space& b = Child(root, "b");
    Space& b1 = Child(b, "b1");
    Space& b1x = Child(b1, "b1x");
    const GameObjectHandle parent = AddObject(b1x);
    AddObject(b1x, parent);
    AddObject(b1);
    Child(b, "b2");
    Child(root, "c").destroyRequested = true;
    b1.destroyRequested = true;
    const GameObjectHandle survivor = AddObject(root);
    EXPECT_TRUE(root.IsDestroyRequested());

    LogCapture capture;
    root.DestroyFlagged(game);
    EXPECT_EQ(ChildNames(root), (std::vector<std::string>{"b", "a"}));
    EXPECT_EQ(ChildNames(b), std::vector<std::string>{"b2"});
    EXPECT_FALSE(root.IsDestroyRequested());
    ASSERT_EQ(recorder.calls.size(), 2u);
    EXPECT_EQ(recorder.calls[0].space, &b1x);
    EXPECT_EQ(recorder.calls[0].objects, 0u);
    EXPECT_EQ(recorder.calls[0].transforms, 2u);
    EXPECT_TRUE(survivor.IsValid());
    EXPECT_EQ(capture.Count(LogLevel::Error), 0u);

    a.destroyRequested = true;
    root.DestroyFlagged(game);
    EXPECT_EQ(ChildNames(root), std::vector<std::string>{"b"});
    root.Destroy(game);
    destroyed = true;
    EXPECT_TRUE(root.objects.empty());
    EXPECT_EQ(root.transforms.Count(), 0u);
}

TEST_F(Spaces, FailedLevelsAreReportedChildrenFirstNotRetriedAndReloadKeepsNames)
{
    // Level files are read by the Lua state; none of these files exists.
    game.lua.Initialise(nullptr);
    Space& child = root.CreateChild();
    Space& grandchild = child.CreateChild();
    EXPECT_FALSE(root.IsLevelScheduled());
    grandchild.ScheduleLevel("Levels/Deep.lvl");
    EXPECT_TRUE(root.IsLevelScheduled()) << "a schedule is found at any depth";
    root.ScheduleLevel("Levels/Root.lvl");
    child.levelName = "Levels/Quiet.lvl";
    const GameObjectHandle kept = AddObject(root);

    LogCapture capture;
    root.LoadScheduledLevels(game);
    root.LoadScheduledLevels(game);
    std::vector<std::string> failures;
    for (const std::string& message : capture.Messages("Space", LogLevel::Error))
    {
        if (message.starts_with("Failed to load level: "))
        {
            failures.push_back(message);
        }
    }
    EXPECT_EQ(failures, (std::vector<std::string>{"Failed to load level: Levels/Deep.lvl",
                                                  "Failed to load level: Levels/Root.lvl"}));
    EXPECT_FALSE(root.IsLevelScheduled());
    EXPECT_TRUE(kept.IsValid()) << "a level that fails leaves the old objects";

    // A reload schedules the space and those below it again, each with its own name.
    child.ScheduleReload();
    EXPECT_TRUE(child.levelScheduled && grandchild.levelScheduled && !root.levelScheduled);
    EXPECT_EQ(child.levelName, "Levels/Quiet.lvl");
    EXPECT_EQ(grandchild.levelName, "Levels/Deep.lvl");
    game.lua.Shutdown();
}

TEST_F(Spaces, ManySiblingsAndADeepChainAreFreedWithoutTrouble)
{
    for (int index = 0; index < 100000; ++index)
    {
        root.CreateChild();
    }
    Space* deepest = &root;
    for (int depth = 0; depth < 1000; ++depth)
    {
        deepest = &deepest->CreateChild();
    }
    root.Destroy(game);
    destroyed = true;
    EXPECT_EQ(root.firstChild, nullptr);
    // A Space torn down without Destroy, as by a game that ends mid-run, unlinks its children one by one.
    auto detached = std::make_unique<Space>();
    for (int index = 0; index < 100000; ++index)
    {
        detached->CreateChild();
    }
    detached.reset();
}

} // namespace
