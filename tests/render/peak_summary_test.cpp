#include "render/peak_summary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/core_test_helpers.h"

namespace orv {
namespace {

using namespace orv::test;

// Noise from a fixed sequence, with lone extremes on both sides of block and level edges.
Samples noise(int n, unsigned seed) {
    Samples v(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        seed = seed * 1664525u + 1013904223u;
        v[std::size_t(i)] = int(seed >> 16) % 20000 - 10000;
    }
    for (int at : {0, 255, 256, 4095, 4096, 65535, 65536, 70001, n - 1})
        v[std::size_t(at)] = at % 2 ? 32767 : -32768;
    return v;
}

TEST(PeakSummary, RangesAreExactAcrossBlocksAndLevels) {
    const int n = 2 * 65536 + 77;  // levels of 513, 33 and 3 entries; a partial last block
    const Samples left = noise(n, 3), right = noise(n, 4);
    SoundPtr s = stereo(left, right);
    CancelFlag cancel{0};
    const auto summary = buildPeakSummary(*s, cancel);
    ASSERT_TRUE(summary);
    EXPECT_EQ(summary->levels(), 3);
    std::vector<std::pair<int, int>> ranges;
    const int edges[] = {0, 1, 255, 256, 257, 4095, 4096, 4097, 65535, 65536, 70001, n - 77, n - 1};
    for (int a : edges)
        for (int b : edges)
            if (a <= b) ranges.emplace_back(a, b);
    std::uint32_t x = 99;
    for (int i = 0; i < 3000; ++i) {
        x = x * 1664525u + 1013904223u;
        const int a = int(x % std::uint32_t(n)), len = int((x >> 8) % (i % 3 ? 140000u : 300u));
        ranges.emplace_back(a, std::min(n - 1, a + len));
    }
    for (auto [a, b] : ranges)
        for (int ch = 0; ch < 2; ++ch) {
            const Samples& v = ch ? right : left;
            const auto [lo, hi] = std::minmax_element(v.begin() + a, v.begin() + b + 1);
            const PeakRange got = summary->range(ch, a, b);
            ASSERT_EQ((std::pair<int, int>{got.lo, got.hi}), (std::pair<int, int>{*lo, *hi}))
                << ch << ": " << a << ".." << b;
        }
}

TEST(PeakSummary, MemoryStaysUnderOnePercentOfTheSamples) {
    const int n = 1000000;
    SoundPtr s = stereo(Samples(std::size_t(n), 1), Samples(std::size_t(n), -1));
    CancelFlag cancel{0};
    const auto summary = buildPeakSummary(*s, cancel);
    // Per channel 3907 + 245 + 16 entries of 4 bytes: 33 344 bytes for 4 000 000.
    EXPECT_EQ(summary->bytes(), std::size_t(2 * (3907 + 245 + 16) * 4));
    EXPECT_EQ(summary->range(1, 0, n - 1).lo, -1);
}

TEST(PeakSummary, BelongsToTheWavesItWasMadeOf) {
    CancelFlag cancel{0};
    SoundPtr a = mono({1, 2, 3}), b = mono({1, 2, 3}), st = stereo({1, 2}, {3, 4}), empty = mono({});
    const auto sa = buildPeakSummary(*a, cancel), se = buildPeakSummary(*empty, cancel);
    EXPECT_EQ((std::vector<bool>{sa->describes(*a), sa->describes(*b), sa->describes(*st),
                                 se->describes(*empty)}),
              (std::vector<bool>{true, false, false, true}));  // b: equal samples, other waves
    EXPECT_EQ(se->bytes(), 0u);
}

TEST(PeakSummary, CancelStopsBetweenChunks) {
    SoundPtr s = mono(Samples(10000, 5));
    CancelFlag cancel{1};
    EXPECT_EQ(buildPeakSummary(*s, cancel), nullptr);
    CancelFlag later{0};
    ChunkHookScope hook(later, 5000);
    EXPECT_EQ(buildPeakSummary(*s, later), nullptr);
    EXPECT_EQ(hook.chunks.back(), (std::pair<int, int>{5000, 6000}));  // raised there, seen after
}

}  // namespace
}  // namespace orv
