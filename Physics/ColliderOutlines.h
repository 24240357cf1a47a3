#pragma once

// The debug view of the colliders: blue outlines, circles of 12 pieces and boxes, for every collider that
// detection would test.

class Space;

namespace Graphics
{
class GraphicsSystem;
}

namespace Physics
{

void DrawColliders(Space& space, Graphics::GraphicsSystem& graphics);

} // namespace Physics
