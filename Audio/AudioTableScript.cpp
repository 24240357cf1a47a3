// The Audio script table: volume, pause and pitch of the music and effects groups. A volume outside
// [0, 1], NaN too, is ignored without a word; a pause lasts only until the system's next update, which
// sets both groups to the game's pause again.

#include "Audio/AudioScript.h"
#include "Audio/AudioSystem.h"
#include "Lua/ScriptArguments.h"
#include "Lua/Stack.h"

namespace Audio
{
namespace
{

using Lua::CheckBoolean;
using Lua::CheckFloat;

void SetGroupVolume(lua_State* L, Platform::ChannelGroupHandle AudioSystem::*group)
{
    AudioSystem& audio = UpvalueAudioSystem(L);
    const float volume = CheckFloat(L, 2);
    if (volume >= 0.0f && volume <= 1.0f)
    {
        audio.system->SetVolume(audio.*group, volume);
    }
}

int SetMusicVolume(lua_State* L)
{
    SetGroupVolume(L, &AudioSystem::musicGroup);
    return 0;
}

int SetSFXVolume(lua_State* L)
{
    SetGroupVolume(L, &AudioSystem::sfxGroup);
    return 0;
}

int SetPause(lua_State* L)
{
    AudioSystem& audio = UpvalueAudioSystem(L);
    const bool paused = CheckBoolean(L, 2);
    audio.Check(audio.system->SetPaused(audio.musicGroup, paused));
    audio.Check(audio.system->SetPaused(audio.sfxGroup, paused));
    return 0;
}

void SetGroupPause(lua_State* L, Platform::ChannelGroupHandle AudioSystem::*group)
{
    AudioSystem& audio = UpvalueAudioSystem(L);
    audio.Check(audio.system->SetPaused(audio.*group, CheckBoolean(L, 2)));
}

int SetSFXPause(lua_State* L)
{
    SetGroupPause(L, &AudioSystem::sfxGroup);
    return 0;
}

int SetMusicPause(lua_State* L)
{
    SetGroupPause(L, &AudioSystem::musicGroup);
    return 0;
}

int SetPitch(lua_State* L)
{
    AudioSystem& audio = UpvalueAudioSystem(L);
    const float pitch = CheckFloat(L, 2);
    audio.Check(audio.system->SetPitch(audio.musicGroup, pitch));
    audio.Check(audio.system->SetPitch(audio.sfxGroup, pitch));
    return 0;
}

constexpr luaL_Reg kAudioFunctions[] = {
    {"SetMusicVolume", SetMusicVolume},
    {"SetSFXVolume", SetSFXVolume},
    {"SetPause", SetPause},
    {"SetSFXPause", SetSFXPause},
    {"SetMusicPause", SetMusicPause},
    {"SetPitch", SetPitch},
    {nullptr, nullptr},
};

} // namespace

AudioSystem& UpvalueAudioSystem(lua_State* L)
{
    return Lua::UpvalueSystem<AudioSystem>(L, "AudioSystem method has a NULL Audio System!");
}

void PushAudioTable(lua_State* L, AudioSystem& audio)
{
    Lua::EnsureStack(L, 23);
    lua_createtable(L, 0, 6);
    lua_pushlightuserdata(L, &audio);
    luaL_setfuncs(L, kAudioFunctions, 1);
}

} // namespace Audio
