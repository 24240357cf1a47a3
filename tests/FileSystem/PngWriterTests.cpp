#include "FileSystem/PngWriter.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>
#include <zlib.h>

namespace
{

struct Size
{
    uint32_t width;
    uint32_t height;
};

// Odd sizes, so a row of pixels is never a multiple of anything convenient.
constexpr Size kSizes[] = {{1, 1}, {3, 2}, {17, 5}};

// Colours differ from pixel to pixel and alpha runs through 0, 255 and values between.
std::string VariedPixels(Size size)
{
    std::string rgba(size_t{size.width} * size.height * 4, '\0');
    for (size_t index = 0; index < rgba.size(); ++index)
    {
        const size_t pixel = index / 4;
        const bool alpha = index % 4 == 3;
        rgba[index] = static_cast<char>(alpha ? (pixel % 3 == 0   ? 0
                                                 : pixel % 3 == 1 ? 255
                                                                  : pixel * 29)
                                              : index * 37 + 11);
    }
    return rgba;
}

const uint8_t* BytesOf(const std::string& text)
{
    return reinterpret_cast<const uint8_t*>(text.data());
}

uint32_t BigAt(const std::string& file, size_t at)
{
    uint32_t value = 0;
    for (size_t index = at; index < at + 4; ++index)
    {
        value = value << 8 | static_cast<uint8_t>(file.at(index));
    }
    return value;
}

struct Chunk
{
    std::string type;
    std::string data;
};

// The chunks after the signature, each one's CRC checked on the way; a wrong length ends the walk off the
// end of the file or puts a CRC where none is.
std::vector<Chunk> ChunksOf(const std::string& file)
{
    EXPECT_EQ(file.substr(0, 8), std::string("\x89PNG\r\n\x1A\n"));
    std::vector<Chunk> chunks;
    size_t at = 8;
    while (at + 12 <= file.size())
    {
        const uint32_t length = BigAt(file, at);
        const std::string covered = file.substr(at + 4, size_t{length} + 4);
        const uLong crc = crc32(0, BytesOf(covered), static_cast<uInt>(covered.size()));
        EXPECT_EQ(at + 12 + length <= file.size() ? BigAt(file, at + 8 + length) : 0u, crc);
        chunks.push_back({covered.substr(0, 4), covered.substr(4)});
        at += 12 + size_t{length};
    }
    EXPECT_EQ(at, file.size());
    return chunks;
}

// Screenshots decode through the engine's own reader in the end-to-end tests; this is what a strict reader
// checks beyond that.

TEST(PngWriter, ChunksAreWellFormedAndTheImageDataIsTheRowsUnfiltered)
{
    for (const Size size : kSizes)
    {
        const std::string pixels = VariedPixels(size);
        const std::vector<Chunk> chunks =
            ChunksOf(FileSystem::EncodePng(size.width, size.height, BytesOf(pixels)));
        ASSERT_EQ(chunks.size(), 3u);
        EXPECT_EQ(chunks[0].type, "IHDR");
        EXPECT_EQ(chunks[0].data, std::string({0, 0, 0, static_cast<char>(size.width), 0, 0, 0,
                                               static_cast<char>(size.height), 8, 6, 0, 0, 0}));
        EXPECT_EQ(chunks[1].type, "IDAT");
        EXPECT_EQ(chunks[2].type, "IEND");
        EXPECT_EQ(chunks[2].data, "");

        const size_t rowBytes = size_t{size.width} * 4;
        std::string rows(size.height * (rowBytes + 1) + 1, '\x7F');
        uLongf rowsSize = rows.size();
        ASSERT_EQ(uncompress(reinterpret_cast<Bytef*>(rows.data()), &rowsSize, BytesOf(chunks[1].data),
                             chunks[1].data.size()),
                  Z_OK);
        ASSERT_EQ(rowsSize, rows.size() - 1);
        for (size_t y = 0; y < size.height; ++y)
        {
            EXPECT_EQ(rows[y * (rowBytes + 1)], 0) << "filter of row " << y;
            EXPECT_EQ(rows.substr(y * (rowBytes + 1) + 1, rowBytes), pixels.substr(y * rowBytes, rowBytes));
        }
    }
}

TEST(PngWriter, SizesWithoutPixelsOrTooLargeForOneChunkAreRefused)
{
    // No pixels are read: the sizes are refused first.
    for (const Size size : {Size{0, 1}, Size{1, 0}, Size{1u << 29, 1}, Size{1u << 16, 1u << 16}})
    {
        EXPECT_THROW(FileSystem::EncodePng(size.width, size.height, nullptr), std::invalid_argument)
            << size.width << " × " << size.height;
    }
}

} // namespace
