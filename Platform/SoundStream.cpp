#include "Platform/SoundStream.h"

#include <algorithm>

namespace Platform
{

SoundResult SoundStream::Open(const char* fileName, std::unique_ptr<SoundStream>& stream)
{
    std::unique_ptr<SoundDecoder> decoder;
    if (const SoundResult opened = SoundDecoder::OpenFile(fileName, decoder); opened != SoundResult::Ok)
    {
        return opened;
    }
    auto made = std::make_unique<SoundStream>(std::move(decoder));
    if (!made->CreateBuffers())
    {
        return SoundResult::Memory;
    }
    int noRepeats = 0;
    int64_t firstFrame = 0;
    const size_t frames = made->DecodeNext(noRepeats, firstFrame);
    if (frames == 0)
    {
        return SoundResult::FileBad;
    }
    const ALuint buffer = made->idle[--made->idleCount];
    if (!made->Fill(buffer, frames))
    {
        return SoundResult::Memory;
    }
    made->firstBuffer = {buffer, firstFrame, static_cast<int64_t>(frames)};
    made->firstBufferReady = true;
    stream = std::move(made);
    return SoundResult::Ok;
}

SoundStream::SoundStream(std::unique_ptr<SoundDecoder> streamDecoder)
    : decoder(std::move(streamDecoder)), framesPerBuffer(std::max(1, decoder->SampleRate() / 4))
{
    scratch.resize(framesPerBuffer * static_cast<size_t>(decoder->Channels()));
}

SoundStream::~SoundStream()
{
    if (buffersMade)
    {
        alDeleteBuffers(static_cast<ALsizei>(kBuffers), buffers.data());
    }
}

void SoundStream::Start(ALuint source, int& repeatsLeft)
{
    if (firstBufferReady)
    {
        firstBufferReady = false;
        Queue(source, firstBuffer);
    }
    else
    {
        decoder->Rewind();
        nextFrame = 0;
    }
    Refill(source, repeatsLeft);
}

void SoundStream::Refill(ALuint source, int& repeatsLeft)
{
    ALint processed = 0;
    alGetSourcei(source, AL_BUFFERS_PROCESSED, &processed);
    for (; processed > 0 && queued > 0; --processed)
    {
        ALuint buffer = 0;
        alSourceUnqueueBuffers(source, 1, &buffer);
        idle[idleCount++] = queue[queueHead].buffer;
        queueHead = (queueHead + 1) % kBuffers;
        --queued;
    }
    while (FillAndQueue(source, repeatsLeft))
    {
    }
}

void SoundStream::Detach()
{
    for (; queued > 0; --queued)
    {
        idle[idleCount++] = queue[queueHead].buffer;
        queueHead = (queueHead + 1) % kBuffers;
    }
}

double SoundStream::Position(ALuint source) const
{
    ALint offset = 0;
    alGetSourcei(source, AL_SAMPLE_OFFSET, &offset);
    int64_t framesLeft = offset;
    for (size_t index = 0; index < queued; ++index)
    {
        const QueuedBuffer& part = queue[(queueHead + index) % kBuffers];
        if (framesLeft < part.frames)
        {
            return static_cast<double>(part.firstFrame + framesLeft) / decoder->SampleRate();
        }
        framesLeft -= part.frames;
    }
    return 0;
}

bool SoundStream::CreateBuffers()
{
    alGetError();
    alGenBuffers(static_cast<ALsizei>(kBuffers), buffers.data());
    buffersMade = alGetError() == AL_NO_ERROR;
    if (buffersMade)
    {
        idle = buffers;
        idleCount = kBuffers;
    }
    return buffersMade;
}

size_t SoundStream::DecodeNext(int& repeatsLeft, int64_t& firstFrame)
{
    size_t frames = decoder->Read(scratch.data(), framesPerBuffer);
    if (frames == 0 && repeatsLeft != 0 && decoder->Rewind())
    {
        repeatsLeft -= repeatsLeft > 0 ? 1 : 0;
        nextFrame = 0;
        frames = decoder->Read(scratch.data(), framesPerBuffer);
    }
    firstFrame = nextFrame;
    nextFrame += static_cast<int64_t>(frames);
    return frames;
}

bool SoundStream::FillAndQueue(ALuint source, int& repeatsLeft)
{
    if (idleCount == 0)
    {
        return false;
    }
    int64_t firstFrame = 0;
    const size_t frames = DecodeNext(repeatsLeft, firstFrame);
    if (frames == 0 || !Fill(idle[idleCount - 1], frames))
    {
        return false;
    }
    --idleCount;
    Queue(source, {idle[idleCount], firstFrame, static_cast<int64_t>(frames)});
    return true;
}

bool SoundStream::Fill(ALuint buffer, size_t frames)
{
    const ALenum format = decoder->Channels() == 2 ? AL_FORMAT_STEREO16 : AL_FORMAT_MONO16;
    const size_t bytes = frames * static_cast<size_t>(decoder->Channels()) * sizeof(int16_t);
    alGetError();
    alBufferData(buffer, format, scratch.data(), static_cast<ALsizei>(bytes), decoder->SampleRate());
    return alGetError() == AL_NO_ERROR;
}

void SoundStream::Queue(ALuint source, const QueuedBuffer& part)
{
    alSourceQueueBuffers(source, 1, &part.buffer);
    queue[(queueHead + queued) % kBuffers] = part;
    ++queued;
}

} // namespace Platform
