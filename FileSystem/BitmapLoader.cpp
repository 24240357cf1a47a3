#include "FileSystem/BitmapLoader.h"

#include "Debug/Logger.h"
#include "FileSystem/BitmapFormat.h"
#include "FileSystem/BmpDecoder.h"
#include "FileSystem/FileSerializerBinary.h"
#include "FileSystem/PngDecoder.h"
#include "Graphics/Bitmap.h"

#include <cerrno>
#include <cstring>

namespace FileSystem
{
namespace
{

const char* RefusalText(BitmapFormat format)
{
    switch (format)
    {
    case BitmapFormat::Gif:
        return "Loading GIF images is not supported: ";
    case BitmapFormat::Tga:
        return "Loading TGA images is not supported: ";
    case BitmapFormat::Tif:
        return "Loading TIF images is not supported: ";
    case BitmapFormat::Jpeg:
        return "Loading JPEG images is not supported: ";
    default:
        return "Could not detect bitmap format for ";
    }
}

} // namespace

std::shared_ptr<Graphics::Bitmap> DecodeBitmap(BinarySerializer& serializer, const std::string& name)
{
    const BitmapFormat format = DetectFormat(serializer);
    if (format == BitmapFormat::Png)
    {
        return DecodePng(serializer, name);
    }
    if (format == BitmapFormat::Bmp)
    {
        return DecodeBmp(serializer, name);
    }
    Logger::Log("AssetManager", LogLevel::Error, std::string(RefusalText(format)) + "\"" + name + "\"");
    return nullptr;
}

std::shared_ptr<Graphics::Bitmap> LoadBitmapFile(const std::string& name)
{
    std::FILE* const file = std::fopen(name.c_str(), "rb");
    if (file == nullptr)
    {
        const int error = errno;
        // The message has no closing quote.
        Logger::Log("AssetManager", LogLevel::Error,
                    "Failed to open bitmap file \"" + name + ": " + std::strerror(error));
        return nullptr;
    }
    // The serializer owns the file and closes it however the decoding ends.
    FileSerializerBinary serializer(file);
    return DecodeBitmap(serializer, name);
}

} // namespace FileSystem
