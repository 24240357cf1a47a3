#include "Support/ImageWriters.h"

#include <cstdlib>
#include <stdexcept>
#include <zlib.h>

namespace
{

void PutLittle(Bytes& out, uint64_t value, int size)
{
    for (int index = 0; index < size; ++index)
    {
        out.push_back(static_cast<uint8_t>(value >> (8 * index)));
    }
}

void PutBig(Bytes& out, uint32_t value)
{
    for (int index = 3; index >= 0; --index)
    {
        out.push_back(static_cast<uint8_t>(value >> (8 * index)));
    }
}

Bytes BmpInfoHeader(int32_t width, int32_t height, const BmpLayout& layout)
{
    Bytes header;
    PutLittle(header, layout.headerSize, 4);
    if (layout.headerSize == 12)
    {
        PutLittle(header, static_cast<uint32_t>(width), 2);
        PutLittle(header, static_cast<uint32_t>(height), 2);
        PutLittle(header, layout.planes, 2);
        PutLittle(header, layout.depth, 2);
        return header;
    }
    PutLittle(header, static_cast<uint32_t>(width), 4);
    PutLittle(header, static_cast<uint32_t>(layout.topDown ? -height : height), 4);
    PutLittle(header, layout.planes, 2);
    PutLittle(header, layout.depth, 2);
    PutLittle(header, layout.compression, 4);
    header.resize(layout.headerSize, 0);
    return header;
}

uint8_t Predict(uint8_t filter, int left, int up, int upLeft)
{
    switch (filter)
    {
    case 1:
        return static_cast<uint8_t>(left);
    case 2:
        return static_cast<uint8_t>(up);
    case 3:
        return static_cast<uint8_t>((left + up) / 2);
    case 4:
    {
        const int estimate = left + up - upLeft;
        const int toLeft = std::abs(estimate - left);
        const int toUp = std::abs(estimate - up);
        const int toUpLeft = std::abs(estimate - upLeft);
        if (toLeft <= toUp && toLeft <= toUpLeft)
        {
            return static_cast<uint8_t>(left);
        }
        return static_cast<uint8_t>(toUp <= toUpLeft ? up : upLeft);
    }
    default:
        return 0;
    }
}

} // namespace

Bytes MakeBmp(int32_t width, int32_t height, const Bytes& rgb, const BmpLayout& layout)
{
    const size_t rowBytes = static_cast<size_t>(width) * 3;
    const size_t padding = (4 - rowBytes % 4) % 4;
    Bytes pixels;
    for (int32_t stored = 0; stored < height; ++stored)
    {
        const int32_t row = layout.topDown ? stored : height - 1 - stored;
        for (size_t x = 0; x < static_cast<size_t>(width); ++x)
        {
            const uint8_t* pixel =
                rgb.data() + (static_cast<size_t>(row) * static_cast<size_t>(width) + x) * 3;
            pixels.insert(pixels.end(), {pixel[2], pixel[1], pixel[0]});
        }
        const bool last = stored == height - 1;
        pixels.resize(pixels.size() + (last && layout.dropFinalPadding ? 0 : padding), 0);
    }
    const Bytes info = BmpInfoHeader(width, height, layout);
    const uint32_t offset = static_cast<uint32_t>(14 + info.size() + layout.gap);
    Bytes file = {'B', 'M'};
    PutLittle(file, offset + pixels.size(), 4);
    PutLittle(file, 0, 4);
    PutLittle(file, offset, 4);
    file.insert(file.end(), info.begin(), info.end());
    file.resize(file.size() + layout.gap, 0xEE);
    file.insert(file.end(), pixels.begin(), pixels.end());
    return file;
}

Bytes WithOpaqueAlpha(const Bytes& rgb)
{
    Bytes rgba;
    for (size_t index = 0; index + 2 < rgb.size(); index += 3)
    {
        rgba.insert(rgba.end(), {rgb[index], rgb[index + 1], rgb[index + 2], 255});
    }
    return rgba;
}

Bytes PngChunk(const std::string& type, const Bytes& data, bool badCrc)
{
    Bytes chunk;
    PutBig(chunk, static_cast<uint32_t>(data.size()));
    chunk.insert(chunk.end(), type.begin(), type.end());
    chunk.insert(chunk.end(), data.begin(), data.end());
    const uLong crc = crc32(0, chunk.data() + 4, static_cast<uInt>(chunk.size() - 4));
    PutBig(chunk, static_cast<uint32_t>(crc + (badCrc ? 1 : 0)));
    return chunk;
}

Bytes PngHeaderData(uint32_t width, uint32_t height, uint8_t depth, uint8_t colourType, uint8_t interlace)
{
    Bytes data;
    PutBig(data, width);
    PutBig(data, height);
    data.insert(data.end(), {depth, colourType, 0, 0, interlace});
    return data;
}

Bytes AssemblePng(const std::vector<Bytes>& chunks)
{
    Bytes file = {0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A};
    for (const Bytes& chunk : chunks)
    {
        file.insert(file.end(), chunk.begin(), chunk.end());
    }
    return file;
}

Bytes FilterRows(const Bytes& pixels, uint32_t width, uint32_t height, uint32_t bytesPerPixel,
                 const std::vector<uint8_t>& filterOfRow)
{
    const size_t rowBytes = static_cast<size_t>(width) * bytesPerPixel;
    Bytes filtered;
    filtered.reserve((rowBytes + 1) * height);
    for (size_t y = 0; y < height; ++y)
    {
        const uint8_t filter = filterOfRow[y % filterOfRow.size()];
        filtered.push_back(filter);
        const uint8_t* row = pixels.data() + y * rowBytes;
        for (size_t index = 0; index < rowBytes; ++index)
        {
            const bool first = index < bytesPerPixel;
            const int left = first ? 0 : row[index - bytesPerPixel];
            const int up = y == 0 ? 0 : row[index - rowBytes];
            const int upLeft = y == 0 || first ? 0 : row[index - rowBytes - bytesPerPixel];
            filtered.push_back(static_cast<uint8_t>(row[index] - Predict(filter, left, up, upLeft)));
        }
    }
    return filtered;
}

Bytes Deflate(const Bytes& data, int level)
{
    uLongf size = compressBound(data.size());
    Bytes compressed(size);
    if (compress2(compressed.data(), &size, data.data(), data.size(), level) != Z_OK)
    {
        throw std::runtime_error("compress2 failed");
    }
    compressed.resize(size);
    return compressed;
}

Bytes EncodePng(uint32_t width, uint32_t height, uint8_t colourType, const Bytes& pixels,
                const std::vector<uint8_t>& filterOfRow, int level, size_t idatSize)
{
    const uint32_t bytesPerPixel = colourType == 6 ? 4 : 3;
    const Bytes compressed = Deflate(FilterRows(pixels, width, height, bytesPerPixel, filterOfRow), level);
    std::vector<Bytes> chunks = {PngChunk("IHDR", PngHeaderData(width, height, 8, colourType))};
    for (size_t start = 0; start < compressed.size(); start += idatSize)
    {
        const size_t end = std::min(compressed.size(), start + idatSize);
        chunks.push_back(PngChunk("IDAT", Bytes(compressed.begin() + static_cast<ptrdiff_t>(start),
                                                compressed.begin() + static_cast<ptrdiff_t>(end))));
    }
    chunks.push_back(PngChunk("IEND", {}));
    return AssemblePng(chunks);
}
