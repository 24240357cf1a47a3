// What the engine draws, read back from screenshots that scripts take of their own frames: the z order,
// squares over everything, tints, rectangles of bitmaps, the font, debug shapes, the checkerboard of a
// missing bitmap, and a texture that comes back after a level change released it.

#include "Screenshot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <memory>

namespace
{

namespace fs = std::filesystem;

const Rgb kBackground{0, 0, 128};
const Rgb kRed{255, 0, 0};
const Rgb kGreen{0, 255, 0};
const Rgb kYellow{255, 255, 0};
const Rgb kCyan{0, 255, 255};
const Rgb kMagenta{255, 0, 255};

void CheckScene(const Shot& shot)
{
    ASSERT_TRUE(shot.Loaded());
    ASSERT_EQ(shot.Width(), 800u);
    ASSERT_EQ(shot.Height(), 600u);
    EXPECT_TRUE(Looks(shot, -13.0f, -9.5f, kBackground)) << "the clear colour";
    // A 2 × 2 square, 60 pixels wide, over a green-tinted white sprite of z 100.
    EXPECT_TRUE(Looks(shot, 0.0f, 0.0f, kRed));
    EXPECT_TRUE(Looks(shot, 0.9f, 0.9f, kRed));
    EXPECT_TRUE(Looks(shot, 1.1f, 0.0f, kGreen));
    EXPECT_TRUE(Looks(shot, -1.5f, 1.5f, kGreen));
    // z 4 under 5 under 6, whatever the order of making.
    EXPECT_TRUE(Looks(shot, -9.75f, 6.0f, kYellow));
    EXPECT_TRUE(Looks(shot, -8.25f, 6.0f, kCyan));
    EXPECT_TRUE(Looks(shot, -7.25f, 6.0f, kMagenta));
    EXPECT_TRUE(Looks(shot, -8.5f, 2.0f, kCyan)) << "at equal z the later object lies on top";
    // The top right quarter of the quadrant bitmap fills the sprite: no flip, the rectangle's order kept.
    EXPECT_TRUE(Looks(shot, 6.0f, 6.0f, kGreen, 2));
    EXPECT_TRUE(Looks(shot, 5.0f, 7.0f, kGreen, 2));
    // "A A\nA\200" in a font whose only ink are the full cells of 'A' and byte 200.
    EXPECT_TRUE(Looks(shot, 2.5f, -3.5f, kYellow, 2));
    EXPECT_TRUE(Looks(shot, 3.25f, -3.5f, kBackground, 2)) << "a blank advances three quarters of a cell";
    EXPECT_TRUE(Looks(shot, 4.0f, -3.5f, kYellow, 2));
    EXPECT_TRUE(Looks(shot, 2.4f, -4.5f, kYellow, 2)) << "a line feed goes back to the start, a cell lower";
    EXPECT_TRUE(Looks(shot, 3.5f, -4.5f, kYellow, 2)) << "byte 200";
    EXPECT_TRUE(Looks(shot, 2.5f, -5.5f, kBackground, 2));
    // A 4 × 4 outline turned by 45 degrees about (8, -5): its corners stand on the axes through the centre.
    const float half = 2.0f * std::sqrt(2.0f);
    EXPECT_TRUE(shot.NearHas(8.0f, -5.0f + half, kYellow));
    EXPECT_TRUE(shot.NearHas(8.0f + half / 2.0f, -5.0f + half / 2.0f, kYellow));
    EXPECT_TRUE(Looks(shot, 8.0f, -5.0f, kBackground)) << "an outline is not filled";
    EXPECT_TRUE(Looks(shot, 9.9f, -3.1f, kBackground)) << "an unturned square's corner";
    // The checkerboard of a missing bitmap: 4 × 4 texels, magenta at the top left.
    const float halfPixel = 1.0f / 60.0f;
    EXPECT_TRUE(Looks(shot, -7.5f + halfPixel, -3.5f - halfPixel, kMagenta, 2));
    EXPECT_TRUE(Looks(shot, -6.5f + halfPixel, -3.5f - halfPixel, {0, 0, 0}, 2));
    EXPECT_TRUE(Looks(shot, -6.5f + halfPixel, -4.5f - halfPixel, kMagenta, 2));
}

TEST(Drawing, ASceneDrawsTheSameInBothThreadModesAndAReleasedTextureComesBack)
{
    std::vector<std::unique_ptr<Shot>> firstShots;
    for (const char* threaded : {"n", "y"})
    {
        RunDirectory directory;
        SCOPED_TRACE(threaded);
        RunOptions options;
        options.dataFolder = "drawing";
        options.arguments = {"multithreaded", threaded};
        const RunResult result = RunWindowed(directory, options, {"first.png", "second.png"});
        const std::vector<std::string> loads = LogMessages(result.output, "AssetManager", "Info");
        EXPECT_NE(std::find(loads.begin(), loads.end(), "Reloading bitmap \"Bitmaps/white.png\""),
                  loads.end());

        firstShots.push_back(std::make_unique<Shot>(directory.path / "Data" / "first.png"));
        CheckScene(*firstShots.back());
        const Shot second(directory.path / "Data" / "second.png");
        ASSERT_TRUE(second.Loaded());
        EXPECT_TRUE(Looks(second, 0.0f, 0.0f, {255, 128, 0}, 1)) << "the white bitmap, uploaded again";
        EXPECT_TRUE(Looks(second, -8.25f, 6.0f, kBackground)) << "the first level has gone";
    }
    EXPECT_TRUE(*firstShots[0] == *firstShots[1]) << "both thread modes draw the same picture";
}

TEST(Drawing, TheDebugOverlayShowsAxesOutlinesArrowsProfileAndFrameRate)
{
    RunDirectory directory;
    RunOptions options;
    options.dataFolder = "overlay";
    options.arguments = {"width", "1000", "height", "500"};
    EXPECT_EQ(RunWindowed(directory, options, {"overlay.png"}).errors, "");
    const Shot shot(directory.path / "Data" / "overlay.png");
    ASSERT_TRUE(shot.Loaded());
    ASSERT_EQ(shot.Width(), 1000u);
    EXPECT_TRUE(shot.NearHas(1.0f, 0.0f, kRed)) << "the x axis of a transform of scale 4";
    EXPECT_TRUE(shot.NearHas(0.0f, 1.0f, kGreen)) << "its y axis";
    EXPECT_TRUE(shot.NearHas(-8.0f, 3.0f, {0, 0, 255})) << "a circle collider's outline starts at the top";
    EXPECT_TRUE(Looks(shot, -8.0f, 0.5f, {223, 223, 223})) << "an outline is not filled";
    EXPECT_TRUE(shot.NearHas(9.0f, 0.0f, {0, 0, 0})) << "the body's velocity arrow";
    // Profile bars of (f, 1 - f, 0) in the bottom 32 pixels, and black text in the top left corner.
    const auto isBar = [](Rgb pixel) { return pixel[2] <= 2 && std::abs(pixel[0] + pixel[1] - 255) <= 4; };
    const auto isBlack = [](Rgb pixel) { return Shot::Close(pixel, {0, 0, 0}, 10); };
    EXPECT_GT(shot.Count(0, 470, 1000, 500, isBar), 1000);
    EXPECT_GT(shot.Count(0, 0, 100, 25, isBlack), 20) << "FPS: ...";
}

TEST(Drawing, HostileScriptsAndFilesNeverStopTheDrawing)
{
    RunDirectory directory;
    RunOptions options;
    options.dataFolder = "hostiledrawing";
    options.directory = directory.path;
    options.arguments = {"width", "800", "height", "600", "fullscreen", "n", "vsync", "n"};
    // The screenshot of twenty thousand sprites is far larger, the last one far smaller.
    options.fileSizeLimit = 65536;
    options.ignoreFileSizeSignal = true;
    const RunResult result = RunEngine(options);
    ASSERT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(PrintedLines(result.output),
              (std::vector<std::string>{"false\tbad argument #3 to '?' (number expected, got no value)",
                                        "false\tbad argument #2 to '?' (number expected, got string)",
                                        "false\tbad argument #2 to '?' (string expected, got no value)",
                                        "false\tbad argument #1 to '?' (Sprite expected, got Transform)",
                                        "false\tbad argument #2 to '?' (string expected, got table)"}));
    std::vector<std::string> errors = LogMessages(result.errors, "Graphics", "Error");
    ASSERT_EQ(errors.size(), 6u) << result.errors;
    EXPECT_TRUE(errors[0].starts_with("OpenGL error: Invalid Value (1281) File: ")) << "a bitmap 16385 wide";
    EXPECT_EQ(
        std::vector<std::string>(errors.begin() + 1, errors.end()),
        (std::vector<std::string>{"Failed to save screenshot \"big.png\": File too large",
                                  "Failed to save screenshot \"missing/shot.png\": No such file or directory",
                                  "Failed to save screenshot \"Scripts\": Is a directory",
                                  "Failed to save screenshot \"\": No such file or directory",
                                  "Failed to save screenshot \"a\": Invalid argument"}));
    EXPECT_FALSE(fs::exists(directory.path / "Data" / "big.png"));
    const Shot good(directory.path / "Data" / "good.png");
    ASSERT_TRUE(good.Loaded());
    EXPECT_TRUE(Looks(good, 0.0f, 0.0f, kGreen));
}

} // namespace
