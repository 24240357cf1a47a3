#pragma once

// A vertex and fragment program fed from the unit quad through the attribute "position", for textured
// quads and debug shapes alike. The vertex stage must apply the fixed-function matrices: the engine places
// every quad with the model-view stack and sets no matrix uniform.

#include "Graphics/Shaders/Program.h"

namespace Graphics::Shaders
{

class RenderProgram final : public Program
{
public:
    RenderProgram() = default;
    // Compiles both stages, links, and sets the sampler "texture_color" to texture unit 0. Leaves the
    // program current in GL, which GraphicsSystem doesn't know.
    RenderProgram(const std::string& vertexSource, const std::string& fragmentSource,
                  std::string programName);

    void Bind() override;
    void Unbind() override;

    uint32_t vertexShader = 0;
    uint32_t fragmentShader = 0;
    int32_t textureColor = -1;
    int32_t triangleColor = -1;
    int32_t uvArray = -1;
    // Location 0 feeds the fixed function's vertex too, which is what a program that failed draws with.
    int32_t positionAttribute = 0;

private:
    void LocateUniforms() override;
    void Link() override;
};

} // namespace Graphics::Shaders
