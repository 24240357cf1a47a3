#include "Graphics/Shaders/RenderProgram.h"

#include "Debug/Logger.h"

#include <epoxy/gl.h>

namespace Graphics::Shaders
{
namespace
{

// Where a vertex shader without "position" is fed from.
constexpr GLint kFallbackPositionAttribute = 1;

} // namespace

RenderProgram::RenderProgram(const std::string& vertexSource, const std::string& fragmentSource,
                             std::string programName)
    : Program(std::move(programName))
{
    vertexShader = CompileShader(vertexSource, GL_VERTEX_SHADER);
    fragmentShader = CompileShader(fragmentSource, GL_FRAGMENT_SHADER);
    Link();
    glUniform1i(textureColor, 0);
}

void RenderProgram::Bind()
{
    Program::Bind();
    glEnableVertexAttribArray(static_cast<GLuint>(positionAttribute));
    glVertexAttribPointer(static_cast<GLuint>(positionAttribute), 2, GL_FLOAT, GL_FALSE, 0, nullptr);
}

void RenderProgram::Unbind()
{
    glDisableVertexAttribArray(static_cast<GLuint>(positionAttribute));
}

void RenderProgram::LocateUniforms()
{
    triangleColor = glGetUniformLocation(id, "triangleColor");
    textureColor = glGetUniformLocation(id, "texture_color");
    uvArray = glGetUniformLocation(id, "UV_arr");
}

void RenderProgram::Link()
{
    if (!StagesCompiled({{vertexShader, "Vertex"}, {fragmentShader, "Fragment"}}))
    {
        return;
    }
    CreateAndLink({vertexShader, fragmentShader});
    positionAttribute = glGetAttribLocation(id, "position");
    if (positionAttribute < 0)
    {
        Logger::Log("Graphics", LogLevel::Warning,
                    " Shader Program \"" + name + "\" does not use \"position\"");
        positionAttribute = kFallbackPositionAttribute;
    }
    LocateUniforms();
    Bind();
    CheckLinked();
}

} // namespace Graphics::Shaders
