#include "FileSystem/PngDecoder.h"

#include "Debug/Logger.h"
#include "FileSystem/BinarySerializer.h"
#include "FileSystem/PngPixels.h"
#include "Graphics/Bitmap.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace FileSystem
{
namespace
{

constexpr std::array<unsigned char, 8> kSignature = {0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A};
constexpr uint32_t kHeaderSize = 13;
constexpr uint32_t kMaxPaletteSize = 768;
// IDAT data grows by what was really read, at most this much at a time, so a chunk that claims 4 GB in a
// tiny file allocates little before the read runs out.
constexpr uint32_t kIdatBlock = 1 << 16;
// Ancillary chunks that carry nothing the engine uses and are common enough not to be worth a line.
constexpr std::array<std::string_view, 9> kSilentChunks = {"gAMA", "cHRM", "iCCP", "pHYs", "tEXt",
                                                           "tIME", "sRGB", "iTXt", "bKGD"};

void Log(LogLevel level, const std::string& message)
{
    Logger::Log("AssetManager", level, message);
}

// Every check that fails ends the decoding; they run in the order of the header's fields.
bool ReadHeader(BinarySerializer& serializer, PngImage& image)
{
    image.width = serializer.ReadU32();
    image.height = serializer.ReadU32();
    const uint8_t depth = serializer.ReadU8();
    if (depth != 8)
    {
        Log(LogLevel::Error, "PNG has unsupported bit depth: " + std::to_string(depth));
        return false;
    }
    const uint8_t colourType = serializer.ReadU8();
    if (colourType != 2 && colourType != 6)
    {
        Log(LogLevel::Error, "PNG has unsupported colour type of:" + std::to_string(colourType));
        return false;
    }
    image.bytesPerPixel = colourType == 2 ? 3 : 4;
    const uint8_t compression = serializer.ReadU8();
    if (compression != 0)
    {
        Log(LogLevel::Error, "PNG has unknown compression method: " + std::to_string(compression));
        return false;
    }
    const uint8_t filter = serializer.ReadU8();
    if (filter != 0)
    {
        Log(LogLevel::Error, "PNG has unknown filter method: " + std::to_string(filter));
        return false;
    }
    const uint8_t interlace = serializer.ReadU8();
    if (interlace != 0)
    {
        Log(LogLevel::Error, "PNG has unsupported interlace method: " + std::to_string(interlace));
        return false;
    }
    return true;
}

void AppendData(BinarySerializer& serializer, uint32_t length, std::vector<uint8_t>& compressed)
{
    while (length > 0)
    {
        const uint32_t block = std::min(length, kIdatBlock);
        const size_t end = compressed.size();
        compressed.resize(end + block);
        serializer.ReadBytes(compressed.data() + end, block);
        length -= block;
    }
}

void ReadPalette(BinarySerializer& serializer, uint32_t length)
{
    if (length % 3 != 0 || length > kMaxPaletteSize)
    {
        Log(LogLevel::Error, "PNG file has invalid palette size: " + std::to_string(length));
        serializer.Skip(length);
        return;
    }
    // No supported colour type uses a palette; it is read only to be passed over.
    std::array<uint8_t, kMaxPaletteSize> palette{};
    serializer.ReadBytes(palette.data(), length);
}

// Chunks after the header that don't carry pixels.
void HandleOtherChunk(BinarySerializer& serializer, std::string_view type, uint32_t length)
{
    if (type == "PLTE")
    {
        ReadPalette(serializer, length);
        return;
    }
    if (type[0] >= 'A' && type[0] <= 'Z')
    {
        Log(LogLevel::Error, "PNG file has unknown critical chunk: " + std::string(type));
    }
    else if (std::find(kSilentChunks.begin(), kSilentChunks.end(), type) == kSilentChunks.end())
    {
        Log(LogLevel::Debug, "Ignoring unknown PNG chunk " + std::string(type));
    }
    serializer.Skip(length);
}

// Walks the chunks up to IEND, gathering the IDAT data. False when the file is refused.
bool ReadChunks(BinarySerializer& serializer, PngImage& image, std::vector<uint8_t>& compressed)
{
    bool haveHeader = false;
    for (bool ended = false; !ended;)
    {
        const uint32_t length = serializer.ReadU32();
        std::array<char, 4> typeBytes{};
        serializer.ReadBytes(typeBytes.data(), typeBytes.size());
        const std::string_view type(typeBytes.data(), typeBytes.size());
        if (type == "IHDR")
        {
            if (haveHeader)
            {
                Log(LogLevel::Warning, "PNG file has multiple header chunks");
            }
            if (length != kHeaderSize)
            {
                Log(LogLevel::Warning, "PNG file has unknown header size: " + std::to_string(length));
            }
            if (!ReadHeader(serializer, image))
            {
                return false;
            }
            haveHeader = true;
        }
        else if (!haveHeader)
        {
            Log(LogLevel::Error,
                "PNG file does not start with a header chunk, instead found: " + std::string(type));
            return false;
        }
        else if (type == "IEND")
        {
            serializer.Skip(length);
            ended = true;
        }
        else if (type == "IDAT")
        {
            AppendData(serializer, length, compressed);
        }
        else
        {
            HandleOtherChunk(serializer, type, length);
        }
        // The CRC is not checked.
        serializer.Skip(4);
    }
    return true;
}

} // namespace

std::shared_ptr<Graphics::Bitmap> DecodePng(BinarySerializer& serializer, std::string name)
{
    serializer.SetByteSwap(true);
    std::array<unsigned char, kSignature.size()> signature{};
    serializer.ReadBytes(signature.data(), signature.size());
    if (signature != kSignature)
    {
        Log(LogLevel::Error, "PNG file has invalid header");
        return nullptr;
    }
    PngImage image;
    std::vector<uint8_t> compressed;
    if (!ReadChunks(serializer, image, compressed))
    {
        return nullptr;
    }
    std::unique_ptr<uint8_t[]> pixels = InflatePngPixels(image, compressed);
    if (!pixels)
    {
        return nullptr;
    }
    return std::make_shared<Graphics::Bitmap>(image.width, image.height, std::move(pixels), std::move(name));
}

} // namespace FileSystem
