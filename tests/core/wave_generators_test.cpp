// Generators: hand-worked values, the head/tail frame, end written back, and checks.
#include <gtest/gtest.h>

#include <vector>

#include "core/random15.h"
#include "core/wave.h"
#include "support/core_test_helpers.h"

namespace orv {
namespace {

using namespace test;

class Generators : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(createSinus()); }
    CancelFlag c{0};
    Wave empty;
    WavePtr base = makeWave({7, 8, 9, 10});
};

TEST_F(Generators, ReplaceTheRangeKeepHeadAndTailAndWriteBackEnd) {
    std::int32_t end = 3;
    EXPECT_EQ(samplesOf(base->makeLine(c, 0, 4, 5, 1, end)), (Samples{7, 0, 1, 2, 3, 4, 10}));
    EXPECT_EQ(end, 6);
    end = -1;  // to the end of the wave
    EXPECT_EQ(samplesOf(base->makeLine(c, 0, 2, 3, 2, end)), (Samples{7, 8, 0, 1, 2}));
    EXPECT_EQ(end, 5);
    end = 2;  // an empty range inserts
    EXPECT_EQ(samplesOf(base->makeSilence(c, 2, 2, end)), (Samples{7, 8, 0, 0, 9, 10}));
    EXPECT_EQ(end, 4);
    end = 0;  // a line of length 1 becomes two samples
    EXPECT_EQ(samplesOf(empty.makeLine(c, 100, 200, 1, 0, end)), (Samples{100, 200}));
    EXPECT_EQ(end, 2);
}

TEST_F(Generators, LinesTruncateTowardZero) {
    EXPECT_EQ(samplesOf(empty.makeLine(c, 3, -3, 5, 0, E{0})), (Samples{3, 1, 0, -1, -3}));
    EXPECT_EQ(samplesOf(empty.makeLine(c, -32768, 32767, 2, 0, E{0})), (Samples{-32768, 32767}));
    // The exponential line stops one step short of the last value.
    EXPECT_EQ(samplesOf(empty.makeExpLine(c, 100, 400, 2, 0, E{0})), (Samples{100, 200}));
    EXPECT_EQ(samplesOf(empty.makeExpLine(c, 100, 400, 1, 0, E{0})), (Samples{100, 200}));
    EXPECT_EQ(samplesOf(empty.makeExpLine(c, -100, -400, 2, 0, E{0})), (Samples{-100, -200}));
    EXPECT_EQ(samplesOf(empty.makeExpLine(c, 1000, 16, 4, 0, E{0})),  // ratio 0.016^(1/4)
              (Samples{1000, 355, 126, 44}));
}

TEST_F(Generators, NoiseContinuesTheSharedSequenceWithinItsVolume) {
    srand15(4711);
    std::vector<int> r;
    for (int i = 0; i < 2501; ++i) r.push_back(rand15());
    srand15(4711);
    WavePtr w = empty.makeNoise(c, 1000, 2500, 0, E{0});
    ASSERT_EQ(w->getValues(), 2500);
    for (int i : {0, 1, 999, 1000, 2499})  // (r - 16384) x volume / 16384, toward zero
        EXPECT_EQ((*w)[i], (r[std::size_t(i)] - 16384) * 1000 / 16384) << i;
    EXPECT_EQ(rand15(), r[2500]);  // not reseeded, one number per sample
    srand15(1);  // draws 16838, 5758, 10113
    EXPECT_EQ(samplesOf(empty.makeNoise(c, 32767, 3, 0, E{0})), (Samples{907, -21251, -12541}));
    EXPECT_EQ(samplesOf(empty.makeNoise(c, 0, 3, 0, E{0})), (Samples{0, 0, 0}));
}

TEST_F(Generators, BlockAndTriangleFollowTheMiddle) {
    struct Row {
        int first, second;
        double per, middle;
        int len;
        double start;
        bool triangle;
        Samples want;
    };
    const Row rows[] = {
        {1, 2, 4, 0.5, 8, 0, false, {1, 1, 2, 2, 1, 1, 2, 2}},
        {1, 2, 4, 0.5, 4, 0.5, false, {2, 2, 1, 1}},
        {1, 2, 3, 1, 5, 0, false, {1, 1, 1, 1, 1}},
        {1, 2, 3, 0, 5, 0, false, {2, 2, 2, 2, 2}},
        {0, 1000, 4, 0.5, 5, 0, true, {0, 500, 1000, 500, 0}},
        {0, 1000, 4, 0, 5, 0, true, {1000, 750, 500, 250, 1000}},  // a fall only
        {0, 1000, 4, 1, 5, 0, true, {0, 250, 500, 750, 0}},        // a rise only
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(testing::Message() << r.middle << " " << r.start << " " << r.triangle);
        EXPECT_EQ(samplesOf(empty.makeBlockTriangle(c, r.first, r.second, r.per, r.middle,
                                                     r.len, r.start, r.triangle, 0, E{0})),
                  r.want);
    }
    // An enveloped middle of 0 is a middle of one half; a rising envelope moves it from just
    // below 0 (second value) to above (first value).
    EXPECT_EQ(samplesOf(empty.makeBlockTriangleEnv(c, 0, 1000, 4, makeWave({0, 0, 0}).get(), 9,
                                                   0, true, 0, E{0})),
              (Samples{0, 500, 1000, 500, 0, 500, 1000, 500, 0}));
    EXPECT_EQ(samplesOf(empty.makeBlockTriangleEnv(c, 1, 2, 1e9, makeWave({-32768, 32767}).get(),
                                                   5, 0, false, 0, E{0})),
              (Samples{2, 1, 1, 1, 1}));
}

TEST_F(Generators, SineSwingsBetweenLowAndHigh) {
    std::int32_t end = 0;
    EXPECT_EQ(samplesOf(empty.makeSinus(c, 1000, 0, 4, 2, 0, 0, end)),
              (Samples{500, 999, 500, 0, 500, 999, 500, 0}));
    EXPECT_EQ(end, 8);
    EXPECT_EQ(samplesOf(empty.makeSinus(c, 1000, 0, 4, 1, 0.25, 0, E{0})),
              (Samples{999, 500, 0, 500}));
    // centre trunc(-51.5) = -51; values truncated toward zero
    EXPECT_EQ(samplesOf(empty.makeSinus(c, -3, -100, 3, 1, 0, 0, E{0})), (Samples{-51, -8, -92}));
    // count x per below 1: still one sample
    EXPECT_EQ(samplesOf(empty.makeSinus(c, 1000, 0, 0.5, 1, 0, 0, E{0})), (Samples{500}));
}

TEST_F(Generators, FormRepeatsAStretchOfAnotherWaveEitherWay) {
    WavePtr form = makeWave({0, 10, 20, 30, 40});
    std::int32_t end = 1;
    EXPECT_EQ(samplesOf(base->makeForm(c, form.get(), 0, 5, 4, 1, 0, 0, end)),
              (Samples{0, 10, 20, 30, 8, 9, 10}));
    EXPECT_EQ(end, 4);
    EXPECT_EQ(samplesOf(base->makeForm(c, form.get(), 0, 5, 8, 1, 0, 0, E{1})),
              (Samples{0, 5, 10, 15, 20, 25, 30, 35, 8, 9, 10}));
    EXPECT_EQ(samplesOf(base->makeForm(c, form.get(), 1, 4, 4, 1, 0, 0, E{1})),  // 1 + 2p
              (Samples{10, 15, 20, 25, 8, 9, 10}));
    // a negative period runs from the end towards the start
    EXPECT_EQ(samplesOf(base->makeForm(c, form.get(), 0, 5, -4, 1, 0, 0, E{1})),
              (Samples{0, 30, 20, 10, 8, 9, 10}));
    EXPECT_EQ(samplesOf(base->makeForm(c, form.get(), 0, 5, -4, 2, 0.5, 0, E{1})),
              (Samples{20, 10, 0, 30, 20, 10, 0, 30, 8, 9, 10}));
}

TEST_F(Generators, MFreqReadsTheSourceDecaysAndWrapsAfterEachTerm) {
    WavePtr src = makeWave({0, 100, 200, 300, 400});
    const double vol[] = {1}, per[] = {5}, start[] = {0}, fac[] = {1};
    // Positions wrap into [0, 4): the last source sample is never reached.
    EXPECT_EQ(samplesOf(empty.makeMFreq(c, 6, src.get(), 1, vol, per, start, fac, 0, E{0})),
              (Samples{0, 100, 200, 300, 0, 100}));
    const double late[] = {0.9};  // starts at 4.5, past the end: reads 0
    EXPECT_EQ(samplesOf(empty.makeMFreq(c, 5, src.get(), 1, vol, per, late, fac, 0, E{0})),
              (Samples{0, 150, 250, 350, 50}));
    const double halve[] = {0.5}, per3[] = {3, 3, 3};
    EXPECT_EQ(samplesOf(empty.makeMFreq(c, 4, makeWave({1000, 1000, 1000}).get(), 1, vol, per3,
                                        start, halve, 0, E{0})),
              (Samples{1000, 500, 250, 125}));

    // 1.5 -> 1, 2.5 -> 2, 3.5 -> 3 (not 4.5 -> 4 at the end); 30000 + 30000 wraps.
    const double h3[] = {0.5, 0.5, 0.5}, z3[] = {0, 0, 0}, one3[] = {1, 1, 1};
    EXPECT_EQ(samplesOf(empty.makeMFreq(c, 1, makeWave({3, 3, 3}).get(), 3, h3, per3, z3, one3,
                                        0, E{0})),
              (Samples{3}));
    EXPECT_EQ(samplesOf(empty.makeMFreq(c, 1, makeWave({30000, 30000}).get(), 2, one3, per3, z3,
                                        one3, 0, E{0})),
              (Samples{-5536}));

    // Without a source the sine table: step 9000/4 = 2250; 9000 wraps (modulo 8999) to 1.
    const double per4[] = {4};
    const Wave& s = *sinus;
    EXPECT_EQ(samplesOf(empty.makeMFreq(c, 5, nullptr, 1, vol, per4, start, fac, 0, E{0})),
              (Samples{s[0], s[2250], s[4500], s[6750], s[1]}));
}

TEST_F(Generators, ChecksNameTheFailedExpressionDeathTest) {
    EXPECT_DEATH(base->makeLine(c, 1, 2, 0, 0, E{0}), "Assertion failed: length > 1, unit wave");
    EXPECT_DEATH(base->makeExpLine(c, 0, 2, 3, 0, E{0}),
                 "Assertion failed: double\\(begin\\) \\* end > 0, unit wave");
    EXPECT_DEATH(base->makeLine(c, 1, 2, 3, 0, E{5}), "Assertion failed: endt <= values, unit wave");
    EXPECT_DEATH(base->makeForm(c, base.get(), 0, 2, 0, 1, 0, 0, E{1}),
                 "Assertion failed: per != 0, unit wave");
}

}  // namespace
}  // namespace orv
