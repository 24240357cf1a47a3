// The audio system in a running game, on the silent output and the test's own clock, so that a channel's
// position tells exactly whether it played: the game's pause against a script's, and sounds that stop with
// their object and with their level.

#include "Audio/AudioSystem.h"
#include "Components/AudioComponent.h"
#include "Support/ScriptScenario.h"
#include "Support/SoundWriters.h"

namespace
{

using Platform::SoundResult;

class AudioGame : public ScriptScenario
{
protected:
    AudioGame()
    {
        game.audio.options.deviceName = "Quellmar test: no such device";
        game.audio.options.clock = [this] { return clock; };
        SoundFileShape second;
        second.seconds = 1.0;
        WriteSoundFile((data.Path() / "Loop.wav").string(), second);
    }

    // A new object of the root Space whose component plays Loop.wav for ever.
    Platform::ChannelHandle Looping(bool music, GameObjectHandle* made = nullptr)
    {
        const GameObjectHandle object = game.rootSpace.CreateObject();
        Components::AudioComponent& audio =
            *game.rootSpace.audio.components.Find(object.Get().AddComponent(Components::Audio));
        game.audio.SetSource(audio, "Loop.wav", false);
        game.audio.Play(audio, music, false, true, -1);
        if (made != nullptr)
        {
            *made = object;
        }
        return audio.channel;
    }

    // The channel of the root Space's one audio component.
    Platform::ChannelHandle OnlyChannel()
    {
        EXPECT_EQ(game.rootSpace.audio.components.size(), 1u);
        return game.rootSpace.audio.components.begin()->channel;
    }

    double Position(Platform::ChannelHandle channel)
    {
        double seconds = -1.0;
        EXPECT_EQ(game.audio.system->GetPosition(channel, seconds), SoundResult::Ok);
        return seconds;
    }

    bool Plays(Platform::ChannelHandle channel)
    {
        bool playing = false;
        return game.audio.system->IsPlaying(channel, playing) == SoundResult::Ok && playing;
    }
};

// Lua runs before audio in a frame, so the game's pause wins over the script's unpause of the same frame.
TEST_F(AudioGame, TheGamesPauseSilencesBothGroupsOverAScriptsUnpause)
{
    Write("Unpause.lua", "while true do Audio:SetPause(false) wait() end");
    Attach("Unpause.lua");
    const Platform::ChannelHandle music = Looping(true);
    const Platform::ChannelHandle effects = Looping(false);
    game.paused = true;
    Frame(0.25);
    EXPECT_EQ(Position(music), 0.0);
    EXPECT_EQ(Position(effects), 0.0);
    game.paused = false;
    Frame(0.25);
    EXPECT_NEAR(Position(music), 0.25, 1e-3);
    EXPECT_NEAR(Position(effects), 0.25, 1e-3);
    EXPECT_EQ(log.Messages("Audio", LogLevel::Error), std::vector<std::string>{});
}

TEST_F(AudioGame, ALoopingSoundStopsWithItsObjectAndWithItsLevel)
{
    GameObjectHandle doomed;
    const Platform::ChannelHandle kept = Looping(false);
    const Platform::ChannelHandle destroyed = Looping(true, &doomed);
    doomed.Get().Destroy();
    Frame(0.1);
    EXPECT_TRUE(Plays(kept));
    EXPECT_FALSE(Plays(destroyed));

    Write("Levels/Loop.lvl",
          "return { { Name = 'Looper', Audio = { Source = 'Loop.wav' }, Script = 'Looper.lua' } }");
    Write("Looper.lua", "GameObject.Audio:Play(true, false, true)");
    ASSERT_EQ(Run("MainSpace:LoadLevel('Levels/Loop.lvl')"), "");
    game.rootSpace.LoadScheduledLevels(game);
    Frame(0.1);
    const Platform::ChannelHandle first = OnlyChannel();
    EXPECT_FALSE(Plays(kept));
    EXPECT_TRUE(Plays(first));
    ASSERT_EQ(Run("MainSpace:LoadLevel('Levels/Loop.lvl')"), "");
    game.rootSpace.LoadScheduledLevels(game);
    Frame(0.1);
    EXPECT_FALSE(Plays(first));
    EXPECT_TRUE(Plays(OnlyChannel()));
}

} // namespace
