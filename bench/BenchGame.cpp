#include "BenchGame.h"

#include "Support/OffscreenWindow.h"

#include <cstdlib>
#include <cstring>
#include <fstream>

namespace
{

bool Pooled(LuaBlocks blocks)
{
    if (blocks != LuaBlocks::FromEnvironment)
    {
        return blocks == LuaBlocks::Pooled;
    }
    const char* realloc = std::getenv("QUELLMAR_BENCH_LUA_REALLOC");
    return realloc == nullptr || *realloc == '\0' || std::strcmp(realloc, "0") == 0;
}

} // namespace

BenchGame::BenchGame(const BenchFiles& files, bool windowed, LuaBlocks blocks)
    : cwd(data.Path()), window(windowed ? OpenOffscreenWindow(800, 600) : nullptr), game(window.get(), {})
{
    game.lua.pooledHeap = Pooled(blocks);
    for (const auto& [name, text] : files)
    {
        std::ofstream(data.Path() / name) << text;
    }
    if (windowed)
    {
        CopyDrawingData(data.Path());
    }
    game.StartSystems();
    if (windowed)
    {
        game.graphics.Resize(800, 600);
    }
}

void BenchGame::AttachScript(GameObjectHandle object, const char* fileName)
{
    const Handle script = object.Get().AddComponent(Components::Script);
    object.space->scripts.components.at(script).SetScript(game.lua.state, fileName);
}

GameObjectHandle BenchGame::AttachScript(const char* fileName)
{
    const GameObjectHandle object = game.rootSpace.CreateObject();
    AttachScript(object, fileName);
    return object;
}

void BenchGame::UpdateScripts()
{
    time += kDt;
    game.rootSpace.time += kDt;
    game.lua.Update(game, game.rootSpace, kDt, game.rootSpace.time, time);
}
