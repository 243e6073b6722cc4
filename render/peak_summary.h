// The smallest and largest sample of every stretch of a wave, kept at a few scales, so that
// a picture column spanning tens of thousands of samples is drawn from its exact extremes
// after reading a few dozen entries (the "Peaks" distribution of the wave view).
//
// Levels: level 0 holds one entry per 256 samples, each further level one entry per 16 of
// the level below, up to a level of at most 16 entries. A range reads the samples of the
// partial blocks at its two ends (fewer than 256 each), then at most 15 entries at each end
// of each level. The entries take 4 bytes per 256 samples and channel, plus a sixteenth for
// the levels above: 0.83 % of the memory of the samples themselves.
//
// A summary is made by buildPeakSummary, which only reads the sound, so it may run on any
// thread while the sound is kept alive; it walks the samples in chunks of 1000 and gives
// up between chunks when the cancel flag is set. The summary reads the sound's samples at
// the ends of every range, so it must not outlive the sound. It describes the samples as
// they were when it was made: whoever changes samples in place (freehand drawing) makes it
// again afterwards.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "core/cancel.h"
#include "core/sample_value.h"
#include "core/sound.h"

namespace orv {

struct PeakRange {
    WaveVal lo = 32767;   // an empty range has lo > hi
    WaveVal hi = -32768;
};

// Smallest and largest of samples[first, end), read one by one.
PeakRange scanPeaks(const WaveVal* samples, std::int64_t first, std::int64_t end);

class PeakSummary {
public:
    static constexpr std::int32_t kBlock = 256;  // samples per entry of level 0
    static constexpr std::int32_t kFanOut = 16;  // entries per entry of the next level

    int channels() const { return int(channels_.size()); }
    std::int32_t values() const { return values_; }
    int levels() const { return channels_.empty() ? 0 : int(channels_[0].levels.size()); }
    // Whether this summary was made of these very waves (same sample blocks and length).
    bool describes(const Sound& sound) const;
    // The exact smallest and largest of samples first .. last, both included, of channel 0
    // (mono or left) or 1 (right). Asserts 0 <= first <= last < values().
    PeakRange range(int channel, std::int32_t first, std::int32_t last) const;
    // Memory held by the entries.
    std::size_t bytes() const;

private:
    friend std::unique_ptr<PeakSummary> buildPeakSummary(const Sound& sound,
                                                         const CancelFlag& cancel);
    struct Channel {
        const WaveVal* samples = nullptr;
        std::vector<std::vector<PeakRange>> levels;
    };
    std::int32_t values_ = 0;
    std::vector<Channel> channels_;
};

// The summary of every channel of `sound`; nullptr when the flag stopped it or memory ran
// out (the painter then reads the samples directly: the same picture, only slower).
std::unique_ptr<PeakSummary> buildPeakSummary(const Sound& sound, const CancelFlag& cancel);

}  // namespace orv
