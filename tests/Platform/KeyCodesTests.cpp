#include "Platform/KeyCodes.h"

#include <SDL.h>
#include <gtest/gtest.h>

namespace
{

// The ends of each run (letters, digits, F1-F12, F13-F24, keypad digits with 0 after 9 in SDL), the
// modifiers split as Windows splits them, and keys without a virtual key.
TEST(KeyCodes, KeysMapOntoTheirWindowsVirtualKeysAndOthersOntoNone)
{
    const std::pair<SDL_Keycode, int32_t> rows[] = {
        {SDLK_a, 'A'},          {SDLK_q, 'Q'},
        {SDLK_z, 'Z'},          {SDLK_0, '0'},
        {SDLK_9, '9'},          {SDLK_F1, 0x70},
        {SDLK_F12, 0x7B},       {SDLK_F13, 0x7C},
        {SDLK_F24, 0x87},       {SDLK_KP_0, 0x60},
        {SDLK_KP_1, 0x61},      {SDLK_KP_9, 0x69},
        {SDLK_LSHIFT, 0xA0},    {SDLK_RSHIFT, 0xA0},
        {SDLK_LCTRL, 0xA2},     {SDLK_RCTRL, 0xA3},
        {SDLK_LALT, 0xA4},      {SDLK_RALT, 0xA5},
        {SDLK_BACKSPACE, 0x08}, {SDLK_TAB, 0x09},
        {SDLK_RETURN, 0x0D},    {SDLK_KP_ENTER, 0x0D},
        {SDLK_PAUSE, 0x13},     {SDLK_ESCAPE, 0x1B},
        {SDLK_SPACE, 0x20},     {SDLK_PAGEUP, 0x21},
        {SDLK_END, 0x23},       {SDLK_LEFT, 0x25},
        {SDLK_UP, 0x26},        {SDLK_RIGHT, 0x27},
        {SDLK_DOWN, 0x28},      {SDLK_INSERT, 0x2D},
        {SDLK_DELETE, 0x2E},    {SDLK_KP_MULTIPLY, 0x6A},
        {SDLK_KP_PLUS, 0x6B},   {SDLK_KP_MINUS, 0x6D},
        {SDLK_KP_PERIOD, 0x6E}, {SDLK_KP_DIVIDE, 0x6F},
        {SDLK_SEMICOLON, 0xBA}, {SDLK_EQUALS, 0xBB},
        {SDLK_COMMA, 0xBC},     {SDLK_MINUS, 0xBD},
        {SDLK_PERIOD, 0xBE},    {SDLK_SLASH, 0xBF},
        {SDLK_BACKQUOTE, 0xC0}, {SDLK_LEFTBRACKET, 0xDB},
        {SDLK_BACKSLASH, 0xDC}, {SDLK_RIGHTBRACKET, 0xDD},
        {SDLK_QUOTE, 0xDE},     {SDLK_UNKNOWN, 0},
        {SDLK_AUDIOPLAY, 0},    {-1, 0},
    };
    for (const auto& [keycode, virtualKey] : rows)
    {
        EXPECT_EQ(Platform::VirtualKeyOf(keycode), virtualKey) << SDL_GetKeyName(keycode);
    }
}

} // namespace
