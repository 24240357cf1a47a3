#include "Physics/Raycast.h"

#include "Components/Space.h"
#include "Debug/Profile.h"
#include "Physics/VectorMath.h"

#include <algorithm>
#include <cmath>

using Components::ColliderComponent;
using Components::ColliderType;
using Components::TransformComponent;

namespace Physics
{
namespace
{

bool InRay(float t)
{
    return t >= 0.0f && t <= 1.0f;
}

// The first point of the ray within the circle. A start inside is the hit itself, whatever the ray holds.
bool Intersect(Vec2 centre, float radius, Vec2 start, Vec2 ray, RaycastHit& hit)
{
    const Vec2 d = centre - start;
    const float squaredDistance = Dot(d, d);
    if (radius * radius >= squaredDistance)
    {
        hit.hit = start;
        hit.distance = 0.0f;
        return true;
    }
    if (Dot(ray, d) <= 0.0f)
    {
        return false;
    }
    const float a = Dot(ray, ray);
    const float b = -2.0f * Dot(d, ray);
    const float discriminant = b * b - (squaredDistance - radius * radius) * (a * 4.0f);
    if (discriminant < 0.0f || a == 0.0f)
    {
        return false;
    }
    const float root = std::sqrt(discriminant);
    const float t1 = (-root - b) / (2.0f * a);
    const float t2 = (root - b) / (2.0f * a);
    if (!InRay(t1) && !InRay(t2))
    {
        return false;
    }
    const float t = !InRay(t2) || (InRay(t1) && t1 < t2) ? t1 : t2;
    hit.hit = start + Scale(ray, t);
    hit.distance = std::sqrt(a) * t;
    return true;
}

// The transform that scripts see on the owner, which the collider's own stored handle may no longer be.
const TransformComponent* LiveOwnerTransform(const ColliderComponent& collider)
{
    Space* space = collider.owner.space;
    if (space == nullptr)
    {
        return nullptr;
    }
    const GameObject* owner = space->objects.Find(collider.owner.handle);
    if (owner == nullptr || owner->destroyed)
    {
        return nullptr;
    }
    const TransformComponent* transform = space->transforms.components.Find(owner->GetTransform());
    return transform == nullptr || transform->destroyed ? nullptr : transform;
}

// A strict weak order even with NaN distances, which sort after all others.
bool Nearer(const RaycastHit& a, const RaycastHit& b)
{
    if (std::isnan(a.distance))
    {
        return false;
    }
    return std::isnan(b.distance) || a.distance < b.distance;
}

} // namespace

void Raycast(Space& space, Vec2 start, Vec2 ray, int16_t group, std::vector<RaycastHit>& hits)
{
    Debug::ProfileBlock block("Raycast");
    hits.clear();
    const Slotmap<ColliderComponent>& colliders = space.colliders.components;
    const uint32_t count = colliders.size();
    for (uint32_t place = 0; place < count; ++place)
    {
        const ColliderComponent& collider = colliders[place];
        if (collider.destroyed || (group != 0 && collider.collisionGroup == group))
        {
            continue;
        }
        const TransformComponent* transform = LiveOwnerTransform(collider);
        RaycastHit hit{collider.owner, Vec2{}, 0.0f};
        if (transform != nullptr && collider.type == ColliderType::Circle &&
            Intersect(transform->GetWorldPosition(), collider.radius, start, ray, hit))
        {
            hits.push_back(hit);
        }
    }
    std::stable_sort(hits.begin(), hits.end(), Nearer);
}

} // namespace Physics
