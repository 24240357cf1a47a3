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

// Pushes an event of the type, its fields set by fill, and gives the game a few milliseconds.
template <typename Fill>
void Push(uint32_t type, Fill fill)
{
    SDL_Event event = {};
    event.type = type;
    fill(event);
    SDL_PushEvent(&event);
    std::this_thread::sleep_for(std::chrono::milliseconds(4));
}

void Push(uint32_t type)
{
    Push(type, [](SDL_Event&) {});
}

void Type(const std::string& droppedFile, const std::filesystem::path& sign)
{
    // The listener leaves a sign file once every handler is connected; events typed before that would be
    // lost. A game that never gets there is ended by the harness's time limit.
    while (!std::filesystem::exists(sign))
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    const auto key = [](uint32_t type, SDL_Keycode code)
    { Push(type, [&](SDL_Event& e) { e.key.keysym.sym = code; }); };
    const auto text = [](const char* typed) {
        Push(SDL_TEXTINPUT, [&](SDL_Event& e) { std::strncpy(e.text.text, typed, sizeof(e.text.text) - 1); });
    };
    const auto mouse = [](uint32_t type, uint8_t button, int32_t x, int32_t y)
    {
        Push(type,
             [&](SDL_Event& e)
             {
                 e.button.button = button;
                 e.button.x = x;
                 e.button.y = y;
             });
    };
    const auto wheel = [](int32_t y) { Push(SDL_MOUSEWHEEL, [&](SDL_Event& e) { e.wheel.y = y; }); };
    const auto window = [](uint8_t kind)
    { Push(SDL_WINDOWEVENT, [&](SDL_Event& e) { e.window.event = kind; }); };
    key(SDL_KEYDOWN, SDLK_h);
    text("h");
    key(SDL_KEYUP, SDLK_h);
    key(SDL_KEYDOWN, SDLK_LSHIFT);
    text("I");
    key(SDL_KEYUP, SDLK_LSHIFT);
    key(SDL_KEYDOWN, SDLK_RETURN);
    key(SDL_KEYUP, SDLK_RETURN);
    Push(SDL_MOUSEMOTION,
         [](SDL_Event& e)
         {
             e.motion.x = 100;
             e.motion.y = 200;
         });
    mouse(SDL_MOUSEBUTTONDOWN, SDL_BUTTON_LEFT, 100, 200);
    mouse(SDL_MOUSEBUTTONUP, SDL_BUTTON_LEFT, 101, 201);
    mouse(SDL_MOUSEBUTTONDOWN, SDL_BUTTON_RIGHT, 5, 6);
    mouse(SDL_MOUSEBUTTONUP, SDL_BUTTON_MIDDLE, 7, 8);
    wheel(1);
    wheel(-1);
    Push(SDL_DROPBEGIN);
    Push(SDL_DROPFILE, [&](SDL_Event& e) { e.drop.file = SDL_strdup(droppedFile.c_str()); });
    Push(SDL_DROPCOMPLETE);
    window(SDL_WINDOWEVENT_FOCUS_LOST);
    window(SDL_WINDOWEVENT_FOCUS_GAINED);
    key(SDL_KEYDOWN, SDLK_PAUSE);
    key(SDL_KEYDOWN, SDLK_z);
    window(SDL_WINDOWEVENT_CLOSE);
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
