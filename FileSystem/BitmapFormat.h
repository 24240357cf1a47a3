#pragma once

// Recognises an image file by its first bytes, never by its name. Only PNG and BMP are decoded; the
// others are recognised so that they can be refused by name.

#include <cstdint>

namespace FileSystem
{

class BinarySerializer;

enum class BitmapFormat : int32_t
{
    Unknown = 0,
    Png = 1,
    Bmp = 2,
    Gif = 3,
    Tga = 4,
    Tif = 5,
    Jpeg = 6,
};

// Leaves the read position where it was. A file under 8 bytes, or an unknown one under 18, raises
// "Unexpected end of file" through the serializer.
BitmapFormat DetectFormat(BinarySerializer& serializer);

} // namespace FileSystem
