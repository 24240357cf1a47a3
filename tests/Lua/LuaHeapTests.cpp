// The Lua heap against a twin that sends every block to realloc: the same random allocations, resizes and
// frees, across the size classes and past a region that fills up, with every block's contents, alignment
// and the live-byte count checked as they go.

#include "Lua/LuaHeap.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace
{

using Lua::LuaHeap;

struct Block
{
    void* pooled;
    void* plain;
    size_t size;
    uint8_t fill;
};

// Whether both copies hold their fill byte throughout and the pool's copy is aligned for any Lua object.
::testing::AssertionResult Intact(const Block& block)
{
    const auto* pooled = static_cast<const uint8_t*>(block.pooled);
    const auto* plain = static_cast<const uint8_t*>(block.plain);
    if (reinterpret_cast<uintptr_t>(pooled) % alignof(std::max_align_t) != 0)
    {
        return ::testing::AssertionFailure() << "a block of " << block.size << " bytes is misaligned";
    }
    for (size_t i = 0; i < block.size; ++i)
    {
        if (pooled[i] != block.fill || plain[i] != block.fill)
        {
            return ::testing::AssertionFailure() << "byte " << i << " of " << block.size << " lost its value";
        }
    }
    return ::testing::AssertionSuccess();
}

// Mostly sizes of the classes, some beyond, some of them crossing back and forth.
size_t RandomSize(std::mt19937& random)
{
    const size_t limit = random() % 4 == 0 ? 2000 : LuaHeap::kSmallLimit;
    return 1 + random() % limit;
}

TEST(LuaHeap, RandomUseMatchesAPlainTwinAcrossClassesAndAFullRegion)
{
    // The small region fills up early: later small blocks come from the C library beside pool blocks.
    for (const size_t regionBytes : {size_t{64} << 10, LuaHeap::kRegionBytes})
    {
        SCOPED_TRACE(regionBytes);
        LuaHeap heap(regionBytes);
        LuaHeap twin(0);
        ASSERT_TRUE(heap.Pooled());
        ASSERT_FALSE(twin.Pooled());
        std::mt19937 random(static_cast<uint32_t>(regionBytes));
        std::vector<Block> blocks;
        size_t held = 0;
        for (int step = 0; step < 20000; ++step)
        {
            const uint32_t choice = random() % 8;
            const auto fill = static_cast<uint8_t>(1 + step % 255);
            if (blocks.empty() || choice < 4)
            {
                // Without a block, Lua passes the kind of object in oldSize.
                const size_t size = RandomSize(random);
                const size_t tag = random() % 9;
                blocks.push_back(
                    {heap.Reallocate(nullptr, tag, size), twin.Reallocate(nullptr, tag, size), size, fill});
                std::fill_n(static_cast<uint8_t*>(blocks.back().pooled), size, fill);
                std::fill_n(static_cast<uint8_t*>(blocks.back().plain), size, fill);
                held += size;
                ASSERT_TRUE(Intact(blocks.back()));
                continue;
            }
            Block& block = blocks[random() % blocks.size()];
            ASSERT_TRUE(Intact(block)) << "step " << step;
            if (choice < 6)
            {
                const size_t size = RandomSize(random);
                block.pooled = heap.Reallocate(block.pooled, block.size, size);
                block.plain = twin.Reallocate(block.plain, block.size, size);
                held = held - block.size + size;
                block.size = std::min(block.size, size);
                ASSERT_TRUE(Intact(block)) << "contents survive a resize";
                std::fill_n(static_cast<uint8_t*>(block.pooled), size, block.fill);
                std::fill_n(static_cast<uint8_t*>(block.plain), size, block.fill);
                block.size = size;
            }
            else
            {
                EXPECT_EQ(heap.Reallocate(block.pooled, block.size, 0), nullptr);
                EXPECT_EQ(twin.Reallocate(block.plain, block.size, 0), nullptr);
                held -= block.size;
                block = blocks.back();
                blocks.pop_back();
            }
            ASSERT_EQ(heap.LiveBytes(), held);
            ASSERT_EQ(twin.LiveBytes(), held);
        }
        for (const Block& block : blocks)
        {
            EXPECT_TRUE(Intact(block)) << "no two blocks overlap";
            heap.Reallocate(block.pooled, block.size, 0);
            twin.Reallocate(block.plain, block.size, 0);
        }
        EXPECT_EQ(heap.LiveBytes(), 0u);
    }
}

// Memory running out gives nullptr and leaves the block as it was.
TEST(LuaHeap, AFailedGrowthKeepsTheBlock)
{
    LuaHeap heap(LuaHeap::kRegionBytes);
    auto* block = static_cast<uint8_t*>(heap.Reallocate(nullptr, 0, 40));
    std::fill_n(block, 40, uint8_t{7});
    EXPECT_EQ(heap.Reallocate(block, 40, SIZE_MAX / 2), nullptr);
    EXPECT_EQ(heap.LiveBytes(), 40u);
    EXPECT_EQ(block[39], 7);
    heap.Reallocate(block, 40, 0);
}

#if defined(__SANITIZE_ADDRESS__)
// A freed pool block is poisoned, so the pool hides no use after free from the sanitizer.
TEST(LuaHeapDeathTest, TheSanitizerSeesAUseOfAFreedPoolBlock)
{
    const auto useAfterFree = []
    {
        LuaHeap heap(LuaHeap::kRegionBytes);
        auto* block = static_cast<volatile char*>(heap.Reallocate(nullptr, 0, 32));
        heap.Reallocate(const_cast<char*>(block), 32, 0);
        block[8] = 1;
    };
    EXPECT_DEATH(useAfterFree(), "use-after-poison");
}
#endif

} // namespace
