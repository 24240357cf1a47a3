#include "Components/GameObjectFactory.h"

#include "Debug/Logger.h"

#include <lua.hpp>

GameObjectHandle GameObjectFactory::CreateObject()
{
    const Handle handle = objects.Insert(GameObjectHandle{space, Handle{}});
    objects.at(handle).self = GameObjectHandle{space, handle};
    return GameObjectHandle{space, handle};
}

GameObject* GameObjectFactory::FindObject(GameObjectHandle handle)
{
    if (handle.space != space)
    {
        Logger::Raise("GameObjectFactory", "Tried to index a game object with the wrong space");
    }
    return objects.Find(handle.handle);
}

void GameObjectFactory::AddToDestroyList(GameObject& object)
{
    if (!object.destroyed)
    {
        Logger::Log("GameObjectFactory", LogLevel::Error,
                    "Added a living gameobject to the factory destroy list");
    }
    if (object.self.space != space)
    {
        Logger::Raise("GameObjectFactory", "Tried to destroy a game object with wrong space!");
    }
    destroyList.push_back(object.self.handle);
}

uint32_t GameObjectFactory::DeleteDestroyedObjects(lua_State* L)
{
    uint32_t deleted = static_cast<uint32_t>(destroyList.size());
    for (const Handle handle : destroyList)
    {
        GameObject* object = objects.Find(handle);
        if (object == nullptr)
        {
            Logger::Log("GameObjectFactory", LogLevel::Warning, "Tried to delete a non-existent GameObject");
            --deleted;
            continue;
        }
        if (!object->destroyed)
        {
            Logger::Log("GameObjectFactory", LogLevel::Warning, "Deleting a living GameObject");
        }
        // Type 0 first: the transform leaves its parent's list before anything else goes.
        for (int32_t type = 0; type < Components::kComponentTypeCount; ++type)
        {
            if (!object->components[static_cast<size_t>(type)].IsNull())
            {
                object->RemoveComponent(type);
            }
        }
        // The script's userdata lives on as an orphan whose handle stops resolving with the erase.
        if (object->luaRef > 0 && L != nullptr)
        {
            luaL_unref(L, LUA_REGISTRYINDEX, object->luaRef);
        }
        object->luaRef = 0;
        objects.Erase(handle);
    }
    destroyList.clear();
    return deleted;
}

void GameObjectFactory::DestroyAllObjects()
{
    // Marking moves nothing, so positions up to the count at the start are all the objects there were.
    const uint32_t count = objects.size();
    for (uint32_t position = 0; position < count; ++position)
    {
        objects[position].Destroy();
    }
}
