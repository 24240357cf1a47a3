#include "Support/MemoryFile.h"

#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

MemoryFile::MemoryFile(const uint8_t* data, size_t size) : descriptor(memfd_create("quellmar-bytes", 0))
{
    if (descriptor < 0)
    {
        throw std::runtime_error("memfd_create failed");
    }
    size_t written = 0;
    while (written < size)
    {
        const ssize_t count = write(descriptor, data + written, size - written);
        if (count <= 0)
        {
            close(descriptor);
            throw std::runtime_error("writing the memory file failed");
        }
        written += static_cast<size_t>(count);
    }
}

MemoryFile::~MemoryFile()
{
    close(descriptor);
}

// Opening the descriptor's path, not duplicating it, gives a file position that no other reader moves.
std::FILE* MemoryFile::Open() const
{
    const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
    return std::fopen(path.c_str(), "rb");
}
