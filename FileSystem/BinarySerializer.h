#pragma once

// The interface through which the engine reads binary data. Its point is that a short read can't go
// unnoticed: every typed read delivers all its bytes or raises FileSystem::SerializerError, so code that
// parses a file needs no checks of its own for truncation. Only reading exists.

#include <cstddef>
#include <cstdint>
#include <string>

namespace FileSystem
{

enum class SeekOrigin : int32_t
{
    Begin = 0,
    Current = 1,
    End = 2,
};

class BinarySerializer
{
public:
    virtual ~BinarySerializer() = default;

    // Returns the C library's result of the seek, unchecked.
    virtual int Seek(long offset, SeekOrigin origin) = 0;
    // Nothing for 0, else a seek forward from the current position; never backwards.
    virtual void Skip(uint32_t count) = 0;
    virtual long Tell() = 0;
    // Back to the start, clearing the error state.
    virtual void Rewind() = 0;
    // Harmless when closed already; every later use of the file raises.
    virtual void Close() = 0;

    // Swapping reverses the bytes of 16, 32 and 64-bit integers only: on a little-endian host it reads
    // big-endian integers.
    virtual void SetByteSwap(bool swap) = 0;
    virtual bool GetByteSwap() const = 0;

    virtual size_t Read(void* buffer, size_t count) = 0;
    // Reads up to and including a zero byte; the string holds what came before it. Returns its length.
    virtual size_t ReadString(std::string& text) = 0;
    virtual bool ReadBool() = 0;
    // All bytes or a raise; returns the count.
    virtual size_t ReadBytes(void* buffer, size_t count) = 0;
    virtual uint8_t ReadU8() = 0;
    virtual int8_t ReadI8() = 0;
    virtual uint16_t ReadU16() = 0;
    virtual int16_t ReadI16() = 0;
    virtual uint32_t ReadU32() = 0;
    virtual int32_t ReadI32() = 0;
    virtual uint64_t ReadU64() = 0;
    virtual int64_t ReadI64() = 0;
    virtual float ReadFloat() = 0;
    virtual double ReadDouble() = 0;
};

} // namespace FileSystem
