// A stand-in for main with a user at the keyboard: runs the engine exactly as main does while a second
// thread pushes platform events at its window a few milliseconds apart: keys, text, the mouse, the wheel,
// a file drop, focus, and last the close box.

#include "Core/Main.h"

#include <SDL.h>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>

namespace
{

void Push(SDL_Event event)
{
    SDL_PushEvent(&event);
    std::this_thread::sleep_for(std::chrono::milliseconds(4));
}

SDL_Event Of(uint32_t type)
{
    SDL_Event event = {};
    event.type = type;
    return event;
}

void Key(uint32_t type, SDL_Keycode keycode)
{
    SDL_Event event = Of(type);
    event.key.keysym.sym = keycode;
    Push(event);
}

void Window(uint8_t kind)
{
    SDL_Event event = Of(SDL_WINDOWEVENT);
    event.window.event = kind;
    Push(event);
}

void Text(const char* text)
{
    SDL_Event event = Of(SDL_TEXTINPUT);
    std::strncpy(event.text.text, text, sizeof(event.text.text) - 1);
    Push(event);
}

void Mouse(uint32_t type, uint8_t button, int32_t x, int32_t y)
{
    SDL_Event event = Of(type);
    event.button.button = button;
    event.button.x = x;
    event.button.y = y;
    Push(event);
}

void Motion(int32_t x, int32_t y)
{
    SDL_Event event = Of(SDL_MOUSEMOTION);
    event.motion.x = x;
    event.motion.y = y;
    Push(event);
}

void Wheel(int32_t y)
{
    SDL_Event event = Of(SDL_MOUSEWHEEL);
    event.wheel.y = y;
    Push(event);
}

void Drop(const std::string& path)
{
    Push(Of(SDL_DROPBEGIN));
    SDL_Event file = Of(SDL_DROPFILE);
    file.drop.file = SDL_strdup(path.c_str());
    Push(file);
    Push(Of(SDL_DROPCOMPLETE));
}

// The listener leaves a sign file once every handler is connected; events typed before that would be lost.
// A game that never gets there is ended by the harness's time limit.
void WaitForTheListener(const std::filesystem::path& sign)
{
    while (!std::filesystem::exists(sign))
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void Type(const std::string& droppedFile, const std::filesystem::path& sign)
{
    WaitForTheListener(sign);
    Key(SDL_KEYDOWN, SDLK_h);
    Text("h");
    Key(SDL_KEYUP, SDLK_h);
    Key(SDL_KEYDOWN, SDLK_LSHIFT);
    Text("I");
    Key(SDL_KEYUP, SDLK_LSHIFT);
    Key(SDL_KEYDOWN, SDLK_RETURN);
    Key(SDL_KEYUP, SDLK_RETURN);
    Motion(100, 200);
    Mouse(SDL_MOUSEBUTTONDOWN, SDL_BUTTON_LEFT, 100, 200);
    Mouse(SDL_MOUSEBUTTONUP, SDL_BUTTON_LEFT, 101, 201);
    Mouse(SDL_MOUSEBUTTONDOWN, SDL_BUTTON_RIGHT, 5, 6);
    Mouse(SDL_MOUSEBUTTONUP, SDL_BUTTON_MIDDLE, 7, 8);
    Wheel(1);
    Wheel(-1);
    Drop(droppedFile);
    Window(SDL_WINDOWEVENT_FOCUS_LOST);
    Window(SDL_WINDOWEVENT_FOCUS_GAINED);
    Key(SDL_KEYDOWN, SDLK_PAUSE);
    Key(SDL_KEYDOWN, SDLK_z);
    Window(SDL_WINDOWEVENT_CLOSE);
}

} // namespace

int main(int argc, char** argv)
{
    const std::string droppedFile = std::filesystem::absolute("Data/Levels/Start.lvl").string();
    const std::filesystem::path sign = std::filesystem::absolute("Data/listening");
    std::filesystem::remove(sign);
    std::thread typist(
        [&]
        {
            Type(droppedFile, sign);
            SDL_TLSCleanup();
        });
    const int exitCode = Core::Main(argc, argv);
    typist.join();
    return exitCode;
}
