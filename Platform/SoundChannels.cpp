// What the sound library does to channels and groups: resolving their handles, taking and freeing
// channels, and turning a channel's own settings and its group's into the state of its OpenAL source.

#include "Platform/SoundLibraryState.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>

namespace Platform
{

namespace
{

// OpenAL refuses negative and infinite gains and pitches; a product of two large finite floats may be
// infinite, and a negative volume plays as silence.
float ForOpenAl(double product)
{
    return static_cast<float>(std::clamp(product, 0.0, static_cast<double>(FLT_MAX)));
}

SoundResult CheckVolume(float volume)
{
    return std::isfinite(volume) ? SoundResult::Ok : SoundResult::InvalidFloat;
}

SoundResult CheckPitch(float pitch)
{
    if (!std::isfinite(pitch))
    {
        return SoundResult::InvalidFloat;
    }
    return pitch < 0 ? SoundResult::InvalidParam : SoundResult::Ok;
}

ALint SourceInteger(ALuint source, ALenum parameter)
{
    ALint value = 0;
    alGetSourcei(source, parameter, &value);
    return value;
}

// Copies already queued after the one playing.
int CopiesAfterCurrent(ALuint source)
{
    const ALint unplayed =
        SourceInteger(source, AL_BUFFERS_QUEUED) - SourceInteger(source, AL_BUFFERS_PROCESSED);
    return std::max(0, unplayed - 1);
}

template <typename Apply>
void ForEachChannelOf(const std::vector<Channel>& channels, uint32_t group, Apply apply)
{
    for (const Channel& channel : channels)
    {
        if (channel.busy && channel.group == group)
        {
            apply(channel);
        }
    }
}

} // namespace

bool SoundLibrary::State::Enter()
{
    if (!started || released)
    {
        return false;
    }
    device.MakeCurrent();
    return true;
}

Channel* SoundLibrary::State::Resolve(ChannelHandle handle)
{
    if (!Enter() || handle.IsNull() || handle.index > channels.size())
    {
        return nullptr;
    }
    Channel& channel = channels[handle.index - 1];
    return channel.busy && channel.generation == handle.generation ? &channel : nullptr;
}

ChannelGroup* SoundLibrary::State::Resolve(ChannelGroupHandle handle)
{
    Enter();
    if (released || handle.IsNull() || handle.index >= groups.size())
    {
        return nullptr;
    }
    return &groups[handle.index];
}

Channel& SoundLibrary::State::TakeChannel()
{
    if (freeChannels.empty())
    {
        FreeChannel(*std::min_element(channels.begin(), channels.end(),
                                      [](const Channel& left, const Channel& right)
                                      { return left.playNumber < right.playNumber; }));
    }
    Channel& channel = channels[freeChannels.back()];
    freeChannels.pop_back();
    return channel;
}

void SoundLibrary::State::FreeChannel(Channel& channel)
{
    // Only a stopped source may have its queue emptied, and only a rewound one may start paused next time.
    alSourceStop(channel.source);
    alSourcei(channel.source, AL_BUFFER, 0);
    alSourcei(channel.source, AL_LOOPING, AL_FALSE);
    alSourceRewind(channel.source);
    LoadedSound& sound = sounds[channel.sound];
    if (sound.stream != nullptr)
    {
        sound.stream->Detach();
        sound.streamChannel = {};
    }
    channel.busy = false;
    ++channel.generation;
    freeChannels.push_back(static_cast<uint32_t>(&channel - channels.data()));
}

void SoundLibrary::State::ApplyGain(const Channel& channel)
{
    alSourcef(channel.source, AL_GAIN, ForOpenAl(double{channel.volume} * groups[channel.group].volume));
}

void SoundLibrary::State::ApplyPitch(const Channel& channel)
{
    alSourcef(channel.source, AL_PITCH, ForOpenAl(double{channel.pitch} * groups[channel.group].pitch));
}

void SoundLibrary::State::ApplyPause(const Channel& channel)
{
    const ALint sourceState = SourceInteger(channel.source, AL_SOURCE_STATE);
    if (channel.selfPaused || groups[channel.group].paused)
    {
        if (sourceState == AL_PLAYING)
        {
            alSourcePause(channel.source);
        }
    }
    // Playing a stopped source would start an ended sound over.
    else if (sourceState == AL_PAUSED || sourceState == AL_INITIAL)
    {
        alSourcePlay(channel.source);
    }
}

void SoundLibrary::State::ApplyLoop(Channel& channel)
{
    const int repeats = channel.mode == LoopMode::Normal ? channel.loopCount : 0;
    const ALuint source = channel.source;
    LoadedSound& sound = sounds[channel.sound];
    // Before the source first plays, what an earlier loop setting queued is taken back, so that the
    // setting made last is the one that counts.
    const bool unstarted = SourceInteger(source, AL_SOURCE_STATE) == AL_INITIAL;
    if (unstarted)
    {
        alSourcei(source, AL_BUFFER, 0);
    }
    if (sound.stream != nullptr)
    {
        channel.repeatsLeft = repeats;
        if (unstarted)
        {
            sound.stream->Detach();
            sound.stream->Start(source, channel.repeatsLeft);
        }
        else
        {
            sound.stream->Refill(source, channel.repeatsLeft);
        }
        return;
    }
    if (unstarted)
    {
        alSourceQueueBuffers(source, 1, &sound.buffer);
    }
    alSourcei(source, AL_LOOPING, repeats == -1 ? AL_TRUE : AL_FALSE);
    // A count says how many more times to play after this one, and some may be queued already.
    channel.repeatsLeft = repeats == -1 ? -1 : std::max(0, repeats - CopiesAfterCurrent(source));
    TopUp(channel);
}

void SoundLibrary::State::TopUp(Channel& channel)
{
    const LoadedSound& sound = sounds[channel.sound];
    if (sound.stream != nullptr)
    {
        sound.stream->Refill(channel.source, channel.repeatsLeft);
    }
    else if (channel.repeatsLeft != -1)
    {
        TopUpCopies(channel, sound);
    }
}

void SoundLibrary::State::TopUpCopies(Channel& channel, const LoadedSound& sound)
{
    std::array<ALuint, kMostCopiesQueuedAhead> copies;
    for (ALint played = SourceInteger(channel.source, AL_BUFFERS_PROCESSED); played > 0;)
    {
        const ALint taken = std::min<ALint>(played, kMostCopiesQueuedAhead);
        alSourceUnqueueBuffers(channel.source, taken, copies.data());
        played -= taken;
    }
    const int room = sound.copiesQueuedAhead - SourceInteger(channel.source, AL_BUFFERS_QUEUED);
    const int added = std::min(room, channel.repeatsLeft);
    if (added > 0)
    {
        copies.fill(sound.buffer);
        alSourceQueueBuffers(channel.source, added, copies.data());
        channel.repeatsLeft -= added;
    }
}

SoundResult SoundLibrary::IsPlaying(ChannelHandle channel, bool& playing)
{
    if (state->Resolve(channel) == nullptr)
    {
        return SoundResult::InvalidHandle;
    }
    playing = true;
    return SoundResult::Ok;
}

SoundResult SoundLibrary::SetMode(ChannelHandle handle, LoopMode mode)
{
    Channel* channel = state->Resolve(handle);
    if (channel == nullptr)
    {
        return SoundResult::InvalidHandle;
    }
    channel->mode = mode;
    state->ApplyLoop(*channel);
    return SoundResult::Ok;
}

SoundResult SoundLibrary::SetLoopCount(ChannelHandle handle, int count)
{
    Channel* channel = state->Resolve(handle);
    if (channel == nullptr)
    {
        return SoundResult::InvalidHandle;
    }
    if (count < -1)
    {
        return SoundResult::InvalidParam;
    }
    channel->loopCount = count;
    state->ApplyLoop(*channel);
    return SoundResult::Ok;
}

SoundResult SoundLibrary::Stop(ChannelHandle handle)
{
    Channel* channel = state->Resolve(handle);
    if (channel == nullptr)
    {
        return SoundResult::InvalidHandle;
    }
    state->FreeChannel(*channel);
    return SoundResult::Ok;
}

SoundResult SoundLibrary::SetPaused(ChannelHandle handle, bool paused)
{
    Channel* channel = state->Resolve(handle);
    if (channel == nullptr)
    {
        return SoundResult::InvalidHandle;
    }
    channel->selfPaused = paused;
    state->ApplyPause(*channel);
    return SoundResult::Ok;
}

SoundResult SoundLibrary::SetVolume(ChannelHandle handle, float volume)
{
    Channel* channel = state->Resolve(handle);
    if (channel == nullptr)
    {
        return SoundResult::InvalidHandle;
    }
    if (const SoundResult checked = CheckVolume(volume); checked != SoundResult::Ok)
    {
        return checked;
    }
    channel->volume = volume;
    state->ApplyGain(*channel);
    return SoundResult::Ok;
}

SoundResult SoundLibrary::SetPitch(ChannelHandle handle, float pitch)
{
    Channel* channel = state->Resolve(handle);
    if (channel == nullptr)
    {
        return SoundResult::InvalidHandle;
    }
    if (const SoundResult checked = CheckPitch(pitch); checked != SoundResult::Ok)
    {
        return checked;
    }
    channel->pitch = pitch;
    state->ApplyPitch(*channel);
    return SoundResult::Ok;
}

SoundResult SoundLibrary::GetPitch(ChannelHandle handle, float& pitch)
{
    const Channel* channel = state->Resolve(handle);
    if (channel == nullptr)
    {
        return SoundResult::InvalidHandle;
    }
    pitch = channel->pitch;
    return SoundResult::Ok;
}

SoundResult SoundLibrary::GetPosition(ChannelHandle handle, double& seconds)
{
    const Channel* channel = state->Resolve(handle);
    if (channel == nullptr)
    {
        return SoundResult::InvalidHandle;
    }
    const LoadedSound& sound = state->sounds[channel->sound];
    if (sound.stream != nullptr)
    {
        seconds = sound.stream->Position(channel->source);
        return SoundResult::Ok;
    }
    // The offset counts across every copy a loop has queued.
    const int64_t frame = SourceInteger(channel->source, AL_SAMPLE_OFFSET) % sound.frames;
    seconds = static_cast<double>(frame) / sound.sampleRate;
    return SoundResult::Ok;
}

SoundResult SoundLibrary::SetPaused(ChannelGroupHandle handle, bool paused)
{
    ChannelGroup* group = state->Resolve(handle);
    if (group == nullptr)
    {
        return SoundResult::InvalidHandle;
    }
    if (group->paused == paused)
    {
        return SoundResult::Ok;
    }
    group->paused = paused;
    ForEachChannelOf(state->channels, handle.index,
                     [this](const Channel& channel) { state->ApplyPause(channel); });
    return SoundResult::Ok;
}

SoundResult SoundLibrary::SetVolume(ChannelGroupHandle handle, float volume)
{
    ChannelGroup* group = state->Resolve(handle);
    if (group == nullptr)
    {
        return SoundResult::InvalidHandle;
    }
    if (const SoundResult checked = CheckVolume(volume); checked != SoundResult::Ok)
    {
        return checked;
    }
    group->volume = volume;
    ForEachChannelOf(state->channels, handle.index,
                     [this](const Channel& channel) { state->ApplyGain(channel); });
    return SoundResult::Ok;
}

SoundResult SoundLibrary::SetPitch(ChannelGroupHandle handle, float pitch)
{
    ChannelGroup* group = state->Resolve(handle);
    if (group == nullptr)
    {
        return SoundResult::InvalidHandle;
    }
    if (const SoundResult checked = CheckPitch(pitch); checked != SoundResult::Ok)
    {
        return checked;
    }
    group->pitch = pitch;
    ForEachChannelOf(state->channels, handle.index,
                     [this](const Channel& channel) { state->ApplyPitch(channel); });
    return SoundResult::Ok;
}

} // namespace Platform
