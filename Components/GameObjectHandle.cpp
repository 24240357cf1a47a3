#include "Components/GameObjectHandle.h"

#include "Components/Space.h"
#include "Debug/Logger.h"

GameObject& GameObjectHandle::Get() const
{
    if (space == nullptr)
    {
        Logger::Raise("GameObject", "GameObjectHandle has no space!");
    }
    GameObject* object = space->objects.Find(handle);
    if (object == nullptr)
    {
        Logger::Raise("GameObject", "Tried to access a NULL gameobject!");
    }
    return *object;
}

bool GameObjectHandle::IsValid() const
{
    return space != nullptr && space->objects.Find(handle) != nullptr;
}
