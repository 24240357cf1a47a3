// The engine's one bitmap font: a 16 × 16 grid of equal cells, the byte 16 × row + column in the cell of
// that row and column counted from the top left, and the drawing of strings with it.

#include "FileSystem/AssetManager.h"
#include "Graphics/Bitmap.h"
#include "Graphics/GraphicsSystem.h"

namespace Graphics
{
namespace
{

constexpr float kAdvance = 0.75f;

// 1/16 of the side, computed through the side so that it rounds as the glyph rectangles of any size do.
float CellOf(uint32_t side)
{
    const float pixels = static_cast<float>(side);
    return 1.0f / pixels * (pixels * 0.0625f);
}

} // namespace

void GraphicsSystem::LoadFont()
{
    font = FileSystem::LoadBitmap("Fonts/font.png");
    textures.push_back(font);
    UploadTexture(font);
    const float cellWidth = CellOf(font->width);
    const float cellHeight = CellOf(font->height);
    for (uint32_t row = 0; row < 16; ++row)
    {
        for (uint32_t column = 0; column < 16; ++column)
        {
            const float left = static_cast<float>(column) * cellWidth;
            const float top = static_cast<float>(row) * cellHeight;
            glyphs[row * 16 + column] = UVRect{left, top, left + cellWidth, top + cellHeight};
        }
    }
}

void GraphicsSystem::DrawString(Vec2 position, Vec2 origin, const char* text, float rotation, Vec2 scale,
                                const Colour& colour)
{
    Vec2 cursor = origin;
    for (const char* byte = text; *byte != '\0'; ++byte)
    {
        const auto code = static_cast<unsigned char>(*byte);
        switch (code)
        {
        case '\n':
            cursor.x = origin.x;
            cursor.y += 1.0f;
            break;
        case '\r':
            cursor.x = origin.x;
            break;
        case '\t':
        case ' ':
            cursor.x -= kAdvance;
            break;
        default:
            DrawQuad(position, cursor, scale, font, glyphs[code], colour, rotation);
            cursor.x -= kAdvance;
            break;
        }
    }
}

void GraphicsSystem::DrawText(Vec2 position, const char* text, const Colour& colour)
{
    UseProgram(&textureProgram);
    DrawString(position, Vec2{}, text, 0.0f, Vec2{1.0f, 1.0f}, colour);
}

} // namespace Graphics
