#pragma once

// GLSL programs built from the shader files of the game's Data folder. A program that fails to build logs
// why and keeps the GL name 0, and drawing goes on with the fixed function. Programs are held by value and
// copied member by member; their GL objects are never deleted, as they go with the context.

#include <cstdint>
#include <string>

namespace Graphics::Shaders
{

// Compiles one stage (GL_VERTEX_SHADER, GL_GEOMETRY_SHADER or GL_FRAGMENT_SHADER); 0 after a logged
// failure.
uint32_t CompileShader(const std::string& source, uint32_t stage);

class Program
{
public:
    explicit Program(std::string programName = {}) : name(std::move(programName)) {}
    virtual ~Program() = default;
    Program(const Program&) = default;
    Program(Program&&) = default;
    Program& operator=(const Program&) = default;
    Program& operator=(Program&&) = default;

    // Makes the program current; only GraphicsSystem::UseProgram calls this.
    virtual void Bind();
    virtual void Unbind() = 0;

    // GL program name; 0 means unusable.
    uint32_t id = 0;
    std::string name;

protected:
    virtual void LocateUniforms() = 0;
    virtual void Link() = 0;
};

} // namespace Graphics::Shaders
