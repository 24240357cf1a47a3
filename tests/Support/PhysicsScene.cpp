#include "Support/PhysicsScene.h"

#include <array>
#include <bit>
#include <limits>

using Components::ColliderComponent;
using Components::RigidBodyComponent;
using Components::TransformComponent;

namespace PhysicsScene
{
namespace
{

uint64_t Mix(uint64_t hash, float value)
{
    // FNV-1a over the four bytes of the float's bits.
    const uint32_t bits = std::bit_cast<uint32_t>(value);
    for (int shift = 0; shift < 32; shift += 8)
    {
        hash = (hash ^ ((bits >> shift) & 0xFFu)) * 0x100000001B3ull;
    }
    return hash;
}

} // namespace

GameObjectHandle AddObject(Space& space, Vec2 position)
{
    const GameObjectHandle object = space.CreateObject();
    object.Get().AddComponent(Components::Transform);
    TransformOf(object).position = position;
    return object;
}

ColliderComponent& AddCircle(GameObjectHandle object, float radius)
{
    object.Get().AddComponent(Components::Collider);
    ColliderComponent& collider = ColliderOf(object);
    collider.radius = radius;
    return collider;
}

RigidBodyComponent& AddBody(GameObjectHandle object, Vec2 velocity, float mass)
{
    object.Get().AddComponent(Components::RigidBody);
    RigidBodyComponent& body = BodyOf(object);
    body.velocity = velocity;
    body.mass = mass;
    return body;
}

TransformComponent& TransformOf(GameObjectHandle object)
{
    return object.space->transforms.components.at(object.Get().GetComponent(Components::Transform));
}

ColliderComponent& ColliderOf(GameObjectHandle object)
{
    return object.space->colliders.components.at(object.Get().GetComponent(Components::Collider));
}

RigidBodyComponent& BodyOf(GameObjectHandle object)
{
    return object.space->rigidBodies.components.at(object.Get().GetComponent(Components::RigidBody));
}

std::vector<Physics::Contact> AllPairContacts(Space& space)
{
    std::vector<Physics::Contact> contacts;
    Slotmap<ColliderComponent>& colliders = space.colliders.components;
    Slotmap<TransformComponent>& transforms = space.transforms.components;
    for (uint32_t i = 0; i < colliders.size(); ++i)
    {
        const ColliderComponent& a = colliders[i];
        const TransformComponent* transformA = transforms.Find(a.transform);
        if (a.destroyed || transformA == nullptr || transformA->destroyed)
        {
            continue;
        }
        for (uint32_t j = i + 1; j < colliders.size(); ++j)
        {
            const ColliderComponent& b = colliders[j];
            const TransformComponent* transformB = transforms.Find(b.transform);
            if (b.destroyed || (a.collisionGroup != 0 && a.collisionGroup == b.collisionGroup) ||
                transformB == nullptr || transformB->destroyed)
            {
                continue;
            }
            if (a.type != Components::ColliderType::Circle || b.type != Components::ColliderType::Circle)
            {
                continue;
            }
            Physics::Contact contact{i, j, Vec2{}, 0.0f};
            if (Physics::CollideCircles(transformA->GetWorldPosition(), a.radius,
                                        transformB->GetWorldPosition(), b.radius, contact))
            {
                contact.first = i;
                contact.second = j;
                contacts.push_back(contact);
            }
        }
    }
    return contacts;
}

bool SameContacts(const std::vector<Physics::Contact>& a, const std::vector<Physics::Contact>& b)
{
    if (a.size() != b.size())
    {
        return false;
    }
    for (size_t index = 0; index < a.size(); ++index)
    {
        const Physics::Contact& x = a[index];
        const Physics::Contact& y = b[index];
        if (x.first != y.first || x.second != y.second ||
            std::bit_cast<uint32_t>(x.point.x) != std::bit_cast<uint32_t>(y.point.x) ||
            std::bit_cast<uint32_t>(x.point.y) != std::bit_cast<uint32_t>(y.point.y) ||
            std::bit_cast<uint32_t>(x.penetration) != std::bit_cast<uint32_t>(y.penetration))
        {
            return false;
        }
    }
    return true;
}

float HostileValue(std::mt19937& random)
{
    using Limits = std::numeric_limits<float>;
    static constexpr std::array<float, 22> kPool = {Limits::quiet_NaN(),
                                                    -Limits::quiet_NaN(),
                                                    Limits::infinity(),
                                                    -Limits::infinity(),
                                                    Limits::max(),
                                                    -Limits::max(),
                                                    Limits::min(),
                                                    Limits::denorm_min(),
                                                    -Limits::denorm_min(),
                                                    0.0f,
                                                    -0.0f,
                                                    1e-30f,
                                                    -1e-30f,
                                                    1e20f,
                                                    -1e20f,
                                                    1e15f,
                                                    -1e15f,
                                                    1.0f,
                                                    -1.0f,
                                                    0.5f,
                                                    3.0f,
                                                    -2.5f};
    return kPool[std::uniform_int_distribution<size_t>(0, kPool.size() - 1)(random)];
}

uint64_t HashState(Space& space)
{
    uint64_t hash = 0xCBF29CE484222325ull;
    for (const TransformComponent& transform : space.transforms.components)
    {
        hash = Mix(Mix(hash, transform.position.x), transform.position.y);
    }
    for (const RigidBodyComponent& body : space.rigidBodies.components)
    {
        hash = Mix(Mix(hash, body.velocity.x), body.velocity.y);
    }
    return hash;
}

} // namespace PhysicsScene
