#pragma once

// The engine system that owns the GL context and the camera. World coordinates have y up; screen
// coordinates have their origin in the top left corner, y down, in pixels. The camera is a centre and the
// height of the visible world; the visible width follows from the window's shape.

#include "Components/Vec2.h"
#include "Core/System.h"

#include <cstdint>

struct SDL_Window;

namespace Graphics
{

class GraphicsSystem final : public Core::System
{
public:
    const char* Name() const override { return "Graphics"; }
    // Creates the context on the window and checks the entry points; false only without a window.
    bool Initialise(Core::Window* window) override;
    void Update(Core::Game& game, Space& space, double dt, double spaceTime, double absoluteTime) override;
    void RegisterScriptTypes(Lua::LuaSystem& lua) override;
    void ObjectsDestroyed(Core::Game& game, Space& space) override;
    void Shutdown() override;

    // Stores the camera and sets the projection to show size world units from top to bottom.
    void SetCamera(Vec2 position, float size);
    // Follows a new client size; a zero side (a minimised window) changes nothing.
    void Resize(uint32_t width, uint32_t height);
    Vec2 ScreenToWorld(Vec2 screen) const;
    // Stores the setting and sets whether the buffer swap waits for the vertical blank.
    void SetVsync(bool on);
    // Clears the colour buffer at the start of a frame.
    void ClearFrame();

    // The context, as the platform gives it: the window it draws on and the GL context itself.
    SDL_Window* deviceContext = nullptr;
    void* renderContext = nullptr;
    uint32_t screenWidth = 0;
    uint32_t screenHeight = 0;
    float cameraSize = 20.0f;
    // Height over width.
    float aspect = 1.0f;
    bool vsync = true;
    Vec2 cameraPosition;
};

} // namespace Graphics
