#include "Lua/GameObjectScript.h"

#include "Components/ComponentType.h"
#include "Components/Space.h"
#include "Debug/Logger.h"
#include "Lua/ScriptHandles.h"
#include "Lua/Stack.h"
#include "Lua/TransformScript.h"

#include <cstring>

namespace Lua
{
namespace
{

// Objects move when their Slotmap grows, and a script run by a push may create objects: every use
// resolves the handle anew.
GameObject& Resolve(GameObjectHandle handle)
{
    return *handle.space->objects.Find(handle.handle);
}

// The component type named by argument 2, or the error built from the format and the name.
int32_t CheckComponentName(lua_State* L, const char* format)
{
    const int32_t type = ComponentTypeAt(L, 2);
    if (type < 0)
    {
        luaL_error(L, format, luaL_tolstring(L, 2, nullptr));
    }
    return type;
}

int Destroy(lua_State* L)
{
    GameObject& object = Resolve(ToGameObject(L, 1));
    object.DestroyAllChildren();
    object.Destroy();
    return 0;
}

int DestroyAllChildren(lua_State* L)
{
    Resolve(ToGameObject(L, 1)).DestroyAllChildren();
    return 0;
}

int HasComponent(lua_State* L)
{
    const GameObjectHandle self = ToGameObject(L, 1);
    const int32_t type = CheckComponentName(L, "Tried to check a non-existant component %s");
    lua_pushboolean(L, !Resolve(self).GetComponent(type).IsNull());
    return 1;
}

int GetComponent(lua_State* L)
{
    const GameObjectHandle self = ToGameObject(L, 1);
    const int32_t type = CheckComponentName(L, "Tried to get a non-existant component %s");
    PushComponent(L, self.space, type, Resolve(self).GetComponent(type));
    return 1;
}

int GetAllComponents(lua_State* L)
{
    const GameObjectHandle self = ToGameObject(L, 1);
    EnsureStack(L, 23);
    lua_newtable(L);
    for (int32_t type = 0; type < Components::kComponentTypeCount; ++type)
    {
        const Handle component = Resolve(self).GetComponent(type);
        if (!component.IsNull())
        {
            PushComponent(L, self.space, type, component);
            lua_setfield(L, -2, Components::ComponentTypeName(type));
        }
    }
    return 1;
}

int AddComponent(lua_State* L)
{
    const GameObjectHandle self = ToGameObject(L, 1);
    const int32_t type = CheckComponentName(L, "Tried to add a non-existant component %s");
    if (!Resolve(self).GetComponent(type).IsNull())
    {
        return luaL_error(L, "Object already has component %s!", Components::ComponentTypeName(type));
    }
    PushComponent(L, self.space, type, Resolve(self).AddComponent(type));
    return 1;
}

int RemoveComponent(lua_State* L)
{
    const GameObjectHandle self = ToGameObject(L, 1);
    const int32_t type = CheckComponentName(L, "Tried to remove a non-existant component %s");
    if (Resolve(self).GetComponent(type).IsNull())
    {
        return luaL_error(L, "Object does not have component %s!", Components::ComponentTypeName(type));
    }
    Resolve(self).RemoveComponent(type);
    return 0;
}

// The object's transform, or null if it has none or it doesn't resolve.
Components::TransformComponent* TransformOf(GameObjectHandle self)
{
    return self.space->transforms.components.Find(Resolve(self).GetTransform());
}

// +1: the owner of the parent transform, or nil.
void PushParent(lua_State* L, GameObjectHandle self)
{
    const Components::TransformComponent* transform = TransformOf(self);
    const Components::TransformComponent* parent =
        transform != nullptr ? self.space->transforms.components.Find(transform->parent) : nullptr;
    GameObject* owner = parent != nullptr ? self.space->objects.Find(parent->owner.handle) : nullptr;
    if (owner == nullptr)
    {
        lua_pushnil(L);
        return;
    }
    PushGameObject(*owner, L);
}

int GetParent(lua_State* L)
{
    PushParent(L, ToGameObject(L, 1));
    return 1;
}

// Gives the object a transform if it lacks one, which stays even if the transform's SetParent refuses.
int SetParent(lua_State* L)
{
    const GameObjectHandle self = ToGameObject(L, 1);
    Handle transform = Resolve(self).GetTransform();
    if (transform.IsNull())
    {
        transform = Resolve(self).AddComponent(Components::Transform);
    }
    // The transform's handle takes the object's place; the other arguments stay as given.
    PushComponent(L, self.space, Components::Transform, transform);
    lua_replace(L, 1);
    return SetTransformParent(L);
}

int ClearParent(lua_State* L)
{
    const GameObjectHandle self = ToGameObject(L, 1);
    const bool keepLocal = OptBoolean(L, 2, false);
    Components::TransformComponent* transform = TransformOf(self);
    if (transform != nullptr)
    {
        transform->ClearParent(keepLocal);
    }
    return 0;
}

int GetChildren(lua_State* L)
{
    const GameObjectHandle self = ToGameObject(L, 1);
    EnsureStack(L, 23);
    lua_newtable(L);
    if (Resolve(self).GetTransform().IsNull())
    {
        return 1;
    }
    const Components::TransformComponent* transform = TransformOf(self);
    if (transform == nullptr)
    {
        Logger::Log("Transform", LogLevel::Warning, "GameObject had a nil transform");
        return 1;
    }
    lua_Integer index = 0;
    for (Handle child = transform->firstChild; !child.IsNull();)
    {
        const Components::TransformComponent* childTransform = self.space->transforms.components.Find(child);
        GameObject* owner =
            childTransform != nullptr ? self.space->objects.Find(childTransform->owner.handle) : nullptr;
        if (owner == nullptr)
        {
            Logger::Log("Transform", LogLevel::Warning, "Transform component has a NULL child");
            return 1;
        }
        child = childTransform->nextSibling;
        PushGameObject(*owner, L);
        lua_rawseti(L, -2, ++index);
    }
    return 1;
}

int ToString(lua_State* L)
{
    const GameObject& object = Resolve(ToGameObject(L, 1));
    lua_pushlstring(L, object.name.data(), object.name.size());
    return 1;
}

// Pushes the first child, in list order, whose name is the key; false if there is none. A link that
// doesn't resolve ends the search.
bool PushChildNamed(lua_State* L, GameObjectHandle self, const char* name)
{
    const Components::TransformComponent* transform = TransformOf(self);
    Handle child = transform != nullptr ? transform->firstChild : Handle{};
    while (!child.IsNull())
    {
        const Components::TransformComponent* childTransform = self.space->transforms.components.Find(child);
        GameObject* owner =
            childTransform != nullptr ? self.space->objects.Find(childTransform->owner.handle) : nullptr;
        if (owner == nullptr)
        {
            return false;
        }
        if (owner->name == name)
        {
            PushGameObject(*owner, L);
            return true;
        }
        child = childTransform->nextSibling;
    }
    return false;
}

int Index(lua_State* L);
int NewIndex(lua_State* L);

// The methods, found by name without resolving the object: reading one from a stale handle works.
constexpr luaL_Reg kMethods[] = {
    {"Destroy", Destroy},
    {"DestroyAllChildren", DestroyAllChildren},
    {"HasComponent", HasComponent},
    {"GetComponent", GetComponent},
    {"GetAllComponents", GetAllComponents},
    {"AddComponent", AddComponent},
    {"RemoveComponent", RemoveComponent},
    {"GetParent", GetParent},
    {"SetParent", SetParent},
    {"ClearParent", ClearParent},
    {"GetChildren", GetChildren},
    {"__index", Index},
    {"__newindex", NewIndex},
    {"__tostring", ToString},
    {nullptr, nullptr},
};

int Index(lua_State* L)
{
    const char* key = luaL_checkstring(L, 2);
    for (const luaL_Reg* method = kMethods; method->name != nullptr; ++method)
    {
        if (std::strcmp(method->name, key) == 0)
        {
            lua_pushcfunction(L, method->func);
            return 1;
        }
    }
    const GameObjectHandle self = ToGameObject(L, 1);
    if (std::strcmp(key, "Name") == 0)
    {
        const GameObject& object = Resolve(self);
        lua_pushlstring(L, object.name.data(), object.name.size());
        return 1;
    }
    if (std::strcmp(key, "Parent") == 0)
    {
        PushParent(L, self);
        return 1;
    }
    const int32_t type = ComponentTypeAt(L, 2);
    if (type >= 0)
    {
        PushComponent(L, self.space, type, Resolve(self).GetComponent(type));
        return 1;
    }
    if (PushChildNamed(L, self, key))
    {
        return 1;
    }
    return luaL_error(L, "GameObject has no member or child called %s", key);
}

// Scripts can't keep data on an object: only its name can be written.
int NewIndex(lua_State* L)
{
    const GameObjectHandle self = ToGameObject(L, 1);
    const char* key = luaL_checkstring(L, 2);
    if (std::strcmp(key, "Name") != 0)
    {
        return luaL_error(L, "Tried to assign to a GameObject (%s.%s)", Resolve(self).name.c_str(), key);
    }
    const char* name = luaL_checkstring(L, 3);
    Resolve(self).name = name;
    return 0;
}

} // namespace

int32_t ComponentTypeAt(lua_State* L, int index)
{
    if (lua_type(L, index) != LUA_TSTRING)
    {
        return -1;
    }
    const char* name = lua_tostring(L, index);
    for (int32_t type = 0; type < Components::kComponentTypeCount; ++type)
    {
        if (std::strcmp(Components::ComponentTypeName(type), name) == 0)
        {
            return type;
        }
    }
    return -1;
}

void RegisterGameObjectType(lua_State* L)
{
    EnsureStack(L, 22);
    luaL_newmetatable(L, "GameObject");
    luaL_setfuncs(L, kMethods, 0);
    lua_pop(L, 1);
}

} // namespace Lua
