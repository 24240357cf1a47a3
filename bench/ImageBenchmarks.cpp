// The image readers' costs: PNG and BMP decoding from a real file through the whole path, inflate alone
// beside PNG so the unfilter's share shows, and a hit in the bitmap cache.

#include "Debug/Logger.h"
#include "FileSystem/AssetManager.h"
#include "FileSystem/BitmapLoader.h"
#include "FileSystem/FileSerializerBinary.h"
#include "Graphics/Bitmap.h"
#include "Support/ImageWriters.h"
#include "Support/MemoryFile.h"
#include "Support/TempFolder.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <random>
#include <zlib.h>

namespace
{

constexpr uint32_t kSize = 2048;

// A smooth gradient with ±2 levels of noise on red, green and blue, alpha a smooth gradient: compresses
// like a photograph rather than like flat art.
Bytes GradientPixels(uint32_t width, uint32_t height, uint32_t bytesPerPixel)
{
    std::mt19937 random(12345);
    std::uniform_int_distribution<int> noise(-2, 2);
    Bytes pixels;
    pixels.reserve(size_t{width} * height * bytesPerPixel);
    for (uint32_t y = 0; y < height; ++y)
    {
        for (uint32_t x = 0; x < width; ++x)
        {
            const int base[3] = {static_cast<int>(x * 255 / width), static_cast<int>(y * 255 / height),
                                 static_cast<int>((x + y) * 255 / (width + height))};
            for (const int channel : base)
            {
                pixels.push_back(static_cast<uint8_t>(std::clamp(channel + noise(random), 0, 255)));
            }
            if (bytesPerPixel == 4)
            {
                pixels.push_back(static_cast<uint8_t>((x + 2 * y) * 255 / (width + 2 * height)));
            }
        }
    }
    return pixels;
}

void DecodeFile(benchmark::State& state, const Bytes& file, uint64_t outputBytes)
{
    const MemoryFile memory(file);
    for (auto _ : state)
    {
        FileSystem::FileSerializerBinary serializer(memory.Open());
        std::shared_ptr<Graphics::Bitmap> bitmap = FileSystem::DecodeBitmap(serializer, "bench");
        if (!bitmap)
        {
            state.SkipWithError("decoding failed");
            return;
        }
        benchmark::DoNotOptimize(bitmap->pixels[0]);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * outputBytes));
}

// Argument: the colour type, 2 (truecolour) or 6 (with alpha).
void PngDecode(benchmark::State& state)
{
    const uint8_t colourType = static_cast<uint8_t>(state.range(0));
    const Bytes pixels = GradientPixels(kSize, kSize, colourType == 6 ? 4 : 3);
    const Bytes file = EncodePng(kSize, kSize, colourType, pixels, {0, 1, 2, 3, 4}, 6, 1 << 16);
    DecodeFile(state, file, uint64_t{kSize} * kSize * 4);
}
BENCHMARK(PngDecode)->Arg(2)->Arg(6)->Unit(benchmark::kMillisecond);

// zlib's inflate of the same data alone; bytes processed count the same RGBA output as PngDecode.
void PngUncompressAlone(benchmark::State& state)
{
    const uint32_t bytesPerPixel = state.range(0) == 6 ? 4 : 3;
    const Bytes filtered =
        FilterRows(GradientPixels(kSize, kSize, bytesPerPixel), kSize, kSize, bytesPerPixel, {0, 1, 2, 3, 4});
    const Bytes compressed = Deflate(filtered, 6);
    Bytes output(filtered.size());
    for (auto _ : state)
    {
        uLongf size = output.size();
        uncompress(output.data(), &size, compressed.data(), compressed.size());
        benchmark::DoNotOptimize(output.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * uint64_t{kSize} * kSize * 4));
}
BENCHMARK(PngUncompressAlone)->Arg(2)->Arg(6)->Unit(benchmark::kMillisecond);

// Argument: the width; 2047 pads every row by 3 bytes.
void BmpDecode(benchmark::State& state)
{
    const int32_t width = static_cast<int32_t>(state.range(0));
    const Bytes file =
        MakeBmp(width, static_cast<int32_t>(kSize), GradientPixels(static_cast<uint32_t>(width), kSize, 3));
    DecodeFile(state, file, uint64_t(width) * kSize * 4);
}
BENCHMARK(BmpDecode)->Arg(2048)->Arg(2047)->Unit(benchmark::kMillisecond);

// LoadBitmap of a bitmap that is alive in the cache, by a name of 30 characters.
void AssetCacheHit(benchmark::State& state)
{
    const TempFolder directory;
    std::string name = directory.PathOf("");
    name += std::string(name.size() < 26 ? 26 - name.size() : 1, 'h') + ".bmp";
    directory.Write(name.substr(name.find_last_of('/') + 1), MakeBmp(1, 1, {1, 2, 3}));
    Logger::Detach(StandardOutputSink);
    const std::shared_ptr<Graphics::Bitmap> held = FileSystem::LoadBitmap(name);
    Logger::Attach(StandardOutputSink, 7);
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(FileSystem::LoadBitmap(name));
    }
    state.counters["name_length"] = static_cast<double>(name.size());
}
BENCHMARK(AssetCacheHit);

} // namespace
