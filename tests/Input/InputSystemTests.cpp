#include "Input/InputSystem.h"
#include "Support/InputEvents.h"
#include "Support/ScriptScenario.h"

#include <lua.hpp>

namespace
{

using Input::EventKind;
using Input::InputEvent;

constexpr int32_t kPause = 0x13;
constexpr int32_t kF1 = 0x70;
constexpr int32_t kF4 = 0x73;
constexpr int32_t kF5 = 0x74;
constexpr int32_t kF11 = 0x7A;

// The game's input steps around one frame's updates, as the loop runs them: take the events over, act on
// them, offer them to the scripts of every Space during the update, and drain them.
class InputEvents : public ScriptScenario
{
protected:
    void SetUp() override
    {
        ScriptScenario::SetUp();
        game.systems.insert(game.systems.begin(), &game.input);
        game.running = true;
        // The camera's view of an 800 by 600 window: its centre is the world origin.
        game.graphics.screenWidth = 800;
        game.graphics.screenHeight = 600;
        game.graphics.aspect = 0.75f;
    }

    std::string Deliver(const std::vector<InputEvent>& events)
    {
        for (const InputEvent& event : events)
        {
            game.input.incoming.Push(event);
        }
        game.input.TakeFrameEvents();
        game.input.ProcessFrameEvents(game);
        const std::string printed = Frame(1.0 / 60.0);
        game.input.DrainFrameEvents();
        return printed;
    }

    std::string Press(int32_t key) { return Deliver({MakeEvent(EventKind::KeyDown, key)}); }
};

TEST_F(InputEvents, ScriptsReceiveEachKindWithItsArguments)
{
    Write("Listen.lua", R"(
        Input.ConnectActivate(function(...) print("Activate", ...) end)
        Input.ConnectSizeChanged(function(w, h) print("SizeChanged", w, h, math.type(w)) end)
        Input.ConnectKeyDown(function(k) print("KeyDown", #k, k:byte()) end)
        Input.ConnectKeyUp(function(k) print("KeyUp", #k, k:byte()) end)
        Input.ConnectChar(function(c) print("Char", #c, c:byte()) end)
        Input.ConnectMouseMove(function(...) print("MouseMove", ...) end)
        Input.ConnectMouseDown(function(...) print("MouseDown", ...) end)
        Input.ConnectMouseUp(function(...) print("MouseUp", ...) end)
        Input.ConnectMouseWheel(function(...) print("MouseWheel", ...) end)
        Input.ConnectFileDropped(function(...) print("FileDropped", select("#", ...), ...) end)
        Input.ConnectMinimize(function(...) print("Minimize", select("#", ...)) end)
    )");
    Attach("Listen.lua");
    Frame(1.0 / 60.0);
    const int top = lua_gettop(L());
    const std::string printed = Deliver({
        MakeSwitch(EventKind::Activate, false),
        MakeEvent(EventKind::KeyDown, 0x1A0), // only the low byte reaches scripts
        MakeEvent(EventKind::KeyUp, 65),
        MakeEvent(EventKind::Char, 0x263A),
        MakeEvent(EventKind::MouseMove, 400, 300),
        MakeEvent(EventKind::MouseDown, 0, 0, 1),
        MakeEvent(EventKind::MouseUp, 800, 600, 3),
        MakeSwitch(EventKind::MouseWheel, true),
        MakeSwitch(EventKind::MouseWheel, false),
        MakeDrop("Levels/A (1).lvl", 400, 300),
        MakeDrop(nullptr, 1, 2),
        MakeEvent(EventKind::Minimize),
    });
    EXPECT_EQ(printed, "Activate\tfalse\n"
                       "KeyDown\t1\t160\n"
                       "KeyUp\t1\t65\n"
                       "Char\t1\t58\n"
                       "MouseMove\t0.0\t0.0\t400.0\t300.0\n"
                       "MouseDown\t-13.333333015442\t10.0\t1.0\t0.0\t0.0\n"
                       "MouseUp\t13.333333015442\t-10.0\t3.0\t800.0\t600.0\n"
                       "MouseWheel\t1.0\n"
                       "MouseWheel\t-1.0\n"
                       "FileDropped\t5\tLevels/A (1).lvl\t0.0\t0.0\t400.0\t300.0\n"
                       "FileDropped\t0\n"
                       "Minimize\t0\n");
    EXPECT_EQ(log.Messages("Input", LogLevel::Error),
              std::vector<std::string>{"File Drag-Drop event has no filename!"});
    // The game acts on a frame's events before scripts see any, so a new size moves this frame's points.
    EXPECT_EQ(Deliver({MakeEvent(EventKind::SizeChanged, 1200, 600), MakeEvent(EventKind::MouseMove, 0, 0)}),
              "SizeChanged\t1200\t600\tinteger\nMouseMove\t-20.0\t10.0\t0.0\t0.0\n");
    Deliver({MakeEvent(EventKind::SizeChanged, 0, 0), MakeEvent(EventKind::SizeChanged, -5, 300)});
    EXPECT_EQ(game.graphics.screenWidth, 1200u) << "a size with a side of 0 or less is ignored";
    EXPECT_EQ(lua_gettop(L()), top);
    EXPECT_TRUE(Errors().empty());
}

TEST_F(InputEvents, EverySpaceSeesEveryEventButAPausedSpaceMissesThemForGood)
{
    Space& child = game.rootSpace.CreateChild();
    Write("Root.lua", "Input.ConnectKeyDown(function(k) print('root', k) end)");
    Write("Child.lua", "Input.ConnectKeyDown(function(k) print('child', k) end)");
    Attach("Root.lua");
    Attach("Child.lua", &child);
    Frame(1.0 / 60.0);

    EXPECT_EQ(Deliver({MakeEvent(EventKind::KeyDown, 'A'), MakeEvent(EventKind::KeyDown, 'B')}),
              "child\tA\nchild\tB\nroot\tA\nroot\tB\n");
    child.paused = true;
    EXPECT_EQ(Press('C'), "root\tC\n");
    child.paused = false;
    EXPECT_EQ(Frame(1.0 / 60.0), "");
    EXPECT_EQ(Press('D'), "child\tD\nroot\tD\n");
}

// A close answered by a handler (even one that fails) is not requested; unanswered, the loop ends the game
// after the frame's update; a quit ends it at once.
TEST_F(InputEvents, ACloseHandlerInARunningSpaceKeepsTheGameGoing)
{
    Space& child = game.rootSpace.CreateChild();
    Write("Close.lua", "Input.ConnectClose(function() print('close') error('handler fails') end)");
    Attach("Close.lua", &child);
    Frame(1.0 / 60.0);
    game.SetPaused(true);
    EXPECT_EQ(Deliver({MakeEvent(EventKind::Close)}), "close\n");
    EXPECT_FALSE(game.input.closeRequested);
    EXPECT_FALSE(game.paused);
    EXPECT_EQ(ErrorHeads().size(), 1u);

    child.paused = true;
    EXPECT_EQ(Deliver({MakeEvent(EventKind::Close)}), "");
    EXPECT_TRUE(game.input.closeRequested) << "only paused spaces listen, so nobody answered";
    EXPECT_TRUE(game.running);
    Deliver({MakeEvent(EventKind::Quit)});
    EXPECT_FALSE(game.running);
}

// The full toggle sequence runs end to end (tests/e2e/InputDemoTests.cpp); F11 is the key it leaves out.
TEST_F(InputEvents, PauseTogglesAndKeyOrButtonReleasesDoNotEndIt)
{
    Press(kPause);
    EXPECT_TRUE(game.paused);
    Deliver({MakeEvent(EventKind::MouseUp, 1, 1, 1), MakeEvent(EventKind::KeyUp, 'A')});
    EXPECT_TRUE(game.paused);
    Press(kF11);
    EXPECT_FALSE(game.paused) << "F11 also ends a pause";
}

TEST_F(InputEvents, DebugKeysActOnlyWhenEnabled)
{
    Space& child = game.rootSpace.CreateChild();
    child.levelName = "Levels/Child.lvl";
    game.SetPaused(true);
    Press(kF1);
    Press(kF5);
    Press(kF4);
    EXPECT_FALSE(game.debugDraw);
    EXPECT_FALSE(game.rootSpace.IsLevelScheduled());
    EXPECT_EQ(game.rootSpace.firstChild.get(), &child);
    EXPECT_FALSE(game.paused) << "as ordinary keys they still end a pause";

    game.settings.debugKeys = true;
    game.SetPaused(true);
    Press(kF1);
    EXPECT_TRUE(game.debugDraw);
    EXPECT_FALSE(game.paused);
    Press(kF5);
    EXPECT_TRUE(game.rootSpace.levelScheduled);
    EXPECT_TRUE(child.levelScheduled);
    EXPECT_EQ(child.levelName, "Levels/Child.lvl");
    game.rootSpace.levelScheduled = false;
    Press(kF4);
    EXPECT_EQ(game.rootSpace.firstChild, nullptr) << "children go at once, before the frame's update";
    EXPECT_TRUE(game.rootSpace.levelScheduled);
    EXPECT_EQ(game.rootSpace.levelName, game.settings.level);
}

} // namespace
