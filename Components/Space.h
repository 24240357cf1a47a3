#pragma once

// A Space is a world: a node of the tree of spaces that the main loop walks, with a clock of its own.
// Children are a chain of owning pointers with the newest child at the head. The root lives in the Game;
// every other space is on the heap and frees itself in Destroy. Nothing frees a space in the middle of an
// update: scripts only set destroyRequested, which the loop serves at the next frame start.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Core
{
class Game;
}

class Space
{
public:
    Space() = default;
    ~Space();
    // Handles hold a space's address: it never moves.
    Space(const Space&) = delete;
    Space& operator=(const Space&) = delete;

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
    // Loads the levels of the flagged spaces of this subtree, children before their parents.
    void LoadScheduledLevels(Core::Game& game);
    // Destroys the children, then this space. A child space is freed here: nothing may touch it after.
    void Destroy(Core::Game& game);

    // Called on the root: the tree in post-order (children in list order, each space after its
    // descendants, the root last), then stably sorted by priority, highest first. Refills the vector.
    void GetSortedSpaces(std::vector<Space*>& sorted);

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
