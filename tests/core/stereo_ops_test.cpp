#include "core/stereo_ops.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/filter.h"
#include "core/sound.h"
#include "support/core_test_helpers.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

using namespace test;
using Vals = Samples;

using StereoOpsTest = CancelTest;

// ---- balance by level ---------------------------------------------------------------------

TEST_F(StereoOpsTest, BalanceByLevel) {
    auto r = mono({1000, -2000, 3}, 8000)->Balance(c, 0.0, false, true, false);
    EXPECT_EQ(std::pair(int(r->MoSt), r->Freq), std::pair(2, 8000));
    // The centre: half level on both sides; then fully right, and a quarter to the left.
    const struct { double direction; Vals left, right; } rows[] = {
        {0.0, {500, -1000, 1}, {500, -1000, 1}},
        {1.0, {0, 0, 0}, {1000, -2000, 3}},
        {-0.5, {750, -1500, 2}, {250, -500, 0}},
    };
    for (const auto& row : rows) {
        r = mono({1000, -2000, 3})->Balance(c, row.direction, false, true, false);
        EXPECT_EQ(left(r), row.left) << row.direction;
        EXPECT_EQ(right(r), row.right) << row.direction;
    }
    // Without options both channels are copies of the first wave (the left of a stereo one).
    r = stereo({1, 2}, {9, 9})->Balance(c, 0.7, false, false, false);
    EXPECT_EQ(right(r), (Vals{1, 2}));
}

// ---- balance by time -------------------------------------------------------------------------

TEST_F(StereoOpsTest, DelaysUseTheStoredHalfTurnNotPi) {
    // 34000 x 1/3400 x 2: twenty samples at most.
    EXPECT_NEAR(balanceMaxDelay(34000), 20.0, 1e-12);
    // With pi the full delay would be the whole 20 (a hair above it); 3.1415293 stays below.
    EXPECT_LT(balanceDelay(34000, 1.0), 20.0);
    EXPECT_GT(balanceDelay(34000, 1.0), 19.9999999);
    EXPECT_EQ(balanceDelay(34000, -0.5), -balanceDelay(34000, 0.5));
}

TEST_F(StereoOpsTest, TheLeadingChannelKeepsItsLevel) {
    // b = 0.5 at 34000 Hz: the left channel lags 14.14 samples at level 0.25, the right one
    // leads and keeps full level, followed by trunc(14.14 + 1) = 15 samples of silence.
    const Vals flat(30, 1000);
    auto r = mono(flat, 34000)->Balance(c, 0.5, true, true, false);
    Vals expectRight = flat;
    expectRight.resize(45, 0);
    EXPECT_EQ(right(r), expectRight);
    Vals expectLeft(45, 0);
    for (int j = 15; j <= 43; ++j) expectLeft[std::size_t(j)] = 250;
    EXPECT_EQ(left(r), expectLeft);
}

TEST_F(StereoOpsTest, TheLaggingChannelIsReadBetweenSamples) {
    // b = 1: left lags 19.99999999 samples, so output 20 reads a hair past input 0.
    auto r = mono({0, 10000, 0}, 34000)->Balance(c, 1.0, true, false, false);
    const Vals l = left(r);
    ASSERT_EQ(l.size(), 23u);
    EXPECT_EQ(l[20], 0);      // 1e-8 x 10000 truncates to 0
    EXPECT_EQ(l[21], 9999);   // just short of input 1
    EXPECT_EQ(l[22], 0);      // input 2 and the end
    Vals leading(23, 0);  // unshifted, then trunc(19.99999999 + 1) = 20 samples of silence
    leading[1] = 10000;
    EXPECT_EQ(right(r), leading);
}

// ---- balance by filter -----------------------------------------------------------------------

TEST_F(StereoOpsTest, FilterCurveUsesWholeSamplePeriods) {
    auto curve = balanceFilterCurve(cancel, 44100);
    ASSERT_EQ(curve->getValues(), 150);
    EXPECT_EQ((*curve)[0], 32767);     // period 2: 22050 Hz, above the top: clamped
    EXPECT_EQ((*curve)[59], 16694);    // period 12: 3675 Hz
    EXPECT_EQ((*curve)[90], 4367);     // period 44: 1002 Hz
    EXPECT_EQ((*curve)[149], -5613);   // period 126: 350 Hz
    EXPECT_EQ((*curve)[30], 24594);    // on the line from index 0 to 59
    // Below 20000 Hz of sample frequency the period of 20 kHz is 0: the top code.
    auto low = balanceFilterCurve(cancel, 11025);
    EXPECT_EQ((*low)[0], 32767);
    EXPECT_DOUBLE_EQ(balanceFilterPeriod(*curve, 44100, -1.0), 2.205);  // 20 kHz
    EXPECT_NEAR(balanceFilterPeriod(*curve, 44100, 1.0), 125.98892635068, 1e-9);
}

TEST_F(StereoOpsTest, FilterOptionLowPassesEachSideAndLogs) {
    test::RecordingPlatformScope rec;
    Vals v;
    for (int i = 0; i < 50; ++i) v.push_back(i % 2 ? 12000 : -12000);
    auto src = makeWave(v);
    auto r = mono(v, 44100)->Balance(c, -1.0, false, false, true);
    auto curve = balanceFilterCurve(cancel, 44100);
    auto near = LowPass(src.get(), cancel, balanceFilterPeriod(*curve, 44100, -1.0), 0.4, 1, 1,
                        0, -1);
    auto far = LowPass(src.get(), cancel, balanceFilterPeriod(*curve, 44100, 1.0), 0.4, 1, 1, 0,
                       -1);
    EXPECT_EQ(left(r), samplesOf(near.get()));
    EXPECT_EQ(right(r), samplesOf(far.get()));
    EXPECT_EQ(rec.recorder.traces,
              (std::vector<std::string>{"in Wave::balFilter val\n", "uit Wave::balFilter val\n",
                                        "in Wave::balFilter val\n", "uit Wave::balFilter val\n"}));
}

// ---- balance with an envelope -----------------------------------------------------------------

TEST_F(StereoOpsTest, EnvelopeLevels) {
    auto src = mono({1000, 1000});
    // e = 0: level 16383 on both sides; e = 32767: left -0.5 (cut to 0), right 32766;
    // e = -32768: left 32767, right -1 (cut to 0). A stereo envelope is read as its left.
    SoundPtr envs[] = {mono({0, 0}), mono({32767, 32767}), mono({-32768, -32768}),
                       stereo({0, 0}, {32767, 32767})};
    const Vals want[] = {{499, 499}, {0, 999}, {1000, 0}, {499, 499}};
    for (int i = 0; i < 4; ++i) {
        const Vals& lr = want[i];
        auto r = src->BalanceEnv(c, envs[i].get(), false, true, false);
        EXPECT_EQ(left(r), Vals(2, lr[0]));
        EXPECT_EQ(right(r), Vals(2, lr[1]));
    }
    EXPECT_DEATH(src->BalanceEnv(c, mono({}).get(), false, true, false),
                 "Assertion failed: GetValues\\(\\) != 0, unit sound");
}

// At the centre both channels are one sample longer; with an envelope there is room for the
// largest delay, trunc(20 + 1) samples.
TEST_F(StereoOpsTest, TimeDifferenceMakesRoomForTheDelay) {
    auto r = mono({1000, -2000, 3}, 34000)->Balance(c, 0.0, true, false, false);
    EXPECT_EQ(left(r), (Vals{1000, -2000, 3, 0}));
    EXPECT_EQ(right(r), (Vals{1000, -2000, 3, 0}));
    r = mono({1000, -2000, 3}, 34000)->BalanceEnv(c, mono({0}).get(), true, false, false);
    Vals expect{1000, -2000, 3};
    expect.resize(3 + 21, 0);
    EXPECT_EQ(left(r), expect);
    EXPECT_EQ(right(r), expect);
}

TEST_F(StereoOpsTest, EnvelopeFilterMatchesTheConstantFormAtTheEnds) {
    Vals v;
    for (int i = 0; i < 40; ++i) v.push_back(i % 2 ? 10000 : -10000);
    auto src = mono(v, 44100);
    auto constant = src->Balance(c, 1.0, false, false, true);
    auto env = src->BalanceEnv(c, mono({32767, 32767}).get(), false, false, true);
    // The envelope form recomputes its coefficient per sample: allow the last bit.
    const Vals le = left(env), lc = left(constant), re = right(env), rc = right(constant);
    ASSERT_EQ(le.size(), lc.size());
    for (std::size_t i = 0; i < le.size(); ++i) {
        ASSERT_NEAR(le[i], lc[i], 1) << i;
        ASSERT_NEAR(re[i], rc[i], 1) << i;
    }
    EXPECT_NE(le, re);
}

// ---- the left/right matrix ------------------------------------------------------------------

TEST_F(StereoOpsTest, ExamplesAppliedToOneSample) {
    // Left 1000, right 200 through each example, in the order of the list.
    const std::vector<std::pair<std::string, Vals>> expected{
        {"Normal", {1000, 200}},        {"Swapped", {200, 1000}},
        {"Extra Stereo", {700, -100}},  {"Super Stereo", {450, -150}},
        {"Surround", {400, -400}},      {"Mono", {600, 600}},
        {"Mono at Left, Surround at Right", {480, -640}},
        {"Mono at Right, Surround at Left", {640, 480}},
    };
    ASSERT_EQ(kMixLeftRightExamples.size(), expected.size());
    auto st = stereo({1000}, {200});
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto& ex = kMixLeftRightExamples[i];
        EXPECT_EQ(ex.name, expected[i].first);
        std::int32_t end = -1;
        auto r = static_cast<StereoSound&>(*st).MixLeftRight(c, ex.LL, ex.LR, ex.RL, ex.RR, 0, end);
        ASSERT_NE(r, nullptr);
        EXPECT_EQ((Vals{left(r)[0], right(r)[0]}), expected[i].second) << ex.name;
    }
}

TEST_F(StereoOpsTest, MatrixWorksOnTheRangeOnlyAndWraps) {
    StereoSound st(makeWave({1, 2, 3}), makeWave({4, 5, 6}), 1000);
    std::int32_t end = 2;
    auto swapped = st.MixLeftRight(c, 0, 1, 1, 0, 1, end);
    EXPECT_EQ(samplesOf(swapped->GetLeftWave()), (Vals{1, 5, 3}));
    EXPECT_EQ(samplesOf(swapped->GetRightWave()), (Vals{4, 2, 6}));
    EXPECT_EQ(end, 2);

    StereoSound loud(makeWave({30000, 1001}), makeWave({30000, 2}), 1000);
    end = -1;
    auto sum = loud.MixLeftRight(c, 1, 1, 1, 1, 0, end);
    EXPECT_EQ(left(sum), (Vals{-5536, 1003}));
    EXPECT_EQ(right(sum), (Vals{-5536, 1003}));
}

// ---- split and merge -----------------------------------------------------------------------

TEST_F(StereoOpsTest, SplitAndMergeRoundTrip) {
    auto st = stereo({1, 2}, {3, 4}, 8000);
    auto [l, r] = SplitToMono(c, *st);
    ASSERT_TRUE(l && r);
    EXPECT_EQ(std::pair(int(l->MoSt), r->Freq), std::pair(1, 8000));
    EXPECT_EQ(left(r), (Vals{3, 4}));
    auto back = MergeToStereo(c, *l, *r);
    EXPECT_EQ(left(back), (Vals{1, 2}));
    EXPECT_EQ(right(back), (Vals{3, 4}));
    // Merging takes each sound's mono wave and the first one's frequency.
    auto m = MergeToStereo(c, *mono({1, 2}, 8000), *stereo({3, 4}, {5, 6}, 4000));
    EXPECT_EQ(m->Freq, 8000);
    EXPECT_EQ(right(m), (Vals{3, 4}));
    EXPECT_DEATH(MergeToStereo(c, *l, *mono({1})),
                 "Assertion failed: waveLeft->getValues\\(\\) == waveRight->getValues\\(\\), "
                 "unit sound");
    cancel = 1;
    EXPECT_EQ(mono({1, 2})->Balance(c, 0.0, true, true, false), nullptr);
    EXPECT_EQ(SplitToMono(c, *st).first, nullptr);
}

}  // namespace
}  // namespace orv
