#include "Input/EventQueue.h"

namespace Input
{

EventQueue::EventQueue(const EventQueue& other)
{
    const std::lock_guard lock(other.mutex);
    events = other.events;
}

EventQueue& EventQueue::operator=(const EventQueue& other)
{
    if (this != &other)
    {
        const std::scoped_lock lock(mutex, other.mutex);
        events = other.events;
    }
    return *this;
}

void EventQueue::Push(const InputEvent& event)
{
    const std::lock_guard lock(mutex);
    events.push_back(event);
}

bool EventQueue::Pop(InputEvent& event)
{
    const std::lock_guard lock(mutex);
    if (events.empty())
    {
        return false;
    }
    event = events.front();
    events.pop_front();
    return true;
}

void EventQueue::Clear()
{
    const std::lock_guard lock(mutex);
    events.clear();
}

void EventQueue::Swap(EventQueue& other)
{
    if (this == &other)
    {
        return;
    }
    // Always this queue's mutex first: the game loop is the only caller, so the order is fixed.
    const std::lock_guard lock(mutex);
    const std::lock_guard otherLock(other.mutex);
    events.swap(other.events);
}

void EventQueue::Assign(const std::vector<InputEvent>& replacement)
{
    const std::lock_guard lock(mutex);
    events.assign(replacement.begin(), replacement.end());
}

void EventQueue::CopyTo(std::vector<InputEvent>& copy) const
{
    const std::lock_guard lock(mutex);
    copy.assign(events.begin(), events.end());
}

void EventQueue::Drain()
{
    const std::lock_guard lock(mutex);
    for (InputEvent& event : events)
    {
        FreePath(event);
    }
    events.clear();
}

size_t EventQueue::Size() const
{
    const std::lock_guard lock(mutex);
    return events.size();
}

} // namespace Input
