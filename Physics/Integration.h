#pragma once

// The first part of a step: forces change the velocities of the bodies, and velocities move their
// transforms (semi-implicit Euler). Positions are written here only; nothing else in the step corrects one.

#include "Components/RigidBodyComponent.h"
#include "Components/Slotmap.h"
#include "Components/TransformComponent.h"

namespace Graphics
{
class GraphicsSystem;
}

namespace Physics
{

// The drag on a body: against its velocity, with the square of its speed times the coefficient.
Vec2 DragForce(const Components::RigidBodyComponent& body, float drag);

// Walks the bodies in array order. Gravity is a force like drag, so it is divided by the mass. A body is
// moved while it is flagged for removal, up to the sweep; one without mass (HasMass) or whose transform is
// gone stays as it is. With debugDraw, each moved body shows its drag force (blue) and its new velocity
// (black) as arrows from its new world position.
void Integrate(Slotmap<Components::RigidBodyComponent>& bodies,
               Slotmap<Components::TransformComponent>& transforms, Vec2 gravity, float drag, float dt,
               Graphics::GraphicsSystem* debugDraw = nullptr);

} // namespace Physics
