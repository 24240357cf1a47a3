#include "Components/Space.h"

#include "Core/Game.h"
#include "Debug/Logger.h"
#include "Debug/Profile.h"
#include "Lua/LevelLoader.h"

#include <algorithm>

Space::Space()
    : GameObjectFactory(this), factories{&transforms, &rigidBodies, &squares,   &sprites, &textSprites,
                                         &particles,  &audio,       &colliders, &scripts}
{
}

Space::~Space()
{
    // The objects are the base and would die after the factories that their destructor's checks read:
    // anything the flow left behind goes first, while the factories are still there.
    objects = Slotmap<GameObject>();
    // Unlink siblings one by one, so a long child list can't recurse deeply through the owning chain.
    while (firstChild)
    {
        firstChild = std::move(firstChild->nextSibling);
    }
}

Space& Space::CreateChild()
{
    auto child = std::make_unique<Space>();
    child->parent = this;
    child->nextSibling = std::move(firstChild);
    firstChild = std::move(child);
    return *firstChild;
}

void Space::ScheduleLevel(const std::string& name)
{
    levelName = name;
    levelScheduled = true;
}

void Space::ScheduleReload()
{
    levelScheduled = true;
    for (Space* child = firstChild.get(); child != nullptr; child = child->nextSibling.get())
    {
        child->ScheduleReload();
    }
}

bool Space::IsLevelScheduled() const
{
    if (levelScheduled)
    {
        return true;
    }
    for (const Space* child = firstChild.get(); child != nullptr; child = child->nextSibling.get())
    {
        if (child->IsLevelScheduled())
        {
            return true;
        }
    }
    return false;
}

bool Space::IsDestroyRequested() const
{
    if (destroyRequested)
    {
        return true;
    }
    for (const Space* child = firstChild.get(); child != nullptr; child = child->nextSibling.get())
    {
        if (child->IsDestroyRequested())
        {
            return true;
        }
    }
    return false;
}

void Space::DestroyFlagged(Core::Game& game)
{
    if (destroyRequested)
    {
        Destroy(game);
        return;
    }
    // A visited child may free itself, so its sibling link is read first.
    Space* child = firstChild.get();
    while (child != nullptr)
    {
        Space* next = child->nextSibling.get();
        child->DestroyFlagged(game);
        child = next;
    }
}

Components::IComponentFactory* Space::GetFactory(int32_t type)
{
    if (!Components::IsComponentType(type))
    {
        Logger::Raise("ComponentFactory",
                      "Tried to get nonexisting component factory of type " + std::to_string(type));
    }
    return factories[static_cast<size_t>(type)];
}

void Space::LoadScheduledLevels(Core::Game& game)
{
    for (Space* child = firstChild.get(); child != nullptr; child = child->nextSibling.get())
    {
        child->LoadScheduledLevels(game);
    }
    if (levelScheduled && !LoadLevel(game))
    {
        Logger::Log("Space", LogLevel::Error, "Failed to load level: " + levelName);
    }
}

// The old objects go only once the new file has been read, so a level with a syntax error leaves the old
// one in place; they go before the chunk runs, so what the level makes never meets them.
bool Space::LoadLevel(Core::Game& game)
{
    levelScheduled = false;
    lua_State* L = game.lua.state;
    const int top = Lua::BeginLevelLoad(L, *this);
    if (top < 0)
    {
        return false;
    }
    DestroyAllObjects();
    DeleteDestroyed(game);
    if (!Lua::FinishLevelLoad(L, *this, top))
    {
        return false;
    }
    // Every level starts with the camera at the origin, showing 20 units from top to bottom.
    game.graphics.SetCamera(Vec2{}, 20.0f);
    return true;
}

uint32_t Space::DeleteDestroyed(Core::Game& game)
{
    Debug::ProfileBlock block("Delete Destroyed Objects");
    uint32_t deleted = DeleteDestroyedObjects(game.lua.state);
    if (deleted == 0)
    {
        return 0;
    }
    // Systems release what flagged components hold outside the arrays while the components are still there.
    for (Core::System* system : game.systems)
    {
        system->ObjectsDestroyed(game, *this);
    }
    for (Components::IComponentFactory* factory : factories)
    {
        deleted += factory->DeleteDestroyed();
    }
    return deleted;
}

uint32_t Space::DeleteDestroyedTree(Core::Game& game)
{
    uint32_t deleted = 0;
    for (Space* child = firstChild.get(); child != nullptr; child = child->nextSibling.get())
    {
        deleted += child->DeleteDestroyedTree(game);
    }
    return deleted + DeleteDestroyed(game);
}

void Space::Destroy(Core::Game& game)
{
    while (firstChild)
    {
        firstChild->Destroy(game);
    }
    DestroyAllObjects();
    DeleteDestroyed(game);
    game.lua.ForgetSpace(*this);
    if (parent == nullptr)
    {
        Logger::Log("Space", LogLevel::Debug, "Deleting top space");
        return;
    }
    std::unique_ptr<Space>* link = &parent->firstChild;
    while (link->get() != this)
    {
        link = &(*link)->nextSibling;
    }
    std::unique_ptr<Space> self = std::move(*link);
    *link = std::move(nextSibling);
    // self frees this space on leaving the scope; nothing after this line may touch a member.
}

void Space::CollectPostOrder(std::vector<Space*>& spaces)
{
    for (Space* child = firstChild.get(); child != nullptr; child = child->nextSibling.get())
    {
        child->CollectPostOrder(spaces);
    }
    spaces.push_back(this);
}

void Space::GetSortedSpaces(std::vector<Space*>& sorted)
{
    sorted.clear();
    CollectPostOrder(sorted);
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const Space* a, const Space* b) { return a->priority > b->priority; });
}
