#pragma once

// A string in the engine's bitmap font at its transform: one glyph per byte, the transform's position the
// top left corner of the first cell, its own scale the size of a cell in world units.

#include "Graphics/Colour.h"
#include "Graphics/GraphicsComponent.h"

#include <cstdint>
#include <string>

namespace Components::Graphics
{

class TextSpriteComponent : public GraphicsComponent
{
public:
    explicit TextSpriteComponent(GameObjectHandle ownerHandle) : GraphicsComponent(ownerHandle) {}

    void Draw(::Graphics::GraphicsSystem& graphics, Space& space) override;

    ::Graphics::Colour colour;
    std::string text;
    uint32_t slot = 0;
};

} // namespace Components::Graphics
