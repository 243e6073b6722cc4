#include "render/vold_bank.h"

#include <algorithm>
#include <cmath>
#include <complex>

#include "core/platform.h"
#include "render/wave_painter.h"

namespace orv {

namespace {

using Complex = std::complex<double>;

struct M2 {
    double a, b, c, d;  // [[a, b], [c, d]]
};
M2 mul(const M2& x, const M2& y) {
    return {x.a * y.a + x.b * y.c, x.a * y.b + x.b * y.d, x.c * y.a + x.d * y.c,
            x.c * y.b + x.d * y.d};
}

// The magnitude a settled sine X cos(w n) drives the folded row y <- A y + b x to: the
// greatest |y| over a period.
double settledMagnitude(const M2& a, double b1, double b2, double w, double amplitude) {
    // Y = (e^{iw} I - A)^-1 b X, and y(n) = Re(Y e^{iwn}).
    const Complex z = std::polar(1.0, w);
    const Complex m11 = z - a.a, m12 = -a.b, m21 = -a.c, m22 = z - a.d;
    const Complex det = m11 * m22 - m12 * m21;
    if (std::abs(det) == 0.0) return 0.0;
    const Complex y1 = (m22 * b1 - m12 * b2) / det * amplitude;
    const Complex y2 = (m11 * b2 - m21 * b1) / det * amplitude;
    // |P cos t - Q sin t|^2 = (p + q) / 2 + (p - q) / 2 cos 2t - pq sin 2t
    const double p = y1.real() * y1.real() + y2.real() * y2.real();
    const double q = y1.imag() * y1.imag() + y2.imag() * y2.imag();
    const double pq = y1.real() * y1.imag() + y2.real() * y2.imag();
    return std::sqrt((p + q) / 2 + std::hypot((p - q) / 2, pq));
}

// The per-sample factor by which the slowest part of a row's motion decays.
double spectralRadius(const M2& a) {
    const double t = a.a + a.d, det = a.a * a.d - a.b * a.c;
    const double disc = t * t / 4 - det;
    if (disc < 0) return std::sqrt(std::max(det, 0.0));
    const double r = std::sqrt(disc);
    return std::max(std::fabs(t / 2 + r), std::fabs(t / 2 - r));
}

}  // namespace

VoldBank makeVoldBank(const VoldViewRecord& settings, std::int32_t sampleFreq, int rows) {
    ORV_ASSERT(rows >= 0 && sampleFreq > 0, "vold");
    VoldBank bank;
    bank.rows = rows;
    bank.sensitivity = settings.sensitivity;
    const auto n = std::size_t(rows);
    for (auto* v : {&bank.frequency, &bank.period, &bank.weight}) v->resize(n);
    for (auto* v : {&bank.tr, &bank.free, &bank.magScale, &bank.d11, &bank.d12, &bank.d21,
                    &bank.d22, &bank.b1, &bank.b2, &bank.invFullScale})
        v->resize(n);
    if (rows == 0) return bank;

    const double pTop = settings.top.value, pBottom = settings.bottom.value;
    const double q = std::pow(pTop / pBottom, 1.0 / rows);  // ratio of periods per row
    const double bigQ = q > 1.0 ? q : 1.0 / q;
    const double sharp = settings.strength.value * settings.width.value;
    double slowest = 0.0;

    for (int r = 0; r < rows; ++r) {
        const auto i = std::size_t(r);
        double periodSeconds = 0, w = 1;
        switch (settings.distribution) {
            case VoldViewRecord::kFrequencyLinear: {
                const double f = 1.0 / pBottom + r * (1.0 / pTop - 1.0 / pBottom) / rows;
                periodSeconds = 1.0 / f;
                w = 1.0 / (3.0 * (r + 1) / rows);
                break;
            }
            case VoldViewRecord::kTimeLinear:
                periodSeconds = pBottom - r * (pBottom - pTop) / rows;
                w = 1.0 / (3.0 * (rows + 1 - r) / rows);
                break;
            default:
                periodSeconds = pBottom * std::pow(q, r);
                break;
        }
        const double big = std::max(periodSeconds * sampleFreq, 1.0);
        bank.frequency[i] = 1.0 / periodSeconds;
        bank.period[i] = big;
        bank.weight[i] = w;
        const float trf = float(2.466 / (big * big));
        const float freef = float(std::pow(1.0 / std::pow(bigQ, sharp * w), 1.0 / big));
        bank.tr[i] = trf;
        bank.free[i] = freef;
        bank.magScale[i] = float(4.0 / (4.0 - double(trf)));

        // One step on (value, speed): S u + c x, from the single-precision constants the
        // literal loop runs with, so both loops mean the same resonator.
        const double tr = trf, f = freef;
        const M2 s{f, f * tr, -1.0, 1.0 - tr};
        const double c1 = 1.0 - f;  // c = (c1, 0)
        M2 a{1, 0, 0, 1}, sum{1, 0, 0, 1};
        for (int k = 0; k < 4; ++k) {
            a = mul(s, a);
            if (k < 3) sum = {sum.a + a.a, sum.b + a.b, sum.c + a.c, sum.d + a.d};
        }
        // sum = I + S + S^2 + S^3, a = S^4; b = sum c.
        const double bv = sum.a * c1, bs = sum.c * c1;
        // y = L u with |y|^2 = 4 / (4 - tr) (v^2 + tr s^2 + tr v s).
        const double k = 2.0 / std::sqrt(4.0 - tr);
        const double l11 = k, l12 = k * tr / 2, l22 = k * std::sqrt(tr - tr * tr / 4);
        const M2 l{l11, l12, 0, l22};
        const M2 lInv{1 / l11, -l12 / (l11 * l22), 0, 1 / l22};
        const M2 ay = mul(mul(l, a), lInv);
        const double by1 = l11 * bv + l12 * bs, by2 = l22 * bs;
        bank.d11[i] = float(ay.a - 1.0);
        bank.d12[i] = float(ay.b);
        bank.d21[i] = float(ay.c);
        bank.d22[i] = float(ay.d - 1.0);
        bank.b1[i] = float(by1);
        bank.b2[i] = float(by2);

        const double full =
            settledMagnitude(ay, by1, by2, 2.0 * 3.14159265358979323846 / big, kVoldFullScale);
        bank.invFullScale[i] = full > 0.0 ? float(1.0 / full) : 0.0f;
        slowest = std::max(slowest, spectralRadius(ay));
    }
    const double cap = kVoldMaxSettleSeconds * sampleFreq;
    double settle = cap;
    if (slowest < 1.0) settle = std::min(cap, std::log(kVoldSettleLevel) / std::log(slowest));
    bank.settleSamples = std::int32_t(std::ceil(std::max(settle, 0.0)));
    return bank;
}

float voldBrightness(const VoldBank& bank, int row, float magnitudeSquared) {
    const float inv = bank.invFullScale[std::size_t(row)];
    const float level2 = std::min(magnitudeSquared * inv * inv, 1.0f);
    switch (bank.sensitivity) {
        case VoldViewRecord::kLow: return level2;
        case VoldViewRecord::kHigh: return std::sqrt(std::sqrt(level2));
        case VoldViewRecord::kVeryHigh: return std::sqrt(std::sqrt(std::sqrt(level2)));
        default: return std::sqrt(level2);
    }
}

VoldSpan voldSpanOf(double viewBegin, double viewEnd, int clientWidth, std::int32_t values,
                    std::int32_t ringIn) {
    VoldSpan span;
    if (clientWidth <= 0) return span;
    span.bounds.assign(std::size_t(clientWidth) + 1, 0);
    if (!(viewEnd > viewBegin) || values <= 0) return span;
    const ColumnMap map(ViewSpan{viewBegin, viewEnd}, clientWidth);
    const double perColumn = (viewEnd - viewBegin) / clientWidth;
    for (int x = 0; x <= clientWidth; ++x) {
        // The first sample whose column is x or later: guessed, then made exact.
        double guess = std::ceil(viewBegin + x * perColumn) - 2.0;
        guess = std::clamp(guess, 0.0, double(values));
        auto s = std::int32_t(guess);
        while (s < values && map.columnOf(s) < x) ++s;
        while (s > 0 && map.columnOf(s - 1) >= x) --s;
        span.bounds[std::size_t(x)] = s;
    }
    span.ringFrom = std::max<std::int32_t>(0, span.bounds[0] - std::max<std::int32_t>(ringIn, 0));
    return span;
}

}  // namespace orv
