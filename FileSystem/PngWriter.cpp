#include "FileSystem/PngWriter.h"

#include "FileSystem/AtomicFile.h"

#include <cstring>
#include <new>
#include <stdexcept>
#include <string_view>
#include <zlib.h>

namespace FileSystem
{
namespace
{

constexpr std::string_view kSignature = "\x89PNG\r\n\x1A\n";
// No chunk may be longer, and the image data is one chunk.
constexpr uint64_t kMaxChunkLength = 0x7FFFFFFF;
constexpr uint8_t kBitDepth = 8;
constexpr uint8_t kColourTypeRgba = 6;

void PutBig(std::string& out, uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
    {
        out.push_back(static_cast<char>(value >> shift));
    }
}

// Length, type, data and the CRC, which covers the type and the data but not the length.
void PutChunk(std::string& out, std::string_view type, std::string_view data)
{
    PutBig(out, static_cast<uint32_t>(data.size()));
    const size_t typeStart = out.size();
    out.append(type);
    out.append(data);
    const auto* covered = reinterpret_cast<const Bytef*>(out.data() + typeStart);
    PutBig(out, static_cast<uint32_t>(crc32(0, covered, static_cast<uInt>(out.size() - typeStart))));
}

std::string HeaderData(uint32_t width, uint32_t height)
{
    std::string data;
    PutBig(data, width);
    PutBig(data, height);
    // Compression method 0, filter method 0, no interlace.
    data.append({static_cast<char>(kBitDepth), static_cast<char>(kColourTypeRgba), 0, 0, 0});
    return data;
}

// Filter type 0 before each row: the pixels as they are. Other filters would make smaller files.
std::string UnfilteredRows(uint32_t width, uint32_t height, const uint8_t* rgba)
{
    const size_t rowBytes = size_t{width} * 4;
    std::string rows((rowBytes + 1) * height, '\0');
    for (size_t y = 0; y < height; ++y)
    {
        std::memcpy(rows.data() + y * (rowBytes + 1) + 1, rgba + y * rowBytes, rowBytes);
    }
    return rows;
}

std::string Compress(const std::string& data)
{
    uLongf size = compressBound(data.size());
    std::string compressed(size, '\0');
    const int result = compress(reinterpret_cast<Bytef*>(compressed.data()), &size,
                                reinterpret_cast<const Bytef*>(data.data()), data.size());
    // With a buffer of compressBound's size, running out of memory is the only way to fail.
    if (result != Z_OK)
    {
        throw std::bad_alloc();
    }
    compressed.resize(size);
    return compressed;
}

} // namespace

std::string EncodePng(uint32_t width, uint32_t height, const uint8_t* rgba)
{
    const uint64_t filteredRowBytes = uint64_t{width} * 4 + 1;
    // Divided, not multiplied: the rows of the largest sides pass even 64 bits.
    if (width == 0 || height == 0 || height > kMaxChunkLength / filteredRowBytes ||
        compressBound(static_cast<uLong>(filteredRowBytes * height)) > kMaxChunkLength)
    {
        throw std::invalid_argument("PNG can't hold an image of " + std::to_string(width) + " × " +
                                    std::to_string(height) + " pixels");
    }
    std::string file(kSignature);
    PutChunk(file, "IHDR", HeaderData(width, height));
    PutChunk(file, "IDAT", Compress(UnfilteredRows(width, height, rgba)));
    PutChunk(file, "IEND", {});
    return file;
}

bool WritePngFile(const std::string& path, uint32_t width, uint32_t height, const uint8_t* rgba)
{
    return ReplaceFileContent(path, {EncodePng(width, height, rgba)});
}

} // namespace FileSystem
