#include "Graphics/GraphicsSystem.h"

#include "Debug/Profile.h"
#include "Graphics/GLContext.h"

#include <SDL.h>
#include <epoxy/gl.h>

namespace Graphics
{

bool GraphicsSystem::Initialise(Core::Window* window)
{
    if (!CreateGLContext(*this, window))
    {
        return false;
    }
    LoadGLFunctions();
    return true;
}

void GraphicsSystem::Update(Core::Game&, Space&, double, double, double)
{
}

void GraphicsSystem::RegisterScriptTypes(Lua::LuaSystem&)
{
}

void GraphicsSystem::ObjectsDestroyed(Core::Game&, Space&)
{
}

void GraphicsSystem::Shutdown()
{
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

} // namespace Graphics
