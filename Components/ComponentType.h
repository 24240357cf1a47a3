#pragma once

// Component type numbers: the index of every per-type table (an object's handles, a space's factories, the
// script names). Any number outside 0..8 is no type and must never index a table.

#include <cstdint>

namespace Components
{

enum ComponentType : int32_t
{
    Transform = 0,
    RigidBody = 1,
    Square = 2,
    Sprite = 3,
    TextSprite = 4,
    Particle = 5,
    Audio = 6,
    Collider = 7,
    Script = 8,
};

constexpr int32_t kComponentTypeCount = 9;

constexpr bool IsComponentType(int32_t type)
{
    return type >= 0 && type < kComponentTypeCount;
}

// The type's name as scripts, level tables and metatables know it; type must be valid.
const char* ComponentTypeName(int32_t type);

} // namespace Components
