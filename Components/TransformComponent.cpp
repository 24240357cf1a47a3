#include "Components/TransformComponent.h"

#include "Components/GameObject.h"
#include "Components/Space.h"
#include "Debug/Logger.h"

#include <cmath>

namespace Components
{
namespace
{

// Single precision on purpose, with no fused multiply-add, so results match on every machine.
Vec2 Rotate(Vec2 v, float angle)
{
    const float c = cosf(angle);
    const float s = sinf(angle);
    return Vec2{v.x * c - v.y * s, v.x * s + v.y * c};
}

} // namespace

Slotmap<TransformComponent>& TransformComponent::Transforms() const
{
    if (owner.space == nullptr)
    {
        Logger::Raise("Transform", "Transform has no space");
    }
    return owner.space->transforms.components;
}

Handle TransformComponent::OwnHandle() const
{
    return owner.Get().GetTransform();
}

TransformComponent& TransformComponent::GetParentTransform() const
{
    TransformComponent* found = Transforms().Find(parent);
    if (found == nullptr)
    {
        Logger::Raise("Transform", "Transform component has no parent");
    }
    return *found;
}

float TransformComponent::GetWorldRotation() const
{
    if (parent.IsNull())
    {
        return rotation;
    }
    return rotation + GetParentTransform().rotation;
}

void TransformComponent::SetWorldRotation(float worldRotation)
{
    if (parent.IsNull())
    {
        rotation = worldRotation;
        return;
    }
    rotation = worldRotation - GetParentTransform().GetWorldRotation();
}

Vec2 TransformComponent::GetWorldPosition() const
{
    if (parent.IsNull())
    {
        return position;
    }
    const TransformComponent& parentTransform = GetParentTransform();
    return Rotate(position, parentTransform.GetWorldRotation()) + parentTransform.GetWorldPosition();
}

void TransformComponent::SetWorldPosition(Vec2 worldPosition)
{
    if (parent.IsNull())
    {
        position = worldPosition;
        return;
    }
    const TransformComponent& parentTransform = GetParentTransform();
    position =
        Rotate(worldPosition - parentTransform.GetWorldPosition(), -parentTransform.GetWorldRotation());
}

void TransformComponent::ClearParent(bool keepLocal)
{
    if (!parent.IsNull())
    {
        if (owner.space == nullptr)
        {
            Logger::Raise("Component", "Transform component has no space");
        }
        if (!keepLocal)
        {
            const Vec2 worldPosition = GetWorldPosition();
            rotation = GetWorldRotation();
            position = worldPosition;
        }
        const Handle own = OwnHandle();
        Slotmap<TransformComponent>& transforms = Transforms();
        Handle* link = &GetParentTransform().firstChild;
        while (!link->IsNull() && *link != own)
        {
            TransformComponent* sibling = transforms.Find(*link);
            if (sibling == nullptr)
            {
                Logger::Raise("Transform", "Transform has NULL sibling");
            }
            link = &sibling->nextSibling;
        }
        if (!link->IsNull())
        {
            *link = nextSibling;
            nextSibling = Handle{};
        }
        parent = Handle{};
    }
    if (!nextSibling.IsNull())
    {
        Logger::Log("Transform", LogLevel::Error, "Transform still has siblings after clearing parent");
    }
}

void TransformComponent::SetParent(Handle newParent, bool keepLocal)
{
    ClearParent(keepLocal);
    if (newParent.IsNull())
    {
        return;
    }
    parent = newParent;
    if (IsDescendant(newParent))
    {
        Logger::Raise("Transform", "Tried to set a transform component's parent to a descendant");
    }
    // After ClearParent these hold world values; with the new parent in force they become local ones.
    if (!keepLocal)
    {
        SetWorldRotation(rotation);
        SetWorldPosition(position);
    }
    TransformComponent& parentTransform = GetParentTransform();
    nextSibling = parentTransform.firstChild;
    parentTransform.firstChild = OwnHandle();
}

bool TransformComponent::IsDescendant(Handle handle) const
{
    const Handle own = OwnHandle();
    const Slotmap<TransformComponent>& transforms = Transforms();
    while (!handle.IsNull())
    {
        if (handle == own)
        {
            return true;
        }
        const TransformComponent* ancestor = transforms.Find(handle);
        if (ancestor == nullptr)
        {
            Logger::Raise("Transform", "Transform has a NULL parent object");
        }
        handle = ancestor->parent;
    }
    return false;
}

} // namespace Components
