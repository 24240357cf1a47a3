#include "Graphics/GLContext.h"

#include "Core/Window.h"
#include "Debug/Logger.h"
#include "Debug/Profile.h"
#include "Graphics/GraphicsSystem.h"

#include <SDL.h>
#include <cstdlib>
#include <epoxy/gl.h>
#include <exception>
#include <string>

namespace Graphics
{
namespace
{

// An entry point the renderer needs beyond what every context exports, and the GL version whose core
// brings it; GL versions read as epoxy gives them, major times ten plus minor.
struct EntryPoint
{
    const char* name;
    int coreVersion;
};

constexpr EntryPoint kEntryPoints[] = {
    {"glCreateShader", 20},
    {"glShaderSource", 20},
    {"glCompileShader", 20},
    {"glGetShaderiv", 20},
    {"glGetShaderInfoLog", 20},
    {"glDeleteShader", 20},
    {"glCreateProgram", 20},
    {"glAttachShader", 20},
    {"glLinkProgram", 20},
    {"glUseProgram", 20},
    {"glGetAttribLocation", 20},
    {"glVertexAttribPointer", 20},
    {"glEnableVertexAttribArray", 20},
    {"glDisableVertexAttribArray", 20},
    {"glGenBuffers", 15},
    {"glBindBuffer", 15},
    {"glBufferData", 15},
    {"glUniform4f", 20},
    {"glUniform1i", 20},
    {"glGetUniformLocation", 20},
    {"glGetProgramiv", 20},
    {"glGetProgramInfoLog", 20},
    {"glBindFragDataLocation", 30},
    {"glBlendEquation", 14},
};

// The platform gives no error code for a missing entry point.
constexpr int kLookupErrorCode = 0;

[[noreturn]] void Fail(const std::string& message)
{
    Logger::Raise("Graphics", message);
}

std::string MissingEntryPointText(const char* name)
{
    return std::string("Failed to find address of ") + name +
           ". Error code: " + std::to_string(kLookupErrorCode);
}

bool HasEntryPoint(const EntryPoint& entry, int version)
{
    return version >= entry.coreVersion && SDL_GL_GetProcAddress(entry.name) != nullptr;
}

// The last line of defence: a GL call through an entry point that the check above let through but the
// context lacks. It must not throw through GL's C frames, so it ends the process as an uncaught raise does.
epoxy_resolver_stub_t OnEntryPointMissing(const char* name)
{
    Logger::Log("Graphics", LogLevel::Fatal, MissingEntryPointText(name));
    std::terminate();
}

} // namespace

bool CreateGLContext(GraphicsSystem& system, Core::Window* window)
{
    if (window == nullptr)
    {
        Logger::Log("Graphics", LogLevel::Error, "Failed to Initialize: No Window passed");
        return false;
    }
    system.deviceContext = window->handle;
    if (system.deviceContext == nullptr ||
        (SDL_GetWindowFlags(system.deviceContext) & SDL_WINDOW_OPENGL) == 0)
    {
        Fail("Cannot create OpenGL Context without a DeviceContext");
    }
    system.renderContext = SDL_GL_CreateContext(system.deviceContext);
    if (system.renderContext == nullptr)
    {
        Fail("Failed to create device context");
    }
    if (SDL_GL_MakeCurrent(system.deviceContext, system.renderContext) != 0)
    {
        Fail("Failed to Initialize");
    }
    return true;
}

bool HasCurrentGLContext()
{
    return SDL_GL_GetCurrentContext() != nullptr;
}

void LoadGLFunctions()
{
    Logger::Log("Graphics", LogLevel::Debug, "Started GL function Grab");
    epoxy_set_resolver_failure_handler(OnEntryPointMissing);
    const int version = epoxy_gl_version();
    for (const EntryPoint& entry : kEntryPoints)
    {
        if (!HasEntryPoint(entry, version))
        {
            Fail(MissingEntryPointText(entry.name));
        }
    }
    // Without swap control the game couldn't follow the vsync setting.
    if (SDL_GL_SetSwapInterval(0) != 0)
    {
        Fail(MissingEntryPointText("SDL_GL_SetSwapInterval"));
    }
    Logger::Log("Graphics", LogLevel::Debug, "Finished GL function Grab");
}

const char* GLErrorString(uint32_t code)
{
    switch (code)
    {
    case GL_NO_ERROR:
        return "No error";
    case GL_INVALID_ENUM:
        return "Invalid Enum";
    case GL_INVALID_VALUE:
        return "Invalid Value";
    case GL_INVALID_OPERATION:
        return "Invalid Operation";
    case GL_STACK_OVERFLOW:
        return "Stack Overflow";
    case GL_STACK_UNDERFLOW:
        return "Stack Underflow";
    case GL_OUT_OF_MEMORY:
        return "Out of Memory";
    case GL_TABLE_TOO_LARGE:
        return "Table Too Large";
    default:
        return "Unknown Error";
    }
}

void CheckGLError(const char* file, int line)
{
    const GLenum code = glGetError();
    if (code == GL_NO_ERROR)
    {
        return;
    }
    Logger::Log("Graphics", LogLevel::Error,
                std::string("OpenGL error: ") + GLErrorString(code) + " (" + std::to_string(code) +
                    ") File: " + (file != nullptr ? file : "NULL") + " Line: " + std::to_string(line));
}

void PresentFrame(GraphicsSystem& system)
{
    const Debug::ProfileBlock block("Graphics");
    if (system.deviceContext == nullptr)
    {
        Fail("Failed to swap Buffers: Device context has not been created yet!");
    }
    const Debug::ProfileBlock swapBlock("Swap Buffers");
    SDL_GL_SwapWindow(system.deviceContext);
}

void DestroyGLContext(GraphicsSystem& system)
{
    if (system.deviceContext != nullptr)
    {
        SDL_GL_MakeCurrent(system.deviceContext, nullptr);
    }
    if (system.renderContext != nullptr)
    {
        SDL_GL_DeleteContext(system.renderContext);
    }
    system.deviceContext = nullptr;
    system.renderContext = nullptr;
}

} // namespace Graphics
