// Generators: hand-worked values, the head/tail frame, end written back, cancel and checks.
#include <gtest/gtest.h>

#include <vector>

#include "core/random15.h"
#include "core/wave.h"

namespace orv {
namespace {

using Samples = std::vector<int>;

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

class Generators : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(createSinus()); }
    CancelFlag c{0};
    Wave empty;
    WavePtr base = makeWave({7, 8, 9, 10});
};

// ---- the common frame ----

TEST_F(Generators, ReplaceTheRangeKeepHeadAndTailAndWriteBackEnd) {
    std::int32_t end = 3;
    EXPECT_EQ(samplesOf(*base->makeLine(c, 0, 4, 5, 1, end)), (Samples{7, 0, 1, 2, 3, 4, 10}));
    EXPECT_EQ(end, 6);
    end = -1;  // to the end of the wave
    EXPECT_EQ(samplesOf(*base->makeLine(c, 0, 2, 3, 2, end)), (Samples{7, 8, 0, 1, 2}));
    EXPECT_EQ(end, 5);
    end = 2;  // an empty range inserts
    EXPECT_EQ(samplesOf(*base->makeSilence(c, 2, 2, end)), (Samples{7, 8, 0, 0, 9, 10}));
    EXPECT_EQ(end, 4);
    end = 2;
    EXPECT_EQ(samplesOf(*base->makeSilence(c, 0, 2, end)), (Samples{7, 8, 9, 10}));
    EXPECT_EQ(end, 2);
    EXPECT_EQ(samplesOf(*base), (Samples{7, 8, 9, 10}));
}

// ---- lines ----

TEST_F(Generators, LineOfOneSampleBecomesTwo) {
    std::int32_t end = 0;
    EXPECT_EQ(samplesOf(*empty.makeLine(c, 100, 200, 1, 0, end)), (Samples{100, 200}));
    EXPECT_EQ(end, 2);
}

TEST_F(Generators, LineTruncatesTowardZero) {
    std::int32_t end = 0;
    EXPECT_EQ(samplesOf(*empty.makeLine(c, 3, -3, 5, 0, end)), (Samples{3, 1, 0, -1, -3}));
    end = 0;
    EXPECT_EQ(samplesOf(*empty.makeLine(c, -32768, 32767, 2, 0, end)), (Samples{-32768, 32767}));
}

TEST_F(Generators, ExpLineStopsOneStepShortOfLast) {
    std::int32_t end = 0;
    EXPECT_EQ(samplesOf(*empty.makeExpLine(c, 100, 400, 2, 0, end)), (Samples{100, 200}));
    end = 0;
    EXPECT_EQ(samplesOf(*empty.makeExpLine(c, 100, 400, 1, 0, end)), (Samples{100, 200}));
    EXPECT_EQ(end, 2);
    end = 0;
    EXPECT_EQ(samplesOf(*empty.makeExpLine(c, -100, -400, 2, 0, end)), (Samples{-100, -200}));
    end = 0;  // ratio 0.016^(1/4)
    EXPECT_EQ(samplesOf(*empty.makeExpLine(c, 1000, 16, 4, 0, end)),
              (Samples{1000, 355, 126, 44}));
}

// ---- noise ----

TEST_F(Generators, NoiseContinuesTheSharedSequence) {
    srand15(4711);
    std::vector<int> r;
    for (int i = 0; i < 2501; ++i) r.push_back(rand15());
    srand15(4711);
    std::int32_t end = 0;
    WavePtr w = empty.makeNoise(c, 1000, 2500, 0, end);
    ASSERT_EQ(w->getValues(), 2500);
    for (int i = 0; i < 2500; ++i) {
        const int expected = (r[std::size_t(i)] - 16384) * 1000 / 16384;
        ASSERT_EQ((*w)[i], expected) << i;
    }
    EXPECT_EQ(rand15(), r[2500]);  // not reseeded, one number per sample
}

TEST_F(Generators, NoiseStaysInsideItsVolume) {
    srand15(1);
    std::int32_t end = 0;
    WavePtr w = empty.makeNoise(c, 32767, 5000, 0, end);
    int lo = 0, hi = 0;
    for (int i = 0; i < 5000; ++i) {
        lo = std::min(lo, int((*w)[i]));
        hi = std::max(hi, int((*w)[i]));
    }
    EXPECT_GE(lo, -32767);
    EXPECT_LE(hi, 32767 * 16383 / 16384);
    EXPECT_LT(lo, -30000);  // and it does reach out to them
    EXPECT_GT(hi, 30000);
    end = 0;
    EXPECT_EQ(samplesOf(*empty.makeNoise(c, 0, 3, 0, end)), (Samples{0, 0, 0}));
}

// ---- block and triangle ----

TEST_F(Generators, BlockFollowsTheMiddle) {
    std::int32_t end = 0;
    EXPECT_EQ(samplesOf(*empty.makeBlockTriangle(c, 1, 2, 4, 0.5, 8, 0, false, 0, end)),
              (Samples{1, 1, 2, 2, 1, 1, 2, 2}));
    end = 0;
    EXPECT_EQ(samplesOf(*empty.makeBlockTriangle(c, 1, 2, 4, 0.5, 4, 0.5, false, 0, end)),
              (Samples{2, 2, 1, 1}));
    end = 0;
    EXPECT_EQ(samplesOf(*empty.makeBlockTriangle(c, 1, 2, 3, 1, 5, 0, false, 0, end)),
              (Samples{1, 1, 1, 1, 1}));
    end = 0;
    EXPECT_EQ(samplesOf(*empty.makeBlockTriangle(c, 1, 2, 3, 0, 5, 0, false, 0, end)),
              (Samples{2, 2, 2, 2, 2}));
}

TEST_F(Generators, TriangleRisesToTheMiddleAndFallsBack) {
    std::int32_t end = 0;
    EXPECT_EQ(samplesOf(*empty.makeBlockTriangle(c, 0, 1000, 4, 0.5, 5, 0, true, 0, end)),
              (Samples{0, 500, 1000, 500, 0}));
    end = 0;  // middle 0: no rise, a fall from the second value
    EXPECT_EQ(samplesOf(*empty.makeBlockTriangle(c, 0, 1000, 4, 0, 5, 0, true, 0, end)),
              (Samples{1000, 750, 500, 250, 1000}));
    end = 0;  // middle 1: a rise only
    EXPECT_EQ(samplesOf(*empty.makeBlockTriangle(c, 0, 1000, 4, 1, 5, 0, true, 0, end)),
              (Samples{0, 250, 500, 750, 0}));
}

TEST_F(Generators, MiddleEnvelopeIsStretchedOverTheLength) {
    // Zero in the envelope is a middle of one half: the same as the fixed form.
    WavePtr half = makeWave({0, 0, 0});
    std::int32_t end1 = 0, end2 = 0;
    EXPECT_EQ(
        samplesOf(*empty.makeBlockTriangleEnv(c, 0, 1000, 4, half.get(), 9, 0, true, 0, end1)),
        samplesOf(*empty.makeBlockTriangle(c, 0, 1000, 4, 0.5, 9, 0, true, 0, end2)));
    EXPECT_EQ(end1, 9);
    // A long period keeps the phase near 0; the middle climbs from just below 0 (second
    // value) to 0.25, 0.5 ... (first value).
    WavePtr rising = makeWave({-32768, 32767});
    std::int32_t end = 0;
    EXPECT_EQ(
        samplesOf(*empty.makeBlockTriangleEnv(c, 1, 2, 1e9, rising.get(), 5, 0, false, 0, end)),
        (Samples{2, 1, 1, 1, 1}));
}

// ---- sine ----

TEST_F(Generators, SineSwingsBetweenLowAndHigh) {
    std::int32_t end = 0;
    EXPECT_EQ(samplesOf(*empty.makeSinus(c, 1000, 0, 4, 2, 0, 0, end)),
              (Samples{500, 999, 500, 0, 500, 999, 500, 0}));
    EXPECT_EQ(end, 8);
    end = 0;
    EXPECT_EQ(samplesOf(*empty.makeSinus(c, 1000, 0, 4, 1, 0.25, 0, end)),
              (Samples{999, 500, 0, 500}));
    end = 0;  // centre trunc(-51.5) = -51; values truncated toward zero
    EXPECT_EQ(samplesOf(*empty.makeSinus(c, -3, -100, 3, 1, 0, 0, end)), (Samples{-51, -8, -92}));
    end = 0;  // count x per below 1: still one sample
    EXPECT_EQ(samplesOf(*empty.makeSinus(c, 1000, 0, 0.5, 1, 0, 0, end)), (Samples{500}));
}

// ---- form ----

TEST_F(Generators, FormRepeatsAStretchOfAnotherWave) {
    WavePtr form = makeWave({0, 10, 20, 30, 40});
    std::int32_t end = 1;
    EXPECT_EQ(samplesOf(*base->makeForm(c, form.get(), 0, 5, 4, 1, 0, 0, end)),
              (Samples{0, 10, 20, 30, 8, 9, 10}));
    EXPECT_EQ(end, 4);
    end = 1;
    EXPECT_EQ(samplesOf(*base->makeForm(c, form.get(), 0, 5, 8, 1, 0, 0, end)),
              (Samples{0, 5, 10, 15, 20, 25, 30, 35, 8, 9, 10}));
    end = 1;  // [1, 4) as the period: index 1 + 2p
    EXPECT_EQ(samplesOf(*base->makeForm(c, form.get(), 1, 4, 4, 1, 0, 0, end)),
              (Samples{10, 15, 20, 25, 8, 9, 10}));
}

TEST_F(Generators, FormWithNegativePeriodRunsBackwards) {
    WavePtr form = makeWave({0, 10, 20, 30, 40});
    std::int32_t end = 1;
    EXPECT_EQ(samplesOf(*base->makeForm(c, form.get(), 0, 5, -4, 1, 0, 0, end)),
              (Samples{0, 30, 20, 10, 8, 9, 10}));
    end = 1;
    EXPECT_EQ(samplesOf(*base->makeForm(c, form.get(), 0, 5, -4, 2, 0.5, 0, end)),
              (Samples{20, 10, 0, 30, 20, 10, 0, 30, 8, 9, 10}));
}

// ---- multi-frequency ----

TEST_F(Generators, MFreqReadsTheSourceAndDecaysVolumes) {
    WavePtr src = makeWave({0, 100, 200, 300, 400});
    const double vol[] = {1}, per[] = {5}, start[] = {0}, fac[] = {1};
    std::int32_t end = 0;
    // Positions wrap into [0, 4): the last source sample is never reached.
    EXPECT_EQ(samplesOf(*empty.makeMFreq(c, 6, src.get(), 1, vol, per, start, fac, 0, end)),
              (Samples{0, 100, 200, 300, 0, 100}));
    const double late[] = {0.9};  // starts at 4.5, past the end: reads 0
    end = 0;
    EXPECT_EQ(samplesOf(*empty.makeMFreq(c, 5, src.get(), 1, vol, per, late, fac, 0, end)),
              (Samples{0, 150, 250, 350, 50}));

    WavePtr flat = makeWave({1000, 1000, 1000});
    const double halve[] = {0.5}, per3[] = {3};
    end = 0;
    EXPECT_EQ(samplesOf(*empty.makeMFreq(c, 4, flat.get(), 1, vol, per3, start, halve, 0, end)),
              (Samples{1000, 500, 250, 125}));
}

TEST_F(Generators, MFreqTruncatesAndWrapsAfterEachTerm) {
    WavePtr three = makeWave({3, 3, 3});
    const double vol[] = {0.5, 0.5, 0.5}, per[] = {3, 3, 3}, start[] = {0, 0, 0},
                 fac[] = {1, 1, 1};
    std::int32_t end = 0;
    // 1.5 -> 1, 2.5 -> 2, 3.5 -> 3 (not 4.5 -> 4 at the end)
    EXPECT_EQ(samplesOf(*empty.makeMFreq(c, 1, three.get(), 3, vol, per, start, fac, 0, end)),
              (Samples{3}));
    WavePtr loud = makeWave({30000, 30000});
    const double one[] = {1, 1};
    end = 0;
    EXPECT_EQ(samplesOf(*empty.makeMFreq(c, 1, loud.get(), 2, one, per, start, fac, 0, end)),
              (Samples{-5536}));
}

TEST_F(Generators, MFreqDefaultsToTheSineTable) {
    const double vol[] = {1}, per[] = {4}, start[] = {0}, fac[] = {1};
    std::int32_t end = 0;
    WavePtr w = empty.makeMFreq(c, 5, nullptr, 1, vol, per, start, fac, 0, end);
    const Wave& s = *sinus;
    // step 9000/4 = 2250; 9000 wraps (modulo 8999) to 1
    EXPECT_EQ(samplesOf(*w), (Samples{s[0], s[2250], s[4500], s[6750], s[1]}));
}

// ---- checks ----

TEST_F(Generators, ChecksNameTheFailedExpressionDeathTest) {
    std::int32_t end = 0;
    EXPECT_DEATH(base->makeLine(c, 1, 2, 0, 0, end), "Assertion failed: length > 1, unit wave");
    EXPECT_DEATH(base->makeExpLine(c, 0, 2, 3, 0, end),
                 "Assertion failed: double\\(begin\\) \\* end > 0, unit wave");
    end = 5;
    EXPECT_DEATH(base->makeLine(c, 1, 2, 3, 0, end), "Assertion failed: endt <= values, unit wave");
    end = 0;
    EXPECT_DEATH(base->makeNoise(c, 1, 3, 1, end), "Assertion failed: begint <= endt, unit wave");
    EXPECT_DEATH(base->makeBlockTriangle(c, 1, 2, 4, 1.5, 3, 0, false, 0, end),
                 "Assertion failed: middle <= 1, unit wave");
    EXPECT_DEATH(base->makeBlockTriangleEnv(c, 1, 2, 4, &empty, 3, 0, false, 0, end),
                 "Assertion failed: middleEnvelope->values > 0, unit wave");
    EXPECT_DEATH(base->makeSinus(c, 1, 2, 4, 1, 1, 0, end),
                 "Assertion failed: startAngle < 1, unit wave");
    EXPECT_DEATH(
        {
            deleteSinus();
            base->makeSinus(c, 1, 2, 4, 1, 0, 0, end);
        },
        "Assertion failed: sinus != NULL, unit wave");
    end = 1;
    EXPECT_DEATH(base->makeForm(c, base.get(), 2, 2, 4, 1, 0, 0, end),
                 "Assertion failed: beginf < endf, unit wave");
    EXPECT_DEATH(base->makeForm(c, base.get(), 0, 2, 0, 1, 0, 0, end),
                 "Assertion failed: per != 0, unit wave");
    end = 0;
    EXPECT_DEATH(base->makeForm(c, base.get(), 0, 2, 4, 1, 0, 0, end),
                 "Assertion failed: begin < end, unit wave");
    const double one[] = {1};
    EXPECT_DEATH(base->makeMFreq(c, 3, nullptr, 0, one, one, one, one, 0, end),
                 "Assertion failed: freqCount > 0, unit wave");
}

}  // namespace
}  // namespace orv
