// Bitmaps asked for by name in a game's Data folder: what the log says, on which stream, and that a bad
// file never stops the run.

#include "Harness.h"

#include <gtest/gtest.h>

namespace
{

RunResult LoadBitmaps(std::vector<std::string> names)
{
    RunOptions options;
    options.executable = QUELLMAR_BITMAP_DRIVER;
    options.dataFolder = "bitmaps";
    options.arguments = std::move(names);
    return RunEngine(options);
}

TEST(BitmapLoading, GoodFilesLoadOnceAndBadOnesGiveTheCheckerboardWhileTheRunGoesOn)
{
    const RunResult result = LoadBitmaps(
        {"Sprites/hero.png", "SPRITES\\Hero.PNG", "missing.png", "cut.png", "photo.jpg", "wall.bmp"});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(PrintedLines(result.output),
              (std::vector<std::string>{"Sprites/hero.png: 2 x 2 \"Sprites/hero.png\"",
                                        "SPRITES\\Hero.PNG: 2 x 2 \"Sprites/hero.png\"",
                                        "missing.png: 4 x 4 \"\"", "cut.png: 4 x 4 \"\"",
                                        "photo.jpg: 4 x 4 \"\"", "wall.bmp: 3 x 1 \"wall.bmp\""}));
    EXPECT_EQ(LogMessages(result.output, "AssetManager", "Info"),
              (std::vector<std::string>{"Loading bitmap \"Sprites/hero.png\"",
                                        "Loading bitmap \"missing.png\"", "Loading bitmap \"cut.png\"",
                                        "Loading bitmap \"photo.jpg\"", "Loading bitmap \"wall.bmp\""}));
    EXPECT_EQ(LogMessages(result.errors, "AssetManager", "Error"),
              (std::vector<std::string>{"Failed to open bitmap file \"missing.png: No such file or directory",
                                        "Failed to load bitmap \"missing.png\"",
                                        "Failed to load bitmap \"cut.png\"",
                                        "Loading JPEG images is not supported: \"photo.jpg\"",
                                        "Failed to load bitmap \"photo.jpg\""}));
    EXPECT_EQ(LogMessages(result.errors, "FileSystem", "Fatal"),
              std::vector<std::string>{"Exception: Unexpected end of file"});
    // The Fatal line of the truncated file stands before its failure line.
    EXPECT_LT(result.errors.find("Exception: Unexpected end of file"), result.errors.find("\"cut.png\""));
}

} // namespace
