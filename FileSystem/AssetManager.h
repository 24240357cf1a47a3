#pragma once

// The shared bitmap cache and the reader of text files. The cache maps a normalised file name to a weak
// reference: it owns nothing, so a bitmap lives exactly as long as somebody holds it, and one file asked
// for twice while alive is one object. Names are relative to the working directory, the Data folder.
//
// Game thread only: the cache has no lock. Only the fallback bitmap's first construction is safe against
// other threads.

#include <memory>
#include <string>
#include <vector>

namespace Graphics
{
class Bitmap;
}

namespace FileSystem
{

// Never empty and never raises: a file that can't be loaded logs why and gives the fallback bitmap.
std::shared_ptr<Graphics::Bitmap> LoadBitmap(const std::string& name);

// The 4 × 4 magenta and black checkerboard, magenta at the top left, with an empty name. One object for
// the whole process, not in the cache.
const std::shared_ptr<Graphics::Bitmap>& FallbackBitmap();

// The file's text; an empty string after a logged failure. A zero byte cuts its 4096-byte block short.
std::string LoadTextFile(const std::string& name);

// For a level load: expired entries go first, then the live bitmaps are held for the length of the load,
// so an image that the old and the new level share isn't decoded twice.
void EraseExpiredBitmaps();
std::vector<std::shared_ptr<Graphics::Bitmap>> LockCachedBitmaps();

} // namespace FileSystem
