#include "BenchGame.h"

#include "Support/OffscreenWindow.h"

#include <fstream>

BenchGame::BenchGame(const BenchFiles& files, bool windowed)
    : cwd(data.Path()), window(windowed ? OpenOffscreenWindow(800, 600) : nullptr), game(window.get(), {})
{
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
