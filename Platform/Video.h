#pragma once

// Starting the platform's video layer once per process: the step that a window needs before it can exist.

#include <cstdint>

namespace Platform
{

// Starts video with the engine's hints, at most once per process: the close box only asks to close, focus
// loss never minimises by itself, and the engine keeps its own signal handling. Raises "Failed to register
// window class: (" + cause + ")" in category "Window" when video can't start; a later call tries again.
void StartVideo();

// The event type through which another thread queues a window operation for the pumping thread.
uint32_t WindowOperationEventType();
// The event type that wakes a blocking pump and carries nothing else.
uint32_t WakeEventType();

// Gives back what the platform keeps for the calling thread; the last platform call of a thread that the
// engine started.
void ReleaseThreadData();

} // namespace Platform
