#pragma once

// A bitmap drawn at its transform. Its state comes with the graphics system.

#include "Graphics/GraphicsComponent.h"

#include <cstdint>

namespace Components::Graphics
{

class SpriteComponent : public GraphicsComponent
{
public:
    explicit SpriteComponent(GameObjectHandle ownerHandle) : GraphicsComponent(ownerHandle) {}

    uint32_t slot = 0;
};

} // namespace Components::Graphics
