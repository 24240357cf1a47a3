#include "Lua/ScriptHandles.h"

#include "Components/ComponentType.h"
#include "Components/Space.h"
#include "Debug/Logger.h"
#include "Lua/LuaSystem.h"
#include "Lua/Stack.h"

#include <array>
#include <string>

namespace Lua
{
namespace
{

struct SpaceUserdata
{
    Space* space;
    uint32_t spaceSerial;
};

struct GameObjectUserdata
{
    GameObjectHandle handle;
    uint32_t spaceSerial;
};

struct ComponentMessages
{
    const char* noSpace;
    const char* gone;
};

// By component type number. TextSprite and Audio keep the texts that scripts have always seen.
constexpr std::array<ComponentMessages, Components::kComponentTypeCount> kMessages = {{
    {"Transform handle has no space", "Transform component is null"},
    {"RigidBody handle has no space", "RigidBody component is null"},
    {"Square handle has no space", "Square component is null"},
    {"Sprite handle has no space", "Sprite component is null"},
    {"Transform handle has no space", "Transform component is null"},
    {"Particle handle has no space", "Particle component is null"},
    {"Audio component handle has no space", "Audio component is null"},
    {"Collider handle has no space", "Collider component is null"},
    {"Script handle has no space", "Script component is null"},
}};

// The userdata at the index if it has the metatable and exactly the size of T; null otherwise.
template <typename T>
T* TestHandle(lua_State* L, int index, const char* name)
{
    void* block = luaL_testudata(L, index, name);
    if (block == nullptr || lua_rawlen(L, index) != sizeof(T))
    {
        return nullptr;
    }
    return static_cast<T*>(block);
}

// The handle at the index, or Lua's type error naming the type. A userdata that carries the metatable but
// not the size was forged with debug.setmetatable.
template <typename T>
T& CheckHandle(lua_State* L, int index, const char* name)
{
    T* handle = TestHandle<T>(L, index, name);
    if (handle == nullptr)
    {
        RaiseTypeError(L, index, name);
    }
    return *handle;
}

bool IsLive(lua_State* L, const Space* space, uint32_t serial)
{
    return space != nullptr && LuaSystem::Of(L).IsLiveSpace(space, serial);
}

// Sets the named metatable from the registry on the value on top. A script may have replaced the entry:
// anything but a table leaves the value without a metatable, so it is refused wherever it is used.
void SetHandleMetatable(lua_State* L, const char* name)
{
    if (lua_getfield(L, LUA_REGISTRYINDEX, name) != LUA_TTABLE)
    {
        lua_pop(L, 1);
        return;
    }
    lua_setmetatable(L, -2);
}

void WarnSpaceEntry(const char* typeName)
{
    Logger::Log("Space", LogLevel::Warning,
                std::string("Space already exists in lua registry table as ") + typeName);
}

template <typename T>
Slotmap<T>& ComponentsOf(Space& space, int32_t type)
{
    return static_cast<Components::ComponentFactory<T>*>(space.factories[static_cast<size_t>(type)])
        ->components;
}

template <typename T>
T& CheckComponent(lua_State* L, int32_t type)
{
    const ComponentMessages& messages = kMessages[static_cast<size_t>(type)];
    const char* name = Components::ComponentTypeName(type);
    const ComponentUserdata& userdata = CheckHandle<ComponentUserdata>(L, 1, name);
    if (userdata.handle.type != type || !IsLive(L, userdata.handle.space, userdata.spaceSerial))
    {
        luaL_error(L, "%s", messages.noSpace);
    }
    T* component = ComponentsOf<T>(*userdata.handle.space, type).Find(userdata.handle.handle);
    if (component == nullptr)
    {
        luaL_error(L, "%s", messages.gone);
    }
    return *component;
}

} // namespace

int RaiseTypeError(lua_State* L, int index, const char* expected)
{
    const char* actual;
    if (luaL_getmetafield(L, index, "__name") == LUA_TSTRING)
    {
        actual = lua_tostring(L, -1);
    }
    else if (lua_type(L, index) == LUA_TLIGHTUSERDATA)
    {
        actual = "light userdata";
    }
    else
    {
        actual = luaL_typename(L, index);
    }
    return luaL_argerror(L, index, lua_pushfstring(L, "%s expected, got %s", expected, actual));
}

void PushSpace(Space* space, lua_State* L)
{
    EnsureStack(L, 23);
    const int type = lua_rawgetp(L, LUA_REGISTRYINDEX, space);
    const SpaceUserdata* existing = TestHandle<SpaceUserdata>(L, -1, "Space");
    if (existing != nullptr && existing->space == space && IsLive(L, space, existing->spaceSerial))
    {
        return;
    }
    if (type != LUA_TNIL)
    {
        WarnSpaceEntry(lua_typename(L, type));
    }
    lua_pop(L, 1);
    const uint32_t serial = LuaSystem::Of(L).SpaceSerial(space);
    auto* userdata = static_cast<SpaceUserdata*>(lua_newuserdata(L, sizeof(SpaceUserdata)));
    *userdata = SpaceUserdata{space, serial};
    SetHandleMetatable(L, "Space");
    lua_pushvalue(L, -1);
    lua_rawsetp(L, LUA_REGISTRYINDEX, space);
}

void PushGameObject(GameObject& object, lua_State* L)
{
    EnsureStack(L, 23);
    // Allocation can run finalizers, which may move objects: keep the handle, not the reference.
    const GameObjectHandle self = object.self;
    const int32_t oldRef = object.luaRef;
    if (oldRef > 0)
    {
        lua_rawgeti(L, LUA_REGISTRYINDEX, oldRef);
        const GameObjectUserdata* existing = TestHandle<GameObjectUserdata>(L, -1, "GameObject");
        if (existing != nullptr && existing->handle.space == self.space &&
            existing->handle.handle == self.handle)
        {
            return;
        }
        // A script replaced the entry: the reference is ours to give up, and a fresh handle takes over.
        lua_pop(L, 1);
        luaL_unref(L, LUA_REGISTRYINDEX, oldRef);
        object.luaRef = 0;
    }
    const uint32_t serial = LuaSystem::Of(L).SpaceSerial(self.space);
    auto* userdata = static_cast<GameObjectUserdata*>(lua_newuserdata(L, sizeof(GameObjectUserdata)));
    *userdata = GameObjectUserdata{self, serial};
    SetHandleMetatable(L, "GameObject");
    lua_pushvalue(L, -1);
    const int ref = luaL_ref(L, LUA_REGISTRYINDEX);
    GameObject* current = self.space->objects.Find(self.handle);
    if (current == nullptr)
    {
        luaL_unref(L, LUA_REGISTRYINDEX, ref);
        return;
    }
    current->luaRef = ref;
}

void PushComponent(lua_State* L, Space* space, int32_t type, Handle handle)
{
    EnsureStack(L, 21);
    if (space == nullptr)
    {
        Logger::Raise("Lua", "Tried to push a component with a NULL space");
    }
    if (handle.IsNull() || !Components::IsComponentType(type))
    {
        lua_pushnil(L);
        return;
    }
    const uint32_t serial = LuaSystem::Of(L).SpaceSerial(space);
    auto* userdata = static_cast<ComponentUserdata*>(lua_newuserdata(L, sizeof(ComponentUserdata)));
    *userdata = ComponentUserdata{ComponentHandle{space, handle, type}, serial};
    SetHandleMetatable(L, Components::ComponentTypeName(type));
}

void PushStringArray(lua_State* L, const char* const* strings, int count)
{
    EnsureStack(L, 22);
    lua_createtable(L, count, 0);
    for (int i = 0; i < count; ++i)
    {
        lua_pushstring(L, strings[i]);
        lua_rawseti(L, -2, i + 1);
    }
}

GameObjectHandle ToGameObject(lua_State* L, int index)
{
    EnsureStack(L, 24);
    const GameObjectUserdata& userdata = CheckHandle<GameObjectUserdata>(L, index, "GameObject");
    const GameObjectHandle handle = userdata.handle;
    if (!IsLive(L, handle.space, userdata.spaceSerial) ||
        handle.space->objects.Find(handle.handle) == nullptr)
    {
        luaL_argerror(L, index, "GameObject or space is null");
    }
    return handle;
}

bool OptBoolean(lua_State* L, int index, bool fallback)
{
    if (lua_isnone(L, index))
    {
        return fallback;
    }
    luaL_checktype(L, index, LUA_TBOOLEAN);
    return lua_toboolean(L, index) != 0;
}

Space* ToSpace(lua_State* L, int index)
{
    const SpaceUserdata* userdata = TestHandle<SpaceUserdata>(L, index, "Space");
    return userdata != nullptr && IsLive(L, userdata->space, userdata->spaceSerial) ? userdata->space
                                                                                    : nullptr;
}

Space& CheckSpace(lua_State* L)
{
    const SpaceUserdata& userdata = CheckHandle<SpaceUserdata>(L, 1, "Space");
    if (!IsLive(L, userdata.space, userdata.spaceSerial))
    {
        luaL_error(L, "Space was NULL!");
    }
    return *userdata.space;
}

Components::TransformComponent& CheckTransform(lua_State* L)
{
    return CheckComponent<Components::TransformComponent>(L, Components::Transform);
}

Components::RigidBodyComponent& CheckRigidBody(lua_State* L)
{
    return CheckComponent<Components::RigidBodyComponent>(L, Components::RigidBody);
}

Components::Graphics::SquareComponent& CheckSquare(lua_State* L)
{
    return CheckComponent<Components::Graphics::SquareComponent>(L, Components::Square);
}

Components::Graphics::SpriteComponent& CheckSprite(lua_State* L)
{
    return CheckComponent<Components::Graphics::SpriteComponent>(L, Components::Sprite);
}

Components::Graphics::TextSpriteComponent& CheckTextSprite(lua_State* L)
{
    return CheckComponent<Components::Graphics::TextSpriteComponent>(L, Components::TextSprite);
}

Components::Graphics::ParticleComponent& CheckParticle(lua_State* L)
{
    return CheckComponent<Components::Graphics::ParticleComponent>(L, Components::Particle);
}

Components::AudioComponent& CheckAudio(lua_State* L)
{
    return CheckComponent<Components::AudioComponent>(L, Components::Audio);
}

Components::ColliderComponent& CheckCollider(lua_State* L)
{
    return CheckComponent<Components::ColliderComponent>(L, Components::Collider);
}

Components::ScriptComponent& CheckScript(lua_State* L)
{
    Components::ScriptComponent& script = CheckComponent<Components::ScriptComponent>(L, Components::Script);
    if (script.destroyed)
    {
        luaL_error(L, "Script component has been removed");
    }
    return script;
}

const ComponentUserdata* TestComponentHandle(lua_State* L, int index, int32_t type)
{
    const ComponentUserdata* userdata =
        TestHandle<ComponentUserdata>(L, index, Components::ComponentTypeName(type));
    if (userdata == nullptr || userdata->handle.type != type)
    {
        return nullptr;
    }
    return userdata;
}

Components::ScriptComponent* ResolveScript(lua_State* L, const ComponentUserdata& userdata)
{
    const ComponentHandle& handle = userdata.handle;
    if (handle.type != Components::Script || !IsLive(L, handle.space, userdata.spaceSerial))
    {
        return nullptr;
    }
    return handle.space->scripts.components.Find(handle.handle);
}

void RegisterMethodType(lua_State* L, const char* name, const luaL_Reg* functions, int upvalues)
{
    EnsureStack(L, 22);
    luaL_newmetatable(L, name);
    lua_insert(L, -upvalues - 1);
    luaL_setfuncs(L, functions, upvalues);
    lua_pushvalue(L, -1);
    lua_setfield(L, -2, "__index");
    lua_pop(L, 1);
}

void ForgetSpace(lua_State* L, Space* space)
{
    EnsureStack(L, 21);
    lua_pushnil(L);
    lua_rawsetp(L, LUA_REGISTRYINDEX, space);
}

} // namespace Lua
