#include "Graphics/Particles/Emitters.h"

#include "Graphics/Particles/ParticleSystem.h"

#include <algorithm>
#include <cmath>

namespace Graphics::Particles::Emitters
{
namespace
{

// Rounds of a constant emitter that the full pool refuses before the countdown is settled in one step: an
// ordinary frame needs a handful, a rate of 1e30 or a step of 1e30 seconds would need forever.
constexpr uint32_t kRefusedRoundsBeforeSettling = 4096;

} // namespace

void ParticleEmitter::BeginBatch(const ParticleSystem& system)
{
    newBegin = system.liveCount;
    newCount = 0;
}

EmitConstant::EmitConstant(float rate) : period(rate == 0.0f ? -1.0f : 1.0f / rate), countdown(period)
{
}

uint32_t EmitConstant::Start(ParticleSystem& system)
{
    BeginBatch(system);
    return 0;
}

uint32_t EmitConstant::Update(ParticleSystem& system, float dt, float, float)
{
    BeginBatch(system);
    if (period < 0.0f)
    {
        return 0;
    }
    countdown -= dt;
    while (countdown < 0.0f && system.Spawn(*this))
    {
        countdown += period;
    }
    // A full pool loses the particles of the rest of the step, but the countdown runs on as if they came.
    for (uint32_t round = 0; countdown < 0.0f && round < kRefusedRoundsBeforeSettling; ++round)
    {
        countdown += period;
    }
    if (countdown < 0.0f)
    {
        SettleCountdown();
    }
    return newCount;
}

void EmitConstant::SettleCountdown()
{
    const double remainder = std::fmod(static_cast<double>(countdown), static_cast<double>(period));
    const float settled = static_cast<float>(remainder < 0.0 ? remainder + period : remainder);
    countdown = std::isfinite(settled) && settled >= 0.0f && settled < period ? settled : 0.0f;
}

EmitOnce::EmitOnce(uint32_t requested, uint64_t capacity)
    : count(static_cast<uint32_t>(std::min<uint64_t>(requested, capacity)))
{
}

uint32_t EmitOnce::Start(ParticleSystem& system)
{
    BeginBatch(system);
    // Counts live particles: it tops the pool up to count, whatever is there already.
    while (system.liveCount < count && system.Spawn(*this))
    {
    }
    return newCount;
}

uint32_t EmitOnce::Update(ParticleSystem& system, float, float, float)
{
    BeginBatch(system);
    return 0;
}

uint32_t EmitPulse::Start(ParticleSystem& system)
{
    BeginBatch(system);
    return 0;
}

uint32_t EmitPulse::Update(ParticleSystem& system, float, float, float)
{
    BeginBatch(system);
    while (system.pendingPulses > 0)
    {
        --system.pendingPulses;
        if (!system.Spawn(*this))
        {
            // The rest of the pulses are lost with this one.
            system.pendingPulses = 0;
        }
    }
    return newCount;
}

} // namespace Graphics::Particles::Emitters
