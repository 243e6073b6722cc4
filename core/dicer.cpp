#include "core/dicer.h"

#include "core/platform.h"
#include "core/random15.h"

namespace orv {

void Dicer::SeedDice(unsigned seed) { srand15(seed); }

void Dicer::ThrowDice() {
    for (auto& die : dice_) {
        // Two statements, not one expression: the order of the two draws must not be left
        // to the compiler, or the same seed would give other dice elsewhere.
        const std::uint32_t high = static_cast<std::uint32_t>(rand15());
        const std::uint32_t low = static_cast<std::uint32_t>(rand15());
        die = (high << 15) + low;
    }
}

std::uint32_t Dicer::value(int dice) const {
    ORV_ASSERT(dice >= 0, "dicer");
    ORV_ASSERT(dice < DICES, "dicer");
    return dice_[static_cast<std::size_t>(dice)];
}

double Dicer::GetDie(int dice, double max, double min) const {
    return static_cast<double>(value(dice)) / kDieDivisor * (max - min) + min;
}

}  // namespace orv
