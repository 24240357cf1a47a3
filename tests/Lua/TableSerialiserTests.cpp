#include "Lua/TableSerialiser.h"
#include "Support/ScriptScenario.h"

#include <lua.hpp>
#include <string>

namespace
{

class TableSerialiser : public ScriptScenario
{
protected:
    void SetUp() override
    {
        ScriptScenario::SetUp();
        lua_register(L(), "serialise",
                     [](lua_State* state)
                     {
                         Lua::TableToString(state, 1);
                         return 1;
                     });
    }
    // What the expression serialises to, or the error it raises.
    std::string Serialise(const std::string& expression)
    {
        return Outcome("return serialise(" + expression + ")");
    }
};

// Keys in brackets, no white space, escapes only for what the table names, other bytes raw, and values
// that aren't strings, numbers, booleans or tables as tostring gives them.
TEST_F(TableSerialiser, WritesEveryEntryInTheFormThatLoadsBack)
{
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"{}", "{}"},
        {"{10}", "{[1]=10}"},
        {"{3.0}", "{[1]=3.0}"},
        {"{[2.5]=true}", "{[2.5]=true}"},
        {"{[false]={}}", "{[false]={}}"},
        {"{name={level={7}}}", "{[\"name\"]={[\"level\"]={[1]=7}}}"},
        {"{[{1}]='k'}", "{[{[1]=1}]=\"k\"}"},
        {R"({"\0\a\b\t\n\v\f\r\"\\"})", R"({[1]="\0\a\b\t\n\v\f\r\"\\"})"},
        {R"({"\1 \127\255 ok"})", "{[1]=\"\x01 \x7F\xFF ok\"}"},
        {"{1/0, -(0/0) ~= -(0/0)}", "{[1]=inf,[2]=true}"},
    };
    for (const auto& [expression, expected] : rows)
    {
        EXPECT_EQ(Serialise(expression), expected) << expression;
    }
    const std::string two = Serialise("{a=1, b=2}");
    EXPECT_TRUE(two == "{[\"a\"]=1,[\"b\"]=2}" || two == "{[\"b\"]=2,[\"a\"]=1}") << two;
    EXPECT_TRUE(Serialise("{print}").starts_with("{[1]=builtin: ") ||
                Serialise("{print}").starts_with("{[1]=function: "));
    // Both go through the globals, so a script that replaces them changes the text.
    Run("local saved = tostring tostring = function(v) return '<' .. type(v) .. '>' end "
        "result = serialise({5}) tostring = saved");
    EXPECT_EQ(Outcome("return result"), "{[<number>]=<number>}");
    Run("string.gsub = function(s) return (s:upper()) end");
    EXPECT_EQ(Serialise("{'abc'}"), "{[1]=\"ABC\"}");
}

TEST_F(TableSerialiser, ANonTableIsRefusedWithAWarning)
{
    EXPECT_EQ(Serialise("5"), "{}");
    EXPECT_EQ(log.Messages("Lua", LogLevel::Warning),
              std::vector<std::string>{"Tried to convert a non-table to string with TableToString"});
}

TEST_F(TableSerialiser, CyclesAreRefusedButSharedTablesAreNot)
{
    EXPECT_EQ(Serialise("(function() local t = {} t.self = t return t end)()"),
              "cannot save a table that contains itself");
    EXPECT_EQ(Serialise("(function() local t = {} t[{t}] = 1 return t end)()"),
              "cannot save a table that contains itself");
    EXPECT_EQ(Serialise("(function() local shared = {1} return {shared, shared} end)()"),
              "{[1]={[1]=1},[2]={[1]=1}}");
}

std::string Nested(int depth, const std::string& innermost)
{
    std::string text;
    for (int level = 1; level < depth; ++level)
    {
        text += "{";
    }
    text += innermost;
    for (int level = 1; level < depth; ++level)
    {
        text += "}";
    }
    return text;
}

TEST_F(TableSerialiser, TheDeepestSavableNestingLoadsBackAndDeeperIsRefused)
{
    // Built at the top of a chunk: inside Outcome's function the parser itself would run out of levels.
    ASSERT_EQ(Run("deepest = " + Nested(Lua::kMaxSavedDepth, "{x=1}")), "");
    ASSERT_EQ(Run("tooDeep = " + Nested(Lua::kMaxSavedDepth + 1, "{}")), "");
    const std::string deepest = Serialise("deepest");
    ASSERT_EQ(luaL_loadstring(L(), ("return " + deepest).c_str()), LUA_OK) << lua_tostring(L(), -1);
    ASSERT_EQ(lua_pcall(L(), 0, 1, 0), LUA_OK);
    lua_pop(L(), 1);
    EXPECT_EQ(Serialise("tooDeep"), "cannot save tables nested more than 198 deep");
    // One level more than the limit is what the loader itself can no longer read.
    const std::string tooDeep = "return " + Nested(Lua::kMaxSavedDepth + 1, "{[1]=1}");
    EXPECT_NE(luaL_loadstring(L(), tooDeep.c_str()), LUA_OK);
    lua_pop(L(), 1);
}

// Random trees of strings of any bytes, integers, floats of few digits, booleans and nested tables survive
// the loader.
TEST_F(TableSerialiser, RandomTreesRoundTripThroughTheLoader)
{
    ASSERT_EQ(luaL_dostring(L(), R"lua(
        function equal(a, b)
            if type(a) ~= type(b) then return false end
            if type(a) ~= "table" then return a == b and math.type(a) == math.type(b) end
            for k, v in pairs(a) do if not equal(v, b[k]) then return false end end
            for k in pairs(b) do if a[k] == nil then return false end end
            return true
        end
        function randomString()
            local bytes = {}
            for i = 1, math.random(0, 12) do bytes[i] = math.random(0, 255) end
            local s = string.char(table.unpack(bytes))
            -- A zero byte before a digit reads back as one decimal escape: the format loses that.
            return (s:gsub("%z(%d)", "%1"))
        end
        function randomValue(depth)
            local kind = math.random(1, depth < 5 and 6 or 5)
            if kind == 1 then return randomString()
            elseif kind == 2 then return math.random(-1000000, 1000000) * 1000003
            elseif kind == 3 then return math.random(-100000, 100000) / 64
            elseif kind == 4 then return math.random(1, 2) == 1
            elseif kind == 5 then return math.maxinteger
            else
                local t = {}
                for i = 1, math.random(0, 6) do
                    -- Table keys would read back as other tables: the exact-form test covers them.
                    local key = randomValue(5)
                    t[key] = randomValue(depth + 1)
                end
                return t
            end
        end)lua"),
              LUA_OK);
    for (int round = 0; round < 300; ++round)
    {
        luaL_dostring(
            L(), ("math.randomseed(" + std::to_string(round) + ") tree = {randomValue(0), randomValue(0)}")
                     .c_str());
        lua_getglobal(L(), "tree");
        Lua::TableToString(L(), -1);
        const std::string chunk = std::string("return ") + lua_tostring(L(), -1);
        lua_pop(L(), 2);
        ASSERT_EQ(luaL_loadstring(L(), chunk.c_str()), LUA_OK) << chunk;
        ASSERT_EQ(lua_pcall(L(), 0, 1, 0), LUA_OK);
        lua_setglobal(L(), "loaded");
        luaL_dostring(L(), "return equal(tree, loaded)");
        ASSERT_TRUE(lua_toboolean(L(), -1)) << "round " << round << ": " << chunk;
        lua_pop(L(), 1);
    }
}

} // namespace
