#include "Screenshot.h"

#include "FileSystem/BitmapLoader.h"

#include <algorithm>
#include <cmath>

Shot::Shot(const std::filesystem::path& file) : bitmap(FileSystem::LoadBitmapFile(file.string()))
{
}

Rgb Shot::Pixel(int x, int y) const
{
    const uint8_t* pixel =
        &bitmap->pixels[(static_cast<size_t>(y) * bitmap->width + static_cast<size_t>(x)) * 4];
    return {pixel[0], pixel[1], pixel[2]};
}

std::array<int, 2> Shot::ToPixel(float worldX, float worldY) const
{
    const float unit = static_cast<float>(bitmap->height) / 20.0f;
    return {static_cast<int>(std::floor(static_cast<float>(bitmap->width) / 2.0f + worldX * unit)),
            static_cast<int>(std::floor(static_cast<float>(bitmap->height) / 2.0f - worldY * unit))};
}

Rgb Shot::At(float worldX, float worldY) const
{
    const auto [x, y] = ToPixel(worldX, worldY);
    return Pixel(x, y);
}

bool Shot::NearHas(float worldX, float worldY, Rgb colour) const
{
    const auto [x, y] = ToPixel(worldX, worldY);
    return Count(x - 1, y - 1, x + 2, y + 2, [&](Rgb pixel) { return Close(pixel, colour, 2); }) > 0;
}

bool Shot::operator==(const Shot& other) const
{
    const size_t bytes = static_cast<size_t>(Width()) * Height() * 4;
    return Width() == other.Width() && Height() == other.Height() &&
           std::equal(bitmap->pixels.get(), bitmap->pixels.get() + bytes, other.bitmap->pixels.get());
}

bool Shot::Close(Rgb a, Rgb b, int tolerance)
{
    return std::abs(a[0] - b[0]) <= tolerance && std::abs(a[1] - b[1]) <= tolerance &&
           std::abs(a[2] - b[2]) <= tolerance;
}

::testing::AssertionResult Looks(const Shot& shot, float x, float y, Rgb expected, int tolerance)
{
    const Rgb actual = shot.At(x, y);
    if (Shot::Close(actual, expected, tolerance))
    {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "at (" << x << ", " << y << "): " << actual[0] << "," << actual[1] << "," << actual[2]
           << " instead of " << expected[0] << "," << expected[1] << "," << expected[2];
}

RunResult RunWindowed(const RunDirectory& directory, RunOptions options,
                      const std::vector<std::string>& shots)
{
    options.directory = directory.path;
    options.arguments.insert(options.arguments.begin(),
                             {"width", "800", "height", "600", "fullscreen", "n", "vsync", "n"});
    const RunResult result = RunEngine(options);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.errors.find("OpenGL error"), std::string::npos) << result.errors;
    EXPECT_EQ(result.output.find("Bitmap texture handle leaked!"), std::string::npos);
    std::vector<std::string> saved;
    for (const std::string& shot : shots)
    {
        saved.push_back("Saved screenshot \"" + shot + "\"");
    }
    saved.push_back("Graphics is cleaning up");
    EXPECT_EQ(LogMessages(result.output, "Graphics", "Info"), saved);
    return result;
}
