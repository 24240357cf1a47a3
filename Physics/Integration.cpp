#include "Physics/Integration.h"

#include "Graphics/GraphicsSystem.h"
#include "Physics/VectorMath.h"

using Components::RigidBodyComponent;
using Components::TransformComponent;

namespace Physics
{

Vec2 DragForce(const RigidBodyComponent& body, float drag)
{
    if (body.ignoreDrag)
    {
        return Vec2{};
    }
    const Vec2 velocity = body.velocity;
    const float magnitude = -((velocity.x * velocity.x + velocity.y * velocity.y) * drag);
    return Scale(Normalise(velocity), magnitude);
}

void Integrate(Slotmap<RigidBodyComponent>& bodies, Slotmap<TransformComponent>& transforms, Vec2 gravity,
               float drag, float dt, Graphics::GraphicsSystem* debugDraw)
{
    const uint32_t count = bodies.size();
    for (uint32_t place = 0; place < count; ++place)
    {
        RigidBodyComponent& body = bodies[place];
        TransformComponent* transform = transforms.Find(body.transform);
        if (transform == nullptr || !body.HasMass())
        {
            continue;
        }
        const Vec2 dragForce = DragForce(body, drag);
        const Vec2 force = gravity + dragForce;
        body.velocity.x += force.x * dt / body.mass;
        body.velocity.y += force.y * dt / body.mass;
        transform->position.x += body.velocity.x * dt;
        transform->position.y += body.velocity.y * dt;
        if (debugDraw != nullptr)
        {
            const Vec2 position = transform->GetWorldPosition();
            debugDraw->AddDebugArrow(position, position + dragForce,
                                     Graphics::Colour{0.0f, 0.0f, 1.0f, 1.0f});
            debugDraw->AddDebugArrow(position, position + body.velocity,
                                     Graphics::Colour{0.0f, 0.0f, 0.0f, 1.0f});
        }
    }
}

} // namespace Physics
