#include "core/filter.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>
#include <vector>

#include "support/core_test_helpers.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

using namespace test;
using Ints = Samples;

WavePtr constantWave(std::int32_t count, int value) {
    return makeWave(Samples(std::size_t(count), value));
}

// factor 0.6 gives p / sqrt(1 - p^2) = 0.75, so a = 1 - 6.2830586 x 0.75 / time:
// time 9.4245879 makes a = 0.5 and time 18.8491758 makes a = 0.75.
constexpr double kHalf = 9.4245879;
constexpr double kThreeQuarters = 18.8491758;

// ---- low-pass and high-pass ---------------------------------------------------------------

TEST(LowHighPass, HandWorkedPasses) {
    CancelFlag c{0};
    auto in = constantWave(5, 999);
    auto neg = constantWave(5, -999);
    // y = 0.5 x + 0.5 y: 499.5, 749.25, 874.125, 936.56, 968.28 (truncated toward zero); the
    // high-pass is the input minus that state. 0.36 over two passes is 0.6 per pass. A second
    // pass reads the truncated first: 249.5, 374.5 + 124.75 = 499.25, 686.625, 811.3, ...
    const Ints low{499, 749, 874, 936, 967};
    EXPECT_EQ(samplesOf(*LowPass(in.get(), c, kHalf, 0.6, 1, 1, 0, 5)), low);
    EXPECT_EQ(samplesOf(*HighPass(in.get(), c, kHalf, 0.6, 1, 1, 0, 5)),
              (Ints{499, 249, 124, 62, 31}));
    EXPECT_EQ(samplesOf(*LowPass(neg.get(), c, kHalf, 0.6, 1, 1, 0, 5)),
              (Ints{-499, -749, -874, -936, -967}));
    EXPECT_EQ(samplesOf(*LowPass(in.get(), c, kHalf, 0.36, 2, 1, 0, 5)), low);
    EXPECT_EQ(samplesOf(*LowPass(in.get(), c, kHalf, 0.6, 1, 2, 0, 5)),
              (Ints{249, 499, 686, 811, 889}));
    // -32768 in the envelope is 20 Hz: the period is freq / 20, here kHalf again.
    EXPECT_EQ(samplesOf(*LowPassEnv(in.get(), c, makeWave({-32768}).get(), 0.6, 1, 1, 20 * kHalf,
                                  0, 5)),
              low);
    EXPECT_FALSE(isCancelled(c));
}

TEST(LowHighPass, NegativeCoefficientIsClampedAndFullScaleWraps) {
    CancelFlag c{0};
    auto in = makeWave({100, -200, 300, 32767, -32768});
    // factor 0.99 with a period of 10 samples gives a far below 0: no filtering at all.
    EXPECT_EQ(samplesOf(*LowPass(in.get(), c, 10, 0.99, 1, 3, 0, 5)), samplesOf(*in));
    EXPECT_EQ(samplesOf(*HighPass(in.get(), c, 10, 0.99, 1, 1, 0, 5)), (Ints{0, 0, 0, 0, 0}));
    // a = 0.75: after four samples of 32767 the state is 22399.5; at the edge the output is
    // 0.75 x (-32768 - 22399.5) = -41375.6, which wraps to 24161.
    auto square = makeWave({32767, 32767, 32767, 32767, -32768, -32768, -32768, -32768});
    EXPECT_EQ(samplesOf(*HighPass(square.get(), c, kThreeQuarters, 0.6, 1, 1, 0, 8)),
              (Ints{24575, 18431, 13823, 10367, 24161, -31031, -23273, -17455}));
}

TEST(LowHighPass, RangeHeadTailAndEndMinusOne) {
    CancelFlag c{0};
    auto in = makeWave({7, -7, 999, 999, 999, 5, 6});
    EXPECT_EQ(samplesOf(*LowPass(in.get(), c, kHalf, 0.6, 1, 1, 2, 5)),
              (Ints{7, -7, 499, 749, 874, 5, 6}));
    EXPECT_EQ(samplesOf(*HighPass(constantWave(5, 999).get(), c, kHalf, 0.6, 1, 1, 3, -1)),
              (Ints{999, 999, 999, 499, 249}));
}

TEST(LowHighPass, EnvelopeSetsThePeriodPerSampleOverTheRange) {
    CancelFlag c{0};
    // Stretched over three samples the envelope reads -32768, 0, 32767: 20 Hz (a = 0.984),
    // 632.49 Hz (a = 0.5) and 20 kHz (a negative, clamped: the input itself).
    auto ramp = makeWave({-32768, 32767});
    auto three = constantWave(3, 999);
    EXPECT_EQ(samplesOf(*LowPassEnv(three.get(), c, ramp.get(), 0.6, 1, 1, 5960.94, 0, 3)),
              (Ints{15, 507, 999}));
    EXPECT_EQ(samplesOf(*HighPassEnv(three.get(), c, ramp.get(), 0.6, 1, 1, 5960.94, 0, 3)),
              (Ints{983, 491, 0}));
    auto framed = makeWave({5, 999, 999, 999, 6});
    EXPECT_EQ(samplesOf(*LowPassEnv(framed.get(), c, ramp.get(), 0.6, 1, 1, 5960.94, 1, 4)),
              (Ints{5, 15, 507, 999, 6}));
    // each pass reads the envelope from its start again
    EXPECT_EQ(samplesOf(*LowPassEnv(three.get(), c, ramp.get(), 0.6, 1, 2, 5960.94, 0, 3)),
              (Ints{0, 253, 999}));
}

// ---- resonator and notch ------------------------------------------------------------------

TEST(Resonator, HandWorkedImpulseInEveryForm) {
    CancelFlag c{0};
    auto in = makeWave({1000, 0, 0, 0});
    // per 2, factor 0.75: p = 0.5, k = 0.6165. First sample, four sub-steps:
    // s2 500; s1 -500, s2 750; s2 441.75, s1 -941.75, s2 720.875;
    // s2 140.286, s1 -1082.036, s2 570.143.
    const Ints res{570, -70, -3, 6}, notch{429, 70, 3, -6};
    auto top = makeWave({32767});    // 20 kHz: period 2 at 40 kHz
    auto width = makeWave({16384});  // (16384 + 32768) / 65536 = 0.75
    EXPECT_EQ(samplesOf(*Resonant(in.get(), c, 2, 0.75, 0, 4)), res);
    EXPECT_EQ(samplesOf(*Notch(in.get(), c, 2, 0.75, 0, 4)), notch);
    // Only the resonant filter with just a frequency envelope takes twenty sub-steps.
    EXPECT_EQ(samplesOf(*ResonantFreqEnv(in.get(), c, top.get(), 0.75, 40000, 0, 4)),
              (Ints{714, -141, -48, -16}));
    EXPECT_EQ(samplesOf(*NotchFreqEnv(in.get(), c, top.get(), 0.75, 40000, 0, 4)), notch);
    EXPECT_EQ(samplesOf(*ResonantWidthEnv(in.get(), c, 2, width.get(), 0, 4)), res);
    EXPECT_EQ(samplesOf(*NotchWidthEnv(in.get(), c, 2, width.get(), 0, 4)), notch);
    EXPECT_EQ(samplesOf(*ResonantEnv(in.get(), c, top.get(), width.get(), 40000, 0, 4)), res);
    EXPECT_EQ(samplesOf(*NotchEnv(in.get(), c, top.get(), width.get(), 40000, 0, 4)), notch);

    // factor 1: p = 0, so every sub-step ends with s2 = x.
    auto loud = makeWave({1000, -32768, 32767, 5});
    EXPECT_EQ(samplesOf(*Resonant(loud.get(), c, 3, 1, 0, 4)), samplesOf(*loud));
    EXPECT_EQ(samplesOf(*Notch(loud.get(), c, 3, 1, 0, 4)), (Ints{0, 0, 0, 0}));
    // head and tail kept; end -1 takes the last sample in too
    auto framed = makeWave({-3, 1000, 0, 0, 0, 9});
    EXPECT_EQ(samplesOf(*Resonant(framed.get(), c, 2, 0.75, 1, 5)), (Ints{-3, 570, -70, -3, 6, 9}));
    EXPECT_EQ(samplesOf(*Notch(framed.get(), c, 2, 0.75, 1, -1)), (Ints{-3, 429, 70, 3, -6, 6}));
}

TEST(Filters, SilenceStaysSilence) {
    CancelFlag c{0};
    auto in = constantWave(2500, 0);
    auto ramp = makeWave({-32768, 0, 32767});
    const Ints silent(2500, 0);
    EXPECT_EQ(samplesOf(*LowPass(in.get(), c, 30, 0.5, 2, 2, 0, -1)), silent);
    EXPECT_EQ(samplesOf(*HighPassEnv(in.get(), c, ramp.get(), 0.5, 1, 1, 44100, 0, -1)), silent);
    EXPECT_EQ(samplesOf(*Resonant(in.get(), c, 40, 0.1, 0, -1)), silent);
    EXPECT_EQ(samplesOf(*Notch(in.get(), c, 40, 0.1, 0, -1)), silent);
    EXPECT_EQ(samplesOf(*ResonantFreqEnv(in.get(), c, ramp.get(), 0.1, 44100, 0, -1)), silent);
    EXPECT_EQ(samplesOf(*NotchEnv(in.get(), c, ramp.get(), ramp.get(), 44100, 0, -1)), silent);
}

// ---- block filter -------------------------------------------------------------------------

TEST(BlockFilter, HandWorkedAveragesAndLengths) {
    CancelFlag c{0};
    struct Row {
        Ints in;
        double time;
        int begin, end;
        Ints want;
        int newEnd;
    };
    const Row rows[] = {
        // time 2, n = 3: acc += v(i + 2) / 2 - v(i) / 2, output acc / 2; 0 beyond the range
        {{10, 20, 30, 40}, 2, 0, 4, {5, 10, 2, -7, -7, -7, -7}, 7},
        // n = trunc(0.5) + 1 = 1; v(0.5) = 15, v(1.5) = 25, v(2.5) = 0 (past the range)
        {{10, 20, 30}, 0.5, 0, -1, {5, 10, -20, -20}, 4},
        // time -2, n = 3: reading starts at -3; the first three outputs see only zeros
        {{10, 20, 30, 40}, -2, 0, 4, {0, 0, 0, 2, 7, 12, 17}, 7},
        // reads only inside the range and shifts the tail
        {{1, 2, 10, 20, 30, 40, 7, 8}, 2, 2, 6, {1, 2, 5, 10, 2, -7, -7, -7, -7, 7, 8}, 9},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.time);
        std::int32_t begin = r.begin, end = r.end;
        EXPECT_EQ(samplesOf(*BlockFilter(makeWave(r.in).get(), c, r.time, begin, end)), r.want);
        EXPECT_EQ(begin, r.begin);
        EXPECT_EQ(end, r.newEnd);
    }
}

TEST(BlockFilter, EnvelopeFormLengthAndShortBlocks) {
    CancelFlag c{0};
    std::int32_t begin = 0, end = 8;
    // maximal time 2: m = 3, six samples longer, reading from begin + 3. An envelope of 0
    // gives blocks of width 0, so every output is the sample at the read position, halved.
    EXPECT_EQ(samplesOf(*BlockFilterEnv(makeWave({10, 20, 30, 40, 50, 60, 70, 80}).get(), c, 2,
                                      makeWave({0}).get(), begin, end)),
              (Ints{20, 25, 30, 35, 40, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(end, 14);
    // Full envelope: width 2, the running average of the constant form from 3 on.
    end = 7;
    EXPECT_EQ(samplesOf(*BlockFilterEnv(makeWave({0, 0, 0, 10, 20, 30, 40}).get(), c, 2,
                                      makeWave({32767}).get(), begin, end)),
              (Ints{5, 10, 2, -7, -7, -7, -7, -7, -7, -7, -7, -7, -7}));
    EXPECT_EQ(end, 13);
}

// ---- cancel, failure and null arguments ---------------------------------------------------

TEST(Filters, ChunksCancelAndAFlagSetBeforehand) {
    CancelFlag c{0};
    auto in = constantWave(2500, 999);
    {
        ChunkHookScope rec;
        LowPass(in.get(), c, 30, 0.5, 2, 2, 0, -1);
        EXPECT_EQ(rec.chunks, (Chunks{{0, 1000}, {1000, 2000}, {2000, 2500}, {0, 1000},
                                      {1000, 2000}, {2000, 2500}}));
        rec.chunks.clear();
        std::int32_t begin = 0, end = 2500;
        BlockFilter(in.get(), c, 2, begin, end);  // 2503 output samples
        EXPECT_EQ(rec.chunks, (Chunks{{0, 1000}, {1000, 2000}, {2000, 2503}}));
    }
    WavePtr whole = Resonant(in.get(), c, 20, 0.3, 0, -1);
    {
        ChunkHookScope rec(c, 1000);
        WavePtr part = Resonant(in.get(), c, 20, 0.3, 0, -1);
        ASSERT_NE(part, nullptr);
        EXPECT_TRUE(isCancelled(c));
        // the chunk that raised the flag still ran; the next one never started
        EXPECT_EQ(rec.chunks.back(), (std::pair<int, int>{1000, 2000}));
        for (std::int32_t i = 0; i < 2000; ++i) ASSERT_EQ((*part)[i], (*whole)[i]) << i;
        EXPECT_NE((*part)[2000], (*whole)[2000]);
    }
    EXPECT_EQ(Resonant(in.get(), c, 20, 0.3, 0, -1), nullptr);
    EXPECT_EQ(LowPass(in.get(), c, 20, 0.3, 1, 1, 0, -1), nullptr);
    std::int32_t begin = 0, end = -1;
    EXPECT_EQ(BlockFilter(in.get(), c, 2, begin, end), nullptr);
}

TEST(Filters, AllocationFailureAndMissingWavesGiveNoResult) {
    auto in = constantWave(10, 5);
    {
        test::RecordingPlatformScope platform;
        AllocatorScope fail(0);
        CancelFlag c{0};
        EXPECT_EQ(HighPass(in.get(), c, 20, 0.3, 1, 1, 0, -1), nullptr);
        EXPECT_TRUE(isCancelled(c));
        ASSERT_EQ(platform.recorder.messages.size(), 1u);
        EXPECT_EQ(platform.recorder.messages[0].text, kNoMemory);
    }
    CancelFlag c{0};
    Wave empty;
    std::int32_t begin = 0, end = -1;
    EXPECT_EQ(LowPass(nullptr, c, 20, 0.3, 1, 1, 0, -1), nullptr);
    EXPECT_EQ(BlockFilter(nullptr, c, 2, begin, end), nullptr);
    EXPECT_EQ(BlockFilterEnv(in.get(), c, 2, nullptr, begin, end), nullptr);
    EXPECT_EQ(LowPassEnv(in.get(), c, nullptr, 0.3, 1, 1, 44100, 0, -1), nullptr);
    EXPECT_EQ(ResonantEnv(in.get(), c, in.get(), &empty, 44100, 0, -1), nullptr);
    EXPECT_FALSE(isCancelled(c));
}

TEST(FiltersDeathTest, ArgumentChecksNameTheExpression) {
    CancelFlag c{0};
    auto in = constantWave(10, 5);
    std::int32_t begin = 11, end = 10;
    EXPECT_DEATH(LowPass(in.get(), c, 0, 0.5, 1, 1, 0, -1),
                 "Assertion failed: time > 0, unit filter, line");
    EXPECT_DEATH(Resonant(in.get(), c, 0.5, 0.5, 0, -1),
                 "Assertion failed: per >= 1 && factor >= 0 && factor <= 1, unit filter");
    EXPECT_DEATH(BlockFilter(in.get(), c, 2, begin, end),
                 "Assertion failed: begin <= values, unit filter");
}

}  // namespace
}  // namespace orv
