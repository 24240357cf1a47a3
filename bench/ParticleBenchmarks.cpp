// What particles cost: a pool of 100,000 aged and moved each frame (as one system, as ten of 10,000, and in
// a frame in which a tenth of them leave at once), the bursts that scripts spawn, the points of a full pool
// drawn offscreen, and the memory that a particle component holds idle and with a few alive.
//
// The steady effect is a fountain of sparks: a constant rate with random starts on a disc, moved, pulled
// down, slowed, faded in and faded out. Its rate is the pool's size over the mean stay, so the pool stays
// all but full and every frame as many are born as leave; live, born and removed count them per frame,
// live after the frame's removals.

#include "AllocationCounter.h"
#include "BenchGame.h"
#include "Components/Space.h"
#include "Core/Random.h"
#include "Graphics/Bitmap.h"
#include "Graphics/GraphicsSystem.h"
#include "Graphics/ParticleComponent.h"
#include "Graphics/Particles/ParticleSystem.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <ctime>
#include <epoxy/gl.h>
#include <fstream>
#include <memory>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace
{

using namespace Graphics::Particles;
using Clock = std::chrono::steady_clock;

constexpr float kDt = 1.0f / 60.0f;
constexpr uint64_t kPoolSize = Components::Graphics::ParticleComponent::kPoolSize;
constexpr float kPi = 3.1415927f;
constexpr float kMinLife = 1.5f;
constexpr float kMaxLife = 2.5f;
constexpr float kFadeIn = 0.25f;
constexpr float kFadeOut = 0.5f;
// A particle's whole stay on average, its life and then its fade: the pool holds rate × stay particles.
constexpr float kMeanStay = (kMinLife + kMaxLife) * 0.5f + kFadeOut;
// Longer than any stay, so that the ages have spread out as they do in a running game.
constexpr int kWarmUpFrames = 4 * 60;
// A system that a spawned-burst sweep would never end, as a component's.
constexpr float kEndlessLife = -1000.0f;

double Seconds(Clock::time_point from, Clock::time_point to)
{
    return std::chrono::duration<double>(to - from).count();
}

// The calling thread's CPU time. The machines these run on are shared, and the wall clock also counts the
// time that others' work takes the core away; the two together tell the cost from the interference.
double ThreadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void BuildFountain(ParticleSystem& system, float rate)
{
    using namespace Graphics::Particles::Initializers;
    using namespace Graphics::Particles::Updaters;
    RandomBounds min;
    min.angle = -kPi;
    min.speed = 0.5f;
    min.colour = Graphics::Colour{0.8f, 0.3f, 0.1f, 0.6f};
    min.life = kMinLife;
    min.rotation = 0.0f;
    min.scale = 0.05f;
    RandomBounds max;
    max.angle = kPi;
    max.speed = 2.0f;
    max.colour = Graphics::Colour{1.0f, 0.8f, 0.3f, 1.0f};
    max.life = kMaxLife;
    max.rotation = 2.0f * kPi;
    max.scale = 0.2f;
    system.emitter = std::make_unique<Emitters::EmitConstant>(rate);
    system.initializers.push_back(std::make_unique<RandomInitializer>(min, max));
    system.initializers.push_back(std::make_unique<CircleOffset>(-kPi, 0.0f, kPi, 3.0f));
    system.updaters.push_back(std::make_unique<PositionUpdater>());
    system.updaters.push_back(std::make_unique<ForceUpdater>(Vec2{0.0f, -1.0f}));
    system.updaters.push_back(std::make_unique<DragUpdater>(0.5f));
    system.updaters.push_back(std::make_unique<FadeInUpdater>(kFadeIn));
    system.terminator = std::make_unique<Terminators::FadeOut>(kFadeOut);
}

// A fountain in a pool of the given size, run until its pool is as full as it stays.
class Fountain
{
public:
    explicit Fountain(uint64_t capacity) : system(capacity, kEndlessLife, PoolMemory::Pages)
    {
        BuildFountain(system, static_cast<float>(capacity) / kMeanStay);
        system.Start();
        for (int frame = 0; frame < kWarmUpFrames; ++frame)
        {
            Step();
        }
    }

    void Step()
    {
        time += kDt;
        system.Update(kDt, time, time);
    }

    ParticleSystem system;
    float time = 0.0f;
};

// Per frame: the live particles after it, those born in it and those that left in it.
class FrameTally
{
public:
    void Add(uint32_t liveBefore, const ParticleSystem& system)
    {
        const uint32_t newborn = system.emitter->newCount;
        live += system.liveCount;
        born += newborn;
        removed += liveBefore + newborn - system.liveCount;
    }

    void Report(benchmark::State& state) const
    {
        const auto frames = static_cast<double>(state.iterations());
        state.counters["live"] = static_cast<double>(live) / frames;
        state.counters["born"] = static_cast<double>(born) / frames;
        state.counters["removed"] = static_cast<double>(removed) / frames;
    }

private:
    uint64_t live = 0;
    uint64_t born = 0;
    uint64_t removed = 0;
};

// One frame of 100,000 particles in steady state, in one system or split evenly among several. Argument:
// the number of systems.
void ParticleUpdate(benchmark::State& state)
{
    Core::SeedRand(1);
    const auto systemCount = static_cast<uint64_t>(state.range(0));
    std::vector<Fountain> fountains;
    fountains.reserve(systemCount);
    for (uint64_t index = 0; index < systemCount; ++index)
    {
        fountains.emplace_back(kPoolSize / systemCount);
    }
    FrameTally tally;
    const uint64_t allocationsBefore = AllocationCount();
    for (auto _ : state)
    {
        for (Fountain& fountain : fountains)
        {
            const uint32_t liveBefore = fountain.system.liveCount;
            fountain.Step();
            tally.Add(liveBefore, fountain.system);
        }
    }
    const auto frames = static_cast<double>(state.iterations());
    state.counters["allocations"] = static_cast<double>(AllocationCount() - allocationsBefore) / frames;
    tally.Report(state);
}
BENCHMARK(ParticleUpdate)->ArgName("systems")->Arg(1)->Arg(10)->Unit(benchmark::kMicrosecond);

// The live records of a pool, put back before every measured frame so that each repeats the same one.
class PoolSnapshot
{
public:
    explicit PoolSnapshot(const ParticleSystem& system)
        : count(system.liveCount), emitterCountdown(Countdown(system)),
          position(Take(system.particles.position)), velocity(Take(system.particles.velocity)),
          colour(Take(system.particles.colour)), startAlpha(Take(system.particles.startAlpha)),
          startScale(Take(system.particles.startScale)), life(Take(system.particles.life)),
          startLife(Take(system.particles.startLife)), rotation(Take(system.particles.rotation)),
          scale(Take(system.particles.scale)), leaving(Take(system.particles.leaving))
    {
    }

    void Restore(ParticleSystem& system) const
    {
        ParticlePool& pool = system.particles;
        std::copy(position.begin(), position.end(), pool.position);
        std::copy(velocity.begin(), velocity.end(), pool.velocity);
        std::copy(colour.begin(), colour.end(), pool.colour);
        std::copy(startAlpha.begin(), startAlpha.end(), pool.startAlpha);
        std::copy(startScale.begin(), startScale.end(), pool.startScale);
        std::copy(life.begin(), life.end(), pool.life);
        std::copy(startLife.begin(), startLife.end(), pool.startLife);
        std::copy(rotation.begin(), rotation.end(), pool.rotation);
        std::copy(scale.begin(), scale.end(), pool.scale);
        std::copy(leaving.begin(), leaving.end(), pool.leaving);
        system.liveCount = count;
        static_cast<Emitters::EmitConstant&>(*system.emitter).countdown = emitterCountdown;
    }

private:
    static float Countdown(const ParticleSystem& system)
    {
        return static_cast<const Emitters::EmitConstant&>(*system.emitter).countdown;
    }

    template <typename T>
    std::vector<T> Take(const T* column) const
    {
        return std::vector<T>(column, column + count);
    }

    uint32_t count;
    float emitterCountdown;
    std::vector<Vec2> position;
    std::vector<Vec2> velocity;
    std::vector<Graphics::Colour> colour;
    std::vector<float> startAlpha;
    std::vector<float> startScale;
    std::vector<float> life;
    std::vector<float> startLife;
    std::vector<float> rotation;
    std::vector<float> scale;
    std::vector<uint8_t> leaving;
};

// The steady fountain's frame with every tenth particle at the end of its fade and none of the others near
// it: a tenth of the pool leaves at once, scattered through it, as after a large burst of equal lives. The
// pool is put back between frames outside the measured time.
void ParticleUpdateTenthLeaving(benchmark::State& state)
{
    Core::SeedRand(1);
    Fountain fountain(kPoolSize);
    ParticleSystem& system = fountain.system;
    for (uint32_t index = 0; index < system.liveCount; ++index)
    {
        float& life = system.particles.life[index];
        // Aged by one step, a life below -kFadeOut leaves; one at -kFadeOut + 2 steps stays.
        life = index % 10 == 0 ? -kFadeOut : std::max(life, -kFadeOut + 2.0f * kDt);
    }
    const PoolSnapshot snapshot(system);
    FrameTally tally;
    uint64_t allocations = 0;
    double cpuSeconds = 0.0;
    for (auto _ : state)
    {
        snapshot.Restore(system);
        const uint32_t liveBefore = system.liveCount;
        const uint64_t allocationsBefore = AllocationCount();
        const double cpuStart = ThreadSeconds();
        const Clock::time_point start = Clock::now();
        fountain.Step();
        const Clock::time_point end = Clock::now();
        cpuSeconds += ThreadSeconds() - cpuStart;
        allocations += AllocationCount() - allocationsBefore;
        state.SetIterationTime(Seconds(start, end));
        tally.Add(liveBefore, system);
    }
    state.counters["allocations"] =
        static_cast<double>(allocations) / static_cast<double>(state.iterations());
    state.counters["cpu_us"] = cpuSeconds * 1e6 / static_cast<double>(state.iterations());
    tally.Report(state);
}
BENCHMARK(ParticleUpdateTenthLeaving)->UseManualTime()->Unit(benchmark::kMicrosecond);

// One burst as a script's Graphics:SpawnParticles makes it, started at once. Argument: its particles. The
// iteration's time is the spawn alone; the burst is destroyed after it, and that time is reported on its
// own as free_ns_per_particle. The pool's aligned allocation isn't seen by the allocation counter.
void ParticleSpawn(benchmark::State& state)
{
    Core::SeedRand(1);
    const auto count = static_cast<uint32_t>(state.range(0));
    // Construction and Start need no context; without one the particle program isn't built.
    Graphics::GraphicsSystem graphics;
    graphics.particleSystems.reserve(1);
    const Graphics::Colour colour{1.0f, 0.5f, 0.2f, 1.0f};
    double spawnSeconds = 0.0;
    double spawnCpuSeconds = 0.0;
    double freeSeconds = 0.0;
    uint64_t allocations = 0;
    for (auto _ : state)
    {
        const uint64_t allocationsBefore = AllocationCount();
        const double cpuStart = ThreadSeconds();
        const Clock::time_point start = Clock::now();
        graphics.SpawnParticles(Vec2{1.0f, 2.0f}, colour, count, 1.0f, 3.0f, 0.2f, 1.0f, 0.5f);
        const Clock::time_point spawned = Clock::now();
        spawnCpuSeconds += ThreadSeconds() - cpuStart;
        allocations += AllocationCount() - allocationsBefore;
        benchmark::DoNotOptimize(graphics.particleSystems.back()->particles.velocity);
        graphics.particleSystems.clear();
        const Clock::time_point freed = Clock::now();
        spawnSeconds += Seconds(start, spawned);
        freeSeconds += Seconds(spawned, freed);
        state.SetIterationTime(Seconds(start, spawned));
    }
    const double particles = static_cast<double>(state.iterations()) * count;
    state.counters["ns_per_particle"] = spawnSeconds * 1e9 / particles;
    state.counters["cpu_ns_per_particle"] = spawnCpuSeconds * 1e9 / particles;
    state.counters["free_ns_per_particle"] = freeSeconds * 1e9 / particles;
    state.counters["allocations"] =
        static_cast<double>(allocations) / static_cast<double>(state.iterations());
}
BENCHMARK(ParticleSpawn)
    ->ArgName("particles")
    ->Arg(128)
    ->Arg(10000)
    ->Arg(100000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

// The steady fountain's 100,000 points on the windowed bench game, with a small white bitmap.
class DrawingFountain : public BenchGame
{
public:
    DrawingFountain() : BenchGame({}, true)
    {
        // A frame of the empty Space sets the camera's projection, which the particles are drawn under.
        game.graphics.Update(game, game.rootSpace, kDt, 0.0, 0.0);
        auto pixels = std::make_unique<uint8_t[]>(8 * 8 * 4);
        std::fill_n(pixels.get(), 8 * 8 * 4, uint8_t{255});
        fountain.system.texture = std::make_shared<Graphics::Bitmap>(8, 8, std::move(pixels), "spark");
        // The texture's upload and the driver's first use of the program stay out of the measured frames.
        fountain.system.Draw(game.graphics);
        glFinish();
    }

    // The submission as the iteration's time and submit_ms, its CPU time on this thread as submit_cpu_ms,
    // and the glFinish after it as finish_ms: the driver's work on the points and the quads that the
    // geometry shader makes of them.
    template <typename Submit>
    void Measure(benchmark::State& state, Submit submit)
    {
        double submitSeconds = 0.0;
        double submitCpuSeconds = 0.0;
        double finishSeconds = 0.0;
        for (auto _ : state)
        {
            const double cpuStart = ThreadSeconds();
            const Clock::time_point start = Clock::now();
            submit();
            const Clock::time_point submitted = Clock::now();
            submitCpuSeconds += ThreadSeconds() - cpuStart;
            glFinish();
            const Clock::time_point finished = Clock::now();
            submitSeconds += Seconds(start, submitted);
            finishSeconds += Seconds(submitted, finished);
            state.SetIterationTime(Seconds(start, submitted));
        }
        const auto frames = static_cast<double>(state.iterations());
        state.counters["submit_ms"] = submitSeconds * 1000.0 / frames;
        state.counters["submit_cpu_ms"] = submitCpuSeconds * 1000.0 / frames;
        state.counters["finish_ms"] = finishSeconds * 1000.0 / frames;
        state.counters["live"] = static_cast<double>(fountain.system.liveCount);
    }

    // Made once the context is current, so that the first system builds the particle program.
    Fountain fountain{kPoolSize};
};

void ParticleDraw(benchmark::State& state)
{
    Core::SeedRand(1);
    DrawingFountain world;
    world.Measure(state, [&] { world.fountain.system.Draw(world.game.graphics); });
}
BENCHMARK(ParticleDraw)->UseManualTime()->Unit(benchmark::kMillisecond);

// The same points through the same program, bitmap and state, but packed into one array each frame and
// drawn from a stream buffer in one call instead of two immediate-mode calls a particle: what the
// submission would cost without immediate mode. llvmpipe runs the vertex and geometry stages inside the
// draw call, on this thread, so on it both submissions include them.
void ParticleDrawBufferedGL(benchmark::State& state)
{
    Core::SeedRand(1);
    DrawingFountain world;
    const ParticleSystem& system = world.fountain.system;
    const ParticlePool& pool = system.particles;
    // x, y, rotation, scale as the vertex, then the colour: the two that the program reads.
    std::vector<float> vertices(kPoolSize * 8);
    uint32_t buffer = 0;
    glGenBuffers(1, &buffer);
    world.Measure(state,
                  [&]
                  {
                      float* out = vertices.data();
                      for (uint32_t i = 0; i < system.liveCount; ++i, out += 8)
                      {
                          out[0] = pool.position[i].x;
                          out[1] = pool.position[i].y;
                          out[2] = pool.rotation[i];
                          out[3] = pool.scale[i];
                          out[4] = pool.colour[i].r;
                          out[5] = pool.colour[i].g;
                          out[6] = pool.colour[i].b;
                          out[7] = pool.colour[i].a;
                      }
                      const auto stride = static_cast<GLsizei>(8 * sizeof(float));
                      glBindBuffer(GL_ARRAY_BUFFER, buffer);
                      glBufferData(GL_ARRAY_BUFFER,
                                   static_cast<GLsizeiptr>(system.liveCount * 8 * sizeof(float)),
                                   vertices.data(), GL_STREAM_DRAW);
                      glEnableClientState(GL_VERTEX_ARRAY);
                      glEnableClientState(GL_COLOR_ARRAY);
                      glVertexPointer(4, GL_FLOAT, stride, nullptr);
                      glColorPointer(4, GL_FLOAT, stride, reinterpret_cast<const void*>(4 * sizeof(float)));
                      glDrawArrays(GL_POINTS, 0, static_cast<GLsizei>(system.liveCount));
                      glDisableClientState(GL_COLOR_ARRAY);
                      glDisableClientState(GL_VERTEX_ARRAY);
                      glBindBuffer(GL_ARRAY_BUFFER, 0);
                  });
    glDeleteBuffers(1, &buffer);
}
BENCHMARK(ParticleDrawBufferedGL)->UseManualTime()->Unit(benchmark::kMillisecond);

uint64_t ResidentBytes()
{
    std::ifstream statm("/proc/self/statm");
    uint64_t size = 0;
    uint64_t resident = 0;
    statm >> size >> resident;
    return resident * static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
}

// The pages of a component's pool that are in memory: the columns lie in one mapping, from the positions
// (its first column, at the start of the mapping) to the end of the leaving flags (its last).
uint64_t PoolResidentBytes(const ParticlePool& pool)
{
    const auto page = static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
    auto* start = reinterpret_cast<unsigned char*>(pool.position);
    const auto length =
        static_cast<uint64_t>(reinterpret_cast<unsigned char*>(pool.leaving + kPoolSize) - start);
    std::vector<unsigned char> pages((length + page - 1) / page);
    if (mincore(start, length, pages.data()) != 0)
    {
        return 0;
    }
    return page * static_cast<uint64_t>(std::count_if(pages.begin(), pages.end(),
                                                      [](unsigned char flags) { return (flags & 1) != 0; }));
}

// A new object of the Space with a transform, and a particle component when asked.
GameObjectHandle MakeObject(Space& space, bool withParticles)
{
    const GameObjectHandle object = space.CreateObject();
    object.Get().AddComponent(Components::Transform);
    if (withParticles)
    {
        object.Get().AddComponent(Components::Particle);
    }
    return object;
}

Components::Graphics::ParticleComponent& ParticlesOf(Space& space, GameObjectHandle object)
{
    return space.particles.components.at(object.Get().GetComponent(Components::Particle));
}

// Gives the component count particles that stay, and makes them in one update.
void FillOnce(Space& space, Components::Graphics::ParticleComponent& component, uint32_t count)
{
    ParticleSystem& system = component.system;
    system.emitter = std::make_unique<Emitters::EmitOnce>(count, system.maxParticles);
    system.initializers.push_back(std::make_unique<Initializers::BasicInitializer>(
        Vec2{0.0f, 1.0f}, Graphics::Colour{}, 1000.0f, 0.0f, 0.1f));
    system.updaters.push_back(std::make_unique<Updaters::PositionUpdater>());
    system.terminator = std::make_unique<Terminators::BasicTerminator>();
    component.Update(space, kDt, 0.0f, 0.0f);
}

// Not a timing but one measurement per run: the component's own size and what its pool holds in memory,
// idle and with 1,000 live particles, after components have come and gone a few times so that the heap
// and the factory's array have grown as in a game that has run a while. resident_* is the process's
// growth from before the component was added; pool_resident_* is what mincore finds of its pool alone.
void ParticleComponentMemory(benchmark::State& state)
{
    BenchGame world({});
    Space& space = world.game.rootSpace;
    for (int round = 0; round < 4; ++round)
    {
        std::vector<GameObjectHandle> objects;
        for (int index = 0; index < 8; ++index)
        {
            objects.push_back(MakeObject(space, true));
            FillOnce(space, ParticlesOf(space, objects.back()), 1000 * static_cast<uint32_t>(index + 1));
        }
        for (const GameObjectHandle& object : objects)
        {
            object.Get().Destroy();
        }
        space.DeleteDestroyed(world.game);
    }
    const GameObjectHandle object = MakeObject(space, false);
    uint64_t idleResident = 0;
    uint64_t liveResident = 0;
    uint64_t idlePool = 0;
    uint64_t livePool = 0;
    uint64_t idleHeap = 0;
    for (auto _ : state)
    {
        const uint64_t before = ResidentBytes();
        const uint64_t heapBefore = AllocatedBytes();
        object.Get().AddComponent(Components::Particle);
        // Before reading statm, whose stream takes a buffer of its own.
        idleHeap = AllocatedBytes() - heapBefore;
        idleResident = ResidentBytes() - before;
        Components::Graphics::ParticleComponent& component = ParticlesOf(space, object);
        idlePool = PoolResidentBytes(component.system.particles);
        FillOnce(space, component, 1000);
        liveResident = ResidentBytes() - before;
        livePool = PoolResidentBytes(component.system.particles);
        benchmark::DoNotOptimize(component.system.liveCount);
    }
    state.counters["sizeof"] = static_cast<double>(sizeof(Components::Graphics::ParticleComponent));
    state.counters["idle_heap_bytes"] = static_cast<double>(idleHeap);
    state.counters["idle_resident_bytes"] = static_cast<double>(idleResident);
    state.counters["idle_pool_resident_bytes"] = static_cast<double>(idlePool);
    state.counters["live1000_resident_bytes"] = static_cast<double>(liveResident);
    state.counters["live1000_pool_resident_bytes"] = static_cast<double>(livePool);
    state.counters["live"] = static_cast<double>(ParticlesOf(space, object).system.liveCount);
}
BENCHMARK(ParticleComponentMemory)->Iterations(1);

} // namespace
