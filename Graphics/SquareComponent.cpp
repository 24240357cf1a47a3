#include "Graphics/SquareComponent.h"

#include "Components/Space.h"
#include "Debug/Logger.h"
#include "Graphics/GraphicsSystem.h"

namespace Components::Graphics
{

void SquareComponent::Draw(::Graphics::GraphicsSystem& graphics, Space& space)
{
    const TransformComponent* placement = space.transforms.components.Find(transform);
    if (placement == nullptr)
    {
        Logger::Raise("Graphics", "Square comopnent has no transform!");
    }
    graphics.AddDebugSquare(placement->GetWorldPosition(),
                            Vec2{size.x * placement->scale.x, size.y * placement->scale.y}, colour,
                            placement->GetWorldRotation(), false);
}

} // namespace Components::Graphics
