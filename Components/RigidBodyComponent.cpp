#include "Components/RigidBodyComponent.h"

#include "Components/Space.h"

namespace Components
{

RigidBodyComponent::RigidBodyComponent(GameObjectHandle ownerHandle) : Component(ownerHandle)
{
    GameObject& object = owner.Get();
    transform = object.GetTransform();
    if (transform.IsNull())
    {
        transform = object.AddComponent(Transform);
    }
}

} // namespace Components
