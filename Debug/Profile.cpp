#include "Debug/Profile.h"

#include "Debug/Clock.h"

#include <algorithm>
#include <cstring>

namespace Debug
{
namespace
{

// Game thread only, like everything that opens blocks.
std::vector<ProfileRecord> records;
std::vector<ProfileBlock*> openBlocks;

int32_t AppendRecord(const char* name)
{
    records.push_back(ProfileRecord{name, 0, {}});
    return static_cast<int32_t>(records.size() - 1);
}

int32_t FindOrAddChild(int32_t parent, const char* name)
{
    for (const int32_t child : records[static_cast<size_t>(parent)].children)
    {
        if (std::strcmp(records[static_cast<size_t>(child)].name, name) == 0)
        {
            return child;
        }
    }
    const int32_t child = AppendRecord(name);
    records[static_cast<size_t>(parent)].children.push_back(child);
    return child;
}

bool IsCurrentRecord(int32_t record)
{
    return record >= 0 && static_cast<size_t>(record) < records.size();
}

} // namespace

ProfileBlock::ProfileBlock(const char* name)
{
    const bool hasParent = !openBlocks.empty() && IsCurrentRecord(openBlocks.back()->record);
    record = hasParent ? FindOrAddChild(openBlocks.back()->record, name) : AppendRecord(name);
    openBlocks.push_back(this);
    // Read last, so the bookkeeping above isn't measured.
    start = ReadClock();
}

void ProfileBlock::Finish()
{
    if (finished)
    {
        return;
    }
    const uint64_t end = ReadClock();
    // A block opened before the profile was taken has no record in this frame's tree.
    if (IsCurrentRecord(record))
    {
        records[static_cast<size_t>(record)].time += end - start;
    }
    finished = true;
    const auto self = std::find(openBlocks.begin(), openBlocks.end(), this);
    if (self == openBlocks.end())
    {
        return;
    }
    while (openBlocks.back() != this)
    {
        openBlocks.back()->Finish();
    }
    openBlocks.pop_back();
}

std::vector<ProfileRecord> TakeProfile()
{
    std::vector<ProfileRecord> taken;
    taken.swap(records);
    records.reserve(taken.size());
    return taken;
}

const std::vector<ProfileRecord>& CurrentProfile()
{
    return records;
}

} // namespace Debug
