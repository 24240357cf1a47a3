#pragma once

// An in-process game for script tests: a temporary Data folder of scripts as the working directory, the
// systems started as the loop starts them, frames run through the loop's own per-frame calls at a dt the
// test chooses, and shutdown in the loop's order. Scripts print; each frame's standard output is captured
// at the descriptor and returned.

#include "Core/Game.h"
#include "Core/Window.h"
#include "Support/LogCapture.h"
#include "Support/TempFolder.h"

#include <gtest/gtest.h>
#include <string>

class ScriptScenario : public testing::Test
{
protected:
    // A windowed game also starts graphics, with the shipped shaders and font in its Data folder.
    explicit ScriptScenario(bool windowed = false);
    void SetUp() override;
    // Ends the game and checks that no script component or object was left holding references.
    void TearDown() override;

    // Writes a script file under Data.
    void Write(const std::string& name, const std::string& text) const;
    // A new object of the Space with a script component running the file; returns the object.
    GameObjectHandle Attach(const std::string& fileName, Space* space = nullptr);
    Components::ScriptComponent& ScriptOf(GameObjectHandle object);
    // One frame: clocks and system updates at dt, then the end-of-frame deletion. Returns what scripts
    // printed, without the log lines.
    std::string Frame(double dt);
    // Runs a chunk on the main state, as engine code would; returns its error or "".
    std::string Run(const std::string& chunk);
    // What a chunk returns, as a string, or its error without the position.
    std::string Outcome(const std::string& chunk);
    std::vector<std::string> Errors() const { return log.Messages("LuaSystem", LogLevel::Error); }
    // The first line of each LuaSystem Error.
    std::vector<std::string> ErrorHeads() const;

    lua_State* L() { return game.lua.state; }

    TempFolder data;
    ScopedWorkingDirectory cwd;
    std::unique_ptr<Core::Window> window;
    Core::Game game;
    LogCapture log;
    double clock = 0.0;
};
