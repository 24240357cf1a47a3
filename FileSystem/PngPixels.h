#pragma once

// The second half of PNG decoding: the gathered IDAT data is inflated in one call and its filtered rows
// become RGBA pixels. Every size here comes from the file and is computed in 64 bits.

#include <cstdint>
#include <memory>
#include <vector>

namespace FileSystem
{

struct PngImage
{
    uint32_t width = 0;
    uint32_t height = 0;
    // 3 for truecolour, 4 for truecolour with alpha.
    uint32_t bytesPerPixel = 0;
};

// width × height × 4 bytes, or null after a logged failure.
std::unique_ptr<uint8_t[]> InflatePngPixels(const PngImage& image, const std::vector<uint8_t>& compressed);

} // namespace FileSystem
