// What the tests of the wave window share: a noisy channel from a fixed sequence, and the
// window's pixels compared with a picture painted on its own.
#pragma once

#include <QImage>
#include <QString>

#include "view/mdi_child_wave.h"

namespace orv::test {

// n samples of noise in [-30000, 30000) from the seed.
inline WavePtr noiseWave(std::int32_t n, std::uint64_t seed) {
    CancelFlag c{0};
    WavePtr w = newWave(c, n);
    for (std::int32_t i = 0; i < n; ++i) {
        seed = seed * 6364136223846793005ull + 1442695040888963407ull;
        (*w)[i] = WaveVal(std::int32_t(seed >> 33) % 60000 - 30000);
    }
    return w;
}

// Where the window's client area first differs from `expected`; empty when all is equal.
inline QString differsFrom(TMDIChildWave& w, const Canvas& expected) {
    const QImage shot = w.grab(w.clientRect()).toImage();
    if (shot.width() != expected.width() || shot.height() != expected.height())
        return QString("size %1x%2, expected %3x%4")
            .arg(shot.width()).arg(shot.height()).arg(expected.width()).arg(expected.height());
    for (int y = 0; y < shot.height(); ++y)
        for (int x = 0; x < shot.width(); ++x)
            if (shot.pixel(x, y) != expected.pixel(x, y))
                return QString("first difference at %1,%2").arg(x).arg(y);
    return {};
}

}  // namespace orv::test
