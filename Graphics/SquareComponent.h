#pragma once

// A coloured square drawn at its transform. Its state comes with the graphics system.

#include "Graphics/GraphicsComponent.h"

#include <cstdint>

namespace Components::Graphics
{

class SquareComponent : public GraphicsComponent
{
public:
    explicit SquareComponent(GameObjectHandle ownerHandle) : GraphicsComponent(ownerHandle) {}

    uint32_t slot = 0;
};

} // namespace Components::Graphics
