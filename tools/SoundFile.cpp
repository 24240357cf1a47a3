#include "SoundFile.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <sndfile.h>
#include <vector>

namespace Sound
{
namespace
{

class OpenFile
{
public:
    OpenFile(const std::string& path, int format, int channels) : info{}
    {
        info.samplerate = kSampleRate;
        info.channels = channels;
        info.format = format;
        file = sf_open(path.c_str(), SFM_WRITE, &info);
    }
    ~OpenFile()
    {
        if (file != nullptr)
        {
            sf_close(file);
        }
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    SNDFILE* Get() const { return file; }
    // Closes the file; false when libsndfile could not finish writing it.
    bool Close()
    {
        const int result = sf_close(file);
        file = nullptr;
        return result == 0;
    }

private:
    SF_INFO info;
    SNDFILE* file = nullptr;
};

// Writes a file through `write` under a temporary name and moves it over `path` when done. `write` may
// set `error` when it fails; otherwise libsndfile's last error is taken.
template <typename Write>
bool WriteReplacing(const std::string& path, int format, int channels, std::string& error, Write write)
{
    const std::string temporary = path + ".part";
    {
        OpenFile file(temporary, format, channels);
        if (file.Get() == nullptr)
        {
            error = sf_strerror(nullptr);
            return false;
        }
        if (!write(file.Get()))
        {
            if (error.empty())
            {
                error = sf_strerror(file.Get());
            }
            file.Close();
            std::filesystem::remove(temporary);
            return false;
        }
        if (!file.Close())
        {
            error = "libsndfile could not finish the file";
            std::filesystem::remove(temporary);
            return false;
        }
    }
    std::error_code renameError;
    std::filesystem::rename(temporary, path, renameError);
    if (renameError)
    {
        error = renameError.message();
        std::filesystem::remove(temporary);
        return false;
    }
    return true;
}

} // namespace

bool WriteWav(const std::string& path, const Signal& sound, std::string& error)
{
    std::vector<short> samples(sound.size());
    std::transform(sound.begin(), sound.end(), samples.begin(),
                   [](double sample)
                   { return static_cast<short>(std::lround(std::clamp(sample, -1.0, 1.0) * 32767)); });
    return WriteReplacing(path, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, error,
                          [&](SNDFILE* file)
                          {
                              const auto count = static_cast<sf_count_t>(samples.size());
                              return sf_write_short(file, samples.data(), count) == count;
                          });
}

bool WriteOggVorbis(const std::string& path, const Stereo& sound, double quality, std::string& error)
{
    std::vector<float> frames(sound.left.size() * 2);
    for (size_t frame = 0; frame < sound.left.size(); ++frame)
    {
        frames[2 * frame] = static_cast<float>(sound.left[frame]);
        frames[2 * frame + 1] = static_cast<float>(sound.right[frame]);
    }
    return WriteReplacing(path, SF_FORMAT_OGG | SF_FORMAT_VORBIS, 2, error,
                          [&](SNDFILE* file)
                          {
                              // Must be set before the first frame, while the encoder is not yet started.
                              if (sf_command(file, SFC_SET_VBR_ENCODING_QUALITY, &quality, sizeof quality) !=
                                  SF_TRUE)
                              {
                                  error = "libsndfile refused the Vorbis quality";
                                  return false;
                              }
                              const auto count = static_cast<sf_count_t>(sound.left.size());
                              return sf_writef_float(file, frames.data(), count) == count;
                          });
}

} // namespace Sound
