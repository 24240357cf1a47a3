#pragma once

// The engine system that owns the sound library and its two channel groups, "Music" and "Sound Effects".
// It plays nothing by itself: audio components play their sounds into one of the groups, and the Audio
// script table sets the groups' volume, pause and pitch. Every frame both groups are set to the game's
// pause, so minimising the window, losing focus or the Pause key silences the game, whatever a script set.
//
// A failed call of the library is logged, "FMOD error! (code) text", and nothing else happens: sound is
// never worth stopping a game for. A machine without a sound device plays into a silent output.

#include "Core/System.h"
#include "Platform/SoundHandles.h"
#include "Platform/SoundLibrary.h"

#include <memory>

namespace Components
{
class AudioComponent;
}

namespace Audio
{

class AudioSystem final : public Core::System
{
public:
    AudioSystem();
    ~AudioSystem() override;

    const char* Name() const override { return "Audio"; }
    // Runs every start step even after one failed, and always succeeds.
    bool Initialise(Core::Window* window) override;
    // Sets both groups to the game's pause and lets the library free ended channels and refill streams.
    void Update(Core::Game& game, Space& space, double dt, double spaceTime, double absoluteTime) override;
    // Makes the "Audio" component script type.
    void RegisterScriptTypes(Lua::LuaSystem& lua) override;
    // Stops and releases the sounds of the space's flagged audio components.
    void ObjectsDestroyed(Core::Game& game, Space& space) override;
    void Shutdown() override;

    // Logs the result unless it is Ok, and keeps it in `result`.
    void Check(Platform::SoundResult callResult);

    // What the component's script functions do, the checks of their arguments aside.
    void SetSource(Components::AudioComponent& audio, const char* name, bool stream);
    void Play(Components::AudioComponent& audio, bool music, bool paused, bool loop, int count);
    void Pause(Components::AudioComponent& audio, bool paused);
    void Stop(Components::AudioComponent& audio);
    void SetVolume(Components::AudioComponent& audio, float volume);
    void SetPitch(Components::AudioComponent& audio, float pitch);
    // 0 when the channel never played, ended, was stopped or taken by a newer play.
    float GetPitch(const Components::AudioComponent& audio);

    // Read by Initialise: tests name a device or step the silent output's clock.
    Platform::SoundLibraryOptions options;
    // Null before Initialise and after Shutdown.
    std::unique_ptr<Platform::SoundLibrary> system;
    Platform::SoundResult result = Platform::SoundResult::Ok;
    Platform::SpeakerMode speakerMode = Platform::SpeakerMode::Stereo;
    Platform::ChannelGroupHandle sfxGroup;
    Platform::ChannelGroupHandle musicGroup;

private:
    bool IsPlaying(const Components::AudioComponent& audio);
    // The component's own check: its result, the system's message.
    void CheckChannel(Components::AudioComponent& audio, Platform::SoundResult callResult);
};

} // namespace Audio
