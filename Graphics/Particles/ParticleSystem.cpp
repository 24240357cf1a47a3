#include "Graphics/Particles/ParticleSystem.h"

#include "FileSystem/AssetManager.h"
#include "Graphics/Bitmap.h"
#include "Graphics/GLContext.h"
#include "Graphics/GraphicsSystem.h"
#include "Graphics/Shaders/ParticleDrawProgram.h"

#include <epoxy/gl.h>

namespace Graphics::Particles
{
namespace
{

// Shared by every system: built by the first system made while a context is current, tried again by the
// next one if building failed, and forgotten when the context goes.
Shaders::ParticleDrawProgram program;

void BuildProgramOnce()
{
    if (program.id != 0 || !HasCurrentGLContext())
    {
        return;
    }
    const std::string vertex = FileSystem::LoadTextFile("Shaders/PVert.glsl");
    const std::string geometry = FileSystem::LoadTextFile("Shaders/PGeo.glsl");
    const std::string fragment = FileSystem::LoadTextFile("Shaders/PFrag.glsl");
    program = Shaders::ParticleDrawProgram(vertex, geometry, fragment, "Particle Draw Shader");
}

void SetBlendState(int32_t blendMode)
{
    if (blendMode == BlendAdditive)
    {
        glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    }
    else if (blendMode == BlendSubtractive)
    {
        glBlendFunc(GL_SRC_ALPHA, GL_ONE);
        glBlendEquation(GL_FUNC_REVERSE_SUBTRACT);
    }
}

} // namespace

ParticleSystem::ParticleSystem(uint64_t capacity, float systemLife, PoolMemory memory)
    : life(systemLife), maxParticles(capacity)
{
    BuildProgramOnce();
    particles = ParticlePool(capacity, memory);
}

ParticleSystem::~ParticleSystem() = default;
ParticleSystem::ParticleSystem(ParticleSystem&&) noexcept = default;
ParticleSystem& ParticleSystem::operator=(ParticleSystem&&) noexcept = default;

void ParticleSystem::ForgetProgram()
{
    program = Shaders::ParticleDrawProgram();
}

bool ParticleSystem::Spawn(Emitters::ParticleEmitter& spawner)
{
    if (liveCount >= maxParticles)
    {
        return false;
    }
    const uint32_t i = liveCount;
    particles.position[i] = position;
    particles.velocity[i] = Vec2{};
    particles.colour[i] = Colour{};
    particles.startAlpha[i] = 1.0f;
    particles.startScale[i] = 0.0f;
    particles.life[i] = 10.0f;
    particles.startLife[i] = 10.0f;
    particles.rotation[i] = rotation;
    particles.scale[i] = scale;
    particles.leaving[i] = 0;
    ++liveCount;
    ++spawner.newCount;
    return true;
}

void ParticleSystem::Start()
{
    for (const auto& initializer : initializers)
    {
        initializer->OnStart(*this);
    }
    if (emitter != nullptr && emitter->Start(*this) != 0)
    {
        InitializeNew(0.0f, 0.0f);
    }
    if (terminator != nullptr)
    {
        terminator->OnStart(*this);
    }
    for (const auto& updater : updaters)
    {
        updater->OnStart(*this);
    }
}

void ParticleSystem::Update(float dt, float spaceTime, float absoluteTime)
{
    life -= dt;
    if (emitter->Update(*this, dt, spaceTime, absoluteTime) != 0)
    {
        InitializeNew(spaceTime, absoluteTime);
    }
    AgeAndUpdate(dt, spaceTime, absoluteTime);
}

void ParticleSystem::InitializeNew(float spaceTime, float absoluteTime)
{
    for (const auto& initializer : initializers)
    {
        initializer->Initialize(*this, *emitter, spaceTime, absoluteTime);
    }
}

void ParticleSystem::AgeAndUpdate(float dt, float spaceTime, float absoluteTime)
{
    float* lives = particles.life;
    for (uint32_t i = 0; i < liveCount; ++i)
    {
        lives[i] -= dt;
    }
    // Without a terminator a dying particle is left alone for good: frozen, and still drawn.
    const bool keepsDying = terminator != nullptr;
    for (const auto& updater : updaters)
    {
        updater->Update(*this, ParticleRange{0, liveCount}, keepsDying && updater->runsWhileDying, dt,
                        spaceTime, absoluteTime);
    }
    if (keepsDying &&
        terminator->Update(*this, ParticleRange{0, liveCount}, dt, spaceTime, absoluteTime) != 0)
    {
        RemoveLeaving();
    }
}

void ParticleSystem::RemoveLeaving()
{
    uint32_t i = 0;
    while (i < liveCount)
    {
        if (particles.leaving[i] == 0)
        {
            ++i;
            continue;
        }
        // The last live particle takes the gap and is looked at next, as it hasn't been yet.
        --liveCount;
        particles.Swap(i, liveCount);
    }
}

void ParticleSystem::Draw(GraphicsSystem& graphics)
{
    SetBlendState(blendMode);
    graphics.UseProgram(&program);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    if (texture != nullptr)
    {
        if (texture->texture == 0)
        {
            graphics.UploadTexture(texture);
        }
        glBindTexture(GL_TEXTURE_2D, texture->texture);
    }
    CheckGLError(__FILE__, __LINE__);
    // A point's z and w carry the rotation and the scale to the geometry shader.
    glBegin(GL_POINTS);
    for (uint32_t i = 0; i < liveCount; ++i)
    {
        const Colour& colour = particles.colour[i];
        glColor4f(colour.r, colour.g, colour.b, colour.a);
        glVertex4f(particles.position[i].x, particles.position[i].y, particles.rotation[i],
                   particles.scale[i]);
    }
    glEnd();
    if (blendMode != BlendNormal)
    {
        glBlendEquation(GL_FUNC_ADD);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    }
    CheckGLError(__FILE__, __LINE__);
}

} // namespace Graphics::Particles
