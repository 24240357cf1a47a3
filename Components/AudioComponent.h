#pragma once

// A sound that an object plays: one loaded sound and the channel of its latest play, both handles of the
// sound library, which the audio system owns and drives. Nothing follows the transform, since all sound
// is unplaced; the owner gets one anyway, as every component that stands in the world does.

#include "Components/Component.h"
#include "Components/Handle.h"
#include "Platform/SoundHandles.h"

#include <cstdint>
#include <string>

namespace Components
{

class AudioComponent : public Component
{
public:
    // Gives the owner a transform if it has none.
    explicit AudioComponent(GameObjectHandle ownerHandle);

    Handle transform;
    // Owned: released when the source changes and when the object is destroyed.
    Platform::SoundHandle sound;
    Platform::ChannelHandle channel;
    // Of the latest checked call on the channel.
    Platform::SoundResult result = Platform::SoundResult::Ok;
    // The name last given, kept even when it failed to load.
    std::string source;
    // Applied at each play; a value outside [0, 1] is kept and read back but never applied.
    float volume = 1.0f;
    uint32_t slot = 0;
};

} // namespace Components
