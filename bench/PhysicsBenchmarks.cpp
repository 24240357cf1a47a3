// The physics step on crowds of bouncing circles, alone and with a script handler on every collider, and ray
// queries against a thousand colliders, from the engine and from a script.

#include "AllocationCounter.h"
#include "BenchGame.h"
#include "Components/Space.h"
#include "Core/Game.h"
#include "Debug/Profile.h"
#include "Physics/ContactFinder.h"
#include "Physics/Raycast.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <lua.hpp>
#include <random>

namespace
{

struct Seat
{
    Handle transform;
    Vec2 position;
    Vec2 velocity;
};

// Circles of radius 0.5 with bodies, scattered over a square sized for about one contact per circle:
// n circles in area A touch in about n * n * pi / (2 * A) pairs.
std::vector<Seat> ScatterCircles(Space& space, int count, uint32_t seed)
{
    std::mt19937 random(seed);
    const float side = std::sqrt(static_cast<float>(count) * 3.14159265f / 2.0f);
    std::uniform_real_distribution<float> place(0.0f, side);
    std::uniform_real_distribution<float> speed(-2.0f, 2.0f);
    std::vector<Seat> seats;
    for (int index = 0; index < count; ++index)
    {
        GameObject& object = space.objects.at(space.CreateObject().handle);
        const Handle transform = object.AddComponent(Components::Transform);
        object.AddComponent(Components::Collider);
        const Handle body = object.AddComponent(Components::RigidBody);
        space.colliders.components.at(object.GetComponent(Components::Collider)).radius = 0.5f;
        seats.push_back(
            Seat{transform, Vec2{place(random), place(random)}, Vec2{speed(random), speed(random)}});
        space.rigidBodies.components.at(body).velocity = seats.back().velocity;
        space.transforms.components.at(transform).position = seats.back().position;
    }
    return seats;
}

void Reseat(Space& space, const std::vector<Seat>& seats)
{
    for (size_t index = 0; index < seats.size(); ++index)
    {
        space.transforms.components.at(seats[index].transform).position = seats[index].position;
        space.rigidBodies.components[static_cast<uint32_t>(index)].velocity = seats[index].velocity;
    }
}

// One step of a space of circles with gravity on, put back in its seats between steps (untimed), so every
// step meets the same crowd.
void PhysicsStepCircles(benchmark::State& state)
{
    Core::Game game(nullptr, Core::GameSettings{});
    Space& space = game.rootSpace;
    const std::vector<Seat> seats = ScatterCircles(space, static_cast<int>(state.range(0)), 11);
    Physics::PhysicsSystem& physics = game.physics;
    physics.gravity = Vec2{0.0f, -9.8f};

    Physics::ContactFinder finder;
    std::vector<Physics::Contact> contacts;
    finder.FindContacts(space, contacts);
    // As in the main loop, the step's profile blocks sum into the records of an open frame block.
    Debug::ProfileBlock frame("Root");
    physics.Step(space, 1.0f / 60.0f);
    const uint64_t allocationsBefore = AllocationCount();
    for (auto _ : state)
    {
        state.PauseTiming();
        Reseat(space, seats);
        state.ResumeTiming();
        physics.Step(space, 1.0f / 60.0f);
    }
    state.counters["contacts"] = static_cast<double>(contacts.size());
    state.counters["allocations"] = static_cast<double>(AllocationCount() - allocationsBefore);
    state.counters["colliderBytes"] = sizeof(Components::ColliderComponent);
    state.counters["bodyBytes"] = sizeof(Components::RigidBodyComponent);
    space.Destroy(game);
}
BENCHMARK(PhysicsStepCircles)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);

// A game whose one script runs the chunk at the first script update.
class ScriptedGame : public BenchGame
{
public:
    explicit ScriptedGame(const char* chunk) : BenchGame(BenchFiles{{"bench.lua", chunk}})
    {
        AttachScript("bench.lua");
    }
};

// The step of PhysicsStepCircles with a script handler connected to every collider, and the script update
// that runs the handlers it started: each contact starts two coroutines, one per side.
void PhysicsStepCirclesWithHandlers(benchmark::State& state)
{
    ScriptedGame scripted(R"lua(
        _G.Hits = 0
        local function Count(own, other, x, y) _G.Hits = _G.Hits + 1 end
        for _, object in ipairs(Space:AllObjects()) do
            if object:HasComponent("Collider") then object.Collider:ConnectCollision(Count) end
        end
    )lua");
    Core::Game& game = scripted.game;
    Space& space = game.rootSpace;
    const std::vector<Seat> seats = ScatterCircles(space, static_cast<int>(state.range(0)), 11);
    game.physics.gravity = Vec2{0.0f, -9.8f};
    scripted.UpdateScripts();

    Debug::ProfileBlock frame("Root");
    for (auto _ : state)
    {
        state.PauseTiming();
        Reseat(space, seats);
        state.ResumeTiming();
        game.physics.Step(space, 1.0f / 60.0f);
        scripted.UpdateScripts();
    }
    lua_State* L = game.lua.state;
    lua_getglobal(L, "Hits");
    state.counters["handlerRuns"] =
        static_cast<double>(lua_tointeger(L, -1)) / static_cast<double>(state.iterations());
    lua_pop(L, 1);
}
BENCHMARK(PhysicsStepCirclesWithHandlers)->Arg(1000)->Unit(benchmark::kMillisecond);

// Rays across a field of 1000 circles, each ray a tenth of the field long, from a fixed list of starts.
std::vector<std::pair<Vec2, Vec2>> RaysAcrossTheField()
{
    const float side = std::sqrt(1000.0f * 3.14159265f / 2.0f);
    std::mt19937 random(13);
    std::uniform_real_distribution<float> place(0.0f, side);
    std::uniform_real_distribution<float> direction(-side * 0.1f, side * 0.1f);
    std::vector<std::pair<Vec2, Vec2>> rays;
    for (int index = 0; index < 256; ++index)
    {
        rays.emplace_back(Vec2{place(random), place(random)}, Vec2{direction(random), direction(random)});
    }
    return rays;
}

void Raycast(benchmark::State& state)
{
    Core::Game game(nullptr, Core::GameSettings{});
    Space& space = game.rootSpace;
    ScatterCircles(space, 1000, 12);
    const std::vector<std::pair<Vec2, Vec2>> rays = RaysAcrossTheField();
    std::vector<Physics::RaycastHit> hits;
    size_t next = 0;
    size_t hitCount = 0;
    for (auto _ : state)
    {
        Physics::Raycast(space, rays[next].first, rays[next].second, 0, hits);
        hitCount += hits.size();
        next = (next + 1) % rays.size();
    }
    state.counters["hitsPerRay"] = static_cast<double>(hitCount) / static_cast<double>(state.iterations());
    space.Destroy(game);
}
BENCHMARK(Raycast)->Unit(benchmark::kMicrosecond);

// The same rays cast by a script through Physics:Raycast, one call per iteration, hit tables and their
// garbage included.
void RaycastFromScript(benchmark::State& state)
{
    ScriptedGame scripted(R"lua(
        local index = 0
        function _G.CastNext()
            index = index % #Rays + 1
            local ray = Rays[index]
            return select("#", Physics:Raycast(ray[1], ray[2], ray[3], ray[4]))
        end
    )lua");
    Core::Game& game = scripted.game;
    ScatterCircles(game.rootSpace, 1000, 12);
    lua_State* L = game.lua.state;
    const std::vector<std::pair<Vec2, Vec2>> rays = RaysAcrossTheField();
    lua_createtable(L, static_cast<int>(rays.size()), 0);
    for (size_t index = 0; index < rays.size(); ++index)
    {
        const auto& [start, along] = rays[index];
        const float values[] = {start.x, start.y, along.x, along.y};
        lua_createtable(L, 4, 0);
        for (int slot = 0; slot < 4; ++slot)
        {
            lua_pushnumber(L, values[slot]);
            lua_rawseti(L, -2, slot + 1);
        }
        lua_rawseti(L, -2, static_cast<lua_Integer>(index) + 1);
    }
    lua_setglobal(L, "Rays");
    scripted.UpdateScripts();

    size_t hitCount = 0;
    for (auto _ : state)
    {
        lua_getglobal(L, "CastNext");
        if (lua_pcall(L, 0, 1, 0) != LUA_OK)
        {
            state.SkipWithError(lua_tostring(L, -1));
            lua_pop(L, 1);
            break;
        }
        hitCount += static_cast<size_t>(lua_tointeger(L, -1));
        lua_pop(L, 1);
    }
    state.counters["hitsPerRay"] = static_cast<double>(hitCount) / static_cast<double>(state.iterations());
}
BENCHMARK(RaycastFromScript)->Unit(benchmark::kMicrosecond);

} // namespace
