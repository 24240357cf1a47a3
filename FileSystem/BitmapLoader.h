#pragma once

// From a file name to a decoded bitmap: the file is opened, its format sniffed from its bytes and handed to
// the matching decoder. Formats that are recognised but not decoded are refused by name.

#include <memory>
#include <string>

namespace Graphics
{
class Bitmap;
}

namespace FileSystem
{

class BinarySerializer;

// An empty reference after a logged failure. A truncated or unreadable file raises
// FileSystem::SerializerError.
std::shared_ptr<Graphics::Bitmap> LoadBitmapFile(const std::string& name);

// The same from an open serializer, for readers that don't start from a file name.
std::shared_ptr<Graphics::Bitmap> DecodeBitmap(BinarySerializer& serializer, const std::string& name);

} // namespace FileSystem
