// The dicer: six dice that the random echo throws once per echo. Every die is a 30-bit
// number made of two draws from the shared 15-bit sequence, so one seed gives the same
// throws on every run, and two properties that read the same die move together.
#pragma once

#include <array>
#include <cstdint>

namespace orv {

// Number of dice; the "Source" lists offer "Die 0" to "Die 5".
inline constexpr int DICES = 6;

class Dicer {
public:
    // All dice read 0 until the first throw.
    Dicer() = default;

    // Restarts the shared 15-bit sequence (srand15) at `seed`.
    void SeedDice(unsigned seed);

    // Throws the six dice in order; each one takes two draws, the first as the high 15 bits
    // and the second as the low 15 bits: (rand15() << 15) + rand15(), 0 .. 1073741823.
    void ThrowDice();

    // Scales die `dice` to min .. max as value / 1073676288 x (max - min) + min. The divisor
    // is a little less than the largest die value: keep it, recorded results depend on it.
    // So GetDie(d, 1, 0) can come out up to about 0.006 % above 1; callers that read a
    // table with it must clamp. Asserts "dice >= 0" and "dice < DICES".
    double GetDie(int dice, double max, double min) const;

    // The raw 30-bit value of a die (the same checks as GetDie).
    std::uint32_t value(int dice) const;

private:
    std::array<std::uint32_t, DICES> dice_{};
};

// The divisor of GetDie.
inline constexpr double kDieDivisor = 1073676288.0;

}  // namespace orv
