// Balance, the left/right matrix and the split/merge conversions.
#include "core/stereo_ops.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "core/filter.h"
#include "core/platform.h"
#include "core/sample_value.h"
#include "core/sound_channels.h"

namespace orv {

using namespace sound_detail;

namespace {

// The channel work once lived with the wave and still reports under its name.
constexpr const char* kWaveUnit = "wave";

// 1/3400 s: the greatest time difference between two ears, as stored.
constexpr double kMaxEarDelay = 0.00029411764705882356;
// Not pi: the delays were tuned with this value.
constexpr double kHalfTurn = 3.1415293;
// Envelope code to frequency: 20 x 10^((code + 32768) x 3 / 65535).
constexpr double kFreqExponent = 4.5777065690089265e-05;
constexpr double kBalanceLowPassFactor = 0.4;
constexpr std::int32_t kCurveLength = 150;

struct CurvePoint {
    std::int32_t index;
    std::int32_t hertz;
};
constexpr CurvePoint kCurvePoints[] = {
    {0, 20000}, {59, 3500}, {75, 2500}, {90, 1000}, {149, 350}};

// The frequency code of f, computed from the whole-sample period freq / f: with that
// integer division the frequency really used is freq / trunc(freq / f).
WaveVal frequencyCode(std::int32_t freq, std::int32_t hertz) {
    const std::int32_t period = freq / hertz;
    const double used = static_cast<double>(freq) / period;  // period 0 gives infinity
    double code = 21845.0 * std::log10(used / 20.0) - 32768.0;
    if (!(code <= 32767.0)) code = 32767.0;
    if (code < -32768.0) code = -32768.0;
    return toWaveVal(code);
}

double periodOfCode(std::int32_t freq, double code) {
    return freq / (20.0 * std::pow(10.0, (code + 32768.0) * kFreqExponent));
}

// The curve's code for one bSide, read with interpolation and cut to a sample.
WaveVal curveCode(const Wave& curve, double bSide) {
    double pos = (kCurveLength - 1) * (bSide * 0.5 + 0.5);
    pos = std::clamp(pos, 0.0, double(kCurveLength - 1));
    return toWaveVal(sample(curve, pos));
}

// The input read at a fractional position, 0 outside [0, count - 1].
double readAt(const Wave& w, double x) {
    const std::int32_t count = w.getValues();
    if (x < 0 || x > count - 1) return 0.0;
    const auto i = static_cast<std::int32_t>(x);
    const double f = x - i;
    if (f == 0) return w[i];
    return (1 - f) * w[i] + f * w[i + 1];
}

// The balance filter: the channel low-passed at the curve's frequency for bSide.
WavePtr balFilter(CancelFlag& cancel, const Wave& wave, std::int32_t freq, double bSide) {
    debugTrace("in Wave::balFilter val\n");
    WavePtr result;
    if (wave.getValues() == 0) {
        result = copyWave(cancel, &wave);
        if (result == nullptr && !isCancelled(cancel)) result.reset(new (std::nothrow) Wave());
    } else if (WavePtr curve = balanceFilterCurve(cancel, freq)) {
        const double period = balanceFilterPeriod(*curve, freq, bSide);
        result = LowPass(&wave, cancel, period, kBalanceLowPassFactor, 1, 1, 0, -1);
    }
    debugTrace("uit Wave::balFilter val\n");
    return result;
}

// The time shift of one channel with a constant delay; g applies to the lagging branch only.
WavePtr timeShift(CancelFlag& cancel, const Wave& wave, std::int32_t freq, double bSide,
                  double g, bool diffTime) {
    ORV_ASSERT(diffTime, kWaveUnit);
    const std::int32_t count = wave.getValues();
    const double d = balanceDelay(freq, bSide);
    if (d < 0) {
        // This channel leads: it only gets the silence that keeps both lengths equal.
        std::int32_t end = count;
        return wave.makeSilence(cancel, truncToInt(-d + 1), count, end);
    }
    const std::int32_t n = truncToInt(1 + d + count);
    WavePtr out = newWave(cancel, n);
    if (!out) return nullptr;
    WaveVal* o = out->data();
    forEachChunk(cancel, 0, n, [&](std::int32_t pos, std::int32_t stop) {
        for (std::int32_t j = pos; j < stop; ++j) o[j] = toWaveVal(readAt(wave, j - d) * g);
    });
    return out;
}

// A copy that is never null unless cancelled (an empty input gives an empty wave).
WavePtr plainCopy(CancelFlag& cancel, const Wave& wave) {
    if (wave.getValues() == 0)
        return isCancelled(cancel) ? nullptr : WavePtr(new (std::nothrow) Wave());
    return copyWave(cancel, &wave);
}

}  // namespace

double balanceMaxDelay(std::int32_t freq) { return freq * kMaxEarDelay * 2; }

double balanceDelay(std::int32_t freq, double bSide) {
    return std::sin(bSide * kHalfTurn * 0.5) * balanceMaxDelay(freq);
}

WavePtr balanceFilterCurve(CancelFlag& cancel, std::int32_t freq) {
    WavePtr curve = newWave(cancel, kCurveLength);
    if (!curve) return nullptr;
    ORV_ASSERT_TEXT(curve->getValues() == kCurveLength, "values == 150", kWaveUnit);
    for (std::size_t k = 0; k + 1 < std::size(kCurvePoints); ++k) {
        const CurvePoint a = kCurvePoints[k], b = kCurvePoints[k + 1];
        curve->drawLine(cancel, a.index, frequencyCode(freq, a.hertz), b.index + 1,
                        frequencyCode(freq, b.hertz));
    }
    return curve;
}

double balanceFilterPeriod(const Wave& curve, std::int32_t freq, double bSide) {
    return periodOfCode(freq, curveCode(curve, bSide));
}

WavePtr balanceChannel(CancelFlag& cancel, const Wave& wave, std::int32_t freq, double bSide,
                       bool timeDifference, bool volume, bool filter) {
    const double g = volume ? (1 - bSide) * 0.5 : 1.0;
    if (timeDifference) {
        WavePtr filtered;
        if (filter) {
            filtered = balFilter(cancel, wave, freq, bSide);
            if (!filtered) return nullptr;
        }
        return timeShift(cancel, filtered ? *filtered : wave, freq, bSide, g, timeDifference);
    }
    WavePtr result = filter ? balFilter(cancel, wave, freq, bSide) : plainCopy(cancel, wave);
    if (volume && result && result->getValues() > 0) {
        std::int32_t end = -1;
        result = result->volume(cancel, g, 0, end);
    }
    return result;
}

WavePtr balanceChannelEnv(CancelFlag& cancel, const Wave& wave, std::int32_t freq,
                          const Wave& envelope, bool right, bool timeDifference, bool volume,
                          bool filter) {
    const std::int32_t envCount = envelope.getValues();
    ORV_ASSERT_TEXT(envCount != 0, "GetValues() != 0", kUnit);
    const double side = right ? -1.0 : 1.0;
    // Level: e x -0.5 + 16383 on the left, e x 0.5 + 16383 on the right (e = 0: half).
    auto level = [&](double e) { return e * (-0.5 * side) + 16383; };

    WavePtr filtered;
    if (filter && wave.getValues() > 0) {
        debugTrace("in Wave::balFilter val\n");
        WavePtr curve = balanceFilterCurve(cancel, freq);
        WavePtr codes = curve ? newWave(cancel, envCount) : nullptr;
        if (codes) {
            for (std::int32_t i = 0; i < envCount; ++i)
                (*codes)[i] = curveCode(*curve, side * envelope[i] / 32767.0);
            filtered = LowPassEnv(&wave, cancel, codes.get(), kBalanceLowPassFactor, 1, 1, freq,
                                  0, -1);
        }
        debugTrace("uit Wave::balFilter val\n");
        if (!filtered) return nullptr;
    }
    const Wave& source = filtered ? *filtered : wave;

    if (timeDifference) {
        const std::int32_t count = source.getValues();
        const double maxDelay = balanceMaxDelay(freq);
        const std::int32_t n = truncToInt(count + 1 + std::trunc(maxDelay));
        const double step = n > 1 ? double(envCount - 1) / (n - 1) : 0.0;
        WavePtr out = newWave(cancel, n);
        if (!out) return nullptr;
        WaveVal* o = out->data();
        forEachChunk(cancel, 0, n, [&](std::int32_t pos, std::int32_t stop) {
            for (std::int32_t j = pos; j < stop; ++j) {
                const double x = std::min(j * step, double(envCount - 1));
                const double e = sample(envelope, x);
                const double d = balanceDelay(freq, side * e / 32767.0);
                if (d < 0) {
                    o[j] = toWaveVal(readAt(source, j));  // leading: no shift, no level
                } else {
                    const double g = volume ? level(e) / 32767.0 : 1.0;
                    o[j] = toWaveVal(readAt(source, j - d) * g);
                }
            }
        });
        return out;
    }

    if (volume && source.getValues() > 0) {
        WavePtr levels = newWave(cancel, envCount);
        if (!levels) return nullptr;
        for (std::int32_t i = 0; i < envCount; ++i) (*levels)[i] = toWaveVal(level(envelope[i]));
        std::int32_t end = -1;
        return source.volumeEnv(cancel, levels.get(), 0, end);
    }
    if (filtered) return filtered;
    return plainCopy(cancel, wave);
}

// ---- the Sound and StereoSound members ---------------------------------------------------

SoundPtr Sound::Balance(CancelFlag* cancel, double b, bool timeDifference, bool volume,
                        bool filter) const {
    const Wave& first = *channelsOf(*this).wave[0];
    WavePtr left = balanceChannel(*cancel, first, Freq, b, timeDifference, volume, filter);
    WavePtr right = left ? balanceChannel(*cancel, first, Freq, -b, timeDifference, volume, filter)
                         : nullptr;
    return wrapStereo(cancel, std::move(left), std::move(right), Freq);
}

SoundPtr Sound::BalanceEnv(CancelFlag* cancel, const Sound* envelope, bool timeDifference,
                           bool volume, bool filter) const {
    ORV_ASSERT_TEXT(envelope->GetValues() != 0, "GetValues() != 0", kUnit);
    const Wave& first = *channelsOf(*this).wave[0];
    FetchedWave env = argWave(envelope, cancel, Side::Middle);
    if (!env.get()) return nullptr;
    WavePtr left = balanceChannelEnv(*cancel, first, Freq, *env.get(), false, timeDifference,
                                     volume, filter);
    WavePtr right = left ? balanceChannelEnv(*cancel, first, Freq, *env.get(), true,
                                             timeDifference, volume, filter)
                         : nullptr;
    return wrapStereo(cancel, std::move(left), std::move(right), Freq);
}

SoundPtr StereoSound::MixLeftRight(CancelFlag* cancel, double LL, double LR, double RL,
                                   double RR, std::int32_t begin, std::int32_t& end) const {
    ORV_ASSERT(GetValues() != 0, kUnit);
    std::int32_t end1 = end, end2 = end;
    WavePtr left = WaveLeft->mix(*cancel, WaveRight, LL, RL, begin, end1);
    WavePtr right = WaveRight->mix(*cancel, WaveLeft, RR, LR, begin, end2);
    if (!isCancelled(*cancel)) checkSameRange(begin, begin, end1, end2);
    end = end1;
    return wrapStereo(cancel, std::move(left), std::move(right), Freq);
}

// ---- split and merge -----------------------------------------------------------------------

SoundPtr MergeToStereo(CancelFlag* cancel, const Sound& left, const Sound& right) {
    WavePtr l = left.DupMonoWave(cancel, 0);
    WavePtr r = l ? right.DupMonoWave(cancel, 0) : nullptr;
    return wrapStereo(cancel, std::move(l), std::move(r), left.Freq);
}

std::pair<SoundPtr, SoundPtr> SplitToMono(CancelFlag* cancel, const Sound& sound) {
    SoundPtr left = wrapMono(cancel, sound.DupLeftWave(cancel, 0), sound.Freq);
    SoundPtr right = wrapMono(cancel, sound.DupRightWave(cancel, 0), sound.Freq);
    if (!left || !right) return {nullptr, nullptr};
    return {std::move(left), std::move(right)};
}

}  // namespace orv
