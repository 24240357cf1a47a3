#include "Platform/KeyCodes.h"

#include <SDL.h>
#include <gtest/gtest.h>

namespace
{

using Platform::VirtualKeyOf;

TEST(KeyCodes, RunsOfKeysMapOntoTheirVirtualKeyRuns)
{
    for (int32_t offset = 0; offset < 26; ++offset)
    {
        EXPECT_EQ(VirtualKeyOf(SDLK_a + offset), 'A' + offset);
    }
    for (int32_t offset = 0; offset < 10; ++offset)
    {
        EXPECT_EQ(VirtualKeyOf(SDLK_0 + offset), '0' + offset);
    }
    const SDL_Keycode functionKeys[] = {SDLK_F1,  SDLK_F2,  SDLK_F3,  SDLK_F4,  SDLK_F5,  SDLK_F6,
                                        SDLK_F7,  SDLK_F8,  SDLK_F9,  SDLK_F10, SDLK_F11, SDLK_F12,
                                        SDLK_F13, SDLK_F14, SDLK_F15, SDLK_F16, SDLK_F17, SDLK_F18,
                                        SDLK_F19, SDLK_F20, SDLK_F21, SDLK_F22, SDLK_F23, SDLK_F24};
    for (int32_t index = 0; index < 24; ++index)
    {
        EXPECT_EQ(VirtualKeyOf(functionKeys[index]), 0x70 + index) << index;
    }
    const SDL_Keycode keypadDigits[] = {SDLK_KP_0, SDLK_KP_1, SDLK_KP_2, SDLK_KP_3, SDLK_KP_4,
                                        SDLK_KP_5, SDLK_KP_6, SDLK_KP_7, SDLK_KP_8, SDLK_KP_9};
    for (int32_t digit = 0; digit < 10; ++digit)
    {
        EXPECT_EQ(VirtualKeyOf(keypadDigits[digit]), 0x60 + digit) << digit;
    }
}

TEST(KeyCodes, ModifiersAreSplitAsWindowsSplitsThem)
{
    EXPECT_EQ(VirtualKeyOf(SDLK_LSHIFT), 160);
    EXPECT_EQ(VirtualKeyOf(SDLK_RSHIFT), 160);
    EXPECT_EQ(VirtualKeyOf(SDLK_LCTRL), 162);
    EXPECT_EQ(VirtualKeyOf(SDLK_RCTRL), 163);
    EXPECT_EQ(VirtualKeyOf(SDLK_LALT), 164);
    EXPECT_EQ(VirtualKeyOf(SDLK_RALT), 165);
}

TEST(KeyCodes, NamedKeysHaveTheirVirtualKeysAndOthersNone)
{
    const std::pair<SDL_Keycode, int32_t> named[] = {
        {SDLK_BACKSPACE, 0x08}, {SDLK_TAB, 0x09},          {SDLK_RETURN, 0x0D},    {SDLK_KP_ENTER, 0x0D},
        {SDLK_PAUSE, 0x13},     {SDLK_ESCAPE, 0x1B},       {SDLK_SPACE, 0x20},     {SDLK_PAGEUP, 0x21},
        {SDLK_END, 0x23},       {SDLK_LEFT, 0x25},         {SDLK_UP, 0x26},        {SDLK_RIGHT, 0x27},
        {SDLK_DOWN, 0x28},      {SDLK_INSERT, 0x2D},       {SDLK_DELETE, 0x2E},    {SDLK_KP_MULTIPLY, 0x6A},
        {SDLK_KP_PLUS, 0x6B},   {SDLK_KP_MINUS, 0x6D},     {SDLK_KP_PERIOD, 0x6E}, {SDLK_KP_DIVIDE, 0x6F},
        {SDLK_SEMICOLON, 0xBA}, {SDLK_EQUALS, 0xBB},       {SDLK_COMMA, 0xBC},     {SDLK_MINUS, 0xBD},
        {SDLK_PERIOD, 0xBE},    {SDLK_SLASH, 0xBF},        {SDLK_BACKQUOTE, 0xC0}, {SDLK_LEFTBRACKET, 0xDB},
        {SDLK_BACKSLASH, 0xDC}, {SDLK_RIGHTBRACKET, 0xDD}, {SDLK_QUOTE, 0xDE},
    };
    for (const auto& [keycode, virtualKey] : named)
    {
        EXPECT_EQ(VirtualKeyOf(keycode), virtualKey) << SDL_GetKeyName(keycode);
    }
    EXPECT_EQ(VirtualKeyOf(SDLK_UNKNOWN), 0);
    EXPECT_EQ(VirtualKeyOf(SDLK_AUDIOPLAY), 0);
    EXPECT_EQ(VirtualKeyOf(-1), 0);
}

} // namespace
