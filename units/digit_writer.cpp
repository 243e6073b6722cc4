// The digit writer under every number the program prints, and the precision writer on top
// of it.
#include <algorithm>
#include <cmath>

#include "units/units_assert.h"
#include "units/value_writer.h"

namespace orv {

namespace {
// What a number that cannot be spelled in digits (infinite or not a number) shows instead;
// like the "*" texts of the unit writer, it does not read back.
const char* const kNotANumber = "*";
}  // namespace

std::string writeDigits(double value, int minDigBefore, int minDigAfter, int maxDigAfter) {
    ORV_UNITS_ASSERT(minDigAfter <= maxDigAfter, "writers");
    ORV_UNITS_ASSERT(minDigBefore >= 1, "writers");
    ORV_UNITS_ASSERT(minDigAfter >= 0, "writers");
    if (!std::isfinite(value)) return kNotANumber;

    const bool minus = value < 0;
    if (minus) value = -value;

    int n = value != 0 ? int(std::trunc(std::log10(value))) + 1 : 1;
    n = std::max(n, minDigBefore);

    // One unit of the first hidden digit, so 0.29999999 shows as 0.3; beyond this nudge the
    // last shown digit is truncated, not rounded.
    value += std::pow(10.0, -(maxDigAfter + 1));
    // In two steps so that 10^n cannot overflow for the largest doubles.
    value = value / std::pow(10.0, n - 1) / 10.0;

    std::string text;
    if (minus) text += '-';
    bool started = false;       // a digit before the point has been written
    bool pointWritten = false;
    int heldZeros = 0;          // zeros after minDigAfter, written only if a digit follows
    for (int p = n; p >= -maxDigAfter; --p) {
        // Position p holds the digit of 10^p; position n is there for the nudge's carry.
        const int digit = std::min(int(value), 9);
        value = (value - digit) * 10;
        if (p >= 0) {
            if (started || digit != 0 || p <= n - 1) {
                started = true;
                text += char('0' + digit);
            }
            if (p == 0 && minDigAfter >= 1) {
                text += '.';
                pointWritten = true;
            }
        } else if (p >= -minDigAfter) {
            text += char('0' + digit);
        } else if (digit == 0) {
            ++heldZeros;
        } else {
            if (!pointWritten) {
                text += '.';
                pointWritten = true;
            }
            text.append(std::size_t(heldZeros), '0');
            heldZeros = 0;
            text += char('0' + digit);
        }
    }
    return text;
}

std::string writePrecision(double value, int precisie, bool dropZeros) {
    ORV_UNITS_ASSERT(precisie >= 1, "writers");
    if (!std::isfinite(value)) return writeDigits(value, 1, 0, 0);
    const int e = value == 0 ? 1 : int(std::trunc(std::log10(std::fabs(value))));
    const int minDigBefore = std::max(e, 1);
    const int decimals = std::max(precisie - 1 - e, 0);
    return dropZeros ? writeDigits(value, minDigBefore, 0, decimals)
                     : writeDigits(value, minDigBefore, decimals, decimals);
}

}  // namespace orv
