#include "Debug/Exception.h"
#include "FileSystem/FileSerializerBinary.h"
#include "Support/LogCapture.h"
#include "Support/MemoryFile.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>

namespace
{

using FileSystem::FileSerializerBinary;
using FileSystem::SeekOrigin;
using FileSystem::SerializerError;

std::string RaisedText(const std::function<void()>& action)
{
    try
    {
        action();
    }
    catch (const SerializerError& error)
    {
        return error.what();
    }
    return "<nothing raised>";
}

TEST(FileSerializerBinary, IntegersSwapWhenAskedAndFloatsNever)
{
    const MemoryFile bytes({0x00, 0x00, 0x01, 0x02, 0x00, 0x00, 0x01, 0x02, 0x00, 0x00,
                            0x80, 0x3F, 0x00, 0x00, 0x80, 0x3F, 0x01, 0x02, 0x01, 0x02,
                            0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0xFF, 0xFE});
    FileSerializerBinary serializer(bytes.Open());
    serializer.SetByteSwap(true);
    EXPECT_EQ(serializer.ReadU32(), 258u);
    serializer.SetByteSwap(false);
    EXPECT_EQ(serializer.ReadU32(), 0x02010000u);
    EXPECT_EQ(serializer.ReadFloat(), 1.0f);
    serializer.SetByteSwap(true);
    EXPECT_TRUE(serializer.GetByteSwap());
    EXPECT_EQ(serializer.ReadFloat(), 1.0f);
    EXPECT_EQ(serializer.ReadU16(), 0x0102u);
    EXPECT_EQ(serializer.ReadI64(), 0x0102030405060708);
    EXPECT_EQ(serializer.ReadI16(), -2);
}

TEST(FileSerializerBinary, SeeksLogABadOriginAndSkipIsForwardByAnUnsignedCount)
{
    const MemoryFile bytes({1, 2, 3, 4, 5, 6});
    FileSerializerBinary serializer(bytes.Open());
    serializer.Skip(4);
    const LogCapture log;
    serializer.Seek(2, static_cast<SeekOrigin>(3));
    EXPECT_EQ(log.Messages("Serializer", LogLevel::Error),
              std::vector<std::string>{"Bad SeekOrigin passed to Seek: 3"});
    EXPECT_EQ(serializer.Tell(), 2);
    EXPECT_EQ(serializer.ReadU8(), 3);
    serializer.Seek(-1, SeekOrigin::End);
    EXPECT_EQ(serializer.ReadU8(), 6);
    serializer.Rewind();
    EXPECT_EQ(serializer.ReadU8(), 1);
    serializer.Skip(0xFFFFFFF4u);
    EXPECT_EQ(serializer.Tell(), 0xFFFFFFF5l);
    EXPECT_EQ(RaisedText([&] { serializer.ReadU8(); }), "Unexpected end of file");
}

TEST(FileSerializerBinary, ReadStringStopsAfterTheZeroByteSpansBlocksAndRaisesAtTheEnd)
{
    std::vector<uint8_t> content = {'a', 'b', 'c', 0};
    content.insert(content.end(), 300, 'x');
    content.insert(content.end(), {0, 'y'});
    const MemoryFile bytes(content);
    FileSerializerBinary serializer(bytes.Open());
    std::string text;
    EXPECT_EQ(serializer.ReadString(text), 3u);
    EXPECT_EQ(text, "abc");
    EXPECT_EQ(serializer.Tell(), 4);
    EXPECT_EQ(serializer.ReadString(text), 300u);
    EXPECT_EQ(text, std::string(300, 'x'));

    // A short read closes the file, and every later use raises.
    const LogCapture log;
    EXPECT_EQ(RaisedText([&] { serializer.ReadString(text); }), "Unexpected end of file");
    ASSERT_EQ(log.Messages("FileSystem", LogLevel::Fatal).size(), 1u);
    EXPECT_TRUE(
        log.Messages("FileSystem", LogLevel::Fatal)[0].starts_with("Exception: Unexpected end of file"));
    for (const auto& use :
         std::vector<std::function<void()>>{
             [&] { serializer.Skip(1); }, [&] { serializer.Tell(); }, [&] { serializer.Rewind(); },
             [&] { serializer.Seek(0, SeekOrigin::Begin); }, [&] { serializer.ReadBool(); }})
    {
        EXPECT_EQ(RaisedText(use), "FileSerializerBinary has bad file pointer");
    }
    EXPECT_EQ(log.Messages("Serializer", LogLevel::Fatal).size(), 5u);
    serializer.Skip(0);
    serializer.Close();
    serializer.Close();

    // A read error is told apart from the end.
    FileSerializerBinary folder(std::fopen(std::filesystem::temp_directory_path().c_str(), "rb"));
    EXPECT_EQ(RaisedText([&] { folder.ReadU8(); }), "An error occured while reading a file: Is a directory");
    EXPECT_EQ(RaisedText([&] { folder.ReadU8(); }), "FileSerializerBinary has bad file pointer");
}

} // namespace
