#pragma once

// The engine system that owns the GL context, the two render programs, the unit quad, the camera, the
// textures on the card, the debug draw queues and the particle bursts that scripts spawn. Once per frame
// and Space it ages the particles, gathers the Space's visible drawables, sorts them by their transform's z
// and draws them, one quad per sprite and per glyph: there is no batching and no depth buffer, so the sort
// alone decides what covers what.
//
// World coordinates have y up; screen coordinates have their origin in the top left corner, y down, in
// pixels. The camera is a centre and the height of the visible world; the visible width follows from the
// window's shape. Everything here runs on the game loop's thread, the one the context is current on.

#include "Components/Vec2.h"
#include "Core/System.h"
#include "Graphics/Colour.h"
#include "Graphics/DebugShapes.h"
#include "Graphics/Particles/ParticleSystem.h"
#include "Graphics/Shaders/RenderProgram.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct SDL_Window;

namespace Debug
{
struct ProfileRecord;
}

namespace Components::Graphics
{
class GraphicsComponent;
}

namespace Graphics
{

class Bitmap;

// One entry of a Space's draw list: what to draw and its sort key. The gather index breaks the last ties,
// so the order never depends on the sort's method.
struct Drawable
{
    Components::Graphics::GraphicsComponent* component;
    int64_t handle;
    int32_t z;
    uint32_t index;
};

class GraphicsSystem final : public Core::System
{
public:
    const char* Name() const override { return "Graphics"; }
    // Creates the context on the window, the quad, the programs and the font; false only without a window.
    bool Initialise(Core::Window* window) override;
    void Update(Core::Game& game, Space& space, double dt, double spaceTime, double absoluteTime) override;
    // Square, Sprite, TextSprite and Particle get their script functions.
    void RegisterScriptTypes(Lua::LuaSystem& lua) override;
    void ObjectsDestroyed(Core::Game& game, Space& space) override;
    void Shutdown() override;

    // True between Initialise and Shutdown: only then may anything draw or queue shapes.
    bool IsRunning() const { return renderContext != nullptr; }

    // Stores the camera and sets the projection to show size world units from top to bottom.
    void SetCamera(Vec2 position, float size);
    // Follows a new client size; a zero side (a minimised window) changes nothing.
    void Resize(uint32_t width, uint32_t height);
    Vec2 ScreenToWorld(Vec2 screen) const;
    // Stores the setting and sets whether the buffer swap waits for the vertical blank.
    void SetVsync(bool on);
    // Clears the colour buffer at the start of a frame.
    void ClearFrame();

    // Makes the program current, unbinding the previous one; nothing if it is current already.
    void UseProgram(Shaders::Program* program);
    // One textured quad: the unit quad scaled, turned about position and moved so that pivot (in quad
    // units) lies on position. Uploads the bitmap on its first use.
    void DrawQuad(Vec2 position, Vec2 pivot, Vec2 scale, const std::shared_ptr<Bitmap>& bitmap,
                  const UVRect& uv, const Colour& colour, float rotation);
    void UploadTexture(const std::shared_ptr<Bitmap>& bitmap);
    // Deletes the textures of bitmaps that nothing but this list holds; returns how many went.
    uint32_t ReleaseUnusedTextures();

    // Text in the font, one quad per byte up to the first NUL. The cursor starts at origin, in glyph cells
    // from position with x growing to the left; each glyph, blank or tab moves it 0.75 to the right, a line
    // feed starts a new line one cell lower.
    void DrawString(Vec2 position, Vec2 origin, const char* text, float rotation, Vec2 scale,
                    const Colour& colour);
    // DrawString unrotated at scale 1, with the texture program made current first.
    void DrawText(Vec2 position, const char* text, const Colour& colour);

    // A one-shot burst of count particles at position, flying out in every direction at minSpeed to
    // maxSpeed, cycling through the hues for lifeTime seconds and then fading for fadeTime; it goes by
    // itself once both have run out. Every burst is aged once per unpaused Space and drawn once per Space.
    void SpawnParticles(Vec2 position, const Colour& colour, uint32_t count, float minSpeed, float maxSpeed,
                        float scale, float lifeTime, float fadeTime);
    // What the live bursts hold together, each counting as at least one particle.
    uint64_t SpawnedParticleCount() const { return spawnedParticleCount; }

    void AddDebugSquare(Vec2 position, Vec2 size, const Colour& colour, float rotation, bool outline);
    void AddDebugCircle(Vec2 position, Vec2 size, const Colour& colour, float rotation, bool outline,
                        int32_t segments);
    void AddDebugLine(Vec2 start, Vec2 end, const Colour& colour);
    // A line with a head of two strokes at 45 degrees; a zero-length arrow has a head of NaNs.
    void AddDebugArrow(Vec2 start, Vec2 end, const Colour& colour);
    // The profile of the previous frame as rows of bars along the bottom of the window.
    void DrawProfile(const std::vector<Debug::ProfileRecord>& records);

    // Asks for a PNG of the frame's picture, written once the frame has been drawn.
    void RequestScreenshot(std::string fileName);
    // Writes every screenshot asked for in this frame; call after the last drawing, before the swap.
    void WriteScreenshots();

    // The first half of a Space's frame: the Space's visible drawables, sorted into drawables.
    void GatherDrawables(Space& space);
    const std::vector<Drawable>& Drawables() const { return drawables; }

    // The context, as the platform gives it: the window it draws on and the GL context itself.
    SDL_Window* deviceContext = nullptr;
    void* renderContext = nullptr;
    std::vector<std::shared_ptr<Bitmap>> textures;
    std::shared_ptr<Bitmap> font;
    // One rectangle of the font per byte value.
    std::array<UVRect, 256> glyphs = {};
    uint32_t screenWidth = 0;
    uint32_t screenHeight = 0;
    float cameraSize = 20.0f;
    // Height over width.
    float aspect = 1.0f;
    bool vsync = true;
    Shaders::RenderProgram textureProgram;
    Shaders::RenderProgram debugProgram;
    Vec2 cameraPosition;
    Shaders::Program* currentProgram = nullptr;
    std::vector<DebugSquare> debugSquares;
    std::vector<DebugCircle> debugCircles;
    std::vector<DebugLine> debugLines;
    // The bursts made by SpawnParticles, in the order they were made.
    std::vector<std::unique_ptr<Particles::ParticleSystem>> particleSystems;
    uint32_t indexBuffer = 0;
    uint32_t vertexBuffer = 0;

private:
    void UpdateParticles(Space& space, float dt, float spaceTime, float absoluteTime);
    // Draws every burst and lets go of those whose life has run out.
    void DrawSpawnedParticles();
    void CreateQuad();
    void LoadPrograms();
    void LoadFont();
    void DrawDebugSquares();
    void DrawDebugCircles();
    void DrawDebugLines();
    void DrawProfileRow(const std::vector<Debug::ProfileRecord>& records, Vec2 origin, Vec2 size,
                        const std::vector<int32_t>& children, double total);

    // Rebuilt for every Space, keeping its capacity, so a steady frame allocates nothing.
    std::vector<Drawable> drawables;
    uint64_t spawnedParticleCount = 0;
    std::vector<std::string> pendingScreenshots;
    std::vector<uint8_t> screenshotPixels;
};

} // namespace Graphics
