#include "Platform/PageMemory.h"

#include <new>
#include <sys/mman.h>

namespace Platform
{

void* MapZeroedPages(size_t bytes)
{
    if (bytes == 0)
    {
        return nullptr;
    }
    void* pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED)
    {
        throw std::bad_alloc();
    }
    return pages;
}

void* ReservePages(size_t bytes)
{
    void* pages =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return pages != MAP_FAILED ? pages : nullptr;
}

void UnmapPages(void* pages, size_t bytes)
{
    if (pages != nullptr)
    {
        munmap(pages, bytes);
    }
}

} // namespace Platform
