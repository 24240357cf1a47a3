// Particles in a game that draws: the script surface with its exact errors and limits, the frame's
// ageing, gathering and removal, and the particle program and texture on the card.

#include "Components/Space.h"
#include "Graphics/Bitmap.h"
#include "Graphics/GraphicsSystem.h"
#include "Graphics/ParticleComponent.h"
#include "Support/OffscreenWindow.h"
#include "Support/ScriptScenario.h"

#include <algorithm>
#include <epoxy/gl.h>
#include <gtest/gtest.h>

namespace
{

using Components::Graphics::ParticleComponent;

class ParticleScripts : public ScriptScenario
{
protected:
    ParticleScripts() : ScriptScenario(true) {}

    // The particle component of the root Space's object of that name.
    ParticleComponent& Effect(const std::string& objectName)
    {
        for (ParticleComponent& effect : game.rootSpace.particles.components)
        {
            if (game.rootSpace.FindObject(effect.owner)->name == objectName)
            {
                return effect;
            }
        }
        throw std::runtime_error("no particle component on " + objectName);
    }
};

TEST_F(ParticleScripts, EveryFunctionChecksItsArgumentsBeforeChangingAnything)
{
    ASSERT_EQ(Run("o = MainSpace:CreateObject({ Name = 'P', Transform = {} }) p = o:AddComponent('Particle') "
                  "MainSpace:CreateObject({ Name = 'Bare' }):AddComponent('Particle')"),
              "");
    EXPECT_EQ(log.Messages("Components", LogLevel::Warning),
              std::vector<std::string>{"Transform not in this object: Bare"})
        << "only an object without a transform hears of it";
    const struct
    {
        const char* chunk;
        const char* outcome;
    } rows[] = {
        {"p:SetEmitter('constant', 1)", "Emitter type: constant not found"},
        {"p:SetEmitter(5)", "Emitter type: 5 not found"},
        {"p:SetEmitter(nil)", "bad argument #1 to 'SetEmitter' (string expected, got nil)"},
        {"p:SetEmitter('Once', 2.5)",
         "bad argument #2 to 'SetEmitter' (number has no integer representation)"},
        {"p:SetEmitter('Constant')", "bad argument #2 to 'SetEmitter' (number expected, got no value)"},
        {"p:SetTerminator('Fade', 1)", "Emitter type: Fade not found"},
        {"p:SetTerminator('FadeOut')", "bad argument #2 to 'SetTerminator' (number expected, got no value)"},
        {"p:SetInitializer('basic', 0, 1)", "Initializer type: basic not found"},
        {"p:SetInitializer('Basic')", "bad argument #2 to 'SetInitializer' (number expected, got no value)"},
        {"p:SetInitializer('Random', 1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 2, 3, 4, 5, 6, 7, 8)",
         "bad argument #19 to 'SetInitializer' (number expected, got no value)"},
        {"p:SetOffset('Ring', 1, 2, 3, 4)", "Offset type:Ring not found"},
        {"p:SetOffset('Square', 1, 2, 3)", "bad argument #5 to 'SetOffset' (number expected, got no value)"},
        {"p:SetUpdater7('Spin')", "Updater type: Spin not found"},
        {"p:AddUpdater('Vortex', 1, 2)", "bad argument #4 to 'AddUpdater' (number expected, got no value)"},
        {"p:SetBlendMode('additive')", "BlendMode:additive not found"},
        {"p:Pulse('x')", "bad argument #1 to 'Pulse' (number expected, got string)"},
        {"p.Pulse(o.Transform, 1)", "bad argument #1 to 'Pulse' (Particle expected, got Transform)"},
        {"Graphics:SpawnParticles(0, 0, 1, 100001)",
         "bad argument #4 to 'SpawnParticles' (count must be from 0 to 100000)"},
        {"Graphics:SpawnParticles(0, 0, 1, -1)",
         "bad argument #4 to 'SpawnParticles' (count must be from 0 to 100000)"},
        {"Graphics:SpawnParticles(0, 0, 1, 2.5)",
         "bad argument #4 to 'SpawnParticles' (number has no integer representation)"},
        {"Graphics:SpawnParticles(0, 0, 1, 1, 1, 1, -1)",
         "bad argument #7 to 'SpawnParticles' (time must be a finite number of seconds, 0 or more)"},
        {"Graphics:SpawnParticles(0, 0, 1, 1, 1, 1, 1, 0 / 0)",
         "bad argument #8 to 'SpawnParticles' (time must be a finite number of seconds, 0 or more)"},
    };
    for (const auto& row : rows)
    {
        EXPECT_EQ(Outcome(row.chunk), row.outcome) << row.chunk;
    }
    const ParticleComponent& effect = Effect("P");
    EXPECT_EQ(effect.system.initializers.size() + effect.system.updaters.size(), 0u) << "nothing was made";
    EXPECT_EQ(effect.system.terminator, nullptr);
    EXPECT_TRUE(game.graphics.particleSystems.empty());

    ASSERT_EQ(Run("p:SetEmitter('Pulse') p:Pulse(10) p:Pulse(10) p:SetUpdater0('Drag', 1) "
                  "p:SetUpdater0('Vortex', 0, 0, 1) "
                  "p:SetTerminator('Basic') p:SetTerminator('ScaleOut', 0) p:SetBlendMode('Subtractive') "
                  "p:SetFrames('Fonts/font.png') p:SetFrames()"),
              "");
    EXPECT_EQ(effect.system.updaters.size(), 2u);
    EXPECT_EQ(effect.system.blendMode, 2);
    EXPECT_EQ(effect.system.texture, effect.frames.front());
    Frame(1.0 / 60.0);
    EXPECT_EQ(effect.system.liveCount, 20u) << "two pulses of ten at the first update";
    ASSERT_EQ(Run("p:Pulse(math.maxinteger) p:Pulse(math.maxinteger)"), "");
    EXPECT_EQ(effect.system.pendingPulses, -2) << "pulses add as 32-bit integers and wrap";

    // Ten bursts of the largest count reach the limit; one more of any count is refused.
    ASSERT_EQ(Run("for i = 1, 10 do Graphics:SpawnParticles(0, 0, 1, 100000, 1, 1, 0, 0) end"), "");
    EXPECT_EQ(Outcome("Graphics:SpawnParticles(0, 0, 1, 0)"), "Too many spawned particles: limit 1000000");
    EXPECT_EQ(game.graphics.particleSystems.size(), 10u);
    ASSERT_EQ(Run("o:Destroy()"), "");
    Frame(1.0 / 60.0);
    EXPECT_EQ(Outcome("p:Pulse(1)"), "Particle component is null");
}

TEST_F(ParticleScripts, BurstsAgeWithUnpausedSpacesAndGoAfterTheirLastDraw)
{
    ASSERT_EQ(Run("o = MainSpace:CreateObject({ Name = 'P', Transform = {} }) p = o:AddComponent('Particle') "
                  "p:SetEmitter('Once', 3) Graphics:SpawnParticles(0, 0) Graphics:SpawnParticles(0, 0, 1, 0, "
                  "1, 1, 0, 0)"),
              "");
    const ParticleComponent& effect = Effect("P");
    // A life of 0.5 + 1/3: still there after three frames of 0.25, gone in the fourth, after its draw.
    const size_t expected[] = {1, 1, 1, 0};
    for (const size_t bursts : expected)
    {
        Frame(0.25);
        EXPECT_EQ(game.graphics.particleSystems.size(), bursts);
    }
    game.rootSpace.paused = true;
    const float life = effect.system.particles.life[0];
    Frame(0.25);
    EXPECT_EQ(effect.system.particles.life[0], life) << "a paused Space doesn't age its particles";
    const auto& drawn = game.graphics.Drawables();
    EXPECT_TRUE(std::any_of(drawn.begin(), drawn.end(),
                            [&](const Graphics::Drawable& entry) { return entry.component == &effect; }))
        << "but still draws them";
}

// An untextured system draws with the texture bound before; the particle program is built once, or tried
// again for each new system while its shaders are broken.
TEST_F(ParticleScripts, TheProgramIsBuiltOnceAndAnUntexturedSystemKeepsTheBoundTexture)
{
    using Graphics::Particles::ParticleSystem;
    using Graphics::Particles::PoolMemory;
    ParticleSystem untextured(1, 0.0f, PoolMemory::Heap);
    GLint bound = 0;
    game.graphics.UploadTexture(game.graphics.font);
    untextured.Draw(game.graphics);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(static_cast<uint32_t>(bound), game.graphics.font->texture);

    // The first system built the program; the second leaves GL's program alone.
    glUseProgram(0);
    const ParticleSystem second(1, 0.0f, PoolMemory::Heap);
    GLint current = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &current);
    EXPECT_EQ(current, 0) << "a good program is built once";

    Graphics::Particles::ParticleSystem::ForgetProgram();
    Write("Shaders/PGeo.glsl", "#version 330 compatibility\nnot glsl\n");
    std::filesystem::remove(data.Path() / "Shaders/PFrag.glsl");
    for (int system = 0; system < 2; ++system)
    {
        log.Clear();
        const ParticleSystem broken(1, 0.0f, PoolMemory::Heap);
        const std::vector<std::string> errors = log.Messages("Graphics", LogLevel::Error);
        ASSERT_EQ(errors.size(), 3u) << system;
        EXPECT_TRUE(errors[0].starts_with("Failed to compile Shader!\n"));
        EXPECT_TRUE(errors[1].starts_with("Failed to compile Shader!\n"));
        EXPECT_EQ(errors[2],
                  "Failed to Create program \"Particle Draw Shader\": Geometry shader failed to compile");
    }
}

} // namespace
