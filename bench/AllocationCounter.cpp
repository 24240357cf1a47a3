#include "AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{

std::atomic<uint64_t> allocationCount{0};
std::atomic<uint64_t> allocatedBytes{0};

} // namespace

uint64_t AllocationCount()
{
    return allocationCount.load();
}

uint64_t AllocatedBytes()
{
    return allocatedBytes.load();
}

void* operator new(std::size_t size)
{
    allocationCount.fetch_add(1, std::memory_order_relaxed);
    allocatedBytes.fetch_add(size, std::memory_order_relaxed);
    if (void* memory = std::malloc(size == 0 ? 1 : size))
    {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
