// Time-scale effects: speed, stretch, length with a speed envelope, rolling in, tempo and
// pitch (plain and crossfaded, with envelopes), and the four periodic echo forms.
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

WavePtr steps(int n, int from, int by) {
    Samples s(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) s[std::size_t(i)] = from + i * by;
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

// ---- speed ----

TEST(Speed, FactorMultipliesTheLength) {
    auto w = steps(1000, 0, 1);
    CancelFlag c{0};
    std::int32_t end = -1;
    auto r = w->speed(c, 2, 0, end);
    EXPECT_EQ(r->getValues(), 2000);
    EXPECT_EQ(end, 2000);
    EXPECT_EQ((*r)[1], 0);  // half speed: 0, 0.5, 1 ... truncated
    EXPECT_EQ((*r)[3], 1);
    r = w->speedWhole(c, 0.5);
    EXPECT_EQ(r->getValues(), 500);
    EXPECT_EQ((*r)[7], 14);
}

TEST(Speed, NegativeReversesAndStartsWithTheSampleAfterTheRange) {
    auto w = makeWave({1, 2, 3, 4, 5});
    CancelFlag c{0};
    std::int32_t end = 4;
    auto r = w->speed(c, -1, 1, end);
    EXPECT_EQ(samplesOf(*r), (Samples{1, 5, 4, 3, 5}));
    EXPECT_EQ(end, 4);
}

TEST(Speed, LengthRoundedToZeroGivesAnEmptyWave) {
    auto w = makeWave({1, 2, 3, 4, 5});
    CancelFlag c{0};
    std::int32_t end = 3;
    auto r = w->speed(c, 0.1, 1, end);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->getValues(), 0);  // head and tail are gone too
    EXPECT_EQ(c.load(), 0);
}

// ---- stretch ----

TEST(Stretch, ForwardsReadsOneSampleIntoTheTail) {
    auto w = makeWave({0, 100, 200, 300, 1000});
    CancelFlag c{0};
    std::int32_t end = 4;
    auto r = w->stretch(c, 8, false, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{0, 50, 100, 150, 200, 250, 300, 650, 1000}));
    EXPECT_EQ(end, 8);
}

TEST(Stretch, BackwardsStartsAtTheEnd) {
    auto w = makeWave({0, 100, 200, 300});
    CancelFlag c{0};
    auto r = w->stretchWhole(c, 8, true);
    EXPECT_EQ(samplesOf(*r), (Samples{0, 150, 300, 250, 200, 150, 100, 50}));
    auto x = makeWave({7, 0, 100, 200, 300, 9});
    std::int32_t end = 5;
    r = x->stretch(c, 2, true, 1, end);  // p = 4, 2: indices 5 (just after the range), 3
    EXPECT_EQ(samplesOf(*r), (Samples{7, 9, 200, 9}));
    EXPECT_EQ(end, 3);
}

TEST(Stretch, Shorter) {
    auto w = makeWave({0, 100, 200, 300});
    CancelFlag c{0};
    std::int32_t end = -1;
    auto r = w->stretch(c, 3, false, 0, end);  // step 4/3
    EXPECT_EQ(samplesOf(*r), (Samples{0, 133, 266}));
}

TEST(Stretch, CancelMidwayHandsBackThePartialWave) {
    auto w = steps(3000, -1500, 1);
    CancelFlag c{0};
    ChunkHookScope hook;
    hook.log.cancel = &c;
    hook.log.cancelAtPos = 1000;
    std::int32_t end = -1;
    auto r = w->stretch(c, 2600, false, 0, end);
    ASSERT_NE(r, nullptr);
    EXPECT_NE(c.load(), 0);
    EXPECT_EQ(hook.log.chunks, (Chunks{{0, 1000}, {1000, 2000}}));
    EXPECT_EQ(r->getValues(), 2600);
}

// ---- length with speed envelope ----

TEST(LengthSpeedEnv, ConstantFullEnvelopePlaysTheRangeTwice) {
    auto w = makeWave({10, 20, 30, 40});
    auto env = makeWave({32767, 32767});
    CancelFlag c{0};
    std::int32_t end = -1;
    // The position moves before each read, so the first read is one sample in.
    auto r = w->lengthSpeedEnv(c, env.get(), 2, 1, 0, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{20, 30, 40, 10, 20, 30, 40, 10}));
    EXPECT_EQ(end, 8);
    end = -1;
    r = w->lengthSpeedEnv(c, env.get(), 2, 0.5, 0, 0, end);  // 40 blends into 10 at the loop
    EXPECT_EQ(samplesOf(*r), (Samples{15, 20, 25, 30, 35, 40, 25, 10}));
    end = -1;
    r = w->lengthSpeedEnv(c, env.get(), 2, -1, 0, 0, end);  // backwards, wrapping below begin
    EXPECT_EQ(samplesOf(*r), (Samples{40, 30, 20, 10, 40, 30, 20, 10}));
}

TEST(LengthSpeedEnv, EnvelopeRunsOnceOverTheNewStretch) {
    // Envelope [0, 32767] over 4 outputs: positions 0, 0.25, 0.5, 0.75, so speeds 0 .. 0.75.
    auto w = makeWave({10, 20, 30, 40});
    auto env = makeWave({0, 32767});
    CancelFlag c{0};
    std::int32_t end = -1;
    auto r = w->lengthSpeedEnv(c, env.get(), 1, 1, 0, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{10, 12, 17, 25}));
}

TEST(LengthSpeedEnv, StartPositionAndHeadAndTail) {
    auto w = makeWave({7, 10, 20, 30, 40, 8});
    auto env = makeWave({32767});
    CancelFlag c{0};
    std::int32_t end = 5;
    // Start at 1 + 4 x 0.5 = 3; reads 4, then 5 wraps to 1.
    auto r = w->lengthSpeedEnv(c, env.get(), 0.5, 1, 0.5, 1, end);
    EXPECT_EQ(samplesOf(*r), (Samples{7, 40, 10, 8}));
    EXPECT_EQ(end, 3);
}

TEST(LengthSpeedEnvDeathTest, Checks) {
    auto w = makeWave({10, 20, 30, 40});
    auto env = makeWave({32767});
    CancelFlag c{0};
    std::int32_t end = -1;
    EXPECT_DEATH(w->lengthSpeedEnv(c, env.get(), 0, 1, 0, 0, end),
                 "Assertion failed: lengthfactor > 0, unit wave");
    EXPECT_DEATH(w->lengthSpeedEnv(c, env.get(), 1, 1, -0.5, 0, end),
                 "Assertion failed: startpos >= 0, unit wave");
    // A factor of 0.1 leaves no sample, so even the start 0 is past the new length.
    EXPECT_DEATH(w->lengthSpeedEnv(c, env.get(), 0.1, 1, 0, 0, end),
                 "Assertion failed: startpos < length, unit wave");
}

// ---- rolling in ----

TEST(RollIn, WindsTheRangeIntoALoop) {
    auto w = makeWave({1, 2, 3, 4, 5});
    CancelFlag c{0};
    std::int32_t end = -1;
    // 1 at 1, 2 at 0, 3 at 1, 4 at 0, 5 at 1.
    auto r = w->rollIn(c, 2, 1, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{6, 9}));
    EXPECT_EQ(end, 2);

    auto x = makeWave({9, 1, 2, 3, 8});
    end = 4;
    r = x->rollIn(c, 2, 1, 1, end);
    EXPECT_EQ(samplesOf(*r), (Samples{9, 2, 4, 8}));
    EXPECT_EQ(end, 3);

    auto y = makeWave({1, 2});  // a loop longer than the range keeps its zeros
    end = -1;
    r = y->rollIn(c, 4, 3, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{2, 0, 0, 1}));

    auto loud = makeWave({30000, 30000});
    end = -1;
    r = loud->rollIn(c, 1, 0, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{-5536}));
}

TEST(RollIn, ChunksStopAtTheEndOfTheLoop) {
    auto w = steps(2500, -1250, 1);
    CancelFlag c{0};
    ChunkHookScope hook;
    std::int32_t end = -1;
    auto r = w->rollIn(c, 1500, 700, 0, end);
    // Clearing the loop, then source chunks of 800 (to the loop's end), 1000, 500 (to the
    // loop's end again), 200.
    EXPECT_EQ(hook.log.chunks, (Chunks{{0, 1000}, {1000, 1500}, {0, 800}, {800, 1800},
                                       {1800, 2300}, {2300, 2500}}));
    std::vector<int> want(1500, 0);
    for (int k = 0; k < 2500; ++k) want[std::size_t((700 + k) % 1500)] += k - 1250;
    for (std::size_t i = 0; i < want.size(); ++i) ASSERT_EQ((*r)[std::int32_t(i)], want[i]) << i;
}

TEST(RollInDeathTest, Checks) {
    auto w = makeWave({1, 2, 3});
    CancelFlag c{0};
    std::int32_t end = -1;
    EXPECT_DEATH(w->rollIn(c, 0, 0, 0, end), "Assertion failed: length > 0, unit wave");
    EXPECT_DEATH(w->rollIn(c, 2, 2, 0, end), "Assertion failed: target < length, unit wave");
}

// ---- tempo and pitch ----

TEST(TempoPitch, BlocksJumpToTheTempoPosition) {
    auto w = steps(8, 0, 10);
    CancelFlag c{0};
    std::int32_t end = -1;
    // Blocks of 2 read at pitch 1; each block restarts at j x 2, wrapped into [0, 8).
    auto r = w->tempoPitch(c, 2, 0, 1, 1, 2, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{0, 10, 40, 50, 0, 10, 40, 50}));
}

TEST(TempoPitch, HalfPitchInterpolates) {
    auto w = steps(6, 0, 100);
    CancelFlag c{0};
    std::int32_t end = -1;
    auto r = w->tempoPitch(c, 1, 0, 1, 0.5, 3, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{0, 50, 100, 300, 350, 400}));
}

TEST(TempoPitch, ReadsZeroPastTheWaveAndKeepsHeadAndTail) {
    auto w = makeWave({100, 200, 300, 400});
    CancelFlag c{0};
    std::int32_t end = -1;
    auto r = w->tempoPitch(c, 1, 0.875, 1, 1, 10, 0, end);  // starts at 3.5
    EXPECT_EQ(samplesOf(*r), (Samples{200, 0, 0, 0}));

    auto x = makeWave({5, 0, 10, 20, 30, 6});
    end = 5;
    r = x->tempoPitch(c, 1, 0, 1.5, 1, 4, 1, end);  // 6 samples; the jump to 5 wraps to 1
    EXPECT_EQ(samplesOf(*r), (Samples{5, 0, 10, 20, 30, 0, 10, 6}));
    EXPECT_EQ(end, 7);
}

TEST(TempoPitchCross, TwoHeadsCrossfade) {
    // Samples 100 i + 1. Pitch 2, block 4: offset = 4 x (1 - 2) / 2 = -2, head B starts
    // before the wave (reads 0). A restarts at c = 2, B at c = 4. The first product is cut
    // before the second is added: 201 x 0.5 -> 100, + 1 x 0.5 -> 100 (not 101).
    auto w = steps(8, 1, 100);
    CancelFlag c{0};
    std::int32_t end = -1;
    auto r = w->tempoPitchCross(c, 1, nullptr, 0, 1, 2, nullptr, 4, 0, end);
    const Samples want{1, 100, 201, 300, 401, 500, 601, 300};
    EXPECT_EQ(samplesOf(*r), want);

    // Envelopes of full value reproduce the constants.
    auto speedEnv = makeWave({32767});
    auto pitchEnv = makeWave({32767});
    end = -1;
    r = w->tempoPitchCross(c, 1, speedEnv.get(), 0, 1, 2, pitchEnv.get(), 4, 0, end);
    EXPECT_EQ(samplesOf(*r), want);

    // A speed envelope of 0 keeps restarting both heads at cycle(-2) = 6.
    auto still = makeWave({0, 0});
    end = -1;
    r = w->tempoPitchCross(c, 1, still.get(), 0, 1, 2, nullptr, 4, 0, end);
    EXPECT_EQ(samplesOf(*r), (Samples{1, 100, 201, 200, 0, 0, 0, 0}));
}

TEST(TempoPitchCross, PitchEnvelopeIsReadPerSample) {
    // Pitch envelope [0, 32767] x 4 over 5 outputs: steps 0, 1, 2, 3, 4, so head A sits at
    // 0, 0, 1, 3, 6. Block 64: head B starts 32 ahead (past the wave, reads 0) and no
    // restart happens; A's weight is 1 - c/32.
    auto w = steps(8, 0, 100);
    auto pitchEnv = makeWave({0, 32767});
    CancelFlag c{0};
    std::int32_t end = -1;
    auto r = w->tempoPitchCross(c, 1, nullptr, 0, 0.625, 4, pitchEnv.get(), 64, 0, end);
    // 100 x 0.9375 = 93.75; 300 x 0.90625 = 271.875; 600 x 0.875 = 525.
    EXPECT_EQ(samplesOf(*r), (Samples{0, 0, 93, 271, 525}));
    EXPECT_EQ(end, 5);
}

TEST(TempoPitchCross, UnitSpeedAndPitchIsTheIdentity) {
    auto w = steps(12, -600, 100);
    CancelFlag c{0};
    std::int32_t end = -1;
    auto r = w->tempoPitchCross(c, 1, nullptr, 0, 1, 1, nullptr, 4, 0, end);
    EXPECT_EQ(samplesOf(*r), samplesOf(*w));
}

TEST(TempoPitchDeathTest, Checks) {
    auto w = steps(8, 0, 1);
    Wave empty;
    auto env = makeWave({32767});
    CancelFlag c{0};
    std::int32_t end = -1;
    EXPECT_DEATH(w->tempoPitch(c, 0, 0, 1, 1, 2, 0, end), "Assertion failed: speed != 0, unit wave");
    EXPECT_DEATH(w->tempoPitch(c, 1, 0, 1, 1, 0, 0, end),
                 "Assertion failed: blockTime > 0, unit wave");
    EXPECT_DEATH(w->tempoPitch(c, 1, 0, 0, 1, 2, 0, end),
                 "Assertion failed: lengthFactor > 0, unit wave");
    EXPECT_DEATH(w->tempoPitchCross(c, 1, &empty, 0, 1, 1, nullptr, 2, 0, end),
                 "Assertion failed: speedEnvelop->values > 0, unit wave");
    EXPECT_DEATH(w->tempoPitchCross(c, 1, nullptr, 0, 1, 1, &empty, 2, 0, end),
                 "Assertion failed: freqWave->values > 0, unit wave");
    EXPECT_DEATH(w->tempoPitchCross(c, -1, nullptr, 0, 1, 1, env.get(), 2, 0, end),
                 "Assertion failed: speed > 0, unit wave");
    EXPECT_DEATH(w->tempoPitchCross(c, 0, nullptr, 0, 1, 1, nullptr, 2, 0, end),
                 "Assertion failed: speed != 0, unit wave");
}

// ---- periodic echoes ----

TEST(PerEcho, GrowsBehindForAPositiveTime) {
    auto w = makeWave({10, 20, 30, 40});
    CancelFlag c{0};
    std::int32_t begin = 1, end = 3;
    // Stretch 1 .. 3 + 2; one zero added behind the wave. Echo at half volume, 1 later.
    auto r = w->perEcho(c, 1, 0.5, 1, begin, end);
    EXPECT_EQ(samplesOf(*r), (Samples{10, 20, 40, 55, 0}));
    EXPECT_EQ(begin, 1);
    EXPECT_EQ(end, 5);
}

TEST(PerEcho, GrowsInFrontForANegativeTime) {
    auto w = makeWave({10, 20, 30, 40});
    CancelFlag c{0};
    std::int32_t begin = 1, end = 3;
    // newBegin = 1 + trunc(-2) = -1: one zero in front; everything moves up by one.
    auto r = w->perEcho(c, -1, 0.5, 1, begin, end);
    EXPECT_EQ(samplesOf(*r), (Samples{0, 20, 35, 30, 40}));
    EXPECT_EQ(begin, 0);
    EXPECT_EQ(end, 4);
}

TEST(PerEcho, VolumeCompoundsAndZeroTimeDoesNotGrow) {
    auto w = makeWave({100, 50});
    CancelFlag c{0};
    std::int32_t begin = 0, end = -1;
    auto r = w->perEcho(c, 1, 0.5, 2, begin, end);  // echoes at 0.5 and 0.25
    EXPECT_EQ(samplesOf(*r), (Samples{100, 100, 50, 12, 0, 0}));
    EXPECT_EQ(begin, 0);
    EXPECT_EQ(end, 6);

    auto x = makeWave({10, 20, 30, 40});
    begin = 1, end = 3;
    r = x->perEcho(c, 0, 0.5, 1, begin, end);
    EXPECT_EQ(samplesOf(*r), (Samples{10, 30, 45, 40}));
    EXPECT_EQ(begin, 1);
    EXPECT_EQ(end, 3);

    auto loud = makeWave({30000, 30000});
    begin = 0, end = -1;
    r = loud->perEcho(c, 0, 1, 1, begin, end);
    EXPECT_EQ(samplesOf(*r), (Samples{-5536, -5536}));
}

TEST(PerEcho, FractionalTimeInterpolatesAndSourceIsZeroOutsideTheRange) {
    auto w = makeWave({10, 20, 30, 40});
    CancelFlag c{0};
    std::int32_t begin = 1, end = 3;
    // Reads at p - 0.5 over the range [20, 30] only: 10, 25, 15.
    auto r = w->perEcho(c, 0.5, 1, 1, begin, end);
    EXPECT_EQ(samplesOf(*r), (Samples{10, 30, 55, 55}));
    EXPECT_EQ(end, 4);
}

TEST(PerEchoEnv, GrowsOnBothSides) {
    auto w = makeWave({10, 20, 30, 40});
    auto full = makeWave({32767});
    CancelFlag c{0};
    std::int32_t begin = 1, end = 3;
    // span = trunc(1.5) = 1: the stretch is 0 .. 4; delay -0.5.
    auto r = w->perEchoEnv(c, 0.5, full.get(), full.get(), 1, begin, end);
    EXPECT_EQ(samplesOf(*r), (Samples{10, 30, 55, 55}));
    EXPECT_EQ(begin, 0);
    EXPECT_EQ(end, 4);

    // A negative echo time envelope puts the echo before the sound; the stretch -2 .. 4 needs
    // two zeros in front and one behind.
    auto x = makeWave({10, 20, 30});
    auto before = makeWave({-32767});
    begin = 0, end = 2;
    r = x->perEchoEnv(c, 1, before.get(), full.get(), 1, begin, end);
    EXPECT_EQ(samplesOf(*r), (Samples{0, 10, 30, 20, 30, 0}));
    EXPECT_EQ(begin, 0);
    EXPECT_EQ(end, 6);
}

TEST(PerEchoVolumeEnv, EnvelopeStretchedOverTheGrownRange) {
    // Stretch -1 .. 3 (4 samples): volume envelope positions 0, 1/3, 2/3, 1.
    auto w = makeWave({0, 100, 200, 0});
    auto env = makeWave({32767, 0});
    CancelFlag c{0};
    std::int32_t begin = 1, end = 3;
    auto r = w->perEchoVolumeEnv(c, -1, env.get(), 1, begin, end);
    // 2/3 x 100 = 66.7 -> 66; 100 + 1/3 x 200 = 166.7 -> 166.
    EXPECT_EQ(samplesOf(*r), (Samples{0, 66, 166, 200, 0}));
    EXPECT_EQ(begin, 0);
    EXPECT_EQ(end, 4);
}

TEST(PerEchoTimeEnv, ConstantVolumeEchoTimeFromTheEnvelope) {
    auto w = makeWave({10, 20, 30});
    auto env = makeWave({32767});
    CancelFlag c{0};
    std::int32_t begin = 0, end = 2;
    auto r = w->perEchoTimeEnv(c, 1, env.get(), 0.5, 1, begin, end);
    EXPECT_EQ(samplesOf(*r), (Samples{0, 0, 10, 25, 40, 0}));
    EXPECT_EQ(begin, 0);
    EXPECT_EQ(end, 6);
}

TEST(PerEcho, CancelDuringAnEchoHandsBackThePartialWave) {
    auto w = steps(3000, -1500, 1);
    CancelFlag c{0};
    ChunkHookScope hook;
    hook.log.cancel = &c;
    hook.log.cancelAtPos = 1005;  // only the echo loop starts a chunk here
    std::int32_t begin = 5, end = -1;
    auto r = w->perEcho(c, 10, 0.5, 3, begin, end);
    ASSERT_NE(r, nullptr);
    EXPECT_NE(c.load(), 0);
    EXPECT_EQ(r->getValues(), 3033);
    EXPECT_EQ(hook.log.chunks.back(), std::make_pair(1005, 2005));
    // The first echo got as far as 2005; the echo of sample k lands on k + 10.
    EXPECT_EQ((*r)[1500], WaveVal(0 + (1490 - 1500) / 2));
    EXPECT_EQ((*r)[2004], WaveVal(504 + (494 / 2)));
    EXPECT_EQ(begin, 5);
    EXPECT_EQ(end, 3033);
}

TEST(PerEchoDeathTest, Checks) {
    auto w = makeWave({10, 20, 30});
    auto env = makeWave({32767});
    CancelFlag c{0};
    std::int32_t begin = 0, end = -1;
    EXPECT_DEATH(w->perEchoEnv(c, -1, env.get(), env.get(), 1, begin, end),
                 "Assertion failed: diffTime >= 0, unit wave");
    EXPECT_DEATH(w->perEchoTimeEnv(c, -1, env.get(), 1, 1, begin, end),
                 "Assertion failed: diffTime >= 0, unit wave");
    begin = 1, end = 2;
    EXPECT_DEATH(w->perEcho(c, 1, 1, 1, begin, end), "Assertion failed: begin < end - 1, unit wave");
    EXPECT_DEATH(w->perEchoVolumeEnv(c, 1, env.get(), 1, begin, end),
                 "Assertion failed: begin < end - 1, unit wave");
}

TEST(TimeScaleDeathTest, RangeAndLengthChecks) {
    auto w = makeWave({1, 2, 3});
    CancelFlag c{0};
    std::int32_t end = -1;
    EXPECT_DEATH(w->stretch(c, 0, false, 0, end), "Assertion failed: length > 0, unit wave");
    end = 1;
    EXPECT_DEATH(w->speed(c, 2, 1, end), "Assertion failed: begin < end, unit wave");
    end = 5;
    EXPECT_DEATH(w->stretch(c, 2, false, 0, end), "Assertion failed: end <= values, unit wave");
}

}  // namespace
}  // namespace orv
