#include "Lua/LevelLoader.h"
#include "Support/ScriptScenario.h"

#include <lua.hpp>

namespace
{

// Classify(self, table) gives the form that CreateFromArchetype sees in its argument.
int Classify(lua_State* L)
{
    static const char* const kNames[] = {"override", "list", "empty", "object", "invalid"};
    lua_pushstring(L, kNames[static_cast<int>(Lua::ClassifyDescription(L))]);
    return 1;
}

class LevelLoader : public ScriptScenario
{
protected:
    void SetUp() override
    {
        ScriptScenario::SetUp();
        lua_register(L(), "Classify", Classify);
    }
};

// Names of the objects of the root Space that aren't marked, in dense order.
std::vector<std::string> LiveNames(Space& space)
{
    std::vector<std::string> names;
    for (const GameObject& object : space.objects)
    {
        if (!object.destroyed)
        {
            names.push_back(object.name);
        }
    }
    return names;
}

TEST_F(LevelLoader, TheClassifierTestsExactTypesInItsOrder)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"{ 'a', Override = {} }", "override"},
        {"{ {}, Override = { 5 } }", "override"},
        {"{ 5, Override = {} }", "invalid"},
        {"{ 5 }", "invalid"},
        {"{ 'a', Override = 5 }", "invalid"},
        {"{ 'a' }", "list"},
        {"{ 'a', {}, Override = 5 }", "list"},
        {"{ 'a', 5 }", "invalid"},
        {"{ 'a', nil, 'b' }", "invalid"},
        {"{}", "empty"},
        {"{ Name = 'x', Transform = {} }", "object"},
        {"{ Name = 'x', Z = 5 }", "invalid"},
        {"{ Name = 'x', Flag = true }", "invalid"},
        {"{ [true] = 'x' }", "object"},
        {"setmetatable({}, { __len = function() return -1 end })", "invalid"},
        {"setmetatable({ 'a' }, { __len = function() return 1.5 end })", "object length is not an integer"},
        {"setmetatable({}, { __len = function() return 2^62 end })", "stack overflow"},
        {"setmetatable({}, { __len = function() return 'x' end })", "object length is not an integer"},
        {"setmetatable({}, { __len = function() return 2 end, __index = function() return 'a' end })",
         "list"},
    };
    for (const auto& [expression, form] : cases)
    {
        EXPECT_EQ(Outcome("return (Classify(nil, " + expression + "))"), form) << expression;
    }
    EXPECT_EQ(lua_gettop(L()), 0);
}

TEST_F(LevelLoader, ComponentValuesUnpackArraysAndPassOtherTablesWhole)
{
    EXPECT_EQ(
        Run("local o = MainSpace:CreateObject({ Name = 'P', Transform = { Position = { 1, 2, 3 }, Rotation = "
            "7 } })\n"
            "local x, y, z = o.Transform:GetPosition()\n"
            "assert(x == 1 and y == 2 and z == 3 and math.abs(o.Transform:GetRotation() - 0.7168) < 1e-3)\n"
            "assert(MainSpace:CreateObject({ Name = 'S', Transform = 'ignored' }).Transform == nil)"),
        "");
    const std::string scaleByTable =
        Run("MainSpace:CreateObject({ Name = 'Q', Transform = { Scale = { x = 1 } } })");
    EXPECT_NE(scaleByTable.find("Failed to initialise member Scale: "), std::string::npos) << scaleByTable;
    EXPECT_EQ(LiveNames(game.rootSpace), (std::vector<std::string>{"P", "S"}));
    EXPECT_EQ(log.Messages("Space", LogLevel::Error),
              std::vector<std::string>{"Failed to initialise component Transform from table"});
}

TEST_F(LevelLoader, AFailingEntryRaisesAndKeepsWhatWasMadeBeforeIt)
{
    Write("Rock.arch", "return { Name = 'Rock' }");
    const std::string error =
        Run("MainSpace:CreateObject({ 'Rock.arch', { Name = 'Bad', Transform = { Position = "
            "'x' }, Children = { { Name = 'Child' } } }, { Name = 'Never' } })");
    EXPECT_NE(error.find("Failed to initialise member Position"), std::string::npos) << error;
    EXPECT_EQ(LiveNames(game.rootSpace), std::vector<std::string>{"Rock"})
        << "the failed object is destroyed, the later entry never made";

    EXPECT_EQ(lua_gettop(L()), 0);
}

} // namespace
