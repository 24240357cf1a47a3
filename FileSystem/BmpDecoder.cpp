#include "FileSystem/BmpDecoder.h"

#include "Debug/Logger.h"
#include "FileSystem/BinarySerializer.h"
#include "Graphics/Bitmap.h"

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace FileSystem
{
namespace
{

constexpr uint32_t kCoreHeaderSize = 12;
constexpr uint32_t kInfoHeaderSize = 40;
constexpr uint32_t kBitsPerPixel = 24;

struct BmpHeader
{
    uint32_t pixelOffset = 0;
    int64_t width = 0;
    int64_t height = 0;
    uint32_t planes = 0;
    uint32_t depth = 0;
};

void Refuse(const std::string& message, LogLevel level = LogLevel::Error)
{
    Logger::Log("AssetManager", level, message);
}

// The header after the file header, by its size; empty when the size or the compression is refused.
std::optional<BmpHeader> ReadInfoHeader(BinarySerializer& serializer, uint32_t headerSize)
{
    BmpHeader header;
    if (headerSize < kCoreHeaderSize)
    {
        Refuse("BMP file header is too small");
        return std::nullopt;
    }
    if (headerSize == kCoreHeaderSize)
    {
        header.width = serializer.ReadU16();
        header.height = serializer.ReadU16();
        header.planes = serializer.ReadU16();
        header.depth = serializer.ReadU16();
        return header;
    }
    if (headerSize < kInfoHeaderSize)
    {
        Refuse("BMP file has to small a file header: " + std::to_string(headerSize) + ", should be >=40");
        return std::nullopt;
    }
    if (headerSize > kInfoHeaderSize)
    {
        Refuse("BMP file has unknown file header size :" + std::to_string(headerSize) + ", should be 40",
               LogLevel::Warning);
    }
    header.width = serializer.ReadI32();
    header.height = serializer.ReadI32();
    header.planes = serializer.ReadU16();
    header.depth = serializer.ReadU16();
    if (serializer.ReadU32() != 0)
    {
        Refuse("BMP file has unsupported compression method");
        return std::nullopt;
    }
    return header;
}

std::optional<BmpHeader> ReadHeaders(BinarySerializer& serializer)
{
    std::array<char, 2> magic{};
    serializer.ReadBytes(magic.data(), magic.size());
    if (magic[0] != 'B' || magic[1] != 'M')
    {
        Refuse("BMP file has invalid header value");
        return std::nullopt;
    }
    // The file size and two reserved words.
    serializer.Skip(8);
    const uint32_t pixelOffset = serializer.ReadU32();
    const uint32_t headerSize = serializer.ReadU32();
    std::optional<BmpHeader> header = ReadInfoHeader(serializer, headerSize);
    if (header)
    {
        header->pixelOffset = pixelOffset;
    }
    return header;
}

// A stored row is 3 × width bytes and padded to a multiple of four.
struct RowLayout
{
    uint64_t pixelBytes;
    uint64_t padding;
};

RowLayout LayoutOf(uint64_t width)
{
    const uint64_t bits = width * kBitsPerPixel;
    return {bits / 8, (bits + 31) / 32 * 4 - bits / 8};
}

// Checked before the allocation, so a small file can't claim a huge image. The last row's padding may be
// missing: a skip past the end is a seek and reads nothing.
void RequireRows(BinarySerializer& serializer, uint32_t pixelOffset, uint64_t rows, RowLayout layout)
{
    if (rows == 0 || layout.pixelBytes == 0)
    {
        return;
    }
    serializer.Seek(0, SeekOrigin::End);
    const uint64_t fileSize = static_cast<uint64_t>(serializer.Tell());
    const uint64_t needed =
        pixelOffset + (rows - 1) * (layout.pixelBytes + layout.padding) + layout.pixelBytes;
    if (fileSize < needed)
    {
        serializer.Close();
        Logger::RaiseSerializerError("FileSystem", "Unexpected end of file");
    }
}

void ConvertRow(const uint8_t* bgr, uint8_t* rgba, uint64_t width)
{
    for (uint64_t x = 0; x < width; ++x)
    {
        rgba[4 * x] = bgr[3 * x + 2];
        rgba[4 * x + 1] = bgr[3 * x + 1];
        rgba[4 * x + 2] = bgr[3 * x];
        rgba[4 * x + 3] = 255;
    }
}

std::unique_ptr<uint8_t[]> ReadPixels(BinarySerializer& serializer, uint32_t pixelOffset, uint64_t width,
                                      uint64_t height, bool topDown)
{
    const RowLayout layout = LayoutOf(width);
    RequireRows(serializer, pixelOffset, height, layout);
    serializer.Seek(static_cast<long>(pixelOffset), SeekOrigin::Begin);
    auto pixels = std::make_unique_for_overwrite<uint8_t[]>(width * height * 4);
    // An image without area has nothing to read, however many rows or columns it claims.
    if (width == 0 || height == 0)
    {
        return pixels;
    }
    std::vector<uint8_t> row(layout.pixelBytes);
    for (uint64_t index = 0; index < height; ++index)
    {
        serializer.ReadBytes(row.data(), row.size());
        const uint64_t destination = topDown ? index : height - 1 - index;
        ConvertRow(row.data(), pixels.get() + destination * width * 4, width);
        serializer.Skip(static_cast<uint32_t>(layout.padding));
    }
    return pixels;
}

} // namespace

std::shared_ptr<Graphics::Bitmap> DecodeBmp(BinarySerializer& serializer, std::string name)
{
    serializer.SetByteSwap(false);
    const std::optional<BmpHeader> header = ReadHeaders(serializer);
    if (!header)
    {
        return nullptr;
    }
    if (header->planes != 1)
    {
        Refuse("BMP file has invalid number of colour planes " + std::to_string(header->planes) +
               ", should be 1");
    }
    if (header->depth != kBitsPerPixel)
    {
        Refuse("BMP file has unsupported bit-depth " + std::to_string(header->depth));
        return nullptr;
    }
    if (header->width < 0 || header->height == std::numeric_limits<int32_t>::min())
    {
        Refuse("BMP file has invalid dimensions");
        return nullptr;
    }
    // A negative height stores the rows from the top, a positive one from the bottom.
    const bool topDown = header->height < 0;
    const uint64_t width = static_cast<uint64_t>(header->width);
    const uint64_t height = static_cast<uint64_t>(topDown ? -header->height : header->height);
    auto pixels = ReadPixels(serializer, header->pixelOffset, width, height, topDown);
    return std::make_shared<Graphics::Bitmap>(static_cast<uint32_t>(width), static_cast<uint32_t>(height),
                                              std::move(pixels), std::move(name));
}

} // namespace FileSystem
