#include "Physics/ContactFinder.h"

#include "Components/Space.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>

using Components::ColliderComponent;
using Components::ColliderType;
using Components::TransformComponent;

namespace Physics
{
namespace
{

// Beyond this, differences and squares of float coordinates could overflow; such proxies leave the grid.
constexpr double kGridLimit = 1e15;
// A float contact test can accept a pair up to a few float roundings beyond the sum of the radii, and
// squares of tiny distances underflow to 0: the boxes are wider by far more than either.
constexpr double kRelativeMargin = 1e-5;
constexpr double kAbsoluteMargin = 1e-18;
// Grid cells are this many typical reaches wide, and the grid is at most this many cells across, so that
// cell numbers fit in 32 bits whatever the scene's size.
constexpr double kCellsPerReach = 4.0;
constexpr double kMaxCellIndex = 1048576.0;
// A box wider than this many cells is tested against everything instead of flooding the grid.
constexpr int32_t kMaxCellsAcross = 8;

bool FitsGrid(Vec2 position, float radius)
{
    // Written so that NaN fails every test.
    return std::fabs(position.x) <= kGridLimit && std::fabs(position.y) <= kGridLimit &&
           std::fabs(radius) <= kGridLimit;
}

// Rounded up to a float, so that the square is never smaller than the margins ask.
float Reach(float radius)
{
    const double reach = std::fabs(static_cast<double>(radius)) * (1.0 + kRelativeMargin) + kAbsoluteMargin;
    const auto rounded = static_cast<float>(reach);
    return static_cast<double>(rounded) >= reach ? rounded : std::nextafter(rounded, 2.0f * rounded);
}

// Exact enough: rounding is monotonic, so two squares that overlap as real numbers also overlap here.
bool Overlap(float a, float b, float reachA, float reachB)
{
    return std::fabs(static_cast<double>(a) - static_cast<double>(b)) <=
           static_cast<double>(reachA) + static_cast<double>(reachB);
}

int32_t Cell(double coordinate, double origin, double cellSize)
{
    const double cell = std::floor((coordinate - origin) / cellSize);
    assert(cell >= 0.0 && cell <= kMaxCellIndex + 1.0);
    return static_cast<int32_t>(cell);
}

} // namespace

void ContactFinder::FindContacts(Space& space, std::vector<Contact>& contacts)
{
    contacts.clear();
    Gather(space);
    Classify();
    BuildGrid();
    seenBy.assign(proxies.size(), 0);
    const auto count = static_cast<uint32_t>(proxies.size());
    for (uint32_t index = 0; index < count; ++index)
    {
        const Proxy& first = proxies[index];
        CollectCandidates(index);
        for (const uint32_t other : candidates)
        {
            const Proxy& second = proxies[other];
            if (first.group != 0 && first.group == second.group)
            {
                continue;
            }
            Contact contact;
            if (CollideCircles(first.position, first.radius, second.position, second.radius, contact))
            {
                contact.first = first.place;
                contact.second = second.place;
                contacts.push_back(contact);
            }
        }
    }
}

// Proxies come out in array order. Only circles can touch, so nothing else is gathered.
void ContactFinder::Gather(Space& space)
{
    proxies.clear();
    Slotmap<ColliderComponent>& colliders = space.colliders.components;
    Slotmap<TransformComponent>& transforms = space.transforms.components;
    const uint32_t count = colliders.size();
    for (uint32_t place = 0; place < count; ++place)
    {
        const ColliderComponent& collider = colliders[place];
        if (collider.destroyed || collider.type != ColliderType::Circle)
        {
            continue;
        }
        const TransformComponent* transform = transforms.Find(collider.transform);
        if (transform == nullptr || transform->destroyed)
        {
            continue;
        }
        proxies.push_back(
            Proxy{transform->GetWorldPosition(), collider.radius, place, collider.collisionGroup});
    }
}

// Sizes the grid from the median reach, so a few odd colliders can't spoil it, and sets aside the proxies
// that the grid can't hold.
void ContactFinder::Classify()
{
    const size_t count = proxies.size();
    extents.resize(count);
    cellRanges.resize(count);
    isWide.assign(count, false);
    reaches.clear();
    double minX = 0.0, minY = 0.0, maxX = 0.0, maxY = 0.0;
    for (size_t index = 0; index < count; ++index)
    {
        const Proxy& proxy = proxies[index];
        if (!FitsGrid(proxy.position, proxy.radius))
        {
            isWide[index] = true;
            continue;
        }
        const Extent extent{proxy.position.x, proxy.position.y, Reach(proxy.radius),
                            static_cast<uint32_t>(index)};
        extents[index] = extent;
        const double low[2] = {static_cast<double>(extent.x) - extent.reach,
                               static_cast<double>(extent.y) - extent.reach};
        const double high[2] = {static_cast<double>(extent.x) + extent.reach,
                                static_cast<double>(extent.y) + extent.reach};
        if (reaches.empty())
        {
            minX = low[0], minY = low[1], maxX = high[0], maxY = high[1];
        }
        minX = std::min(minX, low[0]), minY = std::min(minY, low[1]);
        maxX = std::max(maxX, high[0]), maxY = std::max(maxY, high[1]);
        reaches.push_back(extent.reach);
    }

    wide.clear();
    if (!reaches.empty())
    {
        const auto middle = reaches.begin() + static_cast<std::ptrdiff_t>(reaches.size() / 2);
        std::nth_element(reaches.begin(), middle, reaches.end());
        cellSize = std::max(kCellsPerReach * *middle, std::max(maxX - minX, maxY - minY) / kMaxCellIndex);
        originX = minX;
        originY = minY;
    }
    for (size_t index = 0; index < count; ++index)
    {
        if (!isWide[index])
        {
            const Extent& extent = extents[index];
            CellRange& range = cellRanges[index];
            range.minX = Cell(static_cast<double>(extent.x) - extent.reach, originX, cellSize);
            range.minY = Cell(static_cast<double>(extent.y) - extent.reach, originY, cellSize);
            range.maxX = Cell(static_cast<double>(extent.x) + extent.reach, originX, cellSize);
            range.maxY = Cell(static_cast<double>(extent.y) + extent.reach, originY, cellSize);
            isWide[index] =
                range.maxX - range.minX >= kMaxCellsAcross || range.maxY - range.minY >= kMaxCellsAcross;
        }
        if (isWide[index])
        {
            wide.push_back(static_cast<uint32_t>(index));
        }
    }
}

uint32_t ContactFinder::Bucket(int32_t cellX, int32_t cellY) const
{
    const uint32_t hash =
        static_cast<uint32_t>(cellX) * 0x9E3779B1u ^ static_cast<uint32_t>(cellY) * 0x85EBCA77u;
    return (hash ^ hash >> 15) & bucketMask;
}

// A counting sort of (cell, proxy) entries into buckets. Filling from the last proxy down leaves every
// bucket in ascending proxy order.
void ContactFinder::BuildGrid()
{
    const auto count = static_cast<uint32_t>(proxies.size());
    size_t total = 0;
    for (uint32_t index = 0; index < count; ++index)
    {
        if (!isWide[index])
        {
            const CellRange& range = cellRanges[index];
            total += static_cast<size_t>(range.maxX - range.minX + 1) *
                     static_cast<size_t>(range.maxY - range.minY + 1);
        }
    }
    const size_t bucketCount = std::bit_ceil(std::max<size_t>(16, total * 2));
    bucketMask = static_cast<uint32_t>(bucketCount - 1);
    bucketStart.assign(bucketCount + 1, 0);
    for (uint32_t index = 0; index < count; ++index)
    {
        if (isWide[index])
        {
            continue;
        }
        const CellRange& range = cellRanges[index];
        for (int32_t cellY = range.minY; cellY <= range.maxY; ++cellY)
        {
            for (int32_t cellX = range.minX; cellX <= range.maxX; ++cellX)
            {
                ++bucketStart[Bucket(cellX, cellY)];
            }
        }
    }
    uint32_t sum = 0;
    for (uint32_t& start : bucketStart)
    {
        sum += start;
        start = sum;
    }
    entries.resize(total);
    for (uint32_t index = count; index-- > 0;)
    {
        if (isWide[index])
        {
            continue;
        }
        const CellRange& range = cellRanges[index];
        for (int32_t cellY = range.minY; cellY <= range.maxY; ++cellY)
        {
            for (int32_t cellX = range.minX; cellX <= range.maxX; ++cellX)
            {
                entries[--bucketStart[Bucket(cellX, cellY)]] = extents[index];
            }
        }
    }
}

void ContactFinder::CollectCandidates(uint32_t proxy)
{
    candidates.clear();
    const auto count = static_cast<uint32_t>(proxies.size());
    if (isWide[proxy])
    {
        for (uint32_t other = proxy + 1; other < count; ++other)
        {
            candidates.push_back(other);
        }
        return;
    }
    CollectFromGrid(proxy);
    candidates.insert(candidates.end(), std::upper_bound(wide.begin(), wide.end(), proxy), wide.end());
    std::sort(candidates.begin(), candidates.end());
}

void ContactFinder::CollectFromGrid(uint32_t proxy)
{
    const Extent& extent = extents[proxy];
    const CellRange& range = cellRanges[proxy];
    const uint32_t stamp = proxy + 1;
    const auto after = [](uint32_t value, const Extent& entry) { return value < entry.proxy; };
    for (int32_t cellY = range.minY; cellY <= range.maxY; ++cellY)
    {
        for (int32_t cellX = range.minX; cellX <= range.maxX; ++cellX)
        {
            const uint32_t bucket = Bucket(cellX, cellY);
            const auto begin = entries.begin() + bucketStart[bucket];
            const auto end = entries.begin() + bucketStart[bucket + 1];
            for (auto entry = std::upper_bound(begin, end, proxy, after); entry != end; ++entry)
            {
                if (!Overlap(extent.x, entry->x, extent.reach, entry->reach) ||
                    !Overlap(extent.y, entry->y, extent.reach, entry->reach) || seenBy[entry->proxy] == stamp)
                {
                    continue;
                }
                seenBy[entry->proxy] = stamp;
                candidates.push_back(entry->proxy);
            }
        }
    }
}

} // namespace Physics
