#include "Graphics/Particles/Terminators.h"

#include "Graphics/Particles/ParticleSystem.h"

namespace Graphics::Particles::Terminators
{
namespace
{

// Runs the step on every dying particle, marking it as leaving where the step says so; NaN lives count as
// dying, as they aren't above 0.
template <typename Step>
uint32_t ForEachDying(ParticleSystem& system, ParticleRange range, Step step)
{
    ParticlePool& pool = system.particles;
    uint32_t leaving = 0;
    for (uint32_t i = range.begin; i < range.end; ++i)
    {
        if (!(pool.life[i] > 0.0f) && step(i))
        {
            pool.leaving[i] = 1;
            ++leaving;
        }
    }
    return leaving;
}

} // namespace

uint32_t BasicTerminator::Update(ParticleSystem& system, ParticleRange range, float, float, float)
{
    return ForEachDying(system, range, [](uint32_t) { return true; });
}

uint32_t FadeOut::Update(ParticleSystem& system, ParticleRange range, float, float, float)
{
    ParticlePool& pool = system.particles;
    return ForEachDying(system, range,
                        [&](uint32_t i)
                        {
                            pool.colour[i].a = (pool.life[i] / time + 1.0f) * pool.startAlpha[i];
                            return pool.life[i] < -time;
                        });
}

uint32_t ScaleOut::Update(ParticleSystem& system, ParticleRange range, float, float, float)
{
    ParticlePool& pool = system.particles;
    return ForEachDying(system, range,
                        [&](uint32_t i)
                        {
                            pool.scale[i] = (pool.life[i] / time + 1.0f) * pool.startScale[i];
                            return pool.life[i] < -time;
                        });
}

} // namespace Graphics::Particles::Terminators
