#pragma once

// The particles of one system, one array per field: each policy's loop streams through the few fields it
// reads and writes and nothing else. Records [0, liveCount) of a system are its live particles, in the
// order in which they are drawn. The pool never grows: its capacity is fixed when it is made.

#include "Components/Vec2.h"
#include "Graphics/Colour.h"

#include <cstddef>
#include <cstdint>

namespace Graphics::Particles
{

// A run of records of a pool, [begin, end): what an updater or terminator works on in one call.
struct ParticleRange
{
    uint32_t begin;
    uint32_t end;
};

// Where a pool's memory comes from. A component's pool is large and mostly untouched, so it takes pages
// that cost nothing until used; a burst fills its pool at once, so ordinary heap memory serves it better.
enum class PoolMemory
{
    Pages,
    Heap,
};

class ParticlePool
{
public:
    ParticlePool() = default;
    // Throws std::bad_alloc when the memory can't be had.
    ParticlePool(uint64_t capacity, PoolMemory memory);
    ~ParticlePool();
    ParticlePool(ParticlePool&& other) noexcept;
    ParticlePool& operator=(ParticlePool&& other) noexcept;
    ParticlePool(const ParticlePool&) = delete;
    ParticlePool& operator=(const ParticlePool&) = delete;

    // Exchanges two whole records, every field.
    void Swap(uint32_t a, uint32_t b);

    Vec2* position = nullptr;
    // World units per second.
    Vec2* velocity = nullptr;
    Colour* colour = nullptr;
    // The alpha and scale given at birth, which the fades and scale policies work from.
    float* startAlpha = nullptr;
    float* startScale = nullptr;
    // Seconds left; 0 or below while the particle is dying.
    float* life = nullptr;
    float* startLife = nullptr;
    // Radians and world units, for the geometry shader.
    float* rotation = nullptr;
    float* scale = nullptr;
    // Set by the terminator for a particle that leaves at the end of this update; 0 otherwise.
    uint8_t* leaving = nullptr;

private:
    void Release() noexcept;

    std::byte* block = nullptr;
    size_t bytes = 0;
    PoolMemory memory = PoolMemory::Heap;
};

} // namespace Graphics::Particles
