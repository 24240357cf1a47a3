#pragma once

// Writers of small BMP and PNG files for tests, fuzz seeds and benchmarks. They write what a test asks
// for, broken headers included, and know nothing of the engine's decoders.

#include <cstdint>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

struct BmpLayout
{
    uint32_t headerSize = 40;
    uint16_t planes = 1;
    uint16_t depth = 24;
    uint32_t compression = 0;
    // Bytes between the headers and the pixels.
    uint32_t gap = 0;
    bool topDown = false;
    bool dropFinalPadding = false;
};

// rgb holds width × height pixels of three bytes, top row first. A 12-byte header stores 16-bit sizes.
Bytes MakeBmp(int32_t width, int32_t height, const Bytes& rgb, const BmpLayout& layout = {});

// Three bytes a pixel to four, alpha 255.
Bytes WithOpaqueAlpha(const Bytes& rgb);

// One chunk with its length and CRC; a bad CRC is the right one plus one.
Bytes PngChunk(const std::string& type, const Bytes& data, bool badCrc = false);
Bytes PngHeaderData(uint32_t width, uint32_t height, uint8_t depth, uint8_t colourType,
                    uint8_t interlace = 0);
// The signature followed by the chunks, each already made by PngChunk.
Bytes AssemblePng(const std::vector<Bytes>& chunks);

// Filters rows of pixels (bytesPerPixel each, top row first) with the given filter type per row.
Bytes FilterRows(const Bytes& pixels, uint32_t width, uint32_t height, uint32_t bytesPerPixel,
                 const std::vector<uint8_t>& filterOfRow);
Bytes Deflate(const Bytes& data, int level = 6);

// A whole PNG of colour type 2 or 6, rows filtered with the types in turn, its data in chunks of at most
// idatSize bytes.
Bytes EncodePng(uint32_t width, uint32_t height, uint8_t colourType, const Bytes& pixels,
                const std::vector<uint8_t>& filterOfRow, int level = 6, size_t idatSize = 1 << 20);
