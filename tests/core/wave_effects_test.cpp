// Amplitude and shape effects: volume (constant, in place, envelope), up, distort, reverse,
// mirror, rotate, block, the weighted mix and the average that must stay a copy.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "core/wave.h"
#include "support/core_test_helpers.h"

namespace orv {
namespace {

using namespace test;

// A wave whose samples run through many values of both signs.
WavePtr zigzag(int n) {
    Samples s(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) s[std::size_t(i)] = ((i * 7919) % 65536) - 32768;
    return makeWave(s);
}

TEST(Volume, WrapsAroundInsteadOfClippingAndTruncatesTowardZero) {
    auto w = makeWave({20000, -3, 7, 100});
    CancelFlag c{0};
    std::int32_t end = 3;
    EXPECT_EQ(samplesOf(w->volume(c, 2, 0, end)), (Samples{-25536, -6, 14, 100}));
    EXPECT_EQ(end, 3);
    end = -1;  // the whole wave, written back
    EXPECT_EQ(samplesOf(w->volume(c, 0.5, 1, end)), (Samples{20000, -1, 3, 50}));
    EXPECT_EQ(end, 4);
    EXPECT_EQ(samplesOf(w), (Samples{20000, -3, 7, 100}));  // source untouched
    // 3 x 1e6 = 45 x 65536 + 50880 -> -14656; -32768 x 65535 = -32768 x 65536 + 32768.
    EXPECT_EQ(samplesOf(makeWave({3, -3, 1})->volume(c, 1e6, 0, E{-1})),
              (Samples{-14656, 14656, 16960}));
    EXPECT_EQ(samplesOf(makeWave({-32768, 32767})->volume(c, 65535, 0, E{-1})),
              (Samples{-32768, -32767}));
}

TEST(Volume, LongRangesAndTheInPlaceFormFollowTheSameRule) {
    // Long enough for the grouped loops and their leftovers, over chunk borders, with head
    // and tail left alone; one factor below and one above the 32-bit shortcut.
    auto w = zigzag(2537);
    for (double f : {-1.7371, 70000.5}) {
        CancelFlag c{0};
        auto r = w->volume(c, f, 3, E{2530});
        auto inPlace = makeWave(samplesOf(w));
        inPlace->volumeInPlace(c, f, 3, E{2530});
        for (std::int32_t i = 0; i < w->getValues(); ++i) {
            const WaveVal want = (i < 3 || i >= 2530) ? (*w)[i] : toWaveVal((*w)[i] * f);
            ASSERT_EQ((*r)[i], want) << "factor " << f << " at " << i;
            ASSERT_EQ((*inPlace)[i], want) << "in place, factor " << f << " at " << i;
        }
    }
    CancelFlag c{0};  // one worked value: 30001 x 70000.5 = 2100085000 = 32044 x 65536 + 49416
    EXPECT_EQ(samplesOf(makeWave(Samples(9, 30001))->volume(c, 70000.5, 0, E{-1})),
              Samples(9, 49416 - 65536));
}

TEST(Volume, EnvelopeIsStretchedOverTheRange) {
    auto w = makeWave({5, 1001, -1001, 20000, 9});
    CancelFlag c{0};
    // [0, 32767] over 3 samples: factors 0, 16383.5/32767 = 0.5 and 1.
    EXPECT_EQ(samplesOf(w->volumeEnv(c, makeWave({0, 32767}).get(), 1, E{4})),
              (Samples{5, 0, -500, 20000, 9}));
    // A negative envelope inverts; one sample reads the envelope's first value.
    EXPECT_EQ(samplesOf(w->volumeEnv(c, makeWave({-32767, 0, 0}).get(), 1, E{2})),
              (Samples{5, -1001, -1001, 20000, 9}));
    // 5 envelope samples over 3 target samples: positions 0, 2, 4; 16384 x 30000 / 32767.
    EXPECT_EQ(samplesOf(makeWave({30000, 30000, 30000})
                            ->volumeEnv(c, makeWave({32767, 0, -32767, 0, 16384}).get(), 0,
                                        E{-1})),
              (Samples{30000, -30000, 15000}));
    EXPECT_EQ(w->volumeEnv(c, nullptr, 0, E{1}), nullptr);
}

TEST(UpAndDistort, UpWrapsAndTheCurveIsReadLinearly) {
    auto w = makeWave({32767, -32768, 0, 5});
    CancelFlag c{0};
    EXPECT_EQ(samplesOf(w->up(c, 1, 0, E{3})), (Samples{-32768, -32767, 1, 5}));
    EXPECT_EQ(samplesOf(w->up(c, -1, 1, E{-1})), (Samples{32767, 32767, -1, 4}));

    // 0 -> index 0.5 -> 0; 32767 -> 0.99999237 -> 999.98; -16384 -> 0.24999619 -> -500.01.
    EXPECT_EQ(samplesOf(makeWave({0, 32767, -16384, 77})
                            ->distort(c, makeWave({-1000, 1000}).get(), 0, E{3})),
              (Samples{0, 999, -500, 77}));
    // -32768 lands at index -3.05e-5 of five entries and reads 17001.52: extrapolated, not
    // clamped to 17000. A one-entry curve maps everything onto it.
    EXPECT_EQ(samplesOf(makeWave({-32768})
                            ->distort(c, makeWave({17000, -32768, 0, 0, 0}).get(), 0, E{-1})),
              (Samples{17001}));
    EXPECT_EQ(samplesOf(makeWave({-32768, 32767, 0})->distort(c, makeWave({-7}).get(), 0, E{-1})),
              (Samples{-7, -7, -7}));
}

TEST(ReverseMirrorRotate, HandWorked) {
    auto w = makeWave({1, 2, 3, 4, 5});
    CancelFlag c{0};
    std::int32_t end = -1;
    EXPECT_EQ(samplesOf(w->reverse(c, 0, end)), (Samples{5, 4, 3, 2, 1}));
    EXPECT_EQ(end, 5);
    EXPECT_EQ(samplesOf(w->reverse(c, 1, E{4})), (Samples{1, 4, 3, 2, 5}));
    auto same = w->reverse(c, 2, E{2});  // an empty range: an unchanged copy
    EXPECT_NE(same.get(), w.get());
    EXPECT_EQ(samplesOf(same), samplesOf(w));
    auto z = zigzag(2611);  // across chunks
    auto r = z->reverse(c, 5, E{2600});
    for (int i : {0, 4, 5, 6, 1004, 1005, 2599, 2600, 2610})
        EXPECT_EQ((*r)[i], (i < 5 || i >= 2600) ? (*z)[i] : (*z)[2604 - i]) << i;

    for (auto [in, b, e, want] : {std::tuple{Samples{1, 2, 3, 4}, 0, -1, Samples{4, 3, 3, 4}},
                                  std::tuple{Samples{1, 2, 3}, 0, -1, Samples{3, 2, 3}},
                                  std::tuple{Samples{9, 1, 2, 3, 4, 5, 9}, 1, 6,
                                             Samples{9, 5, 4, 3, 4, 5, 9}}}) {
        auto m = makeWave(in);
        m->mirror(c, b, E{e});
        EXPECT_EQ(samplesOf(m), want);
    }

    EXPECT_EQ(samplesOf(w->rotate(c, 2, 0, E{-1})), (Samples{3, 4, 5, 1, 2}));
    auto x = makeWave({9, 1, 2, 3, 4, 9});
    EXPECT_EQ(samplesOf(x->rotate(c, 1, 1, E{5})), (Samples{9, 2, 3, 4, 1, 9}));
    EXPECT_EQ(samplesOf(x->rotate(c, 4, 1, E{5})), samplesOf(x));
}

TEST(Block, FractionalBoundariesAveragesAndVerticalLevels) {
    // Length 2.5 over 10 samples: boundaries 2, 5, 7, 10, blocks of 2, 3, 2, 3.
    auto w = makeWave({0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 7});
    CancelFlag c{0};
    EXPECT_EQ(samplesOf(w->block(c, 2.5, 0, 0, E{10})),
              (Samples{5, 5, 30, 30, 30, 55, 55, 80, 80, 80, 7}));
    // Boundaries start at begin, not at 0.
    EXPECT_EQ(samplesOf(w->block(c, 2.5, 0, 1, E{11})),
              (Samples{0, 15, 15, 40, 40, 40, 65, 65, 59, 59, 59}));
    auto v = makeWave({-1, -2, 3, 4});
    EXPECT_EQ(samplesOf(v->block(c, 2, 0, 0, E{-1})), (Samples{-1, -1, 3, 3}));  // toward zero
    EXPECT_EQ(samplesOf(v->block(c, 0.25, 0, 0, E{-1})), samplesOf(v));  // raised to 1
    // Vertical levels. One: silence. Two: only -32768 and 32767. Three: -32768,
    // trunc(-0.5) = 0, 32767.
    auto h = makeWave({5, -5, 0, 30000, 7});
    EXPECT_EQ(samplesOf(h->block(c, 1, 1, 0, E{4})), (Samples{0, 0, 0, 0, 7}));
    EXPECT_EQ(samplesOf(h->block(c, 1, 2, 0, E{4})), (Samples{32767, -32768, 32767, 32767, 7}));
    EXPECT_EQ(samplesOf(h->block(c, 1, 3, 0, E{4})), (Samples{0, 0, 0, 32767, 7}));
}

TEST(Mix, WeightedOverTheRangeRestCopiedAndAverageIsACopy) {
    auto a = makeWave({100, 30001, -7, 1});
    auto b = makeWave({201, 30000, -8, 2});
    CancelFlag c{0};
    // 15000.5 + 15000 = 30000.5 -> 30000; -3.5 - 4 = -7.5 -> -7.
    EXPECT_EQ(samplesOf(a->mix(c, b.get(), 0.5, 0.5, 1, E{3})), (Samples{100, 30000, -7, 1}));
    std::int32_t end = -1;
    EXPECT_EQ(samplesOf(a->mix(c, b.get(), 1, 1, 0, end)), (Samples{301, -5535, -15, 3}));
    EXPECT_EQ(end, 4);
    // Long, with factors beyond 32-bit sums: every sample follows the plain rule.
    auto la = zigzag(2345), lb = makeWave(Samples(2345, -3));
    auto r = la->mix(c, lb.get(), 40000.0, 30000.0, 2, E{2340});
    for (int i = 0; i < 2345; ++i)
        ASSERT_EQ((*r)[i], (i < 2 || i >= 2340) ? (*la)[i] : toWaveVal((*la)[i] * 40000.0 - 90000))
            << i;

    EXPECT_EQ(samplesOf(makeWave({100, -200, 32767})->average(c, makeWave({-100, 200, 1}).get())),
              (Samples{100, -200, 32767}));
}

TEST(Effects, ChunksRunOverTheRangeAndCancelStopsThem) {
    auto w = zigzag(2600);
    {
        CancelFlag c{0};
        ChunkHookScope hook;
        w->up(c, 3, 50, E{2550});
        // Head copy [0, 50), the range in 1000, 1000, 500, tail copy [2550, 2600).
        EXPECT_EQ(hook.chunks,
                  (Chunks{{0, 50}, {50, 1050}, {1050, 2050}, {2050, 2550}, {2550, 2600}}));
    }
    CancelFlag c{0};
    ChunkHookScope hook(c, 1050);
    auto r = w->up(c, 3, 50, E{2550});
    ASSERT_NE(r, nullptr);  // the partial wave is handed back; the caller sees the flag
    EXPECT_TRUE(isCancelled(c));
    EXPECT_EQ(hook.chunks.back(), std::make_pair(1050, 2050));
    EXPECT_EQ((*r)[2049], wrap16((*w)[2049] + 3));
    CancelFlag set{1};
    EXPECT_EQ(w->volume(set, 2, 0, E{-1}), nullptr);
    EXPECT_EQ(w->rotate(set, 1, 0, E{-1}), nullptr);
    // A block cancelled in its middle gives no wave at all.
    CancelFlag b{0};
    ChunkHookScope blockHook(b, 1000);  // the second chunk of the one long block
    EXPECT_EQ(w->block(b, 2500, 0, 0, E{-1}), nullptr);
    EXPECT_TRUE(isCancelled(b));
    EXPECT_EQ(blockHook.chunks, (Chunks{{0, 1000}, {1000, 2000}}));
}

TEST(EffectsDeathTest, ChecksNameTheExpression) {
    auto w = makeWave({1, 2, 3});
    CancelFlag c{0};
    EXPECT_DEATH(w->rotate(c, 4, 0, E{-1}), "Assertion failed: leftShift <= values, unit wave");
    EXPECT_DEATH(w->mix(c, makeWave({1, 2}).get(), 1, 1, 0, E{-1}),
                 "Assertion failed: values == daar->values, unit wave");
}

}  // namespace
}  // namespace orv
