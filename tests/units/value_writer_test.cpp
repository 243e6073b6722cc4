// The unit, time, frequency and sample value writers: hand-worked texts.
#include <gtest/gtest.h>

#include <cmath>

#include "units/value_writer.h"

namespace orv {
namespace {

TEST(WriteUnit, EveryUnitAsTimeAndAsFrequency) {
    const struct {
        double value;
        std::uint8_t unit;
        bool isFrequency;
        const char* text;
    } cases[] = {
        {0.5, kUnitNone, false, "0.5"},
        {0.5, kUnitPercent, false, "50 %"},
        {0.5, kUnitPercent, true, "50 %"},
        {0.50118723362727224, kUnitDecibel, false, "-6 dB"},  // 10^-0.3
        {0.5, kUnitDecibel, false, "-6.02 dB"},               // -6.0206 truncated
        {10, kUnitDecibel, true, "20 dB"},
        {1.5, kUnitSecond, false, "1.5 s"},
        {0.01, kUnitMillisecond, false, "10 ms"},
        {0.01, kUnitHertz, false, "100 Hz"},
        {0.0005, kUnitKilohertz, false, "2 kHz"},
        {0, kUnitSecond, false, "0 s"},
        {0, kUnitMillisecond, false, "0 ms"},
        {0, kUnitHertz, false, "* Hz"},
        {0, kUnitKilohertz, false, "* kHz"},
        {50, kUnitSecond, true, "0.02 s"},
        {50, kUnitMillisecond, true, "20 ms"},
        {440, kUnitHertz, true, "440 Hz"},
        {2000, kUnitKilohertz, true, "2 kHz"},
        {0, kUnitSecond, true, "* s"},
        {0, kUnitMillisecond, true, "* ms"},
        {0, kUnitHertz, true, "0 Hz"},
        {0, kUnitKilohertz, true, "0 kHz"},
        {0.75, kUnitDegree, false, "-90 '"},   // the upper half of a cycle turns negative
        {0.25, kUnitDegree, false, "90 '"},
        {0.5, kUnitDegree, false, "-180 '"},
        {0.4, kUnitDegree, true, "144 '"},
        {0.5, kUnitBalanceDegree, false, "45 '"},
        {-1, kUnitBalanceDegree, false, "-90 '"},
        {0.75, kUnitBalanceDegree, false, "67.5 '"},
        {1, kUnitSampleValue, false, "***"},
        {1, kUnitUnknown, false, "***"},
        {1, 10, true, "***"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(writeUnit(c.value, c.unit, 3, true, c.isFrequency), c.text)
            << c.value << " unit " << int(c.unit) << (c.isFrequency ? " (frequency)" : "");
}

TEST(WriteUnit, PrecisionAndZerosPassThrough) {
    EXPECT_EQ(writeUnit(0.01, kUnitMillisecond, 4, false, false), "10.00 ms");
    EXPECT_EQ(writeUnit(0.01, kUnitMillisecond, 4, true, false), "10 ms");
    EXPECT_EQ(writeUnit(1.0 / 3, kUnitNone, 4, true, false), "0.333");  // log10 of 1/3 truncates to 0: three decimals
    EXPECT_EQ(writeUnit(0.5, kUnitDecibel, 1, false, false), "-6.02 dB");  // decibels ignore it
    // A loudness of 0 has no decibels; like the "*" texts it does not read back.
    EXPECT_EQ(writeUnit(0, kUnitDecibel, 3, true, false), "* dB");
}

TEST(WriteTime, HoursMinutesSeconds) {
    const struct {
        double seconds;
        const char* text;
    } cases[] = {
        {2.5, "2.50000 s"},
        {0, "0.00000 s"},
        {0.123456, "0.12345 s"},
        {59.5, "59.50000 s"},
        {65.25, "1:05.25000"},
        {600, "10:00.00000"},
        {3599.5, "59:59.50000"},
        {3725, "1:02:05.00000"},
        {7384.5, "2:03:04.50000"},
        // With hours and no whole minutes the minutes are left out: 1 h 5 s, 1 h, 10 h.
        {3605, "1:05.00000"},
        {3600, "1:00.00000"},
        {36000, "10:00.00000"},
        {36005.125, "10:05.12500"},
    };
    for (const auto& c : cases) EXPECT_EQ(writeTime(c.seconds), c.text) << c.seconds;
    EXPECT_EQ(writeTime(std::nan("")), "* s");
}

TEST(WriteFrequency, ThreeSignificantDigits) {
    const struct {
        double hertz;
        const char* text;
    } cases[] = {
        {50, "50.0 Hz"},     {5, "05.0 Hz"},      {0, "00.0 Hz"},       {99.94, "99.9 Hz"},
        {100, "100 Hz"},     {440, "440 Hz"},     {999.8, "999 Hz"},    {1000, "1.00 kHz"},
        {2500, "2.50 kHz"},  {9985, "9.98 kHz"},  {10000, "10.0 kHz"},  {12345, "12.3 kHz"},
        {20000, "20.0 kHz"}, {44100, "44.1 kHz"},
    };
    for (const auto& c : cases) EXPECT_EQ(writeFrequency(c.hertz), c.text) << c.hertz;
    // The nudge of one hidden digit carries into a fourth digit just below a range's end.
    EXPECT_EQ(writeFrequency(999.9), "1000 Hz");
    EXPECT_EQ(writeFrequency(9999), "10.00 kHz");
}

TEST(WriteWaveValue, EachUnitWithItsRounding) {
    const struct {
        double sample;
        std::uint8_t unit;
        const char* text;
    } cases[] = {
        {32767, kUnitNone, "1"},
        {-32767, kUnitNone, "-1"},
        {-32768, kUnitNone, "-1"},          // -1.00003 rounded to four decimals
        {16383, kUnitNone, "0.5"},          // 0.499985 rounds up
        {-16383, kUnitNone, "-0.5"},
        {100, kUnitNone, "0.0031"},         // 0.0030519
        {0, kUnitNone, "0"},
        {-1, kUnitNone, "-0"},              // -0.0000305 rounds away from zero to -0.0000
        {32767, kUnitPercent, "100 %"},
        {-32768, kUnitPercent, "-100 %"},   // -100.003 truncated
        {16383, kUnitPercent, "50 %"},
        {100, kUnitPercent, "0.31 %"},      // 0.30519
        {0, kUnitPercent, "-0 %"},          // zero counts as negative in percent
        {1, kUnitPercent, "0 %"},
        {-32768, kUnitSampleValue, "-32768 $"},
        {5, kUnitSampleValue, "5 $"},
        {0, kUnitSampleValue, "0 $"},
        {5, kUnitDecibel, ""},
        {5, kUnitDegree, ""},
        {5, kUnitUnknown, ""},
    };
    for (const auto& c : cases) {
        const ValueRecord rec{c.unit, kCheckNone, c.sample};
        EXPECT_EQ(writeWaveValue(rec), c.text) << c.sample << " unit " << int(c.unit);
    }
}

}  // namespace
}  // namespace orv
