// The wave the picture benchmarks paint: 60 minutes of 44.1 kHz stereo, a slow swell over a
// tone and noise (made without a sine per sample, so making it costs little), and the
// client area of a large window.
#pragma once

#include <cstdint>

#include "core/sound.h"
#include "core/wave.h"

namespace orv::bench {

constexpr std::int32_t kFreq = 44100;
constexpr std::int32_t kValues = 60 * 60 * kFreq;
constexpr int kWidth = 1600, kHeight = 400;

inline WavePtr hourSignal(std::uint32_t seed) {
    CancelFlag c{0};
    WavePtr w = newWave(c, kValues);
    WaveVal* p = w->data();
    std::uint32_t r = seed;
    for (std::int32_t i = 0; i < kValues; ++i) {
        r = r * 1664525u + 1013904223u;
        const int swell = int((i / 4410) % 200) * 100;
        const int tone = (i / 50) % 2 ? 4000 : -4000;
        p[i] = WaveVal(((swell + tone + int(r >> 22)) % 30000) - 15000 + int(seed));
    }
    return w;
}

// Made once per program.
inline const StereoSound& hourOfSound() {
    static const StereoSound s(hourSignal(1), hourSignal(2), kFreq);
    return s;
}

}  // namespace orv::bench
