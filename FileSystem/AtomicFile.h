#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace FileSystem
{

// Replaces the file's content with the pieces, one after the other, so that at every moment the file
// holds either all of its old content or all of the new: the pieces go to a temporary file beside it,
// which is flushed to the disk and then renamed over it. A new file gets the modes that the umask allows;
// a replaced one keeps its own. Returns false, with the old file untouched and no temporary file left,
// if any step fails or the existing file isn't writable; errno then says why, for strerror: EINVAL for a
// name with a NUL byte in it, EISDIR for a target that exists but isn't a regular file, what access said
// for one that isn't writable, and otherwise the errno of the call that failed (EFBIG from a write cut short
// by the file size limit, ENOENT for a missing folder, ENOSPC for a full disk).
bool ReplaceFileContent(const std::string& path, std::initializer_list<std::string_view> pieces);

} // namespace FileSystem
