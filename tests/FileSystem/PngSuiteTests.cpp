// The PNG test suite: every file the decoder accepts must equal its reference pixels, every other file is
// refused with its own message, which the suite's naming scheme tells: a "c" then the colour type, then the
// bit depth, and "i" for interlaced.

#include "FileSystem/BitmapLoader.h"
#include "Graphics/Bitmap.h"
#include "Support/LogCapture.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace
{

namespace fs = std::filesystem;

const fs::path kSuite = QUELLMAR_PNGSUITE_DIR;

std::vector<uint8_t> ReadJsonBytes(const fs::path& path)
{
    std::ifstream stream(path);
    std::vector<uint8_t> bytes;
    char separator = 0;
    stream >> separator;
    int value = 0;
    while (stream >> value)
    {
        bytes.push_back(static_cast<uint8_t>(value));
        stream >> separator;
    }
    return bytes;
}

struct SuiteName
{
    bool interlaced;
    int colourType;
    int depth;
};

// Names read "xxxiCDD" or "xxxnCDD" and then a colour type digit, e.g. "basn2c08".
SuiteName ParseName(const std::string& stem)
{
    return {stem[3] == 'i', stem[4] - '0', std::stoi(stem.substr(6, 2))};
}

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
    const SuiteName name = ParseName(stem);
    if (name.depth != 8)
    {
        return "PNG has unsupported bit depth: " + std::to_string(name.depth);
    }
    if (name.colourType != 2 && name.colourType != 6)
    {
        return "PNG has unsupported colour type of:" + std::to_string(name.colourType);
    }
    return "PNG has unsupported interlace method: 1";
}

bool Accepted(const std::string& stem)
{
    const SuiteName name = ParseName(stem);
    return !stem.starts_with("x") && !name.interlaced && name.depth == 8 &&
           (name.colourType == 2 || name.colourType == 6);
}

// tRNS names a transparent colour that the decoder ignores, so that file keeps alpha 255 everywhere.
std::vector<uint8_t> ExpectedPixels(const std::string& stem)
{
    std::vector<uint8_t> pixels = ReadJsonBytes(kSuite / "json" / (stem + ".json"));
    if (stem == "tbrn2c08")
    {
        for (size_t index = 3; index < pixels.size(); index += 4)
        {
            pixels[index] = 255;
        }
    }
    return pixels;
}

std::vector<fs::path> SuiteFiles()
{
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(kSuite / "png"))
    {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

class PngSuite : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!fs::is_directory(kSuite / "png"))
        {
            GTEST_SKIP() << "PNG suite missing: " << kSuite;
        }
    }
};

TEST_F(PngSuite, AcceptedFilesEqualTheirReferencePixels)
{
    int accepted = 0;
    for (const fs::path& path : SuiteFiles())
    {
        const std::string stem = path.stem().string();
        if (!Accepted(stem))
        {
            continue;
        }
        ++accepted;
        const LogCapture log;
        const std::shared_ptr<Graphics::Bitmap> bitmap = FileSystem::LoadBitmapFile(path.string());
        ASSERT_TRUE(bitmap) << stem;
        const std::vector<uint8_t> pixels(bitmap->pixels.get(),
                                          bitmap->pixels.get() + size_t{bitmap->width} * bitmap->height * 4);
        EXPECT_EQ(pixels, ExpectedPixels(stem)) << stem;
        const bool hasOddChunk =
            stem == "exif2c08" || stem == "tbrn2c08" || stem.starts_with("cd") || stem == "cs5n2c08";
        EXPECT_EQ(log.Messages("AssetManager", LogLevel::Debug).size(), hasOddChunk ? 1u : 0u) << stem;
        EXPECT_EQ(log.Count(LogLevel::Error), 0u) << stem;
    }
    EXPECT_EQ(accepted, 30);
}

TEST_F(PngSuite, EveryOtherFileIsRefusedWithItsOwnMessage)
{
    for (const fs::path& path : SuiteFiles())
    {
        const std::string stem = path.stem().string();
        if (Accepted(stem))
        {
            continue;
        }
        const LogCapture log;
        EXPECT_FALSE(FileSystem::LoadBitmapFile(path.string())) << stem;
        EXPECT_EQ(log.Messages("AssetManager", LogLevel::Error),
                  std::vector<std::string>{ExpectedRefusal(stem)})
            << stem;
        EXPECT_TRUE(log.Messages("AssetManager", LogLevel::Debug).empty()) << stem;
    }
}

} // namespace
