// One assignment to os.SaveFile over a large table: serialising, writing, flushing and renaming on disk.

#include "Debug/Logger.h"
#include "Lua/LuaSystem.h"
#include "Lua/SaveFile.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <lua.hpp>

namespace
{

void SaveFileOfTenThousandEntries(benchmark::State& state)
{
    std::string folder = (std::filesystem::temp_directory_path() / "quellmar-bench-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr)
    {
        state.SkipWithError("cannot make a temporary folder");
        return;
    }
    const std::string path = folder + "/Save.lua";
    Lua::LuaSystem lua;
    lua.Initialise(nullptr);
    lua_State* L = lua.state;
    Lua::BuildSaveTable(L, path.c_str());
    lua_setglobal(L, "save");
    luaL_dostring(L, R"lua(
        data = getmetatable(save).__index
        for i = 1, 10000 do
            local kind = i % 4
            if kind == 0 then data[i] = i * 7
            elseif kind == 1 then data["key" .. i] = "a \"quoted\"\nline " .. i
            elseif kind == 2 then data[i] = i / 3
            else data[i] = {x = i, y = true} end
        end)lua");
    // Each save logs a line that would interleave with the report.
    Logger::Detach(StandardOutputSink);
    for (auto _ : state)
    {
        luaL_dostring(L, "save.last = 1");
    }
    Logger::Attach(StandardOutputSink, 7);
    lua.Shutdown();
    std::filesystem::remove_all(folder);
}
BENCHMARK(SaveFileOfTenThousandEntries)->Unit(benchmark::kMillisecond);

} // namespace
