// The reading steps that every value reader is made of: blanks, digits, integers, numbers
// with a decimal part or a fraction, the unit after a number, and the sign checks.
#include "units/value_reader.h"

#include <cmath>
#include <cstring>

namespace orv {

namespace {

const char* const kNoValue = "Input has no value.";
const char* const kNoValueBeforeSlash = "Input has no value before '/'.";
const char* const kNoValueAfterSlash = "Input has no value after '/'.";
const char* const kBrokeInvalid = "Broke is invalid.";

const char* const kMustBeNotZero = "Value must be not 0.";
const char* const kMustBeNegative = "Value must be negative.";
const char* const kMustBePositive = "Value must be positive.";
const char* const kMustBeBelowZero = "Value must be negative and less than 0.";
const char* const kMustBeAboveZero = "Value must be positive and more than 0.";
const char* const kMustBeAtMostOne = "Value must be no more than 1.";
const char* const kMustBeBelowOne = "Value must be less than 1.";

bool isBlank(char c) { return c == ' ' || c == '\t'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

char upperAscii(char c) { return (c >= 'a' && c <= 'z') ? char(c - 'a' + 'A') : c; }

// Unit names in the order they are tried: "S" before "MS" and "HZ" before "KHZ" is harmless
// because only the beginning of the rest is compared.
struct UnitName {
    const char* name;
    std::uint8_t code;
};
const UnitName kUnitNames[] = {
    {"%", kUnitPercent}, {"$", kUnitSampleValue}, {"S", kUnitSecond},
    {"'", kUnitDegree},  {"MS", kUnitMillisecond}, {"HZ", kUnitHertz},
    {"KHZ", kUnitKilohertz}, {"DB", kUnitDecibel},
};

}  // namespace

ValueReader::ValueReader(std::string_view text) : text_(text) {}

bool ValueReader::fail(const char* msg) {
    message_ = msg;
    return false;
}

void ValueReader::skipBlanks() {
    while (!atEnd() && isBlank(text_[pos_])) ++pos_;
}

std::uint32_t ValueReader::readDigits(int& count) {
    std::uint32_t acc = 0;  // wraps on overflow, like the ten-digit field always did
    count = 0;
    while (count < 10 && !atEnd() && isDigit(text_[pos_])) {
        acc = acc * 10u + std::uint32_t(text_[pos_] - '0');
        ++pos_;
        ++count;
    }
    return acc;
}

std::int32_t ValueReader::readInt(int& count) {
    if (peek() == '+') ++pos_;
    bool negative = false;
    if (peek() == '-') {
        negative = true;
        ++pos_;
    }
    std::uint32_t acc = readDigits(count);
    // Negate in unsigned arithmetic: ten digits can exceed the signed range.
    return std::int32_t(negative ? 0u - acc : acc);
}

bool ValueReader::readNumber(double& value) {
    bool negative = false;
    if (peek() == '-') {
        negative = true;
        ++pos_;
    } else if (peek() == '+') {
        ++pos_;
    }
    skipBlanks();

    int firstCount = 0;
    const std::uint32_t first = readDigits(firstCount);
    const char sep = peek();
    if (sep != '.' && sep != ',' && sep != '/') {
        if (firstCount == 0) return fail(kNoValue);
        value = negative ? -double(first) : double(first);
        return true;
    }
    ++pos_;
    int secondCount = 0;
    const std::uint32_t second = readDigits(secondCount);

    double v;
    if (sep == '/') {
        if (firstCount == 0) return fail(kNoValueBeforeSlash);
        if (secondCount == 0) return fail(kNoValueAfterSlash);
        if (second == 0) return fail(kBrokeInvalid);
        v = double(first) / double(second);
    } else {
        // Either part may be empty: ".5" is 0.5, "5." is 5, "." is 0.
        v = double(first) + double(second) * std::pow(10.0, -secondCount);
    }
    value = negative ? -v : v;
    return true;
}

std::uint8_t ValueReader::readUnit() {
    skipBlanks();
    if (atEnd()) return kUnitNone;
    for (const UnitName& u : kUnitNames) {
        const std::size_t len = std::strlen(u.name);
        if (text_.size() - pos_ < len) continue;
        bool match = true;
        for (std::size_t i = 0; i < len && match; ++i)
            match = upperAscii(text_[pos_ + i]) == u.name[i];
        if (match) {
            pos_ += len;
            return u.code;
        }
    }
    return kUnitUnknown;
}

bool ValueCheck(ValueReader& r, double value, int check) {
    switch (check) {
    case kCheckNotZero:
        return value != 0 || r.fail(kMustBeNotZero);
    case kCheckNotPositive:
        return value <= 0 || r.fail(kMustBeNegative);
    case kCheckNotNegative:
        return value >= 0 || r.fail(kMustBePositive);
    case kCheckNegative:
        return value < 0 || r.fail(kMustBeBelowZero);
    case kCheckPositive:
        return value > 0 || r.fail(kMustBeAboveZero);
    case kCheckZeroToOne:
        if (value < 0) return r.fail(kMustBePositive);
        if (value > 1) return r.fail(kMustBeAtMostOne);
        return true;
    case kCheckOpenZeroToOne:
        if (!(value > 0)) return r.fail(kMustBeAboveZero);
        if (value >= 1) return r.fail(kMustBeBelowOne);
        return true;
    default:  // 0, and every code outside 0..7, passes everything
        return true;
    }
}

}  // namespace orv
