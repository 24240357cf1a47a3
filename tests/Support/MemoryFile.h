#pragma once

// Bytes behind a real C library file: an anonymous in-memory file (memfd), opened by path for each reader.
// Unlike fmemopen, a seek past its end succeeds as it does on disk.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

class MemoryFile
{
public:
    MemoryFile(const uint8_t* data, size_t size);
    explicit MemoryFile(const std::vector<uint8_t>& bytes) : MemoryFile(bytes.data(), bytes.size()) {}
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    // A new file at position 0 with a position of its own; the caller owns it.
    std::FILE* Open() const;

private:
    int descriptor;
};
