#include "Debug/Exception.h"
#include "FileSystem/BitmapFormat.h"
#include "FileSystem/FileSerializerBinary.h"
#include "Support/LogCapture.h"
#include "Support/MemoryFile.h"

#include <cstring>
#include <gtest/gtest.h>

namespace
{

using FileSystem::BitmapFormat;

std::vector<uint8_t> Padded(std::vector<uint8_t> start, size_t size = 32)
{
    start.resize(size, 0x11);
    return start;
}

BitmapFormat Detect(const std::vector<uint8_t>& content, long position = 0)
{
    const MemoryFile bytes(content);
    FileSystem::FileSerializerBinary serializer(bytes.Open());
    serializer.Seek(position, FileSystem::SeekOrigin::Begin);
    const BitmapFormat format = FileSystem::DetectFormat(serializer);
    EXPECT_EQ(serializer.Tell(), position);
    return format;
}

std::vector<uint8_t> WithTgaFooter(size_t size)
{
    std::vector<uint8_t> content(size, 0x11);
    const char footer[] = "TRUEVISION-XFILE.";
    std::memcpy(content.data() + size - sizeof(footer), footer, sizeof(footer));
    return content;
}

TEST(BitmapFormat, SignaturesAreTestedInOrderAndThePositionIsKept)
{
    EXPECT_EQ(Detect(Padded({0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A})), BitmapFormat::Png);
    EXPECT_EQ(Detect(Padded({0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0B})), BitmapFormat::Unknown);
    EXPECT_EQ(Detect(Padded({'B', 'M'})), BitmapFormat::Bmp);
    EXPECT_EQ(Detect(Padded({'G', 'I', 'F', '8', '7', 'a'})), BitmapFormat::Gif);
    EXPECT_EQ(Detect(Padded({'G', 'I', 'F', '8', '9', 'a'})), BitmapFormat::Gif);
    EXPECT_EQ(Detect(Padded({'G', 'I', 'F', '8', '8', 'a'})), BitmapFormat::Unknown);
    EXPECT_EQ(Detect(Padded({0xFF, 0xD8, 0xFF, 0xE0})), BitmapFormat::Jpeg);
    EXPECT_EQ(Detect(Padded({0xFF, 0xD8, 0xFF, 0xE1})), BitmapFormat::Unknown);
    EXPECT_EQ(Detect(Padded({0x49, 0x49, 0x2A, 0x00})), BitmapFormat::Tif);
    EXPECT_EQ(Detect(Padded({0x4D, 0x4D, 0x00, 0x2A})), BitmapFormat::Tif);
    EXPECT_EQ(Detect(Padded({0x49, 0x49, 0x00, 0x2A})), BitmapFormat::Unknown);
    EXPECT_EQ(Detect(WithTgaFooter(18)), BitmapFormat::Tga);
    EXPECT_EQ(Detect(WithTgaFooter(40), 3), BitmapFormat::Tga);
    // A BMP that happens to end with the footer is still a BMP.
    std::vector<uint8_t> bmpWithFooter = WithTgaFooter(40);
    bmpWithFooter[0] = 'B';
    bmpWithFooter[1] = 'M';
    EXPECT_EQ(Detect(bmpWithFooter), BitmapFormat::Bmp);
}

TEST(BitmapFormat, ShortFilesRunOutOfBytes)
{
    const LogCapture log;
    for (const std::vector<uint8_t>& content :
         {std::vector<uint8_t>{}, Padded({'B', 'M'}, 7), Padded({0x00}, 17)})
    {
        const MemoryFile bytes(content);
        FileSystem::FileSerializerBinary serializer(bytes.Open());
        EXPECT_THROW(FileSystem::DetectFormat(serializer), FileSystem::SerializerError) << content.size();
    }
    EXPECT_EQ(log.Messages("FileSystem", LogLevel::Fatal).size(), 3u);
}

} // namespace
