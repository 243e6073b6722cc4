// Amounts back to text: in the unit the user typed, as a time, as a frequency, as a sample
// value.
#include "units/value_writer.h"

#include <cmath>
#include <cstdint>

namespace orv {

std::string writeUnit(double value, std::uint8_t unit, int precisie, bool dropZeros,
                      bool isFrequency) {
    auto num = [&](double v) { return writePrecision(v, precisie, dropZeros); };
    // The "*" texts stand for an infinite period or frequency (1 / 0). They do not read
    // back, so the user has to type a real value.
    switch (unit) {
    case kUnitNone:
        return num(value);
    case kUnitPercent:
        return num(value * 100) + " %";
    case kUnitDecibel:
        return writeDigits(20 * std::log10(value), 1, 0, 3) + " dB";
    case kUnitSecond:
        if (!isFrequency) return num(value) + " s";
        return value == 0 ? "* s" : num(1 / value) + " s";
    case kUnitMillisecond:
        if (!isFrequency) return num(value * 1000) + " ms";
        return value == 0 ? "* ms" : num(1000 / value) + " ms";
    case kUnitHertz:
        if (isFrequency) return num(value) + " Hz";
        return value == 0 ? "* Hz" : num(1 / value) + " Hz";
    case kUnitKilohertz:
        if (isFrequency) return num(value * 0.001) + " kHz";
        return value == 0 ? "* kHz" : num(0.001 / value) + " kHz";
    case kUnitDegree: {
        // A phase: the upper half of the cycle reads better as a negative angle.
        const double phase = value >= 0.5 ? value - 1 : value;
        return num(phase * 360) + " '";
    }
    case kUnitBalanceDegree:
        return num(value * 90) + " '";
    default:
        return "***";
    }
}

std::string writeTime(double seconds) {
    // Beyond this there is no sense in hours and minutes (and no safe integer for them).
    if (!(std::fabs(seconds) < 1e15)) return writeDigits(seconds, 1, 5, 5) + " s";
    const std::int64_t m = std::int64_t(seconds * (1.0 / 60));
    const std::int64_t h = m / 60;
    const std::int64_t mm = m % 60;
    const double rest = seconds - double(m) * 60;

    std::string text;
    if (h > 0) text += writeDigits(double(h), 1, 0, 0) + ":";
    // With hours but no whole minutes the minutes are left out: "1:05.00000" is 1 h 5 s.
    // That is how lengths have always been shown, so it stays.
    if (mm > 0) text += writeDigits(double(mm), h > 0 ? 2 : 1, 0, 0) + ":";
    text += writeDigits(rest, (h > 0 || mm > 0) ? 2 : 1, 5, 5);
    if (h == 0 && mm == 0) text += " s";
    return text;
}

std::string writeFrequency(double hertz) {
    if (hertz < 100) return writeDigits(hertz, 2, 1, 1) + " Hz";
    if (hertz < 1000) return writeDigits(hertz, 3, 0, 0) + " Hz";
    if (hertz < 10000) return writeDigits(hertz * 0.001, 1, 2, 2) + " kHz";
    return writeDigits(hertz * 0.001, 2, 1, 1) + " kHz";
}

std::string writeWaveValue(const ValueRecord& rec) {
    const double v = rec.value;
    switch (rec.unit) {
    case kUnitNone: {
        // Half away from zero at the fourth decimal.
        const double x = v / 32767;
        return writeDigits(x >= 0 ? x + 0.00005 : x - 0.00005, 1, 0, 4);
    }
    case kUnitPercent: {
        // The test is "above 0" here, unlike the plain form: zero shows as "-0 %". It reads
        // back as 0 all the same, and the field has always looked like that.
        const double x = v * 100 / 32767;
        return writeDigits(x > 0 ? x + 0.005 : x - 0.005, 1, 0, 2) + " %";
    }
    case kUnitSampleValue:
        return writeDigits(v, 1, 0, 0) + " $";
    default:
        return "";
    }
}

std::string writeField(ValueKind kind, const ValueRecord& rec, int precisie, bool dropZeros) {
    switch (kind) {
    case ValueKind::Integer:
        return writeDigits(rec.value, 1, 0, 0);
    case ValueKind::WaveValue:
        return writeWaveValue(rec);
    case ValueKind::Balance: {
        const std::uint8_t unit = rec.unit == kUnitDegree ? kUnitBalanceDegree : rec.unit;
        return writeUnit(rec.value, unit, precisie, dropZeros, false);
    }
    case ValueKind::Frequency:
        return writeUnit(rec.value, rec.unit, precisie, dropZeros, true);
    case ValueKind::Factor:
    case ValueKind::Loudness:
    case ValueKind::Phase:
    case ValueKind::Period:
        break;
    }
    return writeUnit(rec.value, rec.unit, precisie, dropZeros, false);
}

}  // namespace orv
