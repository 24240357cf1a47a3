#pragma once

// Terminators decide how a dying particle, one whose life is 0 or less, leaves. Each call walks a
// range of the pool once, works on the dying particles only, and marks in the pool's `leaving` column
// those that are to go; the system removes them after the call.

#include "Graphics/Particles/ParticlePool.h"

#include <cstdint>

namespace Graphics::Particles
{
class ParticleSystem;
}

namespace Graphics::Particles::Terminators
{

class ParticleTerminator
{
public:
    virtual ~ParticleTerminator() = default;

    // Called once when the system starts.
    virtual void OnStart(ParticleSystem&) {}
    // Returns how many particles it marked as leaving.
    virtual uint32_t Update(ParticleSystem& system, ParticleRange range, float dt, float spaceTime,
                            float absoluteTime) = 0;
};

// A particle leaves in the update in which its life runs out.
class BasicTerminator final : public ParticleTerminator
{
public:
    uint32_t Update(ParticleSystem& system, ParticleRange range, float dt, float spaceTime,
                    float absoluteTime) override;
};

// A dying particle fades from startAlpha to 0 over `time` more seconds, then leaves.
class FadeOut final : public ParticleTerminator
{
public:
    explicit FadeOut(float givenTime) : time(givenTime) {}
    uint32_t Update(ParticleSystem& system, ParticleRange range, float dt, float spaceTime,
                    float absoluteTime) override;

    float time;
};

// A dying particle shrinks from startScale to 0 over `time` more seconds, then leaves.
class ScaleOut final : public ParticleTerminator
{
public:
    explicit ScaleOut(float givenTime) : time(givenTime) {}
    uint32_t Update(ParticleSystem& system, ParticleRange range, float dt, float spaceTime,
                    float absoluteTime) override;

    float time;
};

} // namespace Graphics::Particles::Terminators
