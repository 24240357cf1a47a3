#pragma once

// The few pieces the sound generator builds its instruments from: tones made of partials under an
// envelope, filtered noise from a seeded generator, and mixing into mono or stereo buffers. Samples are
// doubles in -1..1 at kSampleRate until they are written.
//
// Every rendered sound starts and ends at silence: an envelope is 0 at the first sample and at the last,
// with a flat slope at both, so sounds can be laid end to end or looped without a click. Nothing here
// draws on outside state, so the same calls give the same samples on every run.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Sound
{

constexpr int kSampleRate = 44100;

using Signal = std::vector<double>;

struct Stereo
{
    Signal left;
    Signal right;
};

// Frequency in hertz of a MIDI note number: 69 is A4 at 440 Hz, and each step is an equal-tempered
// semitone.
double NoteFrequency(double note);

// Times in seconds. The level rises from 0 to 1 over `attack`, then falls towards `sustain` with the time
// constant `decay` (0: no fall), and the last `release` seconds of the sound fade it to 0. Rise and fade
// are half cosines, so the level leaves and reaches 0 without a corner.
struct Envelope
{
    double attack = 0.005;
    double decay = 0;
    double sustain = 1;
    double release = 0.05;
};

// The envelope's level `time` seconds into a sound that lasts `length` seconds in all; 0 outside it.
double Level(const Envelope& envelope, double time, double length);

// A sine at `ratio` times the tone's frequency.
struct Partial
{
    double ratio;
    double amplitude;
};

struct Tone
{
    double frequency = 440;
    // When above 0, the frequency moves from `frequency` towards this one with the time constant
    // `glideTime`, as a struck drum skin settles.
    double glideTo = 0;
    double glideTime = 0.05;
    std::vector<Partial> partials = {{1, 1}};
    // Each partial fades at this rate per second for every harmonic above the first
    // (exp(-damping · (ratio - 1) · t)), so a tone mellows as it rings, as struck things do.
    double damping = 0;
    Envelope envelope;
};

// `frames` samples of the tone, the first and the last of them 0.
Signal Render(const Tone& tone, size_t frames);

// Deterministic white noise: a 32-bit xorshift from a fixed seed, so a sound with noise in it comes out
// the same on every run. The seed must not be 0, the one state xorshift never leaves.
class Noise
{
public:
    explicit Noise(uint32_t seed);
    // Uniform in -1..1.
    double Next();

private:
    uint32_t state;
};

// `frames` samples of noise through a one-pole low-pass at `cutoff` hertz, under the envelope.
Signal RenderNoise(Noise& noise, double cutoff, const Envelope& envelope, size_t frames);

// Adds `sound` times `gain` into `into` from frame `at` on; the sound must fit.
void Add(Signal& into, const Signal& sound, size_t at, double gain);
// The same into both channels, placed by `pan` from -1 (left) to 1 (right) at equal power.
void AddPanned(Stereo& into, const Signal& sound, size_t at, double gain, double pan);

// Scales the channels together so that their loudest sample reaches `peak`.
void Normalise(std::vector<Signal*> channels, double peak);

} // namespace Sound
