#include "core/filter.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>
#include <vector>

#include "support/recording_platform.h"

namespace orv {
namespace {

WavePtr makeWave(const std::vector<int>& v) {
    CancelFlag c{0};
    WavePtr w = newWave(c, static_cast<std::int32_t>(v.size()));
    for (std::size_t i = 0; i < v.size(); ++i) (*w)[std::int32_t(i)] = WaveVal(v[i]);
    return w;
}

WavePtr constantWave(std::int32_t count, int value) {
    return makeWave(std::vector<int>(std::size_t(count), value));
}

std::vector<int> samples(const Wave& w) {
    std::vector<int> v;
    for (std::int32_t i = 0; i < w.getValues(); ++i) v.push_back(w[i]);
    return v;
}

using Ints = std::vector<int>;

// factor 0.6 gives p / sqrt(1 - p^2) = 0.75, so a = 1 - 6.2830586 x 0.75 / time:
// time 9.4245879 makes a = 0.5 and time 18.8491758 makes a = 0.75.
constexpr double kHalf = 9.4245879;
constexpr double kThreeQuarters = 18.8491758;

// Records the chunks of every chunked loop; can raise the flag when a chunk starts at a
// given position.
struct ChunkRecorder {
    std::vector<std::pair<int, int>> chunks;
    CancelFlag* cancelAt = nullptr;
    std::int32_t cancelPos = -1;

    ChunkRecorder() { setChunkHook(&ChunkRecorder::hook, this); }
    ~ChunkRecorder() { setChunkHook(nullptr, nullptr); }
    static void hook(void* ctx, std::int32_t pos, std::int32_t stop) {
        auto* self = static_cast<ChunkRecorder*>(ctx);
        self->chunks.emplace_back(pos, stop);
        if (self->cancelAt && pos == self->cancelPos) setCancelled(*self->cancelAt);
    }
};

// ---- low-pass and high-pass ---------------------------------------------------------------

TEST(LowHighPass, OnePassHandWorked) {
    CancelFlag c{0};
    auto in = constantWave(5, 999);
    // y = 0.5 x + 0.5 y: 499.5, 749.25, 874.125, 936.56, 968.28 (truncated toward zero)
    EXPECT_EQ(samples(*LowPass(in.get(), c, kHalf, 0.6, 1, 1, 0, 5)),
              (Ints{499, 749, 874, 936, 967}));
    // the input minus that state
    EXPECT_EQ(samples(*HighPass(in.get(), c, kHalf, 0.6, 1, 1, 0, 5)),
              (Ints{499, 249, 124, 62, 31}));
    auto neg = constantWave(5, -999);
    EXPECT_EQ(samples(*LowPass(neg.get(), c, kHalf, 0.6, 1, 1, 0, 5)),
              (Ints{-499, -749, -874, -936, -967}));
    EXPECT_FALSE(isCancelled(c));
}

TEST(LowHighPass, FactorIsSpreadOverCountBerPasses) {
    CancelFlag c{0};
    auto in = constantWave(5, 999);
    // 0.36 over two passes is 0.6 per pass: the same coefficient as above.
    EXPECT_EQ(samples(*LowPass(in.get(), c, kHalf, 0.36, 2, 1, 0, 5)),
              (Ints{499, 749, 874, 936, 967}));
}

TEST(LowHighPass, LaterPassesReadTheTruncatedResult) {
    CancelFlag c{0};
    auto in = constantWave(5, 999);
    // second pass over 499, 749, 874, 936, 967 with a fresh state:
    // 249.5, 374.5 + 124.75 = 499.25, 437 + 249.625 = 686.625, 468 + 343.3 = 811.3, ...
    EXPECT_EQ(samples(*LowPass(in.get(), c, kHalf, 0.6, 1, 2, 0, 5)),
              (Ints{249, 499, 686, 811, 889}));
}

TEST(LowHighPass, NegativeCoefficientIsClampedToZero) {
    CancelFlag c{0};
    auto in = makeWave({100, -200, 300, 32767, -32768});
    // factor 0.99 with a period of 10 samples gives a far below 0: no filtering at all.
    EXPECT_EQ(samples(*LowPass(in.get(), c, 10, 0.99, 1, 1, 0, 5)), samples(*in));
    EXPECT_EQ(samples(*LowPass(in.get(), c, 10, 0.99, 1, 3, 0, 5)), samples(*in));
    EXPECT_EQ(samples(*HighPass(in.get(), c, 10, 0.99, 1, 1, 0, 5)), (Ints{0, 0, 0, 0, 0}));
}

TEST(LowHighPass, HighPassOfFullScaleSquareWraps) {
    CancelFlag c{0};
    auto in = makeWave({32767, 32767, 32767, 32767, -32768, -32768, -32768, -32768});
    // a = 0.75: after four samples of 32767 the state is 22399.5; at the edge the output is
    // 0.75 x (-32768 - 22399.5) = -41375.6, which wraps to 24161.
    EXPECT_EQ(samples(*HighPass(in.get(), c, kThreeQuarters, 0.6, 1, 1, 0, 8)),
              (Ints{24575, 18431, 13823, 10367, 24161, -31031, -23273, -17455}));
}

TEST(LowHighPass, RangeHeadTailAndEndMinusOne) {
    CancelFlag c{0};
    auto in = makeWave({7, -7, 999, 999, 999, 5, 6});
    EXPECT_EQ(samples(*LowPass(in.get(), c, kHalf, 0.6, 1, 1, 2, 5)),
              (Ints{7, -7, 499, 749, 874, 5, 6}));
    EXPECT_EQ(samples(*HighPass(in.get(), c, kHalf, 0.6, 1, 1, 2, 5)),
              (Ints{7, -7, 499, 249, 124, 5, 6}));
    auto whole = constantWave(5, 999);
    EXPECT_EQ(samples(*LowPass(whole.get(), c, kHalf, 0.6, 1, 1, 0, -1)),
              (Ints{499, 749, 874, 936, 967}));
    EXPECT_EQ(samples(*HighPass(whole.get(), c, kHalf, 0.6, 1, 1, 3, -1)),
              (Ints{999, 999, 999, 499, 249}));
}

TEST(LowHighPass, EnvelopeSetsThePeriodPerSample) {
    CancelFlag c{0};
    auto in = constantWave(5, 999);
    // -32768 is 20 Hz: the period is freq / 20, here 9.4245879 again.
    auto low = makeWave({-32768});
    EXPECT_EQ(samples(*LowPassEnv(in.get(), c, low.get(), 0.6, 1, 1, 20 * kHalf, 0, 5)),
              (Ints{499, 749, 874, 936, 967}));
    // Stretched over three samples the envelope reads -32768, 0, 32767: 20 Hz (a = 0.984),
    // 632.49 Hz (a = 0.5) and 20 kHz (a negative, clamped: the input itself).
    auto ramp = makeWave({-32768, 32767});
    auto three = constantWave(3, 999);
    EXPECT_EQ(samples(*LowPassEnv(three.get(), c, ramp.get(), 0.6, 1, 1, 5960.94, 0, 3)),
              (Ints{15, 507, 999}));
    EXPECT_EQ(samples(*HighPassEnv(three.get(), c, ramp.get(), 0.6, 1, 1, 5960.94, 0, 3)),
              (Ints{983, 491, 0}));
    // the envelope is stretched over the range, not over the wave
    auto framed = makeWave({5, 999, 999, 999, 6});
    EXPECT_EQ(samples(*LowPassEnv(framed.get(), c, ramp.get(), 0.6, 1, 1, 5960.94, 1, 4)),
              (Ints{5, 15, 507, 999, 6}));
    // each pass reads the envelope from its start again
    EXPECT_EQ(samples(*LowPassEnv(three.get(), c, ramp.get(), 0.6, 1, 2, 5960.94, 0, 3)),
              (Ints{0, 253, 999}));
}

// ---- resonator and notch ------------------------------------------------------------------

TEST(Resonator, HandWorkedImpulse) {
    CancelFlag c{0};
    auto in = makeWave({1000, 0, 0, 0});
    // per 2, factor 0.75: p = 0.5, k = 0.6165. First sample, four sub-steps:
    // s2 500; s1 -500, s2 750; s2 441.75, s1 -941.75, s2 720.875;
    // s2 140.286, s1 -1082.036, s2 570.143.
    EXPECT_EQ(samples(*Resonant(in.get(), c, 2, 0.75, 0, 4)), (Ints{570, -70, -3, 6}));
    EXPECT_EQ(samples(*Notch(in.get(), c, 2, 0.75, 0, 4)), (Ints{429, 70, 3, -6}));
}

TEST(Resonator, FullWidthPassesTheInput) {
    CancelFlag c{0};
    auto in = makeWave({1000, -32768, 32767, 5});
    // factor 1: p = 0, so every sub-step ends with s2 = x.
    EXPECT_EQ(samples(*Resonant(in.get(), c, 3, 1, 0, 4)), samples(*in));
    EXPECT_EQ(samples(*Notch(in.get(), c, 3, 1, 0, 4)), (Ints{0, 0, 0, 0}));
}

TEST(Resonator, EnvelopeFormsAndTheTwentyStepException) {
    CancelFlag c{0};
    auto in = makeWave({1000, 0, 0, 0});
    auto top = makeWave({32767});     // 20 kHz: period 2 at 40 kHz
    auto width = makeWave({16384});   // (16384 + 32768) / 65536 = 0.75
    // The resonant filter with only a frequency envelope takes twenty sub-steps of
    // k = 0.09864 / per^2 ...
    EXPECT_EQ(samples(*ResonantFreqEnv(in.get(), c, top.get(), 0.75, 40000, 0, 4)),
              (Ints{714, -141, -48, -16}));
    // ... the notch with a frequency envelope keeps four, as do all other forms.
    EXPECT_EQ(samples(*NotchFreqEnv(in.get(), c, top.get(), 0.75, 40000, 0, 4)),
              (Ints{429, 70, 3, -6}));
    EXPECT_EQ(samples(*ResonantWidthEnv(in.get(), c, 2, width.get(), 0, 4)),
              (Ints{570, -70, -3, 6}));
    EXPECT_EQ(samples(*NotchWidthEnv(in.get(), c, 2, width.get(), 0, 4)), (Ints{429, 70, 3, -6}));
    EXPECT_EQ(samples(*ResonantEnv(in.get(), c, top.get(), width.get(), 40000, 0, 4)),
              (Ints{570, -70, -3, 6}));
    EXPECT_EQ(samples(*NotchEnv(in.get(), c, top.get(), width.get(), 40000, 0, 4)),
              (Ints{429, 70, 3, -6}));
}

TEST(Resonator, RangeKeepsHeadAndTail) {
    CancelFlag c{0};
    auto in = makeWave({-3, 1000, 0, 0, 0, 9});
    EXPECT_EQ(samples(*Resonant(in.get(), c, 2, 0.75, 1, 5)), (Ints{-3, 570, -70, -3, 6, 9}));
    // end -1 takes the last sample in too
    EXPECT_EQ(samples(*Notch(in.get(), c, 2, 0.75, 1, -1)), (Ints{-3, 429, 70, 3, -6, 6}));
}

TEST(Filters, SilenceStaysSilence) {
    CancelFlag c{0};
    auto in = constantWave(2500, 0);
    auto ramp = makeWave({-32768, 0, 32767});
    const Ints silent(2500, 0);
    EXPECT_EQ(samples(*LowPass(in.get(), c, 30, 0.5, 2, 2, 0, -1)), silent);
    EXPECT_EQ(samples(*HighPass(in.get(), c, 30, 0.5, 2, 2, 0, -1)), silent);
    EXPECT_EQ(samples(*LowPassEnv(in.get(), c, ramp.get(), 0.5, 1, 1, 44100, 0, -1)), silent);
    EXPECT_EQ(samples(*HighPassEnv(in.get(), c, ramp.get(), 0.5, 1, 1, 44100, 0, -1)), silent);
    EXPECT_EQ(samples(*Resonant(in.get(), c, 40, 0.1, 0, -1)), silent);
    EXPECT_EQ(samples(*Notch(in.get(), c, 40, 0.1, 0, -1)), silent);
    EXPECT_EQ(samples(*ResonantFreqEnv(in.get(), c, ramp.get(), 0.1, 44100, 0, -1)), silent);
    EXPECT_EQ(samples(*NotchFreqEnv(in.get(), c, ramp.get(), 0.1, 44100, 0, -1)), silent);
    EXPECT_EQ(samples(*ResonantWidthEnv(in.get(), c, 40, ramp.get(), 0, -1)), silent);
    EXPECT_EQ(samples(*NotchWidthEnv(in.get(), c, 40, ramp.get(), 0, -1)), silent);
    EXPECT_EQ(samples(*ResonantEnv(in.get(), c, ramp.get(), ramp.get(), 44100, 0, -1)), silent);
    EXPECT_EQ(samples(*NotchEnv(in.get(), c, ramp.get(), ramp.get(), 44100, 0, -1)), silent);
    EXPECT_FALSE(isCancelled(c));
}

// ---- block filter -------------------------------------------------------------------------

TEST(BlockFilter, HandWorkedAverageAndLength) {
    CancelFlag c{0};
    auto in = makeWave({10, 20, 30, 40});
    std::int32_t begin = 0, end = 4;
    // time 2, n = 3: acc += v(i + 2) / 2 - v(i) / 2, output acc / 2; 0 beyond the range
    // acc: 15 - 5 = 10, +20 - 10 = 20, +0 - 15 = 5, +0 - 20 = -15, then unchanged
    auto out = BlockFilter(in.get(), c, 2, begin, end);
    EXPECT_EQ(samples(*out), (Ints{5, 10, 2, -7, -7, -7, -7}));
    EXPECT_EQ(begin, 0);
    EXPECT_EQ(end, 7);
}

TEST(BlockFilter, HalfSampleTimeAddsOneSample) {
    CancelFlag c{0};
    auto in = makeWave({10, 20, 30});
    std::int32_t begin = 0, end = -1;
    // n = trunc(0.5) + 1 = 1; v(0.5) = 15, v(1.5) = 25, v(2.5) = 0 (past the range)
    // acc: 30 - 20 = 10, +50 - 40 = 20, +0 - 60 = -40, -40
    auto out = BlockFilter(in.get(), c, 0.5, begin, end);
    EXPECT_EQ(samples(*out), (Ints{5, 10, -20, -20}));
    EXPECT_EQ(end, 4);
}

TEST(BlockFilter, NegativeTimeStartsReadingBeforeBegin) {
    CancelFlag c{0};
    auto in = makeWave({10, 20, 30, 40});
    std::int32_t begin = 0, end = 4;
    // time -2, n = 3: reading starts at -3; the first three outputs see only zeros
    auto out = BlockFilter(in.get(), c, -2, begin, end);
    EXPECT_EQ(samples(*out), (Ints{0, 0, 0, 2, 7, 12, 17}));
    EXPECT_EQ(end, 7);
}

TEST(BlockFilter, ReadsOnlyInsideTheRangeAndShiftsTheTail) {
    CancelFlag c{0};
    auto in = makeWave({1, 2, 10, 20, 30, 40, 7, 8});
    std::int32_t begin = 2, end = 6;
    auto out = BlockFilter(in.get(), c, 2, begin, end);
    EXPECT_EQ(samples(*out), (Ints{1, 2, 5, 10, 2, -7, -7, -7, -7, 7, 8}));
    EXPECT_EQ(begin, 2);
    EXPECT_EQ(end, 9);
}

TEST(BlockFilter, EnvelopeFormLengthAndShortBlocks) {
    CancelFlag c{0};
    auto in = makeWave({10, 20, 30, 40, 50, 60, 70, 80});
    auto zero = makeWave({0});
    std::int32_t begin = 0, end = 8;
    // maximal time 2: m = 3, six samples longer, reading from begin + 3. An envelope of 0
    // gives blocks of width 0, so every output is the sample at the read position, halved.
    auto out = BlockFilterEnv(in.get(), c, 2, zero.get(), begin, end);
    EXPECT_EQ(samples(*out), (Ints{20, 25, 30, 35, 40, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(end, 14);

    // Full envelope: width 32767 x 2 / 32767 = 2, the running average of the constant form.
    auto full = makeWave({32767});
    auto in2 = makeWave({0, 0, 0, 10, 20, 30, 40});
    begin = 0;
    end = 7;
    // m = 3; reads from 3 on like the constant form with time 2 from 0 on over 10..40
    out = BlockFilterEnv(in2.get(), c, 2, full.get(), begin, end);
    EXPECT_EQ(samples(*out), (Ints{5, 10, 2, -7, -7, -7, -7, -7, -7, -7, -7, -7, -7}));
    EXPECT_EQ(end, 13);
}

// ---- cancel, failure and null arguments ---------------------------------------------------

TEST(Filters, ChunksOfAtMostThousand) {
    CancelFlag c{0};
    auto in = constantWave(2500, 100);
    {
        ChunkRecorder rec;
        LowPass(in.get(), c, 30, 0.5, 2, 2, 0, -1);
        const std::vector<std::pair<int, int>> twoPasses{{0, 1000},    {1000, 2000},
                                                         {2000, 2500}, {0, 1000},
                                                         {1000, 2000}, {2000, 2500}};
        EXPECT_EQ(rec.chunks, twoPasses);
    }
    {
        ChunkRecorder rec;
        std::int32_t begin = 0, end = 2500;
        BlockFilter(in.get(), c, 2, begin, end);  // 2503 output samples
        const std::vector<std::pair<int, int>> expected{{0, 1000}, {1000, 2000}, {2000, 2503}};
        EXPECT_EQ(rec.chunks, expected);
    }
}

TEST(Filters, CancelMidwayReturnsThePartlyFilteredResult) {
    auto in = constantWave(2500, 999);
    auto ref = constantWave(2500, 999);
    CancelFlag c{0};
    WavePtr whole = Resonant(ref.get(), c, 20, 0.3, 0, -1);
    {
        ChunkRecorder rec;
        rec.cancelAt = &c;
        rec.cancelPos = 1000;
        WavePtr part = Resonant(in.get(), c, 20, 0.3, 0, -1);
        ASSERT_NE(part, nullptr);
        EXPECT_TRUE(isCancelled(c));
        // the chunk that raised the flag still ran; the next one never started
        EXPECT_EQ(rec.chunks.back(), (std::pair<int, int>{1000, 2000}));
        for (std::int32_t i = 0; i < 2000; ++i) ASSERT_EQ((*part)[i], (*whole)[i]) << i;
    }
    // A set flag before the work starts gives no result at all.
    EXPECT_EQ(Resonant(in.get(), c, 20, 0.3, 0, -1), nullptr);
    EXPECT_EQ(LowPass(in.get(), c, 20, 0.3, 1, 1, 0, -1), nullptr);
    std::int32_t begin = 0, end = -1;
    EXPECT_EQ(BlockFilter(in.get(), c, 2, begin, end), nullptr);
}

void* failingAllocator(std::size_t) { return nullptr; }

TEST(Filters, AllocationFailureGivesNoResultAndSetsTheFlag) {
    test::RecordingPlatformScope platform;
    auto in = constantWave(10, 5);
    SampleAllocator old = setSampleAllocator(failingAllocator);
    CancelFlag c{0};
    WavePtr out = HighPass(in.get(), c, 20, 0.3, 1, 1, 0, -1);
    setSampleAllocator(old);
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(isCancelled(c));
    ASSERT_EQ(platform.recorder.messages.size(), 1u);
    EXPECT_EQ(platform.recorder.messages[0].text,
              "There is not enough memmory for this operation.");
}

TEST(Filters, MissingWaveOrEnvelopeGivesNoResult) {
    CancelFlag c{0};
    auto in = constantWave(10, 5);
    auto empty = std::make_unique<Wave>();
    std::int32_t begin = 0, end = -1;
    EXPECT_EQ(LowPass(nullptr, c, 20, 0.3, 1, 1, 0, -1), nullptr);
    EXPECT_EQ(Notch(nullptr, c, 20, 0.3, 0, -1), nullptr);
    EXPECT_EQ(BlockFilter(nullptr, c, 2, begin, end), nullptr);
    EXPECT_EQ(BlockFilterEnv(in.get(), c, 2, nullptr, begin, end), nullptr);
    EXPECT_EQ(LowPassEnv(in.get(), c, nullptr, 0.3, 1, 1, 44100, 0, -1), nullptr);
    EXPECT_EQ(ResonantEnv(in.get(), c, in.get(), empty.get(), 44100, 0, -1), nullptr);
    EXPECT_FALSE(isCancelled(c));
}

// ---- assertions ---------------------------------------------------------------------------

TEST(FiltersDeathTest, ArgumentChecksNameTheExpression) {
    CancelFlag c{0};
    auto in = constantWave(10, 5);
    std::int32_t begin = 0, end = 10;
    EXPECT_DEATH(LowPass(in.get(), c, 0, 0.5, 1, 1, 0, -1),
                 "Assertion failed: time > 0, unit filter, line");
    EXPECT_DEATH(LowPass(in.get(), c, 10, 1, 1, 1, 0, -1),
                 "Assertion failed: factor < 1, unit filter");
    EXPECT_DEATH(HighPass(in.get(), c, 10, 0, 1, 1, 0, -1),
                 "Assertion failed: factor > 0 && factor < 1, unit filter");
    EXPECT_DEATH(HighPassEnv(in.get(), c, in.get(), 0.5, 1, 0, 44100, 0, -1),
                 "Assertion failed: countCmd > 0, unit filter");
    EXPECT_DEATH(LowPassEnv(in.get(), c, in.get(), 0.5, 0, 1, 44100, 0, -1),
                 "Assertion failed: countBer > 0, unit filter");
    EXPECT_DEATH(Resonant(in.get(), c, 0.5, 0.5, 0, -1),
                 "Assertion failed: per >= 1 && factor >= 0 && factor <= 1, unit filter");
    EXPECT_DEATH(NotchFreqEnv(in.get(), c, in.get(), 1.5, 44100, 0, -1),
                 "Assertion failed: factor >= 0 && factor <= 1, unit filter");
    EXPECT_DEATH(ResonantWidthEnv(in.get(), c, 0.9, in.get(), 0, -1),
                 "Assertion failed: per >= 1, unit filter");
    EXPECT_DEATH(Notch(in.get(), c, 2, 0.5, 5, 5), "Assertion failed: begin < end, unit filter");
    EXPECT_DEATH(LowPass(in.get(), c, 10, 0.5, 1, 1, 0, 11),
                 "Assertion failed: end <= values, unit filter");
    EXPECT_DEATH(LowPass(in.get(), c, 10, 0.5, 1, 1, -1, 5),
                 "Assertion failed: begin >= 0, unit filter");
    begin = 11;
    EXPECT_DEATH(BlockFilter(in.get(), c, 2, begin, end),
                 "Assertion failed: begin <= values, unit filter");
    begin = 0;
    end = -2;
    EXPECT_DEATH(BlockFilterEnv(in.get(), c, 2, in.get(), begin, end),
                 "Assertion failed: end >= 0, unit filter");
}

}  // namespace
}  // namespace orv
