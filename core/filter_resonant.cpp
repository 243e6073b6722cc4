// The resonator (a band-pass around one frequency) and the notch (the input minus it).
//
// Per input sample the state runs a few sub-steps of
//     s2 = s2 + k s1;  s1 = s1 - s2;  s2 = (1 - p) x + p s2
// with k the square of the phase step of one sub-step (2.466 ~ (pi/2)^2 for four of them)
// and p = (1 - width)^(1 / period). The operations are kept in this order and form: any
// rearrangement changes the rounding and with it the output.
#include <cmath>

#include "core/filter.h"
#include "core/filter_support.h"

namespace orv {

using namespace filter_detail;

namespace {

// Four sub-steps for every form except the resonant filter with only a frequency envelope,
// which takes twenty smaller ones; the notch with a frequency envelope keeps four. That
// difference is long-standing behaviour and kept.
inline constexpr double kQuarterStep = 2.466;   // (pi/2)^2 for 4 sub-steps
inline constexpr double kTenthStep = 0.09864;   // (pi/10)^2 for 20 sub-steps

template <int Steps>
inline void subSteps(double x, double p, double q, double k, double& s1, double& s2) {
    for (int r = 0; r < Steps; ++r) {
        s2 = s2 + k * s1;
        s1 = s1 - s2;
        s2 = q * x + p * s2;
    }
}

template <bool NotchOut>
WavePtr resonatorConstant(const Wave* wave, CancelFlag& cancel, double per, double factor,
                          std::int32_t begin, std::int32_t end) {
    if (!wave) return nullptr;
    checkRange(*wave, begin, end);
    WavePtr result = makeResult(*wave, cancel, 0, begin, end);
    if (!result) return nullptr;
    const double p = std::pow(1 - factor, 1 / per);
    const double q = 1 - p;
    const double k = kQuarterStep / (per * per);
    const WaveVal* in = wave->data();
    WaveVal* out = result->data();
    double s1 = 0, s2 = 0;
    forEachChunk(cancel, begin, end, [&](std::int32_t pos, std::int32_t stop) {
        double a = s1, b = s2;
        for (std::int32_t j = pos; j < stop; ++j) {
            const double x = in[j];
            subSteps<4>(x, p, q, k, a, b);
            out[j] = toWaveVal(NotchOut ? x - b : b);
        }
        s1 = a;
        s2 = b;
    });
    return result;
}

// The forms steered by a frequency envelope, a width envelope or both; what is not steered
// is the constant `per` or `factor`. p and k follow the envelopes per sample; since the
// envelope values are whole samples, they are recomputed only when a value changes.
template <int Steps, bool NotchOut, bool FreqEnv, bool WidthEnv>
WavePtr resonatorEnvelope(const Wave* wave, CancelFlag& cancel, const Wave* freqEnvelope,
                          const Wave* widthEnvelope, double per, double factor, double freq,
                          std::int32_t begin, std::int32_t end) {
    if (!wave) return nullptr;
    if (FreqEnv && !usable(freqEnvelope)) return nullptr;
    if (WidthEnv && !usable(widthEnvelope)) return nullptr;
    checkRange(*wave, begin, end);
    WavePtr result = makeResult(*wave, cancel, 0, begin, end);
    if (!result) return nullptr;
    constexpr double kStep = Steps == 20 ? kTenthStep : kQuarterStep;
    EnvelopeReader freqReader, widthReader;
    if constexpr (FreqEnv) freqReader = EnvelopeReader(*freqEnvelope, end - begin);
    if constexpr (WidthEnv) widthReader = EnvelopeReader(*widthEnvelope, end - begin);
    const WaveVal* in = wave->data();
    WaveVal* out = result->data();
    double s1 = 0, s2 = 0;
    double p = 0, q = 0, k = 0;
    bool first = true;
    WaveVal lastF = 0, lastW = 0;
    forEachChunk(cancel, begin, end, [&](std::int32_t pos, std::int32_t stop) {
        for (std::int32_t j = pos; j < stop; ++j) {
            const WaveVal eF = FreqEnv ? freqReader.next() : 0;
            const WaveVal eW = WidthEnv ? widthReader.next() : 0;
            if (first || eF != lastF || eW != lastW) {
                first = false;
                lastF = eF;
                lastW = eW;
                double period = per;
                if constexpr (FreqEnv)
                    period = freq / (20 * std::pow(10.0, (eF + 32768) * kFreqExponent));
                const double width = WidthEnv ? (eW + 32768) * kWidthScale : factor;
                p = std::pow(1 - width, 1 / period);
                q = 1 - p;
                k = kStep / (period * period);
            }
            const double x = in[j];
            subSteps<Steps>(x, p, q, k, s1, s2);
            out[j] = toWaveVal(NotchOut ? x - s2 : s2);
        }
    });
    return result;
}

}  // namespace

WavePtr Resonant(const Wave* wave, CancelFlag& cancel, double per, double factor,
                 std::int32_t begin, std::int32_t end) {
    ORV_ASSERT(per >= 1 && factor >= 0 && factor <= 1, kUnit);
    return resonatorConstant<false>(wave, cancel, per, factor, begin, end);
}

WavePtr ResonantFreqEnv(const Wave* wave, CancelFlag& cancel, const Wave* freqEnvelope,
                        double factor, double freq, std::int32_t begin, std::int32_t end) {
    ORV_ASSERT(factor >= 0 && factor <= 1, kUnit);
    return resonatorEnvelope<20, false, true, false>(wave, cancel, freqEnvelope, nullptr, 0,
                                                     factor, freq, begin, end);
}

WavePtr ResonantWidthEnv(const Wave* wave, CancelFlag& cancel, double per,
                         const Wave* widthEnvelope, std::int32_t begin, std::int32_t end) {
    ORV_ASSERT(per >= 1, kUnit);
    return resonatorEnvelope<4, false, false, true>(wave, cancel, nullptr, widthEnvelope, per, 0,
                                                    0, begin, end);
}

WavePtr ResonantEnv(const Wave* wave, CancelFlag& cancel, const Wave* freqEnvelope,
                    const Wave* widthEnvelope, double freq, std::int32_t begin,
                    std::int32_t end) {
    return resonatorEnvelope<4, false, true, true>(wave, cancel, freqEnvelope, widthEnvelope, 0,
                                                   0, freq, begin, end);
}

WavePtr Notch(const Wave* wave, CancelFlag& cancel, double per, double factor,
              std::int32_t begin, std::int32_t end) {
    ORV_ASSERT(per >= 1 && factor >= 0 && factor <= 1, kUnit);
    return resonatorConstant<true>(wave, cancel, per, factor, begin, end);
}

WavePtr NotchFreqEnv(const Wave* wave, CancelFlag& cancel, const Wave* freqEnvelope,
                     double factor, double freq, std::int32_t begin, std::int32_t end) {
    ORV_ASSERT(factor >= 0 && factor <= 1, kUnit);
    return resonatorEnvelope<4, true, true, false>(wave, cancel, freqEnvelope, nullptr, 0, factor,
                                                   freq, begin, end);
}

WavePtr NotchWidthEnv(const Wave* wave, CancelFlag& cancel, double per,
                      const Wave* widthEnvelope, std::int32_t begin, std::int32_t end) {
    ORV_ASSERT(per >= 1, kUnit);
    return resonatorEnvelope<4, true, false, true>(wave, cancel, nullptr, widthEnvelope, per, 0, 0,
                                                   begin, end);
}

WavePtr NotchEnv(const Wave* wave, CancelFlag& cancel, const Wave* freqEnvelope,
                 const Wave* widthEnvelope, double freq, std::int32_t begin, std::int32_t end) {
    return resonatorEnvelope<4, true, true, true>(wave, cancel, freqEnvelope, widthEnvelope, 0, 0,
                                                  freq, begin, end);
}

}  // namespace orv
