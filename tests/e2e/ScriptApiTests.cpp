// Scripts against the real executable: what spaces, objects and transforms give them, and the errors
// they raise. Each Data folder has a script that prints what it finds and ends the game.

#include "Harness.h"

#include <gtest/gtest.h>

namespace
{

RunResult RunScripts(const std::string& dataFolder)
{
    RunOptions options;
    options.dataFolder = dataFolder;
    return RunEngine(options);
}

// Spaces and objects answer queries and refuse bad use; transforms place children in the world and guard
// their parent links.
TEST(ScriptApi, SpacesObjectsAndTransformsAnswerQueriesAndRefuseBadUse)
{
    const std::pair<const char*, std::vector<std::string>> rows[] = {
        {"objects",
         {
             "function\tSpace\tBox",
             "0\t2\t4",
             "false\tScripts/Objects.lua:9: Attempt to index a nil value: Space has no member \"Nothing\"",
             "false\tScripts/Objects.lua:10: bad argument #2 to '__index' (string expected, got table)",
             "false\tScripts/Objects.lua:11: attempt to index a Space value (global 'Space')",
             "false\tbad argument #1 to '?' (Cannot destroy top space)",
             "false\tbad argument #2 to '?' (boolean expected, got nil)",
             "false\tbad argument #2 to '?' (number expected, got string)",
             "nil\t0\ttrue\ttrue",
             "Box\ttrue\tnil\tnil\ttrue",
             "false\tScripts/Objects.lua:20: GameObject has no member or child called Foo",
             "false\tScripts/Objects.lua:21: Tried to assign to a GameObject (Box.Foo)",
             "false\tScripts/Objects.lua:22: bad argument #3 to '__newindex' (string expected, got table)",
             "5\ttrue",
             "true\tfalse\tnil",
             "false\tTried to check a non-existant component Spirte",
             "false\tTried to get a non-existant component 7",
             "false\tObject already has component Script!",
             "false\tObject does not have component Sprite!",
             "false\tTried to add a non-existant component Nothing",
             "true\ttrue",
             "false\tnil",
             "Script,Transform\tnil",
             "true\ttrue\tfalse",
             "false\tScripts/Objects.lua:46: bad argument #2 to '__eq' (Transform expected, got GameObject)",
             "nil\t0\tDoomed",
             "false\tScripts/Objects.lua:52: Attempt to index a nil value: Space has no member \"Doomed\"",
             "false\tScripts/Objects.lua:54: bad argument #1 to '__index' (GameObject or space is null)",
             "function",
             "false\tbad argument #1 to '?' (GameObject or space is null)",
             "A,D,C\t1\ttrue",
             "C.txt,Sub,a.txt,b.txt",
             "C.txt,a.txt,b.txt",
         }},
        {"transforms",
         {
             "Comet,Planet\ttrue\ttrue\tnil",
             "10.0000 2.0000 0",
             "10.0000 3.0000 0",
             "1.5708\t0.0000",
             "-2.0000 10.0000 0",
             "10.0000 0.0000 0",
             "0.7168",
             "-0.7168",
             "1.0000 2.0000 5",
             "3.0000 4.0000 5\t5",
             "false\tbad argument #4 to '?' (number expected, got nil)",
             "false\tbad argument #2 to '?' (number has no integer representation)",
             "2.0000 3.0000\tPosition,Rotation,Scale\ttrue",
             "false\tbad argument #2 to '?' (Cannot set a transform's parent to a descendant)",
             "false\tbad argument #2 to '?' (Cannot set a transform's parent to a descendant)",
             "false\tbad argument #2 to '?' (Transform, GameObject, or nil expected)",
             "false\tbad argument #2 to '?' (Parent transform must have same space)",
             "false\tbad argument #2 to '?' (Parent GameObject transform must have same space)",
             "false\tbad argument #2 to '?' (Parent GameObject does not have a transform)",
             "false\tbad argument #2 to '?' (Parent GameObject does not have a transform)",
             "true",
             "3\ttrue\ttrue",
             "2\tnil\tnil",
             "1\t10.0000 2.0000 0",
             "false\tbad argument #2 to '?' (Parent transform is null)",
             "false\tTransform component is null",
         }},
    };
    for (const auto& [folder, printed] : rows)
    {
        const RunResult result = RunScripts(folder);
        EXPECT_EQ(result.exitCode, 0) << folder << result.errors;
        EXPECT_EQ(PrintedLines(result.output), printed) << folder;
        EXPECT_EQ(result.errors, "") << folder;
    }
}

TEST(ScriptApi, ArchetypesInEveryFormAndEveryRefusal)
{
    const RunResult result = RunScripts("archetypes");
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(
        PrintedLines(result.output),
        (std::vector<std::string>{
            "1:Rock\t1:Rock",
            "1:Object 4294967295\t1:Object 4294967295\t1:Object 4294967295",
            "4:Rock,Pebble,Rock,Deep",
            "Boulder\t9.0\t9.0\t0",
            "2:Twin,Twin",
            "1:Rock",
            "1",
            "2:Rock,Rock",
            "3\ttrue",
            "false\tFailed to create objects from archetype: invalid table passed",
            "false\tFailed to create objects from archetype: invalid table passed",
            "false\tFailed to create objects from archetype: invalid table passed",
            "false\tbad argument #2 to '?' (table expected, got number)",
            "false\tFailed to initialise member Position: bad argument #2 to '?' (number expected, got "
            "string)",
            "false\tFailed to create objects from archetype: invalid table passed",
            "false\tTried to apply an override archetype as an override",
            "false\tFailed to initialise member Variables: bad argument #2 to '?' (table expected, got "
            "number)",
            "false\tObject table keys must be strings or numbers, got boolean",
            "false\tFailed to create objects from archetype: invalid table passed",
            "false\tFailed to load archetype: Archetypes/Missing.arch",
            "false\tFailed to load archetype: Archetypes/Syntax.arch",
            "false\tFailed to load archetype: Archetypes/Global.arch",
            "1:Sneaky\t1",
            "false\tFailed to load archetype: Archetypes/Loop.arch: more than 64 archetype names in a row",
            "false\tFailed to load archetype: Archetypes/ListLoop.arch",
            "false\tobject length is not an integer",
            "false\tstack overflow",
            "false\tC stack overflow",
            "false\tstack overflow",
            "false\tFailed to initialise member Position: stack overflow",
            "0\t0",
            "Rock,First\t2.0\t1.0\t0",
            "false\tFailed to create objects from archetype: invalid table passed",
            "true\t0",
            "true\tParent",
            "reader\t3",
        }));
    const std::vector<std::string> warnings = LogMessages(result.output, "Space", "Warning");
    ASSERT_GE(warnings.size(), 7u);
    EXPECT_EQ(std::vector<std::string>(warnings.begin(), warnings.begin() + 7),
              (std::vector<std::string>{
                  "Creating a blank gameobject from CreateFromArchetype",
                  "Creating a blank gameobject from CreateFromArchetype",
                  "Creating a blank gameobject from CreateFromArchetype",
                  "Applying archetype override to 2 objects",
                  "Creating object from archetype: No component \"Number\" exists",
                  "Creating a blank gameobject from CreateFromArchetype",
                  "Creating object from archetype: No component \"Unknown\" exists",
              }));
    EXPECT_EQ(LogMessages(result.output, "Lua", "Warning"), std::vector<std::string>{})
        << "a sprite's short form loads its frame";
    const std::vector<std::string> errors = LogMessages(result.errors, "Space", "Error");
    ASSERT_EQ(errors.size(), 11u) << result.errors;
    EXPECT_EQ(errors[0], "Failed to initialise component Transform from table");
    EXPECT_EQ(errors[1], "Failed to initialise component Script from table");
    EXPECT_EQ(errors[4],
              "Failed to load archetype/level file \"Archetypes/Global.arch\": Making global variables "
              "in serialisation is not allowed");
    EXPECT_EQ(errors[8], "Failed to create child objects: Failed to load archetype: Archetypes/Missing.arch");
}

} // namespace
