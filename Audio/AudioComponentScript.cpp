// The "Audio" script type. Each function resolves its handle anew, reads all its arguments, and only then
// calls into the system, so no raised error leaves a half-made change behind.

#include "Audio/AudioScript.h"
#include "Audio/AudioSystem.h"
#include "Components/AudioComponent.h"
#include "Components/ComponentType.h"
#include "Lua/ScriptArguments.h"
#include "Lua/ScriptHandles.h"

#include <algorithm>
#include <climits>

namespace Audio
{
namespace
{

using Lua::CheckAudio;
using Lua::OptBoolean;

int GetAllMembers(lua_State* L)
{
    CheckAudio(L);
    static constexpr const char* kMembers[] = {"Source", "Volume"};
    Lua::PushStringArray(L, kMembers, 2);
    return 1;
}

int SetSource(lua_State* L)
{
    AudioSystem& system = UpvalueAudioSystem(L);
    Components::AudioComponent& audio = CheckAudio(L);
    const char* name = luaL_checkstring(L, 2);
    const bool stream = OptBoolean(L, 3, false);
    system.SetSource(audio, name, stream);
    return 0;
}

int GetSource(lua_State* L)
{
    const Components::AudioComponent& audio = CheckAudio(L);
    lua_pushlstring(L, audio.source.data(), audio.source.size());
    return 1;
}

// Counts beyond an int repeat as good as for ever.
int Play(lua_State* L)
{
    AudioSystem& system = UpvalueAudioSystem(L);
    Components::AudioComponent& audio = CheckAudio(L);
    const bool music = OptBoolean(L, 2, false);
    const bool paused = OptBoolean(L, 3, false);
    const bool loop = OptBoolean(L, 4, false);
    const lua_Integer count = std::clamp<lua_Integer>(luaL_optinteger(L, 5, -1), INT_MIN, INT_MAX);
    system.Play(audio, music, paused, loop, static_cast<int>(count));
    return 0;
}

int Pause(lua_State* L)
{
    AudioSystem& system = UpvalueAudioSystem(L);
    Components::AudioComponent& audio = CheckAudio(L);
    system.Pause(audio, OptBoolean(L, 2, true));
    return 0;
}

int Stop(lua_State* L)
{
    AudioSystem& system = UpvalueAudioSystem(L);
    system.Stop(CheckAudio(L));
    return 0;
}

int SetVolume(lua_State* L)
{
    AudioSystem& system = UpvalueAudioSystem(L);
    Components::AudioComponent& audio = CheckAudio(L);
    system.SetVolume(audio, Lua::CheckFloat(L, 2));
    return 0;
}

int GetVolume(lua_State* L)
{
    lua_pushnumber(L, CheckAudio(L).volume);
    return 1;
}

// The number is read before the handle: a bad pitch on a stale handle complains of the pitch.
int SetPitch(lua_State* L)
{
    AudioSystem& system = UpvalueAudioSystem(L);
    const float pitch = Lua::CheckFloat(L, 2);
    system.SetPitch(CheckAudio(L), pitch);
    return 0;
}

int GetPitch(lua_State* L)
{
    AudioSystem& system = UpvalueAudioSystem(L);
    lua_pushnumber(L, system.GetPitch(CheckAudio(L)));
    return 1;
}

constexpr luaL_Reg kAudioComponentFunctions[] = {
    {"GetAllMembers", GetAllMembers},
    {"SetSource", SetSource},
    {"GetSource", GetSource},
    {"Play", Play},
    {"Pause", Pause},
    {"Stop", Stop},
    {"SetVolume", SetVolume},
    {"GetVolume", GetVolume},
    {"SetPitch", SetPitch},
    {"GetPitch", GetPitch},
    {nullptr, nullptr},
};

} // namespace

void RegisterAudioScriptType(lua_State* L, AudioSystem& audio)
{
    lua_pushlightuserdata(L, &audio);
    Lua::RegisterMethodType(L, Components::ComponentTypeName(Components::Audio), kAudioComponentFunctions, 1);
}

} // namespace Audio
