// libFuzzer target: any bytes through the sound decoder as the sound library drives it, from memory instead
// of a file: opened, decoded whole under a cap, then rewound and read again as a looping stream would be.
// Seeds: a short file of each format in seeds/sound, made with tests/Support/SoundWriters.

#include "Platform/SoundDecoder.h"

#include <array>

namespace
{

// Small enough for libFuzzer's memory limit, large enough for minutes of a seed's sound.
constexpr size_t kDecodeCapBytes = size_t{16} << 20;
constexpr size_t kFramesAfterRewind = 4096;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::unique_ptr<Platform::SoundDecoder> decoder;
    if (Platform::SoundDecoder::OpenMemory(data, size, decoder) != Platform::SoundResult::Ok)
    {
        return 0;
    }
    std::vector<int16_t> samples;
    Platform::DecodeWhole(*decoder, kDecodeCapBytes, samples);
    if (decoder->Rewind())
    {
        std::array<int16_t, 2 * kFramesAfterRewind> chunk;
        decoder->Read(chunk.data(), kFramesAfterRewind);
    }
    return 0;
}
