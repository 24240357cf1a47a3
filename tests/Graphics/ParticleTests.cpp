// The particle machine without a window: each policy's arithmetic and random draws, emitters that end
// whatever their numbers, and the batched update against a particle-by-particle loop.

#include "Core/Random.h"
#include "Graphics/Particles/ParticleSystem.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <random>

namespace
{

using namespace Graphics::Particles;
using Graphics::Colour;

// The engine's uniform draw, as a test predicts it from the generator.
float Draw(float a, float b)
{
    return static_cast<float>(Core::Rand()) / 32767.0f * (b - a) + a;
}

void Add(ParticleSystem& system, std::unique_ptr<Updaters::ParticleUpdater> updater)
{
    system.updaters.push_back(std::move(updater));
}

void Add(ParticleSystem& system, std::unique_ptr<Terminators::ParticleTerminator> terminator)
{
    system.terminator = std::move(terminator);
}

// A policy made anew for each system.
template <typename Policy, typename... Arguments>
auto Make(Arguments... arguments)
{
    return [=] { return std::make_unique<Policy>(arguments...); };
}

// One particle of life `life`, scale 1 and alpha 0.8 at the first update, at rest at the system's
// position, run by the policies given.
template <typename... Factories>
std::function<void(ParticleSystem&)> OneParticle(float life, Factories... factories)
{
    return [=](ParticleSystem& system)
    {
        system.emitter = std::make_unique<Emitters::EmitOnce>(1, system.maxParticles);
        system.initializers.push_back(std::make_unique<Initializers::BasicInitializer>(
            Vec2{}, Colour{1.0f, 1.0f, 1.0f, 0.8f}, life, 0.0f, 1.0f));
        (Add(system, factories()), ...);
    };
}

struct PolicyRow
{
    const char* name;
    std::function<void(ParticleSystem&)> setUp;
    std::vector<float> dts;
    std::function<void(const ParticleSystem&, const ParticlePool&)> check;
};

const Initializers::RandomBounds kLow{-1.0f, 1.0f, {0.1f, 0.2f, 0.3f, 0.4f}, 2.0f, -0.5f, 0.5f};
const Initializers::RandomBounds kHigh{1.0f, 3.0f, {0.9f, 0.8f, 0.7f, 0.6f}, 4.0f, 0.5f, 1.5f};

const std::vector<PolicyRow> kPolicyRows = {
    {"pulses come at the next update and are spent",
     [](ParticleSystem& s)
     {
         s.emitter = std::make_unique<Emitters::EmitPulse>();
         s.pendingPulses = 5;
     },
     {0.1f, 0.1f},
     [](const ParticleSystem& s, const ParticlePool&) { EXPECT_EQ(s.liveCount, 5u); }},
    {"pulses beyond the pool are lost",
     [](ParticleSystem& s)
     {
         s.emitter = std::make_unique<Emitters::EmitPulse>();
         s.pendingPulses = INT32_MAX;
     },
     {0.1f},
     [](const ParticleSystem& s, const ParticlePool&)
     {
         EXPECT_EQ(s.liveCount, 1000u);
         EXPECT_EQ(s.pendingPulses, 0);
     }},
    {"once of -1 fills the pool",
     [](ParticleSystem& s) { s.emitter = std::make_unique<Emitters::EmitOnce>(UINT32_MAX, s.maxParticles); },
     {},
     [](const ParticleSystem& s, const ParticlePool&) { EXPECT_EQ(s.liveCount, 1000u); }},
    {"fade in: half way at half the time",
     OneParticle(10.0f, Make<Updaters::FadeInUpdater>(2.0f)),
     {1.0f},
     [](const ParticleSystem&, const ParticlePool& p) { EXPECT_FLOAT_EQ(p.colour[0].a, 0.4f); }},
    {"fade out a quarter into its time",
     OneParticle(1.0f, Make<Terminators::FadeOut>(1.0f)),
     {1.25f},
     [](const ParticleSystem& s, const ParticlePool& p)
     {
         EXPECT_EQ(s.liveCount, 1u);
         EXPECT_FLOAT_EQ(p.colour[0].a, 0.6f);
     }},
    {"fade out at its end still draws",
     OneParticle(1.0f, Make<Terminators::FadeOut>(1.0f)),
     {1.0f, 1.0f},
     [](const ParticleSystem& s, const ParticlePool&) { EXPECT_EQ(s.liveCount, 1u); }},
    {"fade out past its end removes",
     OneParticle(1.0f, Make<Terminators::FadeOut>(1.0f)),
     {1.0f, 1.01f},
     [](const ParticleSystem& s, const ParticlePool&) { EXPECT_EQ(s.liveCount, 0u); }},
    {"a basic terminator removes at life 0",
     OneParticle(0.5f, Make<Terminators::BasicTerminator>()),
     {0.25f, 0.25f},
     [](const ParticleSystem& s, const ParticlePool&) { EXPECT_EQ(s.liveCount, 0u); }},
    {"without a terminator the dead freeze and stay",
     [](ParticleSystem& s)
     {
         s.emitter = std::make_unique<Emitters::EmitOnce>(1, s.maxParticles);
         s.initializers.push_back(
             std::make_unique<Initializers::BasicInitializer>(Vec2{0.0f, 1.0f}, Colour{}, 0.5f, 0.0f, 1.0f));
         s.updaters.push_back(std::make_unique<Updaters::PositionUpdater>());
     },
     {0.25f, 0.25f, 0.25f},
     [](const ParticleSystem& s, const ParticlePool& p)
     {
         EXPECT_EQ(s.liveCount, 1u);
         EXPECT_EQ(p.position[0].y, 0.25f) << "life 0 is dying: the second step moved nothing";
     }},
    {"hue: red at death",
     OneParticle(0.5f, Make<Updaters::HueUpdater>(), Make<Terminators::FadeOut>(1.0f)),
     {0.5f},
     [](const ParticleSystem&, const ParticlePool& p)
     {
         EXPECT_EQ((std::vector<float>{p.colour[0].r, p.colour[0].g, p.colour[0].b}),
                   (std::vector<float>{1, 0, 0}));
     }},
    {"hue: magenta before death, orange after",
     OneParticle(1.5f, Make<Updaters::HueUpdater>(), Make<Terminators::FadeOut>(1.0f)),
     {0.5f},
     [](const ParticleSystem&, const ParticlePool& p)
     {
         // Life 1: -57.3 degrees, so 302.7, the sixth sixth of the circle.
         EXPECT_EQ(p.colour[0].r, 1.0f);
         EXPECT_EQ(p.colour[0].g, 0.0f);
         EXPECT_NEAR(p.colour[0].b, 0.955f, 1e-3f);
         EXPECT_EQ(p.colour[0].a, 0.8f) << "alpha stays";
     }},
    {"hue after death turns the other way",
     OneParticle(0.5f, Make<Updaters::HueUpdater>(), Make<Terminators::FadeOut>(1e9f)),
     {1.0f, 1e9f},
     [](const ParticleSystem& s, const ParticlePool& p)
     {
         EXPECT_EQ(s.liveCount, 1u);
         EXPECT_TRUE(p.colour[0].r >= 0.0f && p.colour[0].r <= 1.0f) << "a life of -1e9 ends in one turn";
     }},
    {"vortex pulls by the inverse square",
     OneParticle(10.0f, Make<Updaters::VortexUpdater>(Vec2{2.0f, 0.0f}, 1.0f)),
     {0.5f},
     [](const ParticleSystem&, const ParticlePool& p) { EXPECT_EQ(p.velocity[0].x, 0.25f); }},
    {"a particle on the vortex centre gets NaN",
     OneParticle(10.0f, Make<Updaters::VortexUpdater>(Vec2{}, 1.0f)),
     {0.5f},
     [](const ParticleSystem&, const ParticlePool& p) { EXPECT_TRUE(std::isnan(p.velocity[0].x)); }},
    {"scale: the basic start scale leaves out the system's",
     [](ParticleSystem& s)
     {
         s.scale = 2.0f;
         s.emitter = std::make_unique<Emitters::EmitOnce>(1, s.maxParticles);
         s.initializers.push_back(
             std::make_unique<Initializers::BasicInitializer>(Vec2{}, Colour{}, 10.0f, 0.0f, 3.0f));
         Add(s, std::make_unique<Updaters::ScaleInUpdater>(0.5f));
     },
     {1.0f},
     [](const ParticleSystem&, const ParticlePool& p)
     {
         EXPECT_EQ(p.scale[0], 3.0f);
         EXPECT_EQ(p.startScale[0], 3.0f);
     }},
    {"random: nine draws in order",
     [](ParticleSystem& s)
     {
         s.scale = 2.0f;
         s.rotation = 0.5f;
         s.emitter = std::make_unique<Emitters::EmitOnce>(2, s.maxParticles);
         s.initializers.push_back(std::make_unique<Initializers::RandomInitializer>(kLow, kHigh));
     },
     {},
     [](const ParticleSystem&, const ParticlePool& p)
     {
         Core::SeedRand(7);
         for (uint32_t i = 0; i < 2; ++i)
         {
             EXPECT_EQ(p.life[i], Draw(2.0f, 4.0f));
             EXPECT_EQ(p.colour[i].r, Draw(0.1f, 0.9f));
             EXPECT_EQ(p.colour[i].g, Draw(0.2f, 0.8f));
             EXPECT_EQ(p.colour[i].b, Draw(0.3f, 0.7f));
             EXPECT_EQ(p.startAlpha[i], Draw(0.4f, 0.6f));
             const float angle = Draw(-1.0f, 1.0f) + 0.5f;
             const float speed = Draw(1.0f, 3.0f) * 2.0f;
             EXPECT_EQ(p.velocity[i].x, sinf(angle) * speed);
             EXPECT_EQ(p.rotation[i], Draw(-0.5f, 0.5f) + 0.5f);
             EXPECT_EQ(p.startScale[i], Draw(0.5f, 1.5f) * 2.0f);
         }
     }},
    {"velocity, circle, square and scale draws",
     [](ParticleSystem& s)
     {
         s.scale = 2.0f;
         s.emitter = std::make_unique<Emitters::EmitOnce>(1, s.maxParticles);
         s.initializers.push_back(std::make_unique<Initializers::RandomVelocity>(1.0f, 2.0f, 3.0f, 4.0f));
         s.initializers.push_back(std::make_unique<Initializers::CircleOffset>(0.0f, 1.0f, 3.0f, 2.0f));
         s.initializers.push_back(std::make_unique<Initializers::SquareOffset>(-1.0f, -2.0f, 1.0f, 2.0f));
         s.initializers.push_back(std::make_unique<Initializers::RandomScale>(2.0f, 2.0f));
     },
     {},
     [](const ParticleSystem&, const ParticlePool& p)
     {
         const int32_t next = Core::Rand();
         Core::SeedRand(7);
         const float angle = Draw(1.0f, 2.0f);
         const float speed = Draw(3.0f, 4.0f) * 2.0f;
         EXPECT_EQ(p.velocity[0].y, cosf(angle) * speed);
         EXPECT_EQ(p.rotation[0], atan2f(p.velocity[0].x, p.velocity[0].y));
         const float a = Draw(0.0f, 3.0f);
         const float d = Draw(1.0f, 2.0f) * 2.0f;
         EXPECT_EQ(p.position[0].x, sinf(a) * d * 2.0f + Draw(-1.0f, 1.0f) * 2.0f);
         EXPECT_EQ(p.position[0].y, cosf(a) * d * 2.0f + Draw(-2.0f, 2.0f) * 2.0f);
         Draw(2.0f, 2.0f);
         EXPECT_EQ(Core::Rand(), next) << "a range of no width still draws";
         EXPECT_EQ(p.scale[0], 4.0f);
     }},
};

// A constant emitter's particles and countdown after a series of steps, in a pool of 1000: hostile rates
// and steps end, with the countdown in [0, period).
TEST(ParticlePolicies, ConstantEmittersCarryTheRestOfAStepAndEndOnAnyNumbers)
{
    const struct
    {
        float rate;
        std::vector<float> dts;
        uint32_t live;
        float countdown;
    } rows[] = {
        {10.0f, {0.35f}, 3, 0.05f},     {0.0f, {1.0f}, 0, -1.0f},
        {-5.0f, {1.0f}, 0, -0.2f},      {1e30f, {1e30f, 1.0f / 60.0f, INFINITY}, 1000, 0.0f},
        {INFINITY, {1.0f}, 1000, 0.0f}, {std::nanf(""), {1.0f}, 0, std::nanf("")},
    };
    for (const auto& row : rows)
    {
        ParticleSystem system(1000, 0.0f, PoolMemory::Heap);
        auto owned = std::make_unique<Emitters::EmitConstant>(row.rate);
        const Emitters::EmitConstant& emitter = *owned;
        system.emitter = std::move(owned);
        system.Start();
        for (const float dt : row.dts)
        {
            system.Update(dt, 0.0f, 0.0f);
        }
        EXPECT_EQ(system.liveCount, row.live) << row.rate;
        if (std::isnan(row.countdown))
        {
            EXPECT_TRUE(std::isnan(emitter.countdown));
            continue;
        }
        EXPECT_NEAR(emitter.countdown, row.countdown, 1e-6f) << row.rate;
    }
}

TEST(ParticlePolicies, EachComputesAndDrawsAsDefined)
{
    for (const PolicyRow& row : kPolicyRows)
    {
        SCOPED_TRACE(row.name);
        ParticleSystem system(1000, 0.0f, PoolMemory::Heap);
        row.setUp(system);
        Core::SeedRand(7);
        system.Start();
        for (const float dt : row.dts)
        {
            system.Update(dt, 0.0f, 0.0f);
        }
        row.check(system, system.particles);
    }
}

// A random effect of every kind of policy, built alike from the same seed.
void BuildRandomEffect(ParticleSystem& system, uint32_t seed)
{
    std::mt19937 random(seed);
    const auto pick = [&](float low, float high)
    { return std::uniform_real_distribution<float>(low, high)(random); };
    const auto chance = [&] { return random() % 2 == 0; };
    system.position = Vec2{pick(-5.0f, 5.0f), pick(-5.0f, 5.0f)};
    system.scale = pick(0.5f, 2.0f);
    system.rotation = pick(-3.0f, 3.0f);
    system.emitter = chance()
                         ? std::unique_ptr<Emitters::ParticleEmitter>(std::make_unique<Emitters::EmitPulse>())
                         : std::make_unique<Emitters::EmitConstant>(pick(10.0f, 400.0f));
    std::vector<std::unique_ptr<Initializers::ParticleInitializer>> initializers;
    initializers.push_back(std::make_unique<Initializers::BasicInitializer>(
        Vec2{pick(-1, 1), pick(-1, 1)}, Colour{}, pick(0.1f, 2.0f), pick(-1, 1), pick(0, 2)));
    initializers.push_back(std::make_unique<Initializers::RandomInitializer>(kLow, kHigh));
    initializers.push_back(std::make_unique<Initializers::RandomVelocity>(-1.0f, 1.0f, -2.0f, 2.0f));
    initializers.push_back(std::make_unique<Initializers::RandomScale>(0.5f, 1.0f));
    initializers.push_back(std::make_unique<Initializers::CircleOffset>(-3.0f, 0.0f, 3.0f, 1.0f));
    initializers.push_back(std::make_unique<Initializers::SquareOffset>(-1.0f, -1.0f, 1.0f, 1.0f));
    std::vector<std::unique_ptr<Updaters::ParticleUpdater>> updaters;
    updaters.push_back(std::make_unique<Updaters::PositionUpdater>());
    updaters.push_back(std::make_unique<Updaters::ForceUpdater>(Vec2{pick(-1, 1), pick(-1, 1)}));
    updaters.push_back(std::make_unique<Updaters::DragUpdater>(pick(0.0f, 2.0f)));
    updaters.push_back(std::make_unique<Updaters::FadeInUpdater>(pick(0.1f, 1.0f)));
    updaters.push_back(std::make_unique<Updaters::ScaleInUpdater>(pick(0.1f, 1.0f)));
    updaters.push_back(std::make_unique<Updaters::LinearScaleUpdater>(pick(-1.0f, 1.0f)));
    updaters.push_back(
        std::make_unique<Updaters::VortexUpdater>(Vec2{pick(-1, 1), pick(-1, 1)}, pick(-1, 1)));
    updaters.push_back(std::make_unique<Updaters::HueUpdater>());
    std::shuffle(initializers.begin(), initializers.end(), random);
    std::shuffle(updaters.begin(), updaters.end(), random);
    for (auto& initializer : initializers)
    {
        if (chance())
        {
            system.initializers.push_back(std::move(initializer));
        }
    }
    for (auto& updater : updaters)
    {
        updater->runsWhileDying = chance();
        system.updaters.push_back(std::move(updater));
    }
    const uint32_t terminator = random() % 4;
    if (terminator == 1)
    {
        system.terminator = std::make_unique<Terminators::BasicTerminator>();
    }
    else if (terminator > 1)
    {
        system.terminator = terminator == 2 ? std::unique_ptr<Terminators::ParticleTerminator>(
                                                  std::make_unique<Terminators::FadeOut>(pick(0.1f, 1.0f)))
                                            : std::make_unique<Terminators::ScaleOut>(pick(0.1f, 1.0f));
    }
}

// The update one particle at a time, each policy on that particle alone, removing as it goes.
void UpdateParticleByParticle(ParticleSystem& s, float dt)
{
    s.life -= dt;
    if (s.emitter->Update(s, dt, 0.0f, 0.0f) != 0)
    {
        for (const auto& initializer : s.initializers)
        {
            initializer->Initialize(s, *s.emitter, 0.0f, 0.0f);
        }
    }
    uint32_t i = 0;
    while (i < s.liveCount)
    {
        const ParticleRange one{i, i + 1};
        s.particles.life[i] -= dt;
        const bool dying = !(s.particles.life[i] > 0.0f);
        if (dying && s.terminator == nullptr)
        {
            ++i;
            continue;
        }
        for (const auto& updater : s.updaters)
        {
            if (!dying || updater->runsWhileDying)
            {
                updater->Update(s, one, dying, dt, 0.0f, 0.0f);
            }
        }
        if (!dying || s.terminator->Update(s, one, dt, 0.0f, 0.0f) == 0)
        {
            ++i;
            continue;
        }
        s.particles.Swap(i, --s.liveCount);
    }
}

bool SameLiveParticles(const ParticleSystem& a, const ParticleSystem& b)
{
    const uint32_t n = a.liveCount;
    const auto same = [&](auto column)
    {
        const auto* p = a.particles.*column;
        return std::memcmp(p, b.particles.*column, sizeof(*p) * n) == 0;
    };
    return n == b.liveCount && same(&ParticlePool::position) && same(&ParticlePool::velocity) &&
           same(&ParticlePool::colour) && same(&ParticlePool::startAlpha) &&
           same(&ParticlePool::startScale) && same(&ParticlePool::life) && same(&ParticlePool::startLife) &&
           same(&ParticlePool::rotation) && same(&ParticlePool::scale);
}

TEST(ParticleSystems, TheBatchedUpdateMatchesAParticleByParticleLoopBitForBit)
{
    for (uint32_t seed = 1; seed <= 12; ++seed)
    {
        ParticleSystem batched(300, 0.0f, PoolMemory::Heap);
        ParticleSystem reference(300, 0.0f, PoolMemory::Pages);
        BuildRandomEffect(batched, seed);
        BuildRandomEffect(reference, seed);
        std::mt19937 frames(seed);
        uint32_t removals = 0;
        for (int frame = 0; frame < 1000; ++frame)
        {
            const float dt = std::uniform_real_distribution<float>(0.0f, 0.05f)(frames);
            batched.pendingPulses = reference.pendingPulses = static_cast<int32_t>(frames() % 8);
            const uint32_t before = batched.liveCount;
            Core::SeedRand(seed + static_cast<uint32_t>(frame));
            batched.Update(dt, 0.0f, 0.0f);
            Core::SeedRand(seed + static_cast<uint32_t>(frame));
            UpdateParticleByParticle(reference, dt);
            removals += before + batched.emitter->newCount - batched.liveCount;
            ASSERT_TRUE(SameLiveParticles(batched, reference)) << "seed " << seed << ", frame " << frame;
        }
        EXPECT_TRUE(batched.terminator == nullptr || removals > 0) << "seed " << seed << " removed nothing";
    }
}

} // namespace
