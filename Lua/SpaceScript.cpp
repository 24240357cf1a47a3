#include "Lua/SpaceScript.h"

#include "Components/Space.h"
#include "Lua/LevelLoader.h"
#include "Lua/ScriptHandles.h"
#include "Lua/Stack.h"

#include <cstring>

namespace Lua
{
namespace
{

bool IsVisible(const GameObject& object, const char* name)
{
    return !object.destroyed && (name == nullptr || object.name == name);
}

// +1: the objects that aren't marked, in dense order, restricted to a name unless it is null. Pushing
// calls no script, so the Slotmap can't change during the walk.
void PushObjects(lua_State* L, Space& space, const char* name)
{
    EnsureStack(L, 23);
    lua_createtable(L, static_cast<int>(space.objects.size()), 0);
    lua_Integer index = 0;
    for (uint32_t position = 0; position < space.objects.size(); ++position)
    {
        GameObject& object = space.objects[position];
        if (IsVisible(object, name))
        {
            PushGameObject(object, L);
            lua_rawseti(L, -2, ++index);
        }
    }
}

// Pushes the first visible object of the name; false, with nothing pushed, if there is none.
bool PushFirstObject(lua_State* L, Space& space, const char* name)
{
    for (uint32_t position = 0; position < space.objects.size(); ++position)
    {
        GameObject& object = space.objects[position];
        if (IsVisible(object, name))
        {
            PushGameObject(object, L);
            return true;
        }
    }
    return false;
}

int AllObjects(lua_State* L)
{
    PushObjects(L, CheckSpace(L), nullptr);
    return 1;
}

int AllObjectsWithName(lua_State* L)
{
    Space& space = CheckSpace(L);
    PushObjects(L, space, luaL_checkstring(L, 2));
    return 1;
}

int FindFirstObject(lua_State* L)
{
    Space& space = CheckSpace(L);
    return PushFirstObject(L, space, luaL_checkstring(L, 2)) ? 1 : 0;
}

int LoadLevel(lua_State* L)
{
    Space& space = CheckSpace(L);
    space.ScheduleLevel(luaL_checkstring(L, 2));
    return 0;
}

int ReloadLevel(lua_State* L)
{
    CheckSpace(L).levelScheduled = true;
    return 0;
}

int Pause(lua_State* L)
{
    Space& space = CheckSpace(L);
    space.paused = OptBoolean(L, 2, true);
    return 0;
}

int Unpause(lua_State* L)
{
    Space& space = CheckSpace(L);
    space.paused = !OptBoolean(L, 2, true);
    return 0;
}

int CreateChildSpace(lua_State* L)
{
    Space& space = CheckSpace(L);
    const char* level = luaL_optstring(L, 2, nullptr);
    Space& child = space.CreateChild();
    if (level != nullptr)
    {
        child.ScheduleLevel(level);
    }
    PushSpace(&child, L);
    return 1;
}

int GetParentSpace(lua_State* L)
{
    Space& space = CheckSpace(L);
    if (space.parent == nullptr)
    {
        lua_pushnil(L);
        return 1;
    }
    PushSpace(space.parent, L);
    return 1;
}

// Newest child first, the order of the child list.
int GetChildSpaces(lua_State* L)
{
    Space& space = CheckSpace(L);
    EnsureStack(L, 23);
    lua_newtable(L);
    lua_Integer index = 0;
    for (Space* child = space.firstChild.get(); child != nullptr; child = child->nextSibling.get())
    {
        PushSpace(child, L);
        lua_rawseti(L, -2, ++index);
    }
    return 1;
}

int Destroy(lua_State* L)
{
    Space& space = CheckSpace(L);
    if (space.parent == nullptr)
    {
        return luaL_argerror(L, 1, "Cannot destroy top space");
    }
    space.destroyRequested = true;
    return 0;
}

int DestroyAllChildSpaces(lua_State* L)
{
    Space& space = CheckSpace(L);
    for (Space* child = space.firstChild.get(); child != nullptr; child = child->nextSibling.get())
    {
        child->destroyRequested = true;
    }
    return 0;
}

// The low 32 bits, as the priority is stored.
int SetPriority(lua_State* L)
{
    const lua_Integer priority = luaL_checkinteger(L, 2);
    CheckSpace(L).priority = static_cast<int32_t>(static_cast<uint32_t>(priority & 0xFFFFFFFF));
    return 0;
}

int GetPriority(lua_State* L)
{
    lua_pushinteger(L, CheckSpace(L).priority);
    return 1;
}

int SetTimescale(lua_State* L)
{
    const lua_Number timescale = luaL_checknumber(L, 2);
    CheckSpace(L).timescale = timescale;
    return 0;
}

int GetTimescale(lua_State* L)
{
    lua_pushnumber(L, CheckSpace(L).timescale);
    return 1;
}

// Functions of the metatable first, then the objects by name, so that a mistyped name fails at once.
int Index(lua_State* L)
{
    luaL_checkany(L, 2);
    EnsureStack(L, 22);
    luaL_getmetatable(L, "Space");
    lua_pushvalue(L, 2);
    if (lua_rawget(L, -2) != LUA_TNIL)
    {
        return 1;
    }
    lua_pop(L, 2);
    Space& space = CheckSpace(L);
    const char* name = luaL_checkstring(L, 2);
    if (PushFirstObject(L, space, name))
    {
        return 1;
    }
    return luaL_error(L, "Attempt to index a nil value: Space has no member \"%s\"", name);
}

constexpr luaL_Reg kFunctions[] = {
    {"AllObjects", AllObjects},
    {"GetAllObjects", AllObjects},
    {"AllObjectsWithName", AllObjectsWithName},
    {"GetAllObjectsWithName", AllObjectsWithName},
    {"FindFirstObject", FindFirstObject},
    {"CreateObject", CreateFromArchetype},
    {"CreateObjectFromTable", CreateFromArchetype},
    {"CreateFromArchetype", CreateFromArchetype},
    {"LoadLevel", LoadLevel},
    {"ReloadLevel", ReloadLevel},
    {"Pause", Pause},
    {"Unpause", Unpause},
    {"CreateChildSpace", CreateChildSpace},
    {"GetParentSpace", GetParentSpace},
    {"GetChildSpaces", GetChildSpaces},
    {"Destroy", Destroy},
    {"DestroyAllChildSpaces", DestroyAllChildSpaces},
    {"SetPriority", SetPriority},
    {"GetPriority", GetPriority},
    {"SetTimescale", SetTimescale},
    {"GetTimescale", GetTimescale},
    {"__index", Index},
    {nullptr, nullptr},
};

} // namespace

void RegisterSpaceType(lua_State* L)
{
    EnsureStack(L, 22);
    luaL_newmetatable(L, "Space");
    luaL_setfuncs(L, kFunctions, 0);
    lua_pop(L, 1);
}

} // namespace Lua
