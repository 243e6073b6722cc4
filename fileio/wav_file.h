// Reading and writing sounds as RIFF WAVE files of uncompressed 8-bit or 16-bit PCM.
//
// The reader is narrow on purpose: it takes the layout the writer makes ("RIFF", the
// format chunk first, an optional 4-byte "fact" chunk, then "data") and nothing else.
// In memory every sample is a 16-bit WaveVal; 8-bit files are widened on reading and
// narrowed on writing.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "core/cancel.h"
#include "core/sound.h"
#include "core/wave.h"
#include "fileio/wav_format.h"

namespace orv {

// ---- channel level --------------------------------------------------------------------

// What a WAV file holds: one wave (mono, in `left`) or two of equal length.
struct WaveFileChannels {
    std::int32_t freq = 0;
    int monoStereo = 0;    // 1 or 2
    int bytesPSample = 0;  // from the file's bits per sample; every width but 1 is read as 16-bit
    WavePtr left;
    WavePtr right;  // null for mono
};

// Reads `fileName`. `message` is set to kWavNoErrors first and to the reason on a format
// failure; a chunk other than "fact" before "data" fails with the message unchanged. A
// data size that cannot be held (negative, or storage refused) shows the memory message
// under "System Error". Samples a short file cannot supply are 0.
bool readWaveChannels(const std::string& fileName, WaveFileChannels& out, const char*& message);

// Writes samples [begin, end) of `left` (and of `right` when it is not null, interleaved
// left first) as a file of `bytesPSample` (1 or 2) bytes per sample. An existing file is
// replaced only once the new one is completely on disk; on any failure it is left as it
// was and the result is false. `temporary` marks a short-lived file (the play and record
// files): it is not flushed to disk before it replaces the old one.
bool writeWaveChannels(const std::string& fileName, const Wave* left, const Wave* right,
                       std::int32_t freq, int bytesPSample, std::int32_t begin,
                       std::int32_t end, bool temporary);

// ---- sound level (wav_sound.cpp) --------------------------------------------------------

// Reads a file into a new MonoSound or StereoSound at the file's frequency. On success
// `sound` owns the result and `bytesPSample` is the file's width (see WaveFileChannels).
bool readWaveFile(const std::string& fileName, SoundPtr& sound, int& bytesPSample,
                  const char*& message);

// Writes samples [begin, end) of every channel of `sound`. `cancel` is handed to the mono
// sound's wave accessor and has no other effect. False when a wave is missing or the file
// could not be written; an existing file is then untouched.
bool writeWaveFile(CancelFlag* cancel, const std::string& fileName, const Sound* sound,
                   int bytesPSample, std::int32_t begin, std::int32_t end, bool temporary);

}  // namespace orv
