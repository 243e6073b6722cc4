// Helpers shared by the time-scale effects (wave_timescale.cpp only): the frame that puts a
// new stretch in place of a range, the source readers, and the driver of the periodic echoes.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "core/wave.h"
#include "core/wave_ranges.h"

namespace orv::timescale {

// A wave of values - (end - begin) + length samples: head [0, begin) copied, `length` new
// samples at begin written by fill(out, pos, stop) chunk by chunk (absolute indices), tail
// [end, values) copied behind them. Sets end = begin + length. A cancel during the work
// hands back the partial wave.
template <class Fill>
WavePtr replaceRange(const Wave& self, CancelFlag& cancel, std::int32_t begin,
                     std::int32_t& end, std::int32_t length, Fill&& fill) {
    const std::int32_t values = self.getValues();
    WavePtr w = newWave(cancel, std::int64_t(values) - (end - begin) + length);
    if (!w) return nullptr;
    w->copyFrom(cancel, &self, 0, begin, 0);
    WaveVal* out = w->data();
    forEachChunk(cancel, begin, begin + length,
                 [&](std::int32_t pos, std::int32_t stop) { fill(out, pos, stop); });
    w->copyFrom(cancel, &self, end, values, begin + length);
    end = begin + length;
    return w;
}

// data[lo, hi) read at x by linear interpolation; every index outside [lo, hi) reads as 0.
inline double readZeroOutside(const WaveVal* data, std::int32_t lo, std::int32_t hi, double x) {
    const double fl = std::floor(x);
    if (!(fl >= double(lo) - 1 && fl < double(hi))) return 0;  // also NaN
    const std::int64_t i = static_cast<std::int64_t>(fl);
    const double f = x - fl;
    const double a = i >= lo ? data[i] : 0.0;
    if (f == 0) return a;
    const double b = i + 1 < hi ? data[i + 1] : 0.0;
    return (1 - f) * a + f * b;
}

// data[begin, end) read at x as a loop: the sample after end - 1 is the one at begin.
inline double readLooped(const WaveVal* data, std::int32_t begin, std::int32_t end, double x) {
    const std::int64_t len = std::int64_t(end) - begin;
    const double fl = std::floor(x);
    if (!std::isfinite(fl)) return 0;
    const double f = x - fl;
    // Reduce the index into the loop; fmod keeps this exact for any position.
    std::int64_t k = static_cast<std::int64_t>(std::fmod(fl - begin, double(len)));
    if (k < 0) k += len;
    const double a = data[begin + k];
    if (f == 0) return a;
    const double b = data[begin + (k + 1 == len ? 0 : k + 1)];
    return (1 - f) * a + f * b;
}

// Reads an optional envelope stretched over `count` samples: starts at position 0 and
// moves by (envelope values - 1) / (count - 1) per sample.
struct EnvelopeCursor {
    const Wave* envelope;
    double pos = 0;
    double step = 0;
    EnvelopeCursor(const Wave* env, std::int64_t count) : envelope(env) {
        if (env != nullptr && count > 1) step = double(env->getValues() - 1) / double(count - 1);
    }
    double value() const { return sample(*envelope, pos); }
    void advance() { pos += step; }
    void reset() { pos = 0; }
};

// The working stretch of a periodic echo: the range grown by the echoes' reach.
struct EchoStretch {
    std::int32_t newBegin;
    std::int32_t newEnd;
};

// Echoes that may fall on both sides (the forms with an echo-time envelope).
inline EchoStretch echoBothSides(double diffTime, std::int32_t count, std::int32_t begin,
                                 std::int32_t end) {
    const std::int64_t span = std::int64_t(truncToInt(diffTime + 1)) * count;
    return {truncToInt(double(begin - span)), truncToInt(double(end + span))};
}

// Echoes that fall behind (diffTime > 0) or in front (diffTime < 0) of the sound.
inline EchoStretch echoOneSide(double diffTime, std::int32_t count, std::int32_t begin,
                               std::int32_t end) {
    if (diffTime > 0)
        return {begin, truncToInt(double(end + std::int64_t(truncToInt(diffTime + 1)) * count))};
    if (diffTime < 0)
        return {truncToInt(double(begin + std::int64_t(truncToInt(diffTime - 1)) * count)), end};
    return {begin, end};
}

// out[p] += volume x src[p - shift] over [pos, stop), for the p whose source lies in
// [lo, hi), truncated and wrapped like any sample: what the interpolating read gives when
// the echo falls on whole samples. Elsewhere the source reads 0 and, with a finite volume,
// volume x 0 + out[p] is out[p] again, so those samples are left alone.
inline void addShifted(WaveVal* __restrict out, const WaveVal* __restrict src, std::int32_t lo,
                       std::int32_t hi, std::int64_t shift, double volume, std::int32_t pos,
                       std::int32_t stop) {
    const std::int64_t from = std::max<std::int64_t>(pos, lo + shift);
    const std::int64_t to = std::min<std::int64_t>(stop, hi + shift);
    if (from >= to) return;
    WaveVal* d = out + from;
    const WaveVal* s = src + (from - shift);
    const std::int64_t n = to - from;
    if (std::fabs(volume) < 65534) {
        // |volume x sample + sample| < 2^31: a 32-bit truncation is exact, and the loop
        // runs on whole vectors.
        for (std::int64_t j = 0; j < n; ++j)
            d[j] = wrap16(static_cast<std::int32_t>(volume * double(s[j]) + double(d[j])));
    } else {
        for (std::int64_t j = 0; j < n; ++j)
            d[j] = toWaveVal(volume * double(s[j]) + double(d[j]));
    }
}

// An echo tap that never falls on whole samples: every echo takes the interpolating read.
struct NoWholeShift {
    bool operator()(std::int32_t, double&, std::int64_t&) const { return false; }
};

// The periodic echo driver. The result holds lead zeros, the whole wave, grow zeros. For
// each echo i = 1 .. count, startEcho(i) is called, then for each p of the stretch
// tap(i, p, volume, position) gives the echo's volume and where the source is read; the
// source is the input wave, 0 outside [begin, end - 1]. begin and end are set to the grown
// stretch inside the result. wholeShift(i, volume, shift), called after startEcho(i), may
// say instead that every tap of echo i has that one finite volume and reads the source
// exactly at p - shift (a whole number): the echo is then added without the per-sample
// tap, with the very same results.
template <class StartEcho, class Tap, class WholeShift = NoWholeShift>
WavePtr echoes(const Wave& self, CancelFlag& cancel, std::int32_t count, EchoStretch stretch,
               std::int32_t& begin, std::int32_t& end, StartEcho&& startEcho, Tap&& tap,
               WholeShift&& wholeShift = WholeShift()) {
    const std::int32_t values = self.getValues();
    // In 64 bits until the new wave is known to exist: a huge echo is memory there is not.
    const std::int64_t lead64 = stretch.newBegin < 0 ? -std::int64_t(stretch.newBegin) : 0;
    const std::int64_t grow64 = stretch.newEnd > values ? std::int64_t(stretch.newEnd) - values : 0;
    WavePtr w = newWave(cancel, values + lead64 + grow64);
    if (!w) return nullptr;
    const std::int32_t lead = std::int32_t(lead64);
    const std::int32_t grow = std::int32_t(grow64);
    w->clear(cancel, 0, lead);
    w->copyFrom(cancel, &self, 0, values, lead);
    w->clear(cancel, lead + values, lead + values + grow);
    const WaveVal* src = self.data();
    const std::int32_t srcBegin = begin;
    const std::int32_t srcEnd = end;
    WaveVal* out = w->data() + lead;
    for (std::int32_t i = 1; i <= count; ++i) {
        startEcho(i);
        double shiftVolume = 0;
        std::int64_t shift = 0;
        if (wholeShift(i, shiftVolume, shift)) {
            const bool done = forEachChunk(
                cancel, stretch.newBegin, stretch.newEnd,
                [&](std::int32_t pos, std::int32_t stop) {
                    addShifted(out, src, srcBegin, srcEnd, shift, shiftVolume, pos, stop);
                });
            if (!done) break;
            continue;
        }
        const bool done = forEachChunk(
            cancel, stretch.newBegin, stretch.newEnd, [&](std::int32_t pos, std::int32_t stop) {
                for (std::int32_t p = pos; p < stop; ++p) {
                    double volume = 0, at = 0;
                    tap(i, p, volume, at);
                    out[p] = toWaveVal(volume * readZeroOutside(src, srcBegin, srcEnd, at) +
                                       out[p]);
                }
            });
        if (!done) break;
    }
    begin = stretch.newBegin + lead;
    end = stretch.newEnd + lead;
    return w;
}

}  // namespace orv::timescale
