// The digit writer and the precision writer: hand-worked texts and the internal checks.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>

#include "units/units_assert.h"
#include "units/value_writer.h"

namespace orv {
namespace {

TEST(WriteDigits, HandWorkedTexts) {
    const struct {
        double value;
        int before, minAfter, maxAfter;
        const char* text;
    } cases[] = {
        {3.14159, 1, 0, 3, "3.141"},     // truncated after the nudge, not rounded
        {2.5, 1, 2, 2, "2.50"},
        {2.0, 1, 0, 3, "2"},
        {7, 3, 0, 0, "007"},
        {-0.5, 1, 1, 1, "-0.5"},
        {0, 1, 0, 0, "0"},
        {0, 1, 2, 2, "0.00"},
        {-0.0, 1, 0, 2, "0"},
        {0.05, 1, 0, 3, "0.05"},         // held-back zero written before the 5
        {0.05, 1, 1, 3, "0.05"},
        {0.05, 1, 3, 3, "0.050"},
        {1.5, 1, 0, 0, "1"},
        {0.29999999, 1, 0, 1, "0.3"},    // the nudge carries into the shown digit
        {0.29999999, 1, 0, 3, "0.3"},
        {9.9999, 1, 0, 2, "10"},         // carry into the extra leading position
        {123.456, 1, 1, 2, "123.45"},
        {100, 1, 0, 2, "100"},
        {100.5, 2, 0, 2, "100.5"},
        {-3, 1, 0, 0, "-3"},
        {5, 2, 1, 1, "05.0"},
        {0.001234, 1, 0, 2, "0"},        // zeros held back and never followed
        {0.001234, 1, 0, 3, "0.001"},
        {0.001234, 2, 0, 5, "00.00123"},
        {10.05, 1, 1, 4, "10.05"},
        {1234567, 1, 0, 0, "1234567"},
        {-0.0001, 1, 0, 2, "-0"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(writeDigits(c.value, c.before, c.minAfter, c.maxAfter), c.text)
            << c.value << " (" << c.before << ", " << c.minAfter << ", " << c.maxAfter << ")";
}

TEST(WriteDigits, NumbersWithoutDigitsShowAStar) {
    EXPECT_EQ(writeDigits(std::numeric_limits<double>::infinity(), 1, 0, 3), "*");
    EXPECT_EQ(writeDigits(-std::numeric_limits<double>::infinity(), 1, 0, 3), "*");
    EXPECT_EQ(writeDigits(std::nan(""), 1, 2, 2), "*");
    // The largest doubles still get their digits (no overflow in the scaling).
    const std::string big = writeDigits(1.7e308, 1, 0, 0);
    EXPECT_EQ(big.size(), 309u);
    EXPECT_EQ(big.find_first_not_of("0123456789"), std::string::npos);
    EXPECT_EQ(big[0], '1');
}

TEST(WriteDigits, ChecksItsArguments) {
    EXPECT_DEATH(writeDigits(1, 1, 3, 2), "Assertion failed: minDigAfter <= maxDigAfter, unit writers, line [0-9]+");
    EXPECT_DEATH(writeDigits(1, 0, 0, 0), "Assertion failed: minDigBefore >= 1, unit writers, line [0-9]+");
    EXPECT_DEATH(writeDigits(1, 1, -1, 0), "Assertion failed: minDigAfter >= 0, unit writers, line [0-9]+");
}

void reportWithMark(std::string_view text) {
    std::fprintf(stderr, "MARKED %.*s\n", int(text.size()), text.data());
}

TEST(WritePrecision, ChecksItsArgumentThroughTheInstalledHandler) {
    EXPECT_DEATH(writePrecision(1, 0, true), "Assertion failed: precisie >= 1, unit writers");
    EXPECT_DEATH(
        {
            setUnitsAssertHandler(&reportWithMark);
            writePrecision(1, 0, false);
        },
        "MARKED Assertion failed: precisie >= 1, unit writers, line");
    // Installing returns the previous handler, so a front end can put it back.
    const UnitsAssertHandler original = setUnitsAssertHandler(&reportWithMark);
    EXPECT_NE(original, nullptr);
    EXPECT_EQ(setUnitsAssertHandler(nullptr), &reportWithMark);
    EXPECT_EQ(setUnitsAssertHandler(nullptr), original);
}

TEST(WritePrecision, SignificantDigits) {
    const struct {
        double value;
        int precisie;
        bool dropZeros;
        const char* text;
    } cases[] = {
        {5, 3, false, "5.00"},      {5, 3, true, "5"},         {440, 3, false, "440"},
        {0.5, 3, false, "0.50"},    {0.5, 3, true, "0.5"},     {12.5, 3, true, "12.5"},
        {12.5, 4, false, "12.50"},  {0, 3, false, "0.0"},      {0, 1, false, "0"},
        {0.05, 3, false, "0.050"},  {0.0123, 3, true, "0.012"}, {-90, 3, true, "-90"},
        {123456, 3, false, "123456"}, {1234.5678, 6, false, "1234.56"},
        {-0.25, 2, false, "-0.2"},  // log10 0.25 truncates to 0: one decimal
    };
    for (const auto& c : cases)
        EXPECT_EQ(writePrecision(c.value, c.precisie, c.dropZeros), c.text)
            << c.value << " " << c.precisie << " " << c.dropZeros;
    // Tiny values get as many decimals as it takes: 1e-300 is 0. with 299 zeros and a 1.
    EXPECT_EQ(writePrecision(1e-300, 2, true), "0." + std::string(299, '0') + "1");
    EXPECT_EQ(writePrecision(std::numeric_limits<double>::infinity(), 3, true), "*");
}

}  // namespace
}  // namespace orv
