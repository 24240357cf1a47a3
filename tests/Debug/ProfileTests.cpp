#include "Debug/Profile.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace
{

using Debug::ProfileBlock;
using Debug::ProfileRecord;

std::string Name(const std::vector<ProfileRecord>& records, int32_t index)
{
    return records[static_cast<size_t>(index)].name;
}

void Pause()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
}

class Profile : public testing::Test
{
protected:
    void SetUp() override { Debug::TakeProfile(); }
};

TEST_F(Profile, SameNameUnderOneParentSumsIntoOneRecord)
{
    {
        ProfileBlock root("Root");
        for (int run = 0; run < 3; ++run)
        {
            ProfileBlock script("Script");
            Pause();
        }
        ProfileBlock other("Other");
        ProfileBlock script("Script"); // a different parent: a record of its own
    }
    const std::vector<ProfileRecord> records = Debug::TakeProfile();
    ASSERT_EQ(records.size(), 4u);
    EXPECT_EQ(Name(records, 0), "Root");
    ASSERT_EQ(records[0].children, (std::vector<int32_t>{1, 2}));
    EXPECT_EQ(Name(records, 1), "Script");
    EXPECT_EQ(Name(records, 2), "Other");
    EXPECT_EQ(records[2].children, std::vector<int32_t>{3});
    EXPECT_GE(records[1].time, 6'000'000u);
    EXPECT_GE(records[0].time, records[1].time);
}

TEST_F(Profile, FinishingAParentFinishesItsOpenChildrenOnce)
{
    ProfileBlock root("Root");
    ProfileBlock child("Child");
    Pause();
    root.Finish();
    const uint64_t rootTime = Debug::CurrentProfile()[0].time;
    const uint64_t childTime = Debug::CurrentProfile()[1].time;
    EXPECT_GT(childTime, 0u);
    Pause();
    child.Finish();
    root.Finish();
    EXPECT_EQ(Debug::CurrentProfile()[0].time, rootTime);
    EXPECT_EQ(Debug::CurrentProfile()[1].time, childTime);

    ProfileBlock next("Next"); // the stack is empty again: a new top-level record
    next.Finish();
    EXPECT_EQ(Debug::CurrentProfile().size(), 3u);
    EXPECT_TRUE(Debug::CurrentProfile()[0].children == std::vector<int32_t>{1});
}

TEST_F(Profile, TakeProfileLeavesRoomForTheNextFrame)
{
    for (int index = 0; index < 10; ++index)
    {
        ProfileBlock block("Top");
    }
    const std::vector<ProfileRecord> taken = Debug::TakeProfile();
    EXPECT_EQ(taken.size(), 10u);
    EXPECT_TRUE(Debug::CurrentProfile().empty());
    EXPECT_GE(Debug::CurrentProfile().capacity(), 10u);
}

} // namespace
