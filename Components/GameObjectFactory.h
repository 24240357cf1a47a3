#pragma once

// The objects of one space, with the list of those marked for deletion in marking order. It is the first
// part of every Space; `space` is that space's address, which goes into every handle it gives out and
// against which incoming handles are tested.

#include "Components/GameObject.h"
#include "Components/Slotmap.h"

#include <cstdint>
#include <vector>

struct lua_State;

class GameObjectFactory
{
public:
    explicit GameObjectFactory(Space* owner) : space(owner) {}

    // Inserting may move every object of this space: hold no reference to one across this call.
    GameObjectHandle CreateObject();
    // Null if the handle doesn't resolve; raises on a handle of another space.
    GameObject* FindObject(GameObjectHandle handle);
    // For a marked object; raises on an object of another space.
    void AddToDestroyList(GameObject& object);
    // Deletes the objects on the destroy list, flagging their components and giving up their script
    // handles' references in L (null when no Lua state exists), and returns how many went.
    uint32_t DeleteDestroyedObjects(lua_State* L);
    // Marks every object of the space for deletion.
    void DestroyAllObjects();

    Slotmap<GameObject> objects;
    std::vector<Handle> destroyList;
    Space* space;
};
