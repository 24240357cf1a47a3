#pragma once

// Where the physics step reports collisions to whoever runs the handlers that scripts connected to a
// collider. The step calls it for both sides of every contact whose collider has a handler table, first
// side first, before that contact's impulse.

#include "Components/GameObjectHandle.h"
#include "Components/Vec2.h"

#include <cstdint>

namespace Physics
{

class CollisionListener
{
public:
    virtual ~CollisionListener() = default;

    // One side of one contact. `handlers` is that collider's handler table reference (never 0), `own` its
    // owner, `other` the owner of the other collider, `point` the contact point on the rim of the contact's
    // first collider, the same for both sides. The call may run script code that adds components to the
    // space: nothing it is given points into the space's arrays, and the step reads them anew afterwards.
    virtual void CollisionOccurred(int32_t handlers, GameObjectHandle own, GameObjectHandle other,
                                   Vec2 point) = 0;
};

} // namespace Physics
