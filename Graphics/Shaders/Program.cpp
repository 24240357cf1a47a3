#include "Graphics/Shaders/Program.h"

#include "Debug/Logger.h"
#include "Graphics/GLContext.h"

#include <epoxy/gl.h>
#include <vector>

namespace Graphics::Shaders
{

uint32_t CompileShader(const std::string& source, uint32_t stage)
{
    const GLuint shader = glCreateShader(stage);
    const char* text = source.c_str();
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    GLint compiled = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (compiled == GL_TRUE)
    {
        return shader;
    }
    GLint logLength = 0;
    glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &logLength);
    std::vector<char> log(static_cast<size_t>(logLength) + 1, '\0');
    glGetShaderInfoLog(shader, logLength, nullptr, log.data());
    glDeleteShader(shader);
    Logger::Log("Graphics", LogLevel::Error, std::string("Failed to compile Shader!\n") + log.data());
    return 0;
}

bool Program::StagesCompiled(std::initializer_list<Stage> stages)
{
    for (const Stage& stage : stages)
    {
        if (stage.shader == 0)
        {
            Logger::Log("Graphics", LogLevel::Error,
                        "Failed to Create program \"" + name + "\": " + stage.name +
                            " shader failed to compile");
            id = 0;
            glUseProgram(0);
            return false;
        }
    }
    return true;
}

void Program::CreateAndLink(std::initializer_list<uint32_t> shaders)
{
    id = glCreateProgram();
    for (const uint32_t shader : shaders)
    {
        glAttachShader(id, shader);
    }
    glBindFragDataLocation(id, 0, "outColor");
    glLinkProgram(id);
    glUseProgram(id);
}

void Program::CheckLinked()
{
    GLint linked = GL_FALSE;
    glGetProgramiv(id, GL_LINK_STATUS, &linked);
    if (linked == GL_TRUE)
    {
        return;
    }
    GLint logLength = 0;
    glGetProgramiv(id, GL_INFO_LOG_LENGTH, &logLength);
    std::vector<char> log(static_cast<size_t>(logLength) + 1, '\0');
    glGetProgramInfoLog(id, logLength, nullptr, log.data());
    Logger::Log("Graphics", LogLevel::Error, "Failed to link program \"" + name + "\": " + log.data());
    id = 0;
    glUseProgram(0);
}

void Program::Bind()
{
    CheckGLError(__FILE__, __LINE__);
    glUseProgram(id);
    CheckGLError(__FILE__, __LINE__);
}

} // namespace Graphics::Shaders
