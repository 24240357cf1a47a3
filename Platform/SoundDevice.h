#pragma once

// The OpenAL device and context that one sound library plays through: a real output device, or a loopback
// device whose mix is rendered on demand and dropped, so that a game without a sound card keeps time as if
// it had one.
//
// OpenAL's current context belongs to the whole process. Each library makes its own current before it
// touches OpenAL, so two libraries in one process (two games in one test) never act on each other's
// sources.

#include <AL/alc.h>
#include <array>
#include <cstdint>

namespace Platform
{

class SoundDevice
{
public:
    SoundDevice() = default;
    ~SoundDevice();
    SoundDevice(const SoundDevice&) = delete;
    SoundDevice& operator=(const SoundDevice&) = delete;

    // The number of output devices the system lists, to be told to a game only once one has opened.
    static int CountListedOutputs();

    // Opens the named output device, or the default for null, once: a machine without a sound card prints
    // its complaints on every try. Later calls tell what the first one found.
    bool OpenOutput(const char* deviceName);
    // Makes the context of the output device OpenOutput opened, asking for this many mono sources and no
    // stereo ones (stereo buffers play on mono sources all the same). A rate of 0 leaves the device's own.
    bool StartOutput(int sampleRate, int monoSources);
    // Gives up the output device, if one was opened, and makes the silent one with its context.
    bool StartSilent(int monoSources);
    void Close();

    bool IsStarted() const { return context != nullptr; }
    bool IsSilent() const { return silent; }
    // How many mono sources the context really has: a user's configuration may allow fewer than asked.
    int MonoSources() const;
    // Cheap when this library's context is current already, as it nearly always is.
    void MakeCurrent() const;
    // Mixes this much time of the silent output, at most a quarter second, keeping the fraction of a
    // frame that is left for the next call so that no time is lost over many calls.
    void RenderSilently(double seconds);

private:
    static constexpr int kSilentRate = 8000;
    static constexpr int kMostSilentFrames = kSilentRate / 4;

    ALCdevice* device = nullptr;
    ALCcontext* context = nullptr;
    bool openTried = false;
    bool silent = false;
    double framesOwed = 0;
    std::array<int16_t, kMostSilentFrames> droppedMix = {};
};

} // namespace Platform
