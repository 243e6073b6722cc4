#include "core/dicer.h"

#include <gtest/gtest.h>

#include "core/random15.h"

namespace orv {
namespace {

// The shared sequence seeded with 1 starts 16838, 5758, 10113, 17515, 31051, 5627, 23010,
// 7419, 16212, 4086, 2749, 12767; each die is high x 32768 + low of two draws in turn.
TEST(Dicer, ThrowIsHighThenLowOfTwoDrawsPerDieInOrder) {
    Dicer d;
    d.SeedDice(1);
    d.ThrowDice();
    EXPECT_EQ(d.value(0), 551753342u);   // 16838 * 32768 + 5758
    EXPECT_EQ(d.value(1), 331400299u);   // 10113 * 32768 + 17515
    EXPECT_EQ(d.value(2), 1017484795u);  // 31051 * 32768 + 5627
    EXPECT_EQ(d.value(3), 753999099u);   // 23010 * 32768 + 7419
    EXPECT_EQ(d.value(4), 531238902u);   // 16212 * 32768 + 4086
    EXPECT_EQ(d.value(5), 90091999u);    // 2749 * 32768 + 12767
}

TEST(Dicer, SeedZeroRethrowingAndTheFixedDivisor) {
    Dicer d;
    EXPECT_EQ(d.value(0), 0u);  // nothing thrown yet
    d.SeedDice(0);              // sequence 0, 21468, 9988, 22117, ...
    d.ThrowDice();
    EXPECT_EQ(d.value(0), 21468u);
    EXPECT_EQ(d.value(1), 9988u * 32768u + 22117u);
    // 21468 / 1073676288 x (100 - -100) - 100; max < min turns the scale round.
    EXPECT_DOUBLE_EQ(d.GetDie(0, 100.0, -100.0), 21468.0 / 1073676288.0 * 200.0 - 100.0);
    EXPECT_DOUBLE_EQ(d.GetDie(0, 0.0, 1.0), 1.0 - 21468.0 / 1073676288.0);
    // A second throw continues the shared sequence: draws 13 and 14 are 5659 and 9758, and
    // after it the sequence goes on at the same place for the same seed.
    d.ThrowDice();
    EXPECT_EQ(d.value(0), 5659u * 32768u + 9758u);
    const int next = rand15();
    d.SeedDice(0);
    d.ThrowDice();
    d.ThrowDice();
    EXPECT_EQ(d.value(0), 5659u * 32768u + 9758u);
    EXPECT_EQ(rand15(), next);
}

TEST(Dicer, GetDieCanPassMaxSlightlyButNeverGoesBelowMin) {
    // Seed 2858: die 3 of the first throw is 32766 * 32768 + 28698, above the divisor,
    // which is exactly 32766 * 32768.
    Dicer d;
    d.SeedDice(2858);
    d.ThrowDice();
    EXPECT_EQ(d.value(3), 1073704986u);
    EXPECT_DOUBLE_EQ(d.GetDie(3, 1.0, 0.0), 1.0 + 28698.0 / 1073676288.0);
    EXPECT_GT(d.GetDie(3, 1.0, 0.0), 1.0);

    const double top = 1073741823.0 / 1073676288.0;  // largest possible die
    d.SeedDice(99);
    for (int t = 0; t < 2000; ++t) {
        d.ThrowDice();
        for (int i = 0; i < DICES; ++i) {
            const double g = d.GetDie(i, 1.0, 0.0);
            ASSERT_GE(g, 0.0);
            ASSERT_LE(g, top);
            ASSERT_LT(d.value(i), 1u << 30);
        }
    }
}

TEST(DicerDeathTest, DieNumberOutsideTheSix) {
    Dicer d;
    EXPECT_DEATH(d.GetDie(DICES, 1.0, 0.0), "Assertion failed: dice < DICES, unit dicer");
}

}  // namespace
}  // namespace orv
