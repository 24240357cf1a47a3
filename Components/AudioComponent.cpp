#include "Components/AudioComponent.h"

#include "Components/Space.h"

namespace Components
{

AudioComponent::AudioComponent(GameObjectHandle ownerHandle)
    : Component(ownerHandle), transform(owner.Get().EnsureTransform())
{
}

} // namespace Components
