#pragma once

// The thin layer between the engine and the platform's OpenGL: the one compatibility context on the
// window, the check that every entry point the renderer uses exists, error checks by name and place, the
// buffer swap, and the teardown. Every GL call of the engine runs on the game loop's thread.

#include <cstdint>

namespace Core
{
class Window;
}

namespace Graphics
{

class GraphicsSystem;

// Makes the context on the window, current on the calling thread. A null window logs an Error and gives
// false; any other failure is fatal.
bool CreateGLContext(GraphicsSystem& system, Core::Window* window);
// Whether a GL context is current on the calling thread: GL calls without one abort.
bool HasCurrentGLContext();
// Checks, in a fixed order, every entry point that a context may lack; the first one missing is fatal.
// Needs a current context.
void LoadGLFunctions();
// Reads one pending GL error, if any, and logs it with the place given; the engine goes on.
void CheckGLError(const char* file, int line);
const char* GLErrorString(uint32_t code);
// Presents the back buffer; with the swap interval at 1 this is what paces the game.
void PresentFrame(GraphicsSystem& system);
// Releases the context; harmless when there is none.
void DestroyGLContext(GraphicsSystem& system);

} // namespace Graphics
