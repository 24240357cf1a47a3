#pragma once

// Zero-filled memory taken from the system page by page. Nothing of it is committed until it is first
// touched, so a large block of which a program uses the start costs only the pages it reaches, and freeing
// it gives every page back at once, whatever the C library's allocator would have kept.

#include <cstddef>

namespace Platform
{

// A block of at least `bytes` bytes, all zero, aligned to a page; throws std::bad_alloc when the system has
// none to give. A size of 0 gives nullptr.
void* MapZeroedPages(size_t bytes);
// Address space of at least `bytes` bytes, zero-filled, whose pages take memory only once touched and which
// the system doesn't count against its commit limit up front; nullptr when the system refuses.
void* ReservePages(size_t bytes);
// Gives back a block of MapZeroedPages or ReservePages with the size it was asked for; nullptr is ignored.
void UnmapPages(void* pages, size_t bytes);

} // namespace Platform
