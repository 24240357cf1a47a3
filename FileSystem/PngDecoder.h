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

// Decodes an 8-bit truecolour PNG, with or without alpha and not interlaced, into RGBA. A refused file logs
// why and gives an empty reference; a truncated one raises through the serializer. CRCs aren't checked.
std::shared_ptr<Graphics::Bitmap> DecodePng(BinarySerializer& serializer, std::string name);

} // namespace FileSystem
