#include "FileSystem/AssetManager.h"
#include "Graphics/Bitmap.h"
#include "Support/ImageWriters.h"
#include "Support/LogCapture.h"
#include "Support/TempFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <thread>

namespace
{

using FileSystem::LoadBitmap;

Bytes SmallBmp()
{
    return MakeBmp(2, 1, {1, 2, 3, 4, 5, 6});
}

std::string Quoted(const std::string& name)
{
    return "\"" + name + "\"";
}

TEST(AssetManager, OneFileInAnySpellingIsOneObjectWhileHeld)
{
    const TempFolder directory;
    const std::string name = directory.Write("Sprites/Hero.BMP", SmallBmp());
    std::string otherSpelling = name;
    std::transform(otherSpelling.begin(), otherSpelling.end(), otherSpelling.begin(), ::toupper);
    std::replace(otherSpelling.begin(), otherSpelling.end(), '/', '\\');

    const LogCapture log;
    const std::shared_ptr<Graphics::Bitmap> first = LoadBitmap(name);
    const std::shared_ptr<Graphics::Bitmap> second = LoadBitmap(otherSpelling);
    EXPECT_EQ(first, second);
    EXPECT_EQ(second->name, name);
    EXPECT_EQ(first->width, 2u);
    EXPECT_EQ(log.Entries().size(), 1u);
    EXPECT_EQ(log.Messages("AssetManager", LogLevel::Info),
              std::vector<std::string>{"Loading bitmap " + Quoted(name)});
}

TEST(AssetManager, ADroppedBitmapIsReadAgainWithReloading)
{
    const TempFolder directory;
    const std::string name = directory.Write("again.bmp", SmallBmp());
    const LogCapture log;
    std::weak_ptr<Graphics::Bitmap> dead = LoadBitmap(name);
    EXPECT_TRUE(dead.expired());
    directory.Write("again.bmp", MakeBmp(1, 1, {9, 9, 9}));
    const std::shared_ptr<Graphics::Bitmap> reloaded = LoadBitmap(name);
    EXPECT_EQ(reloaded->width, 1u);
    EXPECT_EQ(
        log.Messages("AssetManager", LogLevel::Info),
        (std::vector<std::string>{"Loading bitmap " + Quoted(name), "Reloading bitmap " + Quoted(name)}));
}

TEST(AssetManager, FailuresGiveTheCheckerboardAndNeverEnterTheCache)
{
    const TempFolder directory;
    const std::string missing = directory.PathOf("missing.png");
    const Bytes bmp = SmallBmp();
    const std::string truncated = directory.Write("cut.png", Bytes(bmp.begin(), bmp.end() - 3));
    LogCapture log;
    const std::shared_ptr<Graphics::Bitmap> first = LoadBitmap(missing);
    const std::shared_ptr<Graphics::Bitmap> second = LoadBitmap(missing);
    EXPECT_EQ(first, second);
    EXPECT_EQ(first, FileSystem::FallbackBitmap());
    EXPECT_EQ(
        log.Messages("AssetManager", LogLevel::Error),
        (std::vector<std::string>{"Failed to open bitmap file \"" + missing + ": No such file or directory",
                                  "Failed to load bitmap " + Quoted(missing),
                                  "Failed to open bitmap file \"" + missing + ": No such file or directory",
                                  "Failed to load bitmap " + Quoted(missing)}));
    EXPECT_EQ(log.Messages("AssetManager", LogLevel::Info).size(), 2u);

    log.Clear();
    EXPECT_EQ(LoadBitmap(truncated), FileSystem::FallbackBitmap());
    ASSERT_EQ(log.Messages("FileSystem", LogLevel::Fatal).size(), 1u);
    EXPECT_TRUE(
        log.Messages("FileSystem", LogLevel::Fatal)[0].starts_with("Exception: Unexpected end of file"));
    EXPECT_EQ(log.Messages("AssetManager", LogLevel::Error),
              std::vector<std::string>{"Failed to load bitmap " + Quoted(truncated)});

    // A failed reload of an expired entry leaves no entry: the next try is a first load again.
    const std::string flaky = directory.Write("flaky.bmp", bmp);
    LoadBitmap(flaky);
    directory.Write("flaky.bmp", {});
    LoadBitmap(flaky);
    log.Clear();
    LoadBitmap(flaky);
    EXPECT_EQ(log.Messages("AssetManager", LogLevel::Info),
              std::vector<std::string>{"Loading bitmap " + Quoted(flaky)});
}

TEST(AssetManager, TheFallbackIsOneMagentaAndBlackCheckerboardForAllThreads)
{
    const Graphics::Bitmap* seen[2] = {};
    std::thread one([&] { seen[0] = FileSystem::FallbackBitmap().get(); });
    std::thread two([&] { seen[1] = FileSystem::FallbackBitmap().get(); });
    one.join();
    two.join();
    EXPECT_EQ(seen[0], seen[1]);
    const Graphics::Bitmap& fallback = *FileSystem::FallbackBitmap();
    EXPECT_EQ(seen[0], &fallback);
    EXPECT_EQ(fallback.width, 4u);
    EXPECT_EQ(fallback.height, 4u);
    EXPECT_EQ(fallback.name, "");
    for (uint32_t index = 0; index < 16; ++index)
    {
        const bool magenta = (index % 4 + index / 4) % 2 == 0;
        const Bytes pixel(fallback.pixels.get() + index * 4, fallback.pixels.get() + index * 4 + 4);
        EXPECT_EQ(pixel, magenta ? Bytes({255, 0, 255, 255}) : Bytes({0, 0, 0, 255})) << index;
    }
}

TEST(AssetManager, HeldBitmapsSurviveTheirLastUserAndExpiredEntriesAreSwept)
{
    const TempFolder directory;
    const std::string shared = directory.Write("shared.bmp", SmallBmp());
    const std::string gone = directory.Write("gone.bmp", SmallBmp());
    std::shared_ptr<Graphics::Bitmap> oldLevel = LoadBitmap(shared);
    LoadBitmap(gone);
    const Graphics::Bitmap* const original = oldLevel.get();

    FileSystem::EraseExpiredBitmaps();
    std::vector<std::shared_ptr<Graphics::Bitmap>> held = FileSystem::LockCachedBitmaps();
    EXPECT_EQ(std::count(held.begin(), held.end(), oldLevel), 1);
    oldLevel.reset();
    const LogCapture log;
    EXPECT_EQ(LoadBitmap(shared).get(), original);
    held.clear();
    // The sweep took the expired entry, so this is a first load again.
    LoadBitmap(gone);
    EXPECT_EQ(log.Messages("AssetManager", LogLevel::Info),
              std::vector<std::string>{"Loading bitmap " + Quoted(gone)});
}

TEST(AssetManager, TextFilesComeBackWholeUpToAZeroByte)
{
    const TempFolder directory;
    Bytes exact(4096, 'a');
    exact.back() = 'z';
    Bytes cut(5000, 'b');
    cut[10] = 0;
    cut[4096 + 20] = 0;
    const LogCapture log;
    EXPECT_EQ(FileSystem::LoadTextFile(directory.Write("exact.glsl", exact)),
              std::string(exact.begin(), exact.end()));
    EXPECT_EQ(FileSystem::LoadTextFile(directory.Write("cut.glsl", cut)),
              std::string(10, 'b') + std::string(20, 'b'));
    EXPECT_EQ(FileSystem::LoadTextFile(directory.Write("empty.glsl", {})), "");
    EXPECT_TRUE(log.Entries().empty());

    const std::string folder = directory.PathOf("Shaders/Vert.glsl");
    directory.Write("Shaders/Vert.glsl/inside", {1});
    const std::string missing = directory.PathOf("none.glsl");
    EXPECT_EQ(FileSystem::LoadTextFile(folder), "");
    EXPECT_EQ(FileSystem::LoadTextFile(missing), "");
    EXPECT_EQ(log.Messages("FileSystem", LogLevel::Error),
              (std::vector<std::string>{"Failed to load shader file " + Quoted(folder) + ": Is a directory",
                                        "Failed to load shader file " + Quoted(missing) +
                                            ": No such file or directory"}));
}

} // namespace
