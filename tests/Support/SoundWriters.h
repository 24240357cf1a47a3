#pragma once

// Writers of short sound files for tests, fuzz seeds and benchmarks, in every format the sound library
// reads, made with libsndfile itself. They write what a test asks for, cut short included, and know
// nothing of the engine's decoding.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

enum class SoundFileFormat
{
    Wav,
    Flac,
    OggVorbis,
    Opus,
    Mp3,
};

struct SoundFileShape
{
    SoundFileFormat format = SoundFileFormat::Wav;
    // Opus files take only 8, 12, 16, 24 and 48 kHz.
    int sampleRate = 16000;
    int channels = 1;
    double seconds = 0.5;
    // White noise from a fixed seed instead of a 440 Hz sine.
    bool noise = false;
    // Keeps only the file's first bytes, as a download or a copy cut short would.
    std::optional<size_t> cutToBytes = std::nullopt;
};

// Throws std::runtime_error with libsndfile's reason if the file can't be written.
void WriteSoundFile(const std::string& path, const SoundFileShape& shape);

// The frames that libsndfile decodes from the file, read to its end: for the lossy formats not quite what
// was written, as their encoders pad the end.
int64_t CountDecodedFrames(const std::string& path);

// ".wav", ".flac", ".ogg", ".opus" or ".mp3".
const char* ExtensionOf(SoundFileFormat format);
