// Time-scale effects: speed, stretch, length with a speed envelope, rolling in, tempo and
// pitch (plain and crossfaded, with envelopes), and the four periodic echo forms.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "core/wave.h"
#include "support/core_test_helpers.h"

namespace orv {
namespace {

using namespace test;

TEST(Speed, FactorMultipliesTheLengthAndNegativeReverses) {
    auto w = steps(1000, 0, 1);
    CancelFlag c{0};
    std::int32_t end = -1;
    auto r = w->speed(c, 2, 0, end);
    EXPECT_EQ(r->getValues(), 2000);
    EXPECT_EQ(end, 2000);
    EXPECT_EQ((*r)[3], 1);  // 0, 0.5, 1, 1.5 ... truncated
    r = w->speedWhole(c, 0.5);
    EXPECT_EQ(r->getValues(), 500);
    EXPECT_EQ((*r)[7], 14);

    auto v = makeWave({1, 2, 3, 4, 5});
    end = 4;  // reversed: starts with the sample after the range
    EXPECT_EQ(samplesOf(v->speed(c, -1, 1, end)), (Samples{1, 5, 4, 3, 5}));
    EXPECT_EQ(end, 4);
    EXPECT_EQ(v->speed(c, 0.1, 1, E{3})->getValues(), 0);  // head and tail are gone too
}

TEST(Stretch, ForwardsBackwardsAndShorter) {
    CancelFlag c{0};
    std::int32_t end = 4;  // forwards, the last read blends into the sample after the range
    EXPECT_EQ(samplesOf(makeWave({0, 100, 200, 300, 1000})->stretch(c, 8, false, 0, end)),
              (Samples{0, 50, 100, 150, 200, 250, 300, 650, 1000}));
    EXPECT_EQ(end, 8);
    auto w = makeWave({0, 100, 200, 300});
    EXPECT_EQ(samplesOf(w->stretchWhole(c, 8, true)),
              (Samples{0, 150, 300, 250, 200, 150, 100, 50}));
    EXPECT_EQ(samplesOf(w->stretch(c, 3, false, 0, E{-1})), (Samples{0, 133, 266}));  // 4/3
    end = 5;  // backwards, p = 4, 2: indices 5 (just after the range), 3
    EXPECT_EQ(samplesOf(makeWave({7, 0, 100, 200, 300, 9})->stretch(c, 2, true, 1, end)),
              (Samples{7, 9, 200, 9}));
    EXPECT_EQ(end, 3);

    auto big = steps(3000, -1500, 1);
    ChunkHookScope hook(c, 1000);
    auto r = big->stretch(c, 2600, false, 0, E{-1});
    EXPECT_EQ(hook.chunks, (Chunks{{0, 1000}, {1000, 2000}}));
    EXPECT_EQ(r->getValues(), 2600);
}

TEST(LengthSpeedEnv, HandWorked) {
    auto w = makeWave({10, 20, 30, 40});
    auto full = makeWave({32767, 32767});
    CancelFlag c{0};
    std::int32_t end = -1;
    // Plays the range twice; the position moves before each read, so one sample in first.
    EXPECT_EQ(samplesOf(w->lengthSpeedEnv(c, full.get(), 2, 1, 0, 0, end)),
              (Samples{20, 30, 40, 10, 20, 30, 40, 10}));
    EXPECT_EQ(end, 8);
    EXPECT_EQ(samplesOf(w->lengthSpeedEnv(c, full.get(), 2, -1, 0, 0, E{-1})),  // below begin
              (Samples{40, 30, 20, 10, 40, 30, 20, 10}));
    // Envelope [0, 32767] over 4 outputs: speeds 0, 0.25, 0.5, 0.75.
    EXPECT_EQ(samplesOf(w->lengthSpeedEnv(c, makeWave({0, 32767}).get(), 1, 1, 0, 0, E{-1})),
              (Samples{10, 12, 17, 25}));
    // Start at 1 + 4 x 0.5 = 3; reads 4, then 5 wraps to 1.
    end = 5;
    EXPECT_EQ(samplesOf(makeWave({7, 10, 20, 30, 40, 8})
                            ->lengthSpeedEnv(c, makeWave({32767}).get(), 0.5, 1, 0.5, 1, end)),
              (Samples{7, 40, 10, 8}));
    EXPECT_EQ(end, 3);
}

TEST(RollIn, WindsTheRangeIntoALoop) {
    CancelFlag c{0};
    std::int32_t end = -1;  // 1 at 1, 2 at 0, 3 at 1, 4 at 0, 5 at 1
    EXPECT_EQ(samplesOf(makeWave({1, 2, 3, 4, 5})->rollIn(c, 2, 1, 0, end)), (Samples{6, 9}));
    EXPECT_EQ(end, 2);
    end = 4;
    EXPECT_EQ(samplesOf(makeWave({9, 1, 2, 3, 8})->rollIn(c, 2, 1, 1, end)), (Samples{9, 2, 4, 8}));
    EXPECT_EQ(end, 3);
    EXPECT_EQ(samplesOf(makeWave({1, 2})->rollIn(c, 4, 3, 0, E{-1})), (Samples{2, 0, 0, 1}));
    EXPECT_EQ(samplesOf(makeWave({30000, 30000})->rollIn(c, 1, 0, 0, E{-1})), (Samples{-5536}));

    auto w = steps(2500, -1250, 1);
    ChunkHookScope hook;
    auto r = w->rollIn(c, 1500, 700, 0, E{-1});
    // Clearing the loop, then source chunks that stop at the loop's end: 800, 1000, 500, 200.
    EXPECT_EQ(hook.chunks, (Chunks{{0, 1000}, {1000, 1500}, {0, 800}, {800, 1800},
                                   {1800, 2300}, {2300, 2500}}));
    // Input k (value k - 1250) lands on (700 + k) % 1500.
    EXPECT_EQ(r->getValues(), 1500);
    EXPECT_EQ((*r)[0], (800 - 1250) + (2300 - 1250));
    EXPECT_EQ((*r)[700], -1250 + (1500 - 1250));
}

TEST(TempoPitch, BlocksJumpToTheTempoPosition) {
    CancelFlag c{0};
    // Blocks of 2 read at pitch 1; each block restarts at j x 2, wrapped into [0, 8).
    EXPECT_EQ(samplesOf(steps(8, 0, 10)->tempoPitch(c, 2, 0, 1, 1, 2, 0, E{-1})),
              (Samples{0, 10, 40, 50, 0, 10, 40, 50}));
    EXPECT_EQ(samplesOf(steps(6, 0, 100)->tempoPitch(c, 1, 0, 1, 0.5, 3, 0, E{-1})),
              (Samples{0, 50, 100, 300, 350, 400}));
    EXPECT_EQ(samplesOf(makeWave({100, 200, 300, 400})->tempoPitch(c, 1, 0.875, 1, 1, 10, 0,
                                                                   E{-1})),  // from 3.5
              (Samples{200, 0, 0, 0}));
    std::int32_t end = 5;  // 6 samples; the jump to 5 wraps to 1
    EXPECT_EQ(samplesOf(makeWave({5, 0, 10, 20, 30, 6})->tempoPitch(c, 1, 0, 1.5, 1, 4, 1, end)),
              (Samples{5, 0, 10, 20, 30, 0, 10, 6}));
    EXPECT_EQ(end, 7);
}

TEST(TempoPitchCross, TwoHeadsCrossfade) {
    // Samples 100 i + 1. Pitch 2, block 4: offset = 4 x (1 - 2) / 2 = -2, head B starts
    // before the wave (reads 0). A restarts at c = 2, B at c = 4. The first product is cut
    // before the second is added: 201 x 0.5 -> 100, + 1 x 0.5 -> 100 (not 101).
    auto w = steps(8, 1, 100);
    CancelFlag c{0};
    const Samples want{1, 100, 201, 300, 401, 500, 601, 300};
    EXPECT_EQ(samplesOf(w->tempoPitchCross(c, 1, nullptr, 0, 1, 2, nullptr, 4, 0, E{-1})), want);
    auto full = makeWave({32767});  // envelopes of full value reproduce the constants
    EXPECT_EQ(samplesOf(w->tempoPitchCross(c, 1, full.get(), 0, 1, 2, full.get(), 4, 0, E{-1})),
              want);
    // A speed envelope of 0 keeps restarting both heads at cycle(-2) = 6.
    EXPECT_EQ(samplesOf(w->tempoPitchCross(c, 1, makeWave({0, 0}).get(), 0, 1, 2, nullptr, 4, 0,
                                           E{-1})), (Samples{1, 100, 201, 200, 0, 0, 0, 0}));
    // Pitch envelope [0, 32767] x 4 over 5 outputs: head A at 0, 0, 1, 3, 6; block 64 puts B
    // past the wave, A's weight is 1 - c/32: 100 x 0.9375, 300 x 0.90625, 600 x 0.875.
    std::int32_t end = -1;
    EXPECT_EQ(samplesOf(steps(8, 0, 100)->tempoPitchCross(c, 1, nullptr, 0, 0.625, 4,
                                                          makeWave({0, 32767}).get(), 64, 0, end)),
              (Samples{0, 0, 93, 271, 525}));
    EXPECT_EQ(end, 5);
}

TEST(PerEcho, GrowsOnTheSideWhereTheEchoesFall) {
    struct Row {
        Samples in;
        double diff, vol;
        int count, begin, end;
        Samples want;
        int newBegin, newEnd;
    };
    const Row rows[] = {
        // stretch 1 .. 3 + 2, one zero behind; echo at half volume one later
        {{10, 20, 30, 40}, 1, 0.5, 1, 1, 3, {10, 20, 40, 55, 0}, 1, 5},
        // newBegin = 1 + trunc(-2) = -1: one zero in front, everything moves up by one
        {{10, 20, 30, 40}, -1, 0.5, 1, 1, 3, {0, 20, 35, 30, 40}, 0, 4},
        {{100, 50}, 1, 0.5, 2, 0, -1, {100, 100, 50, 12, 0, 0}, 0, 6},  // 0.5, then 0.25
        {{30000, 30000}, 0, 1, 1, 0, -1, {-5536, -5536}, 0, 2},
        // reads at p - 0.5 over [20, 30] only: 10, 25, 15
        {{10, 20, 30, 40}, 0.5, 1, 1, 1, 3, {10, 30, 55, 55}, 1, 4},
    };
    CancelFlag c{0};
    for (const Row& r : rows) {
        SCOPED_TRACE(r.diff);
        std::int32_t begin = r.begin, end = r.end;
        EXPECT_EQ(samplesOf(makeWave(r.in)->perEcho(c, r.diff, r.vol, r.count, begin, end)),
                  r.want);
        EXPECT_EQ(begin, r.newBegin);
        EXPECT_EQ(end, r.newEnd);
    }
}

TEST(PerEcho, EnvelopeForms) {
    auto w = makeWave({10, 20, 30, 40});
    auto full = makeWave({32767});
    CancelFlag c{0};
    std::int32_t begin = 1, end = 3;
    // span = trunc(1.5) = 1: the stretch is 0 .. 4; delay -0.5.
    EXPECT_EQ(samplesOf(w->perEchoEnv(c, 0.5, full.get(), full.get(), 1, begin, end)),
              (Samples{10, 30, 55, 55}));
    EXPECT_EQ(std::pair(begin, end), std::pair(0, 4));
    // A negative echo time puts the echo before the sound: stretch -2 .. 4.
    auto x = makeWave({10, 20, 30});
    begin = 0, end = 2;
    EXPECT_EQ(samplesOf(x->perEchoEnv(c, 1, makeWave({-32767}).get(), full.get(), 1, begin, end)),
              (Samples{0, 10, 30, 20, 30, 0}));
    EXPECT_EQ(std::pair(begin, end), std::pair(0, 6));
    // Volume envelope over the grown stretch -1 .. 3: 2/3 x 100 -> 66; 100 + 200/3 -> 166.
    begin = 1, end = 3;
    EXPECT_EQ(samplesOf(makeWave({0, 100, 200, 0})
                            ->perEchoVolumeEnv(c, -1, makeWave({32767, 0}).get(), 1, begin, end)),
              (Samples{0, 66, 166, 200, 0}));
    EXPECT_EQ(std::pair(begin, end), std::pair(0, 4));
    begin = 0, end = 2;
    EXPECT_EQ(samplesOf(x->perEchoTimeEnv(c, 1, full.get(), 0.5, 1, begin, end)),
              (Samples{0, 0, 10, 25, 40, 0}));
    EXPECT_EQ(std::pair(begin, end), std::pair(0, 6));
}

TEST(PerEcho, CancelDuringAnEchoHandsBackThePartialWave) {
    auto w = steps(3000, -1500, 1);
    CancelFlag c{0};
    ChunkHookScope hook(c, 1005);  // only the echo loop starts a chunk here
    std::int32_t begin = 5, end = -1;
    auto r = w->perEcho(c, 10, 0.5, 3, begin, end);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->getValues(), 3033);
    EXPECT_EQ(hook.chunks.back(), std::make_pair(1005, 2005));
    // The first echo got as far as 2005; the echo of sample k lands on k + 10.
    EXPECT_EQ((*r)[2004], 504 + 247);
    EXPECT_EQ((*r)[2005], 505);
    EXPECT_EQ(end, 3033);
}

TEST(TimeScaleDeathTest, ChecksNameTheExpression) {
    auto w = steps(8, 0, 1);
    auto env = makeWave({32767});
    Wave empty;
    CancelFlag c{0};
    EXPECT_DEATH(w->lengthSpeedEnv(c, env.get(), 0.1, 1, 0, 0, E{-1}),
                 "Assertion failed: startpos < length, unit wave");
    EXPECT_DEATH(w->tempoPitchCross(c, 1, &empty, 0, 1, 1, nullptr, 2, 0, E{-1}),
                 "Assertion failed: speedEnvelop->values > 0, unit wave");
    std::int32_t begin = 1, end = 2;
    EXPECT_DEATH(w->perEcho(c, 1, 1, 1, begin, end),
                 "Assertion failed: begin < end - 1, unit wave");
}

}  // namespace
}  // namespace orv
