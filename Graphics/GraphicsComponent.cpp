#include "Graphics/GraphicsComponent.h"

#include "Components/Space.h"

namespace Components::Graphics
{

GraphicsComponent::GraphicsComponent(GameObjectHandle ownerHandle) : Component(ownerHandle)
{
    GameObject& object = owner.Get();
    transform = object.GetTransform();
    if (transform.IsNull())
    {
        transform = object.AddComponent(Transform);
    }
}

GraphicsComponent::GraphicsComponent(GameObjectHandle ownerHandle, LeaveTransformMissing)
    : Component(ownerHandle), transform(owner.Get().GetTransform())
{
}

} // namespace Components::Graphics
