#include "Graphics/TextSpriteComponent.h"

#include "Components/Space.h"
#include "Debug/Logger.h"
#include "Graphics/GraphicsSystem.h"

namespace Components::Graphics
{

void TextSpriteComponent::Draw(::Graphics::GraphicsSystem& graphics, Space& space)
{
    if (text.empty())
    {
        return;
    }
    const TransformComponent* placement = space.transforms.components.Find(transform);
    if (placement == nullptr)
    {
        Logger::Log("Components", LogLevel::Error, "TextSprite has no transform!");
        return;
    }
    graphics.DrawString(placement->GetWorldPosition(), Vec2{}, text.c_str(), placement->GetWorldRotation(),
                        placement->scale, colour);
}

} // namespace Components::Graphics
