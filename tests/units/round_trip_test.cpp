// What a field shows reads back as the value it holds: every writer against its reader.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "units/value_reader.h"
#include "units/value_writer.h"

namespace orv {
namespace {

using K = ValueKind;

TEST(RoundTrip, EveryFieldKindReadsBackItsOwnText) {
    const struct { K kind; std::uint8_t unit; double value; const char* text; } cases[] = {
        {K::Integer, kUnitNone, -12, "-12"},              {K::Integer, kUnitNone, 2147483647, "2147483647"},
        {K::WaveValue, kUnitNone, -32767, "-1"},          {K::WaveValue, kUnitNone, 16383, "0.5"},
        {K::WaveValue, kUnitPercent, 16383, "50 %"},      {K::WaveValue, kUnitPercent, 0, "-0 %"},
        {K::WaveValue, kUnitSampleValue, -32768, "-32768 $"},
        {K::Factor, kUnitPercent, 1.5, "150 %"},          {K::Factor, kUnitNone, -0.75, "-0.75"},
        {K::Loudness, kUnitPercent, 0.25, "25 %"},        {K::Loudness, kUnitDecibel, 0.1, "-20 dB"},
        {K::Loudness, kUnitDecibel, 10, "20 dB"},         {K::Loudness, kUnitDecibel, 1, "0 dB"},
        {K::Phase, kUnitDegree, 0.75, "-90 '"},           {K::Phase, kUnitDegree, 0.5, "-180 '"},
        {K::Phase, kUnitPercent, 0.125, "12.5 %"},        {K::Phase, kUnitNone, 0, "0"},
        {K::Balance, kUnitDegree, -1, "-90 '"},           {K::Balance, kUnitDegree, 1.0 / 3, "30 '"},
        {K::Balance, kUnitNone, -0.25, "-0.25"},          {K::Period, kUnitMillisecond, 0.01, "10 ms"},
        {K::Period, kUnitHertz, 0.002, "500 Hz"},         {K::Period, kUnitKilohertz, 0.0005, "2 kHz"},
        {K::Period, kUnitSecond, 0.25, "0.25 s"},         {K::Frequency, kUnitHertz, 440, "440 Hz"},
        {K::Frequency, kUnitKilohertz, 2000, "2 kHz"},    {K::Frequency, kUnitMillisecond, 50, "20 ms"},
        {K::Frequency, kUnitSecond, 0.5, "2 s"},
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

TEST(RoundTrip, InfinityTextsDoNotReadBack) {
    const struct { K kind; std::uint8_t unit; const char* text; } cases[] = {
        {K::Period, kUnitHertz, "* Hz"}, {K::Period, kUnitKilohertz, "* kHz"},
        {K::Frequency, kUnitSecond, "* s"}, {K::Frequency, kUnitMillisecond, "* ms"},
    };
    for (const auto& c : cases) {
        ValueRecord rec{c.unit, kCheckNone, 0};
        EXPECT_EQ(writeField(c.kind, rec, 3, true), c.text);
        std::string message;
        EXPECT_FALSE(readField(c.kind, c.text, rec, message)) << c.text;
        EXPECT_EQ(message, "Input has no value.");
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
    std::uint8_t unit = 0;
    for (double seconds : {2.5, 0.125, 0.00001, 0.0}) {
        ValueReader r(writeTime(seconds));
        double back = -1;
        ASSERT_TRUE(readPeriod(r, back, unit, kCheckNone)) << r.text() << ": " << r.message();
        EXPECT_DOUBLE_EQ(back, seconds) << r.text();
    }
    for (double hertz : {50.0, 5.0, 440.0, 2500.0, 12300.0}) {
        ValueReader r(writeFrequency(hertz));
        double back = -1;
        ASSERT_TRUE(readFrequency(r, back, unit, kCheckNone)) << r.text() << ": " << r.message();
        EXPECT_NEAR(back, hertz, 1e-9 * hertz) << r.text();
    }
}

}  // namespace
}  // namespace orv
