// Particle effects as the game draws them, read back from screenshots: the blend modes, a particle's size
// and facing, its place in the order by z, a burst that shows and then goes, and effects that repeat from
// the random seed.

#include "Screenshot.h"

#include <cmath>
#include <gtest/gtest.h>
#include <memory>

namespace
{

// A colour of 0 to 1 a channel, as the 8 bits of a screenshot hold it.
Rgb Of(float r, float g, float b)
{
    return {static_cast<int>(std::lround(r * 255.0f)), static_cast<int>(std::lround(g * 255.0f)),
            static_cast<int>(std::lround(b * 255.0f))};
}

const Rgb kGrey = Of(0.5f, 0.5f, 0.5f);

// A clean run of the particles Data folder; neither a script nor GL reports an error.
RunResult RunParticles(const RunDirectory& directory, std::vector<std::string> arguments,
                       const std::vector<std::string>& shots)
{
    RunOptions options;
    options.dataFolder = "particles";
    options.arguments = std::move(arguments);
    const RunResult result = RunWindowed(directory, options, shots);
    EXPECT_EQ(result.errors, "");
    return result;
}

TEST(Particle, BlendModesSizeFacingZOrderAndABurstThatGoes)
{
    RunDirectory directory;
    RunParticles(directory, {}, {"first.png", "second.png"});
    const Shot first(directory.path / "Data" / "first.png");
    ASSERT_TRUE(first.Loaded());
    EXPECT_TRUE(Looks(first, 12.0f, 9.0f, kGrey, 1)) << "the clear colour";
    // Colour (0.25, 0.5, 1, 0.5) on white over grey, the normal effect centred on (-9, 5), two units wide.
    for (const auto& [x, y] : {std::pair{-9.0f, 5.0f}, {-9.9f, 5.9f}, {-8.1f, 4.1f}})
    {
        EXPECT_TRUE(Looks(first, x, y, Of(0.375f, 0.5f, 0.75f), 2)) << "normal";
    }
    for (const auto& [x, y] : {std::pair{-10.1f, 5.0f}, {-7.9f, 5.0f}, {-9.0f, 6.1f}, {-9.0f, 3.9f}})
    {
        EXPECT_TRUE(Looks(first, x, y, kGrey, 1)) << "beyond the 60 pixels of a particle of scale 2";
    }
    EXPECT_TRUE(Looks(first, -5.0f, 5.5f, Of(0.625f, 0.75f, 1.0f), 2)) << "additive";
    EXPECT_TRUE(Looks(first, -2.0f, 5.5f, Of(0.375f, 0.25f, 0.0f), 2)) << "subtractive";
    // Red at half alpha, higher in z, mixes normally over both: the blend state came back after each.
    EXPECT_TRUE(Looks(first, -5.0f, 4.5f, Of(0.8125f, 0.375f, 0.5f), 2)) << "over additive";
    EXPECT_TRUE(Looks(first, -2.0f, 4.5f, Of(0.6875f, 0.125f, 0.0f), 2)) << "over subtractive";
    // Turned a quarter to the right, to its flight: the bitmap's top row (red) lies on the right.
    EXPECT_TRUE(Looks(first, 4.5f, 5.0f, {255, 0, 0}, 2)) << "top";
    EXPECT_TRUE(Looks(first, 3.5f, 5.0f, {0, 255, 0}, 2)) << "bottom";
    // Red sprite (z 1) under the blue particle (z 2) under the yellow sprite (z 3), made in reverse order.
    EXPECT_TRUE(Looks(first, 5.5f, -3.0f, {255, 0, 0}));
    EXPECT_TRUE(Looks(first, 6.5f, -3.0f, {0, 0, 255})) << "the particle over the lower sprite";
    EXPECT_TRUE(Looks(first, 7.5f, -3.0f, {255, 255, 0})) << "the higher sprite over the particle";
    // A burst of hue-cycling particles that don't move, in the bottom left corner.
    EXPECT_FALSE(Shot::Close(first.At(-12.0f, -8.5f), kGrey, 10)) << "the burst shows";

    const Shot second(directory.path / "Data" / "second.png");
    ASSERT_TRUE(second.Loaded());
    EXPECT_TRUE(Looks(second, -12.0f, -8.5f, kGrey, 1)) << "the burst has gone after its life and fade";
    EXPECT_TRUE(Looks(second, -9.0f, 5.0f, Of(0.375f, 0.5f, 0.75f), 2))
        << "without a terminator a particle stays past its life";
}

// Each seeded run draws the same effect and prints the same number; another seed draws another effect. A
// game thread of its own starts its generator at 1, whatever the seed.
TEST(Particle, EffectsAndScriptsRepeatFromTheSeed)
{
    struct Outcome
    {
        std::unique_ptr<Shot> shot;
        std::vector<std::string> printed;
    };
    const auto run = [](const char* seed, const char* threaded)
    {
        RunDirectory directory;
        const RunResult result =
            RunParticles(directory, {"level", "Levels/Random.lvl", "seed", seed, "multithreaded", threaded},
                         {"random.png"});
        Outcome outcome{std::make_unique<Shot>(directory.path / "Data" / "random.png"),
                        PrintedLines(result.output)};
        EXPECT_TRUE(outcome.shot->Loaded()) << seed << threaded;
        EXPECT_EQ(outcome.printed.size(), 1u) << seed << threaded;
        return outcome;
    };
    const Outcome seven = run("7", "n");
    const Outcome again = run("7", "n");
    const Outcome eight = run("8", "n");
    const Outcome threadedSeven = run("7", "y");
    const Outcome threadedEight = run("8", "y");
    ASSERT_TRUE(seven.shot->Loaded() && again.shot->Loaded() && eight.shot->Loaded() &&
                threadedSeven.shot->Loaded() && threadedEight.shot->Loaded());
    EXPECT_TRUE(*seven.shot == *again.shot);
    EXPECT_EQ(seven.printed, again.printed);
    EXPECT_FALSE(*seven.shot == *eight.shot);
    EXPECT_NE(seven.printed, eight.printed);
    EXPECT_TRUE(*threadedSeven.shot == *threadedEight.shot);
    EXPECT_EQ(threadedSeven.printed, threadedEight.printed);
}

} // namespace
