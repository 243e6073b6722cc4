// Amplitude and shape effects: each changes the values of a range without changing its
// length. All but volumeInPlace and mirror hand back a new wave: head copied, range
// transformed, tail copied. Nothing here saturates: a result past 32767 wraps around.
#include <cmath>
#include <cstdint>

#include "core/wave.h"
#include "core/wave_ranges.h"

namespace orv {

namespace {

// Makes a wave of the same length: [0, begin) and [end, values) copied, and the range
// written by body(out, pos, stop) chunk by chunk (absolute indices into both waves).
template <class Body>
WavePtr transformRange(const Wave& self, CancelFlag& cancel, std::int32_t begin,
                       std::int32_t end, Body&& body) {
    const std::int32_t values = self.getValues();
    WavePtr w = newWave(cancel, values);
    if (!w) return nullptr;
    w->copyFrom(cancel, &self, 0, begin, 0);
    WaveVal* out = w->data();
    forEachChunk(cancel, begin, end,
                 [&](std::int32_t pos, std::int32_t stop) { body(out, pos, stop); });
    w->copyFrom(cancel, &self, end, values, end);
    return w;
}

// The samples are walked in fixed groups of 16 so that the compiler turns each group into
// vector code even where it does not vectorise open loops; the rest goes one by one.
constexpr std::int32_t kGroup = 16;

// Below this bound |s x factor| stays under 2^31 for every 16-bit s, so a 32-bit
// conversion truncates exactly like toWaveVal and vectorises.
constexpr double kSmallFactor = 65535.0;

inline WaveVal narrow(std::int32_t v) { return static_cast<WaveVal>(v); }  // keeps 16 bits

void scaleRun(const WaveVal* __restrict s, WaveVal* __restrict d, std::int32_t n,
              double factor) {
    std::int32_t i = 0;
    if (std::fabs(factor) < kSmallFactor) {
        for (; i + kGroup <= n; i += kGroup)
            for (std::int32_t j = 0; j < kGroup; ++j)
                d[i + j] = narrow(static_cast<std::int32_t>(s[i + j] * factor));
        for (; i < n; ++i) d[i] = narrow(static_cast<std::int32_t>(s[i] * factor));
    } else {
        for (; i < n; ++i) d[i] = toWaveVal(s[i] * factor);
    }
}

void mixRun(const WaveVal* __restrict s, const WaveVal* __restrict o, WaveVal* __restrict d,
            std::int32_t n, double a, double b) {
    std::int32_t i = 0;
    if (std::fabs(a) + std::fabs(b) < kSmallFactor) {
        for (; i + kGroup <= n; i += kGroup)
            for (std::int32_t j = 0; j < kGroup; ++j)
                d[i + j] = narrow(static_cast<std::int32_t>(s[i + j] * a + o[i + j] * b));
        for (; i < n; ++i) d[i] = narrow(static_cast<std::int32_t>(s[i] * a + o[i] * b));
    } else {
        for (; i < n; ++i) d[i] = toWaveVal(s[i] * a + o[i] * b);
    }
}

void addRun(const WaveVal* __restrict s, WaveVal* __restrict d, std::int32_t n,
            WaveVal value) {
    const std::uint16_t v = static_cast<std::uint16_t>(value);
    auto add = [v](WaveVal x) {
        return static_cast<WaveVal>(static_cast<std::uint16_t>(static_cast<std::uint16_t>(x) + v));
    };
    std::int32_t i = 0;
    for (; i + kGroup <= n; i += kGroup)
        for (std::int32_t j = 0; j < kGroup; ++j) d[i + j] = add(s[i + j]);
    for (; i < n; ++i) d[i] = add(s[i]);
}

// In place over d[0 .. n).
void scaleInPlace(WaveVal* d, std::int32_t n, double factor) {
    std::int32_t i = 0;
    if (std::fabs(factor) < kSmallFactor) {
        for (; i + kGroup <= n; i += kGroup)
            for (std::int32_t j = 0; j < kGroup; ++j)
                d[i + j] = narrow(static_cast<std::int32_t>(d[i + j] * factor));
    }
    for (; i < n; ++i) d[i] = toWaveVal(d[i] * factor);
}

// d[0 .. n) = s[0], s[-1], ..., s[-(n-1)]; the two runs must not overlap.
void reverseRun(const WaveVal* __restrict s, WaveVal* __restrict d, std::int32_t n) {
    std::int32_t i = 0;
    for (; i + kGroup <= n; i += kGroup)
        for (std::int32_t j = 0; j < kGroup; ++j) d[i + j] = s[-(i + j)];
    for (; i < n; ++i) d[i] = s[-i];
}

// The transfer curve read at x by linear interpolation. Unlike envelope sampling it does
// not hold at index 0: an input of -32768 maps a hair below 0 and is extrapolated from the
// first two entries, which is how the curve has always been read.
inline double curveAt(const Wave& curve, double x) {
    const std::int32_t last = curve.getValues() - 1;
    if (last == 0) return curve[0];
    if (x < 0) return (1 - x) * curve[0] + x * curve[1];
    std::int32_t i = truncToInt(x);
    if (i >= last) return curve[last];
    const double f = x - i;
    if (f == 0) return curve[i];
    return (1 - f) * curve[i] + f * curve[i + 1];
}

}  // namespace

WavePtr Wave::volume(CancelFlag& cancel, double factor, std::int32_t begin,
                     std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeN(begin, end, values);
    const WaveVal* src = wave;
    return transformRange(*this, cancel, begin, end,
                          [&](WaveVal* out, std::int32_t pos, std::int32_t stop) {
                              scaleRun(src + pos, out + pos, stop - pos, factor);
                          });
}

void Wave::volumeInPlace(CancelFlag& cancel, double factor, std::int32_t begin,
                         std::int32_t& end) {
    resolveEnd(end, values);
    checkRangeN(begin, end, values);
    WaveVal* data = wave;
    forEachChunk(cancel, begin, end, [&](std::int32_t pos, std::int32_t stop) {
        scaleInPlace(data + pos, stop - pos, factor);
    });
}

WavePtr Wave::volumeEnv(CancelFlag& cancel, const Wave* envelope, std::int32_t begin,
                        std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeN(begin, end, values);
    if (envelope == nullptr || envelope->values < 1) return nullptr;
    // The envelope is stretched over the range: its first sample scales the first sample
    // of the range, its last the last.
    const std::int32_t len = end - begin;
    const double step = len > 1 ? double(envelope->values - 1) / double(len - 1) : 0.0;
    double x = 0;
    const WaveVal* src = wave;
    return transformRange(*this, cancel, begin, end,
                          [&](WaveVal* out, std::int32_t pos, std::int32_t stop) {
                              const WaveVal* s = src + pos;
                              WaveVal* d = out + pos;
                              WaveVal* const e = out + stop;
                              while (d < e) {
                                  *d++ = toWaveVal(sample(*envelope, x) * *s++ / 32767);
                                  x += step;
                              }
                          });
}

WavePtr Wave::up(CancelFlag& cancel, WaveVal value, std::int32_t begin,
                 std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeN(begin, end, values);
    const WaveVal* src = wave;
    return transformRange(*this, cancel, begin, end,
                          [&](WaveVal* out, std::int32_t pos, std::int32_t stop) {
                              addRun(src + pos, out + pos, stop - pos, value);
                          });
}

WavePtr Wave::distort(CancelFlag& cancel, const Wave* curve, std::int32_t begin,
                      std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeN(begin, end, values);
    if (curve == nullptr || curve->values < 1) return nullptr;
    const double top = double(curve->values - 1);
    const WaveVal* src = wave;
    return transformRange(*this, cancel, begin, end,
                          [&](WaveVal* out, std::int32_t pos, std::int32_t stop) {
                              const WaveVal* s = src + pos;
                              WaveVal* d = out + pos;
                              WaveVal* const e = out + stop;
                              while (d < e) {
                                  const double x = (*s++ * (1.0 / 65535) + 0.5) * top;
                                  *d++ = toWaveVal(curveAt(*curve, x));
                              }
                          });
}

WavePtr Wave::reverse(CancelFlag& cancel, std::int32_t begin, std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeE(begin, end, values);
    // Output begin + k takes input end - 1 - k.
    const WaveVal* src = wave;
    return transformRange(*this, cancel, begin, end,
                          [&](WaveVal* out, std::int32_t pos, std::int32_t stop) {
                              reverseRun(src + (begin + end - 1 - pos), out + pos, stop - pos);
                          });
}

void Wave::mirror(CancelFlag& cancel, std::int32_t begin, std::int32_t& end) {
    resolveEnd(end, values);
    checkRangeE(begin, end, values);
    // Only the first half is written, from the untouched second half, so no sample is
    // read after it has been overwritten.
    const std::int32_t half = (begin + end) / 2;
    WaveVal* const data = wave;
    forEachChunk(cancel, begin, half, [&](std::int32_t pos, std::int32_t stop) {
        reverseRun(data + (begin + end - 1 - pos), data + pos, stop - pos);
    });
}

WavePtr Wave::rotate(CancelFlag& cancel, std::int32_t leftShift, std::int32_t begin,
                     std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeN(begin, end, values);
    // Checked against the whole wave, not the range: a shift past the range's length is
    // caught by the copies below.
    checkWave(leftShift >= 0, "leftShift >= 0");
    checkWave(leftShift <= values, "leftShift <= values");
    WavePtr w = newWave(cancel, values);
    if (!w) return nullptr;
    w->copyFrom(cancel, this, 0, begin, 0);
    w->copyFrom(cancel, this, begin + leftShift, end, begin);
    w->copyFrom(cancel, this, begin, begin + leftShift, end - leftShift);
    w->copyFrom(cancel, this, end, values, end);
    return w;
}

WavePtr Wave::block(CancelFlag& cancel, double blockLength, std::int32_t verticalCount,
                    std::int32_t begin, std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeN(begin, end, values);
    if (!(blockLength >= 1)) blockLength = 1;
    WavePtr w = newWave(cancel, values);
    if (!w) return nullptr;
    w->copyFrom(cancel, this, 0, begin, 0);
    if (verticalCount == 1) {
        w->clear(cancel, begin, end);
    } else {
        const WaveVal* src = wave;
        WaveVal* out = w->data();
        // Blocks end at fractional boundaries, each cut down to a whole sample, so a
        // length of 2.5 gives blocks of 2, 3, 2, 3 ...
        double boundary = begin;
        std::int32_t pos = begin;
        while (pos < end) {
            boundary += blockLength;
            if (boundary > end) boundary = end;
            const std::int32_t stop = truncToInt(boundary);
            std::int64_t sum = 0;
            const bool summed =
                forEachChunk(cancel, pos, stop, [&](std::int32_t p, std::int32_t q) {
                    for (const WaveVal* s = src + p; s < src + q; ++s) sum += *s;
                });
            if (!summed) return nullptr;
            std::int64_t avg = sum / (stop - pos);
            if (verticalCount != 0) {
                const double n = verticalCount;
                const double level = std::trunc((avg + 32768) * n * (1.0 / 65536));
                avg = static_cast<std::int64_t>(std::trunc(65535 / (n - 1) * level - 32768));
            }
            const WaveVal value = wrap16(avg);
            const bool filled =
                forEachChunk(cancel, pos, stop, [&](std::int32_t p, std::int32_t q) {
                    for (WaveVal* d = out + p; d < out + q; ++d) *d = value;
                });
            if (!filled) return nullptr;
            pos = stop;
        }
    }
    w->copyFrom(cancel, this, end, values, end);
    return w;
}

WavePtr Wave::mix(CancelFlag& cancel, const Wave* other, double a, double b,
                  std::int32_t begin, std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeE(begin, end, values);
    if (other == nullptr) return nullptr;
    const Wave* daar = other;
    checkWave(values == daar->values, "values == daar->values");
    const WaveVal* src = wave;
    const WaveVal* oth = daar->wave;
    return transformRange(*this, cancel, begin, end,
                          [&](WaveVal* out, std::int32_t pos, std::int32_t stop) {
                              mixRun(src + pos, oth + pos, out + pos, stop - pos, a, b);
                          });
}

WavePtr Wave::average(CancelFlag& cancel, const Wave* other) const {
    if (other == nullptr) return nullptr;
    checkWave(values == other->values, "values == other->values");
    // The mixing range is 0..0 on purpose: the result is this wave, unchanged. Stereo to
    // mono has always meant "keep the left channel", and documents rely on it.
    std::int32_t end = 0;
    return mix(cancel, other, 0.5, 0.5, 0, end);
}

}  // namespace orv
