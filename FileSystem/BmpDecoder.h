#pragma once

#include <memory>
#include <string>

namespace Graphics
{
class Bitmap;
}

namespace FileSystem
{

class BinarySerializer;

// Decodes an uncompressed 24-bit BMP into RGBA, top row first. A refused file logs why and gives an empty
// reference; a truncated one raises through the serializer.
std::shared_ptr<Graphics::Bitmap> DecodeBmp(BinarySerializer& serializer, std::string name);

} // namespace FileSystem
