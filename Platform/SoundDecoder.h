#pragma once

// Decoding of sound files into 16-bit samples, through libsndfile, which tells WAV, FLAC, OGG/Vorbis, Opus
// and MP3 apart by their content. libsndfile reads through callbacks over bytes that this file owns: an open
// file descriptor for the library's sounds and streams, or a block of memory for the fuzz target. It never
// sees a file name, so the length of one doesn't matter.
//
// Every refusal is one of the library's result codes, chosen here once for sounds and streams alike: bytes
// libsndfile doesn't recognise, or can't decode, or of more than two channels, are a Format error; bytes it
// recognises but can't make sense of are FileBad.

#include "Platform/SoundHandles.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace Platform
{

class SoundDecoder
{
public:
    // Opens the named file, which must be a regular file (a FIFO never blocks the call), and reads its
    // header.
    static SoundResult OpenFile(const char* fileName, std::unique_ptr<SoundDecoder>& decoder);
    // The bytes are borrowed and must outlive the decoder.
    static SoundResult OpenMemory(const uint8_t* bytes, size_t size, std::unique_ptr<SoundDecoder>& decoder);

    // Defined with the two above, which alone make decoders.
    struct State;
    explicit SoundDecoder(std::unique_ptr<State> state);
    ~SoundDecoder();
    SoundDecoder(const SoundDecoder&) = delete;
    SoundDecoder& operator=(const SoundDecoder&) = delete;

    // 1 or 2, interleaved in what Read gives.
    int Channels() const;
    int SampleRate() const;
    // Up to `frames` frames from where the last read ended; fewer at the end or at damage, 0 after both.
    size_t Read(int16_t* samples, size_t frames);
    // Back to the first frame, for a stream that loops; false if the decoder can't go back.
    bool Rewind();

private:
    std::unique_ptr<State> state;
};

// Decodes every frame left, keeping what came before any damage. Memory if the samples would take more than
// capBytes (or the system has no memory for them), FileBad if not one frame decodes.
SoundResult DecodeWhole(SoundDecoder& decoder, size_t capBytes, std::vector<int16_t>& samples);

} // namespace Platform
