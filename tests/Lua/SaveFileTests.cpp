#include "Lua/SaveFile.h"
#include "Support/ScriptScenario.h"

#include <filesystem>
#include <lua.hpp>

namespace
{

namespace fs = std::filesystem;

class SaveFile : public ScriptScenario
{
protected:
    void SetUp() override
    {
        ScriptScenario::SetUp();
        log.Clear();
    }
    // Makes os.SaveFile over the file at the path (none for nullptr) as the start of a run does.
    void Load(const char* path)
    {
        lua_getglobal(L(), "os");
        Lua::BuildSaveTable(L(), path);
        lua_setfield(L(), -2, "SaveFile");
        lua_pop(L(), 1);
    }
    void Load() { Load(savePath.c_str()); }
    std::vector<std::string> Said(LogLevel level) const { return log.Messages("Lua", level); }

    fs::path folder = data.Path() / "saves";
    std::string savePath = (folder / "Save.lua").string();
};

TEST_F(SaveFile, EveryAssignmentRewritesTheWholeFileAtOnce)
{
    fs::create_directory(folder);
    Load();
    EXPECT_TRUE(Said(LogLevel::Info).empty() && Said(LogLevel::Warning).empty())
        << "a missing save is the first start: nothing to say";
    EXPECT_EQ(Run("os.SaveFile.best = 3 os.SaveFile[1] = 'a\\nb'"), "");
    const std::string content = ReadFile(savePath);
    EXPECT_TRUE(content == "return {[\"best\"]=3,[1]=\"a\\nb\"}\n" ||
                content == "return {[1]=\"a\\nb\",[\"best\"]=3}\n")
        << content;
    EXPECT_EQ(Said(LogLevel::Info), (std::vector<std::string>{"Saving (best)...", "Saving (1)..."}));
    EXPECT_EQ(Outcome("return os.SaveFile.best"), "3");
    EXPECT_EQ(Outcome("return #os.SaveFile"), "1");
    EXPECT_EQ(Outcome("return next(os.SaveFile)"), "nil") << "the proxy itself stays empty";
    EXPECT_EQ(Outcome("return math.type(next(getmetatable(os.SaveFile).__index, 'best') or 1)"), "integer");

    EXPECT_EQ(Run("os.SaveFile.best = nil os.SaveFile[1] = nil os.SaveFile[{}] = nil"), "");
    EXPECT_EQ(ReadFile(savePath), "return {}\n");
    EXPECT_EQ(Said(LogLevel::Info).back(), "Saving...");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1)
        << "no temporary file is left beside the save";
}

// Without a path every save fails, and the value stays in memory.
TEST_F(SaveFile, WithoutAPathEverySaveFailsWithAnError)
{
    Load(nullptr);
    EXPECT_EQ(Run("os.SaveFile.y = 2"), "");
    EXPECT_EQ(Said(LogLevel::Error), std::vector<std::string>{"Failed to get save file name or data"});
    EXPECT_EQ(Outcome("return os.SaveFile.y"), "2");
}

TEST_F(SaveFile, DataThatCouldNotBeReadBackIsRefusedAndTheOldSaveKept)
{
    fs::create_directory(folder);
    Load();
    Run("os.SaveFile.score = 1");
    const std::string good = ReadFile(savePath);
    EXPECT_NE(
        Run("local t = {} t.t = t os.SaveFile.loop = t").find("cannot save a table that contains itself"),
        std::string::npos);
    EXPECT_EQ(ReadFile(savePath), good);
    // A cycle made in place inside stored data blocks every save until it is removed.
    Run("os.SaveFile.box = {} os.SaveFile.box.me = os.SaveFile.box");
    const std::string beforeCycle = ReadFile(savePath);
    EXPECT_NE(Run("os.SaveFile.score = 3"), "");
    EXPECT_EQ(ReadFile(savePath), beforeCycle);
    EXPECT_EQ(Run("os.SaveFile.box = nil"), "");
    EXPECT_EQ(Run("os.SaveFile.score = 4"), "");
    EXPECT_NE(ReadFile(savePath).find("[\"score\"]=4"), std::string::npos);
}

} // namespace
