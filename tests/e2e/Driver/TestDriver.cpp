// A stand-in for main: the engine's own process set-up and Game, with a system that fails.
//   quellmar_test_driver init-fails     a system whose Initialise returns false, added on the main thread
//   quellmar_test_driver update-raises  a system that raises from Update on the game thread

#include "Core/Game.h"
#include "Core/Process.h"
#include "Debug/Logger.h"

#include <cstdio>
#include <string_view>

namespace
{

class FailingSystem final : public Core::System
{
public:
    explicit FailingSystem(bool startsUp) : initialises(startsUp) {}

    const char* Name() const override { return "Failing"; }
    bool Initialise(Core::Window*) override { return initialises; }
    void Update(Core::Game&, Space&, double, double, double) override
    {
        Logger::Raise("Failing", "Update failed on purpose");
    }
    void RegisterScriptTypes(Lua::LuaSystem&) override {}
    void ObjectsDestroyed(Core::Game&, Space&) override {}
    void Shutdown() override { std::puts("Shutdown must not run after a raise"); }

private:
    bool initialises;
};

} // namespace

int main(int argc, char** argv)
{
    Core::InstallProcessHandlers();
    const std::string_view mode = argc > 1 ? argv[1] : "";
    Core::GameSettings settings;
    Core::Game game(nullptr, settings);
    if (mode == "init-fails")
    {
        FailingSystem system(false);
        game.AddSystem(system, nullptr);
        return 0;
    }
    if (mode == "update-raises")
    {
        FailingSystem system(true);
        game.running = true;
        game.thread = std::thread(
            [&]
            {
                game.AddSystem(system, nullptr);
                game.GameLoop();
            });
        game.thread.join();
        std::puts("The main thread must not go on after a raise");
        return 0;
    }
    std::fputs("usage: quellmar_test_driver init-fails|update-raises\n", stderr);
    return 2;
}
