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
// failure; a chunk other than "fact" before "data" fails with the message unchanged.
//
// Where the classic reader would take a hostile or damaged file at its word, this one is
// safer, so that no file can stop the program later or eat its memory:
//   - Samples a file cannot supply are 0 (it shrank while being read).
//   - Only plain files are read; a named pipe or a device is "Cannot open File." at once
//     instead of blocking.
//   - A sample frequency outside 1 .. 1000000 Hz (0, values that read as negative, rates no
//     sound card has) is refused with wavFrequencyMessage: it would divide by zero or make
//     gigabytes of samples in the first echo or filter.
//   - The data size is the smaller of the size the chunk claims and the bytes that follow
//     in the file, so a truncated or streamed recording (size 0xFFFFFFFF) opens with exactly
//     the samples it holds, and a 44-byte file claiming 2 GB costs nothing. Whole frames
//     only, as before: 6 bytes of 16-bit stereo are 1 sample per channel.
//   - More samples per channel than a wave can count is kWavTooManySamples.
//   - When sample storage cannot be had the memory message is shown under "System Error"
//     and is also the message returned, not "No errors occurred.".
bool readWaveChannels(const std::string& fileName, WaveFileChannels& out, const char*& message);

// Writes samples [begin, end) of `left` (and of `right` when it is not null, interleaved
// left first) as a file of `bytesPSample` (1 or 2) bytes per sample. An existing file is
// replaced only once the new one is completely on disk; on any failure it is left as it
// was, the result is false and lastWriteFailure() (safe_file_writer.h) says why.
// `temporary` marks a short-lived file (the play and record files): it is not flushed to
// disk before it replaces the old one. A `cancel` flag found set between blocks or just
// before the file would replace the old one stops the save (kWavSaveInterrupted): a save is
// either complete and in place, or it did not happen.
bool writeWaveChannels(const std::string& fileName, const Wave* left, const Wave* right,
                       std::int32_t freq, int bytesPSample, std::int32_t begin,
                       std::int32_t end, bool temporary, const CancelFlag* cancel = nullptr);

// ---- streaming ---------------------------------------------------------------------------

// A WAV file's samples read as they lie, a block at a time: the player streams the play file
// to the sound device with it. The header is read by the rules of readWaveChannels (same
// messages, same data size); the samples come as the file holds them, interleaved whole
// frames of 8-bit unsigned or 16-bit little-endian signed values.
class WaveFileStream {
public:
    WaveFileStream();
    ~WaveFileStream();
    WaveFileStream(const WaveFileStream&) = delete;
    WaveFileStream& operator=(const WaveFileStream&) = delete;

    // Opens `fileName` and reads its header; `message` as readWaveChannels sets it.
    bool open(const std::string& fileName, const char*& message);
    bool isOpen() const;
    void close();

    std::int32_t freq() const { return freq_; }
    int channels() const { return channels_; }
    int bytesPSample() const { return bytesPSample_; }  // 1, else read as 2
    std::int32_t frames() const { return frames_; }      // samples per channel
    std::size_t frameBytes() const;
    std::int32_t position() const { return position_; }  // frames read so far

    // Up to `frames` whole frames into `out`, fewer only at the end of the data (a file that
    // shrank while playing ends early). The count read.
    std::size_t read(std::uint8_t* out, std::size_t frames);
    // Back to frame `frame` (at most frames()).
    bool seek(std::int32_t frame);

private:
    struct Source;
    std::unique_ptr<Source> source_;
    std::int32_t freq_ = 0;
    int channels_ = 0;
    int bytesPSample_ = 0;
    std::int32_t frames_ = 0;
    std::int32_t position_ = 0;
};

// ---- sound level (wav_sound.cpp) --------------------------------------------------------

// Reads a file into a new MonoSound or StereoSound at the file's frequency. On success
// `sound` owns the result and `bytesPSample` is the file's width (see WaveFileChannels).
bool readWaveFile(const std::string& fileName, SoundPtr& sound, int& bytesPSample,
                  const char*& message);

// Writes samples [begin, end) of every channel of `sound`. `cancel` is handed to the mono
// sound's wave accessor and, unlike in the classic writer, also stops the save when it is
// set (see writeWaveChannels). False when a wave is missing or the file could not be
// written; an existing file is then untouched.
bool writeWaveFile(CancelFlag* cancel, const std::string& fileName, const Sound* sound,
                   int bytesPSample, std::int32_t begin, std::int32_t end, bool temporary);

}  // namespace orv
