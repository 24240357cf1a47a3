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

void Program::Bind()
{
    CheckGLError(__FILE__, __LINE__);
    glUseProgram(id);
    CheckGLError(__FILE__, __LINE__);
}

} // namespace Graphics::Shaders
