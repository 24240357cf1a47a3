#include "Components/Space.h"
#include "Core/Game.h"

#include <gtest/gtest.h>

namespace
{

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

class SpaceTree : public testing::Test
{
protected:
    Core::Game game{nullptr, Core::GameSettings{}};
    Space& root = game.rootSpace;

    Space& Child(Space& parent, const std::string& name, int32_t priority = 0)
    {
        Space& child = parent.CreateChild();
        child.levelName = name;
        child.priority = priority;
        return child;
    }
};

TEST_F(SpaceTree, SortedSpacesArePostOrderThenStableByPriorityDescending)
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

TEST_F(SpaceTree, DestroyFlaggedTakesFlaggedSpacesWithEverythingBelow)
{
    Space& a = Child(root, "a");
    EXPECT_EQ(a.parent, &root);
    Child(a, "a1");
    Space& b = Child(root, "b");
    Space& b1 = Child(b, "b1");
    Child(b1, "b1x");
    Child(b, "b2");
    Child(root, "c").destroyRequested = true;
    b1.destroyRequested = true;
    EXPECT_TRUE(root.IsDestroyRequested());

    root.DestroyFlagged(game);
    EXPECT_EQ(ChildNames(root), (std::vector<std::string>{"b", "a"}));
    EXPECT_EQ(ChildNames(b), std::vector<std::string>{"b2"});
    EXPECT_FALSE(root.IsDestroyRequested());

    a.destroyRequested = true; // unflagged children go with their parent
    root.DestroyFlagged(game);
    EXPECT_EQ(ChildNames(root), std::vector<std::string>{"b"});
}

TEST_F(SpaceTree, ManySiblingsAndADeepChainAreFreedWithoutTrouble)
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
    EXPECT_EQ(root.firstChild, nullptr);
}

} // namespace
