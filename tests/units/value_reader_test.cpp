// The reading steps (digits, integers, numbers, units, sign checks), the note names, and each
// reader through readField: hand-worked conversions, ranges and every message word for word.
#include <gtest/gtest.h>

#include <string>

#include "units/value_reader.h"

namespace orv {
namespace {

using K = ValueKind;

TEST(ReadInt, TenDigitsAtMostSignsAndWrapAround) {
    const struct { const char* text; std::int32_t value; int count; std::size_t pos; } cases[] = {
        {"12345678901", 1234567890, 10, 10},  // the eleventh digit stays for what comes next
        {"9999999999", 1410065407, 10, 10},  // 9999999999 mod 2^32
        {"+42", 42, 2, 3}, {"-42", -42, 2, 3}, {"+-3", -3, 1, 3}, {"", 0, 0, 0}, {"x1", 0, 0, 0},
        {" 5", 0, 0, 0},  // no blanks skipped
        {"-+3", 0, 0, 1}, {"2147483648", -2147483647 - 1, 10, 10}, {"4294967295", -1, 10, 10},
        {"-2147483648", -2147483647 - 1, 10, 11}, {"12abc", 12, 2, 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        ValueReader r(c.text);
        int count = -1;
        EXPECT_EQ(r.readInt(count), c.value);
        EXPECT_EQ(count, c.count);
        EXPECT_EQ(r.pos(), c.pos);
    }
}

TEST(ReadNumber, DecimalsFractionsAndFailures) {
    const struct { const char* text; double value; std::size_t pos; const char* message = ""; } cases[] = {
        {"-5", -5, 2}, {"+5", 5, 2}, {"-\t 5", -5, 4}, {"1,5", 1.5, 3}, {".5", 0.5, 2}, {"5.", 5, 2}, {".", 0, 1},
        {"-.25", -0.25, 4}, {"-3/4", -0.75, 4}, {"0.001", 0.001, 5}, {"12.5ms", 12.5, 4}, {"7/2 s", 3.5, 3},
        {"0/5", 0, 3}, {"", -99, 0, "Input has no value."}, {"\t", -99, 1, "Input has no value."},
        {"+-3", -99, 1, "Input has no value."},  // only one sign, unlike an integer
        {" -5", -99, 1, "Input has no value."},  // blanks only after the sign
        {"/4", -99, 2, "Input has no value before '/'."}, {"3/x", -99, 2, "Input has no value after '/'."},
        {"3/000", -99, 5, "Broke is invalid."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        ValueReader r(c.text);
        double v = -99;
        EXPECT_EQ(r.readNumber(v), *c.message == '\0');
        EXPECT_DOUBLE_EQ(v, c.value);
        EXPECT_EQ(r.message(), c.message);
        EXPECT_EQ(r.pos(), c.pos);
    }
}

TEST(ReadUnit, NamesCaseAndOrder) {
    const struct { const char* rest; std::uint8_t unit; } cases[] = {
        {"   ", kUnitNone}, {" \t%", kUnitPercent}, {"$", kUnitSampleValue}, {"S", kUnitSecond}, {"'", kUnitDegree},
        {"mS", kUnitMillisecond}, {"hz", kUnitHertz}, {"KHZ", kUnitKilohertz}, {"db", kUnitDecibel},
        {"sec", kUnitSecond}, {"m", kUnitUnknown}, {"k", kUnitUnknown}, {"d", kUnitUnknown}, {"\"", kUnitUnknown},
    };
    for (const auto& c : cases) EXPECT_EQ(ValueReader(c.rest).readUnit(), c.unit) << '"' << c.rest << '"';
}

TEST(ValueCheck, EveryCodeAtItsBoundaries) {
    const char* const aboveZero = "Value must be positive and more than 0.";
    const struct { int check; double value; const char* message; } cases[] = {
        {0, -1e9, nullptr}, {1, -0.0, "Value must be not 0."}, {1, 1e-300, nullptr}, {2, 0, nullptr},
        {2, 1e-9, "Value must be negative."}, {3, 0, nullptr}, {3, -1e-9, "Value must be positive."},
        {4, -1e-9, nullptr}, {4, 0, "Value must be negative and less than 0."}, {5, 1e-9, nullptr},
        {5, 0, aboveZero}, {6, 0, nullptr}, {6, 1, nullptr}, {6, -1e-9, "Value must be positive."},
        {6, 1.000001, "Value must be no more than 1."}, {7, 1e-9, nullptr}, {7, 0, aboveZero},
        {7, 1, "Value must be less than 1."}, {-1, 0, nullptr}, {8, 0, nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.check << " " << c.value);
        ValueReader r("");
        EXPECT_EQ(ValueCheck(r, c.value, c.check), c.message == nullptr);
        EXPECT_EQ(r.message(), c.message ? c.message : "");
    }
}

TEST(NoteName, OctavesLettersSharpsAndRefusals) {
    const struct { const char* text; double hertz; const char* message = ""; } cases[] = {
        {"C", 523.26},  // octave 5 when left out
        {"C6", 1046.52}, {"C4", 261.63}, {"C-2", 523.26 / 128}, {"C12", 523.26 * 128}, {"C+3", 130.815},
        {"a4", 440.00745824565865}, {"A4 Hz", 440.00745824565865},  // what follows is not looked at
        {"c#5", 554.3746587544449}, {"D", 587.3394913983625}, {"D#", 622.2645149963238}, {"E5", 659.2662885679913},
        {"f", 698.4683020930122}, {"F#", 740.0013886473457}, {"g5", 784.0041610464924}, {"G#", 830.62347445288},
        {"A", 880.0149164913173}, {"A#5", 932.3433265082278}, {"B", 987.7833457076458},
        {"B#4", -1, "This note cannot have a \"#\"."}, {"e#", -1, "This note cannot have a \"#\"."},
        {"C#13", -1, "The maximum Octave number is 12."}, {"C-3", -1, "The minimum Octave number is -2."},
        {"H4", -1, "Input has no value."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        ValueReader r(c.text);
        double hz = -1;
        EXPECT_EQ(r.readNote(hz), *c.message == '\0');
        EXPECT_DOUBLE_EQ(hz, c.hertz);
        EXPECT_EQ(r.message(), c.message);
    }
    ValueReader r("xE#4");  // the sharp refusal puts the position back on the letter
    r.setPos(1);
    double hz = 0;
    EXPECT_FALSE(r.readNote(hz));
    EXPECT_EQ(r.pos(), 1u);
    for (const char* t : {"g4", "b", "dB"}) EXPECT_TRUE(ValueReader(t).startsWithNote()) << t;
    for (const char* t : {"", "H", "h", " A4", "z", "\xc1"}) EXPECT_FALSE(ValueReader(t).startsWithNote()) << t;
}

TEST(Readers, ConvertWhatTheUserTyped) {
    const struct { K kind; const char* text; double value; std::uint8_t unit; int check = 0; } cases[] = {
        {K::Integer, "-17", -17, kUnitNone}, {K::Integer, "", 0, kUnitNone},  // cannot fail by itself
        {K::WaveValue, "0.5", 16383, kUnitNone}, {K::WaveValue, "50 %", 16383, kUnitPercent},  // 16383.5 truncated
        {K::WaveValue, "-100 %", -32767, kUnitPercent}, {K::WaveValue, "-32768 $", -32768, kUnitSampleValue},
        {K::WaveValue, "32767$", 32767, kUnitSampleValue}, {K::WaveValue, "-1.9 $", -1, kUnitSampleValue},
        {K::WaveValue, "-0.25", -8191, kUnitNone},
        {K::WaveValue, "-0.0001", -3, kUnitNone, kCheckNegative},  // -3.2767 -> -3
        {K::Factor, "-3/4", -0.75, kUnitNone}, {K::Factor, "1/8 %", 0.00125, kUnitPercent},
        {K::Factor, "100 %", 1, kUnitPercent, kCheckZeroToOne},
        {K::Loudness, "-6 dB", 0.5011872336272722, kUnitDecibel}, {K::Loudness, "-40 db", 0.01, kUnitDecibel},
        {K::Loudness, "50 %", 0.5, kUnitPercent},
        {K::Loudness, "-2", -2, kUnitNone, kCheckPositive},  // no sign check
        {K::Phase, "-0.5", 0.5, kUnitNone}, {K::Phase, "25 %", 0.25, kUnitPercent},
        {K::Phase, "-100 %", 0, kUnitPercent}, {K::Phase, "0.999", 0.999, kUnitNone},
        {K::Phase, "-360'", 0, kUnitDegree}, {K::Phase, "359.9 '", 359.9 / 360, kUnitDegree},
        {K::Balance, "-100 %", -1, kUnitPercent}, {K::Balance, "1", 1, kUnitNone},
        {K::Balance, "45'", 0.5, kUnitDegree}, {K::Balance, "90'", 1, kUnitDegree},
        {K::Balance, "-30'", -1.0 / 3, kUnitDegree}, {K::Period, "100 Hz", 0.01, kUnitHertz},
        {K::Period, "0,5 KHZ", 0.002, kUnitKilohertz}, {K::Period, "1/4 s", 0.25, kUnitSecond},
        {K::Period, "-100 Hz", -0.01, kUnitHertz}, {K::Period, "c", 0.0019110958223445323, kUnitHertz},
        {K::Period, "A4", 0.002272688749384094, kUnitHertz, kCheckNegative},  // a note skips the check
        {K::Frequency, "0.5 s", 2, kUnitSecond}, {K::Frequency, "0 Hz", 0, kUnitHertz},
        {K::Frequency, "abc", 880.0149164913173, kUnitHertz},
        {K::Frequency, "C-2", 4.08796875, kUnitHertz, kCheckNegative},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        ValueRecord rec{kUnitUnknown, std::uint8_t(c.check), -999};
        std::string message = "untouched";
        ASSERT_TRUE(readField(c.kind, c.text, rec, message)) << message;
        EXPECT_DOUBLE_EQ(rec.value, c.value);
        EXPECT_EQ(rec.unit, c.unit);
        EXPECT_EQ(rec.signCheck, c.check);
        EXPECT_EQ(message, "untouched");
    }
}

TEST(Readers, RefuseWithTheirOwnSentence) {
    const char* const waveUnknown = "This unit does not exist, use: '%', '$' or no unit.";
    const char* const angleWrong = "Wrong unit used, use: '%', ' ' ' or no unit.";
    const char* const angleUnknown = "This unit does not exist, use: '%', ' ' ' or no unit.";
    const char* const timeWrong = "Wrong unit used, use: 's', 'ms', 'Hz', 'kHz'.";
    const struct { K kind; const char* text; const char* message; int check = 0; } cases[] = {
        {K::Integer, "0", "Value must be positive and more than 0.", kCheckPositive},
        {K::WaveValue, "1.0001", "Wave Value is too high. (maximum: 1)"},
        {K::WaveValue, "-1.5", "Wave Value is too low. (minimum: -1)"},
        {K::WaveValue, "100.5 %", "Wave Value is too high. (maximum: 100 %)"},
        {K::WaveValue, "-101%", "Wave Value is too low. (minimum: -100 %)"},
        {K::WaveValue, "32768 $", "Wave Value is too high. (maximum: 32767 $)"},
        {K::WaveValue, "-32769 $", "Wave Value is too low. (minimum: -32768 $)"}, {K::WaveValue, "5 x", waveUnknown},
        {K::WaveValue, "12345678901", waveUnknown},
        {K::WaveValue, "5 dB", "Wrong unit used, use: '%', '$' or no unit."},
        {K::WaveValue, " \t ", "Input has no value."},
        {K::WaveValue, "0.00001", "Value must be not 0.", kCheckNotZero},  // 0.33 truncated to 0
        {K::Factor, "5 $", "Wrong unit used, use: '%' or no unit."},
        {K::Factor, "5 q", "This unit does not exist, use: '%' or no unit."},
        {K::Factor, "150 %", "Value must be no more than 1.", kCheckZeroToOne},  // sees the factor
        {K::Loudness, "6 s", "Wrong unit used, use: '%', 'dB' or no unit."},
        {K::Loudness, "6 d", "This unit does not exist, use: '%', 'dB' or no unit."},
        {K::Loudness, "dB", "Input has no value."},
        {K::Phase, "1", "Fase is too high. (maximum: less than 1 or 100 %)"},
        {K::Phase, "100 %", "Fase is too high. (maximum: less than 1 or 100 %)"},
        {K::Phase, "-1.01", "Fase is too low. (minimum: -1 or -100 %)"},
        {K::Phase, "360'", "Fase is too high. (maximum: less than 360' )"},
        {K::Phase, "-361 '", "Fase is too low. (minimum: -360' )"}, {K::Phase, "5 s", angleWrong},
        {K::Phase, "5 q", angleUnknown}, {K::Balance, "5 dB", angleWrong}, {K::Balance, "5 q", angleUnknown},
        {K::Balance, "101%", "Balance Factor is too high. (maximum: 1 or 100 %)"},
        {K::Balance, "-1.5", "Balance Factor is too low. (minimum: -1 or -100 %)"},
        {K::Balance, "91'", "Balance Angle is too high. (maximum: 90' )"},
        {K::Balance, "-90.5 '", "Balance Angle is too low. (minimum: -90' )"},
        {K::Period, "-0 Hz", "You cannot use 0 with 'Hz'."}, {K::Period, "0 kHz", "You cannot use 0 with 'kHz'."},
        {K::Period, "5", timeWrong}, {K::Period, "5 %", timeWrong}, {K::Period, "5 '", timeWrong},
        {K::Period, "5 q", "This unit does not exist, use: 's', 'ms', 'Hz', 'kHz'."},
        {K::Period, "E#3", "This note cannot have a \"#\"."}, {K::Period, "g-3", "The minimum Octave number is -2."},
        {K::Period, "-5 ms", "Value must be positive and more than 0.", kCheckPositive},
        {K::Frequency, "0 s", "You cannot use 0 with 's'."}, {K::Frequency, "0 ms", "You cannot use 0 with 'ms'."},
        {K::Frequency, "440", timeWrong}, {K::Frequency, "C#13", "The maximum Octave number is 12."},
        // The "*" texts that the writers show for 1 / 0 do not read back, on purpose.
        {K::Period, "* Hz", "Input has no value."}, {K::Frequency, "* ms", "Input has no value."},
        {K::Frequency, "0.5 s", "Value must be negative and less than 0.", kCheckNegative},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        ValueRecord rec{kUnitMillisecond, std::uint8_t(c.check), 0.25};
        std::string message;
        EXPECT_FALSE(readField(c.kind, c.text, rec, message));
        EXPECT_EQ(message, c.message);
        EXPECT_EQ(rec.unit, kUnitMillisecond);  // the record is left as it was
        EXPECT_EQ(rec.value, 0.25);
    }
}

}  // namespace
}  // namespace orv
