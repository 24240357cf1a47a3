#include "FileSystem/BitmapFormat.h"

#include "FileSystem/BinarySerializer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <initializer_list>

namespace FileSystem
{
namespace
{

using Signature = std::array<unsigned char, 8>;

constexpr Signature kPngSignature = {0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A};
// A TGA file of version 2 ends with this footer, its zero byte included.
constexpr char kTgaFooter[] = "TRUEVISION-XFILE.";
constexpr long kTgaFooterSize = sizeof(kTgaFooter);

bool StartsWith(const Signature& bytes, std::initializer_list<unsigned char> prefix)
{
    return std::equal(prefix.begin(), prefix.end(), bytes.begin());
}

BitmapFormat FormatBySignature(const Signature& bytes)
{
    if (bytes == kPngSignature)
    {
        return BitmapFormat::Png;
    }
    if (StartsWith(bytes, {'B', 'M'}))
    {
        return BitmapFormat::Bmp;
    }
    if (StartsWith(bytes, {'G', 'I', 'F', '8'}) && (bytes[4] == '7' || bytes[4] == '9') && bytes[5] == 'a')
    {
        return BitmapFormat::Gif;
    }
    // Only the JFIF variant; other JPEG files stay unknown.
    if (StartsWith(bytes, {0xFF, 0xD8, 0xFF, 0xE0}))
    {
        return BitmapFormat::Jpeg;
    }
    if (StartsWith(bytes, {0x49, 0x49, 0x2A, 0x00}) || StartsWith(bytes, {0x4D, 0x4D, 0x00, 0x2A}))
    {
        return BitmapFormat::Tif;
    }
    return BitmapFormat::Unknown;
}

bool HasTgaFooter(BinarySerializer& serializer)
{
    std::array<char, kTgaFooterSize> footer{};
    serializer.Seek(-kTgaFooterSize, SeekOrigin::End);
    serializer.ReadBytes(footer.data(), footer.size());
    return std::memcmp(footer.data(), kTgaFooter, footer.size()) == 0;
}

} // namespace

BitmapFormat DetectFormat(BinarySerializer& serializer)
{
    const long start = serializer.Tell();
    Signature bytes{};
    serializer.ReadBytes(bytes.data(), bytes.size());
    BitmapFormat format = FormatBySignature(bytes);
    if (format == BitmapFormat::Unknown && HasTgaFooter(serializer))
    {
        format = BitmapFormat::Tga;
    }
    serializer.Seek(start, SeekOrigin::Begin);
    return format;
}

} // namespace FileSystem
