#pragma once

// A particle effect drawn at its transform. Its particles come with the particle system; until then it
// takes its place among the drawables and draws nothing.

#include "Graphics/GraphicsComponent.h"

#include <cstdint>

namespace Components::Graphics
{

class ParticleComponent : public GraphicsComponent
{
public:
    explicit ParticleComponent(GameObjectHandle ownerHandle) : GraphicsComponent(ownerHandle) {}

    void Draw(::Graphics::GraphicsSystem&, Space&) override {}

    uint32_t slot = 0;
};

} // namespace Components::Graphics
