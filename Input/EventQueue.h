#pragma once

// A queue of input events shared between the thread that pumps the window and the game loop. Every
// operation takes the queue's mutex; the game loop takes a whole frame's events over with one swap of the
// containers, so the pumping thread waits at most for that swap, never for a copy.
//
// Copies share the path strings of "FileDropped" events without owning them: only Drain frees them.

#include "Input/InputEvent.h"

#include <deque>
#include <mutex>
#include <vector>

namespace Input
{

class EventQueue
{
public:
    EventQueue() = default;
    EventQueue(const EventQueue& other);
    EventQueue& operator=(const EventQueue& other);

    void Push(const InputEvent& event);
    // Moves the front event into the record; false if the queue is empty.
    bool Pop(InputEvent& event);
    void Clear();
    // Exchanges the contents, locking this queue first and then the other.
    void Swap(EventQueue& other);
    // Replaces the contents by the events given, in order.
    void Assign(const std::vector<InputEvent>& events);
    // Appends a copy of every event to the vector, which keeps its capacity from frame to frame.
    void CopyTo(std::vector<InputEvent>& events) const;
    // Empties the queue and frees the path of each "FileDropped": the queue owned them.
    void Drain();
    size_t Size() const;

private:
    mutable std::mutex mutex;
    std::deque<InputEvent> events;
};

} // namespace Input
