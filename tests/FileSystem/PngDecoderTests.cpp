#include "Debug/Exception.h"
#include "FileSystem/PngDecoder.h"
#include "Graphics/Bitmap.h"
#include "Support/FuzzBitmap.h"
#include "Support/ImageWriters.h"
#include "Support/LogCapture.h"

#include <gtest/gtest.h>
#include <random>

namespace
{

std::shared_ptr<Graphics::Bitmap> Decode(const Bytes& file)
{
    return DecodeBytes(file, FileSystem::DecodePng);
}

// A 2 × 2 truecolour image whose chunks a test arranges; IHDR first unless the test says otherwise.
const Bytes kSmallRgb = {10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120};

Bytes SmallIdat()
{
    return PngChunk("IDAT", Deflate(FilterRows(kSmallRgb, 2, 2, 3, {1})));
}

Bytes SmallHeader()
{
    return PngChunk("IHDR", PngHeaderData(2, 2, 8, 2));
}

TEST(PngDecoder, EveryFilterOnBothColourTypesGivesBackThePixels)
{
    const LogCapture log;
    // Odd sizes and random bytes reach the wrapping sums, the Average floor and all Paeth ties.
    for (const uint8_t colourType : {uint8_t{2}, uint8_t{6}})
    {
        const uint32_t bytesPerPixel = colourType == 2 ? 3 : 4;
        std::mt19937 random(colourType);
        Bytes pixels(size_t{13} * 11 * bytesPerPixel);
        std::generate(pixels.begin(), pixels.end(), [&] { return static_cast<uint8_t>(random()); });
        for (const std::vector<uint8_t>& filters :
             {std::vector<uint8_t>{0}, {1}, {2}, {3}, {4}, {4, 3, 2, 1, 0}, {2, 3, 4}})
        {
            const std::shared_ptr<Graphics::Bitmap> bitmap =
                Decode(EncodePng(13, 11, colourType, pixels, filters, 6, 100));
            ASSERT_TRUE(bitmap);
            EXPECT_EQ(bitmap->width, 13u);
            EXPECT_EQ(bitmap->height, 11u);
            EXPECT_EQ(PixelsOf(*bitmap), colourType == 2 ? WithOpaqueAlpha(pixels) : pixels)
                << int{colourType} << " filter " << int{filters[0]};
        }
    }
    EXPECT_TRUE(log.Entries().empty());
}

TEST(PngDecoder, BadCrcsUnknownChunksSplitDataAndOddHeadersStillLoad)
{
    const LogCapture log;
    const Bytes data = Deflate(FilterRows(kSmallRgb, 2, 2, 3, {4}));
    Bytes longHeader = PngHeaderData(2, 2, 8, 2);
    longHeader.push_back(0);
    // The 14-byte chunk is read as 13 bytes; its last byte then stands where the CRC is skipped.
    Bytes longHeaderChunk = PngChunk("IHDR", longHeader);
    longHeaderChunk.pop_back();
    const Bytes file = AssemblePng(
        {longHeaderChunk, PngChunk("IHDR", PngHeaderData(2, 2, 8, 2), true), PngChunk("gAMA", {1, 2, 3, 4}),
         PngChunk("abCd", {9}), PngChunk("PLTE", {1, 2, 3}), PngChunk("QQQQ", {1, 2}),
         PngChunk("PLTE", {1, 2}), PngChunk("IDAT", Bytes(data.begin(), data.begin() + 5)),
         PngChunk("IDAT", Bytes(data.begin() + 5, data.end())), PngChunk("IEND", {}, true)});
    const std::shared_ptr<Graphics::Bitmap> bitmap = Decode(file);
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(PixelsOf(*bitmap), WithOpaqueAlpha(kSmallRgb));
    EXPECT_EQ(log.Messages("AssetManager", LogLevel::Debug),
              std::vector<std::string>{"Ignoring unknown PNG chunk abCd"});
    EXPECT_EQ(log.Messages("AssetManager", LogLevel::Warning),
              (std::vector<std::string>{"PNG file has unknown header size: 14",
                                        "PNG file has multiple header chunks"}));
    EXPECT_EQ(log.Messages("AssetManager", LogLevel::Error),
              (std::vector<std::string>{"PNG file has unknown critical chunk: QQQQ",
                                        "PNG file has invalid palette size: 2"}));

    // An image without rows allocates nothing for its width.
    const std::shared_ptr<Graphics::Bitmap> empty =
        Decode(AssemblePng({PngChunk("IHDR", PngHeaderData(0xFFFFFFFF, 0, 8, 6)),
                            PngChunk("IDAT", Deflate({})), PngChunk("IEND", {})}));
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->width, 0xFFFFFFFFu);
    EXPECT_EQ(empty->height, 0u);
}

TEST(PngDecoder, RefusedFilesSayWhy)
{
    Bytes badSignature = AssemblePng({SmallHeader(), SmallIdat(), PngChunk("IEND", {})});
    badSignature[7] = 0;
    Bytes badFilter = FilterRows(kSmallRgb, 2, 2, 3, {0});
    badFilter[7] = 7;
    const Bytes surplus = Deflate(Bytes(20, 0));
    const Bytes shortStream = Deflate(Bytes(5, 0));
    Bytes cutStream = Deflate(FilterRows(kSmallRgb, 2, 2, 3, {0}));
    cutStream.erase(cutStream.end() - 6, cutStream.end());
    const Bytes tail = PngChunk("IEND", {});
    const std::vector<std::pair<Bytes, std::string>> cases = {
        {badSignature, "PNG file has invalid header"},
        {AssemblePng({SmallIdat(), SmallHeader(), tail}),
         "PNG file does not start with a header chunk, instead found: IDAT"},
        {AssemblePng({PngChunk("IHDR", PngHeaderData(2, 2, 16, 2)), tail}),
         "PNG has unsupported bit depth: 16"},
        {AssemblePng({PngChunk("IHDR", PngHeaderData(2, 2, 4, 3)), tail}),
         "PNG has unsupported bit depth: 4"},
        {AssemblePng({PngChunk("IHDR", PngHeaderData(2, 2, 8, 3)), tail}),
         "PNG has unsupported colour type of:3"},
        {AssemblePng({PngChunk("IHDR", {0, 0, 0, 2, 0, 0, 0, 2, 8, 2, 1, 0, 0}), tail}),
         "PNG has unknown compression method: 1"},
        {AssemblePng({PngChunk("IHDR", {0, 0, 0, 2, 0, 0, 0, 2, 8, 2, 0, 1, 0}), tail}),
         "PNG has unknown filter method: 1"},
        {AssemblePng({PngChunk("IHDR", PngHeaderData(2, 2, 8, 6, 1)), tail}),
         "PNG has unsupported interlace method: 1"},
        {AssemblePng({SmallHeader(), PngChunk("IDAT", Deflate(badFilter)), tail}),
         "PNG has inavlid filter method: 7"},
        {AssemblePng({SmallHeader(), PngChunk("IDAT", surplus), tail}),
         "Failed to decompress png data: Buffer error"},
        {AssemblePng({SmallHeader(), PngChunk("IDAT", shortStream), tail}),
         "Failed to decompress png data: Data error"},
        {AssemblePng({SmallHeader(), PngChunk("IDAT", cutStream), tail}),
         "Failed to decompress png data: Data error"},
        {AssemblePng({SmallHeader(), PngChunk("IDAT", {1, 2, 3, 4}), tail}),
         "Failed to decompress png data: Data error"},
        {AssemblePng({SmallHeader(), tail}), "Failed to decompress png data: Data error"},
        {AssemblePng({PngChunk("IHDR", PngHeaderData(0xFFFFFFFF, 1, 8, 6)), tail}),
         "Failed to decompress png data: data too big!"},
        {AssemblePng({PngChunk("IHDR", PngHeaderData(0x10000, 0x10000, 8, 2)), tail}),
         "Failed to decompress png data: data too big!"},
        // 30000 × 30000 claimed by a few bytes of data is refused before the allocation.
        {AssemblePng({PngChunk("IHDR", PngHeaderData(30000, 30000, 8, 2)), SmallIdat(), tail}),
         "Failed to decompress png data: Data error"},
    };
    for (const auto& [file, message] : cases)
    {
        const LogCapture log;
        EXPECT_FALSE(Decode(file)) << message;
        EXPECT_EQ(log.Messages("AssetManager", LogLevel::Error), std::vector<std::string>{message});
    }
}

TEST(PngDecoder, TruncationAndHugeLengthsRaiseInsteadOfAllocating)
{
    const Bytes whole = AssemblePng({SmallHeader(), SmallIdat(), PngChunk("IEND", {})});
    Bytes hugeIdat = AssemblePng({SmallHeader()});
    const Bytes claim = {0xFF, 0xFF, 0xFF, 0xF4, 'I', 'D', 'A', 'T', 1, 2, 3};
    hugeIdat.insert(hugeIdat.end(), claim.begin(), claim.end());
    Bytes hugeSkip = AssemblePng({SmallHeader()});
    const Bytes skipped = {0xFF, 0xFF, 0xFF, 0xF4, 'z', 'z', 'z', 'z', 1, 2, 3};
    hugeSkip.insert(hugeSkip.end(), skipped.begin(), skipped.end());
    // The final CRC is skipped, not read: cutting into it goes unnoticed, cutting into the type doesn't.
    for (const Bytes& file : {Bytes(whole.begin(), whole.end() - 9), Bytes(whole.begin(), whole.begin() + 20),
                              hugeIdat, hugeSkip})
    {
        const LogCapture log;
        EXPECT_THROW(Decode(file), FileSystem::SerializerError);
    }
}

} // namespace
