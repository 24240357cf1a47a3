#pragma once

// The binary reader over a C library file, which it owns. After a failing read it closes itself before it
// raises, so a decoder that caught nothing can't go on reading garbage: any later use raises
// "FileSerializerBinary has bad file pointer".

#include "FileSystem/BinarySerializer.h"

#include <cstdio>

namespace FileSystem
{

class FileSerializerBinary final : public BinarySerializer
{
public:
    // Takes ownership of the file. The caller checks that it isn't null before any read.
    explicit FileSerializerBinary(std::FILE* openFile);
    ~FileSerializerBinary() override;
    FileSerializerBinary(const FileSerializerBinary&) = delete;
    FileSerializerBinary& operator=(const FileSerializerBinary&) = delete;

    int Seek(long offset, SeekOrigin origin) override;
    void Skip(uint32_t count) override;
    long Tell() override;
    void Rewind() override;
    void Close() override;

    void SetByteSwap(bool swap) override { byteSwap = swap; }
    bool GetByteSwap() const override { return byteSwap; }

    size_t Read(void* buffer, size_t count) override;
    size_t ReadString(std::string& text) override;
    bool ReadBool() override;
    size_t ReadBytes(void* buffer, size_t count) override;
    uint8_t ReadU8() override;
    int8_t ReadI8() override;
    uint16_t ReadU16() override;
    int16_t ReadI16() override;
    uint32_t ReadU32() override;
    int32_t ReadI32() override;
    uint64_t ReadU64() override;
    int64_t ReadI64() override;
    float ReadFloat() override;
    double ReadDouble() override;

private:
    template <typename Integer>
    Integer ReadInteger();
    // Raises the bad file pointer error when the file is closed.
    std::FILE* OpenFile();

    std::FILE* file;
    bool byteSwap = false;
};

} // namespace FileSystem
