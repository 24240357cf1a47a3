#include "Core/Random.h"

namespace Core
{
namespace
{

thread_local uint32_t state = 1;

} // namespace

void SeedRand(uint32_t seed)
{
    state = seed;
}

int32_t Rand()
{
    state = state * 214013u + 2531011u;
    return static_cast<int32_t>((state >> 16) & 0x7FFFu);
}

} // namespace Core
