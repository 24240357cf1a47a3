#include "Core/Random.h"

#include <gtest/gtest.h>
#include <thread>

namespace
{

std::vector<int32_t> Draw(int count)
{
    std::vector<int32_t> values;
    for (int index = 0; index < count; ++index)
    {
        values.push_back(Core::Rand());
    }
    return values;
}

// The design's generator sequence for each seed, within range; every thread starts from seed one whatever
// others seeded.
TEST(Random, SeedsGiveTheDesignsSequencesPerThreadAndWithinRange)
{
    Core::SeedRand(1);
    EXPECT_EQ(Draw(5), (std::vector<int32_t>{41, 18467, 6334, 26500, 19169}));
    Core::SeedRand(4242);
    EXPECT_EQ(Draw(5), (std::vector<int32_t>{13891, 22171, 8669, 6693, 17999}));
    std::vector<int32_t> fromThread;
    std::thread([&] { fromThread = Draw(2); }).join();
    EXPECT_EQ(fromThread, (std::vector<int32_t>{41, 18467}));
    Core::SeedRand(0xFFFFFFFFu);
    for (const int32_t value : Draw(10000))
    {
        ASSERT_GE(value, 0);
        ASSERT_LE(value, Core::kRandMax);
    }
}

} // namespace
