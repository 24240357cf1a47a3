#pragma once

// A solid rectangle in one colour at its transform. It takes part in the sort, but drawing only queues a
// debug square, so squares land on top of everything else a Space draws.

#include "Components/Vec2.h"
#include "Graphics/Colour.h"
#include "Graphics/GraphicsComponent.h"

#include <cstdint>

namespace Components::Graphics
{

class SquareComponent : public GraphicsComponent
{
public:
    explicit SquareComponent(GameObjectHandle ownerHandle) : GraphicsComponent(ownerHandle) {}

    // Raises if the transform has gone: a square can't be placed without one.
    void Draw(::Graphics::GraphicsSystem& graphics, Space& space) override;

    ::Graphics::Colour colour;
    // Multiplied by the transform's scale.
    Vec2 size{1.0f, 1.0f};
    uint32_t slot = 0;
};

} // namespace Components::Graphics
