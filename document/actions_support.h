// Small conversions the feeds of several menus share.
#pragma once

#include <cmath>
#include <cstdint>

namespace orv {

// A time in seconds that converts back to exactly `samples` samples at `freq` (the sound
// layer truncates Freq x seconds).
inline double secondsForSamples(std::int32_t samples, std::int32_t freq) {
    return (double(samples) + 0.5) / double(freq);
}

// A position typed as a time from the start of the sound, as a fraction of the range.
inline double fractionInRange(double seconds, std::int32_t freq, std::int32_t begin,
                              std::int32_t end) {
    const double pos = seconds * freq - begin;
    const double length = end - begin;
    if (length <= 0.0 || pos <= 0.0) return 0.0;
    const double f = pos / length;
    return f < 1.0 ? f : 0.0;
}

// A phase of either sign as a fraction in [0, 1).
inline double wrapPhase(double p) {
    const double w = p - std::floor(p);
    return w < 1.0 ? w : 0.0;
}

}  // namespace orv
