#include "Components/GameObject.h"

#include "Components/Space.h"
#include "Debug/Logger.h"

#include <utility>

using Components::ComponentTypeName;
using Components::IsComponentType;

GameObject::GameObject(GameObjectHandle handle)
    : name("Object " + std::to_string(handle.handle.Value())), self(handle)
{
}

GameObject::~GameObject()
{
    CheckReleased();
}

GameObject::GameObject(GameObject&& other) noexcept
{
    TakeFrom(other);
}

GameObject& GameObject::operator=(GameObject&& other) noexcept
{
    if (this != &other)
    {
        TakeFrom(other);
    }
    return *this;
}

void GameObject::TakeFrom(GameObject& other) noexcept
{
    components = std::exchange(other.components, {});
    name = std::move(other.name);
    self = std::exchange(other.self, {});
    luaRef = std::exchange(other.luaRef, 0);
    destroyed = other.destroyed;
    slot = other.slot;
}

void GameObject::CheckReleased() const
{
    if (luaRef != 0)
    {
        Logger::Log("GameObject", LogLevel::Error, "GameObject's lua handle wasn't cleaned up!");
    }
    for (int32_t type = 0; type < Components::kComponentTypeCount; ++type)
    {
        if (!components[static_cast<size_t>(type)].IsNull())
        {
            Logger::Log("GameObject", LogLevel::Error,
                        std::string("GameObject component ") + ComponentTypeName(type) +
                            " wasn't cleaned up!");
        }
    }
    if (GetTransform().IsNull())
    {
        return;
    }
    const Components::TransformComponent* transform = GetSpace()->transforms.components.Find(GetTransform());
    if (transform != nullptr && !transform->firstChild.IsNull())
    {
        Logger::Log("GameObject", LogLevel::Error, "GameObject's children were not cleaned up");
    }
}

std::string GameObject::Describe() const
{
    return name + " (" + std::to_string(self.handle.Value()) + ")";
}

Space* GameObject::GetSpace() const
{
    if (self.space == nullptr)
    {
        Logger::Raise("GameObject", "GameObject has no space!");
    }
    return self.space;
}

Handle GameObject::EnsureTransform()
{
    const Handle transform = GetTransform();
    return transform.IsNull() ? AddComponent(Components::Transform) : transform;
}

Handle GameObject::AddComponent(int32_t type)
{
    if (!IsComponentType(type))
    {
        Logger::Raise("GameObject", "Tried to create an invalid component type: " + std::to_string(type));
    }
    Handle& handle = components[static_cast<size_t>(type)];
    if (!handle.IsNull())
    {
        Logger::Log("GameObject", LogLevel::Warning,
                    std::string("Tried to add a existing component: ") + ComponentTypeName(type) + " to " +
                        Describe());
        return handle;
    }
    // Create inserts into the component's Slotmap, never into the objects: this object stays put.
    handle = GetSpace()->GetFactory(type)->Create(self);
    return handle;
}

void GameObject::RemoveComponent(int32_t type)
{
    if (!IsComponentType(type))
    {
        Logger::Log("GameObject", LogLevel::Error,
                    "Tried to remove an invalid component type: " + std::to_string(type));
        return;
    }
    Handle& handle = components[static_cast<size_t>(type)];
    if (handle.IsNull())
    {
        Logger::Log("GameObject", LogLevel::Warning,
                    std::string("Tried to remove a non-existent component: ") + ComponentTypeName(type) +
                        " from " + Describe());
        return;
    }
    // Destroy runs before the handle is nulled: a transform leaving its parent's list finds its own handle
    // in slot 0 of this object.
    GetSpace()->GetFactory(type)->Destroy(handle);
    handle = Handle{};
}

bool GameObject::HasComponent(int32_t type) const
{
    if (!IsComponentType(type))
    {
        Logger::Log("GameObject", LogLevel::Error,
                    "Tried to check if a component has an invalid component type: " + std::to_string(type));
        return false;
    }
    return !components[static_cast<size_t>(type)].IsNull();
}

Handle GameObject::GetComponent(int32_t type) const
{
    if (!IsComponentType(type))
    {
        Logger::Raise("GameObject", "Tried to get an invalid component type: " + std::to_string(type));
    }
    return components[static_cast<size_t>(type)];
}

void GameObject::Destroy()
{
    if (destroyed)
    {
        return;
    }
    DestroyAllChildren();
    destroyed = true;
    GetSpace()->AddToDestroyList(*this);
}

void GameObject::DestroyAllChildren()
{
    if (GetTransform().IsNull())
    {
        return;
    }
    // Destroying only marks and appends to the destroy list, so no transform or object moves in this walk.
    Slotmap<Components::TransformComponent>& transforms = GetSpace()->transforms.components;
    const Components::TransformComponent* transform = transforms.Find(GetTransform());
    if (transform == nullptr)
    {
        Logger::Log("GameObject", LogLevel::Error, "GameObject has NULL transform");
        return;
    }
    Handle child = transform->firstChild;
    while (!child.IsNull())
    {
        const Components::TransformComponent* childTransform = transforms.Find(child);
        if (childTransform == nullptr)
        {
            Logger::Log("GameObject", LogLevel::Error, "GameObject has NULL child");
            return;
        }
        const Handle next = childTransform->nextSibling;
        childTransform->owner.Get().Destroy();
        child = next;
    }
}
