#include "Components/Space.h"
#include "Core/Game.h"
#include "Support/LogCapture.h"

#include <gtest/gtest.h>

namespace
{

using Components::IComponentFactory;

class ComponentFactories : public testing::Test
{
protected:
    ~ComponentFactories() override { game.rootSpace.Destroy(game); }

    GameObject& NewObject(Space& owner) { return *owner.FindObject(owner.CreateObject()); }

    Core::Game game{nullptr, Core::GameSettings{}};
    Space& space = game.rootSpace;
};

TEST_F(ComponentFactories, EachTypeNumberReachesItsOwnFactory)
{
    const std::vector<IComponentFactory*> expected = {&space.transforms, &space.rigidBodies, &space.squares,
                                                      &space.sprites,    &space.textSprites, &space.particles,
                                                      &space.audio,      &space.colliders,   &space.scripts};
    for (int32_t type = 0; type < Components::kComponentTypeCount; ++type)
    {
        EXPECT_EQ(space.GetFactory(type), expected[static_cast<size_t>(type)]) << type;
    }
}

TEST_F(ComponentFactories, ComponentsGoFromAliveToFlaggedToGone)
{
    for (int32_t type = 0; type < Components::kComponentTypeCount; ++type)
    {
        IComponentFactory& factory = *space.GetFactory(type);
        const GameObjectHandle owner = space.CreateObject();
        const Handle first = factory.Create(owner);
        const Handle second = factory.Create(owner);
        EXPECT_EQ(factory.Count(), 2u);

        factory.Destroy(first);
        EXPECT_EQ(factory.Count(), 2u) << "a flagged component stays until the sweep";
        EXPECT_EQ(factory.DeleteDestroyed(), 1u);
        EXPECT_EQ(factory.Count(), 1u);

        LogCapture capture;
        factory.Destroy(first);
        EXPECT_EQ(capture.Messages("Component Factory", LogLevel::Warning),
                  std::vector<std::string>{"Tried to destroy a NULL component"})
            << type;
        factory.Destroy(second);
        EXPECT_EQ(factory.DeleteDestroyed(), 1u);
        EXPECT_EQ(factory.Count(), 0u);
    }
    EXPECT_EQ(space.transforms.components.Find(Handle{0, 1}), nullptr);
}

TEST_F(ComponentFactories, SweepsRunOnlyWhereAndWhenAnObjectWasDeleted)
{
    Space& other = space.CreateChild();
    GameObject& keeper = NewObject(space);
    keeper.AddComponent(Components::Sprite);
    const Handle removedSprite = keeper.GetComponent(Components::Sprite);
    keeper.RemoveComponent(Components::Sprite);
    keeper.AddComponent(Components::Sprite);
    EXPECT_NE(keeper.GetComponent(Components::Sprite), removedSprite);

    GameObject& otherObject = NewObject(other);
    otherObject.AddComponent(Components::Audio);
    otherObject.RemoveComponent(Components::Audio);

    // Nothing died: the flagged sprite is still an element and still resolves.
    EXPECT_EQ(space.DeleteDestroyed(game), 0u);
    ASSERT_NE(space.sprites.components.Find(removedSprite), nullptr);
    EXPECT_TRUE(space.sprites.components.Find(removedSprite)->destroyed);
    EXPECT_EQ(space.sprites.Count(), 2u);

    GameObject& doomed = NewObject(space);
    doomed.AddComponent(Components::Transform);
    doomed.AddComponent(Components::Script);
    doomed.Destroy();
    // One object, its two components and the sprite flagged earlier.
    EXPECT_EQ(space.DeleteDestroyed(game), 4u);
    EXPECT_EQ(space.sprites.components.Find(removedSprite), nullptr);
    EXPECT_EQ(space.sprites.Count(), 1u);
    EXPECT_EQ(other.audio.Count(), 1u) << "another space's flagged components wait for that space";
}

// Particle components move rather than copy, when their array grows and when the sweep fills a gap: the
// live particles go along, and the moved component has no pulses pending.
TEST_F(ComponentFactories, ParticleComponentsCarryTheirParticlesThroughMoves)
{
    using Components::Graphics::ParticleComponent;
    // The first two are moved by the growth that the fillers bring; the last fills the gap of the first.
    std::vector<Handle> handles;
    for (int i = 0; i < 3; ++i)
    {
        for (int filler = 0; i == 2 && filler < 100; ++filler)
        {
            NewObject(space).AddComponent(Components::Particle);
        }
        GameObject& object = NewObject(space);
        handles.push_back(object.AddComponent(Components::Particle));
        ParticleComponent& effect = *space.particles.components.Find(handles.back());
        effect.system.emitter = std::make_unique<Graphics::Particles::Emitters::EmitOnce>(i + 1, 100000);
        effect.system.pendingPulses = 4;
        effect.Update(space, 0.5f, 0.0f, 0.0f);
    }
    space.FindObject(space.particles.components.Find(handles[0])->owner)->Destroy();
    space.DeleteDestroyed(game);
    for (int i = 1; i < 3; ++i)
    {
        const ParticleComponent& effect = *space.particles.components.Find(handles[static_cast<size_t>(i)]);
        EXPECT_EQ(effect.system.liveCount, static_cast<uint32_t>(i + 1));
        EXPECT_EQ(effect.system.particles.life[i], 9.5f);
        EXPECT_EQ(effect.system.pendingPulses, 0);
        EXPECT_FALSE(effect.needsStart);
    }
}

} // namespace
