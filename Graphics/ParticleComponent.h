#pragma once

// A particle effect drawn at its transform. Its state comes with the graphics system.

#include "Graphics/GraphicsComponent.h"

#include <cstdint>

namespace Components::Graphics
{

class ParticleComponent : public GraphicsComponent
{
public:
    explicit ParticleComponent(GameObjectHandle ownerHandle) : GraphicsComponent(ownerHandle) {}

    uint32_t slot = 0;
};

} // namespace Components::Graphics
