// What every filter shares: the range contract, the result wave with its head and tail,
// and the reading of an envelope along the filtered range. Private to the core: the filters
// and the stereo sound, which hands both its channels to passPair.
#pragma once

#include <cstdint>

#include "core/filter.h"
#include "core/platform.h"
#include "core/wave.h"

namespace orv::filter_detail {

inline constexpr const char* kUnit = "filter";

// Envelope value (a sample, -32768..32767) to a frequency of 20 Hz .. 20 kHz:
// 20 x 10^(3 x (e + 32768) / 65535). The exponent factor is 3 / 65535 as stored.
inline constexpr double kFreqExponent = 4.5777065690089265e-05;
// Envelope value to a width 0 .. just under 1: (e + 32768) / 65536.
inline constexpr double kWidthScale = 1.5258789e-5;

// Replaces end -1 by the sample count, then checks the range.
void checkRange(const Wave& wave, std::int32_t begin, std::int32_t& end);

// The result wave of count + extra samples with [0, begin) copied from the input and
// [end, count) copied behind the filtered stretch (at end + extra). nullptr when the flag
// is already set or storage cannot be had; the caller then returns nullptr.
WavePtr makeResult(const Wave& wave, CancelFlag& cancel, std::int64_t extra,
                   std::int32_t begin, std::int32_t end);

// Reads an envelope stretched over `count` output samples: the position starts at 0 and
// advances by (envelope count - 1) / (count - 1) per sample; each value is interpolated
// and truncated to a sample. Accumulated rounding may carry the position a hair past the
// last sample; from there on (and for output beyond `count`) the last sample is held.
class EnvelopeReader {
public:
    EnvelopeReader() = default;  // for forms that take the parameter as a constant
    EnvelopeReader(const Wave& envelope, std::int32_t count)
        : w_(envelope.data()), last_(envelope.getValues() - 1),
          step_(count > 1 ? double(envelope.getValues() - 1) / double(count - 1) : 0.0) {}

    WaveVal next() {
        const double x = pos_;
        pos_ += step_;
        if (x >= last_) return w_[last_];
        const std::int32_t i = static_cast<std::int32_t>(x);
        const double f = x - i;
        if (f == 0) return w_[i];
        return toWaveVal((1 - f) * w_[i] + f * w_[i + 1]);
    }

private:
    const WaveVal* w_ = nullptr;
    std::int32_t last_ = 0;
    double step_ = 0;
    double pos_ = 0;
};

// Runs LowPass or HighPass (`filter`) on two channels of one length at once: outLeft and
// outRight get what calling it on the left, then on the right would return, with the same
// assertions and messages. Only after a cancel during the work do they differ (both partly
// filtered): the caller drops them then, as a stereo result is never partial. False, with
// nothing done, for any other filter or for channels of different lengths.
bool passPair(PassFilter filter, const Wave* left, const Wave* right, CancelFlag& cancel,
              double time, double factor, int countBer, int countCmd, std::int32_t begin,
              std::int32_t end, WavePtr& outLeft, WavePtr& outRight);

// A usable envelope: present and holding at least one sample.
inline bool usable(const Wave* envelope) { return envelope && envelope->getValues() > 0; }

}  // namespace orv::filter_detail
