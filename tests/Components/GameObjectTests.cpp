#include "Components/Space.h"
#include "Core/Game.h"
#include "Support/LogCapture.h"
#include "Support/RaiseCheck.h"

#include <climits>
#include <gtest/gtest.h>

namespace
{

class GameObjects : public testing::Test
{
protected:
    ~GameObjects() override { space.Destroy(game); }

    // Creating may move every object: callers hold handles, and resolve them anew after each creation.
    GameObjectHandle NewObject(const std::string& name, GameObjectHandle parent = {})
    {
        const GameObjectHandle handle = space.CreateObject();
        GameObject& object = handle.Get();
        object.name = name;
        object.AddComponent(Components::Transform);
        if (parent.space != nullptr)
        {
            space.transforms.components.at(object.GetTransform())
                .SetParent(parent.Get().GetTransform(), true);
        }
        return handle;
    }

    std::vector<std::string> DestroyListNames()
    {
        std::vector<std::string> names;
        for (const Handle handle : space.destroyList)
        {
            names.push_back(space.objects.at(handle).name);
        }
        return names;
    }

    Core::Game game{nullptr, Core::GameSettings{}};
    Space& space = game.rootSpace;
};

TEST_F(GameObjects, ComponentsAreAddedOnceAndRemovedWithExactMessages)
{
    const GameObjectHandle handle = space.CreateObject();
    GameObject& object = handle.Get();
    object.name = "Hero";
    const std::string id = std::to_string(handle.handle.Value());
    LogCapture capture;

    const Handle sprite = object.AddComponent(Components::Sprite);
    EXPECT_EQ(space.sprites.components.at(sprite).owner.handle, handle.handle);
    EXPECT_TRUE(object.HasComponent(Components::Sprite));
    EXPECT_EQ(object.AddComponent(Components::Sprite), sprite);
    object.RemoveComponent(Components::Sprite);
    object.RemoveComponent(Components::Sprite);
    EXPECT_FALSE(object.HasComponent(Components::Sprite));
    EXPECT_TRUE(object.GetComponent(Components::Sprite).IsNull());
    EXPECT_EQ(capture.Messages("GameObject", LogLevel::Warning),
              (std::vector<std::string>{"Tried to add a existing component: Sprite to Hero (" + id + ")",
                                        "Tried to remove a non-existent component: Sprite from Hero (" + id +
                                            ")"}));
}

TEST_F(GameObjects, TypeNumbersOutsideTheTablesAreRefusedNeverUsed)
{
    GameObject& object = space.CreateObject().Get();
    for (const int32_t type : {9, -1, INT32_MAX, INT32_MIN})
    {
        const std::string number = std::to_string(type);
        {
            LogCapture capture;
            EXPECT_FALSE(object.HasComponent(type));
            object.RemoveComponent(type);
            EXPECT_EQ(capture.Messages("GameObject", LogLevel::Error),
                      (std::vector<std::string>{
                          "Tried to check if a component has an invalid component type: " + number,
                          "Tried to remove an invalid component type: " + number}));
        }
        ExpectRaise([&] { object.AddComponent(type); }, "GameObject",
                    "Tried to create an invalid component type: " + number);
        ExpectRaise([&] { object.GetComponent(type); }, "GameObject",
                    "Tried to get an invalid component type: " + number);
        ExpectRaise([&] { space.GetFactory(type); }, "ComponentFactory",
                    "Tried to get nonexisting component factory of type " + number);
    }
}

TEST_F(GameObjects, HandlesOfOtherSpacesAndGoneObjectsRaiseOrFail)
{
    Space& other = space.CreateChild();
    const GameObjectHandle foreign = other.CreateObject();
    const GameObjectHandle local = space.CreateObject();
    // New objects share the null handle's name and know their own handle.
    EXPECT_EQ(local.Get().name, "Object 4294967295");
    EXPECT_EQ(local.Get().self.handle, local.handle);
    EXPECT_EQ(local.Get().self.space, &space);
    EXPECT_TRUE(local.IsValid());
    EXPECT_FALSE((GameObjectHandle{nullptr, local.handle}.IsValid()));
    ExpectRaise([&] { space.FindObject(foreign); }, "GameObjectFactory",
                "Tried to index a game object with the wrong space");
    ExpectRaise([&] { space.AddToDestroyList(foreign.Get()); }, "GameObjectFactory",
                "Tried to destroy a game object with wrong space!");
    ExpectRaise(
        [&] {
            GameObjectHandle{nullptr, local.handle}.Get();
        },
        "GameObject", "GameObjectHandle has no space!");

    local.Get().Destroy();
    space.DeleteDestroyed(game);
    const GameObjectHandle reused = space.CreateObject();
    EXPECT_EQ(reused.handle.slot, local.handle.slot);
    EXPECT_FALSE(local.IsValid());
    EXPECT_EQ(space.FindObject(local), nullptr);
    ExpectRaise([&] { local.Get(); }, "GameObject", "Tried to access a NULL gameobject!");
    ExpectRaise([&] { GameObject(GameObjectHandle{}).GetSpace(); }, "GameObject", "GameObject has no space!");
}

TEST_F(GameObjects, DestroyingAParentTakesItsDescendantsDeepestFirst)
{
    const GameObjectHandle root = NewObject("root");
    const GameObjectHandle a = NewObject("a", root);
    const GameObjectHandle b = NewObject("b", root);
    NewObject("a1", a);
    NewObject("b1", b);
    const GameObjectHandle bystander = NewObject("bystander");

    b.Get().Destroy();
    EXPECT_EQ(DestroyListNames(), (std::vector<std::string>{"b1", "b"}));
    root.Get().Destroy();
    root.Get().Destroy();
    // b is already marked: its subtree isn't listed twice. Children in list order, newest first.
    EXPECT_EQ(DestroyListNames(), (std::vector<std::string>{"b1", "b", "a1", "a", "root"}));

    LogCapture capture;
    EXPECT_EQ(space.DeleteDestroyedObjects(nullptr), 5u);
    EXPECT_EQ(space.objects.size(), 1u);
    EXPECT_TRUE(bystander.IsValid());
    EXPECT_EQ(capture.Entries().size(), 0u) << capture.Entries()[0].message;
    EXPECT_EQ(space.DeleteDestroyed(game), 0u) << "the list was emptied";

    // Destroying all marks every object once, children included.
    NewObject("child", NewObject("parent"));
    space.DestroyAllObjects();
    EXPECT_EQ(space.destroyList.size(), 3u);
    space.DeleteDestroyed(game);
    EXPECT_TRUE(space.objects.empty());
    EXPECT_EQ(space.transforms.Count(), 0u);
}

TEST_F(GameObjects, TheDestroyListToleratesStaleAndLivingEntries)
{
    const GameObjectHandle living = space.CreateObject();
    const GameObjectHandle marked = space.CreateObject();
    marked.Get().Destroy();
    LogCapture capture;
    space.AddToDestroyList(living.Get());
    space.destroyList.push_back(marked.handle); // twice: the second no longer resolves
    EXPECT_EQ(space.DeleteDestroyedObjects(nullptr), 2u);
    EXPECT_EQ(capture.Messages("GameObjectFactory", LogLevel::Error),
              std::vector<std::string>{"Added a living gameobject to the factory destroy list"});
    EXPECT_EQ(capture.Messages("GameObjectFactory", LogLevel::Warning),
              (std::vector<std::string>{"Deleting a living GameObject",
                                        "Tried to delete a non-existent GameObject"}));
    EXPECT_TRUE(space.objects.empty());
}

TEST_F(GameObjects, ADestructorReportsWhatTheFlowLeftBehind)
{
    LogCapture capture;
    {
        GameObject leftover(GameObjectHandle{&space, Handle{}});
        leftover.components[Components::Audio] = Handle{0, 1};
        leftover.luaRef = 3;
    }
    EXPECT_EQ(capture.Messages("GameObject", LogLevel::Error),
              (std::vector<std::string>{"GameObject's lua handle wasn't cleaned up!",
                                        "GameObject component Audio wasn't cleaned up!"}));

    capture.Clear();
    const GameObjectHandle parent = NewObject("parent");
    NewObject("child", parent);
    {
        GameObject copy(GameObjectHandle{&space, Handle{}});
        copy.components[Components::Transform] = parent.Get().GetTransform();
    }
    EXPECT_EQ(capture.Messages("GameObject", LogLevel::Error),
              (std::vector<std::string>{"GameObject component Transform wasn't cleaned up!",
                                        "GameObject's children were not cleaned up"}));
}

} // namespace
