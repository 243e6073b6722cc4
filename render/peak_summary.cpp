#include "render/peak_summary.h"

#include <algorithm>
#include <new>

#include "core/platform.h"

namespace orv {

namespace {

void widen(PeakRange& r, PeakRange with) {
    r.lo = std::min(r.lo, with.lo);
    r.hi = std::max(r.hi, with.hi);
}

PeakRange scanEntries(const std::vector<PeakRange>& entries, std::int64_t first,
                      std::int64_t end) {
    PeakRange r;
    for (std::int64_t i = first; i < end; ++i) widen(r, entries[std::size_t(i)]);
    return r;
}

std::int64_t roundUp(std::int64_t v, std::int64_t to) { return (v + to - 1) / to * to; }
std::int64_t roundDown(std::int64_t v, std::int64_t to) { return v / to * to; }

}  // namespace

PeakRange scanPeaks(const WaveVal* samples, std::int64_t first, std::int64_t end) {
    // Two plain 16-bit accumulators: the compiler turns this into packed min/max.
    WaveVal lo = 32767, hi = -32768;
    for (std::int64_t i = first; i < end; ++i) {
        lo = std::min(lo, samples[i]);
        hi = std::max(hi, samples[i]);
    }
    return PeakRange{lo, hi};
}

bool PeakSummary::describes(const Sound& sound) const {
    if (sound.GetValues() != values_ || int(sound.MoSt) != channels()) return false;
    if (values_ == 0) return true;
    if (channels_[0].samples != sound.GetLeftWave()->data()) return false;
    return channels() == 1 || channels_[1].samples == sound.GetRightWave()->data();
}

PeakRange PeakSummary::range(int channel, std::int32_t first, std::int32_t last) const {
    ORV_ASSERT(channel >= 0 && channel < channels(), "peaks");
    ORV_ASSERT(first >= 0 && first <= last && last < values_, "peaks");
    const Channel& c = channels_[std::size_t(channel)];
    const std::int64_t a = first, b = std::int64_t(last) + 1;
    const std::int64_t a0 = roundUp(a, kBlock), b0 = roundDown(b, kBlock);
    if (a0 >= b0) return scanPeaks(c.samples, a, b);
    PeakRange r = scanPeaks(c.samples, a, a0);
    widen(r, scanPeaks(c.samples, b0, b));
    // Whole blocks [i, j) of level 0; at each level the ragged ends are read and the
    // aligned middle is left to the level above.
    std::int64_t i = a0 / kBlock, j = b0 / kBlock;
    for (std::size_t level = 0; level < c.levels.size(); ++level) {
        const std::vector<PeakRange>& e = c.levels[level];
        const std::int64_t i1 = roundUp(i, kFanOut), j1 = roundDown(j, kFanOut);
        if (level + 1 == c.levels.size() || i1 >= j1) {
            widen(r, scanEntries(e, i, j));
            break;
        }
        widen(r, scanEntries(e, i, i1));
        widen(r, scanEntries(e, j1, j));
        i = i1 / kFanOut;
        j = j1 / kFanOut;
    }
    return r;
}

std::size_t PeakSummary::bytes() const {
    std::size_t total = 0;
    for (const Channel& c : channels_)
        for (const auto& level : c.levels) total += level.size() * sizeof(PeakRange);
    return total;
}

std::unique_ptr<PeakSummary> buildPeakSummary(const Sound& sound, const CancelFlag& cancel) {
    try {
        auto summary = std::make_unique<PeakSummary>();
        const std::int32_t n = sound.GetValues();
        summary->values_ = n;
        const int count = sound.MoSt == 2 ? 2 : 1;
        summary->channels_.resize(std::size_t(count));
        for (int ch = 0; ch < count; ++ch) {
            PeakSummary::Channel& c = summary->channels_[std::size_t(ch)];
            if (n == 0) continue;
            const Wave* wave = ch == 0 ? sound.GetLeftWave() : sound.GetRightWave();
            c.samples = wave->data();
            std::int64_t entries = roundUp(n, PeakSummary::kBlock) / PeakSummary::kBlock;
            std::vector<PeakRange> level(std::size_t(entries), PeakRange{});
            // A chunk rarely ends on a block boundary: each block gathers its pieces.
            const bool done = forEachChunk(cancel, 0, n, [&](std::int32_t pos, std::int32_t stop) {
                while (pos < stop) {
                    const std::int64_t block = pos / PeakSummary::kBlock;
                    const std::int32_t end = std::int32_t(
                        std::min<std::int64_t>(stop, (block + 1) * PeakSummary::kBlock));
                    widen(level[std::size_t(block)], scanPeaks(c.samples, pos, end));
                    pos = end;
                }
            });
            if (!done) return nullptr;
            c.levels.push_back(std::move(level));
            while (c.levels.back().size() > std::size_t(PeakSummary::kFanOut)) {
                const std::vector<PeakRange>& below = c.levels.back();
                std::vector<PeakRange> above(
                    std::size_t(roundUp(std::int64_t(below.size()), PeakSummary::kFanOut) /
                                PeakSummary::kFanOut));
                for (std::size_t k = 0; k < above.size(); ++k)
                    above[k] = scanEntries(
                        below, std::int64_t(k) * PeakSummary::kFanOut,
                        std::min<std::int64_t>(std::int64_t(below.size()),
                                               std::int64_t(k + 1) * PeakSummary::kFanOut));
                c.levels.push_back(std::move(above));
            }
        }
        return summary;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace orv
