// The debug draw queues and their flushes, the arrows, and the profile overlay. Shapes are queued by
// anyone at any time and drawn by the next per-Space frame with the debug program current; text has no
// queue and draws at once.

#include "Debug/Profile.h"
#include "Graphics/GraphicsSystem.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <epoxy/gl.h>

namespace Graphics
{
namespace
{

constexpr float kDegreesPerRadian = 57.29578f;
constexpr double kTwoPi = 6.283185307179586;
constexpr float kProfileRowPixels = 32.0f;

void SetColour(const Shaders::RenderProgram& program, const Colour& colour)
{
    glUniform4f(program.triangleColor, colour.r, colour.g, colour.b, colour.a);
}

void PlaceShape(Vec2 position, float rotation, Vec2 size)
{
    glLoadIdentity();
    glTranslatef(position.x, position.y, 0.0f);
    glRotatef(rotation * kDegreesPerRadian, 0.0f, 0.0f, 1.0f);
    glScalef(size.x, size.y, 1.0f);
}

} // namespace

void GraphicsSystem::AddDebugSquare(Vec2 position, Vec2 size, const Colour& colour, float rotation,
                                    bool outline)
{
    debugSquares.push_back(DebugSquare{position, size, colour, rotation, outline});
}

void GraphicsSystem::AddDebugCircle(Vec2 position, Vec2 size, const Colour& colour, float rotation,
                                    bool outline, int32_t segments)
{
    debugCircles.push_back(DebugCircle{position, size, colour, rotation, outline, segments});
}

void GraphicsSystem::AddDebugLine(Vec2 start, Vec2 end, const Colour& colour)
{
    debugLines.push_back(DebugLine{start, end, colour});
}

void GraphicsSystem::AddDebugArrow(Vec2 start, Vec2 end, const Colour& colour)
{
    AddDebugLine(start, end, colour);
    const Vec2 d = end - start;
    const float length = std::sqrt(d.x * d.x + d.y * d.y);
    const float x = d.x / length;
    const float y = d.y / length;
    const float h = std::min(length, 1.0f) * 0.25f;
    AddDebugLine(end, Vec2{end.x + (y - x) * h, end.y + (-x - y) * h}, colour);
    AddDebugLine(end, Vec2{end.x + (-y - x) * h, end.y + (x - y) * h}, colour);
}

void GraphicsSystem::DrawDebugSquares()
{
    const Debug::ProfileBlock block("Debug Squares");
    glMatrixMode(GL_MODELVIEW);
    for (const DebugSquare& square : debugSquares)
    {
        PlaceShape(square.position, square.rotation, square.size);
        glTranslatef(-0.5f, 0.5f, 0.0f);
        SetColour(debugProgram, square.colour);
        // The indices 0, 1, 2, 2, 3, 0 as a loop follow the quad's border.
        glDrawElements(square.outline ? GL_LINE_LOOP : GL_TRIANGLES, 6, GL_UNSIGNED_INT, nullptr);
    }
}

// Points at angle a are (sin a, cos a): circles start at the top and run clockwise, the angle summed in
// float piece by piece.
void GraphicsSystem::DrawDebugCircles()
{
    const Debug::ProfileBlock block("Debug Cicles");
    glMatrixMode(GL_MODELVIEW);
    for (const DebugCircle& circle : debugCircles)
    {
        PlaceShape(circle.position, circle.rotation, circle.size);
        SetColour(debugProgram, circle.colour);
        const auto step = static_cast<float>(kTwoPi / circle.segments);
        glBegin(circle.outline ? GL_LINES : GL_TRIANGLES);
        Vec2 near{0.0f, 1.0f};
        float angle = step;
        for (int32_t piece = 0; piece < circle.segments; ++piece)
        {
            const Vec2 far{std::sin(angle), std::cos(angle)};
            if (!circle.outline)
            {
                glVertex2f(0.0f, 0.0f);
            }
            glVertex2f(near.x, near.y);
            glVertex2f(far.x, far.y);
            near = far;
            angle += step;
        }
        glEnd();
    }
}

void GraphicsSystem::DrawDebugLines()
{
    const Debug::ProfileBlock block("Debug Lines");
    UseProgram(&debugProgram);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    for (const DebugLine& line : debugLines)
    {
        SetColour(debugProgram, line.colour);
        glBegin(GL_LINES);
        glVertex2f(line.start.x, line.start.y);
        glVertex2f(line.end.x, line.end.y);
        glEnd();
    }
}

void GraphicsSystem::DrawProfile(const std::vector<Debug::ProfileRecord>& records)
{
    if (records.empty())
    {
        return;
    }
    const Vec2 origin = ScreenToWorld(Vec2{0.0f, static_cast<float>(screenHeight)});
    const Vec2 size{cameraSize / aspect, kProfileRowPixels / static_cast<float>(screenHeight) * cameraSize};
    const auto total = static_cast<double>(records.front().time);
    DrawProfileRow(records, origin, size, records.front().children, total);
}

// A block's children stand in the next row up, from the block's left edge; heavy blocks go red, light
// ones green. Names draw at once, bars through the queue.
void GraphicsSystem::DrawProfileRow(const std::vector<Debug::ProfileRecord>& records, Vec2 origin, Vec2 size,
                                    const std::vector<int32_t>& children, double total)
{
    float x = 0.0f;
    for (const int32_t child : children)
    {
        const Debug::ProfileRecord& record = records[static_cast<size_t>(child)];
        const auto f = static_cast<float>(static_cast<double>(record.time) / total);
        DrawProfileRow(records, Vec2{origin.x + x, origin.y + size.y}, size, record.children, total);
        const float width = f * size.x;
        x += width * 0.5f;
        const Vec2 centre{origin.x + x, origin.y + size.y * 0.5f};
        AddDebugSquare(centre, Vec2{width, size.y}, Colour{f, 1.0f - f, 0.0f, 1.0f}, 0.0f, false);
        const auto n = static_cast<float>(std::strlen(record.name));
        DrawString(centre, Vec2{n * 0.5f, -0.5f}, record.name, 0.0f, Vec2{std::min(width / n, 1.0f), size.y},
                   Colour{0.0f, 0.0f, 0.0f, 1.0f});
        x += width * 0.5f;
    }
}

} // namespace Graphics
