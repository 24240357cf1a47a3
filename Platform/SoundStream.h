#pragma once

// A sound decoded while it plays. Four buffers of a quarter second each stay queued on the source of the
// stream's one channel; Update takes back those that played and refills them from the decoder. The stream
// keeps, for each queued buffer, where in the file it starts, so a position is exact across buffers and
// rewinds.
//
// At the end of the file the stream rewinds if the channel's repeats allow (-1: for ever; N > 0: N more
// times, counted down here), else it lets the queue run out, and the source stops at the last frame.

#include "Platform/SoundDecoder.h"
#include "Platform/SoundHandles.h"

#include <AL/al.h>
#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace Platform
{

class SoundStream
{
public:
    // Opens the file and decodes its first buffer at once, so that a file that can't play is refused here
    // with the same codes as a sound.
    static SoundResult Open(const char* fileName, std::unique_ptr<SoundStream>& stream);
    explicit SoundStream(std::unique_ptr<SoundDecoder> decoder);
    // Its source must have been detached first (AL_BUFFER 0), as OpenAL can't delete a queued buffer.
    ~SoundStream();
    SoundStream(const SoundStream&) = delete;
    SoundStream& operator=(const SoundStream&) = delete;

    // Queues the stream from its first frame on a source that has nothing queued.
    void Start(ALuint source, int& repeatsLeft);
    // Takes back the buffers the source has played and queues as many new ones as the file has left.
    void Refill(ALuint source, int& repeatsLeft);
    // Called once the source's queue was detached: every buffer is free again.
    void Detach();
    // Seconds from the start of the file to where the source is.
    double Position(ALuint source) const;

private:
    static constexpr size_t kBuffers = 4;

    struct QueuedBuffer
    {
        ALuint buffer = 0;
        int64_t firstFrame = 0;
        int64_t frames = 0;
    };

    bool CreateBuffers();
    // Decodes a buffer's worth into the scratch samples, rewinding at the end if the repeats allow, and
    // tells the file frame it starts at; 0 frames at the end.
    size_t DecodeNext(int& repeatsLeft, int64_t& firstFrame);
    bool FillAndQueue(ALuint source, int& repeatsLeft);
    bool Fill(ALuint buffer, size_t frames);
    void Queue(ALuint source, const QueuedBuffer& part);

    std::unique_ptr<SoundDecoder> decoder;
    std::array<ALuint, kBuffers> buffers = {};
    bool buffersMade = false;
    std::vector<int16_t> scratch;
    size_t framesPerBuffer = 0;
    // The frame of the file that the decoder reads next.
    int64_t nextFrame = 0;
    // Buffers in the source's queue, oldest first, in a ring.
    std::array<QueuedBuffer, kBuffers> queue = {};
    size_t queueHead = 0;
    size_t queued = 0;
    std::array<ALuint, kBuffers> idle = {};
    size_t idleCount = 0;
    // Holds the file's start from Open until the first Start queues it; later starts rewind.
    QueuedBuffer firstBuffer;
    bool firstBufferReady = false;
};

} // namespace Platform
