#pragma once

// Writes images as PNG files that every reader takes: 8-bit RGBA, not interlaced, every row unfiltered and
// all of them compressed into one IDAT chunk. Made for the art tools and for screenshots, where being read
// everywhere matters and the size of the file hardly does.

#include <cstdint>
#include <string>

namespace FileSystem
{

// The whole file, from rgba: width × height pixels of four bytes (red, green, blue, alpha), top row first,
// rows without padding. A side of 0, or an image whose data might not fit one chunk (2³¹ − 1 bytes, some
// 23000 × 23000 pixels), raises std::invalid_argument.
std::string EncodePng(uint32_t width, uint32_t height, const uint8_t* rgba);

// Replaces the file with EncodePng's bytes, so it holds either the old content or the whole image. False
// when the file can't be written, with errno telling why, as ReplaceFileContent leaves it.
bool WritePngFile(const std::string& path, uint32_t width, uint32_t height, const uint8_t* rgba);

} // namespace FileSystem
