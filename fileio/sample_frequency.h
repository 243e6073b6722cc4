// The sample frequencies a wave may have. A file can claim any 32-bit number; 0, the values
// that read as negative and anything far above what a sound card plays would reach the
// engine as a division by zero, a negative length or a 4 GB allocation a few steps later. So
// opening, importing and making a new wave all refuse them up front, with one message.
#pragma once

#include <cstdint>
#include <string>

namespace orv {

inline constexpr std::int64_t kLowestSampleFrequency = 1;
// Well above any rate a sound card or recording format uses (384 kHz is the highest seen).
inline constexpr std::int64_t kHighestSampleFrequency = 1000000;

constexpr bool isUsableSampleFrequency(std::int64_t freq) {
    return freq >= kLowestSampleFrequency && freq <= kHighestSampleFrequency;
}

// "The sample frequency 0 Hz is not usable; a wave needs 1 to 1000000 Hz."
std::string sampleFrequencyReason(std::int64_t freq);

}  // namespace orv
