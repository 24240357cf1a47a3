#include "Debug/Exception.h"
#include "FileSystem/BmpDecoder.h"
#include "Graphics/Bitmap.h"
#include "Support/FuzzBitmap.h"
#include "Support/ImageWriters.h"
#include "Support/LogCapture.h"

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

TEST(BmpDecoder, EveryPaddingRowOrderHeaderSizeAndPlaneCountDecodesToTheSamePixels)
{
    const LogCapture log;
    for (int32_t width = 1; width <= 4; ++width)
    {
        const Bytes rgb = Pattern(width, 3);
        for (const BmpLayout layout : {BmpLayout{}, BmpLayout{.topDown = true}, BmpLayout{.headerSize = 12},
                                       BmpLayout{.headerSize = 124, .topDown = true}, BmpLayout{.gap = 5},
                                       BmpLayout{.dropFinalPadding = true}, BmpLayout{.planes = 2}})
        {
            SCOPED_TRACE("width " + std::to_string(width) + " header " + std::to_string(layout.headerSize));
            const std::shared_ptr<Graphics::Bitmap> bitmap =
                DecodeBytes(MakeBmp(width, 3, rgb, layout), FileSystem::DecodeBmp);
            ASSERT_TRUE(bitmap);
            EXPECT_EQ(bitmap->width, static_cast<uint32_t>(width));
            EXPECT_EQ(bitmap->height, 3u);
            EXPECT_EQ(bitmap->name, "test");
            EXPECT_EQ(PixelsOf(*bitmap), WithOpaqueAlpha(rgb));
        }
    }
    EXPECT_EQ(log.Messages("AssetManager", LogLevel::Warning),
              std::vector<std::string>(4, "BMP file has unknown file header size :124, should be 40"));
    EXPECT_EQ(log.Messages("AssetManager", LogLevel::Error),
              std::vector<std::string>(4, "BMP file has invalid number of colour planes 2, should be 1"));
}

TEST(BmpDecoder, UnsupportedFilesAreRefusedWithTheirReasonAndMissingPixelsRaise)
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
        EXPECT_FALSE(DecodeBytes(file, FileSystem::DecodeBmp)) << message;
        EXPECT_EQ(log.Messages("AssetManager", LogLevel::Error), std::vector<std::string>{message});
    }

    const Bytes whole = MakeBmp(3, 4, Pattern(3, 4));
    // A huge claimed height in a small file: the rows it promises aren't there, and aren't allocated first.
    Bytes tall = whole;
    tall[23] = 0x7F;
    for (const Bytes& file :
         {Bytes(whole.begin(), whole.end() - 4), Bytes(whole.begin(), whole.begin() + 30), tall})
    {
        const LogCapture log;
        EXPECT_THROW(DecodeBytes(file, FileSystem::DecodeBmp), FileSystem::SerializerError);
        ASSERT_EQ(log.Messages("FileSystem", LogLevel::Fatal).size(), 1u);
        EXPECT_TRUE(
            log.Messages("FileSystem", LogLevel::Fatal)[0].starts_with("Exception: Unexpected end of file"));
    }
}

} // namespace
