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

Rgb Shot::At(float worldX, float worldY) const
{
    const float unit = static_cast<float>(bitmap->height) / 20.0f;
    return Pixel(static_cast<int>(std::floor(static_cast<float>(bitmap->width) / 2.0f + worldX * unit)),
                 static_cast<int>(std::floor(static_cast<float>(bitmap->height) / 2.0f - worldY * unit)));
}

bool Shot::NearHas(float worldX, float worldY, Rgb colour) const
{
    const float unit = static_cast<float>(bitmap->height) / 20.0f;
    const int x = static_cast<int>(static_cast<float>(bitmap->width) / 2.0f + worldX * unit);
    const int y = static_cast<int>(static_cast<float>(bitmap->height) / 2.0f - worldY * unit);
    for (int dy = -1; dy <= 1; ++dy)
    {
        for (int dx = -1; dx <= 1; ++dx)
        {
            if (Close(Pixel(x + dx, y + dy), colour, 2))
            {
                return true;
            }
        }
    }
    return false;
}

bool Shot::Close(Rgb a, Rgb b, int tolerance)
{
    for (size_t channel = 0; channel < 3; ++channel)
    {
        if (std::abs(a[channel] - b[channel]) > tolerance)
        {
            return false;
        }
    }
    return true;
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

bool SamePixels(const Shot& a, const Shot& b)
{
    const size_t bytes = static_cast<size_t>(a.Width()) * a.Height() * 4;
    return a.Width() == b.Width() && a.Height() == b.Height() &&
           std::equal(a.Pixels().pixels.get(), a.Pixels().pixels.get() + bytes, b.Pixels().pixels.get());
}

RunOptions Windowed(const RunDirectory& directory, const char* dataFolder, const char* width,
                    const char* height)
{
    RunOptions options;
    options.dataFolder = dataFolder;
    options.directory = directory.path;
    options.arguments = {"width", width, "height", height, "fullscreen", "n", "vsync", "n"};
    return options;
}
