#include "fileio/sample_frequency.h"

namespace orv {

std::string sampleFrequencyReason(std::int64_t freq) {
    return "The sample frequency " + std::to_string(freq) + " Hz is not usable; a wave needs " +
           std::to_string(kLowestSampleFrequency) + " to " +
           std::to_string(kHighestSampleFrequency) + " Hz.";
}

}  // namespace orv
