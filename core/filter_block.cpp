// The block filter: a running average over a block of `time` samples, kept in one
// accumulator that takes in the sample entering the block and lets go of the one leaving
// it. The block may be fractional, so the entering sample is interpolated. The output is
// half the average; that halving is the filter's long-standing level and kept.
#include <cmath>

#include "core/filter.h"
#include "core/filter_support.h"

namespace orv {

using namespace filter_detail;

namespace {

// The input read at position x: linear interpolation inside [lo, hi] (the filtered range),
// 0 outside it. Never reads past hi: at x == hi the fraction is 0.
inline double readInside(const WaveVal* w, double lo, double hi, double x) {
    if (!(x >= lo && x <= hi)) return 0;
    const std::int32_t i = static_cast<std::int32_t>(x);
    const double f = x - i;
    if (f == 0) return w[i];
    return (1 - f) * w[i] + f * w[i + 1];
}

// Output count for a result `extra` samples longer, or -1 when it would not fit a wave.
inline std::int64_t extraLength(double length) {
    return length <= double(INT32_MAX) ? static_cast<std::int64_t>(length) : -1;
}

}  // namespace

WavePtr BlockFilter(const Wave* wave, CancelFlag& cancel, double time, std::int32_t& begin,
                    std::int32_t& end) {
    if (!wave) return nullptr;
    checkRange(*wave, begin, end);
    // NaN and huge times end up as -1: the result could not be counted, as if out of memory.
    const std::int64_t n = extraLength(std::fabs(std::trunc(time)) + 1);
    WavePtr result = makeResult(*wave, cancel, n, begin, end);
    if (!result) return nullptr;

    const WaveVal* in = wave->data();
    WaveVal* out = result->data();
    const double lo = begin, hi = end - 1;
    double i = time >= 0 ? double(begin) : double(begin) - double(n);
    double acc = 0;
    const std::int32_t stop = static_cast<std::int32_t>(end + n);
    forEachChunk(cancel, begin, stop, [&](std::int32_t pos, std::int32_t chunkStop) {
        for (std::int32_t j = pos; j < chunkStop; ++j) {
            acc = acc + readInside(in, lo, hi, i + time) / time - readInside(in, lo, hi, i) / time;
            out[j] = toWaveVal(acc * 0.5);
            i = i + 1;
        }
    });
    end = stop;
    return result;
}

WavePtr BlockFilterEnv(const Wave* wave, CancelFlag& cancel, double maxTime,
                       const Wave* envelope, std::int32_t& begin, std::int32_t& end) {
    if (!wave || !usable(envelope)) return nullptr;
    checkRange(*wave, begin, end);
    // A maximal time below -1 would make the result shorter than its input; it has no
    // meaning, so the extra length stays at 0 then.
    const double mTrunc = std::trunc(maxTime + 1);
    const std::int64_t m = mTrunc > 0 ? extraLength(mTrunc) : 0;
    const std::int64_t extra = m < 0 ? -1 : 2 * m;
    WavePtr result = makeResult(*wave, cancel, extra, begin, end);
    if (!result) return nullptr;

    const WaveVal* in = wave->data();
    WaveVal* out = result->data();
    const double lo = begin, hi = end - 1;
    EnvelopeReader env(*envelope, end - begin);
    double i = double(begin) + double(m);
    double acc = 0;
    const std::int32_t stop = static_cast<std::int32_t>(end + extra);
    forEachChunk(cancel, begin, stop, [&](std::int32_t pos, std::int32_t chunkStop) {
        for (std::int32_t j = pos; j < chunkStop; ++j) {
            // Block time in samples; the stored factor is 1 / 32767.
            const double w = env.next() * maxTime * 3.051850947599719e-05;
            if (w >= -1 && w <= 1) {
                acc = readInside(in, lo, hi, i);  // too short to average: the sample itself
            } else {
                acc = acc + readInside(in, lo, hi, i + w) / w - readInside(in, lo, hi, i) / w;
            }
            out[j] = toWaveVal(acc * 0.5);
            i = i + 1;
        }
    });
    end = stop;
    return result;
}

}  // namespace orv
