// The reading steps: digits, integers, numbers, units and the sign checks.
#include <gtest/gtest.h>

#include "units/value_reader.h"

namespace orv {
namespace {

TEST(ReadDigits, StopsAtTheTenthDigitAndWrapsInThirtyTwoBits) {
    ValueReader r("12345678901");
    int count = -1;
    // 1234567890 fits; the eleventh digit stays for whatever comes next.
    EXPECT_EQ(r.readDigits(count), 1234567890u);
    EXPECT_EQ(count, 10);
    EXPECT_EQ(r.peek(), '1');

    ValueReader big("9999999999");
    EXPECT_EQ(big.readDigits(count), 9999999999ull % 4294967296ull);  // 1410065407
    EXPECT_EQ(count, 10);

    ValueReader none("x1");
    EXPECT_EQ(none.readDigits(count), 0u);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(none.pos(), 0u);

    ValueReader lead("007z");
    EXPECT_EQ(lead.readDigits(count), 7u);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(lead.peek(), 'z');
}

TEST(ReadInt, SignsAndEmptyInput) {
    const struct {
        const char* text;
        std::int32_t value;
        int count;
    } cases[] = {
        {"42", 42, 2},  {"+42", 42, 2}, {"-42", -42, 2}, {"+-3", -3, 1},  // "+" then "-"
        {"", 0, 0},     {"-", 0, 0},    {"x", 0, 0},     {" 5", 0, 0},    // no blanks skipped
        {"-+3", 0, 0},  {"2147483647", 2147483647, 10},
        {"2147483648", -2147483647 - 1, 10},  // wraps like the accumulator
        {"-2147483648", -2147483647 - 1, 10}, {"4294967295", -1, 10}, {"12abc", 12, 2},
    };
    for (const auto& c : cases) {
        ValueReader r(c.text);
        int count = -1;
        EXPECT_EQ(r.readInt(count), c.value) << c.text;
        EXPECT_EQ(count, c.count) << c.text;
        EXPECT_FALSE(r.failed()) << c.text;
    }
}

TEST(ReadNumber, IntegersDecimalsAndFractions) {
    const struct {
        const char* text;
        double value;
        std::size_t pos;  // where reading stopped
    } cases[] = {
        {"5", 5, 1},         {"-5", -5, 2},       {"+5", 5, 2},       {"- 5", -5, 3},
        {"-\t 5", -5, 4},    {"1.5", 1.5, 3},     {"1,5", 1.5, 3},    {".5", 0.5, 2},
        {"5.", 5, 2},        {".", 0, 1},         {"-.25", -0.25, 4}, {"3/4", 0.75, 3},
        {"-3/4", -0.75, 4},  {"1/3", 1.0 / 3, 3}, {"0.001", 0.001, 5}, {"12.5ms", 12.5, 4},
        {"7/2 s", 3.5, 3},   {"0/5", 0, 3},
    };
    for (const auto& c : cases) {
        ValueReader r(c.text);
        double v = -99;
        ASSERT_TRUE(r.readNumber(v)) << c.text << ": " << r.message();
        EXPECT_DOUBLE_EQ(v, c.value) << c.text;
        EXPECT_EQ(r.pos(), c.pos) << c.text;
        EXPECT_EQ(r.message(), "") << c.text;
    }
}

TEST(ReadNumber, Failures) {
    const struct {
        const char* text;
        const char* message;
    } cases[] = {
        {"", "Input has no value."},
        {"   ", "Input has no value."},
        {"\t", "Input has no value."},
        {"-", "Input has no value."},
        {"+-3", "Input has no value."},  // unlike an integer, only one sign
        {" -5", "Input has no value."},  // blanks only after the sign
        {"abc", "Input has no value."},
        {"%", "Input has no value."},
        {"/4", "Input has no value before '/'."},
        {"/", "Input has no value before '/'."},
        {"3/", "Input has no value after '/'."},
        {"3/x", "Input has no value after '/'."},
        {"3/0", "Broke is invalid."},
        {"3/000", "Broke is invalid."},
    };
    for (const auto& c : cases) {
        ValueReader r(c.text);
        double v = -99;
        EXPECT_FALSE(r.readNumber(v)) << c.text;
        EXPECT_TRUE(r.failed()) << c.text;
        EXPECT_EQ(r.message(), c.message) << c.text;
        EXPECT_EQ(v, -99) << c.text;
    }
}

TEST(ReadUnit, NamesCaseAndOrder) {
    const struct {
        const char* rest;
        std::uint8_t unit;
    } cases[] = {
        {"", kUnitNone},          {"   ", kUnitNone},        {"%", kUnitPercent},
        {"$", kUnitSampleValue},  {"s", kUnitSecond},        {"S", kUnitSecond},
        {"'", kUnitDegree},       {"ms", kUnitMillisecond},  {"mS", kUnitMillisecond},
        {"Hz", kUnitHertz},       {"hz", kUnitHertz},        {"HZ", kUnitHertz},
        {"kHz", kUnitKilohertz},  {"KHZ", kUnitKilohertz},   {"dB", kUnitDecibel},
        {"db", kUnitDecibel},     {" \t%", kUnitPercent},    {"%xyz", kUnitPercent},
        {"sec", kUnitSecond},     {"m", kUnitUnknown},       {"k", kUnitUnknown},
        {"d", kUnitUnknown},      {"x", kUnitUnknown},       {"1", kUnitUnknown},
        {"°", kUnitUnknown},      {"\"", kUnitUnknown},
    };
    for (const auto& c : cases) {
        ValueReader r(c.rest);
        EXPECT_EQ(r.readUnit(), c.unit) << '"' << c.rest << '"';
    }
}

TEST(ReadUnit, ElevenDigitsLeaveTheLastOneAsAnUnknownUnit) {
    ValueReader r("12345678901");
    double v = 0;
    ASSERT_TRUE(r.readNumber(v));
    EXPECT_EQ(v, 1234567890.0);
    EXPECT_EQ(r.readUnit(), kUnitUnknown);
}

TEST(ValueCheck, EveryCodeAtItsBoundaries) {
    const char* const notZero = "Value must be not 0.";
    const char* const negative = "Value must be negative.";
    const char* const positive = "Value must be positive.";
    const char* const belowZero = "Value must be negative and less than 0.";
    const char* const aboveZero = "Value must be positive and more than 0.";
    const char* const atMostOne = "Value must be no more than 1.";
    const char* const belowOne = "Value must be less than 1.";
    const struct {
        int check;
        double value;
        const char* message;  // nullptr: passes
    } cases[] = {
        {0, -1e9, nullptr},      {0, 0, nullptr},        {0, 1e9, nullptr},
        {1, 0, notZero},         {1, -0.0, notZero},     {1, 1e-300, nullptr},  {1, -3, nullptr},
        {2, 0, nullptr},         {2, -1, nullptr},       {2, 1e-9, negative},
        {3, 0, nullptr},         {3, 5, nullptr},        {3, -1e-9, positive},
        {4, -1e-9, nullptr},     {4, 0, belowZero},      {4, 1, belowZero},
        {5, 1e-9, nullptr},      {5, 0, aboveZero},      {5, -1, aboveZero},
        {6, 0, nullptr},         {6, 1, nullptr},        {6, 0.5, nullptr},
        {6, -1e-9, positive},    {6, 1.000001, atMostOne},
        {7, 0.5, nullptr},       {7, 1e-9, nullptr},     {7, 0, aboveZero},
        {7, -2, aboveZero},      {7, 1, belowOne},       {7, 7, belowOne},
        {-1, 0, nullptr},        {8, 0, nullptr},        {255, -5, nullptr},
    };
    for (const auto& c : cases) {
        ValueReader r("");
        const bool ok = ValueCheck(r, c.value, c.check);
        if (c.message) {
            EXPECT_FALSE(ok) << c.check << " " << c.value;
            EXPECT_EQ(r.message(), c.message) << c.check << " " << c.value;
        } else {
            EXPECT_TRUE(ok) << c.check << " " << c.value;
            EXPECT_EQ(r.message(), "") << c.check << " " << c.value;
        }
    }
}

}  // namespace
}  // namespace orv
