#include "Graphics/Particles/Updaters.h"

#include "Graphics/Particles/ParticleSystem.h"

#include <algorithm>
#include <cmath>
#include <math.h>

namespace Graphics::Particles::Updaters
{
namespace
{

// Beyond this many degrees the hue is first brought into one turn by fmodf: stepping a turn at a time
// would take ages for a particle with a life of years, and gives the same hue for any ordinary life.
constexpr float kHueStepLimit = 360.0f * 64.0f;

template <typename Step>
void ForEachParticle(const ParticleSystem& system, ParticleRange range, bool includesDying, Step step)
{
    if (includesDying)
    {
        for (uint32_t i = range.begin; i < range.end; ++i)
        {
            step(i);
        }
        return;
    }
    const float* life = system.particles.life;
    for (uint32_t i = range.begin; i < range.end; ++i)
    {
        if (life[i] > 0.0f)
        {
            step(i);
        }
    }
}

// The share of `time` that a particle has lived, at most 1.
float Grown(float startLife, float life, float time)
{
    return std::min((startLife - life) / time, 1.0f);
}

Colour Hue(float life, Colour colour)
{
    float h = life * 2.0f * 180.0f / 3.1415927f * -0.5f;
    if (std::fabs(h) >= kHueStepLimit)
    {
        h = fmodf(h, 360.0f);
    }
    while (h < 0.0f)
    {
        h += 360.0f;
    }
    while (h > 360.0f)
    {
        h -= 360.0f;
    }
    h = h / 60.0f;
    const float c = 1.0f - std::fabs(fmodf(h, 2.0f) - 1.0f);
    if (h < 1.0f)
    {
        return Colour{1.0f, c, 0.0f, colour.a};
    }
    if (h < 2.0f)
    {
        return Colour{c, 1.0f, 0.0f, colour.a};
    }
    if (h < 3.0f)
    {
        return Colour{0.0f, 1.0f, c, colour.a};
    }
    if (h < 4.0f)
    {
        return Colour{0.0f, c, 1.0f, colour.a};
    }
    if (h < 5.0f)
    {
        return Colour{c, 0.0f, 1.0f, colour.a};
    }
    if (h < 6.0f)
    {
        return Colour{1.0f, 0.0f, c, colour.a};
    }
    return colour;
}

} // namespace

void PositionUpdater::Update(ParticleSystem& system, ParticleRange range, bool includesDying, float dt, float,
                             float)
{
    ParticlePool& pool = system.particles;
    ForEachParticle(system, range, includesDying,
                    [&](uint32_t i)
                    {
                        pool.position[i].x += dt * pool.velocity[i].x;
                        pool.position[i].y += dt * pool.velocity[i].y;
                    });
}

void ForceUpdater::Update(ParticleSystem& system, ParticleRange range, bool includesDying, float dt, float,
                          float)
{
    ParticlePool& pool = system.particles;
    const float f = dt * system.scale;
    ForEachParticle(system, range, includesDying,
                    [&](uint32_t i)
                    {
                        pool.velocity[i].x += f * force.x;
                        pool.velocity[i].y += f * force.y;
                    });
}

void DragUpdater::Update(ParticleSystem& system, ParticleRange range, bool includesDying, float dt, float,
                         float)
{
    ParticlePool& pool = system.particles;
    const float f = dt * drag;
    ForEachParticle(system, range, includesDying,
                    [&](uint32_t i)
                    {
                        pool.velocity[i].x -= f * pool.velocity[i].x;
                        pool.velocity[i].y -= f * pool.velocity[i].y;
                    });
}

void FadeInUpdater::Update(ParticleSystem& system, ParticleRange range, bool includesDying, float, float,
                           float)
{
    ParticlePool& pool = system.particles;
    ForEachParticle(system, range, includesDying,
                    [&](uint32_t i) {
                        pool.colour[i].a = Grown(pool.startLife[i], pool.life[i], time) * pool.startAlpha[i];
                    });
}

void ScaleInUpdater::Update(ParticleSystem& system, ParticleRange range, bool includesDying, float, float,
                            float)
{
    ParticlePool& pool = system.particles;
    ForEachParticle(system, range, includesDying,
                    [&](uint32_t i)
                    { pool.scale[i] = Grown(pool.startLife[i], pool.life[i], time) * pool.startScale[i]; });
}

void LinearScaleUpdater::Update(ParticleSystem& system, ParticleRange range, bool includesDying, float dt,
                                float, float)
{
    ParticlePool& pool = system.particles;
    ForEachParticle(system, range, includesDying,
                    [&](uint32_t i)
                    {
                        pool.startScale[i] += dt * rate;
                        pool.scale[i] = pool.startScale[i];
                    });
}

void VortexUpdater::Update(ParticleSystem& system, ParticleRange range, bool includesDying, float dt, float,
                           float)
{
    ParticlePool& pool = system.particles;
    const float s = system.scale;
    const float sinR = sinf(system.rotation);
    const float cosR = cosf(system.rotation);
    const Vec2 origin = system.position;
    // The system's position is turned and scaled; the centre is added after, unturned.
    const Vec2 pole{s * (origin.x * cosR - origin.y * sinR) + centre.x,
                    s * (origin.x * sinR + origin.y * cosR) + centre.y};
    ForEachParticle(system, range, includesDying,
                    [&](uint32_t i)
                    {
                        const Vec2 d = pole - pool.position[i];
                        const float q = (d.x * d.x + d.y * d.y) / (s * s);
                        const float k = strength / q;
                        pool.velocity[i].x += k * d.x * s * dt;
                        pool.velocity[i].y += k * d.y * s * dt;
                    });
}

void HueUpdater::Update(ParticleSystem& system, ParticleRange range, bool includesDying, float, float, float)
{
    ParticlePool& pool = system.particles;
    ForEachParticle(system, range, includesDying,
                    [&](uint32_t i) { pool.colour[i] = Hue(pool.life[i], pool.colour[i]); });
}

} // namespace Graphics::Particles::Updaters
