#include "Physics/ContactFinder.h"

#include "Components/Space.h"

#include <algorithm>
#include <bit>
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

double Reach(float radius)
{
    return std::fabs(static_cast<double>(radius)) * (1.0 + kRelativeMargin) + kAbsoluteMargin;
}

int32_t Cell(double coordinate, double origin, double cellSize)
{
    return static_cast<int32_t>(std::floor((coordinate - origin) / cellSize));
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
    bounds.resize(count);
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
        const double reach = Reach(proxy.radius);
        Bounds& box = bounds[index];
        box.minX = proxy.position.x - reach;
        box.minY = proxy.position.y - reach;
        box.maxX = proxy.position.x + reach;
        box.maxY = proxy.position.y + reach;
        if (reaches.empty())
        {
            minX = box.minX, minY = box.minY, maxX = box.maxX, maxY = box.maxY;
        }
        minX = std::min(minX, box.minX), minY = std::min(minY, box.minY);
        maxX = std::max(maxX, box.maxX), maxY = std::max(maxY, box.maxY);
        reaches.push_back(reach);
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
            Bounds& box = bounds[index];
            box.cellMinX = Cell(box.minX, originX, cellSize);
            box.cellMinY = Cell(box.minY, originY, cellSize);
            box.cellMaxX = Cell(box.maxX, originX, cellSize);
            box.cellMaxY = Cell(box.maxY, originY, cellSize);
            isWide[index] = box.cellMaxX - box.cellMinX >= kMaxCellsAcross ||
                            box.cellMaxY - box.cellMinY >= kMaxCellsAcross;
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
            const Bounds& box = bounds[index];
            total += static_cast<size_t>(box.cellMaxX - box.cellMinX + 1) *
                     static_cast<size_t>(box.cellMaxY - box.cellMinY + 1);
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
        const Bounds& box = bounds[index];
        for (int32_t cellY = box.cellMinY; cellY <= box.cellMaxY; ++cellY)
        {
            for (int32_t cellX = box.cellMinX; cellX <= box.cellMaxX; ++cellX)
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
        const Bounds& box = bounds[index];
        for (int32_t cellY = box.cellMinY; cellY <= box.cellMaxY; ++cellY)
        {
            for (int32_t cellX = box.cellMinX; cellX <= box.cellMaxX; ++cellX)
            {
                entries[--bucketStart[Bucket(cellX, cellY)]] = index;
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
    const Bounds& box = bounds[proxy];
    const uint32_t stamp = proxy + 1;
    for (int32_t cellY = box.cellMinY; cellY <= box.cellMaxY; ++cellY)
    {
        for (int32_t cellX = box.cellMinX; cellX <= box.cellMaxX; ++cellX)
        {
            const uint32_t bucket = Bucket(cellX, cellY);
            const auto begin = entries.begin() + bucketStart[bucket];
            const auto end = entries.begin() + bucketStart[bucket + 1];
            for (auto entry = std::upper_bound(begin, end, proxy); entry != end; ++entry)
            {
                const uint32_t other = *entry;
                const Bounds& otherBox = bounds[other];
                if (seenBy[other] == stamp || otherBox.minX > box.maxX || box.minX > otherBox.maxX ||
                    otherBox.minY > box.maxY || box.minY > otherBox.maxY)
                {
                    continue;
                }
                seenBy[other] = stamp;
                candidates.push_back(other);
            }
        }
    }
}

} // namespace Physics
