#include "Lua/LuaSystem.h"
#include "Lua/SaveFile.h"
#include "Support/LogCapture.h"
#include "Support/TempFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <lua.hpp>
#include <string>

namespace
{

namespace fs = std::filesystem;

void WriteFile(const fs::path& path, const std::string& content)
{
    std::ofstream(path, std::ios::binary) << content;
}

class SaveFile : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(lua.Initialise(nullptr));
        L = lua.state;
    }
    void TearDown() override { lua.Shutdown(); }

    // Makes os.SaveFile over the file at the path (none for nullptr) as the start of a run does.
    void Load(const char* path)
    {
        lua_getglobal(L, "os");
        Lua::BuildSaveTable(L, path);
        lua_setfield(L, -2, "SaveFile");
        lua_pop(L, 1);
    }
    void Load() { Load(savePath.c_str()); }

    // Runs a chunk; returns its error text, or "" when it succeeded.
    std::string Run(const std::string& chunk)
    {
        const int top = lua_gettop(L);
        std::string error;
        if (luaL_dostring(L, chunk.c_str()) != LUA_OK)
        {
            error = lua_tostring(L, -1);
        }
        lua_settop(L, top);
        return error;
    }

    std::string Eval(const std::string& expression)
    {
        luaL_dostring(L, ("return tostring(" + expression + ")").c_str());
        std::string result = lua_tostring(L, -1);
        lua_pop(L, 1);
        return result;
    }

    TempFolder folder;
    std::string savePath = (folder.Path() / "Save.lua").string();
    Lua::LuaSystem lua;
    lua_State* L = nullptr;
};

TEST_F(SaveFile, EveryAssignmentRewritesTheWholeFileAtOnce)
{
    LogCapture capture;
    Load();
    EXPECT_TRUE(capture.Entries().empty()) << "a missing save is the first start: nothing to say";
    EXPECT_EQ(Run("os.SaveFile.best = 3 os.SaveFile[1] = 'a\\nb'"), "");
    const std::string content = ReadFile(savePath);
    EXPECT_TRUE(content == "return {[\"best\"]=3,[1]=\"a\\nb\"}\n" ||
                content == "return {[1]=\"a\\nb\",[\"best\"]=3}\n")
        << content;
    EXPECT_EQ(capture.Messages("Lua", LogLevel::Info),
              (std::vector<std::string>{"Saving (best)...", "Saving (1)..."}));
    EXPECT_EQ(Eval("os.SaveFile.best"), "3");
    EXPECT_EQ(Eval("#os.SaveFile"), "1");
    EXPECT_EQ(Eval("next(os.SaveFile)"), "nil") << "the proxy itself stays empty";
    EXPECT_EQ(Eval("math.type(next(getmetatable(os.SaveFile).__index, 'best') or 1)"), "integer");

    EXPECT_EQ(Run("os.SaveFile.best = nil os.SaveFile[1] = nil os.SaveFile[{}] = nil"), "");
    EXPECT_EQ(ReadFile(savePath), "return {}\n");
    EXPECT_EQ(capture.Messages("Lua", LogLevel::Info).back(), "Saving...");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 1)
        << "no temporary file is left beside the save";
}

TEST_F(SaveFile, ANextRunReadsBackWhatWasSaved)
{
    Load();
    Run("os.SaveFile.name = 'Quell \"Mar\" \\\\ \\0' os.SaveFile.whole = 3 os.SaveFile.real = 3.0 "
        "os.SaveFile.list = {10, 20, {}}");
    lua.Shutdown();
    ASSERT_TRUE(lua.Initialise(nullptr));
    L = lua.state;
    LogCapture capture;
    Load();
    EXPECT_EQ(Eval("os.SaveFile.name == 'Quell \"Mar\" \\\\ \\0'"), "true");
    EXPECT_EQ(Eval("math.type(os.SaveFile.whole) .. math.type(os.SaveFile.real)"), "integerfloat");
    EXPECT_EQ(Eval("os.SaveFile.list[2] + #os.SaveFile.list + #os.SaveFile.list[3]"), "23");
    EXPECT_TRUE(capture.Entries().empty());
}

TEST_F(SaveFile, BrokenSaveFilesGiveAWarningAndEmptyData)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"return {", "Failed to load save file: "},
        {"error('broken')", "Failed to load save file: "},
        {"error({})", "Failed to load save file: NULL"},
        {"return 5", "Failed to load save file: did not return a table"},
        {"", "Failed to load save file: did not return a table"},
        {"while true do end", "Failed to load save file: "},
        {"\x1bLua\x53\x00garbage", "Failed to load save file: "},
        {"return " + std::string(10000, '{') + std::string(10000, '}'), "Failed to load save file: "},
    };
    for (const auto& [content, expected] : cases)
    {
        WriteFile(savePath, content);
        LogCapture capture;
        Load();
        const std::vector<std::string> warnings = capture.Messages("Lua", LogLevel::Warning);
        ASSERT_EQ(warnings.size(), 1u) << content.substr(0, 20);
        EXPECT_TRUE(warnings[0].starts_with(expected)) << warnings[0];
        EXPECT_EQ(Eval("next(getmetatable(os.SaveFile).__index)"), "nil");
        EXPECT_EQ(ReadFile(savePath), content) << "a broken save stays until the next save";
    }
}

TEST_F(SaveFile, ASaveFolderNamedLikeTheFileIsLikeNoFile)
{
    fs::create_directory(savePath);
    LogCapture capture;
    Load();
    EXPECT_TRUE(capture.Entries().empty());
    Run("os.SaveFile.x = 1");
    EXPECT_EQ(capture.Messages("Lua", LogLevel::Warning),
              std::vector<std::string>{"Failed to open save file"});
    EXPECT_EQ(Eval("os.SaveFile.x"), "1") << "the value stays in memory";
}

TEST_F(SaveFile, WithoutAPathEverySaveFailsWithAnError)
{
    LogCapture capture;
    Load(nullptr);
    Run("os.SaveFile.x = 1");
    EXPECT_EQ(capture.Messages("Lua", LogLevel::Error),
              std::vector<std::string>{"Failed to get save file name or data"});
    EXPECT_EQ(Eval("os.SaveFile.x"), "1");
}

TEST_F(SaveFile, DataThatCouldNotBeReadBackIsRefusedAndTheOldSaveKept)
{
    Load();
    Run("os.SaveFile.score = 1");
    const std::string good = ReadFile(savePath);
    EXPECT_NE(
        Run("local t = {} t.t = t os.SaveFile.loop = t").find("cannot save a table that contains itself"),
        std::string::npos);
    EXPECT_EQ(Eval("os.SaveFile.loop"), "nil") << "a refused value isn't stored";
    EXPECT_EQ(ReadFile(savePath), good);
    EXPECT_EQ(Run("os.SaveFile.score = 2"), "") << "later saves still work";

    // A cycle made in place inside stored data blocks every save until it is removed.
    Run("os.SaveFile.box = {} os.SaveFile.box.me = os.SaveFile.box");
    const std::string beforeCycle = ReadFile(savePath);
    EXPECT_NE(Run("os.SaveFile.score = 3"), "");
    EXPECT_EQ(ReadFile(savePath), beforeCycle);
    EXPECT_EQ(Run("os.SaveFile.box = nil"), "");
    EXPECT_EQ(Run("os.SaveFile.score = 4"), "");
    EXPECT_NE(ReadFile(savePath).find("[\"score\"]=4"), std::string::npos);
}

TEST_F(SaveFile, InitialiseGivesScriptsTheSaveTable)
{
    // The test process points XDG_DATA_HOME at a folder of its own.
    EXPECT_EQ(Eval("type(os.SaveFile)"), "table");
    EXPECT_EQ(Eval("type(getmetatable(os.SaveFile).__newindex)"), "function");
}

} // namespace
