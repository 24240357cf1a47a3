#pragma once

// All components of one type in one space, by value in a dense array that its system walks in order.
// Destruction during a frame only flags; the sweep happens at the end of a frame in which an object of the
// space was deleted.

#include "Components/IComponentFactory.h"
#include "Components/Slotmap.h"
#include "Debug/Logger.h"

#include <type_traits>

namespace Components
{

class TransformComponent;

template <typename T>
class ComponentFactory final : public IComponentFactory
{
public:
    Handle Create(GameObjectHandle owner) override { return components.Insert(owner); }

    uint32_t Count() const override { return components.size(); }

    void Destroy(Handle handle) override
    {
        T* component = components.Find(handle);
        if (component == nullptr)
        {
            Logger::Log("Component Factory", LogLevel::Warning, "Tried to destroy a NULL component");
            return;
        }
        // A flagged transform must not linger in a living parent's child list.
        if constexpr (std::is_same_v<T, TransformComponent>)
        {
            component->ClearParent(true);
        }
        component->destroyed = true;
    }

    uint32_t DeleteDestroyed() override { return components.EraseFlagged(); }

    Slotmap<T> components;
};

} // namespace Components
