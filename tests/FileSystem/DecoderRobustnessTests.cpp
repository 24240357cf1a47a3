// The fuzz targets' function over fixed inputs, so the gcc builds under the sanitizers see hostile files too:
// every prefix of a few files and copies with one bit flipped per byte.

#include "FileSystem/BmpDecoder.h"
#include "FileSystem/PngDecoder.h"
#include "Support/FuzzBitmap.h"
#include "Support/ImageWriters.h"
#include "Support/TempFolder.h"

#include <gtest/gtest.h>

namespace
{

// How many of the damaged copies still decoded, so that the test sees the loop ran.
size_t DecodeDamaged(const Bytes& file, BitmapDecoder decoder)
{
    size_t decoded = 0;
    for (size_t index = 0; index < file.size(); ++index)
    {
        Bytes flipped = file;
        flipped[index] ^= static_cast<uint8_t>(1u << (index % 8));
        decoded += DecodeFuzzInput(file.data(), index, decoder) ? 1 : 0;
        decoded += DecodeFuzzInput(flipped.data(), flipped.size(), decoder) ? 1 : 0;
    }
    return decoded;
}

TEST(DecoderRobustness, DamagedFilesEndInARefusalOrARaise)
{
    const std::string suite = std::string(QUELLMAR_PNGSUITE_DIR) + "/png/";
    if (!std::filesystem::is_directory(suite))
    {
        GTEST_SKIP() << "PNG suite missing: " << suite;
    }
    const auto read = [&](const char* name)
    {
        const std::string text = ReadFile(suite + name);
        return Bytes(text.begin(), text.end());
    };
    const Bytes rgb = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18};
    const struct
    {
        Bytes file;
        BitmapDecoder decoder;
        bool someDecode;
    } rows[] = {
        // Flipped CRC bits still decode; a refused file, damaged, must stay refused or raise.
        {read("basn6a08.png"), FileSystem::DecodePng, true},
        {read("f04n2c08.png"), FileSystem::DecodePng, true},
        {read("basi0g16.png"), FileSystem::DecodePng, false},
        {MakeBmp(3, 2, rgb), FileSystem::DecodeBmp, true},
        {MakeBmp(2, 3, rgb, {.topDown = true}), FileSystem::DecodeBmp, true},
        {MakeBmp(1, 6, rgb, {.headerSize = 12}), FileSystem::DecodeBmp, true},
        {MakeBmp(6, 1, rgb, {.headerSize = 124}), FileSystem::DecodeBmp, true},
    };
    SilenceStandardSinks();
    for (size_t row = 0; row < std::size(rows); ++row)
    {
        EXPECT_EQ(DecodeDamaged(rows[row].file, rows[row].decoder) > 0, rows[row].someDecode) << row;
    }
    RestoreStandardSinks();
}

} // namespace
