#include "Graphics/Bitmap.h"

#include "Debug/Logger.h"

namespace Graphics
{

Bitmap::Bitmap(uint32_t pixelWidth, uint32_t pixelHeight, std::unique_ptr<uint8_t[]> rgbaPixels,
               std::string fileName)
    : width(pixelWidth), height(pixelHeight), name(std::move(fileName)), pixels(std::move(rgbaPixels))
{
}

// Deleting the texture is the graphics system's work, while the GL context lives; here it can only be
// reported.
Bitmap::~Bitmap()
{
    if (texture != 0)
    {
        Logger::Log("Graphics", LogLevel::Error, "Bitmap texture handle leaked!");
    }
}

} // namespace Graphics
