// The resonator bank, the literal loop and the fast kernel of the Vold picture.
#include "render/vold_kernel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "render/vold_bank.h"
#include "render/vold_literal.h"

namespace orv {
namespace {

VoldViewRecord settingsOf(double topSeconds, double bottomSeconds, std::uint8_t distribution,
                          std::uint8_t sensitivity = VoldViewRecord::kNormal) {
    VoldViewRecord r;
    r.top.value = topSeconds;
    r.bottom.value = bottomSeconds;
    r.distribution = distribution;
    r.sensitivity = sensitivity;
    return r;
}

std::vector<WaveVal> sine(double hz, int freq, int n, double amplitude = 32767.0) {
    std::vector<WaveVal> w(static_cast<std::size_t>(n), 0);
    for (int i = 0; i < n; ++i)
        w[std::size_t(i)] = WaveVal(std::lround(amplitude * std::sin(2 * M_PI * hz * i / freq)));
    return w;
}

// Columns of `perColumn` samples over the whole wave.
VoldSpan evenSpan(int values, int perColumn) {
    VoldSpan s;
    for (int b = 0; b <= values; b += perColumn) s.bounds.push_back(b);
    return s;
}

std::vector<float> literal(const VoldBank& bank, const std::vector<WaveVal>& w,
                           const VoldSpan& span) {
    std::vector<float> out(std::size_t(span.columns() * bank.rows), -1.0f);
    runVoldLiteral(bank, w.data(), span, out.data());
    return out;
}

std::vector<float> fast(const VoldBank& bank, const std::vector<WaveVal>& w,
                        const VoldSpan& span, VoldIsa isa, int threads = 0) {
    std::vector<float> out(std::size_t(span.columns() * bank.rows), -1.0f);
    CancelFlag cancel{0};
    std::atomic<int> ready{0};
    VoldKernelOptions o;
    o.isa = isa;
    o.threads = threads;
    EXPECT_TRUE(runVoldKernel({{&bank, w.data(), out.data()}}, span, cancel, ready, o));
    EXPECT_EQ(ready.load(), span.columns());
    return out;
}

std::vector<VoldIsa> supportedIsas() {
    std::vector<VoldIsa> out;
    for (VoldIsa i : {VoldIsa::Sse2, VoldIsa::Avx2, VoldIsa::Avx512})
        if (voldIsaSupported(i)) out.push_back(i);
    return out;
}

// The byte a brightness becomes in the starkest colour pair, black on white, as the painter
// blends it.
int shade(float b) { return int(std::lround(255.0 - 255.0 * double(b))); }

TEST(VoldBank, RowsWorkedOutByHand) {
    // 1000 samples per second, 10 Hz to 100 Hz in two rows: q = sqrt(0.1), Q = 3.16228.
    const struct {
        std::uint8_t distribution;
        double f0, f1, w0, w1, tr0, tr1, free0, free1;
    } rows[] = {
        // Logaritmic: 10 Hz and 31.6228 Hz, weight 1.
        {VoldViewRecord::kLogarithmic, 10, 31.6227766, 1, 1, 0.0002466, 0.002466,
         0.98514464, 0.95377338},
        // Frequency Linear: 10 Hz and 55 Hz, weights 2/3 and 1/3.
        {VoldViewRecord::kFrequencyLinear, 10, 55, 2.0 / 3, 1.0 / 3, 0.0002466, 0.00745965,
         0.99007175, 0.97293389},
        // Time Linear: periods 100 ms and 55 ms, weights 2/9 and 1/3.
        {VoldViewRecord::kTimeLinear, 10, 1 / 0.055, 2.0 / 9, 1.0 / 3, 0.0002466, 0.00081521,
         0.99667957, 0.99097023},
    };
    for (const auto& row : rows) {
        const VoldBank b = makeVoldBank(settingsOf(0.01, 0.1, row.distribution), 1000, 2);
        SCOPED_TRACE(int(row.distribution));
        ASSERT_EQ(b.rows, 2);
        EXPECT_NEAR(b.frequency[0], row.f0, 1e-6);
        EXPECT_NEAR(b.frequency[1], row.f1, 1e-6);
        EXPECT_NEAR(b.weight[0], row.w0, 1e-12);
        EXPECT_NEAR(b.weight[1], row.w1, 1e-12);
        EXPECT_NEAR(b.tr[0], row.tr0, 1e-9);
        EXPECT_NEAR(b.tr[1], row.tr1, 1e-8);
        EXPECT_NEAR(b.free[0], row.free0, 1e-7);
        EXPECT_NEAR(b.free[1], row.free1, 1e-7);
    }
    // Width 2 doubles the damping exponent: free squared.
    VoldViewRecord wide = settingsOf(0.01, 0.1, VoldViewRecord::kLogarithmic);
    wide.width.value = 2.0;
    EXPECT_NEAR(makeVoldBank(wide, 1000, 2).free[0], 0.98514464 * 0.98514464, 1e-7);
    // Top and bottom exchanged: the rows run downward from 100 Hz, Q is again 3.16228, so
    // row 1 (31.6228 Hz) is damped as before and row 0 as exp(-1.3 ln Q / 10).
    const VoldBank down = makeVoldBank(settingsOf(0.1, 0.01, VoldViewRecord::kLogarithmic), 1000, 2);
    EXPECT_NEAR(down.frequency[0], 100, 1e-9);
    EXPECT_NEAR(down.free[0], 0.86099375, 1e-7);
    EXPECT_NEAR(down.free[1], 0.95377338, 1e-7);
    // A row above the sample frequency rings at it: F is never below one sample.
    const VoldBank high = makeVoldBank(settingsOf(1.0 / 4000, 1.0 / 3000, VoldViewRecord::kLogarithmic), 1000, 2);
    EXPECT_EQ(high.period[0], 1.0);
    EXPECT_NEAR(high.tr[1], 2.466, 1e-6);
}

TEST(VoldBank, SensitivityCurves) {
    VoldBank b = makeVoldBank(settingsOf(0.001, 0.01, VoldViewRecord::kLogarithmic), 8000, 1);
    const float full = 1.0f / b.invFullScale[0];
    const float quarter = 0.25f * full;
    const struct { std::uint8_t s; float atQuarter; } rows[] = {
        {VoldViewRecord::kLow, 0.0625f}, {VoldViewRecord::kNormal, 0.25f},
        {VoldViewRecord::kHigh, 0.5f}, {VoldViewRecord::kVeryHigh, 0.70710678f}};
    for (const auto& row : rows) {
        b.sensitivity = row.s;
        EXPECT_NEAR(voldBrightness(b, 0, quarter * quarter), row.atQuarter, 1e-5) << int(row.s);
        EXPECT_EQ(voldBrightness(b, 0, 4 * full * full), 1.0f);  // louder than full scale
        EXPECT_EQ(voldBrightness(b, 0, 0.0f), 0.0f);
    }
}

TEST(VoldSpan, ColumnsGatherTheSamplesOfTheWaveformViewColumns) {
    // 10 samples on 4 columns: column trunc(4 s / 10).
    EXPECT_EQ(voldSpanOf(0, 10, 4, 10, 0).bounds, (std::vector<std::int32_t>{0, 3, 5, 8, 10}));
    // Zoomed in on 2 .. 4: column 2 (s - 2); columns 1 and 3 get no sample of their own.
    VoldSpan zoomed = voldSpanOf(2, 4, 4, 10, 5);
    EXPECT_EQ(zoomed.bounds, (std::vector<std::int32_t>{2, 3, 3, 4, 4}));
    EXPECT_EQ(zoomed.ringFrom, 0);  // five wanted, two there
    EXPECT_EQ(voldSpanOf(2, 4, 4, 10, 1).ringFrom, 1);
    // A view from 2.5: sample 2 lies at -0.5 columns, which truncates to column 0, as in the
    // waveform view.
    EXPECT_EQ(voldSpanOf(2.5, 4.5, 2, 10, 0).bounds, (std::vector<std::int32_t>{2, 4, 5}));
    // Never past the wave; no columns without a width.
    EXPECT_EQ(voldSpanOf(0, 3, 5, 3, 0).bounds, (std::vector<std::int32_t>{0, 1, 2, 2, 3, 3}));
    EXPECT_EQ(voldSpanOf(0, 10, 0, 10, 0).columns(), 0);
}

TEST(VoldLiteral, SineLightsItsRowAndFadingItsNeighboursSilenceNothing) {
    // 50 rows from 20 Hz to 20 kHz at 44.1 kHz, the record's defaults; a full-scale sine at
    // the frequency of row 30.
    const VoldViewRecord s;
    const VoldBank bank = makeVoldBank(s, 44100, 50);
    const double hz = bank.frequency[30];
    const std::vector<WaveVal> w = sine(hz, 44100, 8820);
    const VoldSpan span = evenSpan(8820, 882);
    const std::vector<float> out = literal(bank, w, span);
    const float* last = out.data() + std::size_t(9 * 50);  // settled
    EXPECT_GT(last[30], 0.97f);
    EXPECT_LE(last[30], 1.0f);
    for (int r = 0; r < 50; ++r) {
        if (r != 30) {
            EXPECT_LT(last[r], last[30]) << r;
        }
    }
    for (int d = 1; d <= 4; ++d) {
        EXPECT_LT(last[30 + d], last[30 + d - 1]) << d;
        EXPECT_LT(last[30 - d], last[30 - d + 1]) << d;
    }
    // Half the amplitude, half the brightness.
    const std::vector<float> half = literal(bank, sine(hz, 44100, 8820, 16383.5), span);
    EXPECT_NEAR(half[9 * 50 + 30], last[30] / 2, 0.005);

    const std::vector<float> silent = literal(bank, std::vector<WaveVal>(8820, 0), span);
    for (float b : silent) ASSERT_EQ(b, 0.0f);
    for (VoldIsa isa : supportedIsas())
        for (float b : fast(bank, std::vector<WaveVal>(8820, 0), span, isa)) ASSERT_EQ(b, 0.0f);
}

TEST(VoldLiteral, EmptyColumnsShowTheRowsAsTheyStand) {
    const VoldBank bank = makeVoldBank(VoldViewRecord{}, 8000, 6);
    const std::vector<WaveVal> w = sine(440, 8000, 400);
    VoldSpan span;
    span.bounds = {0, 200, 200, 201, 201, 201};
    std::vector<float> volume;
    std::vector<float> out(5 * 6);
    runVoldLiteral(bank, w.data(), span, out.data(), &volume);
    // Column 1 has no sample: it shows the magnitudes after sample 199, which a column of
    // that one sample has as its maximum.
    VoldSpan one;
    one.bounds = {0, 199, 200};
    std::vector<float> last(2 * 6);
    runVoldLiteral(bank, w.data(), one, last.data());
    for (int r = 0; r < 6; ++r) {
        EXPECT_EQ(out[std::size_t(6 + r)], last[std::size_t(6 + r)]) << r;
        // Columns 3 and 4 show the rows after sample 200, column 2's only sample.
        EXPECT_EQ(out[std::size_t(12 + r)], out[std::size_t(18 + r)]) << r;
        EXPECT_EQ(out[std::size_t(18 + r)], out[std::size_t(24 + r)]) << r;
        EXPECT_GT(volume[std::size_t(r)], 0.0f);
    }
    for (VoldIsa isa : supportedIsas()) {
        const std::vector<float> got = fast(bank, w, span, isa);
        for (int r = 0; r < 6; ++r) {
            EXPECT_NEAR(got[std::size_t(6 + r)], out[std::size_t(6 + r)], 1e-4) << r;
            EXPECT_FLOAT_EQ(got[std::size_t(18 + r)], got[std::size_t(12 + r)]) << r;
        }
    }
}

// A loud click ringing out, then silence long enough for every row to sink into denormals.
std::vector<WaveVal> transient(int freq, int n) {
    std::vector<WaveVal> w(static_cast<std::size_t>(n), 0);
    for (int i = 0; i < freq / 20; ++i)
        w[std::size_t(i)] = WaveVal(std::lround(32767 * std::exp(-i / (freq / 200.0)) *
                                                std::cos(2 * M_PI * 1000.0 * i / freq)));
    return w;
}

std::vector<WaveVal> noise(int n) {
    std::vector<WaveVal> w(static_cast<std::size_t>(n));
    std::uint32_t x = 12345;
    for (auto& v : w) {
        x = x * 1664525u + 1013904223u;
        v = WaveVal(std::int32_t(x >> 16) - 32768);
    }
    return w;
}

std::vector<WaveVal> chord(int freq, int n) {
    std::vector<WaveVal> w(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i)
        w[std::size_t(i)] = WaveVal(std::lround(
            12000 * std::sin(2 * M_PI * 27.5 * i / freq) + 10000 * std::sin(2 * M_PI * 440 * i / freq) +
            10000 * std::sin(2 * M_PI * 15000 * i / freq)));
    return w;
}

TEST(VoldKernel, EveryInstructionSetDrawsWhatTheLiteralLoopDraws) {
    const int freq = 44100, n = 13230;
    const struct { const char* name; std::vector<WaveVal> wave; } waves[] = {
        {"noise", noise(n)}, {"sines", chord(freq, n)}, {"transient", transient(freq, n)}};
    const struct { std::uint8_t distribution; int rows; } banks[] = {
        {VoldViewRecord::kLogarithmic, 400}, {VoldViewRecord::kFrequencyLinear, 61},
        {VoldViewRecord::kTimeLinear, 37}};
    for (const auto& b : banks)
        for (std::uint8_t sensitivity : {VoldViewRecord::kNormal, VoldViewRecord::kVeryHigh}) {
            const VoldBank bank = makeVoldBank(
                settingsOf(1.0 / 20000, 1.0 / 20, b.distribution, sensitivity), freq, b.rows);
            for (const auto& wave : waves) {
                // Uneven columns, and a few without samples of their own.
                VoldSpan span;
                for (int c = 0, pos = 0; pos <= n; ++c, pos += (c % 7 == 3) ? 0 : 300 + c % 5)
                    span.bounds.push_back(pos);
                const std::vector<float> want = literal(bank, wave.wave, span);
                for (VoldIsa isa : supportedIsas()) {
                    const std::vector<float> got = fast(bank, wave.wave, span, isa);
                    int worst = 0;
                    std::size_t at = 0;
                    for (std::size_t i = 0; i < want.size(); ++i) {
                        const int d = std::abs(shade(want[i]) - shade(got[i]));
                        if (d > worst) worst = d, at = i;
                    }
                    EXPECT_LE(worst, 1) << wave.name << " " << voldIsaName(isa) << " rows "
                                        << b.rows << " sensitivity " << int(sensitivity)
                                        << " column " << at / std::size_t(b.rows) << " row "
                                        << at % std::size_t(b.rows) << ": " << want[at]
                                        << " against " << got[at];
                }
            }
        }
}

TEST(VoldKernel, ChannelsAndThreadsDoNotChangeAPixel) {
    const VoldBank left = makeVoldBank(VoldViewRecord{}, 22050, 45);
    const VoldBank right = makeVoldBank(VoldViewRecord{}, 22050, 46);
    const std::vector<WaveVal> a = noise(5000), b = chord(22050, 5000);
    const VoldSpan span = evenSpan(5000, 250);
    std::vector<float> one = fast(left, a, span, VoldIsa::Sse2, 1);
    std::vector<float> two = fast(right, b, span, VoldIsa::Sse2, 1);
    // As many threads as asked for, up to one per core.
    for (int threads : {1, 2, 3, 16}) {
        std::vector<float> l(one.size()), r(two.size());
        CancelFlag cancel{0};
        std::atomic<int> ready{0};
        VoldKernelOptions o;
        o.isa = VoldIsa::Sse2;
        o.threads = threads;
        ASSERT_TRUE(runVoldKernel({{&left, a.data(), l.data()}, {&right, b.data(), r.data()}},
                                  span, cancel, ready, o));
        EXPECT_EQ(l, one) << threads;
        EXPECT_EQ(r, two) << threads;
    }
}

TEST(VoldKernel, ColumnsArriveInOrderAndCancelStopsWithinAColumn) {
    const VoldBank bank = makeVoldBank(VoldViewRecord{}, 44100, 64);
    const std::vector<WaveVal> w = noise(200000);
    for (VoldIsa isa : supportedIsas())
        for (int threads : {1, 2}) {
            SCOPED_TRACE(std::string(voldIsaName(isa)) + " threads " + std::to_string(threads));
            std::vector<float> out(std::size_t(20 * 64));
            VoldKernelOptions o;
            o.isa = isa;
            o.threads = threads;
            std::vector<int> seen;
            o.onColumns = [&](int c) { seen.push_back(c); };
            CancelFlag cancel{0};
            std::atomic<int> ready{0};
            ASSERT_TRUE(runVoldKernel({{&bank, w.data(), out.data()}}, evenSpan(2000, 100),
                                      cancel, ready, o));
            ASSERT_FALSE(seen.empty());
            for (std::size_t i = 1; i < seen.size(); ++i) EXPECT_GT(seen[i], seen[i - 1]);
            EXPECT_EQ(seen.back(), 20);

            // Raised as the first column is published: no thread finishes a further one,
            // though each column is 50 000 samples long.
            seen.clear();
            o.onColumns = [&](int c) {
                seen.push_back(c);
                setCancelled(cancel);
            };
            EXPECT_FALSE(runVoldKernel({{&bank, w.data(), out.data()}}, evenSpan(200000, 50000),
                                       cancel, ready, o));
            EXPECT_EQ(ready.load(), 1);
            EXPECT_EQ(seen, std::vector<int>{1});
            // Raised before the start: nothing at all.
            EXPECT_FALSE(runVoldKernel({{&bank, w.data(), out.data()}}, evenSpan(2000, 100),
                                       cancel, ready, o));
            EXPECT_EQ(ready.load(), 0);
        }
}

TEST(VoldKernel, StepsCountedAsTheLiteralLoopRunsThem) {
    const VoldBank a = makeVoldBank(VoldViewRecord{}, 44100, 400);
    VoldSpan span = evenSpan(44100, 441);
    span.ringFrom = 0;
    EXPECT_EQ(voldSteps({{&a, nullptr, nullptr}, {&a, nullptr, nullptr}}, span),
              std::int64_t(800) * 44100 * 4);
}

}  // namespace
}  // namespace orv
