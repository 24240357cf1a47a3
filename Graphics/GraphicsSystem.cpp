#include "Graphics/GraphicsSystem.h"

#include "Components/Space.h"
#include "Debug/Logger.h"
#include "Debug/Profile.h"
#include "FileSystem/AssetManager.h"
#include "Graphics/Bitmap.h"
#include "Graphics/DrawableScripts.h"
#include "Graphics/GLContext.h"
#include "Lua/LuaSystem.h"

#include <SDL.h>
#include <algorithm>
#include <epoxy/gl.h>

namespace Graphics
{
namespace
{

// The unit quad: its corner at the local origin is its top left, and it lies below and to the right.
constexpr float kQuadVertices[] = {0.0f, 0.0f, 1.0f, 0.0f, 1.0f, -1.0f, 0.0f, -1.0f};
constexpr uint32_t kQuadIndices[] = {0, 1, 2, 2, 3, 0};
constexpr float kDegreesPerRadian = 57.29578f;

bool DrawsBefore(const Drawable& a, const Drawable& b)
{
    if (a.z != b.z)
    {
        return a.z < b.z;
    }
    if (a.handle != b.handle)
    {
        return a.handle < b.handle;
    }
    return a.index < b.index;
}

// The z of the owner's transform, 0 for an owner whose transform has gone: it still has a place in the
// order, and its Draw reports the missing transform.
int32_t SortDepth(const GameObjectHandle& owner, Space& space)
{
    const GameObject* object = space.FindObject(owner);
    if (object == nullptr)
    {
        return 0;
    }
    const Components::TransformComponent* transform =
        space.transforms.components.Find(object->GetTransform());
    return transform != nullptr ? transform->z : 0;
}

template <typename T>
void Gather(std::vector<Drawable>& drawables, Components::ComponentFactory<T>& factory, Space& space,
            const char* blockName)
{
    const Debug::ProfileBlock block(blockName);
    for (T& component : factory.components)
    {
        if (!component.visible || component.destroyed)
        {
            continue;
        }
        drawables.push_back(Drawable{&component, static_cast<int64_t>(component.owner.handle.Value()),
                                     SortDepth(component.owner, space),
                                     static_cast<uint32_t>(drawables.size())});
    }
}

} // namespace

bool GraphicsSystem::Initialise(Core::Window* window)
{
    if (!CreateGLContext(*this, window))
    {
        return false;
    }
    LoadGLFunctions();
    CreateQuad();
    LoadPrograms();
    LoadFont();
    glClearColor(0.875f, 0.875f, 0.875f, 1.0f);
    CheckGLError(__FILE__, __LINE__);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    CheckGLError(__FILE__, __LINE__);
    return true;
}

// Both buffers stay bound for the life of the context: every quad and debug square draws from them.
void GraphicsSystem::CreateQuad()
{
    glGenBuffers(1, &vertexBuffer);
    glBindBuffer(GL_ARRAY_BUFFER, vertexBuffer);
    glBufferData(GL_ARRAY_BUFFER, sizeof(kQuadVertices), kQuadVertices, GL_STATIC_DRAW);
    CheckGLError(__FILE__, __LINE__);
    glGenBuffers(1, &indexBuffer);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indexBuffer);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof(kQuadIndices), kQuadIndices, GL_STATIC_DRAW);
    CheckGLError(__FILE__, __LINE__);
}

void GraphicsSystem::LoadPrograms()
{
    const std::string vertex = FileSystem::LoadTextFile("Shaders/Vert.glsl");
    const std::string fragment = FileSystem::LoadTextFile("Shaders/Frag.glsl");
    const std::string debugVertex = FileSystem::LoadTextFile("Shaders/VertDEBUG.glsl");
    const std::string debugFragment = FileSystem::LoadTextFile("Shaders/FragDEBUG.glsl");
    debugProgram = Shaders::RenderProgram(debugVertex, debugFragment, "Debug Shader");
    CheckGLError(__FILE__, __LINE__);
    textureProgram = Shaders::RenderProgram(vertex, fragment, "Texture Shader");
    CheckGLError(__FILE__, __LINE__);
}

void GraphicsSystem::Update(Core::Game&, Space& space, double dt, double spaceTime, double absoluteTime)
{
    const Debug::ProfileBlock block("Graphics");
    if (!space.paused)
    {
        UpdateParticles(space, static_cast<float>(dt), static_cast<float>(spaceTime),
                        static_cast<float>(absoluteTime));
    }
    GatherDrawables(space);
    const Debug::ProfileBlock render("Render graphics");
    CheckGLError(__FILE__, __LINE__);
    {
        const Debug::ProfileBlock drawableBlock("Drawable");
        for (const Drawable& drawable : drawables)
        {
            drawable.component->Draw(*this, space);
        }
    }
    DrawSpawnedParticles();
    UseProgram(&debugProgram);
    DrawDebugSquares();
    DrawDebugCircles();
    DrawDebugLines();
    debugSquares.clear();
    debugCircles.clear();
    debugLines.clear();
}

void GraphicsSystem::GatherDrawables(Space& space)
{
    drawables.clear();
    drawables.reserve(space.sprites.Count() + space.squares.Count());
    const Debug::ProfileBlock block("Setup render");
    Gather(drawables, space.squares, space, "Add SquareComponents");
    Gather(drawables, space.sprites, space, "Add Sprite Components");
    Gather(drawables, space.textSprites, space, "Add Text Components");
    Gather(drawables, space.particles, space, "Add Particle Components");
    const Debug::ProfileBlock sortBlock("Sort");
    std::sort(drawables.begin(), drawables.end(), DrawsBefore);
}

// Bursts age with every unpaused Space; a component's system follows its own Space, destroyed ones too,
// until the sweep takes them.
void GraphicsSystem::UpdateParticles(Space& space, float dt, float spaceTime, float absoluteTime)
{
    const Debug::ProfileBlock block("Particle Update");
    for (const std::unique_ptr<Particles::ParticleSystem>& burst : particleSystems)
    {
        CheckGLError(__FILE__, __LINE__);
        burst->Update(dt, spaceTime, absoluteTime);
        CheckGLError(__FILE__, __LINE__);
    }
    for (Components::Graphics::ParticleComponent& component : space.particles.components)
    {
        CheckGLError(__FILE__, __LINE__);
        component.Update(space, dt, spaceTime, absoluteTime);
        CheckGLError(__FILE__, __LINE__);
    }
}

// A burst is drawn once more in the pass in which its life runs out, and then goes. The survivors keep
// their order, in one compaction.
void GraphicsSystem::DrawSpawnedParticles()
{
    const Debug::ProfileBlock block("Particle Draw");
    for (const std::unique_ptr<Particles::ParticleSystem>& burst : particleSystems)
    {
        burst->Draw(*this);
    }
    const auto finished = [this](const std::unique_ptr<Particles::ParticleSystem>& burst)
    {
        const bool over = burst->life > -999.0f && burst->life < 0.0f;
        if (over)
        {
            spawnedParticleCount -= std::max<uint64_t>(burst->maxParticles, 1);
        }
        return over;
    };
    particleSystems.erase(std::remove_if(particleSystems.begin(), particleSystems.end(), finished),
                          particleSystems.end());
}

void GraphicsSystem::SpawnParticles(Vec2 position, const Colour& colour, uint32_t count, float minSpeed,
                                    float maxSpeed, float scale, float lifeTime, float fadeTime)
{
    using namespace Particles;
    auto burst = std::make_unique<ParticleSystem>(count, lifeTime + fadeTime, PoolMemory::Heap);
    burst->position = position;
    burst->emitter = std::make_unique<Emitters::EmitOnce>(count, burst->maxParticles);
    burst->initializers.push_back(
        std::make_unique<Initializers::BasicInitializer>(Vec2{}, colour, lifeTime, 0.0f, scale));
    burst->initializers.push_back(
        std::make_unique<Initializers::RandomVelocity>(-3.1415927f, 3.1415927f, minSpeed, maxSpeed));
    burst->updaters.push_back(std::make_unique<Updaters::PositionUpdater>());
    burst->updaters.push_back(std::make_unique<Updaters::HueUpdater>());
    burst->terminator = std::make_unique<Terminators::FadeOut>(fadeTime == 0.0f ? 0.0001f : fadeTime);
    burst->Start();
    particleSystems.push_back(std::move(burst));
    spawnedParticleCount += std::max<uint64_t>(count, 1);
}

void GraphicsSystem::RegisterScriptTypes(Lua::LuaSystem& lua)
{
    RegisterDrawableScriptTypes(lua.state);
    RegisterParticleScriptType(lua.state);
}

void GraphicsSystem::ObjectsDestroyed(Core::Game&, Space&)
{
}

void GraphicsSystem::Shutdown()
{
    for (const std::shared_ptr<Bitmap>& bitmap : textures)
    {
        if (bitmap->texture != 0)
        {
            glDeleteTextures(1, &bitmap->texture);
            bitmap->texture = 0;
        }
    }
    textures.clear();
    font.reset();
    particleSystems.clear();
    spawnedParticleCount = 0;
    // The particle program's GL objects go with the context.
    Particles::ParticleSystem::ForgetProgram();
    currentProgram = nullptr;
    Logger::Log("Graphics", LogLevel::Info, "Graphics is cleaning up");
    DestroyGLContext(*this);
}

void GraphicsSystem::SetCamera(Vec2 position, float size)
{
    cameraPosition = position;
    cameraSize = size;
    // Without a context (a game with no window) only the camera is kept.
    if (renderContext == nullptr)
    {
        return;
    }
    const float halfHeight = size * 0.5f;
    const float halfWidth = halfHeight / aspect;
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(position.x - halfWidth, position.x + halfWidth, position.y - halfHeight, position.y + halfHeight,
            -1.0, 1.0);
}

void GraphicsSystem::Resize(uint32_t width, uint32_t height)
{
    if (width == 0 || height == 0)
    {
        return;
    }
    screenWidth = width;
    screenHeight = height;
    aspect = static_cast<float>(height) / static_cast<float>(width);
    if (renderContext != nullptr)
    {
        glViewport(0, 0, static_cast<GLsizei>(width), static_cast<GLsizei>(height));
    }
    SetCamera(cameraPosition, cameraSize);
}

Vec2 GraphicsSystem::ScreenToWorld(Vec2 screen) const
{
    const float viewWidth = cameraSize / aspect;
    return Vec2{(screen.x / static_cast<float>(screenWidth) - 0.5f) * viewWidth + cameraPosition.x,
                (screen.y / -static_cast<float>(screenHeight) + 0.5f) * cameraSize + cameraPosition.y};
}

void GraphicsSystem::SetVsync(bool on)
{
    vsync = on;
    SDL_GL_SetSwapInterval(on ? 1 : 0);
}

void GraphicsSystem::ClearFrame()
{
    const Debug::ProfileBlock block("Graphics");
    const Debug::ProfileBlock clearBlock("Clear");
    CheckGLError(__FILE__, __LINE__);
    glClear(GL_COLOR_BUFFER_BIT);
    CheckGLError(__FILE__, __LINE__);
}

void GraphicsSystem::UseProgram(Shaders::Program* program)
{
    if (currentProgram == program)
    {
        return;
    }
    if (currentProgram != nullptr)
    {
        currentProgram->Unbind();
    }
    program->Bind();
    currentProgram = program;
}

void GraphicsSystem::DrawQuad(Vec2 position, Vec2 pivot, Vec2 scale, const std::shared_ptr<Bitmap>& bitmap,
                              const UVRect& uv, const Colour& colour, float rotation)
{
    UseProgram(&textureProgram);
    if (bitmap->texture == 0)
    {
        UploadTexture(bitmap);
    }
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(position.x, position.y, 0.0f);
    glRotatef(rotation * kDegreesPerRadian, 0.0f, 0.0f, 1.0f);
    glScalef(scale.x, scale.y, 1.0f);
    glTranslatef(-pivot.x, -pivot.y, 0.0f);
    glBindTexture(GL_TEXTURE_2D, bitmap->texture);
    // The shader takes the rectangle as top, right, bottom, left.
    glUniform4f(textureProgram.uvArray, uv.top, uv.right, uv.bottom, uv.left);
    glUniform4f(textureProgram.triangleColor, colour.r, colour.g, colour.b, colour.a);
    glUniform1i(textureProgram.textureColor, 0);
    glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_INT, nullptr);
}

void GraphicsSystem::UploadTexture(const std::shared_ptr<Bitmap>& bitmap)
{
    glGenTextures(1, &bitmap->texture);
    glBindTexture(GL_TEXTURE_2D, bitmap->texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, static_cast<GLsizei>(bitmap->width),
                 static_cast<GLsizei>(bitmap->height), 0, GL_RGBA, GL_UNSIGNED_BYTE, bitmap->pixels.get());
    CheckGLError(__FILE__, __LINE__);
    textures.push_back(bitmap);
}

// A bitmap whose only owner is this list has no user left: its texture goes, and so does the last
// reference, after the texture, so the bitmap never dies with a texture on the card.
uint32_t GraphicsSystem::ReleaseUnusedTextures()
{
    uint32_t released = 0;
    size_t index = 0;
    while (index < textures.size())
    {
        std::shared_ptr<Bitmap>& bitmap = textures[index];
        if (bitmap.use_count() != 1)
        {
            ++index;
            continue;
        }
        glDeleteTextures(1, &bitmap->texture);
        bitmap->texture = 0;
        bitmap = std::move(textures.back());
        textures.pop_back();
        ++released;
    }
    return released;
}

} // namespace Graphics
