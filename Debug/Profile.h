#pragma once

// Profile blocks: nested named timers that build one tree of records per frame for the debug overlay.
// A block that runs several times under one parent in a frame (one per script, say) sums into one record.
// Records and open blocks belong to the game thread alone.

#include <cstdint>
#include <vector>

namespace Debug
{

struct ProfileRecord
{
    // Only the pointer is kept: the text must outlive the record, until the next frame's overlay is drawn.
    const char* name;
    uint64_t time;
    std::vector<int32_t> children;
};

class ProfileBlock
{
public:
    explicit ProfileBlock(const char* name);
    ~ProfileBlock() { Finish(); }
    ProfileBlock(const ProfileBlock&) = delete;
    ProfileBlock& operator=(const ProfileBlock&) = delete;

    // Adds the time since opening to the record and finishes every block still open inside this one, so a
    // block left open by an early exit can't corrupt the stack. Later calls do nothing.
    void Finish();

private:
    uint64_t start = 0;
    int32_t record = -1;
    bool finished = false;
};

// The records of the frame that just ended; the next frame's records start empty with the same room.
std::vector<ProfileRecord> TakeProfile();

// The records gathered so far in this frame.
const std::vector<ProfileRecord>& CurrentProfile();

} // namespace Debug
