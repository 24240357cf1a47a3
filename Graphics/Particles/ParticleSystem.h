#pragma once

// A pool of particles run by exchangeable policies: one emitter decides when particles are born, the
// initializers give the new ones their values, the updaters move them while they live, and the terminator
// decides how one that has run out of life leaves. The system is the fixed machine that runs them.
//
// Particles live in world coordinates: once born, a particle doesn't follow the system, which only gives
// it its start. Live particles are the first liveCount records of the pool, in drawing order; a removal
// moves the last live particle into the gap. Nothing is allocated after construction.
//
// This header includes no GL, so that everything holding a system (every Space) can include it.

#include "Components/Vec2.h"
#include "Graphics/Particles/Emitters.h"
#include "Graphics/Particles/Initializers.h"
#include "Graphics/Particles/ParticlePool.h"
#include "Graphics/Particles/Terminators.h"
#include "Graphics/Particles/Updaters.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace Graphics
{
class Bitmap;
class GraphicsSystem;
} // namespace Graphics

namespace Graphics::Particles
{

// How the particles of a system mix with what lies below them.
enum BlendMode : int32_t
{
    BlendNormal = 0,
    BlendAdditive = 1,
    BlendSubtractive = 2,
};

class ParticleSystem
{
public:
    // Builds the shared particle program first if it isn't built and a GL context is current on this
    // thread, then takes the pool of capacity records. The system's life counts down the seconds until a
    // spawned system ends.
    ParticleSystem(uint64_t capacity, float systemLife, PoolMemory memory);
    ~ParticleSystem();
    ParticleSystem(ParticleSystem&&) noexcept;
    ParticleSystem& operator=(ParticleSystem&&) noexcept;
    ParticleSystem(const ParticleSystem&) = delete;
    ParticleSystem& operator=(const ParticleSystem&) = delete;

    // Once, before the first Update: the emitter's first particles, initialised.
    void Start();
    // Advances by dt seconds: new particles are born and then age and move in the same update.
    void Update(float dt, float spaceTime, float absoluteTime);
    // The live particles as points, which the particle program's geometry shader turns into quads.
    void Draw(GraphicsSystem& graphics);

    // The one service of the pool to emitters: a fresh particle at the system's position, appended to the
    // emitter's new ones. False when the pool is full: the request is lost.
    bool Spawn(Emitters::ParticleEmitter& emitter);

    // Forgets the shared particle program, whose GL objects go with the context; the next system built with
    // a context builds it anew.
    static void ForgetProgram();

    ParticlePool particles;
    uint32_t liveCount = 0;
    float life;
    // Where new particles start; a component copies its transform's world position here each update.
    Vec2 position;
    // Scales distances, speeds and sizes in the policies.
    float scale = 1.0f;
    // Radians, added to the angles in the policies.
    float rotation = 0.0f;
    int32_t blendMode = BlendNormal;
    // Bound while drawing; without one, the last texture bound is sampled.
    std::shared_ptr<Bitmap> texture;
    std::unique_ptr<Emitters::ParticleEmitter> emitter;
    std::unique_ptr<Terminators::ParticleTerminator> terminator;
    std::vector<std::unique_ptr<Updaters::ParticleUpdater>> updaters;
    std::vector<std::unique_ptr<Initializers::ParticleInitializer>> initializers;
    uint64_t maxParticles;
    // Particles asked for by Pulse, made by a pulse emitter at the next update.
    int32_t pendingPulses = 0;

private:
    void InitializeNew(float spaceTime, float absoluteTime);
    // Each live particle ages by dt, then the updaters run, then the terminator.
    void AgeAndUpdate(float dt, float spaceTime, float absoluteTime);
    // Takes out the particles that the terminator marked, with the swaps that taking each out as it was
    // met would make, so the pool keeps the same order.
    void RemoveLeaving();
};

} // namespace Graphics::Particles
