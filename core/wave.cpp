// Wave: construction and ownership, the structural primitives, the peak search, envelope
// sampling and the shared sine table.
#include "core/wave.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "core/platform.h"
#include "core/wave_ranges.h"

namespace orv {

namespace {

constexpr const char* kSystemError = "System Error";
constexpr const char* kNoMemory = "There is not enough memmory for this operation.";
constexpr const char* kForbiddenCopy =
    "call to forbidden Wave(const Wave &other)! It is recommed to save your work in NEW "
    "file(s)!";
constexpr const char* kNoSinus = "Could not create sinus.";

// Two's complement add without the int16 promotion surprises.
inline WaveVal addWrap(WaveVal a, WaveVal b) {
    return static_cast<WaveVal>(static_cast<std::uint16_t>(static_cast<std::uint16_t>(a) +
                                                           static_cast<std::uint16_t>(b)));
}

std::string pointerText(const void* p) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%p", p);
    return buf;
}

// d[i] = d[i] + s[i] x factor, truncated and wrapped. While the sum surely fits 32 bits the
// conversion needs no range test, and the loop runs in fixed groups the compiler vectorises.
void mixScaledRun(const WaveVal* __restrict s, WaveVal* __restrict d, std::int32_t n,
                  double factor) {
    constexpr std::int32_t kGroup = 16;
    std::int32_t i = 0;
    if (std::fabs(factor) < 65000.0) {
        for (; i + kGroup <= n; i += kGroup)
            for (std::int32_t j = 0; j < kGroup; ++j)
                d[i + j] = wrap16(static_cast<std::int32_t>(d[i + j] + s[i + j] * factor));
    }
    for (; i < n; ++i) d[i] = toWaveVal(double(d[i]) + double(s[i]) * factor);
}

// The number of samples that both waves still have from their starting points.
inline std::int32_t common(std::int32_t a, std::int32_t b) { return a < b ? a : b; }

}  // namespace

// ---- construction -----------------------------------------------------------------------

Wave::Wave(CancelFlag& cancel, std::int32_t count) : values(count) {
    if (count != 0) {
        wave = allocateSamples(count);
        if (wave == nullptr) {
            showMessage(kSystemError, kNoMemory, MessageIcon::Information);
            setCancelled(cancel);
        }
    }
}

Wave::Wave(WaveVal* samples, std::int32_t count) : wave(samples), values(count) {}

Wave::Wave(CancelFlag& cancel, const Wave& other) {
    if (other.values < 1) return;
    wave = allocateSamples(other.values);
    if (wave == nullptr) {
        // Every failed allocation tells the user why the command did nothing.
        showMessage(kSystemError, kNoMemory, MessageIcon::Information);
        setCancelled(cancel);
        return;
    }
    values = other.values;
    WaveVal* dst = wave;
    const WaveVal* src = other.wave;
    forEachChunk(cancel, 0, values, [&](std::int32_t pos, std::int32_t stop) {
        std::memcpy(dst + pos, src + pos, std::size_t(stop - pos) * sizeof(WaveVal));
    });
}

Wave::Wave(const Wave&) {
    // A shallow copy would leave two owners of one block; stay empty instead.
    showMessage(kSystemError, kForbiddenCopy, MessageIcon::Information);
}

Wave::~Wave() {
    if (values > 0) freeSamples(wave);
}

void Wave::dump() const {
    debugTrace("Wave.this = " + pointerText(this) + "\n");
    debugTrace("Wave.values = " + std::to_string(values) + "\n");
    debugTrace("Wave.wave = " + pointerText(wave) + "\n");
}

WavePtr newWave(CancelFlag& cancel, std::int64_t count) {
    if (isCancelled(cancel)) return nullptr;
    // A length no wave can have (a sum that left the 32-bit range) is memory there is not.
    if (count < 0 || count > INT32_MAX) {
        showMessage(kSystemError, kNoMemory, MessageIcon::Information);
        setCancelled(cancel);
        return nullptr;
    }
    WavePtr w(new (std::nothrow) Wave(cancel, std::int32_t(count)));
    if (!w) {
        setCancelled(cancel);
        return nullptr;
    }
    if (isCancelled(cancel)) return nullptr;
    return w;
}

WavePtr copyWave(CancelFlag& cancel, const Wave* other) {
    if (isCancelled(cancel) || other == nullptr) return nullptr;
    WavePtr w(new (std::nothrow) Wave(cancel, *other));
    if (!w) {
        setCancelled(cancel);
        return nullptr;
    }
    // Storage failed: nothing to hand back. A cancel during the copy keeps the partial copy.
    if (other->getValues() > 0 && w->getValues() == 0) return nullptr;
    return w;
}

// ---- in-place primitives ----------------------------------------------------------------

void Wave::copyFrom(CancelFlag& cancel, const Wave* from, std::int32_t begin, std::int32_t end,
                    std::int32_t to) {
    checkWave(end <= from->values, "end <= from->values");
    checkWave(begin >= 0, "begin >= 0");
    checkWave(end >= begin, "end >= begin");
    checkWave(std::int64_t(to) + end - begin <= values, "to + end - begin <= values");
    checkWave(to >= 0, "to >= 0");
    if (begin == end) return;  // an empty wave has no storage to point into
    WaveVal* const dst = wave + to;
    const WaveVal* const src = from->wave + begin;
    forEachChunk(cancel, begin, end, [&](std::int32_t pos, std::int32_t stop) {
        // memmove: a wave may copy within itself.
        std::memmove(dst + (pos - begin), src + (pos - begin),
                     std::size_t(stop - pos) * sizeof(WaveVal));
    });
}

void Wave::addFrom(CancelFlag& cancel, const Wave* from, std::int32_t begin, std::int32_t end,
                   std::int32_t to) {
    checkWave(end <= from->values, "end <= from->values");
    checkWave(begin >= 0, "begin >= 0");
    checkWave(end >= begin, "end >= begin");
    checkWave(std::int64_t(to) + end - begin <= values, "to + end - begin <= values");
    checkWave(to >= 0, "to >= 0");
    if (begin == end) return;
    WaveVal* const dst = wave + to;
    const WaveVal* const src = from->wave + begin;
    forEachChunk(cancel, begin, end, [&](std::int32_t pos, std::int32_t stop) {
        WaveVal* d = dst + (pos - begin);
        const WaveVal* s = src + (pos - begin);
        const WaveVal* const e = src + (stop - begin);
        while (s < e) {
            *d = addWrap(*d, *s);
            ++d;
            ++s;
        }
    });
}

void Wave::clear(CancelFlag& cancel, std::int32_t begin, std::int32_t end) {
    checkWave(begin >= 0, "begin >= 0");
    checkWave(end >= begin, "end >= begin");
    checkWave(end <= values, "end <= values");
    WaveVal* dst = wave;
    forEachChunk(cancel, begin, end, [&](std::int32_t pos, std::int32_t stop) {
        std::memset(dst + pos, 0, std::size_t(stop - pos) * sizeof(WaveVal));
    });
}

void Wave::drawLine(CancelFlag& cancel, std::int32_t begin, WaveVal first, std::int32_t end,
                    WaveVal last) {
    checkWave(end > begin, "end > begin");
    checkWave(end <= values, "end <= values");
    if (end == begin + 1) {
        if (!isCancelled(cancel)) wave[begin] = toWaveVal((double(first) + last) * 0.5);
        return;
    }
    const double step = (double(last) - first) / double(end - begin - 1);
    double v = first;
    WaveVal* dst = wave;
    forEachChunk(cancel, begin, end, [&](std::int32_t pos, std::int32_t stop) {
        WaveVal* d = dst + pos;
        WaveVal* const e = dst + stop;
        while (d < e) {
            *d++ = toWaveVal(v);
            v += step;
        }
    });
}

std::int32_t Wave::maxAbs(CancelFlag& cancel, std::int32_t begin, std::int32_t end) const {
    resolveEnd(end, values);
    checkRangeE(begin, end, values);
    // The running maximum is compared as a 16-bit value: a -32768 (absolute 32768) reads
    // back as -32768, so any later sample takes its place. Older callers depend on this.
    std::int32_t max = 0;
    const WaveVal* src = wave;
    const bool done = forEachChunk(cancel, begin, end, [&](std::int32_t pos, std::int32_t stop) {
        const WaveVal* s = src + pos;
        const WaveVal* const e = src + stop;
        while (s < e) {
            const std::int32_t a = std::abs(std::int32_t(*s++));
            if (a > std::int32_t(wrap16(max))) max = a;
        }
    });
    return done ? max : 0;
}

void Wave::mixAfter(CancelFlag& cancel, const Wave* other, std::int32_t after) {
    checkWave(values != 0, "values != 0");
    checkWave(after < values, "after < values");
    checkWave(after >= 0, "after >= 0");
    if (other == nullptr) return;
    WaveVal* dst = wave + after;
    const WaveVal* src = other->wave;
    forEachChunk(cancel, 0, common(values - after, other->values),
                 [&](std::int32_t pos, std::int32_t stop) {
                     WaveVal* d = dst + pos;
                     const WaveVal* s = src + pos;
                     const WaveVal* const e = src + stop;
                     while (s < e) {
                         *d = addWrap(*d, *s);
                         ++d;
                         ++s;
                     }
                 });
}

void Wave::mixAfter(CancelFlag& cancel, const Wave* other, std::int32_t after, double factor) {
    checkWave(values != 0, "values != 0");
    checkWave(after < values, "after < values");
    checkWave(after >= 0, "after >= 0");
    if (other == nullptr) return;
    WaveVal* dst = wave + after;
    const WaveVal* src = other->wave;
    forEachChunk(cancel, 0, common(values - after, other->values),
                 [&](std::int32_t pos, std::int32_t stop) {
                     mixScaledRun(src + pos, dst + pos, stop - pos, factor);
                 });
}

void Wave::mixAfterCyclic(CancelFlag& cancel, const Wave* other, std::int32_t after) {
    checkWave(values != 0, "values != 0");
    checkWave(after < values, "after < values");
    checkWave(after >= 0, "after >= 0");
    if (other == nullptr) return;
    WaveVal* const base = wave;
    WaveVal* const top = wave + values;
    WaveVal* d = wave + after;
    const WaveVal* src = other->wave;
    forEachChunk(cancel, 0, other->values, [&](std::int32_t pos, std::int32_t stop) {
        const WaveVal* s = src + pos;
        const WaveVal* const e = src + stop;
        while (s < e) {
            *d = addWrap(*d, *s++);
            if (++d == top) d = base;
        }
    });
}

// ---- primitives that make a new wave ----------------------------------------------------

WavePtr Wave::extract(CancelFlag& cancel, std::int32_t begin, std::int32_t end) const {
    checkRangeN(begin, end, values);
    WavePtr w = newWave(cancel, end - begin);
    if (!w) return nullptr;
    w->copyFrom(cancel, this, begin, end, 0);
    return w;
}

WavePtr Wave::remove(CancelFlag& cancel, std::int32_t begin, std::int32_t end) const {
    checkRangeN(begin, end, values);
    WavePtr w = newWave(cancel, values - (end - begin));
    if (!w) return nullptr;
    w->copyFrom(cancel, this, 0, begin, 0);
    w->copyFrom(cancel, this, end, values, begin);
    return w;
}

WavePtr Wave::replace(CancelFlag& cancel, const Wave* other, std::int32_t begin,
                      std::int32_t end) const {
    resolveEnd(end, values);
    checkRangeE(begin, end, values);
    if (other == nullptr) return nullptr;
    debugTrace("Wave::replace A");
    const std::int32_t otherValues = other->values;
    debugTrace("Wave::replace B");
    WavePtr w = newWave(cancel, std::int64_t(values) - (end - begin) + otherValues);
    debugTrace("Wave::replace C");
    if (!w) return nullptr;
    debugTrace("Wave::replace D");
    w->copyFrom(cancel, this, 0, begin, 0);
    debugTrace("Wave::replace E");
    w->copyFrom(cancel, other, 0, otherValues, begin);
    debugTrace("Wave::replace F");
    w->copyFrom(cancel, this, end, values, begin + otherValues);
    debugTrace("Wave::replace G");
    return w;
}

WavePtr Wave::append(CancelFlag& cancel, const Wave* other) const {
    if (other == nullptr) return nullptr;
    WavePtr w = newWave(cancel, std::int64_t(values) + other->values);
    if (!w) return nullptr;
    w->copyFrom(cancel, this, 0, values, 0);
    w->copyFrom(cancel, other, 0, other->values, values);
    return w;
}

WavePtr Wave::insertSilence(CancelFlag& cancel, std::int32_t length, std::int32_t begin,
                            std::int32_t& end) const {
    resolveEnd(end, values);
    checkRangeE(begin, end, values);
    checkWave(length >= 0, "length >= 0");
    WavePtr w = newWave(cancel, std::int64_t(values) - (end - begin) + length);
    if (!w) return nullptr;
    w->copyFrom(cancel, this, 0, begin, 0);
    w->clear(cancel, begin, begin + length);
    w->copyFrom(cancel, this, end, values, begin + length);
    end = begin + length;
    return w;
}

namespace {
// The part of `other` that a mix uses: its length, and where it starts in `other`.
struct UsedPart {
    std::int32_t used;
    std::int32_t first;
};

UsedPart usedPart(const Wave& other, std::int32_t otherEnd, bool keepTail) {
    const bool endGiven = otherEnd >= 0;
    const std::int32_t used =
        endGiven && otherEnd < other.getValues() ? otherEnd : other.getValues();
    const std::int32_t first = keepTail && endGiven ? other.getValues() - used : 0;
    return {used, first};
}
}  // namespace

WavePtr Wave::mixAt(CancelFlag& cancel, const Wave* other, std::int32_t offset,
                    std::int32_t otherEnd, bool keepTail) const {
    if (other == nullptr) return nullptr;
    const UsedPart part = usedPart(*other, otherEnd, keepTail);
    const std::int32_t lead = offset < 0 ? -offset : 0;
    const std::int32_t reach = offset + part.used - values;
    const std::int32_t grow = reach > 0 ? reach : 0;
    WavePtr w = newWave(cancel, std::int64_t(values) + lead + grow);
    if (!w) return nullptr;
    w->clear(cancel, 0, lead);
    w->copyFrom(cancel, this, 0, values, lead);
    w->clear(cancel, lead + values, lead + values + grow);
    w->addFrom(cancel, other, part.first, part.first + part.used, offset + lead);
    return w;
}

WavePtr Wave::mixEndingAt(CancelFlag& cancel, const Wave* other, std::int32_t position,
                          std::int32_t otherEnd, bool keepTail) const {
    if (other == nullptr) return nullptr;
    const std::int32_t used = usedPart(*other, otherEnd, keepTail).used;
    return mixAt(cancel, other, position - used, otherEnd, keepTail);
}

// ---- envelope reading -------------------------------------------------------------------

double sample(const Wave& w, double x) {
    const std::int32_t n = w.getValues();
    if (n == 0) return 0;
    const std::int32_t i = truncToInt(x);
    // Callers stay inside 0 .. n-1; accumulated steps may overshoot by a rounding error,
    // so the ends are held rather than read past.
    if (i < 0) return w[0];
    if (i >= n - 1) return w[n - 1];
    const double f = x - i;
    if (f == 0) return w[i];
    return (1 - f) * w[i] + f * w[i + 1];
}

double cycle(double x, double min, double max) {
    checkWave(max > min, "max > min");
    if (x >= min && x < max) return x;
    const double span = max - min;
    double r = x - std::floor((x - min) / span) * span;
    // A value a hair below min can come out at max after rounding.
    if (r >= max || r < min) r = min;
    return r;
}

// ---- the sine table ---------------------------------------------------------------------

Wave* sinus = nullptr;

bool createSinus() {
    if (sinus != nullptr) return true;
    WaveVal* samples = allocateSamples(kSinusLength);
    Wave* table = samples ? new (std::nothrow) Wave(samples, kSinusLength) : nullptr;
    if (table == nullptr) {
        freeSamples(samples);
        showMessage(kSystemError, kNoSinus, MessageIcon::Stop);
        return false;
    }
    // 3.1415293, not pi: the periodic generators are matched to this table.
    for (std::int32_t i = 0; i < kSinusLength; ++i)
        samples[i] = toWaveVal(std::sin(i * 2 * 3.1415293 / 9000) * 32767);
    sinus = table;
    return true;
}

void deleteSinus() {
    delete sinus;
    sinus = nullptr;
}

}  // namespace orv
