#pragma once

// Screenshots that scripts take of their own frames, read back in world units of the default camera (20
// units from top to bottom), and the windowed run that takes them.

#include "Graphics/Bitmap.h"
#include "Harness.h"

#include <array>
#include <gtest/gtest.h>
#include <memory>

using Rgb = std::array<int, 3>;

class Shot
{
public:
    explicit Shot(const std::filesystem::path& file);

    bool Loaded() const { return bitmap != nullptr; }
    uint32_t Width() const { return bitmap->width; }
    uint32_t Height() const { return bitmap->height; }

    Rgb Pixel(int x, int y) const;
    Rgb At(float worldX, float worldY) const;
    // Whether any pixel within a pixel of the world point has the colour, for lines one pixel wide.
    bool NearHas(float worldX, float worldY, Rgb colour) const;
    // Pixels of the rectangle for which the test holds.
    template <typename Test>
    int Count(int left, int top, int right, int bottom, Test test) const
    {
        int count = 0;
        for (int y = top; y < bottom; ++y)
        {
            for (int x = left; x < right; ++x)
            {
                count += test(Pixel(x, y)) ? 1 : 0;
            }
        }
        return count;
    }
    bool operator==(const Shot& other) const;
    static bool Close(Rgb a, Rgb b, int tolerance);

private:
    std::array<int, 2> ToPixel(float worldX, float worldY) const;

    std::shared_ptr<Graphics::Bitmap> bitmap;
};

::testing::AssertionResult Looks(const Shot& shot, float x, float y, Rgb expected, int tolerance = 0);

// A windowed run of 800 × 600 in the directory, which keeps the screenshots; the options' own arguments
// come after. It must end cleanly, without an OpenGL error or a leaked texture, having saved the shots.
RunResult RunWindowed(const RunDirectory& directory, RunOptions options,
                      const std::vector<std::string>& shots);
