#include "Physics/Response.h"

#include "Components/Space.h"
#include "Debug/Profile.h"
#include "Physics/CollisionListener.h"
#include "Physics/VectorMath.h"

#include <algorithm>

using Components::ColliderComponent;
using Components::RigidBodyComponent;
using Components::TransformComponent;

namespace Physics
{
namespace
{

// Through the owner's handle: a body removed from a living object no longer counts, though it is still in
// the array until the sweep.
Handle OwnerBody(Space& space, const ColliderComponent& collider)
{
    const GameObject* owner = space.objects.Find(collider.owner.handle);
    return owner == nullptr ? Handle{} : owner->components[Components::RigidBody];
}

RigidBodyComponent* FindBody(Space& space, Handle handle)
{
    RigidBodyComponent* body = space.rigidBodies.components.Find(handle);
    return body != nullptr && body->HasMass() ? body : nullptr;
}

void Report(Slotmap<ColliderComponent>& colliders, uint32_t place, uint32_t otherPlace, Vec2 point,
            CollisionListener& listener)
{
    const int32_t handlers = colliders[place].collisionEvents;
    if (handlers != 0)
    {
        listener.CollisionOccurred(handlers, colliders[place].owner, colliders[otherPlace].owner, point);
    }
}

// An absent body stands still and has no inverse mass. The penetration bias is added to the impulse before
// the division by the inverse mass, with no time factor: it is what pushes overlapping bodies apart.
void ApplyImpulse(const Contact& contact, Vec2 centreA, float restitution, RigidBodyComponent* a,
                  RigidBodyComponent* b)
{
    const Vec2 velocityA = a != nullptr ? a->velocity : Vec2{};
    const Vec2 velocityB = b != nullptr ? b->velocity : Vec2{};
    const Vec2 normal = Normalise(centreA - contact.point);
    const float normalSpeed = Dot(velocityA - velocityB, normal);
    // Already separating; resting contact (0) still gets its impulse.
    if (normalSpeed > 0.0f)
    {
        return;
    }
    float impulse = -(restitution + 1.0f) * normalSpeed;
    float inverseMass = 0.0f;
    if (a != nullptr)
    {
        inverseMass += 1.0f / a->mass;
    }
    if (b != nullptr)
    {
        inverseMass += 1.0f / b->mass;
    }
    // Masses m and -m cancel: there is nothing to divide by.
    if (inverseMass == 0.0f)
    {
        return;
    }
    const float overlap = contact.penetration - 0.01f;
    if (overlap > 0.0f)
    {
        impulse += overlap * 0.5f;
    }
    impulse = impulse / inverseMass;
    if (a != nullptr)
    {
        a->velocity.x += normal.x * impulse / a->mass;
        a->velocity.y += normal.y * impulse / a->mass;
    }
    if (b != nullptr)
    {
        b->velocity.x -= normal.x * impulse / b->mass;
        b->velocity.y -= normal.y * impulse / b->mass;
    }
}

} // namespace

// Handlers may add components, so nothing from the arrays is held across the report: bodies are known by
// handle until it is over, colliders by place.
void RespondToContacts(Space& space, const std::vector<Contact>& contacts, CollisionListener* listener)
{
    Slotmap<ColliderComponent>& colliders = space.colliders.components;
    for (const Contact& contact : contacts)
    {
        const Handle bodyA = OwnerBody(space, colliders[contact.first]);
        const Handle bodyB = OwnerBody(space, colliders[contact.second]);
        if (listener != nullptr)
        {
            Debug::ProfileBlock block("SendEvent");
            Report(colliders, contact.first, contact.second, contact.point, *listener);
            Report(colliders, contact.second, contact.first, contact.point, *listener);
        }
        const ColliderComponent& first = colliders[contact.first];
        const ColliderComponent& second = colliders[contact.second];
        if (first.ghost || second.ghost)
        {
            continue;
        }
        RigidBodyComponent* a = FindBody(space, bodyA);
        RigidBodyComponent* b = FindBody(space, bodyB);
        const TransformComponent* transform = space.transforms.components.Find(first.transform);
        if ((a == nullptr && b == nullptr) || transform == nullptr)
        {
            continue;
        }
        ApplyImpulse(contact, transform->GetWorldPosition(), std::min(first.restitution, second.restitution),
                     a, b);
    }
}

} // namespace Physics
