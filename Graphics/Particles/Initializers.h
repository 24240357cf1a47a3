#pragma once

// Initializers give new particles their values. Each Initialize walks all of the emitter's new particles
// before the next initializer starts, so later ones replace what earlier ones set (the offsets add to the
// position instead). Every random draw is one value of the engine's generator, in the order written here:
// effects built by the same calls repeat from the same seed.
//
// In the arithmetic, S is the system's scale and R its rotation. An angle of 0 points along +y and a
// positive angle turns towards +x, so a velocity is (sin a * s, cos a * s).

#include "Components/Vec2.h"
#include "Graphics/Colour.h"

namespace Graphics::Particles
{
class ParticleSystem;
}

namespace Graphics::Particles::Emitters
{
class ParticleEmitter;
}

namespace Graphics::Particles::Initializers
{

class ParticleInitializer
{
public:
    virtual ~ParticleInitializer() = default;

    // Called once when the system starts, before any particle is made.
    virtual void OnStart(ParticleSystem&) {}
    virtual void Initialize(ParticleSystem& system, const Emitters::ParticleEmitter& emitter, float spaceTime,
                            float absoluteTime) = 0;
};

// Fixed values. The scale is S * scale, but startScale is scale alone, so a later scale-in grows the
// particle to the unscaled size.
class BasicInitializer final : public ParticleInitializer
{
public:
    BasicInitializer(Vec2 givenVelocity, const Colour& givenColour, float givenLife, float givenRotation,
                     float givenScale)
        : velocity(givenVelocity), colour(givenColour), life(givenLife), rotation(givenRotation),
          scale(givenScale)

    {
    }
    void Initialize(ParticleSystem& system, const Emitters::ParticleEmitter& emitter, float spaceTime,
                    float absoluteTime) override;

    Vec2 velocity;
    Colour colour;
    float life;
    float rotation;
    float scale;
};

// The nine values of RandomInitializer's two sets.
struct RandomBounds
{
    float angle = 0.0f;
    float speed = 0.0f;
    Colour colour;
    float life = 0.0f;
    float rotation = 0.0f;
    float scale = 0.0f;
};

// Nine draws a particle: life, red, green, blue, alpha, angle, speed, rotation, scale.
class RandomInitializer final : public ParticleInitializer
{
public:
    RandomInitializer(const RandomBounds& givenMin, const RandomBounds& givenMax)
        : min(givenMin), max(givenMax)
    {
    }
    void Initialize(ParticleSystem& system, const Emitters::ParticleEmitter& emitter, float spaceTime,
                    float absoluteTime) override;

    RandomBounds min;
    RandomBounds max;
};

// One draw: scale and startScale, both times S.
class RandomScale final : public ParticleInitializer
{
public:
    RandomScale(float givenMin, float givenMax) : min(givenMin), max(givenMax) {}
    void Initialize(ParticleSystem& system, const Emitters::ParticleEmitter& emitter, float spaceTime,
                    float absoluteTime) override;

    float min;
    float max;
};

// Two draws, angle then speed; the particle is turned to face its flight.
class RandomVelocity final : public ParticleInitializer
{
public:
    RandomVelocity(float givenMinAngle, float givenMaxAngle, float givenMinSpeed, float givenMaxSpeed)
        : minAngle(givenMinAngle), maxAngle(givenMaxAngle), minSpeed(givenMinSpeed), maxSpeed(givenMaxSpeed)

    {
    }
    void Initialize(ParticleSystem& system, const Emitters::ParticleEmitter& emitter, float spaceTime,
                    float absoluteTime) override;

    float minAngle;
    float maxAngle;
    float minSpeed;
    float maxSpeed;
};

// Two draws, angle then radius; moves the particle that far in that direction. The radius meets S twice.
class CircleOffset final : public ParticleInitializer
{
public:
    CircleOffset(float givenMinAngle, float givenMinRadius, float givenMaxAngle, float givenMaxRadius)
        : minAngle(givenMinAngle), minRadius(givenMinRadius), maxAngle(givenMaxAngle),
          maxRadius(givenMaxRadius)

    {
    }
    void Initialize(ParticleSystem& system, const Emitters::ParticleEmitter& emitter, float spaceTime,
                    float absoluteTime) override;

    float minAngle;
    float minRadius;
    float maxAngle;
    float maxRadius;
};

// Two draws, x then y, each times S, added to the position.
class SquareOffset final : public ParticleInitializer
{
public:
    SquareOffset(float givenMinX, float givenMinY, float givenMaxX, float givenMaxY)
        : minX(givenMinX), minY(givenMinY), maxX(givenMaxX), maxY(givenMaxY)

    {
    }
    void Initialize(ParticleSystem& system, const Emitters::ParticleEmitter& emitter, float spaceTime,
                    float absoluteTime) override;

    float minX;
    float minY;
    float maxX;
    float maxY;
};

} // namespace Graphics::Particles::Initializers
