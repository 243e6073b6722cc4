#include "core/random15.h"

#include <cstdint>

namespace orv {

namespace {
// Seeded with 1 at start, as srand(1) would be.
std::uint32_t state = 1;
}  // namespace

void srand15(unsigned seed) { state = seed; }

int rand15() {
    // The classic portable linear congruential generator; the upper bits are the good ones.
    state = state * 1103515245u + 12345u;
    return int((state / 65536u) % 32768u);
}

}  // namespace orv
