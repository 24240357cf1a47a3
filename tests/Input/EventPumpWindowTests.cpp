#include "Core/Game.h"
#include "Core/Window.h"
#include "Input/InputSystem.h"
#include "Platform/Video.h"
#include "Support/InputEvents.h"
#include "Support/OffscreenWindow.h"
#include "Support/TempFolder.h"

#include <SDL.h>
#include <array>
#include <chrono>
#include <cstring>
#include <gtest/gtest.h>
#include <thread>

namespace
{

using Input::EventKind;
using Input::InputEvent;

SDL_Event WindowEvent(uint8_t kind, int32_t data1 = 0, int32_t data2 = 0)
{
    SDL_Event event = {};
    event.type = SDL_WINDOWEVENT;
    event.window.event = kind;
    event.window.data1 = data1;
    event.window.data2 = data2;
    return event;
}

SDL_Event Key(uint32_t type, SDL_Keycode keycode, uint8_t repeat = 0, uint16_t modifiers = 0)
{
    SDL_Event event = {};
    event.type = type;
    event.key.keysym.sym = keycode;
    event.key.keysym.mod = modifiers;
    event.key.repeat = repeat;
    return event;
}

SDL_Event Text(const char* text)
{
    SDL_Event event = {};
    event.type = SDL_TEXTINPUT;
    std::strncpy(event.text.text, text, sizeof(event.text.text) - 1);
    return event;
}

SDL_Event Button(uint32_t type, uint8_t button, int32_t x, int32_t y)
{
    SDL_Event event = {};
    event.type = type;
    event.button.button = button;
    event.button.x = x;
    event.button.y = y;
    return event;
}

SDL_Event Wheel(int32_t y, uint32_t direction)
{
    SDL_Event event = {};
    event.type = SDL_MOUSEWHEEL;
    event.wheel.y = y;
    event.wheel.direction = direction;
    return event;
}

SDL_Event DropEvent(uint32_t type, const char* text = nullptr)
{
    SDL_Event event = {};
    event.type = type;
    event.drop.file = text != nullptr ? SDL_strdup(text) : nullptr;
    return event;
}

// A real window whose events reach an input system through the pump, as on the main thread of a run.
class EventPump : public testing::Test
{
protected:
    EventPump() : window(OpenOffscreenWindow(800, 600)) {}

    // The showing may reach the pump late on a loaded machine: wait for it before settling.
    void SetUp() override
    {
        input.Initialise(window.get());
        window->Show();
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (input.incoming.Size() == 0 && std::chrono::steady_clock::now() < deadline)
        {
            input.Pump(false);
            SDL_Delay(1);
        }
        shown = Settle();
    }

    void TearDown() override { input.Shutdown(); }

    // Pumps until nothing more arrives for a while, then hands over what the window made.
    std::vector<std::string> Settle()
    {
        std::vector<std::string> arrived;
        const auto quietFor = std::chrono::milliseconds(30);
        auto lastArrival = std::chrono::steady_clock::now();
        while (std::chrono::steady_clock::now() - lastArrival < quietFor)
        {
            if (input.Pump(false) > 0)
            {
                lastArrival = std::chrono::steady_clock::now();
            }
            SDL_Delay(1);
        }
        input.TakeFrameEvents();
        InputEvent event;
        dropPoints.clear();
        while (input.frameEvents.Pop(event))
        {
            arrived.push_back(Describe(event));
            if (event.type == EventKind::FileDropped)
            {
                dropPoints.emplace_back(event.drop.x, event.drop.y);
            }
            Input::FreePath(event);
        }
        return arrived;
    }

    std::vector<std::string> Translate(std::vector<SDL_Event> events)
    {
        for (SDL_Event& event : events)
        {
            SDL_PushEvent(&event);
        }
        return Settle();
    }

    std::unique_ptr<Core::Window> window;
    Input::InputSystem input;
    std::vector<std::string> shown;
    // Where the drops among the events of the last Settle were let go.
    std::vector<std::pair<int32_t, int32_t>> dropPoints;
};

TEST_F(EventPump, EachPlatformEventBecomesItsEvents)
{
    ASSERT_FALSE(shown.empty());
    EXPECT_EQ(shown.front(), "SizeChanged 800,600,0") << "the first showing reports the size";
    SDL_Event motion = {};
    motion.type = SDL_MOUSEMOTION;
    motion.motion.x = 10;
    motion.motion.y = -20;
    using V = std::vector<std::string>;
    const struct
    {
        const char* name;
        std::vector<SDL_Event> events;
        V arrived;
    } rows[] = {
        {"quit", {SDL_Event{SDL_QUIT}}, {"Quit"}},
        {"close", {WindowEvent(SDL_WINDOWEVENT_CLOSE)}, {"Close"}},
        {"focus",
         {WindowEvent(SDL_WINDOWEVENT_FOCUS_GAINED), WindowEvent(SDL_WINDOWEVENT_FOCUS_LOST)},
         {"Activate true", "Activate false"}},
        {"the same size twice is reported once",
         {WindowEvent(SDL_WINDOWEVENT_SIZE_CHANGED, 1024, 700),
          WindowEvent(SDL_WINDOWEVENT_SIZE_CHANGED, 1024, 700)},
         {"SizeChanged 1024,700,0"}},
        {"minimised and restored",
         {WindowEvent(SDL_WINDOWEVENT_MINIMIZED), WindowEvent(SDL_WINDOWEVENT_RESTORED)},
         {"SizeChanged 0,0,0", "Minimize", "SizeChanged 800,600,0"}},
        {"only the first showing reports a size",
         {WindowEvent(SDL_WINDOWEVENT_SHOWN), WindowEvent(SDL_WINDOWEVENT_MOVED, 5, 5)},
         {}},
        {"a held key makes no repeats",
         {Key(SDL_KEYDOWN, SDLK_a), Key(SDL_KEYDOWN, SDLK_a, 1), Key(SDL_KEYUP, SDLK_a)},
         {"KeyDown 65,0,0", "KeyUp 65,0,0"}},
        {"both shifts are one key",
         {Key(SDL_KEYDOWN, SDLK_LSHIFT), Key(SDL_KEYDOWN, SDLK_RSHIFT), Key(SDL_KEYDOWN, SDLK_RALT)},
         {"KeyDown 160,0,0", "KeyDown 160,0,0", "KeyDown 165,0,0"}},
        {"F10 alone belongs to the window menu", {Key(SDL_KEYDOWN, SDLK_F10), Key(SDL_KEYUP, SDLK_F10)}, {}},
        {"F10 with Alt",
         {Key(SDL_KEYDOWN, SDLK_F10, 0, KMOD_LALT), Key(SDL_KEYUP, SDLK_F10, 0, KMOD_RALT)},
         {"KeyDown 121,0,0", "KeyUp 121,0,0"}},
        {"a key without a virtual key", {Key(SDL_KEYDOWN, SDLK_AUDIOPLAY)}, {}},
        {"one character per UTF-16 unit",
         {Text("a\xC3\xA9\xF0\x9F\x98\x80")},
         {"Char 97,0,0", "Char 233,0,0", "Char 55357,0,0", "Char 56832,0,0"}},
        {"editing keys type control characters",
         {Key(SDL_KEYDOWN, SDLK_RETURN), Key(SDL_KEYDOWN, SDLK_RETURN, 1), Key(SDL_KEYDOWN, SDLK_BACKSPACE),
          Key(SDL_KEYDOWN, SDLK_TAB, 1), Key(SDL_KEYDOWN, SDLK_ESCAPE), Key(SDL_KEYDOWN, SDLK_KP_ENTER)},
         {"KeyDown 13,0,0", "Char 13,0,0", "Char 13,0,0", "KeyDown 8,0,0", "Char 8,0,0", "Char 9,0,0",
          "KeyDown 27,0,0", "Char 27,0,0", "KeyDown 13,0,0", "Char 13,0,0"}},
        {"bad UTF-8", {Text("\xFF")}, {"Char 65533,0,0"}},
        {"motion", {motion}, {"MouseMove 10,-20,0"}},
        {"buttons are numbered left, right, middle",
         {Button(SDL_MOUSEBUTTONDOWN, SDL_BUTTON_LEFT, 1, 2),
          Button(SDL_MOUSEBUTTONDOWN, SDL_BUTTON_RIGHT, 3, 4),
          Button(SDL_MOUSEBUTTONUP, SDL_BUTTON_MIDDLE, 5, 6), Button(SDL_MOUSEBUTTONUP, SDL_BUTTON_X1, 7, 8)},
         {"MouseDown 1,2,1", "MouseDown 3,4,2", "MouseUp 5,6,3"}},
        {"wheel",
         {Wheel(1, SDL_MOUSEWHEEL_NORMAL), Wheel(-2, SDL_MOUSEWHEEL_NORMAL),
          Wheel(-1, SDL_MOUSEWHEEL_FLIPPED), Wheel(0, SDL_MOUSEWHEEL_NORMAL)},
         {"MouseWheel true", "MouseWheel false", "MouseWheel true"}},
    };
    for (const auto& row : rows)
    {
        EXPECT_EQ(Translate(row.events), row.arrived) << row.name;
    }
}

TEST_F(EventPump, DroppedFilesArePathsFromTheDataFolderSharingOneDropPoint)
{
    TempFolder data;
    ScopedWorkingDirectory cwd(data.Path());
    const std::string inside = (data.Path() / "Levels" / "A (1).lvl").string();
    const std::string outside = (data.Path().parent_path() / "Notes" / "a.txt").string();
    const std::vector<std::string> arrived =
        Translate({DropEvent(SDL_DROPBEGIN), DropEvent(SDL_DROPFILE, inside.c_str()),
                   DropEvent(SDL_DROPFILE, outside.c_str()), DropEvent(SDL_DROPCOMPLETE)});
    EXPECT_EQ(arrived,
              (std::vector<std::string>{"FileDropped Levels/A (1).lvl", "FileDropped ../Notes/a.txt"}));
    ASSERT_EQ(dropPoints.size(), 2u);
    EXPECT_EQ(dropPoints[0], dropPoints[1]);

    const std::vector<std::string> textOnly =
        Translate({DropEvent(SDL_DROPBEGIN), DropEvent(SDL_DROPTEXT, "words"), DropEvent(SDL_DROPCOMPLETE)});
    EXPECT_EQ(textOnly, std::vector<std::string>{"FileDropped (null)"});
}

TEST_F(EventPump, NothingArrivesBeforeStartOrAfterShutdown)
{
    input.Shutdown();
    SDL_Event close = WindowEvent(SDL_WINDOWEVENT_CLOSE);
    SDL_PushEvent(&close);
    SDL_Event drop = DropEvent(SDL_DROPFILE, "/tmp/a.txt");
    SDL_PushEvent(&drop);
    Input::InputSystem later;
    later.Initialise(window.get());
    later.Pump(false);
    later.TakeFrameEvents();
    EXPECT_EQ(later.frameEvents.Size(), 0u) << "what came before the start makes no event";
    later.Shutdown();
    input.Initialise(window.get());
}

TEST_F(EventPump, AWindowOperationFromAnotherThreadRunsInThePump)
{
    std::thread game(
        [&]
        {
            window->SetFullscreen(true);
            EXPECT_TRUE(window->fullscreen) << "the state changes at once on the calling thread";
            SDL_TLSCleanup();
        });
    game.join();
    EXPECT_EQ(SDL_GetWindowFlags(window->handle) & SDL_WINDOW_FULLSCREEN_DESKTOP, 0u);
    Settle();
    EXPECT_EQ(SDL_GetWindowFlags(window->handle) & SDL_WINDOW_FULLSCREEN_DESKTOP,
              SDL_WINDOW_FULLSCREEN_DESKTOP);
    window->SetFullscreen(false);
}

// Offscreen windows can't be minimised, so the request itself is checked: from the game thread it waits in
// the queue for the pump, which then serves it.
TEST_F(EventPump, LosingTheFocusInFullscreenPausesAndAsksToMinimise)
{
    window->SetFullscreen(true);
    Core::Game game(window.get(), Core::GameSettings{});
    std::thread gameThread(
        [&]
        {
            input.incoming.Push(MakeSwitch(EventKind::Activate, false));
            input.TakeFrameEvents();
            input.ProcessFrameEvents(game);
            input.DrainFrameEvents();
            SDL_TLSCleanup();
        });
    gameThread.join();
    EXPECT_TRUE(game.paused);
    std::array<SDL_Event, 8> queued{};
    const uint32_t operationType = Platform::WindowOperationEventType();
    const int count = SDL_PeepEvents(queued.data(), static_cast<int>(queued.size()), SDL_PEEKEVENT,
                                     operationType, operationType);
    ASSERT_EQ(count, 1);
    EXPECT_EQ(queued[0].user.code, static_cast<int32_t>(Core::Window::Operation::Minimise));
    Settle();
    EXPECT_EQ(SDL_PeepEvents(queued.data(), 1, SDL_PEEKEVENT, operationType, operationType), 0);
    window->SetFullscreen(false);
}

TEST(EventPumpShutdown, WakesABlockingPumpEveryTime)
{
    const std::unique_ptr<Core::Window> window = OpenOffscreenWindow();
    for (int round = 0; round < 1000; ++round)
    {
        Input::InputSystem input;
        input.Initialise(window.get());
        std::thread game(
            [&]
            {
                input.Shutdown();
                SDL_TLSCleanup();
            });
        input.Pump(true);
        game.join();
        EXPECT_EQ(input.window, nullptr);
    }
}

} // namespace
