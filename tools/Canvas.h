#pragma once

// A canvas for drawing the engine's art in code. Pixels are kept in floats with straight (not
// premultiplied) alpha until they are written, so layers blend without rounding at each step. Shapes are
// given in the canvas's own square, (-1, -1) at the top-left corner and (1, 1) at the bottom-right, so a
// disc of radius 1 at the centre touches all four edges whatever the size in pixels.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Art
{

struct Colour
{
    float red = 0;
    float green = 0;
    float blue = 0;
    float alpha = 1;
};

// amount 0 gives from, 1 gives to; every channel alpha included.
Colour Mix(const Colour& from, const Colour& to, float amount);
Colour Scaled(const Colour& colour, float brightness);
// 0 below edge0, 1 above edge1, a smooth S between; edge1 may be below edge0 to turn it around.
float SmoothStep(float edge0, float edge1, float value);

// Whether a point of the canvas's square lies inside a shape, and the colour of the shape there.
using Inside = std::function<bool(float x, float y)>;
using Paint = std::function<Colour(float x, float y)>;

class Canvas
{
public:
    // Fully transparent.
    Canvas(uint32_t pixelWidth, uint32_t pixelHeight);

    void Set(uint32_t x, uint32_t y, const Colour& colour);
    // Lays the colour over the pixel ("over" compositing), as if it covered the given share of it.
    void Blend(uint32_t x, uint32_t y, const Colour& colour, float coverage);

    // Blends paint over every pixel the shape touches. Coverage and colour come from a grid of samples in
    // each pixel, which is what smooths the edges of shapes and of the patterns painted on them.
    void Fill(const Inside& inside, const Paint& paint);
    void Disc(float centreX, float centreY, float radius, const Paint& paint);
    void Ring(float centreX, float centreY, float innerRadius, float outerRadius, const Paint& paint);

    // As ReplaceFileContent: false with errno telling why. Transparent pixels are written as black, so
    // files don't change with colour nobody sees.
    bool Write(const std::string& path) const;

private:
    uint32_t width;
    uint32_t height;
    std::vector<Colour> pixels;
};

} // namespace Art
