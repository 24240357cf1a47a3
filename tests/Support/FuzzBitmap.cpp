#include "Support/FuzzBitmap.h"

#include "Debug/Exception.h"
#include "Debug/Logger.h"
#include "FileSystem/FileSerializerBinary.h"
#include "Graphics/Bitmap.h"
#include "Support/MemoryFile.h"

bool DecodeFuzzInput(const uint8_t* data, size_t size, BitmapDecoder decoder)
{
    const MemoryFile bytes(data, size);
    FileSystem::FileSerializerBinary serializer(bytes.Open());
    std::shared_ptr<Graphics::Bitmap> bitmap;
    try
    {
        bitmap = decoder(serializer, "fuzz");
    }
    catch (const FileSystem::FileSystemError&)
    {
        return false;
    }
    if (!bitmap)
    {
        return false;
    }
    const size_t pixelBytes = size_t{bitmap->width} * bitmap->height * 4;
    volatile uint8_t sum = 0;
    for (size_t index = 0; index < pixelBytes; ++index)
    {
        sum = static_cast<uint8_t>(sum + bitmap->pixels[index]);
    }
    return true;
}

std::shared_ptr<Graphics::Bitmap> DecodeBytes(const std::vector<uint8_t>& file, BitmapDecoder decoder)
{
    const MemoryFile bytes(file);
    FileSystem::FileSerializerBinary serializer(bytes.Open());
    return decoder(serializer, "test");
}

std::vector<uint8_t> PixelsOf(const Graphics::Bitmap& bitmap)
{
    return {bitmap.pixels.get(), bitmap.pixels.get() + size_t{bitmap.width} * bitmap.height * 4};
}

void SilenceStandardSinks()
{
    Logger::Detach(StandardOutputSink);
    Logger::Detach(StandardErrorSink);
}

void RestoreStandardSinks()
{
    Logger::Attach(StandardOutputSink, 7);
    Logger::Attach(StandardErrorSink, 24);
}
