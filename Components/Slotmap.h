#pragma once

// Slotmap: a dense array of elements reached through a table of slots. Invariants:
//  - for every element e at position i, slots[e.slot].index == i;
//  - freeSlots holds exactly the slots whose index is kFreeIndex;
//  - a slot's generation starts at 1 and grows by one on every removal (wrapping silently), so a handle of
//    a removed element never resolves again; slots are never given back.
// Elements end in a uint32_t field `slot`, the back index that only the Slotmap writes. Removals exchange
// the doomed element with the last one and pop it, so element order is not stable, and T's destructor runs
// exactly on removed content. Insert may reallocate: a pointer or reference to an element is good only
// until the next Insert into the same Slotmap.

#include "Components/Handle.h"

#include <cstdint>
#include <stdexcept>
#include <utility>
#include <vector>

template <typename T>
class Slotmap
{
public:
    static constexpr uint32_t kFreeIndex = 0xFFFFFFFFu;

    struct SlotEntry
    {
        uint32_t index;
        uint32_t generation;
    };

    // T's constructor runs here and must not touch this Slotmap. The last slot freed is reused first.
    template <typename... Args>
    Handle Insert(Args&&... args)
    {
        const uint32_t position = static_cast<uint32_t>(elements.size());
        uint32_t slot;
        if (freeSlots.empty())
        {
            slot = static_cast<uint32_t>(slots.size());
            slots.push_back(SlotEntry{position, 1});
        }
        else
        {
            slot = freeSlots.back();
            freeSlots.pop_back();
            slots[slot].index = position;
        }
        elements.emplace_back(std::forward<Args>(args)...);
        elements.back().slot = slot;
        return Handle{slot, slots[slot].generation};
    }

    // Resolves in this order: slot in range, index in range (which rejects a free slot), equal generation.
    T* Find(Handle handle)
    {
        if (handle.slot >= slots.size())
        {
            return nullptr;
        }
        const SlotEntry& entry = slots[handle.slot];
        if (entry.index >= elements.size() || entry.generation != handle.generation)
        {
            return nullptr;
        }
        return &elements[entry.index];
    }
    const T* Find(Handle handle) const { return const_cast<Slotmap*>(this)->Find(handle); }

    // For the handle that Insert just returned; a failure here is a bug, not stale data.
    T& at(Handle handle)
    {
        T* element = Find(handle);
        if (element == nullptr)
        {
            throw std::out_of_range("Slotmap::at() error: Handle out of range");
        }
        return *element;
    }

    // Removes the element; a handle that doesn't resolve is ignored.
    void Erase(Handle handle)
    {
        const T* element = Find(handle);
        if (element == nullptr)
        {
            return;
        }
        const uint32_t position = slots[handle.slot].index;
        MoveToBack(position);
        elements.pop_back();
        FreeSlot(handle.slot);
    }

    // Removes every element whose `destroyed` is set and returns how many went. The element moved into a
    // hole is tested in its turn.
    uint32_t EraseFlagged()
    {
        uint32_t removed = 0;
        uint32_t position = 0;
        while (position < elements.size())
        {
            if (!elements[position].destroyed)
            {
                ++position;
                continue;
            }
            const uint32_t slot = elements[position].slot;
            MoveToBack(position);
            elements.pop_back();
            FreeSlot(slot);
            ++removed;
        }
        return removed;
    }

    // Exchanges two elements and fixes their slots' indices, so every handle still resolves to its element.
    // For code that keeps an order of its own in the dense array.
    void Swap(uint32_t first, uint32_t second)
    {
        std::swap(elements[first], elements[second]);
        slots[elements[first].slot].index = first;
        slots[elements[second].slot].index = second;
    }

    uint32_t size() const { return static_cast<uint32_t>(elements.size()); }
    bool empty() const { return elements.empty(); }
    // Iteration is in array order, which removals change.
    typename std::vector<T>::iterator begin() { return elements.begin(); }
    typename std::vector<T>::iterator end() { return elements.end(); }
    typename std::vector<T>::const_iterator begin() const { return elements.begin(); }
    typename std::vector<T>::const_iterator end() const { return elements.end(); }
    T& operator[](uint32_t position) { return elements[position]; }
    const T& operator[](uint32_t position) const { return elements[position]; }

    const std::vector<SlotEntry>& Slots() const { return slots; }
    const std::vector<uint32_t>& FreeSlots() const { return freeSlots; }

private:
    // Exchanges the element at the position with the last one; the back indices travel with the contents
    // and the slot entry of the element that came forward is updated.
    void MoveToBack(uint32_t position)
    {
        const uint32_t last = static_cast<uint32_t>(elements.size()) - 1;
        if (position == last)
        {
            return;
        }
        std::swap(elements[position], elements[last]);
        slots[elements[position].slot].index = position;
    }

    void FreeSlot(uint32_t slot)
    {
        ++slots[slot].generation;
        slots[slot].index = kFreeIndex;
        freeSlots.push_back(slot);
    }

    std::vector<T> elements;
    std::vector<SlotEntry> slots;
    std::vector<uint32_t> freeSlots;
};
