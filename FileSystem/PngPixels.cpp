#include "FileSystem/PngPixels.h"

#include "Debug/Logger.h"

#include <cstdlib>
#include <limits>
#include <string>
#include <zlib.h>

namespace FileSystem
{
namespace
{

constexpr uint64_t kMax32 = std::numeric_limits<uint32_t>::max();
// Deflate expands at most 1032:1; the margin covers stream headers and the block overhead of tiny streams.
constexpr uint64_t kMaxInflateRatio = 1032;
constexpr uint64_t kInflateMargin = 4096;

void LogInflateFailure(const std::string& reason)
{
    Logger::Log("AssetManager", LogLevel::Error, "Failed to decompress png data: " + reason);
}

std::string ZlibResultText(int result)
{
    switch (result)
    {
    case Z_NEED_DICT:
        return "Need dictionary";
    case Z_STREAM_END:
        return "Stream end";
    case Z_OK:
        return "OK";
    case Z_ERRNO:
        return "Errno";
    case Z_STREAM_ERROR:
        return "Stream error";
    case Z_DATA_ERROR:
        return "Data error";
    case Z_MEM_ERROR:
        return "Memory error";
    case Z_BUF_ERROR:
        return "Buffer error";
    case Z_VERSION_ERROR:
        return "Version error";
    default:
        return "Unknown error: " + std::to_string(result);
    }
}

// The filtered rows, each a filter byte and bytesPerPixel × width bytes, or null after a logged failure.
std::unique_ptr<uint8_t[]> Inflate(const std::vector<uint8_t>& compressed, uint64_t filteredSize)
{
    // No stream this short can fill the buffer: refuse before allocating what the header claims.
    if (filteredSize > kMaxInflateRatio * compressed.size() + kInflateMargin)
    {
        LogInflateFailure(ZlibResultText(Z_DATA_ERROR));
        return nullptr;
    }
    auto filtered = std::make_unique_for_overwrite<uint8_t[]>(filteredSize);
    uLongf inflatedSize = filteredSize;
    const int result = uncompress(filtered.get(), &inflatedSize, compressed.data(), compressed.size());
    if (result != Z_OK)
    {
        LogInflateFailure(ZlibResultText(result));
        return nullptr;
    }
    // zlib calls a stream that ends early a success; its rows would be garbage.
    if (inflatedSize != filteredSize)
    {
        LogInflateFailure(ZlibResultText(Z_DATA_ERROR));
        return nullptr;
    }
    return filtered;
}

uint8_t Average(uint8_t left, uint8_t up)
{
    return static_cast<uint8_t>((unsigned{left} + unsigned{up}) / 2);
}

// Ties go to the left, then to the byte above, then to the one above left.
uint8_t Paeth(uint8_t left, uint8_t up, uint8_t upLeft)
{
    const int estimate = int{left} + int{up} - int{upLeft};
    const int toLeft = std::abs(estimate - int{left});
    const int toUp = std::abs(estimate - int{up});
    const int toUpLeft = std::abs(estimate - int{upLeft});
    if (toLeft <= toUp && toLeft <= toUpLeft)
    {
        return left;
    }
    return toUp <= toUpLeft ? up : upLeft;
}

// The row above is a finished RGBA row, so its pixels are four bytes apart whatever the file's depth; the
// output row's previous pixel serves as the left neighbour in the same way.
template <uint32_t Bytes, typename Predictor>
void UnfilterRow(const uint8_t* filtered, uint8_t* out, const uint8_t* above, uint64_t width,
                 Predictor predict)
{
    for (uint64_t x = 0; x < width; ++x)
    {
        for (uint32_t channel = 0; channel < Bytes; ++channel)
        {
            const uint8_t left = x == 0 ? 0 : out[4 * (x - 1) + channel];
            const uint8_t upLeft = x == 0 ? 0 : above[4 * (x - 1) + channel];
            const uint8_t up = above[4 * x + channel];
            out[4 * x + channel] =
                static_cast<uint8_t>(filtered[Bytes * x + channel] + predict(left, up, upLeft));
        }
        if constexpr (Bytes == 3)
        {
            out[4 * x + 3] = 255;
        }
    }
}

template <uint32_t Bytes>
void UnfilterRowOfType(uint8_t filter, const uint8_t* filtered, uint8_t* out, const uint8_t* above,
                       uint64_t width)
{
    switch (filter)
    {
    case 0:
        UnfilterRow<Bytes>(filtered, out, above, width, [](uint8_t, uint8_t, uint8_t) { return 0; });
        break;
    case 1:
        UnfilterRow<Bytes>(filtered, out, above, width, [](uint8_t left, uint8_t, uint8_t) { return left; });
        break;
    case 2:
        UnfilterRow<Bytes>(filtered, out, above, width, [](uint8_t, uint8_t up, uint8_t) { return up; });
        break;
    case 3:
        UnfilterRow<Bytes>(filtered, out, above, width,
                           [](uint8_t left, uint8_t up, uint8_t) { return Average(left, up); });
        break;
    default:
        UnfilterRow<Bytes>(filtered, out, above, width, Paeth);
        break;
    }
}

template <uint32_t Bytes>
bool Unfilter(const uint8_t* filtered, uint8_t* pixels, uint64_t width, uint64_t height)
{
    // A header may claim any width for no rows at all; no zero row is made for those.
    if (height == 0)
    {
        return true;
    }
    const uint64_t rowBytes = width * 4;
    // The row above the first counts as zeros.
    const std::vector<uint8_t> zeroRow(rowBytes, 0);
    const uint64_t filteredRowBytes = Bytes * width + 1;
    for (uint64_t y = 0; y < height; ++y)
    {
        const uint8_t* row = filtered + y * filteredRowBytes;
        if (row[0] >= 5)
        {
            Logger::Log("AssetManager", LogLevel::Error,
                        "PNG has inavlid filter method: " + std::to_string(row[0]));
            return false;
        }
        const uint8_t* above = y == 0 ? zeroRow.data() : pixels + (y - 1) * rowBytes;
        UnfilterRowOfType<Bytes>(row[0], row + 1, pixels + y * rowBytes, above, width);
    }
    return true;
}

} // namespace

std::unique_ptr<uint8_t[]> InflatePngPixels(const PngImage& image, const std::vector<uint8_t>& compressed)
{
    const uint64_t width = image.width;
    const uint64_t height = image.height;
    const uint64_t filteredRowBytes = image.bytesPerPixel * width + 1;
    // zlib's sizes are 32-bit on some hosts. height × row bytes can pass even 64 bits; a division can't.
    if ((height != 0 && filteredRowBytes > kMax32 / height) || compressed.size() > kMax32)
    {
        LogInflateFailure("data too big!");
        return nullptr;
    }
    const std::unique_ptr<uint8_t[]> filtered = Inflate(compressed, height * filteredRowBytes);
    if (!filtered)
    {
        return nullptr;
    }
    auto pixels = std::make_unique_for_overwrite<uint8_t[]>(width * height * 4);
    const bool unfiltered = image.bytesPerPixel == 3
                                ? Unfilter<3>(filtered.get(), pixels.get(), width, height)
                                : Unfilter<4>(filtered.get(), pixels.get(), width, height);
    return unfiltered ? std::move(pixels) : nullptr;
}

} // namespace FileSystem
