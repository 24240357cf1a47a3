#pragma once

// Key codes are Windows virtual-key numbers on every platform, so that scripts and demo files mean the
// same everywhere. Like virtual keys they follow the keyboard layout: the key that types "a" is 65.

#include <cstdint>

namespace Platform
{

// The virtual key of a platform key code; 0 for a key that has none, which makes no event. Both Shift keys
// give 160; the Ctrl and Alt keys give 162/163 and 164/165, left and right.
int32_t VirtualKeyOf(int32_t keycode);

} // namespace Platform
