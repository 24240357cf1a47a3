#pragma once

// Emitters decide when particles are born. Each Start or Update asks the system to Spawn particles and
// keeps the ones it got as a range of the pool: Spawn only appends, so they follow one another from the
// live count the call began with. The initializers then walk that range.

#include <cstdint>

namespace Graphics::Particles
{
class ParticleSystem;
}

namespace Graphics::Particles::Emitters
{

class ParticleEmitter
{
public:
    virtual ~ParticleEmitter() = default;

    // Both return the number of particles made by the call.
    virtual uint32_t Start(ParticleSystem& system) = 0;
    virtual uint32_t Update(ParticleSystem& system, float dt, float spaceTime, float absoluteTime) = 0;

    // The particles of the present Start or Update.
    uint32_t newBegin = 0;
    uint32_t newCount = 0;

protected:
    // Empties the range of new particles, which the next Spawn extends from the system's live count.
    void BeginBatch(const ParticleSystem& system);
};

// A steady rate: one particle each period, the remainder of a step carried over in the countdown.
class EmitConstant final : public ParticleEmitter
{
public:
    // A rate of 0 gives a period of -1, which emits nothing, as does any negative rate.
    explicit EmitConstant(float rate);

    uint32_t Start(ParticleSystem& system) override;
    uint32_t Update(ParticleSystem& system, float dt, float spaceTime, float absoluteTime) override;

    float period;
    float countdown;

private:
    // Brings a countdown that a full pool left far below 0 back into [0, period) in one step.
    void SettleCountdown();
};

// Fills the pool up to count live particles at the start, and never again.
class EmitOnce final : public ParticleEmitter
{
public:
    // The count is cut to the pool's capacity.
    EmitOnce(uint32_t count, uint64_t capacity);

    uint32_t Start(ParticleSystem& system) override;
    uint32_t Update(ParticleSystem& system, float dt, float spaceTime, float absoluteTime) override;

    uint32_t count;
};

// Makes the particles that the system's pendingPulses asks for at the next update.
class EmitPulse final : public ParticleEmitter
{
public:
    uint32_t Start(ParticleSystem& system) override;
    uint32_t Update(ParticleSystem& system, float dt, float spaceTime, float absoluteTime) override;
};

} // namespace Graphics::Particles::Emitters
