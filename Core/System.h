#pragma once

// The interface through which the main loop drives a system without knowing what it does.

class Space;

namespace Lua
{
class LuaSystem;
}

namespace Core
{

class Game;
class Window;

class System
{
public:
    virtual ~System() = default;

    // The name that the failure of AddSystem reports.
    virtual const char* Name() const = 0;
    // Called once by AddSystem; false means the system failed to start.
    virtual bool Initialise(Window* window) = 0;
    // Called once per frame and space. dt and spaceTime are the space's own clock; absoluteTime is the
    // frame's clock reading in seconds. Paused spaces are passed too: each system decides what that means.
    virtual void Update(Game& game, Space& space, double dt, double spaceTime, double absoluteTime) = 0;
    // Called once after all systems have started, to add the system's script types to the Lua state.
    virtual void RegisterScriptTypes(Lua::LuaSystem& lua) = 0;
    // Called after objects of the space were deleted and before the component factories sweep.
    virtual void ObjectsDestroyed(Game& game, Space& space) = 0;
    // Called once when the loop ends, in reverse start order.
    virtual void Shutdown() = 0;
};

} // namespace Core
