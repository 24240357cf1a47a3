#include "Components/Slotmap.h"

#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>

namespace
{

// Counts live instances, so a test sees that the destructor runs exactly on removed content.
struct Element
{
    explicit Element(int elementValue, bool* destroyedFlag = nullptr)
        : value(elementValue), onDestroy(destroyedFlag)
    {
    }
    Element(Element&& other) noexcept
        : value(std::exchange(other.value, -1)), onDestroy(std::exchange(other.onDestroy, nullptr)),
          destroyed(other.destroyed), slot(other.slot)
    {
    }
    Element& operator=(Element&& other) noexcept
    {
        value = std::exchange(other.value, -1);
        onDestroy = std::exchange(other.onDestroy, nullptr);
        destroyed = other.destroyed;
        slot = other.slot;
        return *this;
    }
    ~Element()
    {
        if (onDestroy != nullptr)
        {
            *onDestroy = true;
        }
    }

    int value;
    bool* onDestroy;
    bool destroyed = false;
    uint32_t slot = 0;
};

std::vector<int> Values(const Slotmap<Element>& map)
{
    std::vector<int> values;
    for (const Element& element : map)
    {
        values.push_back(element.value);
    }
    return values;
}

// The O(1) invariants: every element's slot points back at it, and the free stack is exactly the free slots.
void ExpectConsistent(const Slotmap<Element>& map)
{
    for (uint32_t position = 0; position < map.size(); ++position)
    {
        ASSERT_EQ(map.Slots()[map[position].slot].index, position);
    }
    size_t freeCount = 0;
    for (const auto& entry : map.Slots())
    {
        freeCount += entry.index == Slotmap<Element>::kFreeIndex ? 1 : 0;
    }
    ASSERT_EQ(freeCount, map.FreeSlots().size());
    ASSERT_EQ(map.Slots().size(), map.size() + map.FreeSlots().size());
    for (const uint32_t slot : map.FreeSlots())
    {
        ASSERT_EQ(map.Slots()[slot].index, Slotmap<Element>::kFreeIndex);
    }
}

TEST(Slotmap, NullAndForeignHandlesNeverResolve)
{
    Slotmap<Element> map;
    EXPECT_EQ(Handle{}.Value(), 4294967295u);
    EXPECT_TRUE(Handle{}.IsNull());
    EXPECT_FALSE((Handle{Handle::kNullSlot, 1}.IsNull()));
    EXPECT_FALSE((Handle{0, 0}.IsNull()));
    EXPECT_EQ(map.Find(Handle{}), nullptr);
    EXPECT_EQ(map.Find(Handle{0, 1}), nullptr);
    const Handle first = map.Insert(7);
    EXPECT_EQ(first, (Handle{0, 1}));
    EXPECT_EQ(map.Find(Handle{}), nullptr);
    EXPECT_EQ(map.Find(Handle{0, 2}), nullptr);
    EXPECT_EQ(map.Find(Handle{1, 1}), nullptr);
    EXPECT_EQ(map.at(first).value, 7);
    try
    {
        map.at(Handle{0, 0});
        ADD_FAILURE() << "at() accepted a stale handle";
    }
    catch (const std::out_of_range& error)
    {
        EXPECT_STREQ(error.what(), "Slotmap::at() error: Handle out of range");
    }
}

TEST(Slotmap, ErasedSlotsAreReusedLastFreedFirstWithANewGeneration)
{
    Slotmap<Element> map;
    const Handle a = map.Insert(1);
    const Handle b = map.Insert(2);
    map.Erase(a);
    map.Erase(b);
    map.Erase(b); // stale: ignored
    EXPECT_TRUE(map.empty());
    const Handle c = map.Insert(3);
    const Handle d = map.Insert(4);
    EXPECT_EQ(c, (Handle{1, 2}));
    EXPECT_EQ(d, (Handle{0, 2}));
    EXPECT_EQ(map.Find(a), nullptr);
    EXPECT_EQ(map.Find(b), nullptr);
    EXPECT_EQ(map.Find(c)->value, 3);
    EXPECT_EQ(map.Find(d)->value, 4);

    for (int index = 0; index < 100; ++index)
    {
        map.Insert(index);
    }
    for (uint32_t slot = 0; slot < 102; ++slot)
    {
        map.Erase(Handle{slot, map.Slots()[slot].generation});
    }
    map.Insert(0);
    EXPECT_EQ(map.Slots().size(), 102u);
    ExpectConsistent(map);
}

TEST(Slotmap, EraseSwapsWithTheLastAndDestroysOnlyTheRemovedContent)
{
    Slotmap<Element> map;
    bool aGone = false;
    bool bGone = false;
    bool cGone = false;
    const Handle a = map.Insert(1, &aGone);
    const Handle b = map.Insert(2, &bGone);
    const Handle c = map.Insert(3, &cGone);
    map.Erase(a);
    EXPECT_TRUE(aGone);
    EXPECT_FALSE(bGone || cGone);
    EXPECT_EQ(Values(map), (std::vector<int>{3, 2}));
    EXPECT_EQ(map.Find(b)->value, 2);
    EXPECT_EQ(map.Find(c)->value, 3);

    map.Erase(b); // the last: nothing moves
    EXPECT_TRUE(bGone);
    EXPECT_FALSE(cGone);
    EXPECT_EQ(Values(map), std::vector<int>{3});
    ExpectConsistent(map);
}

TEST(Slotmap, EraseFlaggedTestsTheElementMovedIntoTheHole)
{
    Slotmap<Element> map;
    std::vector<Handle> handles;
    for (int value = 0; value < 6; ++value)
    {
        handles.push_back(map.Insert(value));
    }
    for (const int flagged : {0, 4, 5})
    {
        map.Find(handles[static_cast<size_t>(flagged)])->destroyed = true;
    }
    // 0 is replaced by 5, which is flagged too and replaced by 4, flagged as well: the loop must re-test.
    EXPECT_EQ(map.EraseFlagged(), 3u);
    EXPECT_EQ(Values(map), (std::vector<int>{3, 1, 2}));
    EXPECT_EQ(map.Find(handles[0]), nullptr);
    EXPECT_EQ(map.Find(handles[3])->value, 3);
    EXPECT_EQ(map.Slots()[0].generation, 2u);
    ExpectConsistent(map);

    for (Element& element : map)
    {
        element.destroyed = true;
    }
    EXPECT_EQ(map.EraseFlagged(), 3u);
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(map.FreeSlots().size(), 6u);
    EXPECT_EQ(map.EraseFlagged(), 0u);
}

// A million random steps against a std::map, with few live elements so that slots are reused many times.
TEST(Slotmap, SwapExchangesElementsAndKeepsEveryHandleResolving)
{
    Slotmap<Element> map;
    const Handle a = map.Insert(1);
    const Handle b = map.Insert(2);
    const Handle c = map.Insert(3);
    map.Swap(0, 2);
    ExpectConsistent(map);
    EXPECT_EQ(map[0].value, 3);
    EXPECT_EQ(map[2].value, 1);
    EXPECT_EQ(map.Find(a)->value, 1);
    EXPECT_EQ(map.Find(b)->value, 2);
    EXPECT_EQ(map.Find(c)->value, 3);
    map.Erase(c);
    EXPECT_EQ(map.Find(a)->value, 1);
    EXPECT_EQ(map.size(), 2u);
}

TEST(Slotmap, RandomOperationsAgreeWithAModel)
{
    constexpr int kSteps = 1000000;
    constexpr size_t kMaxLive = 4096;
    std::mt19937 random(12345);
    Slotmap<Element> map;
    std::map<uint64_t, int> live;
    std::vector<Handle> liveHandles;
    std::vector<Handle> erased;
    int nextValue = 0;

    const auto check = [&](Handle handle)
    {
        const auto found = live.find(handle.Value());
        const Element* element = map.Find(handle);
        if (found == live.end())
        {
            ASSERT_EQ(element, nullptr) << handle.Value();
        }
        else
        {
            ASSERT_NE(element, nullptr) << handle.Value();
            ASSERT_EQ(element->value, found->second);
        }
    };
    const auto removeLive = [&](size_t index)
    {
        const Handle handle = liveHandles[index];
        live.erase(handle.Value());
        liveHandles[index] = liveHandles.back();
        liveHandles.pop_back();
        erased.push_back(handle);
        return handle;
    };

    for (int step = 1; step <= kSteps; ++step)
    {
        const uint32_t choice = random() % 100;
        if (choice < 45 && live.size() < kMaxLive)
        {
            const Handle handle = map.Insert(nextValue);
            ASSERT_TRUE(live.emplace(handle.Value(), nextValue++).second) << "handle handed out twice";
            liveHandles.push_back(handle);
            check(handle);
        }
        else if (choice < 80 && !liveHandles.empty())
        {
            const Handle handle = removeLive(random() % liveHandles.size());
            map.Erase(handle);
            check(handle);
        }
        else if (choice < 83 && !liveHandles.empty())
        {
            std::vector<Handle> flagged;
            for (int count = random() % 8; count >= 0 && !liveHandles.empty(); --count)
            {
                const Handle handle = removeLive(random() % liveHandles.size());
                map.Find(handle)->destroyed = true;
                flagged.push_back(handle);
            }
            ASSERT_EQ(map.EraseFlagged(), flagged.size());
            for (const Handle handle : flagged)
            {
                check(handle);
            }
        }
        else
        {
            const bool useErased = !erased.empty() && random() % 2 == 0;
            if (useErased)
            {
                check(erased[random() % erased.size()]);
            }
            else if (!liveHandles.empty())
            {
                check(liveHandles[random() % liveHandles.size()]);
            }
        }
        ASSERT_EQ(map.size(), live.size());
        ASSERT_EQ(map.Slots().size(), map.size() + map.FreeSlots().size());
        if (step % 1000 == 0 || step == kSteps)
        {
            ExpectConsistent(map);
            // The recent ones at each check point, all of them at the end: reused slots are the risk.
            const size_t from = step == kSteps || erased.size() < 8192 ? 0 : erased.size() - 8192;
            for (size_t index = from; index < erased.size(); ++index)
            {
                ASSERT_EQ(map.Find(erased[index]), nullptr);
            }
            for (const Handle handle : liveHandles)
            {
                check(handle);
            }
        }
    }
}

} // namespace
