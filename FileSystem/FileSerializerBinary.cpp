#include "FileSystem/FileSerializerBinary.h"

#include "Debug/Logger.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstring>

namespace FileSystem
{

// Integers are read as the host lays them out and swapped when asked: that reads little-endian files
// directly only on a little-endian host.
static_assert(std::endian::native == std::endian::little, "the binary reader assumes a little-endian host");

FileSerializerBinary::FileSerializerBinary(std::FILE* openFile) : file(openFile)
{
}

FileSerializerBinary::~FileSerializerBinary()
{
    if (file != nullptr)
    {
        std::fclose(file);
    }
}

std::FILE* FileSerializerBinary::OpenFile()
{
    if (file == nullptr)
    {
        Logger::RaiseSerializerError("Serializer", "FileSerializerBinary has bad file pointer");
    }
    return file;
}

int FileSerializerBinary::Seek(long offset, SeekOrigin origin)
{
    std::FILE* const open = OpenFile();
    int whence = SEEK_SET;
    switch (origin)
    {
    case SeekOrigin::Begin:
        break;
    case SeekOrigin::Current:
        whence = SEEK_CUR;
        break;
    case SeekOrigin::End:
        whence = SEEK_END;
        break;
    default:
        Logger::Log("Serializer", LogLevel::Error,
                    "Bad SeekOrigin passed to Seek: " + std::to_string(static_cast<int32_t>(origin)));
        break;
    }
    return std::fseek(open, offset, whence);
}

// The count is unsigned and widened, so no length read from a file can turn into a backward seek.
void FileSerializerBinary::Skip(uint32_t count)
{
    if (count != 0)
    {
        Seek(static_cast<long>(count), SeekOrigin::Current);
    }
}

long FileSerializerBinary::Tell()
{
    return std::ftell(OpenFile());
}

void FileSerializerBinary::Rewind()
{
    std::rewind(OpenFile());
}

void FileSerializerBinary::Close()
{
    if (file != nullptr)
    {
        std::fclose(file);
        file = nullptr;
    }
}

size_t FileSerializerBinary::Read(void* buffer, size_t count)
{
    return ReadBytes(buffer, count);
}

size_t FileSerializerBinary::ReadBytes(void* buffer, size_t count)
{
    std::FILE* const open = OpenFile();
    if (std::fread(buffer, 1, count, open) == count)
    {
        return count;
    }
    // errno belongs to the failed read only until the next call, and Close is one.
    const int error = errno;
    const bool atEnd = std::feof(open) != 0;
    Close();
    if (atEnd)
    {
        Logger::RaiseSerializerError("FileSystem", "Unexpected end of file");
    }
    Logger::RaiseSerializerError("FileSystem", std::string("An error occured while reading a file: ") +
                                                   std::strerror(error));
}

size_t FileSerializerBinary::ReadString(std::string& text)
{
    text.clear();
    std::array<char, 128> block{};
    size_t used = 0;
    for (char byte = ReadI8(); byte != '\0'; byte = ReadI8())
    {
        block[used++] = byte;
        if (used == block.size())
        {
            text.append(block.data(), used);
            used = 0;
        }
    }
    text.append(block.data(), used);
    return text.size();
}

template <typename Integer>
Integer FileSerializerBinary::ReadInteger()
{
    std::array<unsigned char, sizeof(Integer)> bytes{};
    ReadBytes(bytes.data(), bytes.size());
    if (byteSwap)
    {
        std::reverse(bytes.begin(), bytes.end());
    }
    return std::bit_cast<Integer>(bytes);
}

bool FileSerializerBinary::ReadBool()
{
    return ReadU8() != 0;
}

uint8_t FileSerializerBinary::ReadU8()
{
    return ReadInteger<uint8_t>();
}

int8_t FileSerializerBinary::ReadI8()
{
    return ReadInteger<int8_t>();
}

uint16_t FileSerializerBinary::ReadU16()
{
    return ReadInteger<uint16_t>();
}

int16_t FileSerializerBinary::ReadI16()
{
    return ReadInteger<int16_t>();
}

uint32_t FileSerializerBinary::ReadU32()
{
    return ReadInteger<uint32_t>();
}

int32_t FileSerializerBinary::ReadI32()
{
    return ReadInteger<int32_t>();
}

uint64_t FileSerializerBinary::ReadU64()
{
    return ReadInteger<uint64_t>();
}

int64_t FileSerializerBinary::ReadI64()
{
    return ReadInteger<int64_t>();
}

// Floating point values are never swapped.
float FileSerializerBinary::ReadFloat()
{
    std::array<unsigned char, sizeof(float)> bytes{};
    ReadBytes(bytes.data(), bytes.size());
    return std::bit_cast<float>(bytes);
}

double FileSerializerBinary::ReadDouble()
{
    std::array<unsigned char, sizeof(double)> bytes{};
    ReadBytes(bytes.data(), bytes.size());
    return std::bit_cast<double>(bytes);
}

} // namespace FileSystem
