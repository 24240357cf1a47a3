#pragma once

// What the window's events mean to the engine: each platform event becomes zero or more input events, in
// the form and with the quirks that scripts and demo files have always seen (key codes are virtual keys,
// Enter also types a carriage return, a minimised window reports a size of 0 by 0, and so on). Runs on the
// thread that pumps the window.

#include <cstdint>
#include <string>

union SDL_Event;
struct SDL_Window;

namespace Input
{
class EventQueue;
}

namespace Platform
{

class EventTranslator
{
public:
    // Pushes the input events that the platform event makes onto the queue. With no queue (before the
    // input system starts or after it stops) the event makes none. Either way the strings that a drop
    // event carries are freed here.
    void Translate(const SDL_Event& event, SDL_Window* window, Input::EventQueue* queue);

private:
    void TranslateWindowEvent(const SDL_Event& event, SDL_Window* window, Input::EventQueue& queue);
    void TranslateKey(const SDL_Event& event, Input::EventQueue& queue);
    void TranslateDrop(const SDL_Event& event, SDL_Window* window, Input::EventQueue& queue);
    void PushSize(Input::EventQueue& queue, int32_t width, int32_t height);
    // The window's current client size; with onlyIfNew, not when it is the size reported last.
    void PushWindowSize(Input::EventQueue& queue, SDL_Window* window, bool onlyIfNew = false);
    // The path of a dropped file as scripts see it: relative to the data folder where it can be.
    std::string RelativeToData(const char* file);

    int32_t lastWidth = -1;
    int32_t lastHeight = -1;
    bool shown = false;
    // The drop under way: its point, and whether it has named a file yet.
    bool dropOpen = false;
    bool dropHadFile = false;
    int32_t dropX = 0;
    int32_t dropY = 0;
    // The working directory, taken at the first drop: the data folder by then.
    std::string dataFolder;
};

} // namespace Platform
