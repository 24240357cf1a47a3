#pragma once

// A Space is a world: it owns a set of game objects and all their components, one factory per component
// type, and is a node of the tree of spaces that the main loop walks, with a clock of its own.
// Children are a chain of owning pointers with the newest child at the head. The root lives in the Game;
// every other space is on the heap and frees itself in Destroy. Nothing frees a space in the middle of an
// update: scripts only set destroyRequested, which the loop serves at the next frame start.
// The drawable components live with the graphics module, yet a space holds their factories by value, so
// this header includes them against the usual direction.

#include "Components/AudioComponent.h"
#include "Components/ColliderComponent.h"
#include "Components/ComponentFactory.h"
#include "Components/ComponentType.h"
#include "Components/GameObjectFactory.h"
#include "Components/RigidBodyComponent.h"
#include "Components/ScriptComponent.h"
#include "Components/TransformComponent.h"
#include "Graphics/ParticleComponent.h"
#include "Graphics/SpriteComponent.h"
#include "Graphics/SquareComponent.h"
#include "Graphics/TextSpriteComponent.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Core
{
class Game;
}

class Space : public GameObjectFactory
{
public:
    Space();
    ~Space();
    // Handles hold a space's address: it is never copied or moved.
    Space(const Space&) = delete;
    Space& operator=(const Space&) = delete;

    // The factory of a component type; raises on a number outside 0..8.
    Components::IComponentFactory* GetFactory(int32_t type);

    // A new child at the head of the child list.
    Space& CreateChild();

    void ScheduleLevel(const std::string& name);
    // Schedules this space and all its descendants, each with its own level name.
    void ScheduleReload();
    // True if this space or any descendant has a level scheduled.
    bool IsLevelScheduled() const;
    // True if this space or any descendant is flagged for destruction.
    bool IsDestroyRequested() const;

    // Destroys every flagged space of this subtree, and with it everything below.
    void DestroyFlagged(Core::Game& game);
    // Loads the levels of the flagged spaces of this subtree, children before their parents; a level that
    // fails is logged and the walk goes on.
    void LoadScheduledLevels(Core::Game& game);
    // Loads levelName and clears levelScheduled; false if the level could not be loaded.
    bool LoadLevel(Core::Game& game);
    // Destroys the children, then this space's objects, then this space. A child space is freed here:
    // nothing may touch it after.
    void Destroy(Core::Game& game);

    // Deletes the objects on the destroy list; if any went, tells every system, then sweeps the factories
    // from type 0 to 8. Returns the count of objects plus the components swept.
    uint32_t DeleteDestroyed(Core::Game& game);
    // DeleteDestroyed on the descendants, children before parents, then on this space; the sum.
    uint32_t DeleteDestroyedTree(Core::Game& game);

    // Called on the root: the tree in post-order (children in list order, each space after its
    // descendants, the root last), then stably sorted by priority, highest first. Refills the vector.
    void GetSortedSpaces(std::vector<Space*>& sorted);

    Components::ComponentFactory<Components::TransformComponent> transforms;
    Components::ComponentFactory<Components::RigidBodyComponent> rigidBodies;
    Components::ComponentFactory<Components::Graphics::SquareComponent> squares;
    Components::ComponentFactory<Components::Graphics::SpriteComponent> sprites;
    Components::ComponentFactory<Components::Graphics::TextSpriteComponent> textSprites;
    Components::ComponentFactory<Components::Graphics::ParticleComponent> particles;
    Components::ComponentFactory<Components::AudioComponent> audio;
    Components::ComponentFactory<Components::ColliderComponent> colliders;
    Components::ComponentFactory<Components::ScriptComponent> scripts;
    // Indexed by component type number, in the order of the members above.
    const std::array<Components::IComponentFactory*, Components::kComponentTypeCount> factories;

    Space* parent = nullptr;
    std::unique_ptr<Space> firstChild;
    std::unique_ptr<Space> nextSibling;
    std::string levelName;
    double time = 0.0;
    double dt = 0.0;
    double timescale = 1.0;
    int32_t priority = 0;
    bool levelScheduled = false;
    bool destroyRequested = false;
    bool paused = false;

private:
    void CollectPostOrder(std::vector<Space*>& spaces);
};
