#pragma once

// The monotonic clock of the main loop and the profile blocks.

#include <chrono>
#include <cstdint>

namespace Debug
{

// Nanoseconds of the monotonic clock.
inline uint64_t ReadClock()
{
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                     std::chrono::steady_clock::now().time_since_epoch())
                                     .count());
}

inline double NanosecondsToSeconds(uint64_t nanoseconds)
{
    return static_cast<double>(nanoseconds) * (1.0 / 1000000000.0);
}

} // namespace Debug
