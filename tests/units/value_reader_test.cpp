// The reading steps (digits, integers, numbers, units, sign checks) and the note names.
#include <gtest/gtest.h>

#include "units/value_reader.h"

namespace orv {
namespace {

TEST(ReadInt, TenDigitsAtMostSignsAndWrapAround) {
    const struct { const char* text; std::int32_t value; int count; std::size_t pos; } cases[] = {
        {"12345678901", 1234567890, 10, 10},  // the eleventh digit stays for what comes next
        {"9999999999", 1410065407, 10, 10},   // 9999999999 mod 2^32
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
        {"-5", -5, 2},    {"+5", 5, 2},     {"-\t 5", -5, 4}, {"1,5", 1.5, 3},  {".5", 0.5, 2},
        {"5.", 5, 2},     {".", 0, 1},      {"-.25", -0.25, 4}, {"-3/4", -0.75, 4}, {"0.001", 0.001, 5},
        {"12.5ms", 12.5, 4}, {"7/2 s", 3.5, 3}, {"0/5", 0, 3},
        {"", -99, 0, "Input has no value."}, {"\t", -99, 1, "Input has no value."},
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
        {"   ", kUnitNone},     {" \t%", kUnitPercent}, {"$", kUnitSampleValue}, {"S", kUnitSecond},
        {"'", kUnitDegree},     {"mS", kUnitMillisecond}, {"hz", kUnitHertz},  {"KHZ", kUnitKilohertz},
        {"db", kUnitDecibel},   {"sec", kUnitSecond},   {"m", kUnitUnknown},     {"k", kUnitUnknown},
        {"d", kUnitUnknown},    {"1", kUnitUnknown},    {"\"", kUnitUnknown},
    };
    for (const auto& c : cases) EXPECT_EQ(ValueReader(c.rest).readUnit(), c.unit) << '"' << c.rest << '"';
}

TEST(ValueCheck, EveryCodeAtItsBoundaries) {
    const char* const notZero = "Value must be not 0.";
    const char* const negative = "Value must be negative.";
    const char* const positive = "Value must be positive.";
    const char* const belowZero = "Value must be negative and less than 0.";
    const char* const aboveZero = "Value must be positive and more than 0.";
    const struct { int check; double value; const char* message; } cases[] = {
        {0, -1e9, nullptr},    {1, -0.0, notZero},   {1, 1e-300, nullptr}, {2, 0, nullptr},
        {2, 1e-9, negative},   {3, 0, nullptr},      {3, -1e-9, positive}, {4, -1e-9, nullptr},
        {4, 0, belowZero},     {5, 1e-9, nullptr},   {5, 0, aboveZero},    {6, 0, nullptr},
        {6, 1, nullptr},       {6, -1e-9, positive}, {6, 1.000001, "Value must be no more than 1."},
        {7, 1e-9, nullptr},    {7, 0, aboveZero},    {7, 1, "Value must be less than 1."},
        {-1, 0, nullptr},      {8, 0, nullptr},
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
        {"c#5", 554.3746587544449}, {"D", 587.3394913983625}, {"D#", 622.2645149963238},
        {"E5", 659.2662885679913}, {"f", 698.4683020930122}, {"F#", 740.0013886473457},
        {"g5", 784.0041610464924}, {"G#", 830.62347445288}, {"A", 880.0149164913173},
        {"A#5", 932.3433265082278}, {"B", 987.7833457076458},
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

}  // namespace
}  // namespace orv
