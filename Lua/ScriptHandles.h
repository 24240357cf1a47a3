#pragma once

// How engine objects appear in Lua. A script never holds a pointer: it holds a full userdata with a handle
// that every bound function resolves anew. Three kinds exist, each under the metatable of its name:
//  - Space: one per Space, kept in the registry under a light userdata key of the Space's address;
//  - GameObject: one per object, made on first push and kept alive by the object's luaRef;
//  - component: a new userdata on every push, under the metatable named by the component type.
// Each userdata also carries the serial that the Lua system gave its Space, so a handle into a destroyed
// Space is refused even when a new Space takes the same address. Scripts hold the registry and the debug
// library, so everything read back is checked: the metatable, the userdata's size, and the Space's life.
//
// The functions here raise Lua errors, which are longjmps: they keep no C++ object with a destructor alive
// across a raising call, and neither may their callers.

#include "Components/GameObjectHandle.h"

#include <cstdint>
#include <lua.hpp>

class Space;

namespace Components
{
class TransformComponent;
class RigidBodyComponent;
class AudioComponent;
class ColliderComponent;
class ScriptComponent;
namespace Graphics
{
class SquareComponent;
class SpriteComponent;
class TextSpriteComponent;
class ParticleComponent;
} // namespace Graphics
} // namespace Components

namespace Lua
{

// +1: the Space's one handle, made on first push.
void PushSpace(Space* space, lua_State* L);
// +1: the object's one handle, made on first push and kept by its luaRef.
void PushGameObject(GameObject& object, lua_State* L);
// +1: a new component handle, or nil for the null handle or a type outside 0..8. Raises a Fatal for a
// null Space.
void PushComponent(lua_State* L, Space* space, int32_t type, Handle handle);
// +1: a new table holding the strings at 1..count.
void PushStringArray(lua_State* L, const char* const* strings, int count);

// The object at the index: a type error naming "GameObject" unless it is a GameObject handle, and
// "GameObject or space is null" unless it resolves.
GameObjectHandle ToGameObject(lua_State* L, int index);
// The value at the index as a boolean; beyond the top of the stack the default. Any other value, an
// explicit nil too, is a type error naming "boolean".
bool OptBoolean(lua_State* L, int index, bool fallback);

// The Space of the Space handle at the index, or null if the value isn't one or its Space has gone.
// Raises nothing.
Space* ToSpace(lua_State* L, int index);

// Argument 1 of a Space function: a Space handle of a live Space, else "Space was NULL!".
Space& CheckSpace(lua_State* L);

// Argument 1 of a component function, resolved to the live component: a type error unless it is a handle
// of the type, then the type's "has no space" or "is null" text. A Script handle is also refused once the
// component has been removed.
Components::TransformComponent& CheckTransform(lua_State* L);
Components::RigidBodyComponent& CheckRigidBody(lua_State* L);
Components::Graphics::SquareComponent& CheckSquare(lua_State* L);
Components::Graphics::SpriteComponent& CheckSprite(lua_State* L);
Components::Graphics::TextSpriteComponent& CheckTextSprite(lua_State* L);
Components::Graphics::ParticleComponent& CheckParticle(lua_State* L);
Components::AudioComponent& CheckAudio(lua_State* L);
Components::ColliderComponent& CheckCollider(lua_State* L);
Components::ScriptComponent& CheckScript(lua_State* L);

// What a component userdata holds.
struct ComponentUserdata
{
    ComponentHandle handle;
    uint32_t spaceSerial;
};

// The component userdata at the index, or null if the value isn't a well-formed handle of the type.
// Resolves nothing.
const ComponentUserdata* TestComponentHandle(lua_State* L, int index, int32_t type);
// The Script component that the handle names, or null if its Space has gone or it doesn't resolve.
Components::ScriptComponent* ResolveScript(lua_State* L, const ComponentUserdata& userdata);

// Lua's own "bad argument" text for a value of the wrong type, with the type name taken from __name.
int RaiseTypeError(lua_State* L, int index, const char* expected);

// Makes the metatable of a handle type whose methods are found through the metatable itself. The functions
// share the given number of upvalues, taken from the top of the stack.
void RegisterMethodType(lua_State* L, const char* name, const luaL_Reg* functions, int upvalues = 0);

// Drops the Space's registry entry: its handle stops resolving for good.
void ForgetSpace(lua_State* L, Space* space);

} // namespace Lua
