// The PNG test suite: every file the decoder accepts must equal its reference pixels, every other file is
// refused with its own message, which the suite's naming scheme tells: "xxxnCDD" or "xxxiCDD" for
// interlaced, C the colour type and DD the bit depth, e.g. "basn2c08".

#include "FileSystem/BitmapLoader.h"
#include "Graphics/Bitmap.h"
#include "Support/FuzzBitmap.h"
#include "Support/LogCapture.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>

namespace
{

namespace fs = std::filesystem;

const fs::path kSuite = QUELLMAR_PNGSUITE_DIR;

std::vector<uint8_t> ReadJsonBytes(const fs::path& path)
{
    std::ifstream stream(path);
    std::vector<uint8_t> bytes;
    char separator = 0;
    int value = 0;
    for (stream >> separator; stream >> value; stream >> separator)
    {
        bytes.push_back(static_cast<uint8_t>(value));
    }
    return bytes;
}

// Empty if the decoder accepts the file.
std::string ExpectedRefusal(const std::string& stem)
{
    static const std::map<std::string, std::string> corrupt = {
        {"xc1n0g08", "PNG has unsupported colour type of:1"},
        {"xc9n2c08", "PNG has unsupported colour type of:9"},
        {"xd0n2c08", "PNG has unsupported bit depth: 0"},
        {"xd3n2c08", "PNG has unsupported bit depth: 3"},
        {"xd9n2c08", "PNG has unsupported bit depth: 99"},
    };
    if (stem == "xcrn0g04" || stem == "xlfn0g04" || stem.starts_with("xs"))
    {
        return "Could not detect bitmap format for \"" + (kSuite / "png" / (stem + ".png")).string() + "\"";
    }
    if (corrupt.contains(stem))
    {
        return corrupt.at(stem);
    }
    const int colourType = stem[4] - '0';
    const int depth = std::stoi(stem.substr(6, 2));
    if (depth != 8)
    {
        return "PNG has unsupported bit depth: " + std::to_string(depth);
    }
    if (colourType != 2 && colourType != 6)
    {
        return "PNG has unsupported colour type of:" + std::to_string(colourType);
    }
    return stem[3] == 'i' ? "PNG has unsupported interlace method: 1" : "";
}

// tRNS names a transparent colour that the decoder ignores, so that file keeps alpha 255 everywhere.
std::vector<uint8_t> ExpectedPixels(const std::string& stem)
{
    std::vector<uint8_t> pixels = ReadJsonBytes(kSuite / "json" / (stem + ".json"));
    for (size_t index = 3; stem == "tbrn2c08" && index < pixels.size(); index += 4)
    {
        pixels[index] = 255;
    }
    return pixels;
}

TEST(PngSuite, AcceptedFilesEqualTheirReferenceAndOthersAreRefusedWithTheirOwnMessage)
{
    if (!fs::is_directory(kSuite / "png"))
    {
        GTEST_SKIP() << "PNG suite missing: " << kSuite;
    }
    std::vector<fs::path> files(fs::directory_iterator(kSuite / "png"), fs::directory_iterator{});
    std::sort(files.begin(), files.end());
    int accepted = 0;
    for (const fs::path& path : files)
    {
        const std::string stem = path.stem().string();
        SCOPED_TRACE(stem);
        const std::string refusal = ExpectedRefusal(stem);
        const LogCapture log;
        const std::shared_ptr<Graphics::Bitmap> bitmap = FileSystem::LoadBitmapFile(path.string());
        const bool oddChunk =
            stem == "exif2c08" || stem == "tbrn2c08" || stem.starts_with("cd") || stem == "cs5n2c08";
        EXPECT_EQ(log.Messages("AssetManager", LogLevel::Debug).size(), bitmap && oddChunk ? 1u : 0u);
        if (!refusal.empty())
        {
            EXPECT_FALSE(bitmap);
            EXPECT_EQ(log.Messages("AssetManager", LogLevel::Error), std::vector<std::string>{refusal});
            continue;
        }
        ++accepted;
        ASSERT_TRUE(bitmap);
        EXPECT_EQ(PixelsOf(*bitmap), ExpectedPixels(stem));
        EXPECT_EQ(log.Count(LogLevel::Error), 0u);
    }
    EXPECT_EQ(accepted, 30);
}

} // namespace
