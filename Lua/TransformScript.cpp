#include "Lua/TransformScript.h"

#include "Components/ComponentType.h"
#include "Components/Space.h"
#include "Lua/ScriptHandles.h"
#include "Lua/Stack.h"

#include <array>
#include <cmath>

using Components::TransformComponent;

namespace Lua
{
namespace
{

constexpr std::array<const char*, 3> kMembers = {"Position", "Rotation", "Scale"};

// Rotations are kept within one turn either side of zero: fmod keeps the sign, done in double precision
// before the narrowing.
float WrapRotation(lua_Number radians)
{
    return static_cast<float>(std::fmod(radians, 6.28318530717958));
}

// The setters resolve the transform before they read their numbers and keep the reference: reading a
// number, from a numeric string too, allocates nothing, so no collector step or finalizer can run in
// between and move the component.

// The handle of argument 1; only valid after CheckTransform accepted it.
const ComponentUserdata& SelfOf(lua_State* L)
{
    return *TestComponentHandle(L, 1, Components::Transform);
}

int GetAllMembers(lua_State* L)
{
    CheckTransform(L);
    PushStringArray(L, kMembers.data(), static_cast<int>(kMembers.size()));
    return 1;
}

int GetOwner(lua_State* L)
{
    const GameObjectHandle owner = CheckTransform(L).owner;
    GameObject* object = owner.space != nullptr ? owner.space->objects.Find(owner.handle) : nullptr;
    if (object == nullptr)
    {
        lua_pushnil(L);
        return 1;
    }
    PushGameObject(*object, L);
    return 1;
}

// z is given when a fourth value is on the stack, so an explicit nil there is refused.
bool ReadZ(lua_State* L, int32_t& z)
{
    if (lua_gettop(L) < 4)
    {
        return false;
    }
    z = static_cast<int32_t>(luaL_checkinteger(L, 4));
    return true;
}

int SetPosition(lua_State* L)
{
    TransformComponent& transform = CheckTransform(L);
    const Vec2 position{static_cast<float>(luaL_checknumber(L, 2)),
                        static_cast<float>(luaL_checknumber(L, 3))};
    int32_t z = 0;
    const bool hasZ = ReadZ(L, z);
    transform.position = position;
    if (hasZ)
    {
        transform.z = z;
    }
    return 0;
}

int GetPosition(lua_State* L)
{
    const TransformComponent& transform = CheckTransform(L);
    lua_pushnumber(L, transform.position.x);
    lua_pushnumber(L, transform.position.y);
    lua_pushinteger(L, transform.z);
    return 3;
}

int SetWorldPosition(lua_State* L)
{
    TransformComponent& transform = CheckTransform(L);
    const Vec2 position{static_cast<float>(luaL_checknumber(L, 2)),
                        static_cast<float>(luaL_checknumber(L, 3))};
    int32_t z = 0;
    const bool hasZ = ReadZ(L, z);
    transform.SetWorldPosition(position);
    if (hasZ)
    {
        transform.z = z;
    }
    return 0;
}

int GetWorldPosition(lua_State* L)
{
    const TransformComponent& transform = CheckTransform(L);
    const Vec2 position = transform.GetWorldPosition();
    lua_pushnumber(L, position.x);
    lua_pushnumber(L, position.y);
    lua_pushinteger(L, transform.z);
    return 3;
}

int SetZ(lua_State* L)
{
    TransformComponent& transform = CheckTransform(L);
    transform.z = static_cast<int32_t>(luaL_checkinteger(L, 2));
    return 0;
}

int GetZ(lua_State* L)
{
    lua_pushinteger(L, CheckTransform(L).z);
    return 1;
}

int SetRotation(lua_State* L)
{
    TransformComponent& transform = CheckTransform(L);
    transform.rotation = WrapRotation(luaL_checknumber(L, 2));
    return 0;
}

int GetRotation(lua_State* L)
{
    lua_pushnumber(L, CheckTransform(L).rotation);
    return 1;
}

int SetWorldRotation(lua_State* L)
{
    TransformComponent& transform = CheckTransform(L);
    transform.SetWorldRotation(WrapRotation(luaL_checknumber(L, 2)));
    return 0;
}

int GetWorldRotation(lua_State* L)
{
    lua_pushnumber(L, CheckTransform(L).GetWorldRotation());
    return 1;
}

int SetScale(lua_State* L)
{
    TransformComponent& transform = CheckTransform(L);
    transform.scale = {static_cast<float>(luaL_checknumber(L, 2)),
                       static_cast<float>(luaL_checknumber(L, 3))};
    return 0;
}

int GetScale(lua_State* L)
{
    const TransformComponent& transform = CheckTransform(L);
    lua_pushnumber(L, transform.scale.x);
    lua_pushnumber(L, transform.scale.y);
    return 2;
}

int GetParent(lua_State* L)
{
    const Handle parent = CheckTransform(L).parent;
    PushComponent(L, SelfOf(L).handle.space, Components::Transform, parent);
    return 1;
}

// The new parent named by argument 2, which must live in the Space of argument 1; raises otherwise.
Handle CheckParentTransform(lua_State* L)
{
    const ComponentUserdata& self = SelfOf(L);
    const ComponentUserdata* transform = TestComponentHandle(L, 2, Components::Transform);
    if (transform != nullptr)
    {
        if (transform->handle.space != self.handle.space || transform->spaceSerial != self.spaceSerial)
        {
            luaL_argerror(L, 2, "Parent transform must have same space");
        }
        if (self.handle.space->transforms.components.Find(transform->handle.handle) == nullptr)
        {
            luaL_argerror(L, 2, "Parent transform is null");
        }
        return transform->handle.handle;
    }
    if (luaL_testudata(L, 2, "GameObject") == nullptr)
    {
        luaL_argerror(L, 2, "Transform, GameObject, or nil expected");
    }
    const GameObjectHandle object = ToGameObject(L, 2);
    if (object.space != self.handle.space)
    {
        luaL_argerror(L, 2, "Parent GameObject transform must have same space");
    }
    const Handle parent = object.space->objects.Find(object.handle)->GetTransform();
    if (parent.IsNull())
    {
        luaL_argerror(L, 2, "Parent GameObject does not have a transform");
    }
    return parent;
}

int ClearParent(lua_State* L)
{
    CheckTransform(L);
    const bool keepLocal = OptBoolean(L, 2, false);
    CheckTransform(L).ClearParent(keepLocal);
    return 0;
}

// Newest child first: children are attached at the front of the list.
int GetChildren(lua_State* L)
{
    Handle child = CheckTransform(L).firstChild;
    Space* space = SelfOf(L).handle.space;
    EnsureStack(L, 23);
    lua_newtable(L);
    lua_Integer index = 0;
    while (!child.IsNull())
    {
        const TransformComponent* transform = space->transforms.components.Find(child);
        if (transform == nullptr)
        {
            return luaL_error(L, "Transform component has a NULL child");
        }
        const Handle next = transform->nextSibling;
        PushComponent(L, space, Components::Transform, child);
        lua_rawseti(L, -2, ++index);
        child = next;
    }
    return 1;
}

int Equal(lua_State* L)
{
    const ComponentUserdata* first = TestComponentHandle(L, 1, Components::Transform);
    if (first == nullptr)
    {
        return RaiseTypeError(L, 1, "Transform");
    }
    const ComponentUserdata* second = TestComponentHandle(L, 2, Components::Transform);
    if (second == nullptr)
    {
        return RaiseTypeError(L, 2, "Transform");
    }
    lua_pushboolean(L, first->handle.space == second->handle.space &&
                           first->handle.handle == second->handle.handle);
    return 1;
}

// Registered in this order; GetAllMembers lists what level tables usually set.
constexpr luaL_Reg kFunctions[] = {
    {"GetAllMembers", GetAllMembers},
    {"GetOwner", GetOwner},
    {"SetLocalPosition", SetPosition},
    {"SetPosition", SetPosition},
    {"GetLocalPosition", GetPosition},
    {"GetPosition", GetPosition},
    {"SetWorldPosition", SetWorldPosition},
    {"GetWorldPosition", GetWorldPosition},
    {"SetZ", SetZ},
    {"GetZ", GetZ},
    {"SetLocalRotation", SetRotation},
    {"SetRotation", SetRotation},
    {"GetLocalRotation", GetRotation},
    {"GetRotation", GetRotation},
    {"SetWorldRotation", SetWorldRotation},
    {"GetWorldRotation", GetWorldRotation},
    {"SetScale", SetScale},
    {"GetScale", GetScale},
    {"GetParent", GetParent},
    {"SetParent", SetTransformParent},
    {"ClearParent", ClearParent},
    {"GetChildren", GetChildren},
    {"__eq", Equal},
    {nullptr, nullptr},
};

} // namespace

int SetTransformParent(lua_State* L)
{
    CheckTransform(L);
    const bool keepLocal = OptBoolean(L, 3, false);
    if (lua_isnoneornil(L, 2))
    {
        CheckTransform(L).ClearParent(keepLocal);
        return 0;
    }
    const Handle parent = CheckParentTransform(L);
    TransformComponent& transform = CheckTransform(L);
    if (transform.IsDescendant(parent))
    {
        return luaL_argerror(L, 2, "Cannot set a transform's parent to a descendant");
    }
    transform.SetParent(parent, keepLocal);
    return 0;
}

void RegisterTransformType(lua_State* L)
{
    RegisterMethodType(L, "Transform", kFunctions);
}

} // namespace Lua
