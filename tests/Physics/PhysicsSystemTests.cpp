#include "Support/PhysicsScene.h"
#include "Support/ScriptScenario.h"

#include <lua.hpp>

namespace
{

using namespace PhysicsScene;

using PhysicsSystem = ScriptScenario;

TEST_F(PhysicsSystem, TheGameStartsPhysicsBeforeLuaAndStepsTheRootSpace)
{
    ASSERT_EQ(game.systems.size(), 3u);
    EXPECT_EQ(game.systems[0], &game.physics);
    EXPECT_EQ(game.systems[1], &game.lua);
    EXPECT_EQ(game.systems[2], &game.audio);
    const GameObjectHandle ball = AddObject(game.rootSpace, Vec2{});
    AddBody(ball, Vec2{60.0f, 0.0f}).ignoreDrag = true;
    Frame(1.0 / 60.0);
    EXPECT_FLOAT_EQ(TransformOf(ball).position.x, 1.0f);
}

TEST_F(PhysicsSystem, DyingCollidersGiveUpTheirHandlerTablesAndOthersKeepThem)
{
    auto newReference = [this]
    {
        lua_newtable(L());
        return luaL_ref(L(), LUA_REGISTRYINDEX);
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

    doomed.Get().Destroy();
    game.rootSpace.DeleteDestroyed(game);
    EXPECT_EQ(log.Count(LogLevel::Error), 0u);
    EXPECT_NE(lua_rawgeti(L(), LUA_REGISTRYINDEX, doomedReference), LUA_TTABLE) << "given back";
    EXPECT_NE(lua_rawgeti(L(), LUA_REGISTRYINDEX, removedReference), LUA_TTABLE)
        << "a collider removed from a living object goes in the same sweep";
    EXPECT_EQ(lua_rawgeti(L(), LUA_REGISTRYINDEX, keptReference), LUA_TTABLE);
    lua_settop(L(), 0);
    EXPECT_EQ(ColliderOf(keeper).collisionEvents, keptReference);
}

} // namespace
