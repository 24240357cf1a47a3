#include "FileSystem/AssetManager.h"

#include "Debug/Exception.h"
#include "Debug/Logger.h"
#include "FileSystem/BitmapLoader.h"
#include "Graphics/Bitmap.h"

#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unordered_map>

namespace FileSystem
{
namespace
{

// Keyed by the normalised name. An expired entry stays until it is looked up again or a level load sweeps
// it. Used from the game thread only, hence no lock.
std::unordered_map<std::string, std::weak_ptr<Graphics::Bitmap>> bitmapCache;

constexpr size_t kTextBlock = 4096;

// Names that differ only in case or in the kind of slash are one asset.
std::string NormaliseName(const std::string& name)
{
    std::string key = name;
    for (char& character : key)
    {
        character =
            character == '\\' ? '/' : static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    }
    return key;
}

std::string Quoted(const std::string& name)
{
    return "\"" + name + "\"";
}

// A raise below here has already been logged at Fatal; the game goes on with the fallback.
std::shared_ptr<Graphics::Bitmap> TryLoadBitmapFile(const std::string& name)
{
    try
    {
        return LoadBitmapFile(name);
    }
    catch (const FileSystemError&)
    {
        return nullptr;
    }
}

std::shared_ptr<Graphics::Bitmap> MakeCheckerboard()
{
    constexpr uint32_t size = 4;
    auto pixels = std::make_unique<uint8_t[]>(size * size * 4);
    for (uint32_t index = 0; index < size * size; ++index)
    {
        const bool magenta = (index % size + index / size) % 2 == 0;
        uint8_t* pixel = pixels.get() + index * 4;
        pixel[0] = magenta ? 255 : 0;
        pixel[1] = 0;
        pixel[2] = magenta ? 255 : 0;
        pixel[3] = 255;
    }
    return std::make_shared<Graphics::Bitmap>(size, size, std::move(pixels), std::string());
}

struct FileCloser
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

void LogTextFailure(const std::string& name, int error)
{
    Logger::Log("FileSystem", LogLevel::Error,
                "Failed to load shader file " + Quoted(name) + ": " + std::strerror(error));
}

} // namespace

std::shared_ptr<Graphics::Bitmap> LoadBitmap(const std::string& name)
{
    std::string key = NormaliseName(name);
    const auto found = bitmapCache.find(key);
    if (found != bitmapCache.end())
    {
        if (std::shared_ptr<Graphics::Bitmap> alive = found->second.lock())
        {
            return alive;
        }
        bitmapCache.erase(found);
        Logger::Log("AssetManager", LogLevel::Info, "Reloading bitmap " + Quoted(name));
    }
    else
    {
        Logger::Log("AssetManager", LogLevel::Info, "Loading bitmap " + Quoted(name));
    }
    std::shared_ptr<Graphics::Bitmap> bitmap = TryLoadBitmapFile(name);
    if (!bitmap)
    {
        // Nothing enters the cache, so every later request tries the disk again.
        Logger::Log("AssetManager", LogLevel::Error, "Failed to load bitmap " + Quoted(name));
        return FallbackBitmap();
    }
    bitmapCache.emplace(std::move(key), bitmap);
    return bitmap;
}

// A function-local static: built once on first use, safely even if two threads ask at once.
const std::shared_ptr<Graphics::Bitmap>& FallbackBitmap()
{
    static const std::shared_ptr<Graphics::Bitmap> fallback = MakeCheckerboard();
    return fallback;
}

std::string LoadTextFile(const std::string& name)
{
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(name.c_str(), "rb"));
    if (!file)
    {
        LogTextFailure(name, errno);
        return {};
    }
    std::string text;
    std::array<char, kTextBlock> block{};
    // A short block ends the loop, at the end of the file as on an error: a folder opens on Linux and then
    // fails every read, and waiting for its end would never finish.
    for (size_t count = block.size(); count == block.size();)
    {
        block.fill('\0');
        count = std::fread(block.data(), 1, block.size(), file.get());
        if (std::ferror(file.get()) != 0)
        {
            LogTextFailure(name, errno);
            return {};
        }
        text.append(block.data(), strnlen(block.data(), count));
    }
    return text;
}

void EraseExpiredBitmaps()
{
    std::erase_if(bitmapCache, [](const auto& entry) { return entry.second.expired(); });
}

std::vector<std::shared_ptr<Graphics::Bitmap>> LockCachedBitmaps()
{
    std::vector<std::shared_ptr<Graphics::Bitmap>> held;
    held.reserve(bitmapCache.size());
    for (const auto& entry : bitmapCache)
    {
        if (std::shared_ptr<Graphics::Bitmap> alive = entry.second.lock())
        {
            held.push_back(std::move(alive));
        }
    }
    return held;
}

} // namespace FileSystem
