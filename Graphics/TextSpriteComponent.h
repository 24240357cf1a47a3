#pragma once

// A line of text drawn at its transform. Its state comes with the graphics system.

#include "Graphics/GraphicsComponent.h"

#include <cstdint>

namespace Components::Graphics
{

class TextSpriteComponent : public GraphicsComponent
{
public:
    explicit TextSpriteComponent(GameObjectHandle ownerHandle) : GraphicsComponent(ownerHandle) {}

    uint32_t slot = 0;
};

} // namespace Components::Graphics
