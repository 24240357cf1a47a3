#include "Support/ScriptScenario.h"

#include <filesystem>
#include <lua.hpp>
#include <string>

namespace
{

using ScriptChunks = ScriptScenario;

// A script of some size, so that a compiled copy of it is plainly more than a closure over a shared one.
std::string LongScript(const std::string& name)
{
    std::string text = "local sum = 0\n";
    for (int line = 0; line < 60; ++line)
    {
        text += "sum = sum + " + std::to_string(line) + " * (sum % 7)\n";
    }
    return text + "print('" + name + "', sum)\n";
}

TEST_F(ScriptChunks, CopiesOfAFileEachHaveTheirOwnGlobalsAndAreTheMainChunk)
{
    Write("count.lua", "n = (n or 0) + 1\n"
                       "local seen = _G.seen or {}\n"
                       "_G.seen = seen\n"
                       "local info = debug.getinfo(1, 'S')\n"
                       "print(n, seen[_ENV] == nil, info.what, info.linedefined, select('#', ...))\n"
                       "seen[_ENV] = true\n");
    for (int copy = 0; copy < 3; ++copy)
    {
        Attach("count.lua");
    }
    EXPECT_EQ(Frame(0.1), "1\ttrue\tmain\t0\t0\n1\ttrue\tmain\t0\t0\n1\ttrue\tmain\t0\t0\n");
}

TEST_F(ScriptChunks, ASecondCopyOfAFileCostsFarLessMemoryThanTheFirst)
{
    Write("a.lua", LongScript("a"));
    Write("b.lua", LongScript("b"));
    auto growth = [this](const char* file)
    {
        lua_gc(L(), LUA_GCCOLLECT, 0);
        const size_t before = game.lua.LiveBytes();
        Attach(file);
        lua_gc(L(), LUA_GCCOLLECT, 0);
        return game.lua.LiveBytes() - before;
    };
    const size_t first = growth("a.lua");
    const size_t again = growth("a.lua");
    const size_t otherFile = growth("b.lua");
    EXPECT_LT(again + 1000, first);
    EXPECT_LT(again + 1000, otherFile);
    EXPECT_EQ(Frame(0.1), "a\t0\na\t0\nb\t0\n");
}

TEST_F(ScriptChunks, AFileIsCompiledForWhatItHoldsWhenAttached)
{
    Write("v.lua", "print('aaa')");
    Attach("v.lua");
    Write("v.lua", "print('bbb')");
    Attach("v.lua");
    Write("v.lua", "print('longer')");
    Attach("v.lua");
    Write("v.lua", "print('aaa')");
    Attach("v.lua");
    EXPECT_EQ(Frame(0.1), "aaa\nbbb\nlonger\naaa\n");

    std::filesystem::remove(data.Path() / "v.lua");
    const GameObjectHandle object = Attach("v.lua");
    EXPECT_EQ(ScriptOf(object).source, "");
    EXPECT_EQ(Errors(), std::vector<std::string>{
                            "Failed to load script \"v.lua\": cannot open v.lua: No such file or directory"});
    Write("v.lua", "print(");
    EXPECT_FALSE(ScriptOf(object).SetScript(L(), "v.lua"));
    EXPECT_EQ(Errors().back(), "Failed to load script \"v.lua\": v.lua:1: unexpected symbol near <eof>");
    // A device that never ends is read by Lua's loader, which stops at its first bad character.
    EXPECT_FALSE(ScriptOf(object).SetScript(L(), "/dev/zero"));
    EXPECT_TRUE(
        Errors().back().starts_with("Failed to load script \"/dev/zero\": /dev/zero:1: unexpected symbol"))
        << Errors().back();
}

TEST_F(ScriptChunks, BinaryChunksAndTheLinesThatLoadingSkipsWorkAsBefore)
{
    EXPECT_EQ(
        Run("local file = io.open('bin.lua', 'wb')\n"
            "file:write(string.dump(load('print(\"binary\", Script ~= nil) error(\"stop\")', '=bin')))\n"
            "file:close()\n"),
        "");
    Write("shebang.lua", "#!/usr/bin/env lua\nprint('shebang') error('line two')\n");
    Write("bom.lua", "\xEF\xBB\xBFprint('bom') error('line one')\n");
    for (const char* file : {"bin.lua", "bin.lua", "shebang.lua", "shebang.lua", "bom.lua"})
    {
        Attach(file);
    }
    EXPECT_EQ(Frame(0.1), "binary\ttrue\nbinary\ttrue\nshebang\nshebang\nbom\n");
    EXPECT_EQ(ErrorHeads(),
              (std::vector<std::string>{"Lua error in component coroutine: bin:1: stop",
                                        "Lua error in component coroutine: bin:1: stop",
                                        "Lua error in component coroutine: shebang.lua:2: line two",
                                        "Lua error in component coroutine: shebang.lua:2: line two",
                                        "Lua error in component coroutine: bom.lua:1: line one"}));
}

// The compiled files are reachable through the registry, like everything else a script can reach with
// the debug library: overwriting one must cost a compile, not a crash.
TEST_F(ScriptChunks, AFactoryOverwrittenByAScriptIsReplaced)
{
    Write("f.lua", "print('runs')");
    const std::string replace =
        "local registry = debug.getregistry()\n"
        "local found = 0\n"
        "for key, value in pairs(registry) do\n"
        "  if type(value) == 'function' and debug.getinfo(value, 'S').source == '=script factory' then\n"
        "    found = found + 1\n"
        "    registry[key] = REPLACEMENT\n"
        "  end\n"
        "end\n"
        "assert(found == 1, found)\n";
    Attach("f.lua");
    for (const char* replacement :
         {"42", "function() return 'not a function' end", "function() error('no') end", "coroutine.yield"})
    {
        std::string chunk = replace;
        chunk.replace(chunk.find("REPLACEMENT"), 11, replacement);
        EXPECT_EQ(Run(chunk), "") << replacement;
        Attach("f.lua");
    }
    EXPECT_EQ(Frame(0.1), "runs\nruns\nruns\nruns\nruns\n");
    EXPECT_EQ(Errors(), std::vector<std::string>{});
}

} // namespace
