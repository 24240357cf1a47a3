// What sound costs the game thread: the audio system's update of a frame with every channel busy, looping
// on both groups, with and without streams to refill, and the load of a ten second OGG/Vorbis sound. They
// play into OpenAL's null device, which mixes in real time on its own thread as a sound card's would.

#include "BenchGame.h"
#include "Components/AudioComponent.h"
#include "Support/SoundWriters.h"

#include <benchmark/benchmark.h>

namespace
{

constexpr int kChannels = 256;

SoundFileShape Shape(SoundFileFormat format, int sampleRate, int channels, double seconds)
{
    SoundFileShape shape;
    shape.format = format;
    shape.sampleRate = sampleRate;
    shape.channels = channels;
    shape.seconds = seconds;
    return shape;
}

// A game whose root Space holds `count` objects that loop a one second WAV, alternately on the music and
// the effects group, and `streams` more that loop an OGG stream each on the music group.
void StartPlaying(BenchGame& bench, int count, int streams)
{
    WriteSoundFile((bench.data.Path() / "Loop.wav").string(), Shape(SoundFileFormat::Wav, 16000, 1, 1.0));
    WriteSoundFile((bench.data.Path() / "Stream.ogg").string(),
                   Shape(SoundFileFormat::OggVorbis, 44100, 2, 4.0));
    Space& space = bench.game.rootSpace;
    for (int index = 0; index < count + streams; ++index)
    {
        const GameObjectHandle object = space.CreateObject();
        Components::AudioComponent& audio =
            *space.audio.components.Find(object.Get().AddComponent(Components::Audio));
        const bool stream = index >= count;
        bench.game.audio.SetSource(audio, stream ? "Stream.ogg" : "Loop.wav", stream);
        bench.game.audio.Play(audio, stream || index % 2 == 0, false, true, -1);
    }
}

// Arguments: looping sounds, then streams.
void AudioUpdate(benchmark::State& state)
{
    BenchGame bench({});
    StartPlaying(bench, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    for (auto _ : state)
    {
        bench.time += BenchGame::kDt;
        bench.game.audio.Update(bench.game, bench.game.rootSpace, BenchGame::kDt, bench.time, bench.time);
    }
}
BENCHMARK(AudioUpdate)->Args({kChannels, 0})->Args({kChannels - 16, 16})->Unit(benchmark::kMicrosecond);

void SoundLoadOgg(benchmark::State& state)
{
    BenchGame bench({});
    WriteSoundFile((bench.data.Path() / "Music.ogg").string(),
                   Shape(SoundFileFormat::OggVorbis, 44100, 2, 10.0));
    Platform::SoundLibrary& library = *bench.game.audio.system;
    for (auto _ : state)
    {
        Platform::SoundHandle sound;
        if (library.CreateSound("Music.ogg", sound) != Platform::SoundResult::Ok)
        {
            state.SkipWithError("the OGG didn't load");
            break;
        }
        library.ReleaseSound(sound);
    }
}
BENCHMARK(SoundLoadOgg)->Unit(benchmark::kMillisecond);

} // namespace
