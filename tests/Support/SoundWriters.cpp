#include "Support/SoundWriters.h"

#include <cmath>
#include <filesystem>
#include <numbers>
#include <sndfile.h>
#include <stdexcept>
#include <vector>

namespace
{

int LibraryFormatOf(SoundFileFormat format)
{
    switch (format)
    {
    case SoundFileFormat::Wav:
        return SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    case SoundFileFormat::Flac:
        return SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
    case SoundFileFormat::OggVorbis:
        return SF_FORMAT_OGG | SF_FORMAT_VORBIS;
    case SoundFileFormat::Opus:
        return SF_FORMAT_OGG | SF_FORMAT_OPUS;
    case SoundFileFormat::Mp3:
        return SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;
    }
    return 0;
}

std::vector<float> MakeSamples(const SoundFileShape& shape)
{
    const auto frames = static_cast<size_t>(std::lround(shape.seconds * shape.sampleRate));
    std::vector<float> samples(frames * static_cast<size_t>(shape.channels));
    uint32_t noiseState = 12345;
    for (size_t index = 0; index < samples.size(); ++index)
    {
        const size_t frame = index / static_cast<size_t>(shape.channels);
        noiseState = noiseState * 1664525u + 1013904223u;
        samples[index] =
            shape.noise ? static_cast<float>(noiseState >> 8) / float(1 << 24) - 0.5f
                        : 0.5f * static_cast<float>(std::sin(2 * std::numbers::pi * 440 *
                                                             static_cast<double>(frame) / shape.sampleRate));
    }
    return samples;
}

} // namespace

void WriteSoundFile(const std::string& path, const SoundFileShape& shape)
{
    SF_INFO info = {};
    info.samplerate = shape.sampleRate;
    info.channels = shape.channels;
    info.format = LibraryFormatOf(shape.format);
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (file == nullptr)
    {
        throw std::runtime_error("cannot write " + path + ": " + sf_strerror(nullptr));
    }
    const std::vector<float> samples = MakeSamples(shape);
    const auto frames = static_cast<sf_count_t>(samples.size()) / shape.channels;
    const sf_count_t written = sf_writef_float(file, samples.data(), frames);
    sf_close(file);
    if (written != frames)
    {
        throw std::runtime_error("cannot write all of " + path);
    }
    if (shape.cutToBytes)
    {
        std::filesystem::resize_file(path, *shape.cutToBytes);
    }
}

int64_t CountDecodedFrames(const std::string& path)
{
    SF_INFO info = {};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (file == nullptr)
    {
        throw std::runtime_error("cannot read " + path + ": " + sf_strerror(nullptr));
    }
    std::vector<short> chunk(4096 * static_cast<size_t>(info.channels));
    int64_t frames = 0;
    sf_count_t got = 0;
    while ((got = sf_readf_short(file, chunk.data(), 4096)) > 0)
    {
        frames += got;
    }
    sf_close(file);
    return frames;
}

const char* ExtensionOf(SoundFileFormat format)
{
    const char* const extensions[] = {".wav", ".flac", ".ogg", ".opus", ".mp3"};
    return extensions[static_cast<int>(format)];
}
