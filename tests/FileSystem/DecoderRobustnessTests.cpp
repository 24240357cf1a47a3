// The fuzz targets' function over fixed inputs, so the gcc builds under the sanitizers see hostile files
// too: the PNG suite, every prefix of a few files and copies with one bit flipped per byte.

#include "FileSystem/BmpDecoder.h"
#include "FileSystem/PngDecoder.h"
#include "Support/FuzzBitmap.h"
#include "Support/ImageWriters.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace
{

namespace fs = std::filesystem;

const fs::path kSuitePng = fs::path(QUELLMAR_PNGSUITE_DIR) / "png";

Bytes ReadFile(const fs::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

class DecoderRobustness : public testing::Test
{
protected:
    void SetUp() override { SilenceStandardSinks(); }
    void TearDown() override { RestoreStandardSinks(); }

    // Returns how many of the damaged copies still decoded, so a test can see that the loop ran.
    static size_t DecodeDamaged(const Bytes& file, BitmapDecoder decoder)
    {
        size_t decoded = 0;
        for (size_t length = 0; length < file.size(); ++length)
        {
            decoded += DecodeFuzzInput(file.data(), length, decoder) ? 1 : 0;
        }
        for (size_t index = 0; index < file.size(); ++index)
        {
            Bytes flipped = file;
            flipped[index] ^= static_cast<uint8_t>(1u << (index % 8));
            decoded += DecodeFuzzInput(flipped.data(), flipped.size(), decoder) ? 1 : 0;
        }
        return decoded;
    }
};

TEST_F(DecoderRobustness, DamagedPngFilesEndInARefusalOrARaise)
{
    if (!fs::is_directory(kSuitePng))
    {
        GTEST_SKIP() << "PNG suite missing: " << kSuitePng;
    }
    size_t decoded = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(kSuitePng))
    {
        const Bytes file = ReadFile(entry.path());
        decoded += DecodeFuzzInput(file.data(), file.size(), FileSystem::DecodePng) ? 1 : 0;
    }
    EXPECT_EQ(decoded, 30u);
    for (const char* name : {"basn6a08.png", "f04n2c08.png"})
    {
        const Bytes file = ReadFile(kSuitePng / name);
        // Flipped CRC bits still decode; the full file is no prefix of itself.
        EXPECT_GT(DecodeDamaged(file, FileSystem::DecodePng), 0u) << name;
    }
    // A refused file, damaged, must still end in a refusal or a raise; the sanitizers watch the rest.
    const Bytes refused = ReadFile(kSuitePng / "basi0g16.png");
    EXPECT_EQ(DecodeDamaged(refused, FileSystem::DecodePng), 0u);
}

TEST_F(DecoderRobustness, DamagedBmpFilesEndInARefusalOrARaise)
{
    const Bytes rgb = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18};
    for (const Bytes& file :
         {MakeBmp(3, 2, rgb), MakeBmp(2, 3, rgb, {.topDown = true}), MakeBmp(1, 6, rgb, {.headerSize = 12}),
          MakeBmp(6, 1, rgb, {.headerSize = 124})})
    {
        EXPECT_GT(DecodeDamaged(file, FileSystem::DecodeBmp), 0u);
    }
}

} // namespace
