#pragma once

// The inside of the sound library, shared by the files that carry out its calls: SoundLibrary.cpp (the
// output, sounds, plays and Update) and SoundChannels.cpp (what is done to channels and groups).
//
// Invariants:
// - channels[i] owns one OpenAL source for the library's whole life and answers to handle index i + 1.
//   It is busy from the PlaySound that takes it until it ends, is stopped or is taken for a newer play;
//   then its source is emptied and rewound to AL_INITIAL and its generation moves on, so its handles go
//   stale. freeChannels lists exactly the channels that aren't busy, and was reserved for all of them, so
//   neither freeing nor taking a channel allocates.
// - A channel's source gain and pitch are always its own times its group's, and its source is paused
//   exactly while it or its group is (a source that ended stays stopped).
// - Index 0 of sounds and of groups is never handed out, as 0 is the null handle; groups[0] is the
//   neutral group of channels played into none.
// - A stream plays on at most one channel, named by its streamChannel while that channel is busy.

#include "Platform/SoundDevice.h"
#include "Platform/SoundLibrary.h"
#include "Platform/SoundStream.h"

#include <AL/al.h>
#include <memory>
#include <vector>

namespace Platform
{

// The most copies of a sound that a counted loop queues at once. A sound so short that this many last less
// than the time between two Updates may run dry, and the next Update queues more and plays on.
constexpr int kMostCopiesQueuedAhead = 64;

struct LoadedSound
{
    uint32_t generation = 0;
    bool inUse = false;
    // A decoded sound's samples; 0 for a stream.
    ALuint buffer = 0;
    int64_t frames = 0;
    int sampleRate = 0;
    // How many copies of the buffer a counted loop keeps queued: enough for a second, so that Updates a
    // quarter second apart never let the queue run dry.
    int copiesQueuedAhead = 1;
    std::unique_ptr<SoundStream> stream;
    ChannelHandle streamChannel;
};

struct Channel
{
    ALuint source = 0;
    uint32_t generation = 0;
    bool busy = false;
    // When the play began, counted in plays, so that the oldest play is the one taken when none is free.
    uint64_t playNumber = 0;
    uint32_t sound = 0;
    uint32_t group = 0;
    float volume = 1;
    float pitch = 1;
    bool selfPaused = false;
    LoopMode mode = LoopMode::Off;
    int loopCount = -1;
    // Copies still to queue (a sound) or rewinds still to make (a stream); -1 for ever.
    int repeatsLeft = 0;
};

struct ChannelGroup
{
    float volume = 1;
    float pitch = 1;
    bool paused = false;
};

struct SoundLibrary::State
{
    explicit State(SoundLibraryOptions libraryOptions);

    // Makes this library's context current; false before Init and after Release, when there's none.
    bool Enter();
    void MakeChannels(int count);
    Channel* Resolve(ChannelHandle channel);
    LoadedSound* Resolve(SoundHandle sound);
    ChannelGroup* Resolve(ChannelGroupHandle group);

    // The first free channel, or the oldest play's, stopped silently.
    Channel& TakeChannel();
    void FreeChannel(Channel& channel);
    void ApplyGain(const Channel& channel);
    void ApplyPitch(const Channel& channel);
    void ApplyPause(const Channel& channel);
    // Turns the channel's loop mode and count into repeats and queues what they need at once.
    void ApplyLoop(Channel& channel);
    // Queues what the channel's repeats and its stream have left, in place of what the source has played.
    void TopUp(Channel& channel);
    // Frees the channel if its source has ended; a source that ran dry with more to play plays on.
    void UpdateChannel(Channel& channel);
    LoadedSound& NewSound(SoundHandle& handle);
    // Stops the sound's channels first, as OpenAL can't delete a buffer that a source holds.
    void ReleaseSound(uint32_t index);

    SoundLibraryOptions options;
    SoundOutput output = SoundOutput::Device;
    int sampleRate = 0;
    SpeakerMode speakerMode = SpeakerMode::Stereo;
    SoundDevice device;
    bool started = false;
    bool released = false;
    double lastClockReading = 0;

    std::vector<Channel> channels;
    std::vector<uint32_t> freeChannels;
    uint64_t playsStarted = 0;
    std::vector<LoadedSound> sounds = std::vector<LoadedSound>(1);
    std::vector<uint32_t> freeSounds;
    std::vector<ChannelGroup> groups = std::vector<ChannelGroup>(1);

private:
    void TopUpCopies(Channel& channel, const LoadedSound& sound);
};

} // namespace Platform
