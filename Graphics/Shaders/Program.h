#pragma once

// GLSL programs built from the shader files of the game's Data folder. A program that fails to build logs
// why and keeps the GL name 0, and drawing goes on with the fixed function. Programs are held by value and
// copied member by member; their GL objects are never deleted, as they go with the context.

#include <cstdint>
#include <initializer_list>
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
    // A compiled stage, or 0, with the word that names it in the failure text.
    struct Stage
    {
        uint32_t shader;
        const char* name;
    };

    virtual void LocateUniforms() = 0;
    virtual void Link() = 0;

    // The first step of Link: if a stage failed to compile, logs which, leaves the program unusable and
    // gives false.
    bool StagesCompiled(std::initializer_list<Stage> stages);
    // Creates the program with the stages in order, binds "outColor" to colour 0, links and uses it.
    void CreateAndLink(std::initializer_list<uint32_t> shaders);
    // The last step of Link: a program that failed to link logs GL's reason and becomes unusable.
    void CheckLinked();
};

} // namespace Graphics::Shaders
