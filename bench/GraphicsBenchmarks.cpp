// What drawing costs on the CPU, offscreen and never swapping: ten thousand sprites of sixteen bitmaps at
// random z, a thousand texts of 32 glyphs, and the debug line queue. Every quad is a draw call of its own,
// so the sprite and text frames are measured against raw-GL twins that submit the same quads with nothing
// of the engine around them: the difference is the engine's own overhead. One iteration is one Space's
// frame; draw_ms is the glFinish after it, the driver's work on the submitted quads.

#include "AllocationCounter.h"
#include "BenchGame.h"
#include "Graphics/Bitmap.h"
#include "Graphics/GraphicsSystem.h"
#include "Graphics/SpriteComponent.h"
#include "Graphics/TextSpriteComponent.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <epoxy/gl.h>
#include <random>

namespace
{

using Clock = std::chrono::steady_clock;
constexpr int kSprites = 10000;
constexpr int kBitmaps = 16;
constexpr int kTexts = 1000;
constexpr int kGlyphs = 32;

double Seconds(Clock::time_point from, Clock::time_point to)
{
    return std::chrono::duration<double>(to - from).count();
}

// One quad as the engine places it: the same matrix calls, texture binding and uniforms as DrawQuad.
struct RawQuad
{
    Vec2 position;
    Vec2 pivot;
    Vec2 scale;
    uint32_t texture;
    Graphics::UVRect uv;
    float rotation;
};

void DrawRaw(const Graphics::Shaders::RenderProgram& program, const RawQuad& quad)
{
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(quad.position.x, quad.position.y, 0.0f);
    glRotatef(quad.rotation * 57.29578f, 0.0f, 0.0f, 1.0f);
    glScalef(quad.scale.x, quad.scale.y, 1.0f);
    glTranslatef(-quad.pivot.x, -quad.pivot.y, 0.0f);
    glBindTexture(GL_TEXTURE_2D, quad.texture);
    glUniform4f(program.uvArray, quad.uv.top, quad.uv.right, quad.uv.bottom, quad.uv.left);
    glUniform4f(program.triangleColor, 1.0f, 1.0f, 1.0f, 1.0f);
    glUniform1i(program.textureColor, 0);
    glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_INT, nullptr);
}

// A windowed game whose root Space holds the scene; Frame runs the graphics update of that Space.
class DrawingWorld : public BenchGame
{
public:
    DrawingWorld() : BenchGame({}, true) {}

    // The CPU time of one frame as the iteration's time, the glFinish that follows as draw time.
    template <typename Submit>
    void Measure(benchmark::State& state, Submit submit)
    {
        double drawSeconds = 0.0;
        for (auto _ : state)
        {
            const Clock::time_point start = Clock::now();
            submit();
            const Clock::time_point submitted = Clock::now();
            glFinish();
            drawSeconds += Seconds(submitted, Clock::now());
            state.SetIterationTime(Seconds(start, submitted));
        }
        state.counters["draw_ms"] =
            benchmark::Counter(drawSeconds * 1000.0 / static_cast<double>(state.iterations()));
    }

    void Frame() { game.graphics.Update(game, game.rootSpace, kDt, 0.0, 0.0); }

    GameObjectHandle MakeObject(Vec2 position, float size, int32_t z)
    {
        const GameObjectHandle object = game.rootSpace.CreateObject();
        auto& transform =
            game.rootSpace.transforms.components.at(object.Get().AddComponent(Components::Transform));
        transform.position = position;
        transform.scale = Vec2{size, size};
        transform.z = z;
        return object;
    }

    std::mt19937 random{20261125};
};

class SpriteWorld : public DrawingWorld
{
public:
    SpriteWorld()
    {
        for (int index = 0; index < kBitmaps; ++index)
        {
            auto pixels = std::make_unique<uint8_t[]>(16 * 16 * 4);
            std::fill_n(pixels.get(), 16 * 16 * 4, static_cast<uint8_t>(index * 16));
            bitmaps.push_back(std::make_shared<Graphics::Bitmap>(16, 16, std::move(pixels), "bitmap"));
        }
        std::uniform_real_distribution<float> x(-13.0f, 13.0f);
        std::uniform_real_distribution<float> y(-10.0f, 10.0f);
        std::uniform_int_distribution<int32_t> z(-1000, 1000);
        for (int index = 0; index < kSprites; ++index)
        {
            const GameObjectHandle object = MakeObject(Vec2{x(random), y(random)}, 0.5f, z(random));
            auto& sprite =
                game.rootSpace.sprites.components.at(object.Get().AddComponent(Components::Sprite));
            sprite.frames.push_back(bitmaps[static_cast<size_t>(index % kBitmaps)]);
        }
        // Textures go to the card on first use, not inside the measured frames.
        Frame();
        glFinish();
    }

    // The frame's quads in the order it draws them, with everything looked up beforehand.
    std::vector<RawQuad> RawQuads()
    {
        game.graphics.GatherDrawables(game.rootSpace);
        std::vector<RawQuad> quads;
        for (const Graphics::Drawable& drawable : game.graphics.Drawables())
        {
            const auto& sprite =
                static_cast<const Components::Graphics::SpriteComponent&>(*drawable.component);
            const auto& transform = game.rootSpace.transforms.components.at(sprite.transform);
            quads.push_back(RawQuad{transform.position, Vec2{0.5f, -0.5f}, transform.scale,
                                    sprite.frames.front()->texture, sprite.uvs.front(), transform.rotation});
        }
        return quads;
    }

    void DrawRawQuads(const std::vector<RawQuad>& quads)
    {
        game.graphics.UseProgram(&game.graphics.textureProgram);
        for (const RawQuad& quad : quads)
        {
            DrawRaw(game.graphics.textureProgram, quad);
        }
    }

    std::vector<std::shared_ptr<Graphics::Bitmap>> bitmaps;
};

void SpriteFrame(benchmark::State& state)
{
    SpriteWorld world;
    world.Measure(state, [&] { world.Frame(); });
}
BENCHMARK(SpriteFrame)->UseManualTime()->Unit(benchmark::kMillisecond);

void SpriteFrameRawGL(benchmark::State& state)
{
    SpriteWorld world;
    const std::vector<RawQuad> quads = world.RawQuads();
    world.Measure(state, [&] { world.DrawRawQuads(quads); });
}
BENCHMARK(SpriteFrameRawGL)->UseManualTime()->Unit(benchmark::kMillisecond);

// The two above taken in turns within one run, so that the host's drift, which swings separate runs by
// more than the difference, falls on both alike: overhead_ms is the engine's own CPU cost of the frame.
void SpriteFrameOverhead(benchmark::State& state)
{
    SpriteWorld world;
    const std::vector<RawQuad> quads = world.RawQuads();
    double engineSeconds = 0.0;
    double rawSeconds = 0.0;
    for (auto _ : state)
    {
        Clock::time_point start = Clock::now();
        world.Frame();
        glFinish();
        engineSeconds += Seconds(start, Clock::now());
        start = Clock::now();
        world.DrawRawQuads(quads);
        glFinish();
        rawSeconds += Seconds(start, Clock::now());
    }
    const double iterations = static_cast<double>(state.iterations());
    state.counters["engine_ms"] = engineSeconds * 1000.0 / iterations;
    state.counters["raw_ms"] = rawSeconds * 1000.0 / iterations;
    state.counters["overhead_ms"] = (engineSeconds - rawSeconds) * 1000.0 / iterations;
}
BENCHMARK(SpriteFrameOverhead)->Unit(benchmark::kMillisecond);

void SpriteFrameGatherSort(benchmark::State& state)
{
    SpriteWorld world;
    for (auto _ : state)
    {
        world.game.graphics.GatherDrawables(world.game.rootSpace);
        benchmark::DoNotOptimize(world.game.graphics.Drawables().data());
    }
}
BENCHMARK(SpriteFrameGatherSort)->Unit(benchmark::kMicrosecond);

class TextWorld : public DrawingWorld
{
public:
    TextWorld()
    {
        std::uniform_real_distribution<float> x(-13.0f, 0.0f);
        std::uniform_real_distribution<float> y(-10.0f, 10.0f);
        for (int index = 0; index < kTexts; ++index)
        {
            const GameObjectHandle object = MakeObject(Vec2{x(random), y(random)}, 0.5f, 0);
            auto& text =
                game.rootSpace.textSprites.components.at(object.Get().AddComponent(Components::TextSprite));
            text.text = "The quick brown fox jumps over!!";
        }
        Frame();
        glFinish();
    }
};

void TextFrame(benchmark::State& state)
{
    TextWorld world;
    world.Measure(state, [&] { world.Frame(); });
    state.counters["ns_per_glyph"] =
        benchmark::Counter(static_cast<double>(kTexts * kGlyphs),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(TextFrame)->UseManualTime()->Unit(benchmark::kMillisecond);

void TextFrameRawGL(benchmark::State& state)
{
    TextWorld world;
    Graphics::GraphicsSystem& graphics = world.game.graphics;
    std::vector<RawQuad> quads;
    for (const auto& text : world.game.rootSpace.textSprites.components)
    {
        const auto& transform = world.game.rootSpace.transforms.components.at(text.transform);
        float cursor = 0.0f;
        for (const char glyph : text.text)
        {
            if (glyph != ' ')
            {
                quads.push_back(RawQuad{transform.position, Vec2{cursor, 0.0f}, transform.scale,
                                        graphics.font->texture,
                                        graphics.glyphs[static_cast<unsigned char>(glyph)], 0.0f});
            }
            cursor -= 0.75f;
        }
    }
    graphics.UseProgram(&graphics.textureProgram);
    world.Measure(state,
                  [&]
                  {
                      for (const RawQuad& quad : quads)
                      {
                          DrawRaw(graphics.textureProgram, quad);
                      }
                  });
    state.counters["ns_per_glyph"] =
        benchmark::Counter(static_cast<double>(kTexts * kGlyphs),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(TextFrameRawGL)->UseManualTime()->Unit(benchmark::kMillisecond);

// Queueing alone, into a queue that has grown before: no allocation may happen.
void DebugDrawQueue(benchmark::State& state)
{
    DrawingWorld world;
    Graphics::GraphicsSystem& graphics = world.game.graphics;
    const Graphics::Colour colour{1.0f, 0.0f, 0.0f, 1.0f};
    // Grown once beforehand, as a steady game's queue is.
    graphics.debugLines.reserve(kSprites);
    uint64_t allocations = 0;
    for (auto _ : state)
    {
        graphics.debugLines.clear();
        const uint64_t before = AllocationCount();
        for (int index = 0; index < kSprites; ++index)
        {
            const auto at = static_cast<float>(index);
            graphics.AddDebugLine(Vec2{at, 0.0f}, Vec2{0.0f, at}, colour);
        }
        allocations += AllocationCount() - before;
        benchmark::DoNotOptimize(graphics.debugLines.data());
    }
    state.counters["ns_per_line"] = benchmark::Counter(
        kSprites, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["allocations"] = static_cast<double>(allocations);
    graphics.debugLines.clear();
}
BENCHMARK(DebugDrawQueue)->Unit(benchmark::kMicrosecond);

// Drawing ten thousand queued lines: one glBegin each, as the flush does.
void DebugDrawFlush(benchmark::State& state)
{
    DrawingWorld world;
    Graphics::GraphicsSystem& graphics = world.game.graphics;
    const Graphics::Colour colour{1.0f, 0.0f, 0.0f, 1.0f};
    world.Measure(state,
                  [&]
                  {
                      for (int index = 0; index < kSprites; ++index)
                      {
                          const auto at = static_cast<float>(index % 20) - 10.0f;
                          graphics.AddDebugLine(Vec2{at, -10.0f}, Vec2{-at, 10.0f}, colour);
                      }
                      world.Frame();
                  });
}
BENCHMARK(DebugDrawFlush)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
