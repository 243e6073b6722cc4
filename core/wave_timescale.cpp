// Time-scale effects: speed, stretch, length with a speed envelope, rolling in, tempo and
// pitch by blocks, periodic echoes. Each puts a stretch of a new length in place of the
// range (the echoes grow it on either side) and hands back the new wave.
#include <cmath>
#include <cstdint>

#include "core/cancel.h"
#include "core/wave.h"
#include "core/wave_ranges.h"
#include "core/wave_timescale_detail.h"

namespace orv {

using timescale::EnvelopeCursor;
using timescale::readLooped;
using timescale::readZeroOutside;
using timescale::replaceRange;

// ---- speed and stretch ------------------------------------------------------------------

WavePtr Wave::speed(CancelFlag& cancel, double factor, std::int32_t begin,
                    std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeN(begin, end, values);
    const double s = factor < 0 ? -1 : 1;
    const std::int32_t length = truncToInt((end - begin) * factor * s);
    if (length == 0) {
        // Nothing left to play: the whole result is empty, head and tail included.
        end = begin;
        return newWave(cancel, 0);
    }
    return stretch(cancel, length, factor < 0, begin, end);
}

WavePtr Wave::speedWhole(CancelFlag& cancel, double factor) const {
    std::int32_t end = -1;
    return speed(cancel, factor, 0, end);
}

WavePtr Wave::stretch(CancelFlag& cancel, std::int32_t length, bool reverse, std::int32_t begin,
                      std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeN(begin, end, values);
    checkWave(length > 0, "length > 0");
    const double span = end - begin;
    const double step = span / length;
    // Interpolation reads one sample ahead, so the last forward sample (and the first
    // backward one) may read the sample at end, just after the range; past the end of the
    // wave that reads 0.
    double p = reverse ? span : 0;
    const double dp = reverse ? -step : step;
    const WaveVal* src = wave;
    const std::int32_t n = values;
    return replaceRange(*this, cancel, begin, end, length,
                        [&](WaveVal* out, std::int32_t pos, std::int32_t stop) {
                            for (WaveVal* d = out + pos; d < out + stop; ++d) {
                                *d = toWaveVal(readZeroOutside(src, 0, n, begin + p));
                                p += dp;
                            }
                        });
}

WavePtr Wave::stretchWhole(CancelFlag& cancel, std::int32_t length, bool reverse) const {
    std::int32_t end = -1;
    return stretch(cancel, length, reverse, 0, end);
}

// ---- length with a speed envelope -------------------------------------------------------

WavePtr Wave::lengthSpeedEnv(CancelFlag& cancel, const Wave* speedEnvelope, double lengthFactor,
                             double speedScale, double startPos, std::int32_t begin,
                             std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeN(begin, end, values);
    checkWave(lengthFactor > 0, "lengthfactor > 0");
    const double span = end - begin;
    const std::int32_t length = truncToInt(span * lengthFactor);
    checkWave(startPos >= 0, "startpos >= 0");
    checkWave(startPos < length, "startpos < length");
    if (speedEnvelope == nullptr || speedEnvelope->values < 1) return nullptr;
    // The envelope runs through once over the new stretch.
    const double envStep = double(speedEnvelope->values - 1) / lengthFactor / span;
    double e = 0;
    double r = begin + span * startPos;
    const WaveVal* src = wave;
    const std::int32_t b = begin;
    const std::int32_t en = end;
    return replaceRange(*this, cancel, begin, end, length,
                        [&](WaveVal* out, std::int32_t pos, std::int32_t stop) {
                            for (WaveVal* d = out + pos; d < out + stop; ++d) {
                                r += sample(*speedEnvelope, e) * speedScale / 32767;
                                if (r >= b)
                                    r -= std::trunc((r - b) / span) * span;
                                else
                                    r += std::trunc((b - r) / span + 1) * span;
                                *d = toWaveVal(readLooped(src, b, en, r));
                                e += envStep;
                            }
                        });
}

// ---- rolling in -------------------------------------------------------------------------

WavePtr Wave::rollIn(CancelFlag& cancel, std::int32_t length, std::int32_t target,
                     std::int32_t begin, std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeN(begin, end, values);
    checkWave(length > 0, "length > 0");
    checkWave(target < length, "target < length");
    checkWave(target >= 0, "target >= 0");
    WavePtr w = newWave(cancel, std::int64_t(values) - (end - begin) + length);
    if (!w) return nullptr;
    w->copyFrom(cancel, this, 0, begin, 0);
    w->clear(cancel, begin, begin + length);
    w->copyFrom(cancel, this, end, values, begin + length);
    // The range is laid into the loop from begin + target on, over itself as often as it
    // takes. A chunk never crosses the end of the loop, so the jump back falls between
    // chunks.
    const std::int32_t loopEnd = begin + length;
    std::int32_t from = begin;
    std::int32_t to = begin + target;
    WaveVal* out = w->data();
    while (from < end) {
        if (isCancelled(cancel)) break;
        if (to == loopEnd) to = begin;
        std::int32_t n = end - from;
        if (loopEnd - to < n) n = loopEnd - to;
        if (kChunk < n) n = kChunk;
        if (chunkHook) callChunkHook(from, from + n);
        const WaveVal* s = wave + from;
        WaveVal* d = out + to;
        for (std::int32_t k = 0; k < n; ++k) d[k] = wrap16(std::int32_t(d[k]) + s[k]);
        from += n;
        to += n;
    }
    end = begin + length;
    return w;
}

// ---- tempo and pitch --------------------------------------------------------------------

WavePtr Wave::tempoPitch(CancelFlag& cancel, double speed, double startPos, double lengthFactor,
                         double pitchStep, double blockTime, std::int32_t begin,
                         std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeN(begin, end, values);
    checkWave(speed != 0, "speed != 0");
    checkWave(blockTime > 0, "blockTime > 0");
    checkWave(lengthFactor > 0, "lengthFactor > 0");
    const double span = end - begin;
    const std::int32_t length = truncToInt(span * lengthFactor);
    const double start = begin + span * startPos;
    const double lo = begin;
    const double hi = end;
    double r = start;
    std::int64_t c = 0;
    std::int64_t j = 0;  // output samples written
    const WaveVal* src = wave;
    const std::int32_t n = values;
    return replaceRange(*this, cancel, begin, end, length,
                        [&](WaveVal* out, std::int32_t pos, std::int32_t stop) {
                            for (WaveVal* d = out + pos; d < out + stop; ++d) {
                                *d = toWaveVal(readZeroOutside(src, 0, n, r));
                                r += pitchStep;
                                ++c;
                                ++j;
                                // At each block boundary jump to where the tempo has got to.
                                if (c >= blockTime) {
                                    r = cycle(start + double(j) * speed, lo, hi);
                                    c = 0;
                                }
                            }
                        });
}

WavePtr Wave::tempoPitchCross(CancelFlag& cancel, double speed, const Wave* speedEnvelope,
                              double startPos, double lengthFactor, double pitchStep,
                              const Wave* pitchEnvelope, double blockTime, std::int32_t begin,
                              std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeN(begin, end, values);
    if (speedEnvelope != nullptr)
        checkWave(speedEnvelope->values > 0, "speedEnvelop->values > 0");
    if (pitchEnvelope != nullptr) {
        checkWave(pitchEnvelope->values > 0, "freqWave->values > 0");
        checkWave(speed > 0, "speed > 0");
    }
    checkWave(speed != 0, "speed != 0");
    checkWave(blockTime > 0, "blockTime > 0");
    checkWave(lengthFactor > 0, "lengthFactor > 0");
    const double span = end - begin;
    const std::int32_t length = truncToInt(span * lengthFactor);
    const double start = begin + span * startPos;
    const double lo = begin;
    const double hi = end;
    // Envelopes are stretched over the new stretch: the pitch one is read per sample, the
    // speed one at each head restart.
    EnvelopeCursor speedCursor(speedEnvelope, length);
    EnvelopeCursor pitchCursor(pitchEnvelope, length);
    auto pitchNow = [&] {
        return pitchEnvelope ? pitchCursor.value() * pitchStep / 32767 : pitchStep;
    };
    auto speedNow = [&] {
        return speedEnvelope ? speedCursor.value() * speed / 32767 : speed;
    };
    // Head B runs `offset` ahead of head A so that the two blocks meet in step.
    auto offsetFor = [&](double pitch) { return blockTime * (1 - pitch) * 0.5; };
    const double half = std::floor(blockTime * 0.5);
    double a = start;
    double b = start + offsetFor(pitchNow());
    std::int64_t c = 0;
    std::int64_t k = 0;  // output samples written
    const WaveVal* src = wave;
    const std::int32_t n = values;
    return replaceRange(
        *this, cancel, begin, end, length, [&](WaveVal* out, std::int32_t pos, std::int32_t stop) {
            for (WaveVal* d = out + pos; d < out + stop; ++d) {
                const double pitch = pitchNow();
                // Weight of head A: 1 at the start of a block, 0 at its middle.
                const double w = std::fabs(double(c) / blockTime * 2 - 1);
                const double fromA = std::trunc(readZeroOutside(src, 0, n, a) * w);
                *d = toWaveVal(fromA + readZeroOutside(src, 0, n, b) * (1 - w));
                a += pitch;
                b += pitch;
                ++c;
                ++k;
                // Each head restarts where the tempo has got to, when its weight is 0.
                if (double(c) == half)
                    a = cycle(start + double(k) * speedNow() + offsetFor(pitch), lo, hi);
                if (double(c) >= blockTime) {
                    b = cycle(start + double(k) * speedNow() + offsetFor(pitch), lo, hi);
                    c = 0;
                }
                speedCursor.advance();
                pitchCursor.advance();
            }
        });
}

// ---- periodic echoes --------------------------------------------------------------------

WavePtr Wave::perEchoEnv(CancelFlag& cancel, double diffTime, const Wave* timeEnvelope,
                         const Wave* volumeEnvelope, std::int32_t count, std::int32_t& begin,
                         std::int32_t& end) const {
    resolveEnd(end, values);
    checkWave(diffTime >= 0, "diffTime >= 0");
    checkRangeT(begin, end, values);
    if (timeEnvelope == nullptr || volumeEnvelope == nullptr || timeEnvelope->values < 1 ||
        volumeEnvelope->values < 1)
        return nullptr;
    const auto stretch = timescale::echoBothSides(diffTime, count, begin, end);
    const std::int64_t len = std::int64_t(stretch.newEnd) - stretch.newBegin;
    EnvelopeCursor timeCursor(timeEnvelope, len);
    EnvelopeCursor volumeCursor(volumeEnvelope, len);
    return timescale::echoes(
        *this, cancel, count, stretch, begin, end,
        [&](std::int32_t) {
            timeCursor.reset();
            volumeCursor.reset();
        },
        [&](std::int32_t i, std::int32_t p, double& volume, double& at) {
            volume = std::pow(volumeCursor.value() / 32767, i);
            at = p + timeCursor.value() * (-i * diffTime) / 32767;
            timeCursor.advance();
            volumeCursor.advance();
        });
}

WavePtr Wave::perEcho(CancelFlag& cancel, double diffTime, double volumeFactor,
                      std::int32_t count, std::int32_t& begin, std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeT(begin, end, values);
    const auto stretch = timescale::echoOneSide(diffTime, count, begin, end);
    double volume = 1;
    return timescale::echoes(
        *this, cancel, count, stretch, begin, end,
        [&](std::int32_t) { volume *= volumeFactor; },
        [&](std::int32_t i, std::int32_t p, double& v, double& at) {
            v = volume;
            at = p - i * diffTime;
        },
        [&](std::int32_t i, double& v, std::int64_t& shift) {
            // A delay of whole samples (100 ms at 44.1 kHz) makes p - i x diffTime an exact
            // whole number for every p, so the read never interpolates.
            const double delay = i * diffTime;
            if (!std::isfinite(volume) || !(std::fabs(delay) < 1073741824.0) ||
                delay != std::floor(delay))
                return false;
            v = volume;
            shift = static_cast<std::int64_t>(delay);
            return true;
        });
}

WavePtr Wave::perEchoVolumeEnv(CancelFlag& cancel, double diffTime, const Wave* volumeEnvelope,
                               std::int32_t count, std::int32_t& begin,
                               std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeT(begin, end, values);
    if (volumeEnvelope == nullptr || volumeEnvelope->values < 1) return nullptr;
    const auto stretch = timescale::echoOneSide(diffTime, count, begin, end);
    EnvelopeCursor volumeCursor(volumeEnvelope, std::int64_t(stretch.newEnd) - stretch.newBegin);
    return timescale::echoes(
        *this, cancel, count, stretch, begin, end, [&](std::int32_t) { volumeCursor.reset(); },
        [&](std::int32_t i, std::int32_t p, double& volume, double& at) {
            volume = std::pow(volumeCursor.value() / 32767, i);
            at = p - i * diffTime;
            volumeCursor.advance();
        });
}

WavePtr Wave::perEchoTimeEnv(CancelFlag& cancel, double diffTime, const Wave* timeEnvelope,
                             double volumeFactor, std::int32_t count, std::int32_t& begin,
                             std::int32_t& end) const {
    resolveEnd(end, values);
    checkWave(diffTime >= 0, "diffTime >= 0");
    checkRangeT(begin, end, values);
    if (timeEnvelope == nullptr || timeEnvelope->values < 1) return nullptr;
    const auto stretch = timescale::echoBothSides(diffTime, count, begin, end);
    EnvelopeCursor timeCursor(timeEnvelope, std::int64_t(stretch.newEnd) - stretch.newBegin);
    double volume = 1;
    return timescale::echoes(
        *this, cancel, count, stretch, begin, end,
        [&](std::int32_t) {
            timeCursor.reset();
            volume *= volumeFactor;
        },
        [&](std::int32_t i, std::int32_t p, double& v, double& at) {
            v = volume;
            at = p + timeCursor.value() * (-i * diffTime) / 32767;
            timeCursor.advance();
        });
}

}  // namespace orv
