// The sound library's output, its sounds and streams, starting plays and the per-frame Update. What is done
// to a channel or a group once it plays lives in SoundChannels.cpp.

#include "Platform/SoundLibrary.h"

#include "Platform/SoundDecoder.h"
#include "Platform/SoundLibraryState.h"

#include <algorithm>
#include <cfloat>
#include <chrono>
#include <climits>
#include <cmath>
#include <cstdlib>

namespace Platform
{

namespace
{

// Sources are made up front at Init; no game needs more plays at once than this.
constexpr int kMostChannels = 512;
// A counted loop keeps at least this much of its sound queued ahead of the source.
constexpr double kSecondsQueuedAhead = 1.0;

double ReadSteadyClock()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

SoundResult MakeBuffer(const std::vector<int16_t>& samples, int channels, int sampleRate, ALuint& buffer)
{
    const size_t bytes = samples.size() * sizeof(int16_t);
    if (bytes > static_cast<size_t>(INT_MAX))
    {
        return SoundResult::Memory;
    }
    alGetError();
    alGenBuffers(1, &buffer);
    if (alGetError() != AL_NO_ERROR)
    {
        return SoundResult::Memory;
    }
    alBufferData(buffer, channels == 2 ? AL_FORMAT_STEREO16 : AL_FORMAT_MONO16, samples.data(),
                 static_cast<ALsizei>(bytes), sampleRate);
    // The samples were checked when decoded: what OpenAL can still refuse is the memory to copy them.
    if (alGetError() != AL_NO_ERROR)
    {
        alDeleteBuffers(1, &buffer);
        return SoundResult::Memory;
    }
    return SoundResult::Ok;
}

int CopiesForASecond(int64_t frames, int sampleRate)
{
    const double seconds = static_cast<double>(frames) / sampleRate;
    return static_cast<int>(
        std::clamp(std::ceil(kSecondsQueuedAhead / seconds) + 1, 2.0, double{kMostCopiesQueuedAhead}));
}

} // namespace

SoundLibrary::State::State(SoundLibraryOptions libraryOptions) : options(std::move(libraryOptions))
{
    if (!options.clock)
    {
        options.clock = ReadSteadyClock;
    }
}

SoundLibrary::SoundLibrary(SoundLibraryOptions options) : state(std::make_unique<State>(std::move(options)))
{
    QuietLibraryLog();
}

SoundLibrary::~SoundLibrary()
{
    Release();
}

void SoundLibrary::QuietLibraryLog()
{
    setenv("ALSOFT_LOGLEVEL", "0", 0);
}

SoundResult SoundLibrary::GetNumDrivers(int& count)
{
    if (state->released)
    {
        return SoundResult::InvalidHandle;
    }
    // A device that opens is listed, whatever the list says.
    count = state->device.OpenOutput(state->options.deviceName)
                ? std::max(1, SoundDevice::CountListedOutputs())
                : 0;
    return SoundResult::Ok;
}

SoundResult SoundLibrary::SetSoftwareFormat(int sampleRate, SpeakerMode mode, int)
{
    if (sampleRate < 0)
    {
        return SoundResult::InvalidParam;
    }
    state->sampleRate = sampleRate;
    state->speakerMode = mode;
    return SoundResult::Ok;
}

SoundResult SoundLibrary::SetOutput(SoundOutput output)
{
    state->output = output;
    return SoundResult::Ok;
}

SoundResult SoundLibrary::Init(int maxChannels)
{
    if (state->released)
    {
        return SoundResult::InvalidHandle;
    }
    if (maxChannels < 1)
    {
        return SoundResult::InvalidParam;
    }
    if (state->started)
    {
        return SoundResult::Ok;
    }
    const int wanted = std::min(maxChannels, kMostChannels);
    SoundDevice& device = state->device;
    const bool wantsDevice = state->output == SoundOutput::Device;
    const bool deviceStarted = wantsDevice && device.OpenOutput(state->options.deviceName) &&
                               device.StartOutput(state->sampleRate, wanted);
    if (!deviceStarted && !device.StartSilent(wanted))
    {
        return SoundResult::OutputInit;
    }
    state->MakeChannels(std::min(wanted, device.MonoSources()));
    state->lastClockReading = state->options.clock();
    state->started = true;
    return wantsDevice && !deviceStarted ? SoundResult::OutputInit : SoundResult::Ok;
}

void SoundLibrary::State::MakeChannels(int count)
{
    channels.reserve(static_cast<size_t>(std::max(count, 0)));
    alGetError();
    for (int index = 0; index < count; ++index)
    {
        ALuint source = 0;
        alGenSources(1, &source);
        if (alGetError() != AL_NO_ERROR)
        {
            break;
        }
        // A volume above 1 makes a sound louder, as in the sound library this layer stands in for, where
        // OpenAL would hold it at 1.
        alSourcef(source, AL_MAX_GAIN, FLT_MAX);
        channels.push_back({.source = source});
    }
    freeChannels.reserve(channels.size());
    // Taken from the back: the first channel goes first.
    for (size_t index = channels.size(); index > 0; --index)
    {
        freeChannels.push_back(static_cast<uint32_t>(index - 1));
    }
}

SoundResult SoundLibrary::CreateChannelGroup(const char*, ChannelGroupHandle& group)
{
    if (state->released)
    {
        return SoundResult::InvalidHandle;
    }
    state->groups.emplace_back();
    group.index = static_cast<uint32_t>(state->groups.size() - 1);
    return SoundResult::Ok;
}

SoundResult SoundLibrary::Update()
{
    if (!state->Enter())
    {
        return SoundResult::InvalidHandle;
    }
    const double now = state->options.clock();
    state->device.RenderSilently(now - state->lastClockReading);
    state->lastClockReading = now;
    for (Channel& channel : state->channels)
    {
        if (channel.busy)
        {
            state->UpdateChannel(channel);
        }
    }
    return SoundResult::Ok;
}

void SoundLibrary::State::UpdateChannel(Channel& channel)
{
    ALint sourceState = AL_INITIAL;
    alGetSourcei(channel.source, AL_SOURCE_STATE, &sourceState);
    TopUp(channel);
    if (sourceState != AL_STOPPED)
    {
        return;
    }
    ALint queued = 0;
    alGetSourcei(channel.source, AL_BUFFERS_QUEUED, &queued);
    // A source that stopped with more to play ran dry between Updates: it plays on from what was queued now.
    if (queued > 0)
    {
        alSourcePlay(channel.source);
    }
    else
    {
        FreeChannel(channel);
    }
}

SoundResult SoundLibrary::Release()
{
    if (state->released)
    {
        return SoundResult::Ok;
    }
    if (state->Enter())
    {
        for (uint32_t index = 1; index < state->sounds.size(); ++index)
        {
            if (state->sounds[index].inUse)
            {
                state->ReleaseSound(index);
            }
        }
        for (Channel& channel : state->channels)
        {
            alDeleteSources(1, &channel.source);
        }
    }
    state->channels.clear();
    state->device.Close();
    state->released = true;
    return SoundResult::Ok;
}

SoundResult SoundLibrary::CreateSound(const char* fileName, SoundHandle& sound)
{
    if (!state->Enter())
    {
        return SoundResult::InvalidHandle;
    }
    std::unique_ptr<SoundDecoder> decoder;
    if (const SoundResult opened = SoundDecoder::OpenFile(fileName, decoder); opened != SoundResult::Ok)
    {
        return opened;
    }
    std::vector<int16_t> samples;
    if (const SoundResult decoded = DecodeWhole(*decoder, state->options.decodeCapBytes, samples);
        decoded != SoundResult::Ok)
    {
        return decoded;
    }
    ALuint buffer = 0;
    if (const SoundResult made = MakeBuffer(samples, decoder->Channels(), decoder->SampleRate(), buffer);
        made != SoundResult::Ok)
    {
        return made;
    }
    LoadedSound& loaded = state->NewSound(sound);
    loaded.buffer = buffer;
    loaded.frames = static_cast<int64_t>(samples.size()) / decoder->Channels();
    loaded.sampleRate = decoder->SampleRate();
    loaded.copiesQueuedAhead = CopiesForASecond(loaded.frames, loaded.sampleRate);
    return SoundResult::Ok;
}

SoundResult SoundLibrary::CreateStream(const char* fileName, SoundHandle& sound)
{
    if (!state->Enter())
    {
        return SoundResult::InvalidHandle;
    }
    std::unique_ptr<SoundStream> stream;
    if (const SoundResult opened = SoundStream::Open(fileName, stream); opened != SoundResult::Ok)
    {
        return opened;
    }
    state->NewSound(sound).stream = std::move(stream);
    return SoundResult::Ok;
}

LoadedSound& SoundLibrary::State::NewSound(SoundHandle& handle)
{
    if (freeSounds.empty())
    {
        freeSounds.push_back(static_cast<uint32_t>(sounds.size()));
        sounds.emplace_back();
    }
    const uint32_t index = freeSounds.back();
    freeSounds.pop_back();
    LoadedSound& sound = sounds[index];
    sound.inUse = true;
    handle = {index, sound.generation};
    return sound;
}

SoundResult SoundLibrary::ReleaseSound(SoundHandle sound)
{
    if (state->Resolve(sound) == nullptr)
    {
        return SoundResult::InvalidHandle;
    }
    state->ReleaseSound(sound.index);
    return SoundResult::Ok;
}

void SoundLibrary::State::ReleaseSound(uint32_t index)
{
    for (Channel& channel : channels)
    {
        if (channel.busy && channel.sound == index)
        {
            FreeChannel(channel);
        }
    }
    LoadedSound& sound = sounds[index];
    if (sound.buffer != 0)
    {
        alDeleteBuffers(1, &sound.buffer);
    }
    const uint32_t nextGeneration = sound.generation + 1;
    sound = {};
    sound.generation = nextGeneration;
    freeSounds.push_back(index);
}

LoadedSound* SoundLibrary::State::Resolve(SoundHandle handle)
{
    if (!Enter() || handle.IsNull() || handle.index >= sounds.size())
    {
        return nullptr;
    }
    LoadedSound& sound = sounds[handle.index];
    return sound.inUse && sound.generation == handle.generation ? &sound : nullptr;
}

SoundResult SoundLibrary::PlaySound(SoundHandle soundHandle, ChannelGroupHandle groupHandle, bool paused,
                                    ChannelHandle& channelHandle)
{
    LoadedSound* sound = state->Resolve(soundHandle);
    if (sound == nullptr || (!groupHandle.IsNull() && state->Resolve(groupHandle) == nullptr))
    {
        return SoundResult::InvalidHandle;
    }
    if (state->channels.empty())
    {
        return SoundResult::Memory;
    }
    if (Channel* earlier = state->Resolve(sound->streamChannel))
    {
        state->FreeChannel(*earlier);
    }
    Channel& channel = state->TakeChannel();
    const ALuint source = channel.source;
    channel = {.source = source,
               .generation = channel.generation,
               .busy = true,
               .playNumber = ++state->playsStarted,
               .sound = soundHandle.index,
               .group = groupHandle.index,
               .selfPaused = paused};
    channelHandle = {static_cast<uint32_t>(&channel - state->channels.data()) + 1, channel.generation};
    if (sound->stream != nullptr)
    {
        sound->streamChannel = channelHandle;
        sound->stream->Start(source, channel.repeatsLeft);
    }
    else
    {
        alSourceQueueBuffers(source, 1, &sound->buffer);
    }
    state->ApplyGain(channel);
    state->ApplyPitch(channel);
    state->ApplyPause(channel);
    return SoundResult::Ok;
}

} // namespace Platform
