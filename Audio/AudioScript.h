#pragma once

// What scripts see of sound: the "Audio" component handle type and the Audio table of the two groups.
// Every function carries the audio system as its one upvalue.

#include <lua.hpp>

namespace Audio
{

class AudioSystem;

// Makes the metatable "Audio" with the component's functions.
void RegisterAudioScriptType(lua_State* L, AudioSystem& audio);

// +1: the Audio table. Its functions are called with a colon and never look at argument 1.
void PushAudioTable(lua_State* L, AudioSystem& audio);

// The system in the calling function's first upvalue.
AudioSystem& UpvalueAudioSystem(lua_State* L);

} // namespace Audio
