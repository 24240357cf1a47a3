#pragma once

// An image in memory: four bytes per pixel in the order red, green, blue, alpha, rows without padding,
// row 0 at the top. Always held by std::shared_ptr, so one image is decoded once and shared. It knows
// nothing of OpenGL: the graphics system puts it on the card and must delete the texture before the
// last reference goes.

#include <cstdint>
#include <memory>
#include <string>

namespace Graphics
{

class Bitmap
{
public:
    // Takes ownership of width × height × 4 bytes of pixels.
    Bitmap(uint32_t pixelWidth, uint32_t pixelHeight, std::unique_ptr<uint8_t[]> rgbaPixels,
           std::string fileName);
    // Logs a texture that is still on the card; the pixels are freed anyway.
    ~Bitmap();
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;

    const uint32_t width;
    const uint32_t height;
    // The file name as the first caller wrote it, for messages.
    const std::string name;
    const std::unique_ptr<uint8_t[]> pixels;
    // The OpenGL texture name; 0 while the bitmap isn't on the card.
    uint32_t texture = 0;
};

} // namespace Graphics
