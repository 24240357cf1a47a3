#include "Platform/KeyCodes.h"

#include <SDL.h>

namespace Platform
{
namespace
{

constexpr int32_t kVirtualF1 = 0x70;
constexpr int32_t kVirtualF13 = 0x7C;
constexpr int32_t kVirtualNumpad0 = 0x60;

// Keys outside the letter, digit, function and keypad-digit runs.
int32_t NamedVirtualKey(SDL_Keycode keycode)
{
    switch (keycode)
    {
    case SDLK_BACKSPACE:
        return 0x08;
    case SDLK_TAB:
        return 0x09;
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
        return 0x0D;
    case SDLK_PAUSE:
        return 0x13;
    case SDLK_CAPSLOCK:
        return 0x14;
    case SDLK_ESCAPE:
        return 0x1B;
    case SDLK_SPACE:
        return 0x20;
    case SDLK_PAGEUP:
        return 0x21;
    case SDLK_PAGEDOWN:
        return 0x22;
    case SDLK_END:
        return 0x23;
    case SDLK_HOME:
        return 0x24;
    case SDLK_LEFT:
        return 0x25;
    case SDLK_UP:
        return 0x26;
    case SDLK_RIGHT:
        return 0x27;
    case SDLK_DOWN:
        return 0x28;
    case SDLK_PRINTSCREEN:
        return 0x2C;
    case SDLK_INSERT:
        return 0x2D;
    case SDLK_DELETE:
        return 0x2E;
    case SDLK_LGUI:
        return 0x5B;
    case SDLK_RGUI:
        return 0x5C;
    case SDLK_APPLICATION:
        return 0x5D;
    case SDLK_KP_MULTIPLY:
        return 0x6A;
    case SDLK_KP_PLUS:
        return 0x6B;
    case SDLK_KP_COMMA:
        return 0x6C;
    case SDLK_KP_MINUS:
        return 0x6D;
    case SDLK_KP_PERIOD:
        return 0x6E;
    case SDLK_KP_DIVIDE:
        return 0x6F;
    case SDLK_NUMLOCKCLEAR:
        return 0x90;
    case SDLK_SCROLLLOCK:
        return 0x91;
    // A right Shift isn't an extended key on Windows, so both Shifts read as the left one.
    case SDLK_LSHIFT:
    case SDLK_RSHIFT:
        return 0xA0;
    case SDLK_LCTRL:
        return 0xA2;
    case SDLK_RCTRL:
        return 0xA3;
    case SDLK_LALT:
        return 0xA4;
    case SDLK_RALT:
        return 0xA5;
    case SDLK_SEMICOLON:
        return 0xBA;
    case SDLK_EQUALS:
        return 0xBB;
    case SDLK_COMMA:
        return 0xBC;
    case SDLK_MINUS:
        return 0xBD;
    case SDLK_PERIOD:
        return 0xBE;
    case SDLK_SLASH:
        return 0xBF;
    case SDLK_BACKQUOTE:
        return 0xC0;
    case SDLK_LEFTBRACKET:
        return 0xDB;
    case SDLK_BACKSLASH:
        return 0xDC;
    case SDLK_RIGHTBRACKET:
        return 0xDD;
    case SDLK_QUOTE:
        return 0xDE;
    case SDLK_LESS:
        return 0xE2;
    default:
        return 0;
    }
}

} // namespace

int32_t VirtualKeyOf(int32_t keycode)
{
    if (keycode >= SDLK_a && keycode <= SDLK_z)
    {
        return 'A' + (keycode - SDLK_a);
    }
    if (keycode >= SDLK_0 && keycode <= SDLK_9)
    {
        return '0' + (keycode - SDLK_0);
    }
    if (keycode >= SDLK_F1 && keycode <= SDLK_F12)
    {
        return kVirtualF1 + (keycode - SDLK_F1);
    }
    if (keycode >= SDLK_F13 && keycode <= SDLK_F24)
    {
        return kVirtualF13 + (keycode - SDLK_F13);
    }
    if (keycode >= SDLK_KP_1 && keycode <= SDLK_KP_9)
    {
        return kVirtualNumpad0 + 1 + (keycode - SDLK_KP_1);
    }
    if (keycode == SDLK_KP_0)
    {
        return kVirtualNumpad0;
    }
    return NamedVirtualKey(keycode);
}

} // namespace Platform
