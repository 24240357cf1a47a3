#pragma once

// A sound that an object plays. Its state comes with the audio system.

#include "Components/Component.h"

#include <cstdint>

namespace Components
{

class AudioComponent : public Component
{
public:
    explicit AudioComponent(GameObjectHandle ownerHandle) : Component(ownerHandle) {}

    uint32_t slot = 0;
};

} // namespace Components
