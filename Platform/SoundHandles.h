#pragma once

// The plain values through which the engine speaks to the sound library: result codes and handles. Kept
// apart from the library itself so that components can hold handles without seeing any audio header.

#include <cstdint>

namespace Platform
{

// What a call of the sound library did. The numbers are the ones that games and their logs already know
// from the sound library this layer stands in for, so a log line reads the same on every platform.
enum class SoundResult : int32_t
{
    Ok = 0,
    FileBad = 13,
    FileNotFound = 18,
    Format = 19,
    InvalidFloat = 29,
    InvalidHandle = 30,
    InvalidParam = 31,
    Memory = 38,
    OutputInit = 51,
};

// A loaded sound or stream. Index 0 is the null handle; a released sound's handle resolves to nothing,
// since its generation moves on.
struct SoundHandle
{
    uint32_t index = 0;
    uint32_t generation = 0;

    bool IsNull() const { return index == 0; }
};

// One playing of a sound. A channel that ended, was stopped or was taken for a newer play resolves to
// nothing: its handle is then stale, not dangling.
struct ChannelHandle
{
    uint32_t index = 0;
    uint32_t generation = 0;

    bool IsNull() const { return index == 0; }
};

// A group whose pause, volume and pitch act on every channel played into it. Index 0 is the null group.
struct ChannelGroupHandle
{
    uint32_t index = 0;

    bool IsNull() const { return index == 0; }
};

} // namespace Platform
