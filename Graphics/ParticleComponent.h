#pragma once

// A particle effect on a game object: a system of 100,000 particles that starts where the object's
// transform is, turns with it and scales with it, and is drawn in its place in the order by z. Scripts and
// levels assemble the effect by naming policies; a new component emits nothing.
//
// The component moves, never copies: its factory's array growth and the Slotmap's gap filling carry the
// whole system along, live particles included, while the moved-to component looks like a fresh copy of the
// old (no pending pulses, no new particles).

#include "Graphics/Colour.h"
#include "Graphics/GraphicsComponent.h"
#include "Graphics/Particles/ParticleSystem.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace Components::Graphics
{

class ParticleComponent : public GraphicsComponent
{
public:
    static constexpr uint64_t kPoolSize = 100000;

    // Gives the owner a Transform with a Warning if it has none.
    explicit ParticleComponent(GameObjectHandle ownerHandle);
    ParticleComponent(ParticleComponent&& other) noexcept;
    ParticleComponent& operator=(ParticleComponent&& other) noexcept;
    ParticleComponent(const ParticleComponent&) = delete;
    ParticleComponent& operator=(const ParticleComponent&) = delete;

    void Draw(::Graphics::GraphicsSystem& graphics, Space& space) override;
    // Follows the transform, starts the system on the first call, and advances it. A transform that no
    // longer resolves leaves the system where it last was.
    void Update(Space& space, float dt, float spaceTime, float absoluteTime);

    ::Graphics::Particles::ParticleSystem system;
    // Bitmaps loaded by SetFrames; only the first is drawn.
    std::vector<std::shared_ptr<::Graphics::Bitmap>> frames;
    std::vector<::Graphics::UVRect> uvs{::Graphics::defaultUV};
    bool needsStart = true;
    uint32_t slot = 0;

private:
    void TakeFrom(ParticleComponent& other) noexcept;
};

} // namespace Components::Graphics
