#pragma once

// The sound library the engine plays through: one output device, groups of channels, sounds decoded whole
// or streamed, and channels that play them. It speaks OpenAL Soft and libsndfile underneath, but nothing of
// either shows here, so this header is cheap to include.
//
// Every call returns a SoundResult and touches its out arguments only on success. Handles are values that
// may go stale at any time (a sound ends, a newer play takes its channel): a stale handle is answered with
// InvalidHandle, never with a crash. Before Init and after Release the library itself is such a handle:
// what needs the output answers InvalidHandle. All calls come from one thread, the game thread; nothing is
// locked. Groups belong to this layer, not to OpenAL: a channel's gain and pitch are its own times its
// group's, and a channel is paused while it or its group is.
//
// Without a sound device the library plays into a silent output that still keeps time, so positions, ends
// and loops behave as they would on a speaker.

#include "Platform/SoundHandles.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace Platform
{

enum class SoundOutput : uint8_t
{
    // The default device, or the one the options name.
    Device,
    // No device at all: everything is rendered into a silent output, in time.
    NoSound,
};

// Kept only, since OpenAL chooses the speaker layout itself.
enum class SpeakerMode : int32_t
{
    Mono = 2,
    Stereo = 3,
};

// How a channel repeats its sound.
enum class LoopMode : uint8_t
{
    Off,
    Normal,
};

struct SoundLibraryOptions
{
    // The output device to open; null for the system's default.
    const char* deviceName = nullptr;
    // The most bytes of 16-bit samples that one sound decodes to; past it the load fails with Memory.
    size_t decodeCapBytes = size_t{512} << 20;
    // Seconds on a steady clock, read by Update to know how far the silent output has played. Null reads
    // the system's steady clock; tests step one of their own.
    std::function<double()> clock;
};

class SoundLibrary
{
public:
    explicit SoundLibrary(SoundLibraryOptions options = {});
    // Stops and frees everything the library made, as Release does.
    ~SoundLibrary();
    SoundLibrary(const SoundLibrary&) = delete;
    SoundLibrary& operator=(const SoundLibrary&) = delete;

    // Keeps OpenAL's own log off stderr unless the user asked for it by setting ALSOFT_LOGLEVEL. Must run
    // before the first OpenAL call of the process and while it has one thread, since it sets the
    // environment.
    static void QuietLibraryLog();

    // The number of output devices: 0 if the default (or named) device can't be opened. The device opened
    // here is kept for Init, so a machine without a sound card is asked only once.
    SoundResult GetNumDrivers(int& count);
    // Asks the device for this sample rate at Init; the speaker mode is kept only.
    SoundResult SetSoftwareFormat(int sampleRate, SpeakerMode mode, int rawSpeakers);
    SoundResult SetOutput(SoundOutput output);
    // Opens the output and makes up to maxChannels channels up front (fewer if the device has fewer).
    // A device that fails here gives OutputInit, and the library plays into the silent output instead.
    SoundResult Init(int maxChannels);
    SoundResult CreateChannelGroup(const char* name, ChannelGroupHandle& group);
    // Once per frame: frees the channels that ended, refills streams and tops up counted loops.
    SoundResult Update();
    // Stops and frees everything; the library can't be used again.
    SoundResult Release();

    // Decodes the whole file now.
    SoundResult CreateSound(const char* fileName, SoundHandle& sound);
    // Decodes the file's start now and the rest while it plays, a quarter second at a time.
    SoundResult CreateStream(const char* fileName, SoundHandle& sound);
    // Stops every channel of the sound, then frees it.
    SoundResult ReleaseSound(SoundHandle sound);

    // Starts the sound once, on a free channel, or on the oldest one if none is free. Playing a stream
    // again stops its earlier channel. Allocates nothing.
    SoundResult PlaySound(SoundHandle sound, ChannelGroupHandle group, bool paused, ChannelHandle& channel);

    // A paused channel counts as playing.
    SoundResult IsPlaying(ChannelHandle channel, bool& playing);
    SoundResult SetMode(ChannelHandle channel, LoopMode mode);
    // With LoopMode::Normal: -1 repeats for ever, N >= 0 plays N + 1 times in all.
    SoundResult SetLoopCount(ChannelHandle channel, int count);
    SoundResult Stop(ChannelHandle channel);
    SoundResult SetPaused(ChannelHandle channel, bool paused);
    // NaN and infinities give InvalidFloat; a negative volume is silence.
    SoundResult SetVolume(ChannelHandle channel, float volume);
    // NaN and infinities give InvalidFloat, negative pitches InvalidParam.
    SoundResult SetPitch(ChannelHandle channel, float pitch);
    // The channel's own pitch, without its group's.
    SoundResult GetPitch(ChannelHandle channel, float& pitch);
    // Seconds from the start of the sound, within the current repetition.
    SoundResult GetPosition(ChannelHandle channel, double& seconds);

    // Setting a group to the state it has is free, so the caller may do it every frame.
    SoundResult SetPaused(ChannelGroupHandle group, bool paused);
    SoundResult SetVolume(ChannelGroupHandle group, float volume);
    SoundResult SetPitch(ChannelGroupHandle group, float pitch);

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace Platform
