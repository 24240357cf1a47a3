#include "Platform/SoundDecoder.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sndfile.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Platform
{

namespace
{

// Beyond any rate a sound file is made at; a header claiming more is damaged, and a stream's buffer of a
// quarter second is sized by the rate.
constexpr int kMostSampleRate = 768000;
constexpr size_t kFramesPerChunk = 4096;

// The bytes libsndfile reads: an open file (owned) or a block of memory (borrowed).
struct ByteSource
{
    int descriptor = -1;
    const uint8_t* memory = nullptr;
    sf_count_t size = 0;
    sf_count_t offset = 0;
};

ByteSource& SourceOf(void* userData)
{
    return *static_cast<ByteSource*>(userData);
}

sf_count_t LengthOf(void* userData)
{
    return SourceOf(userData).size;
}

sf_count_t Seek(sf_count_t offset, int whence, void* userData)
{
    ByteSource& source = SourceOf(userData);
    const sf_count_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? source.offset : source.size;
    if (offset < -base || offset > INT64_MAX - base)
    {
        return -1;
    }
    source.offset = base + offset;
    return source.offset;
}

sf_count_t ReadFromFile(const ByteSource& source, char* out, sf_count_t count)
{
    sf_count_t done = 0;
    while (done < count)
    {
        const ssize_t got = pread(source.descriptor, out + done, static_cast<size_t>(count - done),
                                  static_cast<off_t>(source.offset + done));
        if (got < 0 && errno == EINTR)
        {
            continue;
        }
        if (got <= 0)
        {
            break;
        }
        done += got;
    }
    return done;
}

sf_count_t Read(void* out, sf_count_t count, void* userData)
{
    ByteSource& source = SourceOf(userData);
    const sf_count_t left = source.offset < source.size ? source.size - source.offset : 0;
    const sf_count_t wanted = count < left ? count : left;
    if (wanted <= 0)
    {
        return 0;
    }
    sf_count_t got = wanted;
    if (source.memory != nullptr)
    {
        std::memcpy(out, source.memory + source.offset, static_cast<size_t>(wanted));
    }
    else
    {
        got = ReadFromFile(source, static_cast<char*>(out), wanted);
    }
    source.offset += got;
    return got;
}

sf_count_t RefuseWrite(const void*, sf_count_t, void*)
{
    return 0;
}

sf_count_t Tell(void* userData)
{
    return SourceOf(userData).offset;
}

SF_VIRTUAL_IO kByteSourceCalls = {LengthOf, Seek, Read, RefuseWrite, Tell};

// libsndfile's public codes 1 (unrecognised) and 4 (unsupported encoding) say the bytes aren't a sound this
// layer plays; every other code, public or internal, comes from a file it recognised and found damaged.
SoundResult ResultOfOpenError(int error)
{
    return error == SF_ERR_UNRECOGNISED_FORMAT || error == SF_ERR_UNSUPPORTED_ENCODING ? SoundResult::Format
                                                                                       : SoundResult::FileBad;
}

} // namespace

struct SoundDecoder::State
{
    ByteSource source;
    SF_INFO info = {};
    SNDFILE* file = nullptr;

    ~State()
    {
        if (file != nullptr)
        {
            sf_close(file);
        }
        if (source.descriptor >= 0)
        {
            close(source.descriptor);
        }
    }
};

namespace
{

SoundResult OpenOver(std::unique_ptr<SoundDecoder::State> state, std::unique_ptr<SoundDecoder>& decoder)
{
    if (state->source.size == 0)
    {
        return SoundResult::Format;
    }
    state->file = sf_open_virtual(&kByteSourceCalls, SFM_READ, &state->info, &state->source);
    if (state->file == nullptr)
    {
        return ResultOfOpenError(sf_error(nullptr));
    }
    const SF_INFO& info = state->info;
    if (info.channels < 1 || info.channels > 2 || info.samplerate < 1 || info.samplerate > kMostSampleRate)
    {
        return SoundResult::Format;
    }
    decoder = std::make_unique<SoundDecoder>(std::move(state));
    return SoundResult::Ok;
}

} // namespace

SoundDecoder::SoundDecoder(std::unique_ptr<State> decoderState) : state(std::move(decoderState))
{
}

SoundDecoder::~SoundDecoder() = default;

SoundResult SoundDecoder::OpenFile(const char* fileName, std::unique_ptr<SoundDecoder>& decoder)
{
    if (fileName == nullptr)
    {
        return SoundResult::FileNotFound;
    }
    auto state = std::make_unique<State>();
    // Non-blocking, so that opening a FIFO without a writer returns at once, to be refused below.
    state->source.descriptor = open(fileName, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    struct stat status = {};
    if (state->source.descriptor < 0 || fstat(state->source.descriptor, &status) != 0 ||
        !S_ISREG(status.st_mode))
    {
        return SoundResult::FileNotFound;
    }
    state->source.size = status.st_size;
    return OpenOver(std::move(state), decoder);
}

SoundResult SoundDecoder::OpenMemory(const uint8_t* bytes, size_t size,
                                     std::unique_ptr<SoundDecoder>& decoder)
{
    auto state = std::make_unique<State>();
    state->source.memory = bytes;
    state->source.size = static_cast<sf_count_t>(size);
    return OpenOver(std::move(state), decoder);
}

int SoundDecoder::Channels() const
{
    return state->info.channels;
}

int SoundDecoder::SampleRate() const
{
    return state->info.samplerate;
}

size_t SoundDecoder::Read(int16_t* samples, size_t frames)
{
    const sf_count_t got = sf_readf_short(state->file, samples, static_cast<sf_count_t>(frames));
    return got > 0 ? static_cast<size_t>(got) : 0;
}

bool SoundDecoder::Rewind()
{
    return sf_seek(state->file, 0, SEEK_SET) == 0;
}

SoundResult DecodeWhole(SoundDecoder& decoder, size_t capBytes, std::vector<int16_t>& samples)
{
    const size_t channels = static_cast<size_t>(decoder.Channels());
    const size_t capSamples = capBytes / sizeof(int16_t);
    std::vector<int16_t> decoded;
    try
    {
        // Read until the decoder has nothing more: the frame count in a header may be wrong by any amount.
        for (size_t frames = 1; frames > 0;)
        {
            const size_t used = decoded.size();
            decoded.resize(used + kFramesPerChunk * channels);
            frames = decoder.Read(decoded.data() + used, kFramesPerChunk);
            decoded.resize(used + frames * channels);
            if (decoded.size() > capSamples)
            {
                return SoundResult::Memory;
            }
        }
    }
    catch (const std::bad_alloc&)
    {
        return SoundResult::Memory;
    }
    if (decoded.empty())
    {
        return SoundResult::FileBad;
    }
    samples = std::move(decoded);
    return SoundResult::Ok;
}

} // namespace Platform
