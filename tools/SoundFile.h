#pragma once

// Writes the generator's sounds with libsndfile. Each file is written beside its path under a temporary
// name and renamed over it once complete, so a failed run never leaves a half-written sound in Data/.

#include "Synth.h"

#include <string>

namespace Sound
{

// A mono 16-bit PCM WAV. Samples are rounded to 16 bits here, not by libsndfile, so the file's bytes
// depend on nothing but the samples. False with the reason in `error`.
bool WriteWav(const std::string& path, const Signal& sound, std::string& error);

// A stereo Ogg Vorbis file at the given variable bit rate quality, 0 (smallest) to 1 (best). Vorbis
// encoding is deterministic, but libsndfile draws each file's Ogg stream serial number at random, so
// those four bytes of every page (and the pages' checksums) differ from run to run.
bool WriteOggVorbis(const std::string& path, const Stereo& sound, double quality, std::string& error);

} // namespace Sound
