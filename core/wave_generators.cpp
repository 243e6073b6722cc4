// Generators: each puts `length` new samples in place of [begin, end) and hands back the
// new wave (head copied, generated stretch, tail copied), with end = begin + length.
#include <cmath>
#include <vector>

#include "core/random15.h"
#include "core/wave.h"
#include "core/wave_ranges.h"

namespace orv {

namespace {

// Makes the result and fills the new stretch chunk by chunk: fill(d, e) writes the samples
// [d, e) in order and keeps its own running state between calls. A cancel stops at the next
// chunk and the partial wave is handed back.
template <class Fill>
WavePtr generate(const Wave& self, CancelFlag& cancel, std::int32_t length, std::int32_t begin,
                 std::int32_t& end, Fill&& fill) {
    const std::int32_t values = self.getValues();
    WavePtr w = newWave(cancel, std::int64_t(values) - (end - begin) + length);
    if (!w) return nullptr;
    w->copyFrom(cancel, &self, 0, begin, 0);
    WaveVal* out = w->data();
    forEachChunk(cancel, begin, begin + length,
                 [&](std::int32_t pos, std::int32_t stop) { fill(out + pos, out + stop); });
    w->copyFrom(cancel, &self, end, values, begin + length);
    end = begin + length;
    return w;
}

// Linear interpolation over the source, 0 outside 0 .. n-1.
inline double boundedSample(const Wave& source, double x) {
    if (x < 0 || x > double(source.getValues() - 1)) return 0;
    return sample(source, x);
}

}  // namespace

WavePtr Wave::makeSilence(CancelFlag& cancel, std::int32_t length, std::int32_t begin,
                          std::int32_t& end) const {
    return insertSilence(cancel, length, begin, end);
}

WavePtr Wave::makeLine(CancelFlag& cancel, WaveVal first, WaveVal last, std::int32_t length,
                       std::int32_t begin, std::int32_t& end) const {
    resolveEnd(end, values);
    checkGenRange(begin, end, values);
    // One sample cannot hold a line from first to last: it becomes two.
    if (length == 1) length = 2;
    checkWave(length > 1, "length > 1");
    const double step = (double(last) - first) / double(length - 1);
    double v = first;
    return generate(*this, cancel, length, begin, end, [&](WaveVal* d, WaveVal* e) {
        while (d < e) {
            *d++ = toWaveVal(v);
            v += step;
        }
    });
}

WavePtr Wave::makeExpLine(CancelFlag& cancel, WaveVal first, WaveVal last, std::int32_t length,
                          std::int32_t begin, std::int32_t& end) const {
    resolveEnd(end, values);
    checkGenRange(begin, end, values);
    if (length == 1) length = 2;
    checkWave(length > 1, "length > 1");
    checkWave(double(first) * last > 0, "double(begin) * end > 0");
    // The exponent is 1/length, not 1/(length-1): the line stops one step short of `last`,
    // at the value the sample after it would have.
    const double ratio = std::pow(double(last) / double(first), 1.0 / length);
    double v = first;
    return generate(*this, cancel, length, begin, end, [&](WaveVal* d, WaveVal* e) {
        while (d < e) {
            *d++ = toWaveVal(v);
            v *= ratio;
        }
    });
}

WavePtr Wave::makeNoise(CancelFlag& cancel, WaveVal volume, std::int32_t length,
                        std::int32_t begin, std::int32_t& end) const {
    resolveEnd(end, values);
    checkGenRange(begin, end, values);
    const std::int32_t vol = volume;
    // No seeding here: noise continues the one process-wide sequence.
    return generate(*this, cancel, length, begin, end, [&](WaveVal* d, WaveVal* e) {
        while (d < e) *d++ = wrap16((std::int32_t(rand15()) - 16384) * vol / 16384);
    });
}

WavePtr Wave::makeBlockTriangle(CancelFlag& cancel, WaveVal first, WaveVal second,
                                double period, double middle, std::int32_t length,
                                double startPhase, bool triangle, std::int32_t begin,
                                std::int32_t& end) const {
    resolveEnd(end, values);
    checkGenRange(begin, end, values);
    checkWave(period > 0, "period > 0");
    checkWave(length > 0, "length > 0");
    checkWave(middle <= 1, "middle <= 1");
    checkWave(middle >= 0, "middle >= 0");
    const double step = 1 / period;
    const double a = first;
    const double b = second;
    const double rise = middle == 0 ? 0 : (b - a) / middle;
    const double fall = 1 - middle == 0 ? 0 : (a - b) / (1 - middle);
    double p = startPhase;
    return generate(*this, cancel, length, begin, end, [&](WaveVal* d, WaveVal* e) {
        while (d < e) {
            if (triangle)
                *d++ = toWaveVal(p < middle ? a + p * rise : a + (p - 1) * fall);
            else
                *d++ = p < middle ? first : second;
            p = cycle(p + step, 0, 1);
        }
    });
}

WavePtr Wave::makeBlockTriangleEnv(CancelFlag& cancel, WaveVal first, WaveVal second,
                                   double period, const Wave* middleEnvelope,
                                   std::int32_t length, double startPhase, bool triangle,
                                   std::int32_t begin, std::int32_t& end) const {
    resolveEnd(end, values);
    checkGenRange(begin, end, values);
    checkWave(period > 0, "period > 0");
    checkWave(length > 0, "length > 0");
    checkWave(middleEnvelope != nullptr && middleEnvelope->values > 0,
              "middleEnvelope->values > 0");
    const Wave& env = *middleEnvelope;
    const double step = 1 / period;
    // The envelope is stretched over the generated stretch, first sample to last.
    const double envStep = length > 1 ? double(env.values - 1) / double(length - 1) : 0;
    const double a = first;
    const double b = second;
    double p = startPhase;
    double x = 0;
    return generate(*this, cancel, length, begin, end, [&](WaveVal* d, WaveVal* e) {
        while (d < e) {
            const double middle = sample(env, x) * (1.0 / 65535) + 0.5;
            if (triangle)
                *d++ = toWaveVal(p < middle ? a + p * (b - a) / middle
                                            : a + (p - 1) * (a - b) / (1 - middle));
            else
                *d++ = p < middle ? first : second;
            p = cycle(p + step, 0, 1);
            x += envStep;
        }
    });
}

WavePtr Wave::makeSinus(CancelFlag& cancel, WaveVal high, WaveVal low, double per, double count,
                        double startAngle, std::int32_t begin, std::int32_t& end) const {
    resolveEnd(end, values);
    checkGenRange(begin, end, values);
    checkWave(sinus != nullptr, "sinus != NULL");
    checkWave(per > 0, "per > 0");
    checkWave(startAngle >= 0, "startAngle >= 0");
    checkWave(startAngle < 1, "startAngle < 1");
    std::int32_t length = truncToInt(count * per);
    if (length < 1) length = 1;
    const double amplitude = (double(high) - low) * (1.0 / 65535);
    const WaveVal centre = toWaveVal((double(high) + low) * 0.5);
    const Wave& table = *sinus;
    double p = startAngle;
    return generate(*this, cancel, length, begin, end, [&](WaveVal* d, WaveVal* e) {
        while (d < e) {
            *d++ = toWaveVal(sample(table, (kSinusLength - 1) * p) * amplitude + centre);
            p = p + 1 / per;
            if (p >= 1) p -= std::trunc(p);
        }
    });
}

WavePtr Wave::makeForm(CancelFlag& cancel, const Wave* form, std::int32_t beginf,
                       std::int32_t endf, double per, double count, double startAngle,
                       std::int32_t begin, std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeN(begin, end, values);
    if (form == nullptr) return nullptr;
    checkFormRange(beginf, endf, form->values);
    checkWave(per != 0, "per != 0");
    checkWave(startAngle >= 0, "startAngle >= 0");
    checkWave(startAngle < 1, "startAngle < 1");
    const std::int32_t length = truncToInt(std::fabs(per) * count);
    const double span = double(endf - 1 - beginf);
    double p = startAngle;
    return generate(*this, cancel, length, begin, end, [&](WaveVal* d, WaveVal* e) {
        while (d < e) {
            *d++ = toWaveVal(sample(*form, beginf + span * p));
            // A negative period walks the form backwards.
            p = p + 1 / per;
            if (p >= 1) p -= std::trunc(p);
            if (p < 0) p += std::trunc(1 - p);
        }
    });
}

WavePtr Wave::makeMFreq(CancelFlag& cancel, std::int32_t length, const Wave* source,
                        std::int32_t freqCount, const double* volume, const double* period,
                        const double* startAngle, const double* factor, std::int32_t begin,
                        std::int32_t& end) const {
    resolveEnd(end, values);
    checkGenRange(begin, end, values);
    if (source == nullptr) source = sinus;
    const std::int32_t sourceLength = source ? source->values : 0;
    checkWave(freqCount > 0, "freqCount > 0");
    checkWave(length >= 0, "length >= 0");
    checkWave(sourceLength > 0, "sourceLength > 0");
    // Working copies: the volumes decay and the positions move, the caller's arrays stay.
    const double L = sourceLength;
    const std::size_t n = static_cast<std::size_t>(freqCount);
    std::vector<double> pos(n), step(n), vol(n), fac(n);
    for (std::size_t i = 0; i < n; ++i) {
        pos[i] = L * startAngle[i];
        step[i] = L / period[i];
        vol[i] = volume[i];
        fac[i] = factor[i];
    }
    const Wave& src = *source;
    return generate(*this, cancel, length, begin, end, [&](WaveVal* d, WaveVal* e) {
        while (d < e) {
            WaveVal s = 0;
            for (std::size_t i = 0; i < n; ++i) {
                // The running sum wraps after every term, not once at the end.
                s = toWaveVal(boundedSample(src, pos[i]) * vol[i] + s);
                vol[i] *= fac[i];
                pos[i] = cycle(pos[i] + step[i], 0, L - 1);
            }
            *d++ = s;
        }
    });
}

}  // namespace orv
