// The high and low filter command over a sound: either one filter call that makes all
// passes itself, or, with "Maximize Volume", one pass at a time with a soft maximise
// (to 0.7 of full scale) before the first pass and after every pass.
#pragma once

#include <cstdint>

#include "core/cancel.h"
#include "core/filter.h"
#include "core/sound.h"

namespace orv {

// Which filter, constant or steered by a frequency envelope.
struct HighLowFilter {
    PassFilter filter = nullptr;        // LowPass or HighPass, with `seconds`
    PassFilterEnv filterEnv = nullptr;  // LowPassEnv or HighPassEnv, with `envelope`
    double seconds = 0.001;             // period of the filter frequency
    const Sound* envelope = nullptr;    // the frequency envelope, when filterEnv is used
    double factor = 0.5;                // volume factor at the filter frequency
};

// Runs the filter `count` times (count >= 1) over [begin, end) of `sound`. The sound is
// not changed; the result is new, or nullptr when cancelled.
SoundPtr FilterHighLow(CancelFlag* cancel, const Sound& sound, const HighLowFilter& f,
                       int count, bool maximizeVolume, std::int32_t begin, std::int32_t end);

}  // namespace orv
