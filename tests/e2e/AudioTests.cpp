// Sound through levels, components and the Audio table, once on OpenAL's null device and once with no
// device at all: a game must sound the same to its scripts and its log whether a sound card is there or not.

#include "Harness.h"

#include <gtest/gtest.h>

namespace
{

TEST(Audio, ComponentsAndGroupsBehaveTheSameWithAndWithoutADevice)
{
    const std::vector<std::string> expectedPrinted = {
        "members\tSource,Volume\ttrue",
        "never played\t0.0\ttrue\ttrue",
        "bad\tMissing.wav\t0.0",
        "bad\tScripts\t0.0",
        "bad\tEmpty.wav\t0.0",
        "bad\tText.wav\t0.0",
        "bad\tCut.wav\t0.0",
        "bad\tSix.wav\t0.0",
        "level\tLoop.wav\t0.25\t0.0",
        "volume\t0.10000000149012\t1.0\t1.0",
        "out of range\t2.0\t0.5",
        "huge pitch\t1.0000000150475e+30",
        "refused\tbad argument #2 to 'SetMusicVolume' (number expected, got no value)",
        "refused\tbad argument #1 to 'SetPause' (boolean expected, got number)",
        "refused\tbad argument #1 to 'Play' (boolean expected, got nil)",
        "refused\tbad argument #4 to 'Play' (number has no integer representation)",
        "refused\tbad argument #1 to 'SetSource' (string expected, got no value)",
        "refused\tbad argument #2 to 'SetSource' (boolean expected, got nil)",
        "refused\tbad argument #1 to 'SetPitch' (number expected, got string)",
        "ended\ttrue\t1.0",
        "stopped\t0.0",
    };
    const std::vector<std::string> expectedErrors = {
        "FMOD error! (18) File not found.",
        "FMOD error! (18) File not found.",
        "FMOD error! (19) Unsupported file or audio format.",
        "FMOD error! (19) Unsupported file or audio format.",
        "FMOD error! (13) Error loading file.",
        "FMOD error! (19) Unsupported file or audio format.",
        "FMOD error! (30) An invalid object handle was used.",
        "FMOD error! (29) Value passed in was a NaN, Inf or denormalized float.",
        "FMOD error! (29) Value passed in was a NaN, Inf or denormalized float.",
        "FMOD error! (31) An invalid parameter was passed to this function.",
        "FMOD error! (29) Value passed in was a NaN, Inf or denormalized float.",
        "FMOD error! (29) Value passed in was a NaN, Inf or denormalized float.",
    };
    for (const char* drivers : {"ALSOFT_DRIVERS=null", "ALSOFT_DRIVERS=none"})
    {
        RunOptions options;
        options.dataFolder = "audio";
        options.environment = {drivers};
        const RunResult result = RunEngine(options);
        ASSERT_EQ(result.exitCode, 0) << drivers << "\n" << result.errors;
        EXPECT_EQ(PrintedLines(result.output), expectedPrinted) << drivers;
        EXPECT_EQ(LogMessages(result.errors, "Audio", "Error"), expectedErrors) << drivers;
        EXPECT_EQ(LogMessages(result.errors, "Lua", "Error"), std::vector<std::string>{}) << drivers;
    }
}

} // namespace
