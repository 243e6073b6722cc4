// Amplitude and shape effects: volume (constant, in place, envelope), up, distort, reverse,
// mirror, rotate, block, the weighted mix and the average that must stay a copy.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "core/wave.h"

namespace orv {
namespace {

using Samples = std::vector<int>;
using Chunks = std::vector<std::pair<int, int>>;

WavePtr makeWave(const Samples& s) {
    CancelFlag c{0};
    WavePtr w = newWave(c, std::int32_t(s.size()));
    for (std::size_t i = 0; i < s.size(); ++i) (*w)[std::int32_t(i)] = WaveVal(s[i]);
    return w;
}

Samples samplesOf(const Wave& w) {
    Samples s;
    for (std::int32_t i = 0; i < w.getValues(); ++i) s.push_back(w[i]);
    return s;
}

// A wave whose samples run through many values of both signs.
WavePtr zigzag(int n) {
    Samples s(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) s[std::size_t(i)] = ((i * 7919) % 65536) - 32768;
    return makeWave(s);
}

struct ChunkLog {
    Chunks chunks;
    CancelFlag* cancel = nullptr;
    int cancelAtPos = -1;  // raise the flag in the hook of the chunk starting here
};

void logChunk(void* ctx, std::int32_t pos, std::int32_t stop) {
    auto* log = static_cast<ChunkLog*>(ctx);
    log->chunks.emplace_back(pos, stop);
    if (log->cancel && pos == log->cancelAtPos) setCancelled(*log->cancel);
}

struct ChunkHookScope {
    ChunkLog log;
    ChunkHookScope() { setChunkHook(logChunk, &log); }
    ~ChunkHookScope() { setChunkHook(nullptr, nullptr); }
};

// ---- volume ----

TEST(Volume, WrapsAroundInsteadOfClipping) {
    auto w = makeWave({20000, -3, 7, 100});
    CancelFlag c{0};
    std::int32_t end = 3;
    auto r = w->volume(c, 2, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{-25536, -6, 14, 100}));
    EXPECT_EQ(end, 3);
    EXPECT_EQ(samplesOf(*w), (Samples{20000, -3, 7, 100}));  // source untouched

    end = -1;  // the whole wave, written back
    r = w->volume(c, 0.5, 1, end);
    EXPECT_EQ(end, 4);
    EXPECT_EQ(samplesOf(*r), (Samples{20000, -1, 3, 50}));  // truncated toward zero
}

TEST(Volume, LargeFactorsStillWrapExactly) {
    // 3 x 1e6 = 3000000 = 45 x 65536 + 50880 -> 50880 - 65536 = -14656.
    auto w = makeWave({3, -3, 1});
    CancelFlag c{0};
    std::int32_t end = -1;
    auto r = w->volume(c, 1e6, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{-14656, 14656, 16960}));
    // -32768 x 65535 is the largest product that still fits 32 bits.
    auto m = makeWave({-32768, 32767});
    end = -1;
    r = m->volume(c, 65535, 0, end);
    // -32768 x 65535 = -32768 x 65536 + 32768; 32767 x 65535 = 32767 x 65536 - 32767.
    EXPECT_EQ(samplesOf(*r), (Samples{-32768, -32767}));
}

TEST(Volume, LongRangesMatchTheRuleSampleForSample) {
    // Long enough for the grouped loops and their leftovers, over chunk borders, with head
    // and tail left alone; one factor below and one above the 32-bit shortcut.
    auto w = zigzag(2537);
    for (double f : {-1.7371, 70000.5}) {
        CancelFlag c{0};
        std::int32_t end = 2530;
        auto r = w->volume(c, f, 3, end);
        auto inPlace = makeWave(samplesOf(*w));
        std::int32_t end2 = 2530;
        inPlace->volumeInPlace(c, f, 3, end2);
        for (std::int32_t i = 0; i < w->getValues(); ++i) {
            const WaveVal want = (i < 3 || i >= 2530) ? (*w)[i] : toWaveVal((*w)[i] * f);
            ASSERT_EQ((*r)[i], want) << "factor " << f << " at " << i;
            ASSERT_EQ((*inPlace)[i], want) << "in place, factor " << f << " at " << i;
        }
    }
}

TEST(Volume, EnvelopeIsStretchedOverTheRange) {
    // [0, 32767] over 3 samples: factors 0, 16383.5/32767 = 0.5 and 1.
    auto env = makeWave({0, 32767});
    auto w = makeWave({5, 1001, -1001, 20000, 9});
    CancelFlag c{0};
    std::int32_t end = 4;
    auto r = w->volumeEnv(c, env.get(), 1, end);
    EXPECT_EQ(samplesOf(*r), (Samples{5, 0, -500, 20000, 9}));

    // A negative envelope inverts; one sample reads the envelope's first value.
    auto neg = makeWave({-32767, 0, 0});
    end = 2;
    r = w->volumeEnv(c, neg.get(), 1, end);
    EXPECT_EQ(samplesOf(*r), (Samples{5, -1001, -1001, 20000, 9}));

    EXPECT_EQ(w->volumeEnv(c, nullptr, 0, end), nullptr);
}

TEST(Volume, EnvelopeLongerThanTheRangeHitsBothEnds) {
    // 5 envelope samples over 3 target samples: positions 0, 2, 4.
    auto env = makeWave({32767, 0, -32767, 0, 16384});
    auto w = makeWave({30000, 30000, 30000});
    CancelFlag c{0};
    std::int32_t end = -1;
    auto r = w->volumeEnv(c, env.get(), 0, end);
    // 16384 x 30000 / 32767 = 15000.457...
    EXPECT_EQ(samplesOf(*r), (Samples{30000, -30000, 15000}));
}

// ---- up ----

TEST(Up, AddsWithWrapAround) {
    auto w = makeWave({32767, -32768, 0, 5});
    CancelFlag c{0};
    std::int32_t end = 3;
    auto r = w->up(c, 1, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{-32768, -32767, 1, 5}));
    end = -1;
    r = w->up(c, -1, 1, end);
    EXPECT_EQ(samplesOf(*r), (Samples{32767, 32767, -1, 4}));
}

// ---- distort ----

TEST(Distort, CurveMapsInputLevelsLinearly) {
    auto curve = makeWave({-1000, 1000});
    auto w = makeWave({0, 32767, -16384, 77});
    CancelFlag c{0};
    std::int32_t end = 3;
    auto r = w->distort(c, curve.get(), 0, end);
    // 0 -> index 0.5 -> 0; 32767 -> 0.99999237 -> 999.98; -16384 -> 0.24999619 -> -500.01.
    EXPECT_EQ(samplesOf(*r), (Samples{0, 999, -500, 77}));
}

TEST(Distort, MinimumInputIsExtrapolatedNotClamped) {
    // Five entries: -32768 lands at index -3.05e-5 and reads
    // 17000 + 3.05e-5 x (17000 + 32768) = 17001.52 (a clamp would give 17000).
    auto curve = makeWave({17000, -32768, 0, 0, 0});
    auto w = makeWave({-32768});
    CancelFlag c{0};
    std::int32_t end = -1;
    auto r = w->distort(c, curve.get(), 0, end);
    EXPECT_EQ((*r)[0], 17001);
    // A one-entry curve maps everything onto it.
    auto flat = makeWave({-7});
    auto v = makeWave({-32768, 32767, 0});
    end = -1;
    r = v->distort(c, flat.get(), 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{-7, -7, -7}));
}

// ---- reverse ----

TEST(Reverse, ReversesTheRangeOnly) {
    auto w = makeWave({1, 2, 3, 4, 5});
    CancelFlag c{0};
    std::int32_t end = 4;
    auto r = w->reverse(c, 1, end);
    EXPECT_EQ(samplesOf(*r), (Samples{1, 4, 3, 2, 5}));
    end = -1;
    r = w->reverse(c, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{5, 4, 3, 2, 1}));
    EXPECT_EQ(end, 5);
}

TEST(Reverse, EmptyRangeGivesAnUnchangedCopy) {
    auto w = makeWave({1, 2, 3});
    CancelFlag c{0};
    std::int32_t end = 2;
    auto r = w->reverse(c, 2, end);
    ASSERT_NE(r, nullptr);
    EXPECT_NE(r.get(), w.get());
    EXPECT_EQ(samplesOf(*r), (Samples{1, 2, 3}));
}

TEST(Reverse, LongRangeAcrossChunks) {
    auto w = zigzag(2611);
    CancelFlag c{0};
    std::int32_t end = 2600;
    auto r = w->reverse(c, 5, end);
    for (std::int32_t i = 0; i < 2611; ++i) {
        const WaveVal want = (i < 5 || i >= 2600) ? (*w)[i] : (*w)[2600 - 1 - (i - 5)];
        ASSERT_EQ((*r)[i], want) << i;
    }
}

// ---- mirror ----

TEST(Mirror, FirstHalfBecomesTheReverseOfTheSecond) {
    auto even = makeWave({1, 2, 3, 4});
    CancelFlag c{0};
    std::int32_t end = -1;
    even->mirror(c, 0, end);
    EXPECT_EQ(samplesOf(*even), (Samples{4, 3, 3, 4}));

    auto odd = makeWave({1, 2, 3});
    end = -1;
    odd->mirror(c, 0, end);
    EXPECT_EQ(samplesOf(*odd), (Samples{3, 2, 3}));

    // Inside a longer wave the half is taken from (begin + end) / 2.
    auto inner = makeWave({9, 1, 2, 3, 4, 5, 9});
    end = 6;
    inner->mirror(c, 1, end);
    EXPECT_EQ(samplesOf(*inner), (Samples{9, 5, 4, 3, 4, 5, 9}));
}

// ---- rotate ----

TEST(Rotate, RotatesLeft) {
    auto w = makeWave({1, 2, 3, 4, 5});
    CancelFlag c{0};
    std::int32_t end = -1;
    auto r = w->rotate(c, 2, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{3, 4, 5, 1, 2}));
    auto x = makeWave({9, 1, 2, 3, 4, 9});
    end = 5;
    r = x->rotate(c, 1, 1, end);
    EXPECT_EQ(samplesOf(*r), (Samples{9, 2, 3, 4, 1, 9}));
    end = 5;
    r = x->rotate(c, 0, 1, end);
    EXPECT_EQ(samplesOf(*r), samplesOf(*x));
    end = 5;
    r = x->rotate(c, 4, 1, end);
    EXPECT_EQ(samplesOf(*r), samplesOf(*x));
}

TEST(RotateDeathTest, ShiftChecks) {
    auto w = makeWave({1, 2, 3, 4, 5});
    CancelFlag c{0};
    std::int32_t end = -1;
    EXPECT_DEATH(w->rotate(c, -1, 0, end), "Assertion failed: leftShift >= 0, unit wave");
    EXPECT_DEATH(w->rotate(c, 6, 0, end), "Assertion failed: leftShift <= values, unit wave");
    end = 2;
    EXPECT_DEATH(w->rotate(c, 1, 2, end), "Assertion failed: begin < end, unit wave");
}

// ---- block ----

TEST(Block, FractionalBoundaries) {
    // Length 2.5 over 10 samples: boundaries 2, 5, 7, 10, blocks of 2, 3, 2, 3.
    auto w = makeWave({0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 7});
    CancelFlag c{0};
    std::int32_t end = 10;
    auto r = w->block(c, 2.5, 0, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{5, 5, 30, 30, 30, 55, 55, 80, 80, 80, 7}));
    // Boundaries start at begin, not at 0.
    end = 11;
    r = w->block(c, 2.5, 0, 1, end);
    EXPECT_EQ(samplesOf(*r), (Samples{0, 15, 15, 40, 40, 40, 65, 65, 59, 59, 59}));
}

TEST(Block, AverageTruncatesTowardZeroAndShortLengthsAreRaised) {
    auto w = makeWave({-1, -2, 3, 4});
    CancelFlag c{0};
    std::int32_t end = -1;
    auto r = w->block(c, 2, 0, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{-1, -1, 3, 3}));
    r = w->block(c, 0.25, 0, 0, end);  // raised to 1: every sample is its own block
    EXPECT_EQ(samplesOf(*r), (Samples{-1, -2, 3, 4}));
}

TEST(Block, VerticalLevels) {
    auto w = makeWave({5, -5, 0, 30000, 7});
    CancelFlag c{0};
    std::int32_t end = 4;
    // One level: silence.
    auto r = w->block(c, 1, 1, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{0, 0, 0, 0, 7}));
    // Two levels: only -32768 and 32767 (5 and 0 -> level 1, -5 -> level 0).
    r = w->block(c, 1, 2, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{32767, -32768, 32767, 32767, 7}));
    // Three levels: -32768, trunc(-0.5) = 0, 32767.
    r = w->block(c, 1, 3, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{0, 0, 0, 32767, 7}));
}

TEST(Block, CancelDuringABlockGivesNoWave) {
    auto w = zigzag(3000);
    CancelFlag c{0};
    ChunkHookScope hook;
    hook.log.cancel = &c;
    hook.log.cancelAtPos = 1000;  // the second chunk of the one long block
    std::int32_t end = -1;
    EXPECT_EQ(w->block(c, 2500, 0, 0, end), nullptr);
    EXPECT_NE(c.load(), 0);
    // The block [0, 2500) is summed in chunks of 1000, 1000, 500.
    ASSERT_GE(hook.log.chunks.size(), 2u);
    EXPECT_EQ(hook.log.chunks[0], std::make_pair(0, 1000));
    EXPECT_EQ(hook.log.chunks[1], std::make_pair(1000, 2000));
}

// ---- weighted mix and average ----

TEST(Mix, WeightedOverTheRangeRestCopied) {
    auto a = makeWave({100, 30001, -7, 1});
    auto b = makeWave({201, 30000, -8, 2});
    CancelFlag c{0};
    std::int32_t end = 3;
    auto r = a->mix(c, b.get(), 0.5, 0.5, 1, end);
    // 15000.5 + 15000 = 30000.5 -> 30000; -3.5 - 4 = -7.5 -> -7.
    EXPECT_EQ(samplesOf(*r), (Samples{100, 30000, -7, 1}));
    end = -1;
    r = a->mix(c, b.get(), 1, 1, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{301, -5535, -15, 3}));  // 60001 wraps
    EXPECT_EQ(end, 4);
}

TEST(Mix, LongRangesMatchTheRule) {
    auto a = zigzag(2345);
    Samples other(2345);
    for (std::size_t i = 0; i < other.size(); ++i) other[i] = int((i * 31) % 60000) - 30000;
    auto b = makeWave(other);
    for (auto [fa, fb] : {std::pair{0.3, -0.61}, std::pair{40000.0, 30000.0}}) {
        CancelFlag c{0};
        std::int32_t end = 2340;
        auto r = a->mix(c, b.get(), fa, fb, 2, end);
        for (std::int32_t i = 0; i < 2345; ++i) {
            const WaveVal want =
                (i < 2 || i >= 2340) ? (*a)[i] : toWaveVal((*a)[i] * fa + (*b)[i] * fb);
            ASSERT_EQ((*r)[i], want) << i;
        }
    }
}

TEST(Mix, AverageIsAnExactCopyOfTheFirstWave) {
    auto left = makeWave({100, -200, 32767});
    auto right = makeWave({-100, 200, 32767});
    CancelFlag c{0};
    auto r = left->average(c, right.get());
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(samplesOf(*r), (Samples{100, -200, 32767}));
}

TEST(MixDeathTest, LengthsMustAgree) {
    auto a = makeWave({1, 2, 3});
    auto b = makeWave({1, 2});
    CancelFlag c{0};
    std::int32_t end = -1;
    EXPECT_DEATH(a->mix(c, b.get(), 1, 1, 0, end),
                 "Assertion failed: values == daar->values, unit wave");
    EXPECT_DEATH(a->average(c, b.get()), "Assertion failed: values == other->values, unit wave");
    end = 1;
    EXPECT_DEATH(a->mix(c, a.get(), 1, 1, 2, end), "Assertion failed: begin <= end, unit wave");
}

// ---- range checks, cancel and chunks shared by the frame ----

TEST(EffectsDeathTest, RangeFamilies) {
    auto w = makeWave({1, 2, 3});
    CancelFlag c{0};
    std::int32_t end = 2;
    EXPECT_DEATH(w->volume(c, 1, 2, end), "Assertion failed: begin < end, unit wave");
    end = 4;
    EXPECT_DEATH(w->up(c, 1, 0, end), "Assertion failed: end <= values, unit wave");
    end = 2;
    EXPECT_DEATH(w->block(c, 1, 0, -1, end), "Assertion failed: begin >= 0, unit wave");
    end = 3;
    EXPECT_DEATH(w->mirror(c, 4, end), "Assertion failed: begin <= values, unit wave");
}

TEST(Effects, ChunksRunOverTheRangeAndCancelStopsThem) {
    auto w = zigzag(2600);
    {
        CancelFlag c{0};
        ChunkHookScope hook;
        std::int32_t end = 2550;
        auto r = w->up(c, 3, 50, end);
        // Head copy [0, 50), the range in 1000, 1000, 500, tail copy [2550, 2600).
        EXPECT_EQ(hook.log.chunks, (Chunks{{0, 50}, {50, 1050}, {1050, 2050}, {2050, 2550},
                                           {2550, 2600}}));
    }
    CancelFlag c{0};
    ChunkHookScope hook;
    hook.log.cancel = &c;
    hook.log.cancelAtPos = 1050;
    std::int32_t end = 2550;
    auto r = w->up(c, 3, 50, end);
    ASSERT_NE(r, nullptr);  // the partial wave is handed back; the caller sees the flag
    EXPECT_NE(c.load(), 0);
    for (std::int32_t i = 50; i < 1050; ++i) ASSERT_EQ((*r)[i], wrap16((*w)[i] + 3));
    EXPECT_EQ(hook.log.chunks.back(), std::make_pair(1050, 2050));
}

TEST(Effects, FlagAlreadySetGivesNoWave) {
    auto w = makeWave({1, 2, 3});
    CancelFlag c{1};
    std::int32_t end = -1;
    EXPECT_EQ(w->volume(c, 2, 0, end), nullptr);
    EXPECT_EQ(w->reverse(c, 0, end), nullptr);
    EXPECT_EQ(w->rotate(c, 1, 0, end), nullptr);
    EXPECT_EQ(w->block(c, 1, 0, 0, end), nullptr);
}

}  // namespace
}  // namespace orv
