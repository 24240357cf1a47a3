#include "Components/ComponentType.h"

#include <array>
#include <cstddef>

namespace Components
{

const char* ComponentTypeName(int32_t type)
{
    static constexpr std::array<const char*, kComponentTypeCount> kNames = {
        "Transform", "RigidBody", "Square",   "Sprite", "TextSprite",
        "Particle",  "Audio",     "Collider", "Script"};
    return kNames[static_cast<std::size_t>(type)];
}

} // namespace Components
