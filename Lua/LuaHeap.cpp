#include "Lua/LuaHeap.h"

#include "Platform/PageMemory.h"

#include <cstdlib>
#include <cstring>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#endif

namespace Lua
{
namespace
{

// A free pool block is poisoned under the address sanitizer, which then reports a use after free of Lua's
// memory as it does for the C library's blocks.
void Poison([[maybe_unused]] void* block, [[maybe_unused]] size_t bytes)
{
#if defined(__SANITIZE_ADDRESS__)
    ASAN_POISON_MEMORY_REGION(block, bytes);
#endif
}

void Unpoison([[maybe_unused]] void* block, [[maybe_unused]] size_t bytes)
{
#if defined(__SANITIZE_ADDRESS__)
    ASAN_UNPOISON_MEMORY_REGION(block, bytes);
#endif
}

size_t ClassIndex(size_t size)
{
    return (size - 1) / LuaHeap::kClassStep;
}

size_t ClassBytes(size_t size)
{
    return (ClassIndex(size) + 1) * LuaHeap::kClassStep;
}

} // namespace

LuaHeap::LuaHeap(size_t requestedBytes)
{
    for (size_t bytes = requestedBytes; regionStart == nullptr && bytes > 0 && bytes >= requestedBytes / 64;
         bytes /= 2)
    {
        regionStart = static_cast<std::byte*>(Platform::ReservePages(bytes));
        regionBytes = regionStart != nullptr ? bytes : 0;
    }
    regionEnd = regionStart + regionBytes;
    carved = regionStart;
}

LuaHeap::~LuaHeap()
{
    // The sanitizer's marks outlive the mapping: a region mapped later at the same address would start out
    // poisoned.
    Unpoison(regionStart, static_cast<size_t>(carved - regionStart));
    Platform::UnmapPages(regionStart, regionBytes);
}

void* LuaHeap::Reallocate(void* block, size_t oldSize, size_t newSize)
{
    const size_t heldBefore = block != nullptr ? oldSize : 0;
    if (newSize == 0)
    {
        Free(block, heldBefore);
        liveBytes -= heldBefore;
        return nullptr;
    }
    void* resized = nullptr;
    if (block == nullptr)
    {
        resized = Allocate(newSize);
    }
    else if (!Owns(block))
    {
        resized = std::realloc(block, newSize);
    }
    else if (newSize <= oldSize || ClassIndex(newSize) == ClassIndex(oldSize))
    {
        // The slot holds it already; a shrunk block keeps its slot until it is freed.
        resized = block;
    }
    else if ((resized = Allocate(newSize)) != nullptr)
    {
        std::memcpy(resized, block, oldSize);
        GiveBackSmall(block, oldSize);
    }
    if (resized != nullptr)
    {
        liveBytes += newSize - heldBefore;
    }
    return resized;
}

void* LuaHeap::Allocate(size_t size)
{
    if (size <= kSmallLimit && regionStart != nullptr)
    {
        if (void* block = TakeSmall(size))
        {
            return block;
        }
    }
    return std::malloc(size);
}

void LuaHeap::Free(void* block, size_t size)
{
    if (Owns(block))
    {
        GiveBackSmall(block, size);
    }
    else
    {
        std::free(block);
    }
}

// The most recently freed block of the class, else the next slot of untouched region; nullptr when the
// region is used up.
void* LuaHeap::TakeSmall(size_t size)
{
    void*& head = freeBlocks[ClassIndex(size)];
    if (head != nullptr)
    {
        void* block = head;
        Unpoison(block, ClassBytes(size));
        head = *static_cast<void**>(block);
        return block;
    }
    const size_t bytes = ClassBytes(size);
    if (static_cast<size_t>(regionEnd - carved) < bytes)
    {
        return nullptr;
    }
    void* block = carved;
    carved += bytes;
    return block;
}

void LuaHeap::GiveBackSmall(void* block, size_t size)
{
    void*& head = freeBlocks[ClassIndex(size)];
    *static_cast<void**>(block) = head;
    head = block;
    Poison(block, ClassBytes(size));
}

} // namespace Lua
