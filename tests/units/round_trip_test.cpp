// What a field shows reads back as the value it holds: every writer against its reader.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>

#include "units/value_reader.h"
#include "units/value_writer.h"

namespace orv {
namespace {

struct FieldCase {
    ValueKind kind;
    std::uint8_t unit;
    double value;
    const char* text;  // what the field shows (3 significant digits, zeros dropped)
};

const FieldCase kFields[] = {
    {ValueKind::Integer, kUnitNone, -12, "-12"},
    {ValueKind::Integer, kUnitNone, 0, "0"},
    {ValueKind::Integer, kUnitNone, 2147483647, "2147483647"},
    {ValueKind::WaveValue, kUnitNone, 32767, "1"},
    {ValueKind::WaveValue, kUnitNone, -32767, "-1"},
    {ValueKind::WaveValue, kUnitNone, 16383, "0.5"},
    {ValueKind::WaveValue, kUnitNone, 0, "0"},
    {ValueKind::WaveValue, kUnitPercent, 32767, "100 %"},
    {ValueKind::WaveValue, kUnitPercent, -32767, "-100 %"},
    {ValueKind::WaveValue, kUnitPercent, 16383, "50 %"},
    {ValueKind::WaveValue, kUnitPercent, 0, "-0 %"},
    {ValueKind::WaveValue, kUnitSampleValue, -32768, "-32768 $"},
    {ValueKind::WaveValue, kUnitSampleValue, 32767, "32767 $"},
    {ValueKind::Factor, kUnitPercent, 0.5, "50 %"},
    {ValueKind::Factor, kUnitPercent, 1.5, "150 %"},
    {ValueKind::Factor, kUnitNone, 0.25, "0.25"},
    {ValueKind::Factor, kUnitNone, -0.75, "-0.75"},
    {ValueKind::Loudness, kUnitNone, 0.5, "0.5"},
    {ValueKind::Loudness, kUnitPercent, 0.25, "25 %"},
    {ValueKind::Loudness, kUnitDecibel, 0.1, "-20 dB"},
    {ValueKind::Loudness, kUnitDecibel, 0.01, "-40 dB"},
    {ValueKind::Loudness, kUnitDecibel, 10, "20 dB"},
    {ValueKind::Loudness, kUnitDecibel, 1, "0 dB"},
    {ValueKind::Phase, kUnitDegree, 0.75, "-90 '"},
    {ValueKind::Phase, kUnitDegree, 0.25, "90 '"},
    {ValueKind::Phase, kUnitDegree, 0.5, "-180 '"},
    {ValueKind::Phase, kUnitPercent, 0.125, "12.5 %"},
    {ValueKind::Phase, kUnitNone, 0.75, "0.75"},
    {ValueKind::Phase, kUnitNone, 0, "0"},
    {ValueKind::Balance, kUnitDegree, 0.5, "45 '"},
    {ValueKind::Balance, kUnitDegree, -1, "-90 '"},
    {ValueKind::Balance, kUnitDegree, 1.0 / 3, "30 '"},
    {ValueKind::Balance, kUnitPercent, 1, "100 %"},
    {ValueKind::Balance, kUnitNone, -0.25, "-0.25"},
    {ValueKind::Period, kUnitMillisecond, 0.01, "10 ms"},
    {ValueKind::Period, kUnitHertz, 0.01, "100 Hz"},
    {ValueKind::Period, kUnitHertz, 0.002, "500 Hz"},
    {ValueKind::Period, kUnitKilohertz, 0.0005, "2 kHz"},
    {ValueKind::Period, kUnitSecond, 1.5, "1.5 s"},
    {ValueKind::Period, kUnitSecond, 0.25, "0.25 s"},
    {ValueKind::Frequency, kUnitHertz, 440, "440 Hz"},
    {ValueKind::Frequency, kUnitKilohertz, 2000, "2 kHz"},
    {ValueKind::Frequency, kUnitMillisecond, 50, "20 ms"},
    {ValueKind::Frequency, kUnitSecond, 2, "0.5 s"},
    {ValueKind::Frequency, kUnitSecond, 0.5, "2 s"},
};

TEST(RoundTrip, EveryFieldKindReadsBackItsOwnText) {
    for (const FieldCase& c : kFields) {
        const ValueRecord rec{c.unit, kCheckNone, c.value};
        const std::string text = writeField(c.kind, rec, 3, true);
        EXPECT_EQ(text, c.text) << c.value;

        ValueRecord back{kUnitUnknown, kCheckNone, -999};
        std::string message;
        ASSERT_TRUE(readField(c.kind, text, back, message)) << text << ": " << message;
        EXPECT_DOUBLE_EQ(back.value, c.value) << text;
        EXPECT_EQ(back.unit, c.unit) << text;
        EXPECT_EQ(writeField(c.kind, back, 3, true), text);
    }
}

TEST(RoundTrip, InfinityTextsDoNotReadBack) {
    const struct {
        ValueKind kind;
        std::uint8_t unit;
        const char* text;
    } cases[] = {
        {ValueKind::Period, kUnitHertz, "* Hz"},
        {ValueKind::Period, kUnitKilohertz, "* kHz"},
        {ValueKind::Frequency, kUnitSecond, "* s"},
        {ValueKind::Frequency, kUnitMillisecond, "* ms"},
    };
    for (const auto& c : cases) {
        ValueRecord rec{c.unit, kCheckNone, 0};
        EXPECT_EQ(writeField(c.kind, rec, 3, true), c.text);
        std::string message;
        EXPECT_FALSE(readField(c.kind, c.text, rec, message)) << c.text;
        EXPECT_EQ(message, "Input has no value.");
        EXPECT_EQ(rec.unit, c.unit);
        EXPECT_EQ(rec.value, 0);
    }
}

TEST(RoundTrip, EverySampleValueInEveryUnit) {
    // Four decimals of a factor, or two of a percentage, are a step of 3.28 samples: the
    // value read back is within 2 of the original and shows the same text again. Raw values
    // come back exactly.
    const std::uint8_t units[] = {kUnitNone, kUnitPercent, kUnitSampleValue};
    for (std::uint8_t unit : units) {
        int worst = 0;
        for (int v = -32768; v <= 32767; ++v) {
            const ValueRecord rec{unit, kCheckNone, double(v)};
            const std::string text = writeWaveValue(rec);
            ValueRecord back{kUnitUnknown, kCheckNone, 0};
            std::string message;
            ASSERT_TRUE(readField(ValueKind::WaveValue, text, back, message))
                << v << " " << text << ": " << message;
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
    for (double seconds : {2.5, 0.125, 59.5, 0.00001, 0.0}) {
        ValueReader r(writeTime(seconds));
        double back = -1;
        std::uint8_t unit = 0;
        ASSERT_TRUE(readPeriod(r, back, unit, kCheckNone)) << r.text() << ": " << r.message();
        EXPECT_DOUBLE_EQ(back, seconds) << r.text();
        EXPECT_EQ(unit, kUnitSecond);
    }
    for (double hertz : {50.0, 5.0, 440.0, 2500.0, 12300.0, 44100.0}) {
        ValueReader r(writeFrequency(hertz));
        double back = -1;
        std::uint8_t unit = 0;
        ASSERT_TRUE(readFrequency(r, back, unit, kCheckNone)) << r.text() << ": " << r.message();
        EXPECT_NEAR(back, hertz, 1e-9 * hertz) << r.text();
    }
}

}  // namespace
}  // namespace orv
