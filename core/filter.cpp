// Shared filter plumbing, and the one-pole low-pass and high-pass filters.
#include "core/filter.h"

#include <cmath>

#include "core/filter_support.h"

namespace orv {

namespace filter_detail {

void checkRange(const Wave& wave, std::int32_t begin, std::int32_t& end) {
    const std::int32_t values = wave.getValues();
    if (end == -1) end = values;
    ORV_ASSERT_TEXT(begin >= 0, "begin >= 0", kUnit);
    ORV_ASSERT_TEXT(begin <= values, "begin <= values", kUnit);
    ORV_ASSERT_TEXT(end >= 0, "end >= 0", kUnit);
    ORV_ASSERT_TEXT(end <= values, "end <= values", kUnit);
    ORV_ASSERT_TEXT(begin < end, "begin < end", kUnit);
}

WavePtr makeResult(const Wave& wave, CancelFlag& cancel, std::int64_t extra,
                   std::int32_t begin, std::int32_t end) {
    if (isCancelled(cancel)) return nullptr;
    const std::int32_t count = wave.getValues();
    const std::int64_t total = std::int64_t(count) + extra;
    if (extra < 0 || total > INT32_MAX) {
        // A block filter asked for more samples than a wave can count: as good as out of
        // memory for the user.
        showMessage("System Error", "There is not enough memmory for this operation.");
        setCancelled(cancel);
        return nullptr;
    }
    WavePtr result = newWave(cancel, static_cast<std::int32_t>(total));
    if (!result) return nullptr;
    result->copyFrom(cancel, &wave, 0, begin, 0);
    result->copyFrom(cancel, &wave, end, count, static_cast<std::int32_t>(end + extra));
    return result;
}

}  // namespace filter_detail

using namespace filter_detail;

namespace {

// Coefficient shared by the low-pass and the high-pass: the attenuation `factor` at the
// filter frequency is spread over countBer passes. 6.2830586 is not quite 2 pi; results
// are matched to it, so it stays. Written as numerator / (root x time) so that the
// envelope forms, which hoist the two constant parts, give the very same bits.
struct PassCoefficient {
    double numerator;  // 6.2830586 x p
    double root;       // sqrt(1 - p^2)

    PassCoefficient(double factor, int countBer) {
        const double p = std::pow(factor, 1.0 / countBer);
        numerator = 6.2830586 * p;
        root = std::sqrt(1 - p * p);
    }
    // A negative coefficient (very short period, p near 1) is clamped: output = input.
    double at(double time) const {
        const double a = 1 - numerator / (root * time);
        return a < 0 ? 0 : a;
    }
};

// A filtered value held within the input's scale: a low-pass output lies between the
// extremes of what went in, a high-pass one (x - y) within twice that, so the 16-bit store
// needs no guard for huge values. Only when 0 <= a <= 1 (NaN fails this).
inline bool boundedCoefficient(double a) { return a >= 0 && a <= 1; }
inline WaveVal toWaveValSmall(double v) { return wrap16(static_cast<std::int32_t>(v)); }

// One pass of y = (1 - a) x + a y over [begin, end) in chunks, reading `in` and writing
// `out` (the same array after the first pass). The high-pass writes x - y instead of y.
// Returns false when the flag stopped it.
template <bool High, bool Small>
bool onePassAs(CancelFlag& cancel, const WaveVal* in, WaveVal* out, double a,
               std::int32_t begin, std::int32_t end) {
    const double b = 1 - a;
    double y = 0;
    return forEachChunk(cancel, begin, end, [&](std::int32_t pos, std::int32_t stop) {
        double s = y;
        for (std::int32_t j = pos; j < stop; ++j) {
            const double x = in[j];
            s = b * x + a * s;
            const double v = High ? x - s : s;
            out[j] = Small ? toWaveValSmall(v) : toWaveVal(v);
        }
        y = s;
    });
}

template <bool High>
bool onePass(CancelFlag& cancel, const WaveVal* in, WaveVal* out, double a, std::int32_t begin,
             std::int32_t end) {
    if (boundedCoefficient(a)) return onePassAs<High, true>(cancel, in, out, a, begin, end);
    return onePassAs<High, false>(cancel, in, out, a, begin, end);
}

// The same pass over two channels at once: the two recurrences do not depend on each
// other, so running them side by side in one loop lets the processor overlap them. Each
// channel gets exactly the arithmetic of onePass. The walked-samples count takes both.
template <bool High, bool Small>
bool twoPassesAs(CancelFlag& cancel, const WaveVal* in0, WaveVal* out0, const WaveVal* in1,
                 WaveVal* out1, double a, std::int32_t begin, std::int32_t end) {
    const double b = 1 - a;
    double y0 = 0, y1 = 0;
    return forEachChunk(cancel, begin, end, [&](std::int32_t pos, std::int32_t stop) {
        double s0 = y0, s1 = y1;
        for (std::int32_t j = pos; j < stop; ++j) {
            const double x0 = in0[j];
            const double x1 = in1[j];
            s0 = b * x0 + a * s0;
            s1 = b * x1 + a * s1;
            const double v0 = High ? x0 - s0 : s0;
            const double v1 = High ? x1 - s1 : s1;
            out0[j] = Small ? toWaveValSmall(v0) : toWaveVal(v0);
            out1[j] = Small ? toWaveValSmall(v1) : toWaveVal(v1);
        }
        y0 = s0;
        y1 = s1;
        countWalked(stop - pos);
    });
}

template <bool High>
bool twoPasses(CancelFlag& cancel, const WaveVal* in0, WaveVal* out0, const WaveVal* in1,
               WaveVal* out1, double a, std::int32_t begin, std::int32_t end) {
    if (boundedCoefficient(a))
        return twoPassesAs<High, true>(cancel, in0, out0, in1, out1, a, begin, end);
    return twoPassesAs<High, false>(cancel, in0, out0, in1, out1, a, begin, end);
}

template <bool High>
WavePtr passConstant(const Wave* wave, CancelFlag& cancel, double time, double factor,
                     int countBer, int countCmd, std::int32_t begin, std::int32_t end) {
    if (!wave) return nullptr;
    checkRange(*wave, begin, end);
    WavePtr result = makeResult(*wave, cancel, 0, begin, end);
    if (!result) return nullptr;
    const double a = PassCoefficient(factor, countBer).at(time);
    WaveVal* out = result->data();
    const WaveVal* in = wave->data();
    for (int pass = 0; pass < countCmd; ++pass) {
        if (!onePass<High>(cancel, pass == 0 ? in : out, out, a, begin, end)) break;
    }
    return result;
}

// Two channels of one length: the results are those of passConstant on each in turn. When
// either result cannot be made the flag is set, and the work stops there as it would.
template <bool High>
void passConstantPair(const Wave& left, const Wave& right, CancelFlag& cancel, double time,
                      double factor, int countBer, int countCmd, std::int32_t begin,
                      std::int32_t end, WavePtr& outLeft, WavePtr& outRight) {
    checkRange(left, begin, end);
    outLeft = makeResult(left, cancel, 0, begin, end);
    outRight = makeResult(right, cancel, 0, begin, end);
    if (!outLeft || !outRight) return;
    const double a = PassCoefficient(factor, countBer).at(time);
    WaveVal* out0 = outLeft->data();
    WaveVal* out1 = outRight->data();
    for (int pass = 0; pass < countCmd; ++pass) {
        const WaveVal* in0 = pass == 0 ? left.data() : out0;
        const WaveVal* in1 = pass == 0 ? right.data() : out1;
        if (!twoPasses<High>(cancel, in0, out0, in1, out1, a, begin, end)) break;
    }
}

template <bool High>
WavePtr passEnvelope(const Wave* wave, CancelFlag& cancel, const Wave* envelope, double factor,
                     int countBer, int countCmd, double freq, std::int32_t begin,
                     std::int32_t end) {
    if (!wave || !usable(envelope)) return nullptr;
    checkRange(*wave, begin, end);
    WavePtr result = makeResult(*wave, cancel, 0, begin, end);
    if (!result) return nullptr;
    const PassCoefficient coefficient(factor, countBer);
    WaveVal* out = result->data();
    const WaveVal* in = wave->data();
    for (int pass = 0; pass < countCmd; ++pass) {
        const WaveVal* src = pass == 0 ? in : out;
        EnvelopeReader env(*envelope, end - begin);
        // Envelope values are whole samples, so consecutive equal ones share the
        // coefficient: pow runs only when the value changes.
        std::int32_t lastE = INT32_MIN;
        double a = 0, b = 1;
        double y = 0;
        const bool done = forEachChunk(cancel, begin, end, [&](std::int32_t pos, std::int32_t stop) {
            for (std::int32_t j = pos; j < stop; ++j) {
                const WaveVal e = env.next();
                if (e != lastE) {
                    lastE = e;
                    const double f = 20 * std::pow(10.0, (e + 32768) * kFreqExponent);
                    a = coefficient.at(freq / f);
                    b = 1 - a;
                }
                const double x = src[j];
                y = b * x + a * y;
                out[j] = toWaveVal(High ? x - y : y);
            }
        });
        if (!done) break;
    }
    return result;
}

}  // namespace

namespace {

void checkLowPass(double time, double factor, int countBer, int countCmd) {
    ORV_ASSERT(time > 0, kUnit);
    ORV_ASSERT(factor > 0, kUnit);
    ORV_ASSERT(factor < 1, kUnit);
    ORV_ASSERT(countBer > 0, kUnit);
    ORV_ASSERT(countCmd > 0, kUnit);
}

void checkHighPass(double time, double factor, int countBer, int countCmd) {
    ORV_ASSERT(time > 0, kUnit);
    ORV_ASSERT(factor > 0 && factor < 1, kUnit);
    ORV_ASSERT(countBer > 0, kUnit);
    ORV_ASSERT(countCmd > 0, kUnit);
}

}  // namespace

WavePtr LowPass(const Wave* wave, CancelFlag& cancel, double time, double factor, int countBer,
                int countCmd, std::int32_t begin, std::int32_t end) {
    checkLowPass(time, factor, countBer, countCmd);
    return passConstant<false>(wave, cancel, time, factor, countBer, countCmd, begin, end);
}

WavePtr LowPassEnv(const Wave* wave, CancelFlag& cancel, const Wave* envelope, double factor,
                   int countBer, int countCmd, double freq, std::int32_t begin,
                   std::int32_t end) {
    ORV_ASSERT(factor > 0, kUnit);
    ORV_ASSERT(factor < 1, kUnit);
    ORV_ASSERT(countBer > 0, kUnit);
    ORV_ASSERT(countCmd > 0, kUnit);
    return passEnvelope<false>(wave, cancel, envelope, factor, countBer, countCmd, freq, begin,
                               end);
}

WavePtr HighPass(const Wave* wave, CancelFlag& cancel, double time, double factor,
                 int countBer, int countCmd, std::int32_t begin, std::int32_t end) {
    checkHighPass(time, factor, countBer, countCmd);
    return passConstant<true>(wave, cancel, time, factor, countBer, countCmd, begin, end);
}

WavePtr HighPassEnv(const Wave* wave, CancelFlag& cancel, const Wave* envelope, double factor,
                    int countBer, int countCmd, double freq, std::int32_t begin,
                    std::int32_t end) {
    ORV_ASSERT(factor > 0 && factor < 1, kUnit);
    ORV_ASSERT(countBer > 0, kUnit);
    ORV_ASSERT(countCmd > 0, kUnit);
    return passEnvelope<true>(wave, cancel, envelope, factor, countBer, countCmd, freq, begin,
                              end);
}

bool filter_detail::passPair(PassFilter filter, const Wave* left, const Wave* right,
                             CancelFlag& cancel, double time, double factor, int countBer,
                             int countCmd, std::int32_t begin, std::int32_t end,
                             WavePtr& outLeft, WavePtr& outRight) {
    if (!left || !right || left->getValues() != right->getValues()) return false;
    if (filter == LowPass) {
        checkLowPass(time, factor, countBer, countCmd);
        passConstantPair<false>(*left, *right, cancel, time, factor, countBer, countCmd, begin,
                                end, outLeft, outRight);
        return true;
    }
    if (filter == HighPass) {
        checkHighPass(time, factor, countBer, countCmd);
        passConstantPair<true>(*left, *right, cancel, time, factor, countBer, countCmd, begin,
                               end, outLeft, outRight);
        return true;
    }
    return false;
}

}  // namespace orv
