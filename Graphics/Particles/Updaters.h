#pragma once

// Updaters move and change live particles each update, in the order of the system's list. Each call walks
// a range of the pool once, the whole live range in a system's update; dying particles, whose life is 0 or
// less, take part only where the caller includes them. A particle's step reads only that particle and the
// system, and none of them touches life, so running one updater over every particle before the next gives
// what running all of them particle by particle would. In the arithmetic, S is the system's scale and R its
// rotation.

#include "Components/Vec2.h"
#include "Graphics/Particles/ParticlePool.h"

namespace Graphics::Particles
{
class ParticleSystem;
}

namespace Graphics::Particles::Updaters
{

class ParticleUpdater
{
public:
    virtual ~ParticleUpdater() = default;

    // Called once when the system starts.
    virtual void OnStart(ParticleSystem&) {}
    virtual void Update(ParticleSystem& system, ParticleRange range, bool includesDying, float dt,
                        float spaceTime, float absoluteTime) = 0;

    // Whether the updater goes on working on dying particles, in a system whose terminator keeps them.
    bool runsWhileDying = true;
};

// Applies velocity; without it nothing moves.
class PositionUpdater final : public ParticleUpdater
{
public:
    void Update(ParticleSystem& system, ParticleRange range, bool includesDying, float dt, float spaceTime,
                float absoluteTime) override;
};

// A constant acceleration, times S.
class ForceUpdater final : public ParticleUpdater
{
public:
    explicit ForceUpdater(Vec2 givenForce) : force(givenForce) {}
    void Update(ParticleSystem& system, ParticleRange range, bool includesDying, float dt, float spaceTime,
                float absoluteTime) override;

    Vec2 force;
};

// Takes dt * drag of the velocity away each update.
class DragUpdater final : public ParticleUpdater
{
public:
    explicit DragUpdater(float givenDrag) : drag(givenDrag) {}
    void Update(ParticleSystem& system, ParticleRange range, bool includesDying, float dt, float spaceTime,
                float absoluteTime) override;

    float drag;
};

// Alpha from 0 to startAlpha over the first `time` seconds of a particle's life.
class FadeInUpdater final : public ParticleUpdater
{
public:
    explicit FadeInUpdater(float givenTime) : time(givenTime) {}
    void Update(ParticleSystem& system, ParticleRange range, bool includesDying, float dt, float spaceTime,
                float absoluteTime) override;

    float time;
};

// Scale from 0 to startScale over the first `time` seconds of a particle's life.
class ScaleInUpdater final : public ParticleUpdater
{
public:
    explicit ScaleInUpdater(float givenTime) : time(givenTime) {}
    void Update(ParticleSystem& system, ParticleRange range, bool includesDying, float dt, float spaceTime,
                float absoluteTime) override;

    float time;
};

// Grows startScale, and the scale with it, by rate per second.
class LinearScaleUpdater final : public ParticleUpdater
{
public:
    explicit LinearScaleUpdater(float givenRate) : rate(givenRate) {}
    void Update(ParticleSystem& system, ParticleRange range, bool includesDying, float dt, float spaceTime,
                float absoluteTime) override;

    float rate;
};

// Pulls towards the system's position, turned by R and scaled by S, plus centre; the pull falls off with
// the square of the distance. A particle exactly on the point gets a pull of inf or NaN.
class VortexUpdater final : public ParticleUpdater
{
public:
    VortexUpdater(Vec2 givenCentre, float givenStrength) : centre(givenCentre), strength(givenStrength) {}
    void Update(ParticleSystem& system, ParticleRange range, bool includesDying, float dt, float spaceTime,
                float absoluteTime) override;

    Vec2 centre;
    float strength;
};

// Cycles red, green and blue through the hues as life runs down: half a turn of hue per second of life.
// Alpha stays.
class HueUpdater final : public ParticleUpdater
{
public:
    void Update(ParticleSystem& system, ParticleRange range, bool includesDying, float dt, float spaceTime,
                float absoluteTime) override;
};

} // namespace Graphics::Particles::Updaters
