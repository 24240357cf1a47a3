#pragma once

// A Handle names an element of a Slotmap: a slot and the generation that the slot had when the element went
// in. Everything that outlives a frame keeps handles, never pointers; a handle to an element that has gone
// stops resolving, even after its slot has been reused, because every removal advances the generation.

#include <cstdint>

struct Handle
{
    static constexpr uint32_t kNullSlot = 0xFFFFFFFFu;

    uint32_t slot = kNullSlot;
    uint32_t generation = 0;

    // The 64-bit form that messages and scripts see: slot in the low half, generation in the high half.
    // The null handle is 4294967295.
    uint64_t Value() const { return static_cast<uint64_t>(generation) << 32 | slot; }
    bool IsNull() const { return slot == kNullSlot && generation == 0; }

    friend bool operator==(Handle, Handle) = default;
};
