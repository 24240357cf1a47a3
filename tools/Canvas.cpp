#include "Canvas.h"

#include "FileSystem/PngWriter.h"

#include <algorithm>
#include <cmath>

namespace Art
{
namespace
{

// Samples per pixel along each axis; 8 × 8 gives 65 levels of coverage, more than the eye tells apart.
constexpr uint32_t kSamples = 8;

uint8_t ToByte(float value)
{
    return static_cast<uint8_t>(std::lround(std::clamp(value, 0.0f, 1.0f) * 255.0f));
}

} // namespace

Colour Mix(const Colour& from, const Colour& to, float amount)
{
    const auto mix = [amount](float a, float b) { return a + (b - a) * amount; };
    return {mix(from.red, to.red), mix(from.green, to.green), mix(from.blue, to.blue),
            mix(from.alpha, to.alpha)};
}

Colour Scaled(const Colour& colour, float brightness)
{
    return {colour.red * brightness, colour.green * brightness, colour.blue * brightness, colour.alpha};
}

float SmoothStep(float edge0, float edge1, float value)
{
    const float t = std::clamp((value - edge0) / (edge1 - edge0), 0.0f, 1.0f);
    return t * t * (3 - 2 * t);
}

Canvas::Canvas(uint32_t pixelWidth, uint32_t pixelHeight)
    : width(pixelWidth), height(pixelHeight), pixels(size_t{pixelWidth} * pixelHeight, Colour{0, 0, 0, 0})
{
}

void Canvas::Set(uint32_t x, uint32_t y, const Colour& colour)
{
    pixels.at(size_t{y} * width + x) = colour;
}

void Canvas::Blend(uint32_t x, uint32_t y, const Colour& colour, float coverage)
{
    Colour& below = pixels.at(size_t{y} * width + x);
    const float over = colour.alpha * coverage;
    const float alpha = over + below.alpha * (1 - over);
    if (alpha <= 0)
    {
        return;
    }
    const auto blend = [&](float top, float bottom)
    { return (top * over + bottom * below.alpha * (1 - over)) / alpha; };
    below = {blend(colour.red, below.red), blend(colour.green, below.green), blend(colour.blue, below.blue),
             alpha};
}

void Canvas::Fill(const Inside& inside, const Paint& paint)
{
    for (uint32_t y = 0; y < height; ++y)
    {
        for (uint32_t x = 0; x < width; ++x)
        {
            // Colours are summed weighted by their alpha, so a transparent sample adds no colour.
            Colour sum{0, 0, 0, 0};
            uint32_t covered = 0;
            for (uint32_t sample = 0; sample < kSamples * kSamples; ++sample)
            {
                const float pointX = (x + (sample % kSamples + 0.5f) / kSamples) * 2 / width - 1;
                const float pointY = (y + (sample / kSamples + 0.5f) / kSamples) * 2 / height - 1;
                if (!inside(pointX, pointY))
                {
                    continue;
                }
                const Colour colour = paint(pointX, pointY);
                sum = {sum.red + colour.red * colour.alpha, sum.green + colour.green * colour.alpha,
                       sum.blue + colour.blue * colour.alpha, sum.alpha + colour.alpha};
                ++covered;
            }
            if (covered == 0 || sum.alpha <= 0)
            {
                continue;
            }
            const Colour average{sum.red / sum.alpha, sum.green / sum.alpha, sum.blue / sum.alpha,
                                 sum.alpha / covered};
            Blend(x, y, average, static_cast<float>(covered) / (kSamples * kSamples));
        }
    }
}

void Canvas::Disc(float centreX, float centreY, float radius, const Paint& paint)
{
    Fill([=](float x, float y) { return std::hypot(x - centreX, y - centreY) <= radius; }, paint);
}

void Canvas::Ring(float centreX, float centreY, float innerRadius, float outerRadius, const Paint& paint)
{
    Fill(
        [=](float x, float y)
        {
            const float distance = std::hypot(x - centreX, y - centreY);
            return distance >= innerRadius && distance <= outerRadius;
        },
        paint);
}

bool Canvas::Write(const std::string& path) const
{
    std::vector<uint8_t> rgba;
    rgba.reserve(pixels.size() * 4);
    for (const Colour& pixel : pixels)
    {
        const uint8_t alpha = ToByte(pixel.alpha);
        if (alpha == 0)
        {
            rgba.insert(rgba.end(), {0, 0, 0, 0});
            continue;
        }
        rgba.insert(rgba.end(), {ToByte(pixel.red), ToByte(pixel.green), ToByte(pixel.blue), alpha});
    }
    return FileSystem::WritePngFile(path, width, height, rgba.data());
}

} // namespace Art
