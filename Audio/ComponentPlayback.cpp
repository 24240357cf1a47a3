// What an audio component's script functions do once their arguments are read: load, play, pause, stop,
// and set the volume and pitch of the latest channel. Calls on a channel that isn't playing are mostly
// skipped, so a component that never played, or whose sound ended, stays quiet in the log.

#include "Audio/AudioSystem.h"
#include "Components/AudioComponent.h"

namespace Audio
{

using Platform::SoundResult;

void AudioSystem::SetSource(Components::AudioComponent& audio, const char* name, bool stream)
{
    if (!audio.sound.IsNull())
    {
        Check(system->ReleaseSound(audio.sound));
        audio.sound = {};
    }
    audio.source = name;
    Check(stream ? system->CreateStream(name, audio.sound) : system->CreateSound(name, audio.sound));
}

// The earlier channel plays on, forgotten. Each new channel starts at pitch 1, and at the component's
// volume only when that is a volume at all.
void AudioSystem::Play(Components::AudioComponent& audio, bool music, bool paused, bool loop, int count)
{
    if (audio.sound.IsNull())
    {
        return;
    }
    audio.channel = {};
    const SoundResult played =
        system->PlaySound(audio.sound, music ? musicGroup : sfxGroup, paused, audio.channel);
    Check(played);
    if (played == SoundResult::Ok)
    {
        system->SetMode(audio.channel, loop ? Platform::LoopMode::Normal : Platform::LoopMode::Off);
        if (loop)
        {
            system->SetLoopCount(audio.channel, count);
        }
    }
    SetVolume(audio, audio.volume);
}

void AudioSystem::Pause(Components::AudioComponent& audio, bool paused)
{
    if (IsPlaying(audio))
    {
        CheckChannel(audio, system->SetPaused(audio.channel, paused));
    }
}

void AudioSystem::Stop(Components::AudioComponent& audio)
{
    if (IsPlaying(audio))
    {
        CheckChannel(audio, system->Stop(audio.channel));
    }
}

// Out of range, NaN included, the value is kept but the channel keeps its volume.
void AudioSystem::SetVolume(Components::AudioComponent& audio, float volume)
{
    audio.volume = volume;
    if (volume >= 0.0f && volume <= 1.0f && IsPlaying(audio))
    {
        CheckChannel(audio, system->SetVolume(audio.channel, volume));
    }
}

void AudioSystem::SetPitch(Components::AudioComponent& audio, float pitch)
{
    CheckChannel(audio, system->SetPitch(audio.channel, pitch));
}

float AudioSystem::GetPitch(const Components::AudioComponent& audio)
{
    float pitch = 0.0f;
    return system->GetPitch(audio.channel, pitch) == SoundResult::Ok ? pitch : 0.0f;
}

} // namespace Audio
