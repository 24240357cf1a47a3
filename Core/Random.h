#pragma once

// The engine's random generator. Runs must repeat from a seed on every platform, and the C libraries
// differ, so the engine keeps the one generator it was designed around: a 32-bit linear congruential
// state per thread, starting at 1, of which each draw returns bits 16 to 30.

#include <cstdint>

namespace Core
{

constexpr int32_t kRandMax = 32767;

void SeedRand(uint32_t seed);

// The next value of the calling thread's generator, from 0 to kRandMax.
int32_t Rand();

} // namespace Core
