// Save files and scripts written to break the engine: each gives its Warning or a logged Lua error, and
// the run goes on to a clean exit.

#include "Harness.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <random>

namespace
{

namespace fs = std::filesystem;

std::string RandomBytes(size_t count)
{
    std::mt19937 random(7);
    std::string bytes(count, '\0');
    for (char& byte : bytes)
    {
        byte = static_cast<char>(random());
    }
    bytes[0] = 'x'; // not the start of a precompiled chunk, which has a case of its own
    return bytes;
}

struct HostileSave
{
    std::string name;
    std::string content;
    std::string warning; // the whole Warning, or its start when it ends in ": "
};

// Each save is planted before a run whose script reads it, then saves over it. The run must end by the
// script's quit, with the one Warning and empty data; the file is replaced by the script's save.
TEST(HostileInput, SaveFilesThatDoNotLoadGiveTheirWarningAndEmptyData)
{
    const std::vector<HostileSave> saves = {
        {"syntax error", "return { [1 = 2 }", "Failed to load save file: "},
        {"runtime error", "return { nil .. 1 }", "Failed to load save file: "},
        {"error with a table", "error({})", "Failed to load save file: NULL"},
        {"error without a value", "error()", "Failed to load save file: NULL"},
        {"not a table", "return 5", "Failed to load save file: did not return a table"},
        {"empty", "", "Failed to load save file: did not return a table"},
        {"endless loop", "while true do end", "Failed to load save file: "},
        {"bytecode", std::string("\x1bLua\x53\x00\x19\x93\r\n\x1a\n", 12) + RandomBytes(200),
         "Failed to load save file: "},
        {"nesting 10,000 deep", "return " + std::string(10000, '{') + std::string(10000, '}'),
         "Failed to load save file: "},
        {"8 MB of junk", RandomBytes(8 << 20), "Failed to load save file: "},
    };
    RunOptions options;
    options.dataFolder = "hostilesave";
    for (const HostileSave& hostile : saves)
    {
        SCOPED_TRACE(hostile.name);
        RunDirectory directory;
        directory.Write(directory.Save(), hostile.content);
        options.directory = directory.path;
        const RunResult result = RunEngine(options);
        ASSERT_EQ(result.exitCode, 0) << result.errors;
        EXPECT_FALSE(result.timedOut);
        EXPECT_EQ(PrintedLines(result.output), std::vector<std::string>{"empty\ttrue"});
        const std::vector<std::string> warnings = LogMessages(result.output, "Lua", "Warning");
        ASSERT_EQ(warnings.size(), 1u);
        if (hostile.warning.ends_with(": "))
        {
            EXPECT_TRUE(warnings[0].starts_with(hostile.warning) &&
                        warnings[0].size() > hostile.warning.size())
                << warnings[0];
        }
        else
        {
            EXPECT_EQ(warnings[0], hostile.warning);
        }
        EXPECT_EQ(ReadFile(directory.Save()), "return {[\"after\"]=1}\n");
    }

    // A folder in the save's place reads as no save at all; saving over it fails.
    RunDirectory directory;
    fs::create_directories(directory.Save());
    options.directory = directory.path;
    const RunResult result = RunEngine(options);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(PrintedLines(result.output), std::vector<std::string>{"empty\ttrue"});
    EXPECT_EQ(LogMessages(result.output, "Lua", "Warning"),
              std::vector<std::string>{"Failed to open save file"});
    EXPECT_TRUE(fs::is_directory(directory.Save()));
}

// Lua counts arguments of a method call without the handle before the colon.
TEST(HostileInput, BadCallsOnBodiesCollidersPhysicsAndTheSaveAreLoggedAndTheGameGoesOn)
{
    RunOptions options;
    options.dataFolder = "hostilescripts";
    options.arguments = {"-multithreaded", "n"};
    // Room for the game and its GL driver on one thread, and a few hundred megabytes beyond, which a table
    // that grows forever uses up.
    options.environment = {"LP_NUM_THREADS=0"};
    options.addressSpaceLimit = rlim_t{2} << 30;
    const RunResult result = RunEngine(options);
    ASSERT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(PrintedLines(result.output), std::vector<std::string>{"went on\ttrue\tnil\tnil\t1"});
    const std::string at = "Lua error in component coroutine: Scripts/Bad.lua:";
    std::vector<std::string> heads; // the first line of each script error, without the traceback
    for (const std::string& error : LogMessages(result.errors, "LuaSystem", "Error"))
    {
        heads.push_back(error.substr(0, error.find('\n')));
    }
    EXPECT_EQ(heads,
              (std::vector<std::string>{
                  at + "10: bad argument #1 to 'SetMass' (number expected, got string)",
                  at + "11: bad argument #1 to 'SetVelocity' (RigidBody expected, got Collider)",
                  at + "12: bad argument #1 to 'GetMass' (RigidBody expected, got no value)",
                  at + "13: bad argument #1 to 'SetIgnoreDrag' (boolean expected, got number)",
                  at + "14: bad argument #1 to 'SetType' (invalid option 'Box')",
                  at + "15: Couldn't get secret environment from function, got body instead",
                  at + "16: bad argument #1 to 'SetCollisionGroup' (number has no integer representation)",
                  at + "17: bad argument #1 to 'SetRestitution' (number expected, got table)",
                  at + "18: bad argument #2 to 'SetGravity' (number expected, got string)",
                  at + "19: bad argument #3 to 'Raycast' (number expected, got string)",
                  at + "20: bad argument #5 to 'Raycast' (number expected, got no value)",
                  at + "21: cannot save a table that contains itself",
                  at + "22: cannot save tables nested more than 198 deep",
                  "Lua error in component coroutine: not enough memory",
                  at + "24: RigidBody component is null",
                  at + "25: Collider component is null",
              }));
    EXPECT_EQ(LogMessages(result.output, "Lua", "Warning"), std::vector<std::string>{})
        << "refused data never reaches the file";
}

} // namespace
