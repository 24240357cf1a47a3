#pragma once

// Demo files: the text form of a run's input events, grouped by frame number, written while recording
// and read back whole before playing.
//
//   <12.5> Frame 42          a frame line, at the start of every processed frame (time in seconds)
//   [5] KeyDown (65)         an event line, one per event of that frame, in processing order
//
// The frame number is the demo's only clock: playing hands each recorded event to the game at the frame
// number it was recorded in.

#include "Input/InputEvent.h"

#include <cstdint>
#include <deque>
#include <iosfwd>
#include <string_view>
#include <vector>

namespace Input
{

// The events of one recorded frame; only frames with at least one event are kept. The paths of its
// "FileDropped" events belong to it until they are handed out.
struct DemoFrame
{
    uint64_t frame = 0;
    std::vector<InputEvent> events;
};

// Neither writer flushes: the recorder flushes once a frame, after the frame's events.
void WriteFrameLine(std::ostream& demo, double seconds, uint64_t frame);
// Sets booleans as words, fixed notation and three decimals on the stream first; those settings stay.
void WriteEvent(std::ostream& demo, const InputEvent& event);

// Reads one event line. Never fails: a line it can't make sense of becomes some event, and an unknown
// kind is logged and stays kind None. A "FileDropped" gets a heap path of its own, or none for an empty
// path, which is how the writer puts a drop that named no file.
InputEvent ParseEvent(std::string_view line);
// Appends every frame with events to the list, in file order. The events after the last frame line, and
// a last line without its line feed, are not read.
void LoadDemo(std::istream& demo, std::deque<DemoFrame>& frames);

// Moves the events recorded for the frame into the vector (emptied first), dropping with a Warning any
// record of an earlier frame. False, with "Ending replay" logged, when no record is left: the replay is over.
bool TakeEventsOfFrame(std::deque<DemoFrame>& frames, uint64_t frame, std::vector<InputEvent>& events);
// Frees the paths of the records left in the list and empties it.
void DiscardDemoFrames(std::deque<DemoFrame>& frames);

} // namespace Input
