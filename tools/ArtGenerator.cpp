// Draws the sample game's font and sprites and writes them under the Data folder (the first argument, or
// Data in the working directory). Everything is computed, nothing random, so a run gives the same files
// byte for byte; scripts/make-art builds and runs it.
//
// Sprites are drawn as a unit quad scaled to their object's size, so each shape fills its square edge to
// edge; the sphere-like ones are lit from the upper left, the same light for all.

#include "Canvas.h"
#include "FontGlyphs.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <numbers>
#include <string>
#include <vector>

namespace Art
{
namespace
{

constexpr uint32_t kSpriteSize = 64;
constexpr uint32_t kStarSize = 32;
constexpr uint32_t kCellSize = 16;
constexpr uint32_t kCellsPerRow = 16;
// Each dot of a glyph is 2 × 2 pixels. The glyph starts one pixel in from the cell's left and top, so its
// ink stays within x 1..10 and y 1..14: text advances by three quarters of a cell (12 pixels), which leaves
// two clear columns between neighbours, and a row of text keeps a pixel clear above and below.
constexpr uint32_t kDotSize = 2;
constexpr uint32_t kGlyphOffset = 1;

const Colour kWhite{1, 1, 1, 1};

struct Circle
{
    float x;
    float y;
    float radius;
};

// The direction towards the light, of length 1: up and to the left, and towards the viewer.
constexpr float kLightX = -0.45f;
constexpr float kLightY = -0.55f;
constexpr float kLightZ = 0.7036f;

// The cosine between the light and the surface of the unit sphere seen at (x, y); 0 on the dark side.
float SphereLight(float x, float y)
{
    const float z = std::sqrt(std::max(0.0f, 1 - x * x - y * y));
    return std::max(0.0f, x * kLightX + y * kLightY + z * kLightZ);
}

bool InsideAny(const std::vector<Circle>& circles, float x, float y)
{
    return std::any_of(circles.begin(), circles.end(),
                       [&](const Circle& circle)
                       { return std::hypot(x - circle.x, y - circle.y) <= circle.radius; });
}

Canvas DrawFont()
{
    Canvas canvas(kCellSize * kCellsPerRow, kCellSize * kCellsPerRow);
    for (int code = kFirstGlyph; code <= kLastGlyph; ++code)
    {
        const Glyph& glyph = kGlyphs[static_cast<size_t>(code - kFirstGlyph)];
        // Byte b is in row b / 16 and column b % 16, counted from the top-left.
        const uint32_t cellX = static_cast<uint32_t>(code) % kCellsPerRow * kCellSize + kGlyphOffset;
        const uint32_t cellY = static_cast<uint32_t>(code) / kCellsPerRow * kCellSize + kGlyphOffset;
        for (uint32_t dot = 0; dot < kGlyphWidth * kGlyphHeight; ++dot)
        {
            const uint32_t column = dot % kGlyphWidth;
            const uint32_t row = dot / kGlyphWidth;
            if ((glyph[row] >> (kGlyphWidth - 1 - column) & 1) == 0)
            {
                continue;
            }
            for (uint32_t pixel = 0; pixel < kDotSize * kDotSize; ++pixel)
            {
                canvas.Set(cellX + column * kDotSize + pixel % kDotSize,
                           cellY + row * kDotSize + pixel / kDotSize, kWhite);
            }
        }
    }
    return canvas;
}

// Pale yellow at the centre, deepening to orange at the limb, where we look through the cooler layers.
Canvas DrawSun()
{
    const Colour core{1.0f, 0.92f, 0.42f};
    const Colour limb{0.96f, 0.40f, 0.04f};
    Canvas canvas(kSpriteSize, kSpriteSize);
    canvas.Disc(0, 0, 1,
                [&](float x, float y)
                {
                    const float facing = std::sqrt(std::max(0.0f, 1 - x * x - y * y));
                    return Scaled(Mix(limb, core, std::pow(facing, 0.6f)), 0.8f + 0.2f * facing);
                });
    return canvas;
}

// Blue-green: a teal ocean with green land, lit from the upper left, and a thin bright atmosphere at the
// edge.
Canvas DrawPlanet()
{
    const Colour ocean{0.10f, 0.42f, 0.70f};
    const Colour land{0.24f, 0.64f, 0.32f};
    const Colour air{0.60f, 0.90f, 1.00f};
    const std::vector<Circle> continents = {{-0.40f, -0.25f, 0.30f}, {-0.12f, -0.50f, 0.22f},
                                            {0.35f, 0.30f, 0.30f},   {0.55f, 0.02f, 0.20f},
                                            {-0.30f, 0.52f, 0.18f},  {0.05f, 0.62f, 0.15f}};
    Canvas canvas(kSpriteSize, kSpriteSize);
    canvas.Disc(0, 0, 1,
                [&](float x, float y)
                {
                    const Colour surface = InsideAny(continents, x, y) ? land : ocean;
                    const Colour lit = Scaled(surface, 0.2f + 0.9f * SphereLight(x, y));
                    return Mix(lit, air, 0.5f * SmoothStep(0.78f, 1.0f, std::hypot(x, y)));
                });
    return canvas;
}

// Grey with craters. A crater is a bowl: its wall nearer the light is in shade and the far wall lit,
// opposite to the sphere around it, and its raised rim catches the light.
Canvas DrawMoon()
{
    const std::vector<Circle> craters = {{-0.35f, -0.30f, 0.22f}, {0.32f, -0.45f, 0.14f},
                                         {0.38f, 0.25f, 0.26f},   {-0.25f, 0.48f, 0.16f},
                                         {0.02f, 0.02f, 0.10f},   {-0.65f, 0.12f, 0.10f}};
    Canvas canvas(kSpriteSize, kSpriteSize);
    canvas.Disc(0, 0, 1,
                [&](float x, float y)
                {
                    float albedo = 0.66f;
                    for (const Circle& crater : craters)
                    {
                        const float u = (x - crater.x) / crater.radius;
                        const float v = (y - crater.y) / crater.radius;
                        const float distance = std::hypot(u, v);
                        if (distance <= 1)
                        {
                            albedo = 0.50f * (1 - 0.45f * (u * kLightX + v * kLightY));
                        }
                        else if (distance <= 1.2f)
                        {
                            albedo = std::max(albedo, 0.78f);
                        }
                    }
                    const float light = albedo * (0.12f + 0.95f * SphereLight(x, y));
                    return Colour{light, light, light * 1.04f};
                });
    return canvas;
}

// A comet's head without its tail: a white core in an icy cyan coma that thins out towards the edge but
// stays visible there, so the object's whole size reads.
Canvas DrawComet()
{
    const Colour ice{0.45f, 0.88f, 1.0f};
    Canvas canvas(kSpriteSize, kSpriteSize);
    canvas.Disc(0, 0, 1,
                [&](float x, float y)
                {
                    const float distance = std::hypot(x, y);
                    Colour colour = Mix(kWhite, ice, SmoothStep(0.15f, 0.75f, distance));
                    colour.alpha = 1 - 0.7f * SmoothStep(0.25f, 1.0f, distance);
                    return colour;
                });
    return canvas;
}

// The collector: a magenta ring that catches comets, joined by three struts to a glassy cockpit. The ring
// is shaded as a tube, lit from the same side as everything else.
Canvas DrawCollector()
{
    const Colour magenta{0.92f, 0.18f, 0.70f};
    const Colour strut{0.96f, 0.78f, 0.92f};
    const Colour glass{0.70f, 0.30f, 0.85f};
    constexpr float kInner = 0.64f;
    constexpr float kStrutHalfWidth = 0.05f;
    Canvas canvas(kSpriteSize, kSpriteSize);
    canvas.Ring(0, 0, kInner, 1,
                [&](float x, float y)
                {
                    const float distance = std::max(std::hypot(x, y), 1e-6f);
                    const float across = (distance - (1 + kInner) / 2) / ((1 - kInner) / 2);
                    const float bulge = std::sqrt(std::max(0.0f, 1 - across * across));
                    const float light =
                        std::max(0.0f, across * (x * kLightX + y * kLightY) / distance + bulge * kLightZ);
                    return Mix(Scaled(magenta, 0.35f + 0.75f * light), kWhite, 0.6f * std::pow(light, 12.0f));
                });
    for (const float angle : {-90.0f, 30.0f, 150.0f})
    {
        const float directionX = std::cos(angle * std::numbers::pi_v<float> / 180);
        const float directionY = std::sin(angle * std::numbers::pi_v<float> / 180);
        canvas.Fill(
            [=](float x, float y)
            {
                const float along = x * directionX + y * directionY;
                const float aside = x * directionY - y * directionX;
                return along >= 0.2f && along <= kInner + 0.02f && std::abs(aside) <= kStrutHalfWidth;
            },
            [&](float, float) { return strut; });
    }
    constexpr float kCockpit = 0.30f;
    canvas.Disc(0, 0, kCockpit,
                [&](float x, float y)
                {
                    const float light = SphereLight(x / kCockpit, y / kCockpit);
                    return Mix(Scaled(glass, 0.45f + 0.6f * light), kWhite, std::pow(light, 6.0f));
                });
    return canvas;
}

// A soft white dot, faintly blue at its fringe, for scattering over backgrounds at any size.
Canvas DrawStar()
{
    const Colour fringe{0.75f, 0.85f, 1.0f};
    Canvas canvas(kStarSize, kStarSize);
    canvas.Disc(0, 0, 1,
                [&](float x, float y)
                {
                    const float distance = std::hypot(x, y);
                    Colour colour = Mix(kWhite, fringe, distance);
                    colour.alpha = std::max(std::pow(1 - distance, 1.6f), SmoothStep(0.4f, 0.0f, distance));
                    return colour;
                });
    return canvas;
}

// A particle: plain white, so that a particle's own colour tints it whole, with an alpha that falls off
// smoothly from the middle to nothing at the edge, so particles blend into a haze rather than show as discs.
Canvas DrawDot()
{
    Canvas canvas(kStarSize, kStarSize);
    canvas.Disc(0, 0, 1,
                [](float x, float y)
                {
                    const float falloff = 1 - std::min(1.0f, x * x + y * y);
                    Colour colour = kWhite;
                    colour.alpha = falloff * falloff;
                    return colour;
                });
    return canvas;
}

struct Image
{
    const char* path;
    Canvas (*draw)();
};

const Image kImages[] = {{"Fonts/font.png", DrawFont},       {"Sprites/Sun.png", DrawSun},
                         {"Sprites/Planet.png", DrawPlanet}, {"Sprites/Moon.png", DrawMoon},
                         {"Sprites/Comet.png", DrawComet},   {"Sprites/Collector.png", DrawCollector},
                         {"Sprites/Star.png", DrawStar},     {"Sprites/Dot.png", DrawDot}};

} // namespace
} // namespace Art

int main(int argc, char** argv)
{
    const std::filesystem::path data = argc > 1 ? argv[1] : "Data";
    for (const Art::Image& image : Art::kImages)
    {
        const std::filesystem::path path = data / image.path;
        std::error_code error;
        std::filesystem::create_directories(path.parent_path(), error);
        if (error)
        {
            std::fprintf(stderr, "quellmar_art: can't make %s: %s\n", path.parent_path().c_str(),
                         error.message().c_str());
            return 1;
        }
        if (!image.draw().Write(path.string()))
        {
            std::fprintf(stderr, "quellmar_art: can't write %s: %s\n", path.c_str(), std::strerror(errno));
            return 1;
        }
        std::printf("%s\n", path.c_str());
    }
    return 0;
}
