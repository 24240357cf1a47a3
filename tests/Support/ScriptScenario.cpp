#include "Support/ScriptScenario.h"

#include "Debug/Profile.h"
#include "Support/OffscreenWindow.h"

#include <fstream>
#include <lua.hpp>
#include <sstream>

ScriptScenario::ScriptScenario(bool windowed)
    : cwd(data.Path()), window(windowed ? OpenOffscreenWindow(800, 600) : nullptr),
      game(window.get(), Core::GameSettings{})
{
    if (windowed)
    {
        CopyDrawingData(data.Path());
    }
}

void ScriptScenario::SetUp()
{
    game.StartSystems();
}

void ScriptScenario::TearDown()
{
    game.LeaveLoop();
    for (const LogEntry& entry : log.Entries())
    {
        EXPECT_EQ(entry.message.find("cleaned up"), std::string::npos) << entry.message;
    }
}

void ScriptScenario::Write(const std::string& name, const std::string& text) const
{
    std::filesystem::create_directories((data.Path() / name).parent_path());
    std::ofstream(data.Path() / name) << text;
}

GameObjectHandle ScriptScenario::Attach(const std::string& fileName, Space* space)
{
    Space& target = space != nullptr ? *space : game.rootSpace;
    const GameObjectHandle object = target.CreateObject();
    object.Get().AddComponent(Components::Script);
    ScriptOf(object).SetScript(L(), fileName.c_str());
    return object;
}

Components::ScriptComponent& ScriptScenario::ScriptOf(GameObjectHandle object)
{
    return object.space->scripts.components.at(object.Get().GetComponent(Components::Script));
}

std::string ScriptScenario::Frame(double dt)
{
    clock += dt;
    testing::internal::CaptureStdout();
    game.UpdateSystems(dt, clock);
    game.rootSpace.DeleteDestroyedTree(game);
    // The frame's profile names scripts by texts that the game owns: it ends with the frame, as in the loop.
    Debug::TakeProfile();
    // Log lines up to Warning share the stream; the tests read them through the log capture.
    std::istringstream captured(testing::internal::GetCapturedStdout());
    std::string printed;
    for (std::string line; std::getline(captured, line);)
    {
        if (!line.starts_with("["))
        {
            printed += line + "\n";
        }
    }
    return printed;
}

std::string ScriptScenario::Run(const std::string& chunk)
{
    const int top = lua_gettop(L());
    std::string error;
    if (luaL_dostring(L(), chunk.c_str()) != LUA_OK)
    {
        error = lua_tostring(L(), -1);
    }
    lua_settop(L(), top);
    return error;
}

std::string ScriptScenario::Outcome(const std::string& chunk)
{
    const std::string wrapped = "local ok, result = pcall(function() " + chunk +
                                " end) return (tostring(result):gsub('^%[string \".-\"%]:%d+: ', ''))";
    const int top = lua_gettop(L());
    luaL_dostring(L(), wrapped.c_str());
    std::string outcome = lua_tostring(L(), -1);
    lua_settop(L(), top);
    return outcome;
}

std::vector<std::string> ScriptScenario::ErrorHeads() const
{
    std::vector<std::string> heads;
    for (const std::string& error : Errors())
    {
        heads.push_back(error.substr(0, error.find('\n')));
    }
    return heads;
}
