#pragma once

// The body of the decoder fuzz targets, shared with the unit tests that run the decoders over fixed inputs in
// the gcc builds: the bytes go through a real file and the decoder as LoadBitmap would call it.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Graphics
{
class Bitmap;
}

namespace FileSystem
{
class BinarySerializer;
}

using BitmapDecoder = std::shared_ptr<Graphics::Bitmap> (*)(FileSystem::BinarySerializer&, std::string);

// Catches FileSystem::FileSystemError as LoadBitmap does and reads every byte of a bitmap it gets, so a
// pixel array shorter than its size claims shows up under AddressSanitizer. True if a bitmap came.
bool DecodeFuzzInput(const uint8_t* data, size_t size, BitmapDecoder decoder);

// The decoder's bitmap, named "test", or what it raises.
std::shared_ptr<Graphics::Bitmap> DecodeBytes(const std::vector<uint8_t>& file, BitmapDecoder decoder);
// The bitmap's width × height × 4 bytes.
std::vector<uint8_t> PixelsOf(const Graphics::Bitmap& bitmap);

// Detaches the standard sinks so that millions of inputs don't flood the console.
void SilenceStandardSinks();
void RestoreStandardSinks();
