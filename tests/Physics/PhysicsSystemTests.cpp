#include "Core/Game.h"
#include "Support/LogCapture.h"
#include "Support/PhysicsScene.h"
#include "Support/TempFolder.h"

#include <gtest/gtest.h>
#include <lua.hpp>

namespace
{

using namespace PhysicsScene;

// Reads where the ball is at the start of the second frame and ends the game, as Game.Quit would.
class Observer final : public Core::System
{
public:
    explicit Observer(GameObjectHandle observed) : ball(observed) {}

    const char* Name() const override { return "Observer"; }
    bool Initialise(Core::Window*) override { return true; }
    void Update(Core::Game& game, Space&, double, double, double) override
    {
        if (game.frame == 2)
        {
            seen = TransformOf(ball).position;
            game.running = false;
        }
    }
    void RegisterScriptTypes(Lua::LuaSystem&) override {}
    void ObjectsDestroyed(Core::Game&, Space&) override {}
    void Shutdown() override {}

    GameObjectHandle ball;
    Vec2 seen;
};

TEST(PhysicsSystem, TheGameStartsPhysicsBeforeLuaAndStepsTheRootSpace)
{
    TempFolder folder;
    folder.MakeFolder("Data");
    ScopedWorkingDirectory start(folder.Path() / "Data");
    Core::Game game{nullptr, Core::GameSettings{}};
    const GameObjectHandle ball = AddObject(game.rootSpace, Vec2{});
    AddBody(ball, Vec2{60.0f, 0.0f}).ignoreDrag = true;
    Observer observer(ball);
    game.AddSystem(observer, nullptr);
    game.running = true;
    LogCapture capture;
    game.GameLoop();

    ASSERT_EQ(game.systems.size(), 4u);
    EXPECT_EQ(game.systems[1], &game.physics);
    EXPECT_EQ(game.systems[2], &game.lua);
    EXPECT_EQ(game.systems[3], &game.audio);
    // The first frame loads the start level, so it steps by exactly 1/60 s; the failed load keeps the ball.
    EXPECT_FLOAT_EQ(observer.seen.x, 1.0f);
}

TEST(PhysicsSystem, DyingCollidersGiveUpTheirHandlerTablesAndOthersKeepThem)
{
    Core::Game game{nullptr, Core::GameSettings{}};
    game.AddSystem(game.physics, nullptr);
    game.AddSystem(game.lua, nullptr);
    lua_State* L = game.lua.state;
    auto newReference = [L]
    {
        lua_newtable(L);
        return luaL_ref(L, LUA_REGISTRYINDEX);
    };
    const GameObjectHandle doomed = AddObject(game.rootSpace, Vec2{});
    AddCircle(doomed, 1.0f).collisionEvents = newReference();
    const int32_t doomedReference = ColliderOf(doomed).collisionEvents;
    const GameObjectHandle keeper = AddObject(game.rootSpace, Vec2{});
    AddCircle(keeper, 1.0f).collisionEvents = newReference();
    const int32_t keptReference = ColliderOf(keeper).collisionEvents;
    const GameObjectHandle removed = AddObject(game.rootSpace, Vec2{});
    AddCircle(removed, 1.0f).collisionEvents = newReference();
    const int32_t removedReference = ColliderOf(removed).collisionEvents;
    removed.Get().RemoveComponent(Components::Collider);

    LogCapture capture;
    doomed.Get().Destroy();
    game.rootSpace.DeleteDestroyed(game);
    EXPECT_EQ(capture.Count(LogLevel::Error), 0u);
    EXPECT_NE(lua_rawgeti(L, LUA_REGISTRYINDEX, doomedReference), LUA_TTABLE) << "given back";
    EXPECT_NE(lua_rawgeti(L, LUA_REGISTRYINDEX, removedReference), LUA_TTABLE)
        << "a collider removed from a living object goes in the same sweep";
    EXPECT_EQ(lua_rawgeti(L, LUA_REGISTRYINDEX, keptReference), LUA_TTABLE);
    lua_settop(L, 0);
    EXPECT_EQ(ColliderOf(keeper).collisionEvents, keptReference);

    ColliderOf(keeper).collisionEvents = 0;
    game.rootSpace.Destroy(game);
    game.lua.Shutdown();
}

} // namespace
