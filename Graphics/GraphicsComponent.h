#pragma once

// The polymorphic base of the four drawable components, so the graphics system can draw them through one
// interface. Drawables are stored by value in their own factories: copying and moving stay available.

#include "Components/Component.h"
#include "Components/Handle.h"

class Space;

namespace Graphics
{
class GraphicsSystem;
}

namespace Components::Graphics
{

class GraphicsComponent : public Component
{
public:
    // Takes the owner's transform, giving the owner one if it has none: a drawable always starts with one.
    explicit GraphicsComponent(GameObjectHandle ownerHandle);
    virtual ~GraphicsComponent() = default;
    GraphicsComponent(const GraphicsComponent&) = default;
    GraphicsComponent(GraphicsComponent&&) = default;
    GraphicsComponent& operator=(const GraphicsComponent&) = default;
    GraphicsComponent& operator=(GraphicsComponent&&) = default;

    // Called by the frame, in the order of the sort, with the component's own Space.
    virtual void Draw(::Graphics::GraphicsSystem& graphics, Space& space) = 0;

    // Whether the frame gathers this component.
    bool visible = true;
    Handle transform;

protected:
    struct LeaveTransformMissing
    {
    };
    // Takes the owner's transform, which may be the null handle: for a drawable that tells of a missing
    // transform when it adds one itself.
    GraphicsComponent(GameObjectHandle ownerHandle, LeaveTransformMissing);
};

} // namespace Components::Graphics
