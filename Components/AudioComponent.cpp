#include "Components/AudioComponent.h"

#include "Components/Space.h"

namespace Components
{

AudioComponent::AudioComponent(GameObjectHandle ownerHandle) : Component(ownerHandle)
{
    GameObject& object = owner.Get();
    transform = object.GetTransform();
    if (transform.IsNull())
    {
        transform = object.AddComponent(Transform);
    }
}

} // namespace Components
