#include "Debug/Clock.h"
#include "Debug/Profile.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using Debug::ProfileBlock;
using Debug::ProfileRecord;

// Waits for the clock itself to move, so a block's time can't be zero.
void LetTheClockTick()
{
    for (const uint64_t start = Debug::ReadClock(); Debug::ReadClock() == start;)
    {
    }
}

class Profile : public testing::Test
{
protected:
    void SetUp() override { Debug::TakeProfile(); }
};

// Blocks of one name under one parent sum into one record; the same name under another parent is a record
// of its own. Taking the profile empties it but keeps room for the next frame.
TEST_F(Profile, SameNameUnderOneParentSumsAndTakingLeavesRoom)
{
    {
        ProfileBlock root("Root");
        uint64_t summed = 0;
        for (int run = 0; run < 3; ++run)
        {
            {
                ProfileBlock script("Script");
                LetTheClockTick();
            }
            EXPECT_GT(Debug::CurrentProfile()[1].time, summed) << "each run adds to the record";
            summed = Debug::CurrentProfile()[1].time;
        }
        ProfileBlock other("Other");
        ProfileBlock script("Script");
    }
    const std::vector<ProfileRecord> records = Debug::TakeProfile();
    std::vector<std::string> names;
    for (const ProfileRecord& record : records)
    {
        names.push_back(record.name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"Root", "Script", "Other", "Script"}));
    ASSERT_EQ(records.size(), 4u);
    EXPECT_EQ(records[0].children, (std::vector<int32_t>{1, 2}));
    EXPECT_EQ(records[2].children, std::vector<int32_t>{3});
    EXPECT_GE(records[0].time, records[1].time);
    EXPECT_TRUE(Debug::CurrentProfile().empty());
    EXPECT_GE(Debug::CurrentProfile().capacity(), 4u);
}

TEST_F(Profile, FinishingAParentFinishesItsOpenChildrenOnce)
{
    ProfileBlock root("Root");
    ProfileBlock child("Child");
    LetTheClockTick();
    root.Finish();
    const uint64_t rootTime = Debug::CurrentProfile()[0].time;
    const uint64_t childTime = Debug::CurrentProfile()[1].time;
    EXPECT_GT(childTime, 0u);
    child.Finish();
    root.Finish();
    EXPECT_EQ(Debug::CurrentProfile()[0].time, rootTime);
    EXPECT_EQ(Debug::CurrentProfile()[1].time, childTime);

    ProfileBlock next("Next"); // the stack is empty again: a new top-level record
    next.Finish();
    EXPECT_EQ(Debug::CurrentProfile().size(), 3u);
    EXPECT_TRUE(Debug::CurrentProfile()[0].children == std::vector<int32_t>{1});
}

} // namespace
