#include "Graphics/Particles/ParticlePool.h"

#include "Platform/PageMemory.h"

#include <new>
#include <utility>

namespace Graphics::Particles
{
namespace
{

// Each column starts on a cache line of its own.
constexpr size_t kColumnAlignment = 64;

size_t Aligned(size_t offset)
{
    return (offset + kColumnAlignment - 1) / kColumnAlignment * kColumnAlignment;
}

// Hands out the columns of one block in order; with a null block it only counts the bytes they need.
class ColumnCarver
{
public:
    ColumnCarver(std::byte* start, uint64_t records) : block(start), capacity(records) {}

    template <typename T>
    T* Next()
    {
        T* column = block != nullptr ? reinterpret_cast<T*>(block + offset) : nullptr;
        offset = Aligned(offset + sizeof(T) * capacity);
        return column;
    }

    size_t Bytes() const { return offset; }

private:
    std::byte* block;
    uint64_t capacity;
    size_t offset = 0;
};

// Points every column of the pool into the block, in a fixed order, or with a null block only measures;
// returns the bytes the columns take.
size_t LayOutColumns(ParticlePool& pool, std::byte* block, uint64_t capacity)
{
    ColumnCarver carver(block, capacity);
    pool.position = carver.Next<Vec2>();
    pool.velocity = carver.Next<Vec2>();
    pool.colour = carver.Next<Colour>();
    pool.startAlpha = carver.Next<float>();
    pool.startScale = carver.Next<float>();
    pool.life = carver.Next<float>();
    pool.startLife = carver.Next<float>();
    pool.rotation = carver.Next<float>();
    pool.scale = carver.Next<float>();
    pool.leaving = carver.Next<uint8_t>();
    return carver.Bytes();
}

} // namespace

ParticlePool::ParticlePool(uint64_t capacity, PoolMemory poolMemory)
    : bytes(LayOutColumns(*this, nullptr, capacity)), memory(poolMemory)
{
    block = memory == PoolMemory::Pages
                ? static_cast<std::byte*>(Platform::MapZeroedPages(bytes))
                : static_cast<std::byte*>(::operator new (bytes, std::align_val_t{kColumnAlignment}));
    LayOutColumns(*this, block, capacity);
}

ParticlePool::~ParticlePool()
{
    Release();
}

ParticlePool::ParticlePool(ParticlePool&& other) noexcept
{
    *this = std::move(other);
}

ParticlePool& ParticlePool::operator=(ParticlePool&& other) noexcept
{
    if (this != &other)
    {
        Release();
        position = std::exchange(other.position, nullptr);
        velocity = std::exchange(other.velocity, nullptr);
        colour = std::exchange(other.colour, nullptr);
        startAlpha = std::exchange(other.startAlpha, nullptr);
        startScale = std::exchange(other.startScale, nullptr);
        life = std::exchange(other.life, nullptr);
        startLife = std::exchange(other.startLife, nullptr);
        rotation = std::exchange(other.rotation, nullptr);
        scale = std::exchange(other.scale, nullptr);
        leaving = std::exchange(other.leaving, nullptr);
        block = std::exchange(other.block, nullptr);
        bytes = std::exchange(other.bytes, 0);
        memory = other.memory;
    }
    return *this;
}

void ParticlePool::Swap(uint32_t a, uint32_t b)
{
    std::swap(position[a], position[b]);
    std::swap(velocity[a], velocity[b]);
    std::swap(colour[a], colour[b]);
    std::swap(startAlpha[a], startAlpha[b]);
    std::swap(startScale[a], startScale[b]);
    std::swap(life[a], life[b]);
    std::swap(startLife[a], startLife[b]);
    std::swap(rotation[a], rotation[b]);
    std::swap(scale[a], scale[b]);
    std::swap(leaving[a], leaving[b]);
}

void ParticlePool::Release() noexcept
{
    if (block == nullptr)
    {
        return;
    }
    if (memory == PoolMemory::Pages)
    {
        Platform::UnmapPages(block, bytes);
    }
    else
    {
        ::operator delete (block, std::align_val_t{kColumnAlignment});
    }
    block = nullptr;
}

} // namespace Graphics::Particles
