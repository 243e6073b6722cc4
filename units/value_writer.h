// The value entry language, writing side: numbers back to text, in the unit the user typed
// (so that the reading side gives the same value back), plus the time and frequency texts
// of the views and the status bar. Everything rests on writeDigits.
#pragma once

#include <cstdint>
#include <string>

#include "units/value_reader.h"
#include "units/value_record.h"

namespace orv {

// The writer's own code for a balance angle (value x 90, " '"); the readers report every
// degree value as kUnitDegree, which the writer takes as a phase.
inline constexpr std::uint8_t kUnitBalanceDegree = 9;

// At least minDigBefore digits before the point (leading zeros), at least minDigAfter and at
// most maxDigAfter after it; trailing zeros beyond minDigAfter are dropped. The value is
// nudged up by 10^-(maxDigAfter+1) and then truncated, so 0.29999999 shows as 0.3 but 1.5
// with no decimals shows as 1. Asserts minDigAfter <= maxDigAfter, minDigBefore >= 1,
// minDigAfter >= 0. A value that is not finite is written "*".
std::string writeDigits(double value, int minDigBefore, int minDigAfter, int maxDigAfter);

// About `precisie` significant digits; with dropZeros the trailing zeros are left out.
// Asserts precisie >= 1.
std::string writePrecision(double value, int precisie, bool dropZeros);

// `value` in its base unit (seconds, or hertz when isFrequency) written in `unit` with its
// suffix: "50 %", "-6.02 dB", "10 ms", "440 Hz", "-90 '". A period or frequency of 0 in a
// reciprocal unit gives the "*" texts ("* Hz", "* s" ...), which do not read back on
// purpose. Unknown codes give "***".
std::string writeUnit(double value, std::uint8_t unit, int precisie, bool dropZeros,
                      bool isFrequency);

// Hours, minutes and seconds with five decimals: "2.50000 s", "1:05.25000",
// "1:02:05.00000". With hours and no whole minutes the minutes are left out ("1:05.00000"
// for 3605 s).
std::string writeTime(double seconds);

// Three significant digits in "Hz" below 1000, else "kHz": "05.0 Hz", "440 Hz", "2.50 kHz".
std::string writeFrequency(double hertz);

// A sample value field in the unit of the record (rec.value holds the sample value):
// none: four decimals of v / 32767; "%": two decimals of v x 100 / 32767 and " %"
// (zero shows as "-0 %"); "$": the raw value and " $"; any other unit: "".
std::string writeWaveValue(const ValueRecord& rec);

// Writes a field of `kind` back in the unit the user typed (the record's unit), with
// `precisie` significant digits: the inverse of readField. Integer: the plain number;
// WaveValue: writeWaveValue; a balance in degrees is written as a balance angle.
std::string writeField(ValueKind kind, const ValueRecord& rec, int precisie, bool dropZeros);

}  // namespace orv
