#include "Platform/SoundLibrary.h"
#include "Support/SoundWriters.h"
#include "Support/TempFolder.h"

#include <AL/al.h>
#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace Platform;
using Format = SoundFileFormat;
using R = SoundResult;

// The silent output renders 8000 frames a second: no sound can be placed finer than one of them.
constexpr double kFrame = 1.0 / 8000;

// A library on the silent output whose clock moves only when the test steps it.
struct SteppedLibrary
{
    explicit SteppedLibrary(size_t decodeCapBytes = size_t{512} << 20)
        : library({.decodeCapBytes = decodeCapBytes, .clock = [this] { return now; }})
    {
        library.SetOutput(SoundOutput::NoSound);
        EXPECT_EQ(library.Init(512), R::Ok);
    }
    // Updates at most 1/20 s apart, as a game's frames would, unless told otherwise.
    void Advance(double seconds, double mostPerUpdate = 0.05)
    {
        for (double step = 0; seconds > 1e-9; seconds -= step)
        {
            step = std::min(seconds, mostPerUpdate);
            now += step;
            library.Update();
        }
    }
    SoundHandle Load(const std::string& path, bool streamed = false, SoundResult expected = R::Ok)
    {
        SoundHandle sound;
        EXPECT_EQ(streamed ? library.CreateStream(path.c_str(), sound)
                           : library.CreateSound(path.c_str(), sound),
                  expected);
        return sound;
    }
    ChannelHandle Play(SoundHandle sound, bool paused = false, ChannelGroupHandle group = {})
    {
        ChannelHandle channel;
        EXPECT_EQ(library.PlaySound(sound, group, paused, channel), R::Ok);
        return channel;
    }
    double Position(ChannelHandle channel)
    {
        double seconds = -1;
        EXPECT_EQ(library.GetPosition(channel, seconds), R::Ok);
        return seconds;
    }
    SoundResult Playing(ChannelHandle channel)
    {
        bool playing = false;
        return library.IsPlaying(channel, playing);
    }

    double now = 0;
    SoundLibrary library;
};

// A 440 Hz tone at 16 kHz, or noise when cut short, which compresses worst so that a cut lands early.
std::string WriteSound(const TempFolder& folder, const std::string& name, Format format, double seconds,
                       std::optional<size_t> cutToBytes = {}, int channels = 1)
{
    const std::string path = folder.PathOf(name + ExtensionOf(format));
    WriteSoundFile(path, {.format = format,
                          .channels = channels,
                          .seconds = seconds,
                          .noise = cutToBytes.has_value(),
                          .cutToBytes = cutToBytes});
    return path;
}

// Read after a library call made the library's context current. OpenAL Soft names sources with small
// numbers.
ALuint ThePlayingSource()
{
    ALuint found = 0;
    for (ALuint source = 1; source < 4096; ++source)
    {
        ALint state = 0;
        if (alIsSource(source) && (alGetSourcei(source, AL_SOURCE_STATE, &state), state == AL_PLAYING))
        {
            EXPECT_EQ(found, 0u) << "more than one source plays";
            found = source;
        }
    }
    return found;
}

TEST(SoundLibrary, EveryFormatPlaysInTimeAndEndsAfterItsRepeats)
{
    // Plays 0: for ever.
    const struct
    {
        bool normal;
        int count;
        bool thenOff;
        int plays;
    } loops[] = {{false, -1, false, 1},
                 {true, -1, false, 0},
                 {true, 0, false, 1},
                 {true, 2, false, 3},
                 {true, 2, true, 1}};
    TempFolder folder;
    for (const Format format : {Format::Wav, Format::Flac, Format::OggVorbis, Format::Opus, Format::Mp3})
    {
        const std::string path = WriteSound(folder, "tone", format, 0.4);
        const double length = static_cast<double>(CountDecodedFrames(path)) / 16000;
        for (const bool streamed : {false, true})
        {
            for (const auto& loop : loops)
            {
                SCOPED_TRACE(path + (streamed ? " streamed, " : ", ") + std::to_string(loop.count));
                SteppedLibrary sound;
                const ChannelHandle channel = sound.Play(sound.Load(path, streamed), true);
                if (loop.normal)
                {
                    sound.library.SetMode(channel, LoopMode::Normal);
                    sound.library.SetLoopCount(channel, loop.count);
                }
                if (loop.thenOff)
                {
                    sound.library.SetMode(channel, LoopMode::Off);
                }
                sound.library.SetPaused(channel, false);
                sound.Advance(0.1);
                EXPECT_NEAR(sound.Position(channel), 0.1, 1e-9);
                sound.Advance((loop.plays > 0 ? loop.plays : 3) * length - 0.1 - 2 * kFrame);
                ASSERT_EQ(sound.Playing(channel), R::Ok);
                EXPECT_NEAR(sound.Position(channel), length - 2 * kFrame, kFrame);
                sound.Advance(4 * kFrame);
                EXPECT_EQ(sound.Playing(channel), loop.plays > 0 ? R::InvalidHandle : R::Ok);
            }
        }
    }
}

TEST(SoundLibrary, GainAndPitchAreTheChannelsTimesTheGroupsAndRefuseWhatIsntANumber)
{
    const struct
    {
        float volume, groupVolume, pitch, groupPitch, gain, sourcePitch;
    } rows[] = {{0.5f, 0.5f, 2, 0.5f, 0.25f, 1},
                {2, 1.5f, 1, 3, 3, 3},
                {-1, 1, 0, 1, 0, 0},
                {1e30f, 1e30f, 1e30f, 1e30f, FLT_MAX, FLT_MAX}};
    TempFolder folder;
    const std::string path = WriteSound(folder, "tone", Format::Wav, 1);
    for (const auto& row : rows)
    {
        SteppedLibrary sound;
        ChannelGroupHandle group;
        sound.library.CreateChannelGroup("effects", group);
        const ChannelHandle channel = sound.Play(sound.Load(path), false, group);
        EXPECT_EQ(sound.library.SetVolume(channel, row.volume), R::Ok);
        EXPECT_EQ(sound.library.SetVolume(group, row.groupVolume), R::Ok);
        EXPECT_EQ(sound.library.SetPitch(channel, row.pitch), R::Ok);
        EXPECT_EQ(sound.library.SetPitch(group, row.groupPitch), R::Ok);
        for (const float bad : {NAN, INFINITY, -INFINITY, -0.5f})
        {
            const R refusal = std::isfinite(bad) ? R::InvalidParam : R::InvalidFloat;
            EXPECT_EQ(sound.library.SetPitch(channel, bad), refusal) << bad;
            EXPECT_EQ(sound.library.SetPitch(group, bad), refusal) << bad;
            EXPECT_EQ(sound.library.SetVolume(channel, bad), std::isfinite(bad) ? R::Ok : R::InvalidFloat);
            EXPECT_EQ(sound.library.SetVolume(channel, row.volume), R::Ok);
        }
        EXPECT_EQ(sound.library.SetLoopCount(channel, -2), R::InvalidParam);
        float pitch = 0;
        EXPECT_EQ(sound.library.GetPitch(channel, pitch), R::Ok);
        EXPECT_EQ(pitch, row.pitch);
        ALfloat gain = -1, sourcePitch = -1;
        alGetSourcef(ThePlayingSource(), AL_GAIN, &gain);
        alGetSourcef(ThePlayingSource(), AL_PITCH, &sourcePitch);
        EXPECT_EQ(gain, row.gain) << row.volume;
        EXPECT_EQ(sourcePitch, row.sourcePitch) << row.pitch;
        if (row.sourcePitch <= 3)
        {
            sound.Advance(0.1);
            EXPECT_NEAR(sound.Position(channel), 0.1 * row.sourcePitch, 1e-9) << row.pitch;
        }
    }
}

TEST(SoundLibrary, AChannelIsPausedWhileItOrItsGroupIsAndTheOldestGivesWayWhenAllPlay)
{
    TempFolder folder;
    SteppedLibrary sound;
    const SoundHandle handle = sound.Load(WriteSound(folder, "tone", Format::Wav, 1));
    ChannelGroupHandle group;
    sound.library.CreateChannelGroup("effects", group);
    sound.library.SetPaused(group, true);
    const ChannelHandle channel = sound.Play(handle, false, group);
    sound.Advance(0.1);
    EXPECT_EQ(sound.Position(channel), 0) << "played into a paused group";
    sound.library.SetPaused(channel, true);
    sound.library.SetPaused(group, false);
    sound.Advance(0.1);
    EXPECT_EQ(sound.Position(channel), 0) << "paused itself";
    sound.library.SetPaused(channel, false);
    sound.Advance(0.1);
    EXPECT_NEAR(sound.Position(channel), 0.1, 1e-9);

    std::vector<ChannelHandle> channels = {channel};
    for (int play = 1; play < 600; ++play)
    {
        channels.push_back(sound.Play(handle, play % 2 == 0));
    }
    sound.Advance(0.1);
    for (size_t play = 0; play < channels.size(); ++play)
    {
        EXPECT_EQ(sound.Playing(channels[play]), play < 600 - 512 ? R::InvalidHandle : R::Ok) << play;
    }
}

TEST(SoundLibrary, ReleasedAndReplayedSoundsLeaveStaleChannels)
{
    TempFolder folder;
    const std::string path = WriteSound(folder, "tone", Format::OggVorbis, 3);
    SteppedLibrary sound, other;
    const SoundHandle decoded = sound.Load(path), streamed = sound.Load(path, true);
    const ChannelHandle decodedChannel = sound.Play(decoded);
    const ChannelHandle firstStreamChannel = sound.Play(streamed);
    const ChannelHandle streamChannel = sound.Play(streamed);
    EXPECT_EQ(sound.Playing(firstStreamChannel), R::InvalidHandle) << "a stream plays once at a time";
    // Eight times as fast, the stream plays out its queue between two Updates and must go on all the same.
    sound.library.SetPitch(streamChannel, 8);
    sound.Advance(0.25, 0.25);
    other.Play(other.Load(path));
    EXPECT_NEAR(sound.Position(decodedChannel), 0.25, 1e-9)
        << "asked while another library's context was current";
    EXPECT_EQ(sound.Playing(streamChannel), R::Ok);
    EXPECT_EQ(sound.library.ReleaseSound(decoded), R::Ok);
    EXPECT_EQ(sound.library.ReleaseSound(streamed), R::Ok);
    for (const ChannelHandle stale : {decodedChannel, streamChannel, ChannelHandle{}})
    {
        double seconds = 0;
        EXPECT_EQ(sound.Playing(stale), R::InvalidHandle);
        EXPECT_EQ(sound.library.SetPaused(stale, false), R::InvalidHandle);
        EXPECT_EQ(sound.library.GetPosition(stale, seconds), R::InvalidHandle);
        EXPECT_EQ(sound.library.Stop(stale), R::InvalidHandle);
    }
    for (const SoundHandle stale : {decoded, streamed, SoundHandle{}})
    {
        ChannelHandle channel;
        EXPECT_EQ(sound.library.PlaySound(stale, {}, false, channel), R::InvalidHandle);
        EXPECT_EQ(sound.library.ReleaseSound(stale), R::InvalidHandle);
    }
}

TEST(SoundLibrary, FilesThatCantPlayGiveTheirReasons)
{
    TempFolder folder;
    const std::string fifo = folder.PathOf("fifo.wav");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const std::string unreadable = folder.Write("unreadable.wav", {'R', 'I', 'F', 'F'});
    chmod(unreadable.c_str(), 0);
    const struct
    {
        std::string path;
        SoundResult sound, stream = sound;
        size_t decodeCapBytes = size_t{512} << 20;
    } rows[] = {
        {folder.PathOf("missing.wav"), R::FileNotFound},
        {"", R::FileNotFound},
        {folder.Path().string(), R::FileNotFound},
        {fifo, R::FileNotFound},
        {std::string(1 << 20, 'a'), R::FileNotFound},
        {unreadable, R::FileNotFound},
        {folder.Write("picture.wav", {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13}), R::Format},
        {folder.Write("empty.wav", {}), R::Format},
        {folder.Write("text.wav", {'h', 'e', 'l', 'l', 'o', '\n'}), R::Format},
        {WriteSound(folder, "cut", Format::Wav, 1, 30), R::FileBad},
        {WriteSound(folder, "cut", Format::OggVorbis, 1, 3000), R::FileBad},
        {WriteSound(folder, "cut", Format::Flac, 1, 1000), R::FileBad},
        {WriteSound(folder, "surround", Format::Wav, 0.1, {}, 6), R::Format},
        {WriteSound(folder, "tone", Format::Wav, 0.5), R::Memory, R::Ok, 1000},
    };
    for (const auto& row : rows)
    {
        // Root reads whatever the mode bits say.
        if (row.path == unreadable && geteuid() == 0)
        {
            continue;
        }
        SCOPED_TRACE(row.path.substr(0, 100));
        SteppedLibrary sound(row.decodeCapBytes);
        sound.Load(row.path, false, row.sound);
        sound.Load(row.path, true, row.stream);
    }
}

TEST(SoundLibrary, ADeviceThatDoesntOpenCountsNoneAndPlaysSilently)
{
    TempFolder folder;
    double now = 0;
    SoundLibrary missing({.deviceName = "No Such Device", .clock = [&] { return now; }});
    int count = -1;
    EXPECT_EQ(missing.GetNumDrivers(count), R::Ok);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(missing.Init(32), R::OutputInit);
    SoundHandle sound;
    ChannelHandle channel;
    bool playing = false;
    ASSERT_EQ(missing.CreateSound(WriteSound(folder, "tone", Format::Wav, 0.5).c_str(), sound), R::Ok);
    ASSERT_EQ(missing.PlaySound(sound, {}, false, channel), R::Ok);
    for (const auto& [time, result] : {std::pair{0.25, R::Ok}, {0.5, R::InvalidHandle}})
    {
        now = time;
        missing.Update();
        EXPECT_EQ(missing.IsPlaying(channel, playing), result) << time;
    }

    // The test processes choose OpenAL's null output, unless the caller chose another.
    if (const char* drivers = std::getenv("ALSOFT_DRIVERS");
        drivers != nullptr && drivers == std::string("null"))
    {
        SoundLibrary byDefault;
        EXPECT_EQ(byDefault.GetNumDrivers(count), R::Ok);
        EXPECT_GE(count, 1);
        EXPECT_EQ(byDefault.Init(512), R::Ok);
    }
}

} // namespace
