#include "core/filter_passes.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/core_test_helpers.h"

namespace orv {
namespace {

using namespace test;
using Vals = Samples;

struct Call {
    int countBer, countCmd;
    const Wave* envelope;
    double time;
};
std::vector<Call> gCalls;
int gCancelAtCall = -1;  // raise the flag during this call (1 = the first)

// Stand-in filter that is easy to follow: adds 1000 to every sample of the range.
WavePtr addThousand(const Wave* w, CancelFlag& cancel, std::int32_t begin, std::int32_t end) {
    if (int(gCalls.size()) == gCancelAtCall) setCancelled(cancel);
    WavePtr r = copyWave(cancel, w);
    if (!r) return nullptr;
    if (end == -1) end = w->getValues();
    for (std::int32_t i = begin; i < end; ++i) (*r)[i] = WaveVal((*r)[i] + 1000);
    return r;
}

WavePtr fake(const Wave* w, CancelFlag& cancel, double time, double, int countBer, int countCmd,
             std::int32_t begin, std::int32_t end) {
    gCalls.push_back({countBer, countCmd, nullptr, time});
    return addThousand(w, cancel, begin, end);
}

WavePtr fakeEnv(const Wave* w, CancelFlag& cancel, const Wave* env, double, int countBer,
                int countCmd, double, std::int32_t begin, std::int32_t end) {
    gCalls.push_back({countBer, countCmd, env, 0});
    return addThousand(w, cancel, begin, end);
}

class FilterPassesTest : public ::testing::Test {
protected:
    void SetUp() override {
        gCalls.clear();
        gCancelAtCall = -1;
    }
    CancelFlag cancel{0};
    CancelFlag* c = &cancel;
};

TEST_F(FilterPassesTest, WithoutMaximizeTheFilterMakesAllPassesItself) {
    StereoSound s(makeWave({1000, -2000}), makeWave({1, 2}), 1000);
    HighLowFilter f;
    f.filter = fake;
    f.seconds = 0.0025;
    auto r = FilterHighLow(c, s, f, 3, false, 0, -1);
    ASSERT_NE(r, nullptr);
    ASSERT_EQ(gCalls.size(), 2u);  // one call per channel
    EXPECT_EQ(std::pair(gCalls[0].countBer, gCalls[1].countCmd), std::pair(3, 3));
    EXPECT_EQ(gCalls[0].time, 2.5);
    EXPECT_EQ(samplesOf(r->GetLeftWave()), (Vals{2000, -1000}));
    EXPECT_EQ(samplesOf(r->GetRightWave()), (Vals{1001, 1002}));
}

TEST_F(FilterPassesTest, MaximizeSoftlyBeforeAndAfterEveryPass) {
    MonoSound m(makeWave({1000, -2000}), 1000);
    HighLowFilter f;
    f.filter = fake;
    auto r = FilterHighLow(c, m, f, 3, true, 0, -1);
    ASSERT_NE(r, nullptr);
    ASSERT_EQ(gCalls.size(), 3u);
    for (const Call& call : gCalls) {
        EXPECT_EQ(call.countBer, 3);  // the coefficient is still spread over all passes
        EXPECT_EQ(call.countCmd, 1);
    }
    // 11468/-22936 after the first maximise; then +1000 and back to a peak of 22936 each
    // time: 13036, 14676, 16391.
    EXPECT_EQ(samplesOf(r->GetLeftWave()), (Vals{16391, -22936}));
    EXPECT_EQ(samplesOf(m.WaveMiddle), (Vals{1000, -2000}));  // the sound itself is untouched
    // A range: only sample 0 is maximised and filtered, 22936 + 1000, then back to 22936.
    MonoSound three(makeWave({1000, -2000, 7}), 1000);
    EXPECT_EQ(samplesOf(FilterHighLow(c, three, f, 1, true, 0, 1)->GetLeftWave()),
              (Vals{22936, -2000, 7}));
}

TEST_F(FilterPassesTest, EnvelopeFormWithOnePass) {
    MonoSound env(makeWave({0, 0}), 1000);
    StereoSound s(makeWave({100, 0}), makeWave({0, -50}), 1000);
    HighLowFilter f;
    f.filterEnv = fakeEnv;
    f.envelope = &env;
    auto r = FilterHighLow(c, s, f, 1, true, 0, -1);
    ASSERT_NE(r, nullptr);
    ASSERT_EQ(gCalls.size(), 2u);
    EXPECT_EQ(gCalls[0].envelope, env.WaveMiddle);
    EXPECT_EQ(gCalls[1].countBer, 1);
    // Both channels share the louder channel's factor: 22936.9 / 100 first, then
    // 22936.9 / 23936 after the filter.
    EXPECT_EQ(samplesOf(r->GetLeftWave()), (Vals{22936, 958}));
    EXPECT_EQ(samplesOf(r->GetRightWave()), (Vals{958, -10031}));
}

TEST_F(FilterPassesTest, CancelDuringAPassGivesNoSound) {
    MonoSound m(makeWave({1000, -2000}), 1000);
    HighLowFilter f;
    f.filter = fake;
    gCancelAtCall = 2;  // during the second pass
    EXPECT_EQ(FilterHighLow(c, m, f, 3, true, 0, -1), nullptr);
    EXPECT_EQ(gCalls.size(), 2u);
    EXPECT_EQ(samplesOf(m.WaveMiddle), (Vals{1000, -2000}));
}

}  // namespace
}  // namespace orv
