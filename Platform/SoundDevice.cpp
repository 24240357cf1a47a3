#include "Platform/SoundDevice.h"

#define AL_ALEXT_PROTOTYPES
#include <AL/alext.h>
#include <algorithm>
#include <cstring>

namespace Platform
{

namespace
{

// Counts the names of a list that OpenAL gives as strings one after the other, ended by an empty one.
int CountNames(const ALCchar* names)
{
    int count = 0;
    for (; names != nullptr && *names != '\0'; names += std::strlen(names) + 1)
    {
        ++count;
    }
    return count;
}

} // namespace

SoundDevice::~SoundDevice()
{
    Close();
}

int SoundDevice::CountListedOutputs()
{
    const bool listsAll = alcIsExtensionPresent(nullptr, "ALC_ENUMERATE_ALL_EXT") == ALC_TRUE;
    return CountNames(alcGetString(nullptr, listsAll ? ALC_ALL_DEVICES_SPECIFIER : ALC_DEVICE_SPECIFIER));
}

bool SoundDevice::OpenOutput(const char* deviceName)
{
    if (!openTried)
    {
        openTried = true;
        device = alcOpenDevice(deviceName);
    }
    return device != nullptr && !silent;
}

bool SoundDevice::StartOutput(int sampleRate, int monoSources)
{
    if (device == nullptr || silent)
    {
        return false;
    }
    const ALCint withRate[] = {
        ALC_MONO_SOURCES, monoSources, ALC_STEREO_SOURCES, 0, ALC_FREQUENCY, sampleRate, 0};
    const ALCint withoutRate[] = {ALC_MONO_SOURCES, monoSources, ALC_STEREO_SOURCES, 0, 0};
    context = alcCreateContext(device, sampleRate > 0 ? withRate : withoutRate);
    if (context == nullptr)
    {
        return false;
    }
    MakeCurrent();
    return true;
}

bool SoundDevice::StartSilent(int monoSources)
{
    Close();
    openTried = true;
    silent = true;
    device = alcLoopbackOpenDeviceSOFT(nullptr);
    if (device == nullptr)
    {
        return false;
    }
    const ALCint attributes[] = {ALC_FORMAT_CHANNELS_SOFT,
                                 ALC_MONO_SOFT,
                                 ALC_FORMAT_TYPE_SOFT,
                                 ALC_SHORT_SOFT,
                                 ALC_FREQUENCY,
                                 kSilentRate,
                                 ALC_MONO_SOURCES,
                                 monoSources,
                                 ALC_STEREO_SOURCES,
                                 0,
                                 0};
    context = alcCreateContext(device, attributes);
    if (context == nullptr)
    {
        return false;
    }
    MakeCurrent();
    return true;
}

void SoundDevice::Close()
{
    if (context != nullptr)
    {
        if (alcGetCurrentContext() == context)
        {
            alcMakeContextCurrent(nullptr);
        }
        alcDestroyContext(context);
        context = nullptr;
    }
    if (device != nullptr)
    {
        alcCloseDevice(device);
        device = nullptr;
    }
}

int SoundDevice::MonoSources() const
{
    ALCint sources = 0;
    alcGetIntegerv(device, ALC_MONO_SOURCES, 1, &sources);
    return sources;
}

void SoundDevice::MakeCurrent() const
{
    if (context != nullptr && alcGetCurrentContext() != context)
    {
        alcMakeContextCurrent(context);
    }
}

void SoundDevice::RenderSilently(double seconds)
{
    if (!silent || context == nullptr)
    {
        return;
    }
    framesOwed += std::clamp(seconds, 0.0, 0.25) * kSilentRate;
    // Steps of a clock in decimal fractions of a second aren't exact in binary: a frame short by a hair
    // counts as whole, or a clock stepped by 0.05 s would render 399 frames and then 401.
    const int frames = std::min(static_cast<int>(framesOwed + 1e-6), kMostSilentFrames);
    framesOwed -= frames;
    if (frames > 0)
    {
        alcRenderSamplesSOFT(device, droppedMix.data(), frames);
    }
}

} // namespace Platform
