#include "Synth.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numbers>

namespace Sound
{
namespace
{

// 0 at 0, 1 at 1, with a flat slope at both ends.
double HalfCosine(double amount)
{
    return 0.5 - 0.5 * std::cos(std::numbers::pi * std::clamp(amount, 0.0, 1.0));
}

// The length in seconds of a sound of `frames` samples, measured to its last sample, so that the
// envelope reaches 0 exactly there.
double Length(size_t frames)
{
    return frames > 1 ? static_cast<double>(frames - 1) / kSampleRate : 0;
}

} // namespace

double NoteFrequency(double note)
{
    return 440 * std::exp2((note - 69) / 12);
}

double Level(const Envelope& envelope, double time, double length)
{
    if (time <= 0 || time >= length)
    {
        return 0;
    }
    const double rise = envelope.attack > 0 ? HalfCosine(time / envelope.attack) : 1;
    const double fade = envelope.release > 0 ? HalfCosine((length - time) / envelope.release) : 1;
    double body = 1;
    if (envelope.decay > 0 && time > envelope.attack)
    {
        body =
            envelope.sustain + (1 - envelope.sustain) * std::exp(-(time - envelope.attack) / envelope.decay);
    }
    return rise * body * fade;
}

Signal Render(const Tone& tone, size_t frames)
{
    Signal sound(frames);
    const double length = Length(frames);
    // The phase of the first partial in turns, summed sample by sample so that a glide stays continuous;
    // each partial runs at its ratio times it. It is never wrapped, as a wrap would jump the phase of a
    // partial whose ratio is not whole; a double keeps it exact enough for far longer than any sound here.
    double phase = 0;
    for (size_t frame = 0; frame < frames; ++frame)
    {
        const double time = static_cast<double>(frame) / kSampleRate;
        const double level = Level(tone.envelope, time, length);
        double sample = 0;
        for (const Partial& partial : tone.partials)
        {
            const double fade = std::exp(-tone.damping * (partial.ratio - 1) * time);
            sample += partial.amplitude * fade * std::sin(2 * std::numbers::pi * partial.ratio * phase);
        }
        sound[frame] = level * sample;
        double frequency = tone.frequency;
        if (tone.glideTo > 0)
        {
            frequency = tone.glideTo + (tone.frequency - tone.glideTo) * std::exp(-time / tone.glideTime);
        }
        phase += frequency / kSampleRate;
    }
    return sound;
}

Noise::Noise(uint32_t seed) : state(seed)
{
    assert(seed != 0);
}

double Noise::Next()
{
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return static_cast<double>(state) / 2147483647.5 - 1;
}

Signal RenderNoise(Noise& noise, double cutoff, const Envelope& envelope, size_t frames)
{
    Signal sound(frames);
    const double length = Length(frames);
    const double smoothing = 1 - std::exp(-2 * std::numbers::pi * cutoff / kSampleRate);
    double filtered = 0;
    for (size_t frame = 0; frame < frames; ++frame)
    {
        filtered += smoothing * (noise.Next() - filtered);
        sound[frame] = Level(envelope, static_cast<double>(frame) / kSampleRate, length) * filtered;
    }
    return sound;
}

void Add(Signal& into, const Signal& sound, size_t at, double gain)
{
    assert(at + sound.size() <= into.size());
    for (size_t frame = 0; frame < sound.size(); ++frame)
    {
        into[at + frame] += gain * sound[frame];
    }
}

void AddPanned(Stereo& into, const Signal& sound, size_t at, double gain, double pan)
{
    const double angle = (std::clamp(pan, -1.0, 1.0) + 1) * std::numbers::pi / 4;
    Add(into.left, sound, at, gain * std::cos(angle));
    Add(into.right, sound, at, gain * std::sin(angle));
}

void Normalise(std::vector<Signal*> channels, double peak)
{
    double loudest = 0;
    for (const Signal* channel : channels)
    {
        for (double sample : *channel)
        {
            loudest = std::max(loudest, std::abs(sample));
        }
    }
    if (loudest == 0)
    {
        return;
    }
    for (Signal* channel : channels)
    {
        for (double& sample : *channel)
        {
            sample *= peak / loudest;
        }
    }
}

} // namespace Sound
