#include "Components/ColliderComponent.h"

#include "Components/Space.h"
#include "Debug/Logger.h"

#include <utility>

namespace Components
{

ColliderComponent::ColliderComponent(GameObjectHandle ownerHandle) : Component(ownerHandle)
{
    GameObject& object = owner.Get();
    transform = object.GetTransform();
    if (transform.IsNull())
    {
        Logger::Log("Physics", LogLevel::Warning, "Collider component does not have a transform");
        transform = object.AddComponent(Transform);
    }
    // Half the mean of the two scale components, fixed now: later changes of scale don't resize it.
    const Vec2 scale = owner.space->transforms.components.at(transform).scale;
    radius = (scale.x + scale.y) * 0.25f;
    halfHeight = radius;
}

ColliderComponent::~ColliderComponent()
{
    if (collisionEvents > 0)
    {
        Logger::Log("Collider", LogLevel::Error, "Collider lua event index was not cleaned up!");
    }
}

ColliderComponent::ColliderComponent(ColliderComponent&& other) noexcept : Component(other.owner)
{
    TakeFrom(other);
}

ColliderComponent& ColliderComponent::operator=(ColliderComponent&& other) noexcept
{
    if (this != &other)
    {
        owner = other.owner;
        TakeFrom(other);
    }
    return *this;
}

void ColliderComponent::TakeFrom(ColliderComponent& other) noexcept
{
    destroyed = other.destroyed;
    transform = other.transform;
    type = other.type;
    radius = other.radius;
    halfHeight = other.halfHeight;
    restitution = other.restitution;
    collisionEvents = std::exchange(other.collisionEvents, 0);
    ghost = other.ghost;
    collisionGroup = other.collisionGroup;
    slot = other.slot;
}

} // namespace Components
