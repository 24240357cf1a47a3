#pragma once

#include <string>

namespace Debug
{

// The call stack of the calling thread, innermost first, one "at: " line per frame, skipping this
// function's own frame, at most 100 frames. Names are demangled where the executable exports symbols.
// Never throws and never crashes while building the text.
std::string GetStackTrace();

} // namespace Debug
