#pragma once

// The few vector operations of the physics, in single precision. Each is written as one fixed sequence of
// float operations (no fused multiply-add, see the build flags), so that a step gives the same bits on
// every machine.

#include "Components/Vec2.h"

#include <cmath>

namespace Physics
{

inline float Dot(Vec2 a, Vec2 b)
{
    return a.x * b.x + a.y * b.y;
}

inline Vec2 Scale(Vec2 v, float factor)
{
    return Vec2{v.x * factor, v.y * factor};
}

// Divides by the length only when it is greater than 1e-6: a shorter vector, zero or NaN included, comes
// back unchanged.
inline Vec2 Normalise(Vec2 v)
{
    const float length = std::sqrt(v.x * v.x + v.y * v.y);
    if (length > 1e-6f)
    {
        return Vec2{v.x / length, v.y / length};
    }
    return v;
}

} // namespace Physics
