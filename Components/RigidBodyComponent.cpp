#include "Components/RigidBodyComponent.h"

#include "Components/Space.h"

namespace Components
{

RigidBodyComponent::RigidBodyComponent(GameObjectHandle ownerHandle)
    : Component(ownerHandle), transform(owner.Get().EnsureTransform())
{
}

} // namespace Components
