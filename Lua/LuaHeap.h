#pragma once

// The memory of one Lua state. Lua makes and frees small objects by the million: table nodes, closures,
// short strings and, for every level of every stack, a call record of its own. A full stack is a chain of
// half a million such records, walked whole on overflow, shrink, reallocation, collection and traceback.
// From the C library's heap those blocks lie scattered among everything else, a cache miss each; here
// blocks of up to kSmallLimit bytes come from size classes carved in the order of allocation out of a
// region of the heap's own, with last-in-first-out free lists, so what a script makes together lies
// together and a chain walks at cache speed. Larger blocks go to the C library's realloc.
//
// A block belongs to the pool when its address lies in the region, whatever its size: so a pool block that
// shrinks keeps its slot, a large block that shrinks stays with the C library, and no shrink ever fails, as
// Lua requires. When the region is used up, or can't be reserved, small blocks go to the C library too.
// Single-threaded, like the state it serves; the region goes back whole when the heap is destroyed.

#include <array>
#include <cstddef>
#include <cstdint>

namespace Lua
{

class LuaHeap
{
public:
    // Size classes step by 16 bytes, which keeps every block aligned for any Lua object.
    static constexpr size_t kClassStep = 16;
    // Measured: a script's environment table nodes (256 bytes) and its Lua thread (about 200) lie below it
    // with the call records (72), table headers and short strings. At 128 those two leave the pool and
    // ScriptsMoveTransforms runs 20 to 30 % slower; the deep stack benchmark doesn't change either way.
    static constexpr size_t kSmallLimit = 256;

    // Address space for the pool, not memory: pages are committed as the pool first carves them.
    static constexpr size_t kRegionBytes = size_t{1} << 30;

    // Reserves a region of regionBytes, or of a half, a quarter and so on down to a 64th if the system
    // refuses. With none, and with a regionBytes of 0, every block goes to realloc, as Lua's own allocator
    // would do.
    explicit LuaHeap(size_t regionBytes);
    ~LuaHeap();
    LuaHeap(const LuaHeap&) = delete;
    LuaHeap& operator=(const LuaHeap&) = delete;

    // Lua's allocation contract: a newSize of 0 frees the block and gives nullptr; otherwise the block
    // resized, its contents kept up to the smaller size, or nullptr with the block untouched when memory
    // has run out. oldSize is the block's size; without a block, Lua passes a type tag there instead.
    void* Reallocate(void* block, size_t oldSize, size_t newSize);

    // The bytes that Lua holds, exactly as it asked for them.
    size_t LiveBytes() const { return liveBytes; }
    bool Pooled() const { return regionStart != nullptr; }

private:
    bool Owns(const void* block) const
    {
        const auto address = reinterpret_cast<uintptr_t>(block);
        return address >= reinterpret_cast<uintptr_t>(regionStart) &&
               address < reinterpret_cast<uintptr_t>(regionEnd);
    }
    void* Allocate(size_t size);
    void Free(void* block, size_t size);
    void* TakeSmall(size_t size);
    void GiveBackSmall(void* block, size_t size);

    std::byte* regionStart = nullptr;
    std::byte* regionEnd = nullptr;
    // Everything below has been handed out at least once; above lies untouched region.
    std::byte* carved = nullptr;
    size_t regionBytes = 0;
    // The head of each class's free list; a free block holds the address of the next.
    std::array<void*, kSmallLimit / kClassStep> freeBlocks{};
    size_t liveBytes = 0;
};

} // namespace Lua
