#pragma once

// A shape that the physics step tests for contacts, and the script handlers that hear of them.
// `collisionEvents` is a Lua registry reference that this record owns: the physics system gives it up for
// flagged colliders before the sweep, and a move hands it over and leaves 0 behind, so that the Slotmap's
// shuffling never releases a reference twice nor reports one as leaked. Copies would do both; there are none.

#include "Components/Component.h"
#include "Components/Handle.h"

#include <cstdint>

namespace Components
{

enum class ColliderType : int32_t
{
    Circle = 0,
    AABB = 1,
};

class ColliderComponent : public Component
{
public:
    // Sizes the collider from the owner's local scale, once; gives the owner a transform if it has none,
    // with a Warning.
    explicit ColliderComponent(GameObjectHandle ownerHandle);
    // Logs an Error if the handler reference was not released.
    ~ColliderComponent();
    ColliderComponent(ColliderComponent&& other) noexcept;
    ColliderComponent& operator=(ColliderComponent&& other) noexcept;
    ColliderComponent(const ColliderComponent&) = delete;
    ColliderComponent& operator=(const ColliderComponent&) = delete;

    Handle transform;
    ColliderType type = ColliderType::Circle;
    // The radius of a circle, and the half-width of an AABB.
    float radius = 0.0f;
    float halfHeight = 0.0f;
    float restitution = 1.0f;
    // Registry reference to the table of handlers; 0 means none.
    int32_t collisionEvents = 0;
    bool ghost = false;
    // 0 is no group; colliders with the same other value never meet. Compared as these 16 bits.
    int16_t collisionGroup = 0;
    uint32_t slot = 0;

private:
    void TakeFrom(ColliderComponent& other) noexcept;
};

} // namespace Components
