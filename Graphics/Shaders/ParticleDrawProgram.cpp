#include "Graphics/Shaders/ParticleDrawProgram.h"

#include "Graphics/GLContext.h"

#include <epoxy/gl.h>

namespace Graphics::Shaders
{

ParticleDrawProgram::ParticleDrawProgram(const std::string& vertexSource, const std::string& geometrySource,
                                         const std::string& fragmentSource, std::string programName)
    : Program(std::move(programName))
{
    vertexShader = CompileShader(vertexSource, GL_VERTEX_SHADER);
    geometryShader = CompileShader(geometrySource, GL_GEOMETRY_SHADER);
    fragmentShader = CompileShader(fragmentSource, GL_FRAGMENT_SHADER);
    CheckGLError(__FILE__, __LINE__);
    Link();
    CheckGLError(__FILE__, __LINE__);
}

void ParticleDrawProgram::LocateUniforms()
{
    textureColor = glGetUniformLocation(id, "texture_color");
}

void ParticleDrawProgram::Link()
{
    if (!StagesCompiled(
            {{vertexShader, "Vertex"}, {geometryShader, "Geometry"}, {fragmentShader, "Fragment"}}))
    {
        return;
    }
    CreateAndLink({vertexShader, geometryShader, fragmentShader});
    LocateUniforms();
    Bind();
    CheckLinked();
}

} // namespace Graphics::Shaders
