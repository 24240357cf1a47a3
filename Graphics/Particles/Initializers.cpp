#include "Graphics/Particles/Initializers.h"

#include "Core/Random.h"
#include "Graphics/Particles/Emitters.h"
#include "Graphics/Particles/ParticleSystem.h"

#include <math.h>

namespace Graphics::Particles::Initializers
{
namespace
{

// One draw of the engine's generator, from a to b with both ends reached. Uniform(2, 2) still draws.
float Uniform(float a, float b)
{
    return static_cast<float>(Core::Rand()) / 32767.0f * (b - a) + a;
}

template <typename Step>
void ForEachNew(const Emitters::ParticleEmitter& emitter, Step step)
{
    const uint32_t end = emitter.newBegin + emitter.newCount;
    for (uint32_t index = emitter.newBegin; index < end; ++index)
    {
        step(index);
    }
}

Vec2 Heading(float angle, float speed)
{
    return Vec2{sinf(angle) * speed, cosf(angle) * speed};
}

} // namespace

void BasicInitializer::Initialize(ParticleSystem& system, const Emitters::ParticleEmitter& emitter, float,
                                  float)
{
    ParticlePool& pool = system.particles;
    const float s = system.scale;
    ForEachNew(emitter,
               [&](uint32_t i)
               {
                   pool.life[i] = life;
                   pool.startLife[i] = life;
                   pool.colour[i] = colour;
                   pool.startAlpha[i] = colour.a;
                   pool.velocity[i] = Vec2{velocity.x * s, velocity.y * s};
                   pool.rotation[i] = system.rotation + rotation;
                   pool.scale[i] = s * scale;
                   pool.startScale[i] = scale;
               });
}

void RandomInitializer::Initialize(ParticleSystem& system, const Emitters::ParticleEmitter& emitter, float,
                                   float)
{
    ParticlePool& pool = system.particles;
    const float s = system.scale;
    const float r = system.rotation;
    ForEachNew(emitter,
               [&](uint32_t i)
               {
                   const float life = Uniform(min.life, max.life);
                   pool.life[i] = life;
                   pool.startLife[i] = life;
                   Colour& colour = pool.colour[i];
                   colour.r = Uniform(min.colour.r, max.colour.r);
                   colour.g = Uniform(min.colour.g, max.colour.g);
                   colour.b = Uniform(min.colour.b, max.colour.b);
                   colour.a = Uniform(min.colour.a, max.colour.a);
                   pool.startAlpha[i] = colour.a;
                   const float angle = Uniform(min.angle, max.angle) + r;
                   const float speed = Uniform(min.speed, max.speed) * s;
                   pool.velocity[i] = Heading(angle, speed);
                   pool.rotation[i] = Uniform(min.rotation, max.rotation) + r;
                   const float scale = Uniform(min.scale, max.scale) * s;
                   pool.scale[i] = scale;
                   pool.startScale[i] = scale;
               });
}

void RandomScale::Initialize(ParticleSystem& system, const Emitters::ParticleEmitter& emitter, float, float)
{
    ParticlePool& pool = system.particles;
    ForEachNew(emitter,
               [&](uint32_t i)
               {
                   const float scale = Uniform(min, max) * system.scale;
                   pool.scale[i] = scale;
                   pool.startScale[i] = scale;
               });
}

void RandomVelocity::Initialize(ParticleSystem& system, const Emitters::ParticleEmitter& emitter, float,
                                float)
{
    ParticlePool& pool = system.particles;
    ForEachNew(emitter,
               [&](uint32_t i)
               {
                   const float angle = Uniform(minAngle, maxAngle) + system.rotation;
                   const float speed = Uniform(minSpeed, maxSpeed) * system.scale;
                   const Vec2 velocity = Heading(angle, speed);
                   pool.velocity[i] = velocity;
                   // Faces the flight, on the same scale of angles: x first.
                   pool.rotation[i] = atan2f(velocity.x, velocity.y);
               });
}

void CircleOffset::Initialize(ParticleSystem& system, const Emitters::ParticleEmitter& emitter, float, float)
{
    ParticlePool& pool = system.particles;
    const float s = system.scale;
    ForEachNew(emitter,
               [&](uint32_t i)
               {
                   const float angle = Uniform(minAngle, maxAngle) + system.rotation;
                   const float distance = Uniform(minRadius, maxRadius) * s;
                   pool.position[i].x += sinf(angle) * distance * s;
                   pool.position[i].y += cosf(angle) * distance * s;
               });
}

void SquareOffset::Initialize(ParticleSystem& system, const Emitters::ParticleEmitter& emitter, float, float)
{
    ParticlePool& pool = system.particles;
    ForEachNew(emitter,
               [&](uint32_t i)
               {
                   pool.position[i].x += Uniform(minX, maxX) * system.scale;
                   pool.position[i].y += Uniform(minY, maxY) * system.scale;
               });
}

} // namespace Graphics::Particles::Initializers
