#pragma once

// Colours and bitmap rectangles as the drawing code passes them around: plain floats.

namespace Graphics
{

// Red, green, blue and alpha, each from 0 to 1.
struct Colour
{
    float r = 1.0f;
    float g = 1.0f;
    float b = 1.0f;
    float a = 1.0f;
};

// A rectangle of a bitmap in texture units, in the order scripts give it: left, top, right, bottom.
struct UVRect
{
    float left = 0.0f;
    float top = 0.0f;
    float right = 1.0f;
    float bottom = 1.0f;
};

// The whole bitmap.
inline constexpr UVRect defaultUV{0.0f, 0.0f, 1.0f, 1.0f};

} // namespace Graphics
