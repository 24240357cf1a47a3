#include "Components/Slotmap.h"

#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <random>
#include <string>

namespace
{

// The life token expires exactly when the slotmap destroys the element's content.
struct Element
{
    int value;
    std::shared_ptr<int> life = nullptr;
    bool destroyed = false;
    uint32_t slot = 0;
};

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

// Null, foreign and stale handles never resolve, and at() refuses them with its text. Erase moves the last
// element into the hole and destroys only the removed content; freed slots are reused last freed first,
// with a new generation. The model below covers flagged erasure and swaps at random.
TEST(Slotmap, EraseSwapsWithTheLastAndOnlyLiveHandlesResolve)
{
    EXPECT_TRUE(Handle{}.IsNull());
    EXPECT_FALSE((Handle{Handle::kNullSlot, 1}.IsNull()));
    EXPECT_FALSE((Handle{0, 0}.IsNull()));
    Slotmap<Element> map;
    EXPECT_EQ(map.Find(Handle{0, 1}), nullptr);
    std::vector<std::weak_ptr<int>> lives;
    std::vector<Handle> handles;
    for (int value = 1; value <= 3; ++value)
    {
        auto life = std::make_shared<int>(value);
        lives.push_back(life);
        handles.push_back(map.Insert(value, std::move(life)));
    }
    EXPECT_EQ(handles[0], (Handle{0, 1}));
    for (const Handle foreign : {Handle{}, Handle{0, 2}, Handle{3, 1}})
    {
        EXPECT_EQ(map.Find(foreign), nullptr) << foreign.Value();
    }
    try
    {
        map.at(Handle{0, 0});
        ADD_FAILURE() << "at() accepted a stale handle";
    }
    catch (const std::out_of_range& error)
    {
        EXPECT_STREQ(error.what(), "Slotmap::at() error: Handle out of range");
    }

    map.Erase(handles[0]);
    EXPECT_EQ((std::vector<bool>{lives[0].expired(), lives[1].expired(), lives[2].expired()}),
              (std::vector<bool>{true, false, false}));
    EXPECT_EQ((std::vector<int>{map[0].value, map[1].value}), (std::vector<int>{3, 2}));
    EXPECT_EQ(map.at(handles[1]).value, 2);
    EXPECT_EQ(map.at(handles[2]).value, 3);
    map.Erase(handles[1]); // the last: nothing moves
    map.Erase(handles[1]); // stale: ignored
    EXPECT_TRUE(lives[1].expired() && !lives[2].expired());
    EXPECT_EQ(map.size(), 1u);
    ExpectConsistent(map);

    EXPECT_EQ(map.Insert(4), (Handle{1, 2}));
    EXPECT_EQ(map.Insert(5), (Handle{0, 2}));
    EXPECT_EQ(map.Find(handles[0]), nullptr);
}

// A million random steps against a std::map, with few live elements so that slots are reused many times.
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
        else if (choice < 86 && map.size() >= 2)
        {
            // Reordering must keep every handle resolving to its own element.
            map.Swap(static_cast<uint32_t>(random() % map.size()),
                     static_cast<uint32_t>(random() % map.size()));
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
