#pragma once

// Finds the touching circle pairs of a space. The result is exactly what a plain walk over all pairs gives,
// in the same order: by the first collider's place in the dense array, then by the second's (i, then
// j > i). The response applies contacts in that order and each sees the velocities the earlier ones left,
// so the order is part of the outcome; tests hold this against the plain walk.
//
// Each collider's validity, world position, radius and group are gathered once per step, so the pair loop
// reads no transforms. A uniform grid then proposes candidate pairs. Its boxes are wider than any float
// contact test can reach, so it never drops a pair that the narrow phase would accept. Colliders with NaN,
// infinite or huge values, or boxes far larger than the typical one, are tested against every other
// collider instead: NaN touches everything, and such values would break the grid's arithmetic.
//
// All buffers are kept between steps, so a step allocates only while a scene grows.

#include "Physics/Contact.h"

#include <cstdint>
#include <vector>

class Space;

namespace Physics
{

class ContactFinder
{
public:
    // Refills contacts with the contacts of the space, in the order above.
    void FindContacts(Space& space, std::vector<Contact>& contacts);

private:
    struct Proxy
    {
        Vec2 position;
        float radius;
        uint32_t place;
        int16_t group;
    };

    // A square around a proxy, of half-width `reach`, that holds every point its contacts can reach. The
    // grid's entries carry it, so a bucket is scanned without a jump to the proxies.
    struct Extent
    {
        float x;
        float y;
        float reach;
        uint32_t proxy;
    };

    struct CellRange
    {
        int32_t minX, minY, maxX, maxY;
    };

    void Gather(Space& space);
    void Classify();
    void BuildGrid();
    // Fills candidates with the proxies after this one that may touch it, in ascending order.
    void CollectCandidates(uint32_t proxy);
    void CollectFromGrid(uint32_t proxy);
    uint32_t Bucket(int32_t cellX, int32_t cellY) const;

    std::vector<Proxy> proxies;
    std::vector<Extent> extents;
    std::vector<CellRange> cellRanges;
    // Proxies tested against all others, ascending.
    std::vector<uint32_t> wide;
    std::vector<bool> isWide;
    std::vector<float> reaches;
    double cellSize = 1.0;
    double originX = 0.0;
    double originY = 0.0;
    // The grid: a hash of cells into buckets, each bucket a range of entries in ascending proxy order.
    std::vector<uint32_t> bucketStart;
    std::vector<Extent> entries;
    uint32_t bucketMask = 0;
    // Per proxy, one more than the last proxy whose candidates already hold it.
    std::vector<uint32_t> seenBy;
    std::vector<uint32_t> candidates;
};

} // namespace Physics
