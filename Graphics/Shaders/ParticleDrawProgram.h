#pragma once

// The particle program: vertex, geometry and fragment stages fed with immediate-mode points. Each point
// brings a particle's world position in x and y, its rotation in z and its scale in w, and its colour as
// the built-in colour; the geometry stage turns it into a quad. The sampler keeps GL's initial unit 0.

#include "Graphics/Shaders/Program.h"

namespace Graphics::Shaders
{

class ParticleDrawProgram final : public Program
{
public:
    ParticleDrawProgram() = default;
    // Compiles the three stages in order and links; leaves the program current in GL.
    ParticleDrawProgram(const std::string& vertexSource, const std::string& geometrySource,
                        const std::string& fragmentSource, std::string programName);

    // Points need no attribute array, so there is nothing to undo.
    void Unbind() override {}

    uint32_t vertexShader = 0;
    uint32_t geometryShader = 0;
    uint32_t fragmentShader = 0;
    int32_t textureColor = -1;

private:
    void LocateUniforms() override;
    void Link() override;
};

} // namespace Graphics::Shaders
