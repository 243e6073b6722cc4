// The values of the resonant and notch filters that their record's fields let through but
// the filter cannot run with. The resonator needs at least one sample per period, so its
// constant frequency may not exceed the wave's sample frequency, and its constant width is a
// fraction from 0 to 1.
#pragma once

#include <cstdint>
#include <optional>

#include "document/record_form.h"
#include "document/records.h"

namespace orv {

// The first value of `r` the filter cannot run with on a wave of `sampleFreq` samples per
// second, as "In <field>: ..." under "Input Error"; nullopt when it can run. A sampleFreq of
// 0 (not known) checks the width only.
std::optional<FormError> checkResonatorValues(const ResNotchRecord& r, std::int32_t sampleFreq);

}  // namespace orv
