#include "Debug/Exception.h"
#include "FileSystem/BmpDecoder.h"
#include "FileSystem/FileSerializerBinary.h"
#include "Graphics/Bitmap.h"
#include "Support/ImageWriters.h"
#include "Support/LogCapture.h"
#include "Support/MemoryFile.h"

#include <gtest/gtest.h>

namespace
{

// Distinct bytes for every channel of every pixel, top row first.
Bytes Pattern(int32_t width, int32_t height)
{
    Bytes rgb(static_cast<size_t>(width * height * 3));
    for (size_t index = 0; index < rgb.size(); ++index)
    {
        rgb[index] = static_cast<uint8_t>(index * 7 + 1);
    }
    return rgb;
}

Bytes AsRgba(const Bytes& rgb)
{
    Bytes rgba;
    for (size_t index = 0; index < rgb.size(); index += 3)
    {
        rgba.insert(rgba.end(), {rgb[index], rgb[index + 1], rgb[index + 2], 255});
    }
    return rgba;
}

std::shared_ptr<Graphics::Bitmap> Decode(const Bytes& file)
{
    const MemoryFile bytes(file);
    FileSystem::FileSerializerBinary serializer(bytes.Open());
    return FileSystem::DecodeBmp(serializer, "test.bmp");
}

Bytes PixelsOf(const Graphics::Bitmap& bitmap)
{
    return Bytes(bitmap.pixels.get(), bitmap.pixels.get() + size_t{bitmap.width} * bitmap.height * 4);
}

void ExpectDecodes(const Bytes& file, int32_t width, int32_t height, const Bytes& rgb,
                   const std::string& what)
{
    const std::shared_ptr<Graphics::Bitmap> bitmap = Decode(file);
    ASSERT_TRUE(bitmap) << what;
    EXPECT_EQ(bitmap->width, static_cast<uint32_t>(width)) << what;
    EXPECT_EQ(bitmap->height, static_cast<uint32_t>(height)) << what;
    EXPECT_EQ(bitmap->name, "test.bmp");
    EXPECT_EQ(PixelsOf(*bitmap), AsRgba(rgb)) << what;
}

TEST(BmpDecoder, EveryPaddingRowOrderAndHeaderSizeDecodesToTheSamePixels)
{
    const LogCapture log;
    for (int32_t width = 1; width <= 4; ++width)
    {
        const Bytes rgb = Pattern(width, 3);
        for (const BmpLayout layout : {BmpLayout{}, BmpLayout{.topDown = true}, BmpLayout{.headerSize = 12},
                                       BmpLayout{.headerSize = 124, .topDown = true}, BmpLayout{.gap = 5},
                                       BmpLayout{.dropFinalPadding = true}})
        {
            ExpectDecodes(MakeBmp(width, 3, rgb, layout), width, 3, rgb,
                          "width " + std::to_string(width) + " header " + std::to_string(layout.headerSize));
        }
    }
    EXPECT_EQ(log.Messages("AssetManager", LogLevel::Warning),
              std::vector<std::string>(4, "BMP file has unknown file header size :124, should be 40"));
    EXPECT_EQ(log.Count(LogLevel::Error), 0u);
}

TEST(BmpDecoder, TwoPlanesAreReportedAndStillLoad)
{
    const LogCapture log;
    const Bytes rgb = Pattern(2, 2);
    ExpectDecodes(MakeBmp(2, 2, rgb, {.planes = 2}), 2, 2, rgb, "planes 2");
    EXPECT_EQ(log.Messages("AssetManager", LogLevel::Error),
              std::vector<std::string>{"BMP file has invalid number of colour planes 2, should be 1"});
}

TEST(BmpDecoder, UnsupportedFilesAreRefusedWithTheirReason)
{
    const Bytes rgb = Pattern(2, 2);
    Bytes notBm = MakeBmp(2, 2, rgb);
    notBm[1] = 'A';
    Bytes negativeWidth = MakeBmp(2, 2, rgb);
    negativeWidth[21] = 0xFF;
    Bytes lowestHeight = MakeBmp(2, 2, rgb);
    lowestHeight[22] = lowestHeight[23] = lowestHeight[24] = 0;
    lowestHeight[25] = 0x80;
    const std::vector<std::pair<Bytes, std::string>> cases = {
        {notBm, "BMP file has invalid header value"},
        {MakeBmp(2, 2, rgb, {.headerSize = 11}), "BMP file header is too small"},
        {MakeBmp(2, 2, rgb, {.headerSize = 39}), "BMP file has to small a file header: 39, should be >=40"},
        {MakeBmp(2, 2, rgb, {.compression = 1}), "BMP file has unsupported compression method"},
        {MakeBmp(2, 2, rgb, {.depth = 32}), "BMP file has unsupported bit-depth 32"},
        {MakeBmp(2, 2, rgb, {.depth = 8}), "BMP file has unsupported bit-depth 8"},
        {negativeWidth, "BMP file has invalid dimensions"},
        {lowestHeight, "BMP file has invalid dimensions"},
    };
    for (const auto& [file, message] : cases)
    {
        const LogCapture log;
        EXPECT_FALSE(Decode(file)) << message;
        EXPECT_EQ(log.Messages("AssetManager", LogLevel::Error), std::vector<std::string>{message});
    }
}

TEST(BmpDecoder, MissingPixelsRaiseBeforeAnythingIsAllocated)
{
    const Bytes rgb = Pattern(3, 4);
    const Bytes whole = MakeBmp(3, 4, rgb);
    // A huge claimed height in a small file: the rows it promises aren't there.
    Bytes tall = whole;
    tall[23] = 0x7F;
    for (const Bytes& file :
         {Bytes(whole.begin(), whole.end() - 4), Bytes(whole.begin(), whole.begin() + 30), tall})
    {
        const LogCapture log;
        EXPECT_THROW(Decode(file), FileSystem::SerializerError);
        ASSERT_EQ(log.Messages("FileSystem", LogLevel::Fatal).size(), 1u);
        EXPECT_TRUE(
            log.Messages("FileSystem", LogLevel::Fatal)[0].starts_with("Exception: Unexpected end of file"));
    }
}

} // namespace
