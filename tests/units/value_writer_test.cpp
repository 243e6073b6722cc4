// The writers (digits, precision, units, times, frequencies, sample values) hand-worked, and
// the round trips: what a field shows reads back as the value it holds.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstdio>
#include <initializer_list>
#include <limits>

#include "units/units_assert.h"
#include "units/value_reader.h"
#include "units/value_writer.h"

namespace orv {
namespace {

using K = ValueKind;

constexpr double kInf = std::numeric_limits<double>::infinity();

// Each row: what a writer gave, and the text worked out by hand.
struct Text {
    std::string got;
    const char* want;
};

void expectTexts(std::initializer_list<Text> cases) {
    for (const Text& c : cases) EXPECT_EQ(c.got, c.want);
}

TEST(WriteDigits, NudgeThenTruncateAndHeldZeros) {
    expectTexts({
        {writeDigits(3.14159, 1, 0, 3), "3.141"},  // truncated after the nudge, not rounded
        {writeDigits(1.5, 1, 0, 0), "1"}, {writeDigits(0.29999999, 1, 0, 1), "0.3"},  // the nudge carries
        {writeDigits(9.9999, 1, 0, 2), "10"},  // carry into the extra leading position
        {writeDigits(2.5, 1, 2, 2), "2.50"}, {writeDigits(7, 3, 0, 0), "007"}, {writeDigits(-0.5, 1, 1, 1), "-0.5"},
        {writeDigits(0, 1, 2, 2), "0.00"}, {writeDigits(-0.0, 1, 0, 2), "0"}, {writeDigits(-0.0001, 1, 0, 2), "-0"},
        {writeDigits(0.05, 1, 0, 3), "0.05"}, {writeDigits(0.05, 1, 3, 3), "0.050"},
        {writeDigits(100, 1, 0, 2), "100"}, {writeDigits(0.001234, 1, 0, 2), "0"},  // zeros never followed
        {writeDigits(0.001234, 2, 0, 5), "00.00123"}, {writeDigits(10.05, 1, 1, 4), "10.05"},
        {writeDigits(1234567, 1, 0, 0), "1234567"}, {writeDigits(kInf, 1, 0, 3), "*"},
        {writeDigits(-kInf, 1, 0, 3), "*"}, {writeDigits(std::nan(""), 1, 2, 2), "*"},
    });
    const std::string big = writeDigits(1.7e308, 1, 0, 0);  // no overflow in the scaling
    EXPECT_EQ(big.size(), 309u);
    EXPECT_EQ(big.find_first_not_of("0123456789"), std::string::npos);
    EXPECT_EQ(big[0], '1');
}

void reportWithMark(std::string_view text) { std::fprintf(stderr, "MARKED %.*s\n", int(text.size()), text.data()); }

TEST(WriteDigits, ChecksItsArgumentsThroughTheInstalledHandler) {
    EXPECT_DEATH(writeDigits(1, 1, 3, 2), "Assertion failed: minDigAfter <= maxDigAfter, unit writers, line [0-9]+");
    EXPECT_DEATH(
        {
            setUnitsAssertHandler(&reportWithMark);
            writePrecision(1, 0, false);
        },
        "MARKED Assertion failed: precisie >= 1, unit writers, line");
    const UnitsAssertHandler original = setUnitsAssertHandler(&reportWithMark);
    EXPECT_EQ(setUnitsAssertHandler(nullptr), &reportWithMark);  // gives the previous one back
    EXPECT_EQ(setUnitsAssertHandler(nullptr), original);
}

TEST(WritePrecision, SignificantDigits) {
    expectTexts({
        {writePrecision(5, 3, false), "5.00"}, {writePrecision(5, 3, true), "5"},
        {writePrecision(440, 3, false), "440"}, {writePrecision(0.5, 3, false), "0.50"},
        {writePrecision(0, 3, false), "0.0"}, {writePrecision(0.0123, 3, true), "0.012"},
        {writePrecision(123456, 3, false), "123456"}, {writePrecision(1234.5678, 6, false), "1234.56"},
        {writePrecision(-0.25, 2, false), "-0.2"},  // log10 0.25 truncates to 0: one decimal
        {writePrecision(kInf, 3, true), "*"},
    });
    EXPECT_EQ(writePrecision(1e-300, 2, true), "0." + std::string(299, '0') + "1");
}

std::string unit(double value, std::uint8_t code, bool isFrequency = false) {
    return writeUnit(value, code, 3, true, isFrequency);
}

TEST(WriteUnit, EveryUnitAsTimeAndAsFrequency) {
    expectTexts({
        {unit(0.5, kUnitPercent), "50 %"}, {unit(0.5, kUnitDecibel), "-6.02 dB"},  // -6.0206 truncated
        {unit(0.5011872336272722, kUnitDecibel), "-6 dB"}, {unit(0, kUnitDecibel), "* dB"},
        {unit(1.5, kUnitSecond), "1.5 s"}, {unit(0.01, kUnitMillisecond), "10 ms"},
        {unit(0.01, kUnitHertz), "100 Hz"}, {unit(0.0005, kUnitKilohertz), "2 kHz"}, {unit(0, kUnitSecond), "0 s"},
        {unit(0, kUnitHertz), "* Hz"}, {unit(0, kUnitKilohertz), "* kHz"}, {unit(50, kUnitSecond, true), "0.02 s"},
        {unit(50, kUnitMillisecond, true), "20 ms"}, {unit(2000, kUnitKilohertz, true), "2 kHz"},
        {unit(0, kUnitSecond, true), "* s"}, {unit(0, kUnitMillisecond, true), "* ms"},
        {unit(0, kUnitHertz, true), "0 Hz"}, {unit(0.75, kUnitDegree), "-90 '"},  // upper half turns negative
        {unit(0.25, kUnitDegree), "90 '"}, {unit(0.5, kUnitDegree), "-180 '"},
        {unit(0.75, kUnitBalanceDegree), "67.5 '"}, {unit(1, kUnitSampleValue), "***"}, {unit(1, 10, true), "***"},
        {writeUnit(0.01, kUnitMillisecond, 4, false, false), "10.00 ms"},
        {writeUnit(0.5, kUnitDecibel, 1, false, false), "-6.02 dB"},  // decibels ignore the precision
    });
}

TEST(WriteTimeAndFrequency, TextsOfTheViews) {
    expectTexts({
        {writeTime(2.5), "2.50000 s"}, {writeTime(0.123456), "0.12345 s"}, {writeTime(65.25), "1:05.25000"},
        {writeTime(600), "10:00.00000"}, {writeTime(3599.5), "59:59.50000"}, {writeTime(3725), "1:02:05.00000"},
        // With hours and no whole minutes the minutes are left out: 1 h 5 s, 10 h.
        {writeTime(3605), "1:05.00000"}, {writeTime(36000), "10:00.00000"}, {writeTime(std::nan("")), "* s"},
        {writeFrequency(5), "05.0 Hz"}, {writeFrequency(99.94), "99.9 Hz"}, {writeFrequency(100), "100 Hz"},
        {writeFrequency(999.8), "999 Hz"}, {writeFrequency(1000), "1.00 kHz"}, {writeFrequency(9985), "9.98 kHz"},
        {writeFrequency(10000), "10.0 kHz"}, {writeFrequency(44100), "44.1 kHz"}, {writeFrequency(999.9), "1000 Hz"},
        {writeFrequency(9999), "10.00 kHz"},  // the nudge makes a 4th digit
    });
}

std::string sample(double v, std::uint8_t code) { return writeWaveValue(ValueRecord{code, kCheckNone, v}); }

TEST(WriteWaveValue, EachUnitWithItsRounding) {
    expectTexts({
        {sample(-32768, kUnitNone), "-1"},  // -1.00003 rounded to four decimals
        {sample(16383, kUnitNone), "0.5"}, {sample(-16383, kUnitNone), "-0.5"},  // 0.499985 rounds away
        {sample(100, kUnitNone), "0.0031"}, {sample(0, kUnitNone), "0"},
        {sample(-1, kUnitNone), "-0"},  // -0.0000305 rounds away from zero to -0.0000
        {sample(-32768, kUnitPercent), "-100 %"}, {sample(100, kUnitPercent), "0.31 %"},
        {sample(0, kUnitPercent), "-0 %"},  // zero counts as negative in percent
        {sample(1, kUnitPercent), "0 %"}, {sample(-32768, kUnitSampleValue), "-32768 $"},
        {sample(5, kUnitDecibel), ""},
    });
}

TEST(RoundTrip, EveryFieldKindReadsBackItsOwnText) {
    const struct { K kind; std::uint8_t unit; double value; const char* text; } cases[] = {
        // Sample values have their own exhaustive round trip below.
        {K::Integer, kUnitNone, -12, "-12"}, {K::Integer, kUnitNone, 2147483647, "2147483647"},
        {K::Factor, kUnitPercent, 1.5, "150 %"}, {K::Factor, kUnitNone, -0.75, "-0.75"},
        {K::Loudness, kUnitPercent, 0.25, "25 %"}, {K::Loudness, kUnitDecibel, 0.1, "-20 dB"},
        {K::Loudness, kUnitDecibel, 10, "20 dB"}, {K::Loudness, kUnitDecibel, 1, "0 dB"},
        {K::Phase, kUnitDegree, 0.75, "-90 '"}, {K::Phase, kUnitPercent, 0.125, "12.5 %"},
        {K::Phase, kUnitNone, 0, "0"}, {K::Balance, kUnitDegree, -1, "-90 '"},
        {K::Balance, kUnitDegree, 1.0 / 3, "30 '"}, {K::Balance, kUnitNone, -0.25, "-0.25"},
        {K::Period, kUnitMillisecond, 0.01, "10 ms"}, {K::Period, kUnitHertz, 0.002, "500 Hz"},
        {K::Period, kUnitKilohertz, 0.0005, "2 kHz"}, {K::Period, kUnitSecond, 0.25, "0.25 s"},
        {K::Frequency, kUnitHertz, 440, "440 Hz"}, {K::Frequency, kUnitKilohertz, 2000, "2 kHz"},
        {K::Frequency, kUnitMillisecond, 50, "20 ms"}, {K::Frequency, kUnitSecond, 0.5, "2 s"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const std::string text = writeField(c.kind, ValueRecord{c.unit, kCheckNone, c.value}, 3, true);
        EXPECT_EQ(text, c.text);
        ValueRecord back{kUnitUnknown, kCheckNone, -999};
        std::string message;
        ASSERT_TRUE(readField(c.kind, text, back, message)) << message;
        EXPECT_DOUBLE_EQ(back.value, c.value);
        EXPECT_EQ(back.unit, c.unit);
        EXPECT_EQ(writeField(c.kind, back, 3, true), text);
    }
}

TEST(RoundTrip, EverySampleValueInEveryUnit) {
    // Four decimals of a factor, or two of a percentage, are a step of 3.28 samples: the
    // value read back is within 2 of the original and shows the same text again. Raw values
    // come back exactly.
    for (std::uint8_t unit : {kUnitNone, kUnitPercent, kUnitSampleValue}) {
        int worst = 0;
        for (int v = -32768; v <= 32767; ++v) {
            const std::string text = writeWaveValue(ValueRecord{unit, kCheckNone, double(v)});
            ValueRecord back{kUnitUnknown, kCheckNone, 0};
            std::string message;
            ASSERT_TRUE(readField(K::WaveValue, text, back, message)) << v << " " << text << ": " << message;
            ASSERT_EQ(back.unit, unit);
            worst = std::max(worst, std::abs(int(back.value) - v));
            // A rounded zero shows as "-0" or "0 %", the zero it reads back as the other way.
            if (text != "-0" && text != "0 %") {
                ASSERT_EQ(writeWaveValue(back), text) << v;
            }
        }
        EXPECT_EQ(worst, unit == kUnitSampleValue ? 0 : 2) << "unit " << int(unit);
    }
}

TEST(RoundTrip, TimesAndFrequenciesOfTheViews) {
    const struct { K kind; std::string text; double value; } cases[] = {
        {K::Period, writeTime(0.125), 0.125}, {K::Period, writeTime(0.00001), 0.00001},
        {K::Period, writeTime(0), 0}, {K::Frequency, writeFrequency(5), 5},
        {K::Frequency, writeFrequency(440), 440}, {K::Frequency, writeFrequency(12300), 12300},
    };
    for (const auto& c : cases) {
        ValueRecord back{kUnitUnknown, kCheckNone, -1};
        std::string message;
        ASSERT_TRUE(readField(c.kind, c.text, back, message)) << c.text << ": " << message;
        EXPECT_NEAR(back.value, c.value, 1e-12 * c.value) << c.text;
    }
}

}  // namespace
}  // namespace orv
