#pragma once

// A bitmap drawn at its transform: one frame out of a list, each frame with its own rectangle of its
// bitmap. The transform's position is the sprite's centre, its own scale the sprite's size in world units.
// uvs holds one entry even before any frame is loaded: the rectangle the first frame will use.

#include "Graphics/Colour.h"
#include "Graphics/GraphicsComponent.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Graphics
{
class Bitmap;
}

namespace Components::Graphics
{

class SpriteComponent : public GraphicsComponent
{
public:
    explicit SpriteComponent(GameObjectHandle ownerHandle) : GraphicsComponent(ownerHandle) {}

    void Draw(::Graphics::GraphicsSystem& graphics, Space& space) override;

    std::vector<std::shared_ptr<::Graphics::Bitmap>> frames;
    std::vector<::Graphics::UVRect> uvs{::Graphics::defaultUV};
    ::Graphics::Colour colour;
    int32_t frame = 0;
    uint32_t slot = 0;
};

// Appends the bitmap of the path (the checkerboard if it can't be read) with a new whole-bitmap rectangle,
// unless it is the first frame, which takes the rectangle already there.
void LoadFrame(std::vector<std::shared_ptr<::Graphics::Bitmap>>& frames, std::vector<::Graphics::UVRect>& uvs,
               const std::string& path);

} // namespace Components::Graphics
