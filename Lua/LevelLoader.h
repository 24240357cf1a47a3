#pragma once

// Level and archetype files are Lua chunks, run in the read-only environment, that return descriptions of
// objects. A description is the name of an archetype file or a table of one of the forms of Description;
// an object table maps each component's name to a table whose keys name the component's script setters
// ("Position" calls SetPosition), so level data and the script API are one surface.
//
// Everything here runs Lua and may raise: no C++ object with a destructor is alive across those calls.

#include "Components/GameObjectHandle.h"

#include <lua.hpp>

class Space;

namespace Lua
{

enum class Description
{
    Override, // { base, Override = { ... } }: the base's objects, changed by the override table
    List,     // an array of descriptions: all their objects in order
    Empty,    // {}: one blank object
    Object,   // a table of components and names: one object
    Invalid,
};

// The form of the table at index 2. Reads #t as the length operator does, so __len may raise.
Description ClassifyDescription(lua_State* L);

// Loads the file into a chunk that runs in the read-only environment and pushes it; false, with an Error
// logged and nothing pushed, if it can't be loaded.
bool LoadDataFile(lua_State* L, const char* fileName);

// Runs the archetype file and pushes its first result; returns that result's Lua type, or -1 with an Error
// logged and nothing pushed.
int LoadArchetype(lua_State* L, const char* fileName);

// Sets the object up from the object table at the index. False, with the reason on top of the stack, if a
// component value or a setter failed.
bool ApplyOverrides(lua_State* L, GameObjectHandle object, int tableIndex);

// Sets the component whose handle is on top of the stack up from the component table at the index: each
// key K calls SetK. False, with the reason on top of the stack, if a setter failed.
bool InitialiseMembers(lua_State* L, int tableIndex);

// The script function behind CreateObject, CreateObjectFromTable and CreateFromArchetype: (Space,
// description or nil) -> the handles of the objects made.
int CreateFromArchetype(lua_State* L);

// First half of a level load: pushes what the second half needs and the level's chunk. Returns the stack
// top to restore afterwards, or -1, with the stack as it was, if the file can't be loaded.
int BeginLevelLoad(lua_State* L, Space& space);
// Second half, once the old objects have gone: runs the chunk and makes the objects it describes. False,
// with an Error logged, if that failed; what was made before the failure stays.
bool FinishLevelLoad(lua_State* L, Space& space, int top);

} // namespace Lua
