// One sample and the one way a computed value becomes a sample: truncate toward zero and
// keep the low 16 bits. Sums that leave -32768..32767 wrap around; nothing saturates.
// A plain cast of an out-of-range double is undefined behaviour, so every store goes here.
#pragma once

#include <cmath>
#include <cstdint>

namespace orv {

using WaveVal = std::int16_t;

// Keeps the low 16 bits of an integer (two's complement wrap).
constexpr WaveVal wrap16(std::int64_t v) {
    return static_cast<WaveVal>(static_cast<std::uint16_t>(static_cast<std::uint64_t>(v)));
}

// Truncates toward zero, then wraps to 16 bits. NaN gives 0; huge values keep the low 16
// bits of their integral part (exactly, through fmod), infinities give 0.
inline WaveVal toWaveVal(double x) {
    if (x > -9.2e18 && x < 9.2e18) return wrap16(static_cast<std::int64_t>(x));
    if (!std::isfinite(x)) return 0;
    return wrap16(static_cast<std::int64_t>(std::fmod(std::trunc(x), 65536.0)));
}

// Truncates toward zero into an int, for indices and lengths computed in floating point.
// Out-of-range values (and NaN) saturate instead of being undefined.
inline std::int32_t truncToInt(double x) {
    if (!(x > -2147483648.0)) return x != x ? 0 : INT32_MIN;
    if (!(x < 2147483648.0)) return INT32_MAX;
    return static_cast<std::int32_t>(x);
}

}  // namespace orv
