#include "Graphics/Shaders/RenderProgram.h"

#include "Debug/Logger.h"

#include <epoxy/gl.h>
#include <vector>

namespace Graphics::Shaders
{
namespace
{

// Where a vertex shader without "position" is fed from.
constexpr GLint kFallbackPositionAttribute = 1;

void LogCreateFailure(const std::string& name, const char* stage)
{
    Logger::Log("Graphics", LogLevel::Error,
                "Failed to Create program \"" + name + "\": " + stage + " shader failed to compile");
}

std::string ProgramLog(GLuint program)
{
    GLint logLength = 0;
    glGetProgramiv(program, GL_INFO_LOG_LENGTH, &logLength);
    std::vector<char> log(static_cast<size_t>(logLength) + 1, '\0');
    glGetProgramInfoLog(program, logLength, nullptr, log.data());
    return log.data();
}

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
    if (vertexShader == 0 || fragmentShader == 0)
    {
        LogCreateFailure(name, vertexShader == 0 ? "Vertex" : "Fragment");
        id = 0;
        glUseProgram(0);
        return;
    }
    id = glCreateProgram();
    glAttachShader(id, vertexShader);
    glAttachShader(id, fragmentShader);
    glBindFragDataLocation(id, 0, "outColor");
    glLinkProgram(id);
    glUseProgram(id);
    positionAttribute = glGetAttribLocation(id, "position");
    if (positionAttribute < 0)
    {
        Logger::Log("Graphics", LogLevel::Warning,
                    " Shader Program \"" + name + "\" does not use \"position\"");
        positionAttribute = kFallbackPositionAttribute;
    }
    LocateUniforms();
    Bind();
    GLint linked = GL_FALSE;
    glGetProgramiv(id, GL_LINK_STATUS, &linked);
    if (linked != GL_TRUE)
    {
        Logger::Log("Graphics", LogLevel::Error,
                    "Failed to link program \"" + name + "\": " + ProgramLog(id));
        id = 0;
        glUseProgram(0);
    }
}

} // namespace Graphics::Shaders
