#pragma once

// The polymorphic base of the four drawable components, so the graphics system can draw them through one
// interface. Drawables are stored by value in their own factories: copying and moving stay available.

#include "Components/Component.h"

namespace Components::Graphics
{

class GraphicsComponent : public Component
{
public:
    explicit GraphicsComponent(GameObjectHandle ownerHandle) : Component(ownerHandle) {}
    virtual ~GraphicsComponent() = default;
    GraphicsComponent(const GraphicsComponent&) = default;
    GraphicsComponent(GraphicsComponent&&) = default;
    GraphicsComponent& operator=(const GraphicsComponent&) = default;
    GraphicsComponent& operator=(GraphicsComponent&&) = default;
};

} // namespace Components::Graphics
