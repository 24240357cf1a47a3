#include "Graphics/SpriteComponent.h"

#include "Components/Space.h"
#include "Debug/Logger.h"
#include "FileSystem/AssetManager.h"
#include "Graphics/GraphicsSystem.h"

namespace Components::Graphics
{

void SpriteComponent::Draw(::Graphics::GraphicsSystem& graphics, Space& space)
{
    if (frames.empty())
    {
        return;
    }
    const TransformComponent* placement = space.transforms.components.Find(transform);
    if (placement == nullptr)
    {
        Logger::Log("Components", LogLevel::Error, "Sprite has no transform!");
        return;
    }
    // The pivot puts the quad's centre on the position, so the sprite turns about its centre.
    graphics.DrawQuad(placement->GetWorldPosition(), Vec2{0.5f, -0.5f}, placement->scale,
                      frames[static_cast<size_t>(frame)], uvs[static_cast<size_t>(frame)], colour,
                      placement->GetWorldRotation());
}

void LoadFrame(std::vector<std::shared_ptr<::Graphics::Bitmap>>& frames, std::vector<::Graphics::UVRect>& uvs,
               const std::string& path)
{
    frames.push_back(FileSystem::LoadBitmap(path));
    if (frames.size() != 1 || uvs.size() != 1)
    {
        uvs.push_back(::Graphics::defaultUV);
    }
}

} // namespace Components::Graphics
