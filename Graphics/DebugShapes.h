#pragma once

// The shapes of the debug draw queues: filled or outlined rectangles and circles, and lines, in world
// coordinates. Anyone queues them at any time; the next per-Space frame draws and drains them.

#include "Components/Vec2.h"
#include "Graphics/Colour.h"

#include <cstdint>

namespace Graphics
{

struct DebugSquare
{
    Vec2 position; // centre
    Vec2 size;     // full width and height
    Colour colour;
    float rotation; // radians, about the centre
    bool outline;
};

struct DebugCircle
{
    Vec2 position; // centre
    Vec2 size;     // radius along x and along y
    Colour colour;
    float rotation;
    bool outline;
    int32_t segments;
};

struct DebugLine
{
    Vec2 start;
    Vec2 end;
    Colour colour;
};

} // namespace Graphics
