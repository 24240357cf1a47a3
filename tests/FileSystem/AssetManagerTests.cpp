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

// One file in any spelling is one object, and its bad-file refusals are checked end to end.
TEST(AssetManager, DroppedBitmapsAreReadAgainHeldOnesSurviveAndSweptOnesLoadAfresh)
{
    const TempFolder directory;
    const std::string shared = directory.Write("shared.bmp", SmallBmp());
    const std::string gone = directory.Write("gone.bmp", SmallBmp());
    const LogCapture log;
    const std::weak_ptr<Graphics::Bitmap> dead = LoadBitmap(gone);
    EXPECT_TRUE(dead.expired());
    directory.Write("gone.bmp", MakeBmp(1, 1, {9, 9, 9}));
    EXPECT_EQ(LoadBitmap(gone)->width, 1u);

    std::shared_ptr<Graphics::Bitmap> oldLevel = LoadBitmap(shared);
    const Graphics::Bitmap* const original = oldLevel.get();
    FileSystem::EraseExpiredBitmaps();
    std::vector<std::shared_ptr<Graphics::Bitmap>> held = FileSystem::LockCachedBitmaps();
    EXPECT_EQ(std::count(held.begin(), held.end(), oldLevel), 1);
    oldLevel.reset();
    EXPECT_EQ(LoadBitmap(shared).get(), original);
    held.clear();
    LoadBitmap(gone);
    EXPECT_EQ(
        log.Messages("AssetManager", LogLevel::Info),
        (std::vector<std::string>{"Loading bitmap " + Quoted(gone), "Reloading bitmap " + Quoted(gone),
                                  "Loading bitmap " + Quoted(shared), "Loading bitmap " + Quoted(gone)}));
}

TEST(AssetManager, FailuresGiveTheCheckerboardAndNeverEnterTheCache)
{
    const TempFolder directory;
    const std::string missing = directory.PathOf("missing.png");
    LogCapture log;
    EXPECT_EQ(LoadBitmap(missing), FileSystem::FallbackBitmap());
    EXPECT_EQ(LoadBitmap(missing), FileSystem::FallbackBitmap());
    EXPECT_EQ(
        log.Messages("AssetManager", LogLevel::Error),
        (std::vector<std::string>{"Failed to open bitmap file \"" + missing + ": No such file or directory",
                                  "Failed to load bitmap " + Quoted(missing),
                                  "Failed to open bitmap file \"" + missing + ": No such file or directory",
                                  "Failed to load bitmap " + Quoted(missing)}));
    EXPECT_EQ(log.Messages("AssetManager", LogLevel::Info).size(), 2u);

    // A failed reload of an expired entry leaves no entry: the next try is a first load again.
    const std::string flaky = directory.Write("flaky.bmp", SmallBmp());
    LoadBitmap(flaky);
    directory.Write("flaky.bmp", {});
    EXPECT_EQ(LoadBitmap(flaky), FileSystem::FallbackBitmap());
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
