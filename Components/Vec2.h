#pragma once

// Two floats: world units, or pixels where a caller says so. The engine has no matrix type.

struct Vec2
{
    float x = 0.0f;
    float y = 0.0f;

    friend Vec2 operator+(Vec2 a, Vec2 b) { return Vec2{a.x + b.x, a.y + b.y}; }
    friend Vec2 operator-(Vec2 a, Vec2 b) { return Vec2{a.x - b.x, a.y - b.y}; }
    friend bool operator==(Vec2, Vec2) = default;
};
