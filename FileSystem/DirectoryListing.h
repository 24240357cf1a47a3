#pragma once

// Listing a folder by a pattern such as "Levels/*.lvl". Nothing here throws: scripts call it through Lua,
// where no exception may pass. Names and patterns are read as characters: each valid UTF-8 sequence is
// one character, and each byte that isn't part of one is a character of its own. In the last part of a
// pattern `*` takes any run of characters, `?` exactly one, everything else is literal and case-sensitive,
// a leading `.` is nothing special, and "*.*" takes every name.

#include <string>
#include <string_view>
#include <vector>

namespace FileSystem
{

// The names in the pattern's folder that match its last part, sorted byte-wise. The folder part runs up to
// and including the last '/' ('\' counts as '/'); without one it is the working directory. Wildcards in the
// folder part, a NUL byte, an empty last part or a folder that can't be read give an empty result.
// Directories (after following symlinks) are left out unless includeDirectories is set.
std::vector<std::string> ListDirectory(std::string_view pattern, bool includeDirectories);

// True if the whole name matches the pattern; greedy with one backtrack point, O(name * pattern).
bool MatchesPattern(std::string_view name, std::string_view pattern);

// The length in bytes of the character that starts at the position: a valid UTF-8 sequence, else 1.
size_t CharacterLength(std::string_view text, size_t position);

} // namespace FileSystem
