#include "Graphics/ParticleComponent.h"

#include "Components/Space.h"
#include "Debug/Logger.h"

#include <utility>

namespace Components::Graphics
{
namespace
{

// Far below the -999 at which a spawned system would be removed: a component's system never ends.
constexpr float kEndlessLife = -1000.0f;

} // namespace

ParticleComponent::ParticleComponent(GameObjectHandle ownerHandle)
    : GraphicsComponent(ownerHandle, LeaveTransformMissing{}),
      system(kPoolSize, kEndlessLife, ::Graphics::Particles::PoolMemory::Pages)
{
    system.emitter = std::make_unique<::Graphics::Particles::Emitters::EmitOnce>(0, system.maxParticles);
    if (transform.IsNull())
    {
        GameObject& object = owner.Get();
        transform = object.AddComponent(Transform);
        Logger::Log("Components", LogLevel::Warning, "Transform not in this object: " + object.name);
    }
}

ParticleComponent::ParticleComponent(ParticleComponent&& other) noexcept
    : GraphicsComponent(other), system(std::move(other.system))
{
    TakeFrom(other);
}

ParticleComponent& ParticleComponent::operator=(ParticleComponent&& other) noexcept
{
    if (this != &other)
    {
        GraphicsComponent::operator=(other);
        system = std::move(other.system);
        TakeFrom(other);
    }
    return *this;
}

void ParticleComponent::TakeFrom(ParticleComponent& other) noexcept
{
    frames = std::move(other.frames);
    uvs = std::move(other.uvs);
    needsStart = other.needsStart;
    slot = other.slot;
    system.pendingPulses = 0;
    if (system.emitter != nullptr)
    {
        system.emitter->newCount = 0;
    }
}

void ParticleComponent::Draw(::Graphics::GraphicsSystem& graphics, Space&)
{
    system.Draw(graphics);
}

void ParticleComponent::Update(Space& space, float dt, float spaceTime, float absoluteTime)
{
    if (const TransformComponent* placement = space.transforms.components.Find(transform))
    {
        system.position = placement->GetWorldPosition();
        system.rotation = placement->GetWorldRotation();
        system.scale = (placement->scale.x + placement->scale.y) * 0.5f;
    }
    if (needsStart)
    {
        system.Start();
        needsStart = false;
    }
    system.Update(dt, spaceTime, absoluteTime);
}

} // namespace Components::Graphics
