// The readers of whole amounts: a number (or a note), its unit, the conversion to the
// quantity the operation needs, its range and its sign check.
#include <cmath>

#include "units/value_reader.h"

namespace orv {

namespace {

const char* const kWaveTooHigh = "Wave Value is too high. (maximum: 1)";
const char* const kWaveTooLow = "Wave Value is too low. (minimum: -1)";
const char* const kWavePercentTooHigh = "Wave Value is too high. (maximum: 100 %)";
const char* const kWavePercentTooLow = "Wave Value is too low. (minimum: -100 %)";
const char* const kWaveRawTooHigh = "Wave Value is too high. (maximum: 32767 $)";
const char* const kWaveRawTooLow = "Wave Value is too low. (minimum: -32768 $)";
const char* const kWaveUnknownUnit = "This unit does not exist, use: '%', '$' or no unit.";
const char* const kWaveWrongUnit = "Wrong unit used, use: '%', '$' or no unit.";

const char* const kFactorUnknownUnit = "This unit does not exist, use: '%' or no unit.";
const char* const kFactorWrongUnit = "Wrong unit used, use: '%' or no unit.";

const char* const kLoudnessUnknownUnit = "This unit does not exist, use: '%', 'dB' or no unit.";
const char* const kLoudnessWrongUnit = "Wrong unit used, use: '%', 'dB' or no unit.";

const char* const kPhaseTooLow = "Fase is too low. (minimum: -1 or -100 %)";
const char* const kPhaseTooHigh = "Fase is too high. (maximum: less than 1 or 100 %)";
const char* const kPhaseDegreesTooLow = "Fase is too low. (minimum: -360' )";
const char* const kPhaseDegreesTooHigh = "Fase is too high. (maximum: less than 360' )";
const char* const kBalanceTooLow = "Balance Factor is too low. (minimum: -1 or -100 %)";
const char* const kBalanceTooHigh = "Balance Factor is too high. (maximum: 1 or 100 %)";
const char* const kBalanceDegreesTooLow = "Balance Angle is too low. (minimum: -90' )";
const char* const kBalanceDegreesTooHigh = "Balance Angle is too high. (maximum: 90' )";
// Shared by the phase and the balance.
const char* const kAngleUnknownUnit = "This unit does not exist, use: '%', ' ' ' or no unit.";
const char* const kAngleWrongUnit = "Wrong unit used, use: '%', ' ' ' or no unit.";

const char* const kZeroHertz = "You cannot use 0 with 'Hz'.";
const char* const kZeroKilohertz = "You cannot use 0 with 'kHz'.";
const char* const kZeroSeconds = "You cannot use 0 with 's'.";
const char* const kZeroMilliseconds = "You cannot use 0 with 'ms'.";
const char* const kTimeWrongUnit = "Wrong unit used, use: 's', 'ms', 'Hz', 'kHz'.";
const char* const kTimeUnknownUnit = "This unit does not exist, use: 's', 'ms', 'Hz', 'kHz'.";

// A number and its unit; the unit code is only meaningful when this succeeds.
bool readAmount(ValueReader& r, double& number, std::uint8_t& unit) {
    if (!r.readNumber(number)) return false;
    unit = r.readUnit();
    return true;
}

bool unitError(ValueReader& r, std::uint8_t unit, const char* unknown, const char* wrong) {
    return r.fail(unit == kUnitUnknown ? unknown : wrong);
}

// A plain number or a percentage as a factor; false (without a message) for other units.
bool asFactor(double number, std::uint8_t unit, double& factor) {
    if (unit == kUnitNone) {
        factor = number;
        return true;
    }
    if (unit == kUnitPercent) {
        factor = number * 0.01;
        return true;
    }
    return false;
}

}  // namespace

bool readInteger(ValueReader& r, std::int32_t& value, int check) {
    int digits = 0;
    const std::int32_t v = r.readInt(digits);
    if (!ValueCheck(r, v, check)) return false;
    value = v;
    return true;
}

bool readWaveValue(ValueReader& r, std::int16_t& value, std::uint8_t& unit, int check) {
    double v;
    std::uint8_t u;
    if (!readAmount(r, v, u)) return false;
    double scaled;
    switch (u) {
    case kUnitNone:
        if (v > 1) return r.fail(kWaveTooHigh);
        if (v < -1) return r.fail(kWaveTooLow);
        scaled = v * 32767;
        break;
    case kUnitPercent:
        if (v > 100) return r.fail(kWavePercentTooHigh);
        if (v < -100) return r.fail(kWavePercentTooLow);
        scaled = v * 327.67;
        break;
    case kUnitSampleValue:
        if (v > 32767) return r.fail(kWaveRawTooHigh);
        if (v < -32768) return r.fail(kWaveRawTooLow);
        scaled = v;
        break;
    default:
        return unitError(r, u, kWaveUnknownUnit, kWaveWrongUnit);
    }
    // In range by the checks above, so the truncating cast is defined; only "$" reaches
    // -32768.
    const std::int16_t sample = static_cast<std::int16_t>(std::trunc(scaled));
    if (!ValueCheck(r, sample, check)) return false;
    value = sample;
    unit = u;
    return true;
}

bool readFactor(ValueReader& r, double& value, std::uint8_t& unit, int check) {
    double v;
    std::uint8_t u;
    if (!readAmount(r, v, u)) return false;
    double factor;
    if (!asFactor(v, u, factor)) return unitError(r, u, kFactorUnknownUnit, kFactorWrongUnit);
    if (!ValueCheck(r, factor, check)) return false;
    value = factor;
    unit = u;
    return true;
}

bool readLoudness(ValueReader& r, double& value, std::uint8_t& unit) {
    double v;
    std::uint8_t u;
    if (!readAmount(r, v, u)) return false;
    double factor;
    if (!asFactor(v, u, factor)) {
        if (u != kUnitDecibel) return unitError(r, u, kLoudnessUnknownUnit, kLoudnessWrongUnit);
        factor = std::pow(10.0, 0.05 * v);
    }
    value = factor;
    unit = u;
    return true;
}

bool readPhase(ValueReader& r, double& value, std::uint8_t& unit) {
    double v;
    std::uint8_t u;
    if (!readAmount(r, v, u)) return false;
    double phase;
    if (asFactor(v, u, phase)) {
        if (phase < -1) return r.fail(kPhaseTooLow);
        if (phase >= 1) return r.fail(kPhaseTooHigh);
    } else if (u == kUnitDegree) {
        if (v < -360) return r.fail(kPhaseDegreesTooLow);
        if (v >= 360) return r.fail(kPhaseDegreesTooHigh);
        phase = v * (1.0 / 360);
    } else {
        return unitError(r, u, kAngleUnknownUnit, kAngleWrongUnit);
    }
    // A phase is a place in the cycle: going back a quarter is being at three quarters.
    if (phase < 0) phase += 1;
    value = phase;
    unit = u;
    return true;
}

bool readBalance(ValueReader& r, double& value, std::uint8_t& unit) {
    double v;
    std::uint8_t u;
    if (!readAmount(r, v, u)) return false;
    double balance;
    if (asFactor(v, u, balance)) {
        if (balance < -1) return r.fail(kBalanceTooLow);
        if (balance > 1) return r.fail(kBalanceTooHigh);
    } else if (u == kUnitDegree) {
        if (v < -90) return r.fail(kBalanceDegreesTooLow);
        if (v > 90) return r.fail(kBalanceDegreesTooHigh);
        balance = v * (1.0 / 90);
    } else {
        return unitError(r, u, kAngleUnknownUnit, kAngleWrongUnit);
    }
    value = balance;
    unit = u;
    return true;
}

bool readPeriod(ValueReader& r, double& seconds, std::uint8_t& unit, int check) {
    if (r.startsWithNote()) {
        double hertz;
        if (!r.readNote(hertz)) return false;
        seconds = 1 / hertz;  // a note skips the sign check
        unit = kUnitHertz;
        return true;
    }
    double v;
    std::uint8_t u;
    if (!readAmount(r, v, u)) return false;
    double s;
    switch (u) {
    case kUnitSecond:
        s = v;
        break;
    case kUnitMillisecond:
        s = v * 0.001;
        break;
    case kUnitHertz:
        if (v == 0) return r.fail(kZeroHertz);
        s = 1 / v;
        break;
    case kUnitKilohertz:
        if (v == 0) return r.fail(kZeroKilohertz);
        s = 0.001 / v;
        break;
    default:  // no unit is as wrong as a unit of another kind
        return unitError(r, u, kTimeUnknownUnit, kTimeWrongUnit);
    }
    if (!ValueCheck(r, s, check)) return false;
    seconds = s;
    unit = u;
    return true;
}

bool readFrequency(ValueReader& r, double& hertz, std::uint8_t& unit, int check) {
    if (r.startsWithNote()) {
        double h;
        if (!r.readNote(h)) return false;
        hertz = h;  // a note skips the sign check
        unit = kUnitHertz;
        return true;
    }
    double v;
    std::uint8_t u;
    if (!readAmount(r, v, u)) return false;
    double f;
    switch (u) {
    case kUnitSecond:
        if (v == 0) return r.fail(kZeroSeconds);
        f = 1 / v;
        break;
    case kUnitMillisecond:
        if (v == 0) return r.fail(kZeroMilliseconds);
        f = 1000 / v;
        break;
    case kUnitHertz:
        f = v;
        break;
    case kUnitKilohertz:
        f = v * 1000;
        break;
    default:
        return unitError(r, u, kTimeUnknownUnit, kTimeWrongUnit);
    }
    if (!ValueCheck(r, f, check)) return false;
    hertz = f;
    unit = u;
    return true;
}

bool readField(ValueKind kind, std::string_view text, ValueRecord& rec, std::string& message) {
    ValueReader r(text);
    const int check = rec.signCheck;
    double value = 0;
    std::uint8_t unit = kUnitNone;
    bool ok = false;
    switch (kind) {
    case ValueKind::Integer: {
        std::int32_t i = 0;
        ok = readInteger(r, i, check);
        value = i;
        break;
    }
    case ValueKind::WaveValue: {
        std::int16_t s = 0;
        ok = readWaveValue(r, s, unit, check);
        value = s;
        break;
    }
    case ValueKind::Factor: ok = readFactor(r, value, unit, check); break;
    case ValueKind::Loudness: ok = readLoudness(r, value, unit); break;
    case ValueKind::Phase: ok = readPhase(r, value, unit); break;
    case ValueKind::Balance: ok = readBalance(r, value, unit); break;
    case ValueKind::Period: ok = readPeriod(r, value, unit, check); break;
    case ValueKind::Frequency: ok = readFrequency(r, value, unit, check); break;
    }
    if (!ok) {
        message = std::string(r.message());
        return false;
    }
    rec.value = value;
    rec.unit = unit;
    return true;
}

}  // namespace orv
