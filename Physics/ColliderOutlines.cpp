#include "Physics/ColliderOutlines.h"

#include "Components/Space.h"
#include "Graphics/GraphicsSystem.h"

using Components::ColliderComponent;
using Components::ColliderType;
using Components::TransformComponent;

namespace Physics
{
namespace
{

constexpr Graphics::Colour kOutlineColour{0.0f, 0.0f, 1.0f, 1.0f};
constexpr int32_t kCircleSegments = 12;

// The transform's own rotation plus its parent's world rotation.
float OutlineRotation(const TransformComponent& transform)
{
    return transform.parent.IsNull() ? transform.rotation
                                     : transform.rotation + transform.GetParentTransform().GetWorldRotation();
}

} // namespace

void DrawColliders(Space& space, Graphics::GraphicsSystem& graphics)
{
    Slotmap<TransformComponent>& transforms = space.transforms.components;
    for (const ColliderComponent& collider : space.colliders.components)
    {
        const TransformComponent* transform = transforms.Find(collider.transform);
        if (collider.destroyed || transform == nullptr || transform->destroyed)
        {
            continue;
        }
        const Vec2 position = transform->GetWorldPosition();
        const float rotation = OutlineRotation(*transform);
        if (collider.type == ColliderType::Circle)
        {
            graphics.AddDebugCircle(position, Vec2{collider.radius, collider.radius}, kOutlineColour,
                                    rotation, true, kCircleSegments);
        }
        else if (collider.type == ColliderType::AABB)
        {
            graphics.AddDebugSquare(position, Vec2{2.0f * collider.radius, 2.0f * collider.halfHeight},
                                    kOutlineColour, rotation, true);
        }
    }
}

} // namespace Physics
