// Screenshots decode through the engine's own reader in the end-to-end tests; this is what a strict reader
// checks beyond that: CRCs, lengths, the header's fields and unfiltered rows.

#include "FileSystem/PngWriter.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>
#include <zlib.h>

namespace
{

const uint8_t* BytesOf(const std::string& text)
{
    return reinterpret_cast<const uint8_t*>(text.data());
}

uint32_t BigAt(const std::string& file, size_t at)
{
    return uint32_t{BytesOf(file)[at]} << 24 | uint32_t{BytesOf(file)[at + 1]} << 16 |
           uint32_t{BytesOf(file)[at + 2]} << 8 | BytesOf(file)[at + 3];
}

// Type and data of the chunks after the signature, each one's CRC checked; a wrong length ends the walk off
// the end of the file or puts a CRC where none is.
std::vector<std::string> ChunksOf(const std::string& file)
{
    EXPECT_EQ(file.substr(0, 8), std::string("\x89PNG\r\n\x1A\n"));
    std::vector<std::string> chunks;
    size_t at = 8;
    for (; at + 12 <= file.size(); at += 12 + size_t{BigAt(file, at)})
    {
        const std::string covered = file.substr(at + 4, size_t{BigAt(file, at)} + 4);
        EXPECT_EQ(at + 8 + covered.size() <= file.size() ? BigAt(file, at + 4 + covered.size()) : 0u,
                  crc32(0, BytesOf(covered), static_cast<uInt>(covered.size())));
        chunks.push_back(covered);
    }
    EXPECT_EQ(at, file.size());
    return chunks;
}

TEST(PngWriter, ChunksAreWellFormedAndTheImageDataIsTheRowsUnfiltered)
{
    // Odd sizes, so a row is never a multiple of anything convenient.
    for (const auto& [width, height] : {std::pair<uint32_t, uint32_t>{1, 1}, {3, 2}, {17, 5}})
    {
        // Colours differ from pixel to pixel and alpha runs through 0, 255 and values between.
        std::string pixels(size_t{width} * height * 4, '\0');
        for (size_t index = 0; index < pixels.size(); ++index)
        {
            const size_t pixel = index / 4;
            pixels[index] = static_cast<char>(index % 4 != 3   ? index * 37 + 11
                                              : pixel % 3 == 0 ? 0
                                              : pixel % 3 == 1 ? 255
                                                               : pixel * 29);
        }
        const std::vector<std::string> chunks =
            ChunksOf(FileSystem::EncodePng(width, height, BytesOf(pixels)));
        ASSERT_EQ(chunks.size(), 3u);
        EXPECT_EQ(chunks[0], std::string({'I', 'H', 'D', 'R', 0, 0, 0, static_cast<char>(width), 0, 0, 0,
                                          static_cast<char>(height), 8, 6, 0, 0, 0}));
        EXPECT_EQ(chunks[1].substr(0, 4), "IDAT");
        EXPECT_EQ(chunks[2], "IEND");

        const size_t rowBytes = size_t{width} * 4;
        std::string rows(height * (rowBytes + 1) + 1, '\x7F');
        uLongf rowsSize = rows.size();
        ASSERT_EQ(uncompress(reinterpret_cast<Bytef*>(rows.data()), &rowsSize, BytesOf(chunks[1]) + 4,
                             chunks[1].size() - 4),
                  Z_OK);
        ASSERT_EQ(rowsSize, rows.size() - 1);
        for (size_t y = 0; y < height; ++y)
        {
            EXPECT_EQ(rows[y * (rowBytes + 1)], 0) << "filter of row " << y;
            EXPECT_EQ(rows.substr(y * (rowBytes + 1) + 1, rowBytes), pixels.substr(y * rowBytes, rowBytes));
        }
    }
    // No pixels are read: sizes without pixels or too large for one chunk are refused first.
    for (const auto& [width, height] :
         {std::pair<uint32_t, uint32_t>{0, 1}, {1, 0}, {1u << 29, 1}, {1u << 16, 1u << 16}})
    {
        EXPECT_THROW(FileSystem::EncodePng(width, height, nullptr), std::invalid_argument)
            << width << " × " << height;
    }
}

} // namespace
