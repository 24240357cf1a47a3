// The object model's costs: resolving handles, a level's worth of objects made and swept, world transforms,
// and the memory that one object with a transform takes.

#include "AllocationCounter.h"
#include "Components/Space.h"
#include "Core/Game.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <random>

namespace
{

struct Element
{
    explicit Element(int elementValue) : value(elementValue) {}

    int value;
    bool destroyed = false;
    uint32_t slot = 0;
};

// Resolves live handles in shuffled order, so the slot table is read as a system following links would.
void SlotmapFindShuffled(benchmark::State& state)
{
    const auto count = static_cast<size_t>(state.range(0));
    Slotmap<Element> map;
    std::vector<Handle> handles;
    for (size_t index = 0; index < count; ++index)
    {
        handles.push_back(map.Insert(static_cast<int>(index)));
    }
    std::shuffle(handles.begin(), handles.end(), std::mt19937(1));
    size_t next = 0;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(map.Find(handles[next]));
        next = next + 1 == count ? 0 : next + 1;
    }
}
BENCHMARK(SlotmapFindShuffled)->Arg(10000)->Arg(1000000);

// Handles of erased elements whose slots were reused: every resolve fails on the generation.
void SlotmapFindStale(benchmark::State& state)
{
    constexpr size_t kCount = 10000;
    Slotmap<Element> map;
    std::vector<Handle> stale;
    for (size_t index = 0; index < kCount; ++index)
    {
        stale.push_back(map.Insert(static_cast<int>(index)));
    }
    for (const Handle handle : stale)
    {
        map.Erase(handle);
    }
    for (size_t index = 0; index < kCount; ++index)
    {
        map.Insert(static_cast<int>(index));
    }
    std::shuffle(stale.begin(), stale.end(), std::mt19937(2));
    size_t next = 0;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(map.Find(stale[next]));
        next = next + 1 == kCount ? 0 : next + 1;
    }
}
BENCHMARK(SlotmapFindStale);

constexpr int kCycleObjects = 100000;

void CreateDestroyCycle(Core::Game& game)
{
    Space& space = game.rootSpace;
    for (int index = 0; index < kCycleObjects; ++index)
    {
        space.CreateObject().Get().AddComponent(Components::Transform);
    }
    space.DestroyAllObjects();
    space.DeleteDestroyed(game);
}

// 100k objects with transforms created, destroyed and deleted in a space that keeps its grown arrays.
void ObjectCreateDestroy(benchmark::State& state)
{
    Core::Game game(nullptr, Core::GameSettings{});
    CreateDestroyCycle(game);
    for (auto _ : state)
    {
        CreateDestroyCycle(game);
    }
    benchmark::DoNotOptimize(game.rootSpace.objects.size());
}
BENCHMARK(ObjectCreateDestroy)->Unit(benchmark::kMillisecond);

// The same in a fresh space, whose arrays grow on the way.
void ObjectCreateDestroyFirstCycle(benchmark::State& state)
{
    for (auto _ : state)
    {
        Core::Game game(nullptr, Core::GameSettings{});
        const auto start = std::chrono::steady_clock::now();
        CreateDestroyCycle(game);
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(elapsed.count());
    }
}
BENCHMARK(ObjectCreateDestroyFirstCycle)->UseManualTime()->Unit(benchmark::kMillisecond);

// World position and rotation of 10k transforms in trees of depth up to 8, read in array order.
void TransformWorld(benchmark::State& state)
{
    constexpr int kTransforms = 10000;
    constexpr int kDepth = 8;
    Core::Game game(nullptr, Core::GameSettings{});
    Space& space = game.rootSpace;
    std::mt19937 random(3);
    std::vector<Handle> previousLevel;
    for (int index = 0; index < kTransforms; ++index)
    {
        const GameObjectHandle object = space.CreateObject();
        const Handle transform = object.Get().AddComponent(Components::Transform);
        Components::TransformComponent& component = space.transforms.components.at(transform);
        component.position = Vec2{static_cast<float>(index % 97), static_cast<float>(index % 13)};
        component.rotation = static_cast<float>(index % 31) * 0.1f;
        if (index % kDepth != 0)
        {
            component.SetParent(previousLevel[random() % previousLevel.size()], true);
        }
        else
        {
            previousLevel.clear();
        }
        previousLevel.push_back(transform);
    }
    const uint64_t allocationsBefore = AllocationCount();
    for (auto _ : state)
    {
        for (const Components::TransformComponent& transform : space.transforms.components)
        {
            benchmark::DoNotOptimize(transform.GetWorldPosition());
            benchmark::DoNotOptimize(transform.GetWorldRotation());
        }
    }
    state.counters["allocations"] = static_cast<double>(AllocationCount() - allocationsBefore);
    state.SetItemsProcessed(state.iterations() * kTransforms);
    space.Destroy(game);
}
BENCHMARK(TransformWorld)->Unit(benchmark::kMicrosecond);

// What one object with a transform costs: both elements, their two slot entries and the name's heap block.
void BytesPerObject(benchmark::State& state)
{
    const uint64_t before = AllocatedBytes();
    {
        const GameObject unnamed(GameObjectHandle{});
        benchmark::DoNotOptimize(unnamed.name.data());
    }
    const uint64_t nameBytes = AllocatedBytes() - before;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(nameBytes);
    }
    state.counters["bytes"] =
        static_cast<double>(sizeof(GameObject) + sizeof(Components::TransformComponent) +
                            2 * sizeof(Slotmap<GameObject>::SlotEntry) + nameBytes);
    state.counters["nameBytes"] = static_cast<double>(nameBytes);
}
BENCHMARK(BytesPerObject)->Iterations(1);

} // namespace
