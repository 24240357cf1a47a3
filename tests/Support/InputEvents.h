#pragma once

// Making, describing and owning input events in the input tests. Descriptions name each field that the
// event's kind carries, so a failing comparison shows the whole event.

#include "Input/Demo.h"
#include "Input/InputEvent.h"

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

using Input::MakeEvent;
using Input::MakeSwitch;
// A "FileDropped" with a heap copy of the path, or with no path for null, let go at the window point.
Input::InputEvent MakeDrop(const char* path, int32_t x = 0, int32_t y = 0);

// "KeyDown 65,0,0", "Activate false", "FileDropped Levels/A.lvl", "FileDropped (null)", "None".
std::string Describe(const Input::InputEvent& event);
// The descriptions joined by " | ".
std::string Describe(const std::vector<Input::InputEvent>& events);

// Events whose paths are freed at the end of the scope, as the queue that holds them last would.
struct OwnedEvents
{
    OwnedEvents() = default;
    OwnedEvents(const OwnedEvents&) = delete;
    OwnedEvents& operator=(const OwnedEvents&) = delete;
    ~OwnedEvents();

    std::vector<Input::InputEvent> events;
};

// A loaded demo whose remaining records are discarded at the end of the scope.
struct OwnedDemo
{
    OwnedDemo() = default;
    OwnedDemo(const OwnedDemo&) = delete;
    OwnedDemo& operator=(const OwnedDemo&) = delete;
    ~OwnedDemo();

    std::deque<Input::DemoFrame> frames;
};
