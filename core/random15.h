// The process-wide 15-bit pseudo-random sequence (values 0..32767) with srand/rand
// semantics. The C library's rand() is 31-bit here, so the engine keeps its own: the noise
// generator continues this one sequence and the random echo seeds it.
#pragma once

namespace orv {

inline constexpr int kRand15Max = 32767;

void srand15(unsigned seed);
int rand15();  // next value, 0..32767

}  // namespace orv
