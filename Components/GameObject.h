#pragma once

// The entity of the engine: a name and one handle per component type. Its place in the world and its
// children come from its transform. Destruction is split in two: Destroy marks the object (children first)
// and puts it on its space's destroy list; the space deletes it at the end of the frame, so running scripts
// and system loops see a stable world. The destructor only checks that this flow released everything.

#include "Components/ComponentType.h"
#include "Components/GameObjectHandle.h"

#include <array>
#include <cstdint>
#include <string>

class GameObject
{
public:
    // The name is "Object " and the handle given here, which is the null handle for every new object:
    // the real one is known only after insertion.
    explicit GameObject(GameObjectHandle handle);
    ~GameObject();
    // Moving empties the source, so its destructor's checks pass silently when the Slotmap reallocates.
    GameObject(GameObject&& other) noexcept;
    GameObject& operator=(GameObject&& other) noexcept;
    GameObject(const GameObject&) = delete;
    GameObject& operator=(const GameObject&) = delete;

    // Raises if the object has no space.
    Space* GetSpace() const;

    // Raises on a type outside 0..8; an existing component is returned with a Warning.
    Handle AddComponent(int32_t type);
    // Flags the component for the sweep and forgets its handle. Bad types and missing components are
    // logged, not raised.
    void RemoveComponent(int32_t type);
    // False with an Error line on a type outside 0..8.
    bool HasComponent(int32_t type) const;
    // Null if the object has no such component; raises on a type outside 0..8.
    Handle GetComponent(int32_t type) const;
    Handle GetTransform() const { return components[Components::Transform]; }
    // The object's transform, added silently if it has none, for components that stand in the world.
    Handle EnsureTransform();

    // Marks the object and its descendants for deletion at the end of the frame, deepest first.
    void Destroy();
    // Destroys the objects of all child transforms.
    void DestroyAllChildren();

    std::array<Handle, Components::kComponentTypeCount> components;
    std::string name;
    GameObjectHandle self;
    // Registry reference to the object's script userdata, 0 while there is none.
    int32_t luaRef = 0;
    bool destroyed = false;
    uint32_t slot = 0;

private:
    void TakeFrom(GameObject& other) noexcept;
    // " (" and the object's own handle ")", for messages.
    std::string Describe() const;
    void CheckReleased() const;
};
