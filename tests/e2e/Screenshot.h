#pragma once

// Screenshots that scripts take of their own frames, decoded and read back in world units, and the
// windowed run that takes them.

#include "Graphics/Bitmap.h"
#include "Harness.h"

#include <array>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>

using Rgb = std::array<int, 3>;

// A decoded screenshot, read in world units of the default camera (20 units from top to bottom).
class Shot
{
public:
    explicit Shot(const std::filesystem::path& file);

    bool Loaded() const { return bitmap != nullptr; }
    uint32_t Width() const { return bitmap->width; }
    uint32_t Height() const { return bitmap->height; }
    const Graphics::Bitmap& Pixels() const { return *bitmap; }

    Rgb Pixel(int x, int y) const;
    Rgb At(float worldX, float worldY) const;
    // Whether any pixel within a pixel of the world point has the colour, for lines one pixel wide.
    bool NearHas(float worldX, float worldY, Rgb colour) const;
    static bool Close(Rgb a, Rgb b, int tolerance);

private:
    std::shared_ptr<Graphics::Bitmap> bitmap;
};

::testing::AssertionResult Looks(const Shot& shot, float x, float y, Rgb expected, int tolerance = 0);

bool SamePixels(const Shot& a, const Shot& b);

// A windowed run of the test's Data folder in the directory, which keeps the screenshots.
RunOptions Windowed(const RunDirectory& directory, const char* dataFolder, const char* width,
                    const char* height);
