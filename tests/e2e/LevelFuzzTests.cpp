// Broken level and archetype files, written by a seeded generator: whatever they hold, each load ends in
// a log line or a Lua error, never in a crash, a hang or a Fatal. Set QUELLMAR_LEVEL_FUZZ_SEED to repeat a
// run; a failure prints its seed.

#include "Harness.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>

namespace
{

namespace fs = std::filesystem;

constexpr int kFilesPerKind = 150;

class Generator
{
public:
    explicit Generator(uint32_t seed) : random(seed) {}

    // A chunk: sometimes an assignment to a global, an error or a wait first, sometimes cut short.
    std::string File()
    {
        static const char* const kPrefixes[] = {
            "", "", "", "Global = 1 ", "error('boom') ", "wait() ", "local t = {} "};
        std::string text = std::string(Pick(kPrefixes)) + "return " + Value(0) + "\n";
        if (Chance(10))
        {
            text.resize(Below(static_cast<uint32_t>(text.size())));
        }
        return text;
    }

private:
    uint32_t Below(uint32_t count) { return std::uniform_int_distribution<uint32_t>(0, count - 1)(random); }
    bool Chance(uint32_t percent) { return Below(100) < percent; }
    template <size_t N>
    const char* Pick(const char* const (&choices)[N])
    {
        return choices[Below(N)];
    }

    std::string Name()
    {
        const bool level = Chance(20);
        return "\"Fuzz/" + std::string(level ? "l" : "a") + std::to_string(Below(kFilesPerKind + 5)) +
               (level ? ".lvl\"" : ".arch\"");
    }

    std::string Scalar()
    {
        static const char* const kScalars[] = {
            "5", "-1", "1.5", "true", "nil", "'text'", "2^62", "function() end", "{}", "{1, 2}", "{'x'}"};
        return Pick(kScalars);
    }

    std::string Component()
    {
        static const char* const kComponents[] = {"{ Position = { 1, 2 } }",
                                                  "{ Position = { 'x' } }",
                                                  "{ Rotation = 7, Z = 1.5 }",
                                                  "{ Scale = 3 }",
                                                  "{ Parent = 5 }",
                                                  "{ Nothing = 1 }",
                                                  "{ [true] = 1 }",
                                                  "{ Variables = { 1 } }",
                                                  "{ Source = 5 }",
                                                  "'a.png'",
                                                  "5"};
        return Pick(kComponents);
    }

    // Effects, some of them sound, most broken: miscased names, missing numbers, NaN and infinities, a
    // constant emitter that fills the pool at once, a count of -1 that asks for the whole of it.
    std::string ParticleTable()
    {
        static const char* const kTables[] = {
            "{ Emitter = { 'Constant', 60 }, Initializer = { 'RandomVelocity', 0, 6.3, 1, 4 }, "
            "Updater = 'Position', Terminator = { 'FadeOut', 0.2 }, BlendMode = 'Additive' }",
            "{ Emitter = { 'Constant', 1e30 }, Initializer = { 'RandomScale', 0, 0.01 }, Frames = 'a.png' }",
            "{ Emitter = { 'Once', -1 }, Offset = { 'Circle', 0, 0, 0/0, 1/0 }, Updater2 = 'Position' }",
            "{ Emitter = 'Pulse', Pulse = 5, Updater = { 'Vortex', 0, 0, 1/0 }, Terminator = 'ScaleOut' }",
            "{ emitter = { 'once', 5 }, BlendMode = 'additive', Initializer = { 'Random' } }",
            "{ Emitter = { 'Once', 3 }, Initializer = { 'Basic', 0/0, 1/0, 1, 1, 1, -1/0, -1/0, 0/0, 1e38 }, "
            "Updater = { 'Drag', 0/0 }, Terminator = { 'FadeOut', 0 } }",
            "{ Emitter = { 'Constant', -1 }, Updater7 = { 'Force', 1/0, 0 }, BlendMode = 5, "
            "Updater9 = { 'LinearScale', -1e30 }, Offset = { 'Square', 1, -1, 1/0, 0 } }",
            "{ Emitter = { 'Once', 2^40 }, Frames = { 'a.png', 5, {} }, Terminator = { 'Basic' } }",
            "{ Emitter = { 'Once', 10 }, Updater = { 'FadeIn', 0 }, Updater1 = { 'ScaleIn', -1 }, "
            "Initializer = { 'Random', 0, 0, 0, 0, 0, 0, 1, 0, 1, 6.3, 5, 1, 1, 1, 1, 2, 6.3, 1 } }",
            "{ Emitter = { 'Constant', 0/0 }, Initializer = { 'Basic', 1 }, Updater0 = { 'position' } }",
        };
        return Pick(kTables);
    }

    std::string Object(int depth)
    {
        static const char* const kKeys[] = {"Name",     "Transform", "Script", "Sprite", "Square", "Particle",
                                            "Children", "Override",  "Foo",    "[1.5]",  "[true]"};
        std::string text = "{ ";
        const uint32_t count = Below(4);
        for (uint32_t i = 0; i < count; ++i)
        {
            const std::string key = Pick(kKeys);
            const std::string value = key == "Children" || key == "Override"  ? Value(depth + 1)
                                      : key == "Name" || key.starts_with("[") ? Scalar()
                                      : key == "Particle" && Chance(70)       ? ParticleTable()
                                                                              : Component();
            text += key + " = " + value + ", ";
        }
        return text + "}";
    }

    std::string Value(int depth)
    {
        if (depth > 3)
        {
            return Chance(50) ? Name() : Scalar();
        }
        switch (Below(8))
        {
        case 0:
            return Name();
        case 1:
            return Scalar();
        case 2:
        case 3:
            return Object(depth);
        case 4:
        {
            std::string text = "{ ";
            for (uint32_t i = Below(4); i > 0; --i)
            {
                text += Value(depth + 1) + ", ";
            }
            return text + "}";
        }
        case 5:
            return "{ " + Value(depth + 1) + ", Override = " + (Chance(70) ? Object(depth + 1) : Scalar()) +
                   " }";
        case 6:
        {
            static const char* const kLengths[] = {"2^62", "-1", "1.5", "'x'", "3", "error('len')"};
            return "setmetatable({ " + Value(depth + 1) + " }, { __len = function() return " +
                   Pick(kLengths) + " end })";
        }
        default:
            return "setmetatable({}, { __len = function() return 2 end, __index = function() error('index') "
                   "end })";
        }
    }

    std::mt19937 random;
};

const char* const kDriver = R"(
local space = Space:CreateChildSpace()
for _, name in ipairs(GetFilesInDirectory("Fuzz/l*.lvl", false)) do
    space:LoadLevel("Fuzz/" .. name)
    wait()
    print("level " .. name)
end
for _, name in ipairs(GetFilesInDirectory("Fuzz/a*.arch", false)) do
    pcall(Space.CreateObject, Space, "Fuzz/" .. name)
    print("archetype " .. name)
end
Game.Quit()
)";

uint32_t Seed()
{
    const char* given = std::getenv("QUELLMAR_LEVEL_FUZZ_SEED");
    return given != nullptr ? static_cast<uint32_t>(std::strtoul(given, nullptr, 10))
                            : std::random_device{}();
}

TEST(LevelFuzz, BrokenFilesAreRefusedOneByOneAndTheGameRunsToItsEnd)
{
    const uint32_t seed = Seed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    RunDirectory directory;
    directory.Write("Data/Levels/Start.lvl", "return { { Name = 'Driver', Script = 'Driver.lua' } }\n");
    directory.Write("Data/Driver.lua", kDriver);
    Generator generator(seed);
    std::vector<std::string> expected;
    for (const char* kind : {"l", "a"})
    {
        std::vector<std::string> names;
        for (int i = 0; i < kFilesPerKind; ++i)
        {
            const std::string name = kind + std::to_string(i) + (kind[0] == 'l' ? ".lvl" : ".arch");
            directory.Write("Data/Fuzz/" + name, generator.File());
            names.push_back(name);
        }
        std::sort(names.begin(), names.end());
        for (const std::string& name : names)
        {
            expected.push_back((kind[0] == 'l' ? "level " : "archetype ") + name);
        }
    }

    RunOptions options;
    options.directory = directory.path;
    options.timeLimitSeconds = 120.0;
    const RunResult result = RunEngine(options);

    EXPECT_EQ(result.exitCode, 0) << result.errors.substr(0, 4000);
    EXPECT_FALSE(result.timedOut);
    EXPECT_EQ(result.errors.find("[Fatal]"), std::string::npos) << result.errors.substr(0, 4000);
    std::vector<std::string> printed;
    for (const std::string& line : PrintedLines(result.output))
    {
        if (line.starts_with("level ") || line.starts_with("archetype "))
        {
            printed.push_back(line);
        }
    }
    ASSERT_EQ(printed.size(), 2u * kFilesPerKind);
    EXPECT_EQ(printed, expected);
}

} // namespace
