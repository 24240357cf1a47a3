#pragma once

// An object's place in the world: local position, rotation, scale and draw order, relative to an optional
// parent transform in the same space. World values are computed on demand by walking up the parents;
// nothing is cached. Children form a singly linked list through firstChild and nextSibling. Invariants: a
// transform with a parent stands in that parent's list exactly once; one without has a null nextSibling;
// parent links form no cycle; all links belong to one space.

#include "Components/Component.h"
#include "Components/Slotmap.h"
#include "Components/Vec2.h"

#include <cstdint>

namespace Components
{

class TransformComponent : public Component
{
public:
    explicit TransformComponent(GameObjectHandle ownerHandle) : Component(ownerHandle) {}

    // Raises if there is no space or the parent doesn't resolve.
    TransformComponent& GetParentTransform() const;

    // Own rotation plus the parent's own rotation: one level, not the sum over all ancestors.
    float GetWorldRotation() const;
    void SetWorldRotation(float worldRotation);
    // Turned by the parent's world rotation and added to the parent's world position, up to the root.
    // Scale plays no part.
    Vec2 GetWorldPosition() const;
    void SetWorldPosition(Vec2 worldPosition);

    // Detaches from the parent; with keepLocal false the world position and rotation are kept.
    void ClearParent(bool keepLocal);
    // Attaches at the front of the new parent's list (a null handle only detaches). With keepLocal false
    // the transform stays where it is in the world. Raises if the new parent is this or a descendant.
    void SetParent(Handle newParent, bool keepLocal);
    // True if the handle is this transform or one of its descendants.
    bool IsDescendant(Handle handle) const;

    Handle parent;
    Handle firstChild;
    Handle nextSibling;
    Vec2 position;
    Vec2 scale{1.0f, 1.0f};
    int32_t z = 0;
    float rotation = 0.0f;
    uint32_t slot = 0;

private:
    Slotmap<TransformComponent>& Transforms() const;
    // This transform's own handle: slot 0 of its owner.
    Handle OwnHandle() const;
};

} // namespace Components
