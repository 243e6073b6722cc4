#include "render/vold_literal.h"

#include <cmath>
#include <memory>
#include <new>

#include "core/platform.h"

namespace orv {

void runVoldLiteral(const VoldBank& bank, const WaveVal* samples, const VoldSpan& span,
                    float* out, std::vector<float>* volumeOut) {
    const int rows = bank.rows;
    const auto n = std::size_t(rows);
    // The six work arrays, made together for this paint and freed after it.
    std::unique_ptr<float[]> block(new (std::nothrow) float[6 * n + 1]);
    ORV_ASSERT_TEXT(block != nullptr, "value && speed && volume && volumeb && tr && free",
                    "vold");
    float* value = block.get();
    float* speed = value + n;
    float* volume = speed + n;
    float* volumeb = volume + n;
    float* tr = volumeb + n;
    float* free = tr + n;
    for (std::size_t r = 0; r < n; ++r) {
        value[r] = speed[r] = volume[r] = volumeb[r] = 0.0f;
        tr[r] = bank.tr[r];
        free[r] = bank.free[r];
    }
    auto magnitude = [&](std::size_t r) {
        const float v = value[r], s = speed[r];
        return std::sqrt(bank.magScale[r] * (v * v + tr[r] * s * s + tr[r] * v * s));
    };
    auto feed = [&](std::int32_t from, std::int32_t to) {
        for (std::int32_t i = from; i < to; ++i) {
            const float x = samples[i];
            for (std::size_t r = 0; r < n; ++r) {
                for (int step = 0; step < 4; ++step) {
                    value[r] += speed[r] * tr[r];
                    speed[r] -= value[r];
                    value[r] = free[r] * value[r] + x * (1.0f - free[r]);
                }
                const float m = magnitude(r);
                if (m > volume[r]) volume[r] = m;
                if (m > volumeb[r]) volumeb[r] = m;
            }
        }
    };

    feed(span.ringFrom, span.columns() > 0 ? span.bounds[0] : span.ringFrom);
    for (std::size_t r = 0; r < n; ++r) volume[r] = volumeb[r] = 0.0f;
    for (int c = 0; c < span.columns(); ++c) {
        const std::int32_t from = span.bounds[std::size_t(c)], to = span.bounds[std::size_t(c) + 1];
        feed(from, to);
        float* column = out + std::size_t(c) * n;
        for (std::size_t r = 0; r < n; ++r) {
            // A column no sample fell into shows the rows as they stand.
            const float m = from == to ? magnitude(r) : volumeb[r];
            column[r] = voldBrightness(bank, int(r), m * m);
            volumeb[r] = 0.0f;
        }
    }
    if (volumeOut) volumeOut->assign(volume, volume + n);
}

}  // namespace orv
