// The writers: digits, precision, units, times, frequencies and sample values, hand-worked.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>

#include "units/units_assert.h"
#include "units/value_writer.h"

namespace orv {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(WriteDigits, HandWorkedTexts) {
    const struct { double value; int before, minAfter, maxAfter; const char* text; } cases[] = {
        {3.14159, 1, 0, 3, "3.141"},  // truncated after the nudge, not rounded
        {1.5, 1, 0, 0, "1"},          {0.29999999, 1, 0, 1, "0.3"},  // the nudge carries
        {9.9999, 1, 0, 2, "10"},      // carry into the extra leading position
        {2.5, 1, 2, 2, "2.50"},       {7, 3, 0, 0, "007"},        {-0.5, 1, 1, 1, "-0.5"},
        {0, 1, 2, 2, "0.00"},         {-0.0, 1, 0, 2, "0"},       {-0.0001, 1, 0, 2, "-0"},
        {0.05, 1, 0, 3, "0.05"},      {0.05, 1, 3, 3, "0.050"},   {100, 1, 0, 2, "100"},
        {0.001234, 1, 0, 2, "0"},     // zeros held back and never followed
        {0.001234, 2, 0, 5, "00.00123"}, {10.05, 1, 1, 4, "10.05"}, {1234567, 1, 0, 0, "1234567"},
        {kInf, 1, 0, 3, "*"},         {-kInf, 1, 0, 3, "*"},      {std::nan(""), 1, 2, 2, "*"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(writeDigits(c.value, c.before, c.minAfter, c.maxAfter), c.text)
            << c.value << " (" << c.before << ", " << c.minAfter << ", " << c.maxAfter << ")";
    const std::string big = writeDigits(1.7e308, 1, 0, 0);  // no overflow in the scaling
    EXPECT_EQ(big.size(), 309u);
    EXPECT_EQ(big.find_first_not_of("0123456789"), std::string::npos);
    EXPECT_EQ(big[0], '1');
}

void reportWithMark(std::string_view text) { std::fprintf(stderr, "MARKED %.*s\n", int(text.size()), text.data()); }

TEST(WriteDigits, ChecksItsArgumentsThroughTheInstalledHandler) {
    EXPECT_DEATH(writeDigits(1, 1, 3, 2), "Assertion failed: minDigAfter <= maxDigAfter, unit writers, line [0-9]+");
    EXPECT_DEATH(writeDigits(1, 0, 0, 0), "Assertion failed: minDigBefore >= 1, unit writers");
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
    const struct { double value; int precisie; bool dropZeros; const char* text; } cases[] = {
        {5, 3, false, "5.00"},        {5, 3, true, "5"},           {440, 3, false, "440"},
        {0.5, 3, false, "0.50"},      {0, 3, false, "0.0"},        {0.0123, 3, true, "0.012"},
        {123456, 3, false, "123456"}, {1234.5678, 6, false, "1234.56"},
        {-0.25, 2, false, "-0.2"},    // log10 0.25 truncates to 0: one decimal
        {kInf, 3, true, "*"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(writePrecision(c.value, c.precisie, c.dropZeros), c.text) << c.value << " " << c.precisie;
    EXPECT_EQ(writePrecision(1e-300, 2, true), "0." + std::string(299, '0') + "1");
}

TEST(WriteUnit, EveryUnitAsTimeAndAsFrequency) {
    const struct { double value; std::uint8_t unit; bool isFrequency; const char* text; } cases[] = {
        {0.5, kUnitPercent, false, "50 %"},     {0.5, kUnitDecibel, false, "-6.02 dB"},  // -6.0206 truncated
        {0.5011872336272722, kUnitDecibel, false, "-6 dB"}, {0, kUnitDecibel, false, "* dB"},
        {1.5, kUnitSecond, false, "1.5 s"},     {0.01, kUnitMillisecond, false, "10 ms"},
        {0.01, kUnitHertz, false, "100 Hz"},    {0.0005, kUnitKilohertz, false, "2 kHz"},
        {0, kUnitSecond, false, "0 s"},         {0, kUnitHertz, false, "* Hz"},
        {0, kUnitKilohertz, false, "* kHz"},    {50, kUnitSecond, true, "0.02 s"},
        {50, kUnitMillisecond, true, "20 ms"},  {2000, kUnitKilohertz, true, "2 kHz"},
        {0, kUnitSecond, true, "* s"},          {0, kUnitMillisecond, true, "* ms"},
        {0, kUnitHertz, true, "0 Hz"},          {0.75, kUnitDegree, false, "-90 '"},  // upper half turns negative
        {0.25, kUnitDegree, false, "90 '"},     {0.5, kUnitDegree, false, "-180 '"},
        {0.75, kUnitBalanceDegree, false, "67.5 '"}, {1, kUnitSampleValue, false, "***"},
        {1, 10, true, "***"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(writeUnit(c.value, c.unit, 3, true, c.isFrequency), c.text) << c.value << " unit " << int(c.unit);
    EXPECT_EQ(writeUnit(0.01, kUnitMillisecond, 4, false, false), "10.00 ms");
    EXPECT_EQ(writeUnit(0.5, kUnitDecibel, 1, false, false), "-6.02 dB");  // decibels ignore the precision
}

TEST(WriteTime, HoursMinutesSeconds) {
    const struct { double seconds; const char* text; } cases[] = {
        {2.5, "2.50000 s"},      {0.123456, "0.12345 s"}, {65.25, "1:05.25000"},
        {600, "10:00.00000"},    {3599.5, "59:59.50000"}, {3725, "1:02:05.00000"},
        // With hours and no whole minutes the minutes are left out: 1 h 5 s, 10 h.
        {3605, "1:05.00000"},    {36000, "10:00.00000"},  {std::nan(""), "* s"},
    };
    for (const auto& c : cases) EXPECT_EQ(writeTime(c.seconds), c.text) << c.seconds;
}

TEST(WriteFrequency, ThreeSignificantDigits) {
    const struct { double hertz; const char* text; } cases[] = {
        {5, "05.0 Hz"},      {99.94, "99.9 Hz"},   {100, "100 Hz"},     {999.8, "999 Hz"},
        {1000, "1.00 kHz"},  {9985, "9.98 kHz"},   {10000, "10.0 kHz"}, {44100, "44.1 kHz"},
        {999.9, "1000 Hz"},  {9999, "10.00 kHz"},  // the nudge carries into a fourth digit
    };
    for (const auto& c : cases) EXPECT_EQ(writeFrequency(c.hertz), c.text) << c.hertz;
}

TEST(WriteWaveValue, EachUnitWithItsRounding) {
    const struct { double sample; std::uint8_t unit; const char* text; } cases[] = {
        {-32768, kUnitNone, "-1"},        // -1.00003 rounded to four decimals
        {16383, kUnitNone, "0.5"},        {-16383, kUnitNone, "-0.5"},   // 0.499985 rounds away
        {100, kUnitNone, "0.0031"},       {0, kUnitNone, "0"},
        {-1, kUnitNone, "-0"},            // -0.0000305 rounds away from zero to -0.0000
        {-32768, kUnitPercent, "-100 %"}, {100, kUnitPercent, "0.31 %"},
        {0, kUnitPercent, "-0 %"},        // zero counts as negative in percent
        {1, kUnitPercent, "0 %"},         {-32768, kUnitSampleValue, "-32768 $"},
        {5, kUnitDecibel, ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(writeWaveValue(ValueRecord{c.unit, kCheckNone, c.sample}), c.text) << c.sample << " unit " << int(c.unit);
}

}  // namespace
}  // namespace orv
