#include "Audio/AudioSystem.h"

#include "Audio/AudioScript.h"
#include "Components/Space.h"
#include "Core/Game.h"
#include "Debug/Logger.h"
#include "Debug/Profile.h"
#include "Lua/LuaSystem.h"

#include <string>

namespace Audio
{
namespace
{

using Platform::SoundResult;

// Every system's sound comes out at this rate; the device may resample.
constexpr int kSampleRate = 48000;
// Channels made up front, so that a play never allocates; a play beyond them takes the oldest.
constexpr int kChannels = 512;

// The texts that games have always logged for these codes; the library returns no others.
const char* ResultText(SoundResult result)
{
    switch (result)
    {
    case SoundResult::Ok:
        return "No errors.";
    case SoundResult::FileBad:
        return "Error loading file.";
    case SoundResult::FileNotFound:
        return "File not found.";
    case SoundResult::Format:
        return "Unsupported file or audio format.";
    case SoundResult::InvalidFloat:
        return "Value passed in was a NaN, Inf or denormalized float.";
    case SoundResult::InvalidHandle:
        return "An invalid object handle was used.";
    case SoundResult::InvalidParam:
        return "An invalid parameter was passed to this function.";
    case SoundResult::Memory:
        return "Not enough memory or resources.";
    case SoundResult::OutputInit:
        return "Error initializing output device.";
    }
    return "Unknown error.";
}

void LogResult(SoundResult result)
{
    if (result == SoundResult::Ok)
    {
        return;
    }
    Logger::Log("Audio", LogLevel::Error,
                "FMOD error! (" + std::to_string(static_cast<int32_t>(result)) + ") " + ResultText(result));
}

} // namespace

AudioSystem::AudioSystem() = default;
AudioSystem::~AudioSystem() = default;

bool AudioSystem::Initialise(Core::Window*)
{
    system = std::make_unique<Platform::SoundLibrary>(options);
    int drivers = 0;
    Check(system->GetNumDrivers(drivers));
    if (drivers > 0)
    {
        Check(system->SetSoftwareFormat(kSampleRate, speakerMode, 0));
    }
    else
    {
        Check(system->SetOutput(Platform::SoundOutput::NoSound));
    }
    Check(system->Init(kChannels));
    Check(system->CreateChannelGroup("Music", musicGroup));
    Check(system->CreateChannelGroup("Sound Effects", sfxGroup));
    return true;
}

// Spaces play no part: only the game's pause silences sound, and it overrides what scripts set.
void AudioSystem::Update(Core::Game& game, Space&, double, double, double)
{
    Debug::ProfileBlock block("Audio");
    Check(system->SetPaused(musicGroup, game.paused));
    Check(system->SetPaused(sfxGroup, game.paused));
    system->Update();
}

void AudioSystem::RegisterScriptTypes(Lua::LuaSystem& lua)
{
    RegisterAudioScriptType(lua.state, *this);
}

void AudioSystem::ObjectsDestroyed(Core::Game&, Space& space)
{
    for (Components::AudioComponent& audio : space.audio.components)
    {
        if (!audio.destroyed)
        {
            continue;
        }
        if (IsPlaying(audio))
        {
            CheckChannel(audio, system->Stop(audio.channel));
        }
        if (!audio.sound.IsNull())
        {
            Check(system->ReleaseSound(audio.sound));
            audio.sound = {};
        }
    }
}

// The library object stays: a script finalised as the Lua state closes, later, may still call into it,
// and a released library answers every call with a stale handle.
void AudioSystem::Shutdown()
{
    if (system != nullptr)
    {
        system->Release();
    }
}

void AudioSystem::Check(SoundResult callResult)
{
    result = callResult;
    LogResult(callResult);
}

void AudioSystem::CheckChannel(Components::AudioComponent& audio, SoundResult callResult)
{
    audio.result = callResult;
    LogResult(callResult);
}

bool AudioSystem::IsPlaying(const Components::AudioComponent& audio)
{
    bool playing = false;
    return system->IsPlaying(audio.channel, playing) == SoundResult::Ok && playing;
}

} // namespace Audio
