// Synthesises the sample game's music and sound effects and writes them under the Data folder (the first
// argument, or Data in the working directory); scripts/make-sounds builds and runs it. The noise is seeded,
// so the WAV files come out the same byte for byte on every run; the Ogg file differs only in the stream
// serial number that libsndfile draws at random (see SoundFile.h).
//
// The music is a loop: eight bars of 4/4 at 120 beats a minute, 16 seconds, in A minor. Every note is
// placed whole inside the loop and its envelope is back at 0 by the loop's last sample, so the end runs into
// the start without a click. The arpeggio's echo is written out as notes of its own, quieter, a dotted
// quarter and a dotted half later; echoes that would pass the end start again from the top of the loop, so
// the first bar hears the last bar's echoes just as every other bar hears its neighbour's.

#include "SoundFile.h"
#include "Synth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>

namespace Sound
{
namespace
{

constexpr size_t kBeatsPerMinute = 120;
constexpr size_t kBeatsPerBar = 4;
constexpr size_t kBars = 8;
static_assert(kSampleRate * 60 % kBeatsPerMinute == 0, "a beat must be a whole number of frames");
constexpr size_t kFramesPerBeat = kSampleRate * 60 / kBeatsPerMinute;
constexpr size_t kLoopFrames = kFramesPerBeat * kBeatsPerBar * kBars;
constexpr double kSecondsPerBeat = 60.0 / kBeatsPerMinute;
constexpr double kMusicQuality = 0.4;

size_t Frames(double seconds)
{
    return static_cast<size_t>(std::lround(seconds * kSampleRate));
}

// MIDI note numbers. Each chord lasts two bars; its arpeggio climbs through five of its tones.
struct Chord
{
    int bass;
    std::array<int, 4> pad;
    std::array<int, 5> arpeggio;
};

constexpr size_t kBeatsPerChord = 2 * kBeatsPerBar;
// Am7, Fmaj7, Cmaj7, G6. The pad's tones stay near each other from chord to chord and never a semitone
// apart, whose beating would growl under the rest.
const std::array<Chord, kBars / 2> kChords = {{
    {45, {57, 60, 64, 67}, {69, 72, 76, 79, 81}},
    {41, {53, 57, 60, 64}, {65, 69, 72, 76, 77}},
    {48, {55, 60, 64, 71}, {64, 67, 71, 72, 76}},
    {43, {55, 59, 62, 64}, {67, 71, 74, 76, 79}},
}};

// Which arpeggio tone each eighth of a chord's two bars plays: up and back in the first bar, a looser
// climb in the second.
constexpr std::array<size_t, 2 * 2 * kBeatsPerBar> kArpeggioSteps = {0, 1, 2, 3, 4, 3, 2, 1,
                                                                     0, 2, 1, 3, 2, 4, 3, 2};

// Puts a note of `tone` at `beat`, counted around the loop, lasting `seconds` or until the loop's end.
void Place(Stereo& music, const Tone& tone, double beat, double seconds, double gain, double pan)
{
    const size_t start = Frames(beat * kSecondsPerBeat) % kLoopFrames;
    const size_t frames = std::min(Frames(seconds), kLoopFrames - start);
    AddPanned(music, Render(tone, frames), start, gain, pan);
}

// A soft bell: a sine with a few overtones that die away faster than it does.
Tone Bell(double note)
{
    return Tone{.frequency = NoteFrequency(note),
                .partials = {{1, 1}, {2, 0.4}, {3, 0.12}},
                .damping = 3,
                .envelope = {.attack = 0.004, .decay = 0.3, .sustain = 0, .release = 0.25}};
}

void AddArpeggio(Stereo& music)
{
    // The note itself, then two echoes, each quieter and wider than the one before and on the other side.
    struct Echo
    {
        double beats;
        double gain;
        double pan;
    };
    constexpr std::array<Echo, 3> kEchoes = {{{0, 0.5, 0.25}, {1.5, 0.22, -0.6}, {3, 0.09, 0.8}}};
    for (size_t chord = 0; chord < kChords.size(); ++chord)
    {
        for (size_t step = 0; step < kArpeggioSteps.size(); ++step)
        {
            const Tone bell = Bell(kChords[chord].arpeggio[kArpeggioSteps[step]]);
            const double beat = static_cast<double>(chord * kBeatsPerChord) + 0.5 * static_cast<double>(step);
            // Eighths alternate a little left and right; each note's echoes mirror its side.
            const double side = step % 2 == 0 ? -1 : 1;
            for (const Echo& echo : kEchoes)
            {
                Place(music, bell, beat + echo.beats, 1.0, echo.gain, side * echo.pan);
            }
        }
    }
}

// A round sine bass that settles to a hum after its onset.
void AddBass(Stereo& music)
{
    struct BassNote
    {
        double beat;
        double beats;
        int interval;
    };
    // Per bar: the root for two beats, again for a beat and a half, and the fifth on the last half beat.
    constexpr std::array<BassNote, 3> kBar = {{{0, 2, 0}, {2, 1.5, 0}, {3.5, 0.5, 7}}};
    for (size_t bar = 0; bar < kBars; ++bar)
    {
        const Chord& chord = kChords[bar * kBeatsPerBar / kBeatsPerChord];
        for (const BassNote& note : kBar)
        {
            const Tone bass{.frequency = NoteFrequency(chord.bass + note.interval),
                            .partials = {{1, 1}, {2, 0.3}, {3, 0.08}},
                            .damping = 1,
                            .envelope = {.attack = 0.01, .decay = 0.6, .sustain = 0.55, .release = 0.08}};
            Place(music, bass, static_cast<double>(bar * kBeatsPerBar) + note.beat,
                  note.beats * kSecondsPerBeat, 0.45, 0);
        }
    }
}

// A slow pad that swells in and out over each chord. Every tone is played twice, a few cents flat on the
// left and sharp on the right, and the slow beating between them gives it width.
void AddPad(Stereo& music)
{
    constexpr double kDetune = 0.05;
    for (size_t chord = 0; chord < kChords.size(); ++chord)
    {
        for (int note : kChords[chord].pad)
        {
            for (double side : {-1.0, 1.0})
            {
                const Tone pad{.frequency = NoteFrequency(note + side * kDetune),
                               .partials = {{1, 1}, {2, 0.2}, {3, 0.05}},
                               .envelope = {.attack = 1.2, .release = 1.5}};
                Place(music, pad, static_cast<double>(chord * kBeatsPerChord),
                      static_cast<double>(kBeatsPerChord) * kSecondsPerBeat, 0.12, side * 0.6);
            }
        }
    }
}

Stereo MakeMusic()
{
    Stereo music{Signal(kLoopFrames), Signal(kLoopFrames)};
    AddPad(music);
    AddBass(music);
    AddArpeggio(music);
    Normalise({&music.left, &music.right}, 0.7);
    return music;
}

// A short soft thump: a low sine whose pitch drops as a drum skin's does, with a breath of noise on the
// hit.
Signal MakeBounce()
{
    const size_t frames = Frames(0.16);
    Signal sound(frames);
    const Tone thump{.frequency = 240,
                     .glideTo = 85,
                     .glideTime = 0.025,
                     .partials = {{1, 1}, {2, 0.25}},
                     .damping = 8,
                     .envelope = {.attack = 0.002, .decay = 0.05, .sustain = 0, .release = 0.06}};
    Add(sound, Render(thump, frames), 0, 1);
    Noise noise(0x5EED0001);
    Add(sound,
        RenderNoise(noise, 1500, {.attack = 0.001, .decay = 0.01, .sustain = 0, .release = 0.02},
                    Frames(0.04)),
        0, 0.3);
    Normalise({&sound}, 0.6);
    return sound;
}

// A bright chime: A major climbing from A5 to A6 in quick strokes, each a bell with a clanging overtone,
// all ringing out together.
Signal MakeCatch()
{
    constexpr double kLength = 0.28;
    constexpr std::array<int, 4> kNotes = {81, 85, 88, 93};
    const size_t frames = Frames(kLength);
    Signal sound(frames);
    for (size_t stroke = 0; stroke < kNotes.size(); ++stroke)
    {
        const size_t start = Frames(0.04 * static_cast<double>(stroke));
        const Tone chime{.frequency = NoteFrequency(kNotes[stroke]),
                         .partials = {{1, 1}, {2, 0.4}, {2.76, 0.2}, {5.4, 0.08}},
                         .damping = 10,
                         .envelope = {.attack = 0.002, .decay = 0.08, .sustain = 0.15, .release = 0.08}};
        Add(sound, Render(chime, frames - start), start, 0.6 + 0.13 * static_cast<double>(stroke));
    }
    Normalise({&sound}, 0.7);
    return sound;
}

struct Effect
{
    const char* path;
    Signal (*make)();
};

const Effect kEffects[] = {{"Sounds/Bounce.wav", MakeBounce}, {"Sounds/Catch.wav", MakeCatch}};
constexpr const char* kMusicPath = "Sounds/Music.ogg";

} // namespace
} // namespace Sound

int main(int argc, char** argv)
{
    const std::filesystem::path data = argc > 1 ? argv[1] : "Data";
    const std::filesystem::path folder = (data / Sound::kMusicPath).parent_path();
    std::error_code made;
    std::filesystem::create_directories(folder, made);
    if (made)
    {
        std::fprintf(stderr, "quellmar_sounds: can't make %s: %s\n", folder.c_str(), made.message().c_str());
        return 1;
    }
    std::string error;
    for (const Sound::Effect& effect : Sound::kEffects)
    {
        const std::filesystem::path path = data / effect.path;
        if (!Sound::WriteWav(path.string(), effect.make(), error))
        {
            std::fprintf(stderr, "quellmar_sounds: can't write %s: %s\n", path.c_str(), error.c_str());
            return 1;
        }
        std::printf("%s\n", path.c_str());
    }
    const std::filesystem::path music = data / Sound::kMusicPath;
    if (!Sound::WriteOggVorbis(music.string(), Sound::MakeMusic(), Sound::kMusicQuality, error))
    {
        std::fprintf(stderr, "quellmar_sounds: can't write %s: %s\n", music.c_str(), error.c_str());
        return 1;
    }
    std::printf("%s\n", music.c_str());
    return 0;
}
