// Each reader: conversions worked out by hand, ranges, units and their messages word for word.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "units/value_reader.h"

namespace orv {
namespace {

// Outcome of one reading: the message, or the value and the unit.
struct Outcome {
    bool ok = false;
    double value = 0;
    std::uint8_t unit = 0;
    std::string message;
};

template <typename Read>
Outcome run(const char* text, Read read) {
    ValueReader r(text);
    Outcome o;
    o.ok = read(r, o.value, o.unit);
    o.message = std::string(r.message());
    return o;
}

Outcome wave(const char* text, int check = 0) {
    return run(text, [&](ValueReader& r, double& v, std::uint8_t& u) {
        std::int16_t s = 1234;
        u = 99;
        const bool ok = readWaveValue(r, s, u, check);
        if (!ok) {
            EXPECT_EQ(s, 1234) << text;
            EXPECT_EQ(u, 99) << text;
        }
        v = s;
        return ok;
    });
}
Outcome factor(const char* text, int check = 0) {
    return run(text, [&](ValueReader& r, double& v, std::uint8_t& u) { return readFactor(r, v, u, check); });
}
Outcome loudness(const char* text) {
    return run(text, [](ValueReader& r, double& v, std::uint8_t& u) { return readLoudness(r, v, u); });
}
Outcome phase(const char* text) {
    return run(text, [](ValueReader& r, double& v, std::uint8_t& u) { return readPhase(r, v, u); });
}
Outcome balance(const char* text) {
    return run(text, [](ValueReader& r, double& v, std::uint8_t& u) { return readBalance(r, v, u); });
}
Outcome period(const char* text, int check = 0) {
    return run(text, [&](ValueReader& r, double& v, std::uint8_t& u) { return readPeriod(r, v, u, check); });
}
Outcome frequency(const char* text, int check = 0) {
    return run(text, [&](ValueReader& r, double& v, std::uint8_t& u) { return readFrequency(r, v, u, check); });
}

struct Good {
    const char* text;
    double value;
    std::uint8_t unit;
};
struct Bad {
    const char* text;
    const char* message;
};

template <typename Reader>
void expectGood(Reader read, const Good& g) {
    const Outcome o = read(g.text);
    ASSERT_TRUE(o.ok) << g.text << ": " << o.message;
    EXPECT_DOUBLE_EQ(o.value, g.value) << g.text;
    EXPECT_EQ(o.unit, g.unit) << g.text;
    EXPECT_EQ(o.message, "") << g.text;
}
template <typename Reader>
void expectBad(Reader read, const Bad& b) {
    const Outcome o = read(b.text);
    EXPECT_FALSE(o.ok) << b.text;
    EXPECT_EQ(o.message, b.message) << b.text;
}

TEST(ReadInteger, ValuesAndSignCheck) {
    ValueReader r("-17");
    std::int32_t v = 5;
    EXPECT_TRUE(readInteger(r, v, 0));
    EXPECT_EQ(v, -17);

    ValueReader empty("");
    EXPECT_TRUE(readInteger(empty, v, 0));  // reading an integer cannot fail by itself
    EXPECT_EQ(v, 0);

    ValueReader zero("0");
    v = 5;
    EXPECT_FALSE(readInteger(zero, v, kCheckPositive));
    EXPECT_EQ(zero.message(), "Value must be positive and more than 0.");
    EXPECT_EQ(v, 5);

    ValueReader neg("-3");
    EXPECT_FALSE(readInteger(neg, v, kCheckNotNegative));
    EXPECT_EQ(neg.message(), "Value must be positive.");
}

TEST(ReadWaveValue, ScalingAndTruncation) {
    auto read = [](const char* t) { return wave(t); };
    const Good cases[] = {
        {"0.5", 16383, kUnitNone},           // 16383.5 truncated
        {"50 %", 16383, kUnitPercent},       // 50 x 327.67 = 16383.5
        {"1", 32767, kUnitNone},
        {"-1", -32767, kUnitNone},
        {"100%", 32767, kUnitPercent},
        {"-100 %", -32767, kUnitPercent},    // only "$" reaches -32768
        {"-32768 $", -32768, kUnitSampleValue},
        {"32767$", 32767, kUnitSampleValue},
        {"1.9 $", 1, kUnitSampleValue},
        {"-1.9 $", -1, kUnitSampleValue},
        {"1/2", 16383, kUnitNone},
        {"0.00001", 0, kUnitNone},           // 0.32767
        {"-0.25", -8191, kUnitNone},         // -8191.75
        {"12,5 %", 4095, kUnitPercent},      // 4095.875
    };
    for (const Good& g : cases) expectGood(read, g);
}

TEST(ReadWaveValue, RangesAndUnits) {
    auto read = [](const char* t) { return wave(t); };
    const Bad cases[] = {
        {"1.0001", "Wave Value is too high. (maximum: 1)"},
        {"-1.5", "Wave Value is too low. (minimum: -1)"},
        {"100.5 %", "Wave Value is too high. (maximum: 100 %)"},
        {"-101%", "Wave Value is too low. (minimum: -100 %)"},
        {"32768 $", "Wave Value is too high. (maximum: 32767 $)"},
        {"-32769 $", "Wave Value is too low. (minimum: -32768 $)"},
        {"5 x", "This unit does not exist, use: '%', '$' or no unit."},
        {"12345678901", "This unit does not exist, use: '%', '$' or no unit."},
        {"5 dB", "Wrong unit used, use: '%', '$' or no unit."},
        {"5 s", "Wrong unit used, use: '%', '$' or no unit."},
        {"5 '", "Wrong unit used, use: '%', '$' or no unit."},
        {"", "Input has no value."},
        {" \t ", "Input has no value."},
    };
    for (const Bad& b : cases) expectBad(read, b);
}

TEST(ReadWaveValue, SignCheckSeesTheTruncatedValue) {
    // 0.00001 x 32767 = 0.33 is not 0, but the sample is.
    EXPECT_EQ(wave("0.00001", kCheckNotZero).message, "Value must be not 0.");
    EXPECT_EQ(wave("-0.00001", kCheckNegative).message, "Value must be negative and less than 0.");
    EXPECT_TRUE(wave("-0.0001", kCheckNegative).ok);  // -3.2767 -> -3
}

TEST(ReadFactor, PercentAndUnits) {
    auto read = [](const char* t) { return factor(t); };
    const Good good[] = {
        {"50 %", 0.5, kUnitPercent}, {"0.25", 0.25, kUnitNone}, {"-3/4", -0.75, kUnitNone},
        {"150%", 1.5, kUnitPercent}, {"2", 2, kUnitNone},       {"1/8 %", 0.00125, kUnitPercent},
    };
    for (const Good& g : good) expectGood(read, g);
    const Bad bad[] = {
        {"5 dB", "Wrong unit used, use: '%' or no unit."},
        {"5 $", "Wrong unit used, use: '%' or no unit."},
        {"5 Hz", "Wrong unit used, use: '%' or no unit."},
        {"5 q", "This unit does not exist, use: '%' or no unit."},
        {"", "Input has no value."},
    };
    for (const Bad& b : bad) expectBad(read, b);
    // The sign check sees the factor, not the typed percentage.
    EXPECT_EQ(factor("150 %", kCheckZeroToOne).message, "Value must be no more than 1.");
    EXPECT_TRUE(factor("100 %", kCheckZeroToOne).ok);
    EXPECT_EQ(factor("0", kCheckPositive).message, "Value must be positive and more than 0.");
}

TEST(ReadLoudness, FactorPercentOrDecibel) {
    auto read = [](const char* t) { return loudness(t); };
    const Good good[] = {
        {"-6 dB", 0.50118723362727224, kUnitDecibel},  // 10^-0.3
        {"0 dB", 1, kUnitDecibel},
        {"20dB", 10, kUnitDecibel},
        {"-40 db", 0.01, kUnitDecibel},
        {"50 %", 0.5, kUnitPercent},
        {"0.5", 0.5, kUnitNone},
        {"-2", -2, kUnitNone},  // no sign check
    };
    for (const Good& g : good) expectGood(read, g);
    const Bad bad[] = {
        {"6 s", "Wrong unit used, use: '%', 'dB' or no unit."},
        {"6 $", "Wrong unit used, use: '%', 'dB' or no unit."},
        {"6 z", "This unit does not exist, use: '%', 'dB' or no unit."},
        {"6 d", "This unit does not exist, use: '%', 'dB' or no unit."},
        {"dB", "Input has no value."},
    };
    for (const Bad& b : bad) expectBad(read, b);
}

TEST(ReadPhase, FractionOfACycle) {
    auto read = [](const char* t) { return phase(t); };
    const Good good[] = {
        {"0.25", 0.25, kUnitNone},   {"-0.5", 0.5, kUnitNone},     {"25 %", 0.25, kUnitPercent},
        {"-100 %", 0, kUnitPercent}, {"-1", 0, kUnitNone},         {"0.999", 0.999, kUnitNone},
        {"-90'", 0.75, kUnitDegree}, {"90 '", 0.25, kUnitDegree},  {"-360'", 0, kUnitDegree},
        {"180'", 0.5, kUnitDegree},  {"359.9 '", 359.9 / 360, kUnitDegree},
    };
    for (const Good& g : good) expectGood(read, g);
    const Bad bad[] = {
        {"1", "Fase is too high. (maximum: less than 1 or 100 %)"},
        {"100 %", "Fase is too high. (maximum: less than 1 or 100 %)"},
        {"-1.01", "Fase is too low. (minimum: -1 or -100 %)"},
        {"-101 %", "Fase is too low. (minimum: -1 or -100 %)"},
        {"360'", "Fase is too high. (maximum: less than 360' )"},
        {"-361 '", "Fase is too low. (minimum: -360' )"},
        {"5 s", "Wrong unit used, use: '%', ' ' ' or no unit."},
        {"5 dB", "Wrong unit used, use: '%', ' ' ' or no unit."},
        {"5 q", "This unit does not exist, use: '%', ' ' ' or no unit."},
        {"", "Input has no value."},
    };
    for (const Bad& b : bad) expectBad(read, b);
}

TEST(ReadBalance, FactorOrAngle) {
    auto read = [](const char* t) { return balance(t); };
    const Good good[] = {
        {"0.5", 0.5, kUnitNone},      {"-100 %", -1, kUnitPercent}, {"1", 1, kUnitNone},
        {"100 %", 1, kUnitPercent},   {"45'", 0.5, kUnitDegree},    {"-90 '", -1, kUnitDegree},
        {"90'", 1, kUnitDegree},      {"-30'", -1.0 / 3, kUnitDegree},
    };
    for (const Good& g : good) expectGood(read, g);
    const Bad bad[] = {
        {"1.01", "Balance Factor is too high. (maximum: 1 or 100 %)"},
        {"101%", "Balance Factor is too high. (maximum: 1 or 100 %)"},
        {"-1.5", "Balance Factor is too low. (minimum: -1 or -100 %)"},
        {"91'", "Balance Angle is too high. (maximum: 90' )"},
        {"-90.5 '", "Balance Angle is too low. (minimum: -90' )"},
        {"5 dB", "Wrong unit used, use: '%', ' ' ' or no unit."},
        {"5 q", "This unit does not exist, use: '%', ' ' ' or no unit."},
    };
    for (const Bad& b : bad) expectBad(read, b);
}

TEST(ReadPeriod, SecondsFromEveryUnit) {
    auto read = [](const char* t) { return period(t); };
    const Good good[] = {
        {"1.5 s", 1.5, kUnitSecond},     {"10 ms", 0.01, kUnitMillisecond},
        {"100 Hz", 0.01, kUnitHertz},    {"2 kHz", 0.0005, kUnitKilohertz},
        {"0 s", 0, kUnitSecond},         {"1/4 s", 0.25, kUnitSecond},
        {"-100 Hz", -0.01, kUnitHertz},  {"0,5 KHZ", 0.002, kUnitKilohertz},
        {"A4", 1 / (523.26 * std::pow(2.0, -0.25)), kUnitHertz},
        {"c", 1 / 523.26, kUnitHertz},
    };
    for (const Good& g : good) expectGood(read, g);
    const Bad bad[] = {
        {"0 Hz", "You cannot use 0 with 'Hz'."},
        {"-0 Hz", "You cannot use 0 with 'Hz'."},
        {"0 kHz", "You cannot use 0 with 'kHz'."},
        {"5", "Wrong unit used, use: 's', 'ms', 'Hz', 'kHz'."},
        {"5 %", "Wrong unit used, use: 's', 'ms', 'Hz', 'kHz'."},
        {"5 dB", "Wrong unit used, use: 's', 'ms', 'Hz', 'kHz'."},
        {"5 '", "Wrong unit used, use: 's', 'ms', 'Hz', 'kHz'."},
        {"5 q", "This unit does not exist, use: 's', 'ms', 'Hz', 'kHz'."},
        {"", "Input has no value."},
        {"B#", "This note cannot have a \"#\"."},
        {"E#3", "This note cannot have a \"#\"."},
        {"C#13", "The maximum Octave number is 12."},
        {"g-3", "The minimum Octave number is -2."},
    };
    for (const Bad& b : bad) expectBad(read, b);
    EXPECT_EQ(period("-5 ms", kCheckPositive).message, "Value must be positive and more than 0.");
    EXPECT_EQ(period("0 s", kCheckNotZero).message, "Value must be not 0.");
    EXPECT_TRUE(period("A4", kCheckNegative).ok);  // a note skips the sign check
}

TEST(ReadFrequency, HertzFromEveryUnit) {
    auto read = [](const char* t) { return frequency(t); };
    const Good good[] = {
        {"2 kHz", 2000, kUnitKilohertz}, {"20 ms", 50, kUnitMillisecond},
        {"0.5 s", 2, kUnitSecond},       {"440 Hz", 440, kUnitHertz},
        {"0 Hz", 0, kUnitHertz},         {"abc", 523.26 * std::pow(2.0, 0.75), kUnitHertz},
        {"C-2", 523.26 / 128, kUnitHertz},
    };
    for (const Good& g : good) expectGood(read, g);
    const Bad bad[] = {
        {"0 s", "You cannot use 0 with 's'."},
        {"0 ms", "You cannot use 0 with 'ms'."},
        {"440", "Wrong unit used, use: 's', 'ms', 'Hz', 'kHz'."},
        {"440 Hx", "This unit does not exist, use: 's', 'ms', 'Hz', 'kHz'."},
        {"E#", "This note cannot have a \"#\"."},
    };
    for (const Bad& b : bad) expectBad(read, b);
    EXPECT_EQ(frequency("0 Hz", kCheckPositive).message, "Value must be positive and more than 0.");
    EXPECT_EQ(frequency("-2 ms", kCheckNotNegative).message, "Value must be positive.");
}

TEST(ReadField, StoresValueAndUnitOrKeepsTheRecord) {
    ValueRecord rec{kUnitPercent, kCheckPositive, 0.25};
    std::string message;
    EXPECT_TRUE(readField(ValueKind::Loudness, "-6 dB", rec, message));
    EXPECT_EQ(rec.unit, kUnitDecibel);
    EXPECT_EQ(rec.signCheck, kCheckPositive);
    EXPECT_DOUBLE_EQ(rec.value, 0.50118723362727224);
    EXPECT_EQ(message, "");

    ValueRecord period{kUnitMillisecond, kCheckPositive, 0.01};
    EXPECT_FALSE(readField(ValueKind::Period, "-3 ms", period, message));
    EXPECT_EQ(message, "Value must be positive and more than 0.");
    EXPECT_EQ(period.unit, kUnitMillisecond);
    EXPECT_EQ(period.value, 0.01);

    ValueRecord count{kUnitNone, kCheckNone, 3};
    EXPECT_TRUE(readField(ValueKind::Integer, "-12", count, message));
    EXPECT_EQ(count.value, -12);

    ValueRecord sample{kUnitNone, kCheckNone, 0};
    EXPECT_TRUE(readField(ValueKind::WaveValue, "-100 %", sample, message));
    EXPECT_EQ(sample.value, -32767);
    EXPECT_EQ(sample.unit, kUnitPercent);
}

}  // namespace
}  // namespace orv
