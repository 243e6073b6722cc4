#include "core/random_echo.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <vector>

#include "core/random15.h"
#include "core/sound.h"
#include "support/core_test_helpers.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

// With seed 1 the first throw is (die / 1073676288):
//   0.51389170848, 0.30865941877, 0.94766439976, 0.70225924464, 0.49478498123, 0.08390983391
// and the second: 0.27724983342, 0.98350532167, ...

using namespace test;

// Zeros of length n with the given (position, value) pairs.
Samples sparse(std::size_t n, std::initializer_list<std::pair<std::size_t, int>> at) {
    Samples v(n, 0);
    for (auto [i, x] : at) v[i] = x;
    return v;
}

RandomEchoParams params(std::int32_t count, std::int32_t seed, double timeDifference) {
    RandomEchoParams p;
    p.count = count;
    p.seed = seed;
    p.timeDifference = timeDifference;
    return p;
}

TEST(RandomEcho, EchoesArePlacedByTheTimeDieInASilentSpan) {
    CancelFlag cancel{0};
    auto src = mono({1000, 2000}, 1000);
    // Positions trunc(1000 x 0.5139) = 513 and trunc(1000 x 0.2772) = 277; the span is
    // trunc(1000 x 1 + 1) samples long.
    SoundPtr r = RandomEcho(&cancel, *src, params(2, 1, 1.0));
    EXPECT_EQ(std::pair(int(r->MoSt), r->Freq), std::pair(1, 1000));
    EXPECT_EQ(left(r), sparse(1001, {{277, 1000}, {278, 2000}, {513, 1000}, {514, 2000}}));
    EXPECT_EQ(left(src), (Samples{1000, 2000}));
}

TEST(RandomEcho, TwoPropertiesOnOneDieMoveTogether) {
    auto src = mono({1000, 2000}, 1000);
    CancelFlag cancel{0};

    // Volume on its own die 1: factors 0.3087 and 0.9835, positions still from die 0.
    RandomEchoParams own = params(2, 1, 1.0);
    own.volumeOption = EchoLinearOption::Linear;
    SoundPtr a = RandomEcho(&cancel, *src, own);
    EXPECT_EQ(left(a), sparse(1001, {{277, 983}, {278, 1967}, {513, 308}, {514, 617}}));

    // Volume on the time's die 0: each echo is as loud as it is late.
    RandomEchoParams shared = own;
    shared.volumeDie = 0;
    SoundPtr b = RandomEcho(&cancel, *src, shared);
    EXPECT_EQ(left(b), sparse(1001, {{277, 277}, {278, 554}, {513, 513}, {514, 1027}}));
}

TEST(RandomEcho, BalanceMakesStereoByItsDie) {
    CancelFlag cancel{0};
    auto src = mono({1000}, 1000);
    RandomEchoParams p = params(1, 1, 1.0);
    p.balanceOption = EchoLinearOption::Linear;  // die 3: b = 2 x 0.70226 - 1 = 0.40452
    SoundPtr r = RandomEcho(&cancel, *src, p);
    ASSERT_EQ(r->MoSt, 2);
    // Volume difference: left x (1 - b) / 2, right x (1 + b) / 2.
    EXPECT_EQ(left(r), sparse(1001, {{513, 297}}));
    EXPECT_EQ(right(r), sparse(1001, {{513, 702}}));
}

TEST(RandomEcho, StereoSourceKeepsBothChannelsWhenNotPanned) {
    CancelFlag cancel{0};
    StereoSound src(makeWave({100, 200}), makeWave({-5, 7}), 10);
    SoundPtr r = RandomEcho(&cancel, src, params(1, 1, 1.0));  // position 5 of 11
    ASSERT_EQ(r->MoSt, 2);
    EXPECT_EQ(left(r), sparse(11, {{5, 100}, {6, 200}}));
    EXPECT_EQ(right(r), sparse(11, {{5, -5}, {6, 7}}));
}

TEST(RandomEcho, CyclableWrapsTheTailToTheStart) {
    CancelFlag cancel{0};
    auto src = mono({1, 2, 3, 4, 5, 6, 7, 8}, 10);
    RandomEchoParams p = params(1, 1, 1.0);  // position trunc(10 x 0.5139) = 5, span 11
    p.cyclable = true;
    SoundPtr loop = RandomEcho(&cancel, *src, p);
    EXPECT_EQ(left(loop), (Samples{7, 8, 0, 0, 0, 1, 2, 3, 4, 5, 6}));

    // An echo longer than the loop goes round it more than once.
    auto longer = mono(Samples(25, 1), 10);
    SoundPtr twice = RandomEcho(&cancel, *longer, p);  // 25 samples over 11: 3,2,2,...
    EXPECT_EQ(left(twice), (Samples{2, 2, 2, 2, 2, 3, 3, 3, 2, 2, 2}));
}

TEST(RandomEcho, LoudEchoesAtOnePlaceWrapInsteadOfClipping) {
    CancelFlag cancel{0};
    auto src = mono({30000, -30000, 7}, 1000);
    // No time difference: every echo starts at 0; the one-sample span grows to fit.
    SoundPtr r = RandomEcho(&cancel, *src, params(2, 5, 0.0));
    EXPECT_EQ(left(r), (Samples{-5536, 5536, 14}));

    RandomEchoParams p = params(2, 5, 0.0);
    p.cyclable = true;  // a loop of one sample takes everything: 2 x (30000 - 30000 + 7)
    SoundPtr folded = RandomEcho(&cancel, *src, p);
    EXPECT_EQ(left(folded), (Samples{14}));
}

TEST(RandomEcho, RandomEnvelopesMapToTimeVolumeLengthAndTempo) {
    CancelFlag cancel{0};
    auto src = mono({0, 100, 200, 300}, 1000);
    auto top = mono({32767, 32767}, 1000);
    auto low = mono({-16384, -16384}, 1000);

    // Time: 32767 gives the whole time difference; a negative value starts at 0.
    RandomEchoParams p = params(1, 1, 0.5);
    p.timeOption = EchoTimeOption::RandomEnvelope;
    p.timeEnvelope = top.get();
    SoundPtr late = RandomEcho(&cancel, *src, p);
    EXPECT_EQ(left(late), sparse(504, {{501, 100}, {502, 200}, {503, 300}}));
    p.timeEnvelope = low.get();
    // Volume: -16384 / 32767 = -0.500015.
    p.volumeOption = EchoLinearOption::RandomEnvelope;
    p.volumeEnvelope = low.get();
    SoundPtr early = RandomEcho(&cancel, *src, p);
    EXPECT_EQ(left(early), sparse(501, {{1, -50}, {2, -100}, {3, -150}}));

    // Length: 2 ^ (32767 / 32767) doubles the echo, read with interpolation (0 past the end).
    RandomEchoParams q = params(1, 1, 0.0);
    q.lengthOption = EchoEnvelopeOption::RandomEnvelope;
    q.lengthEnvelope = top.get();
    SoundPtr doubled = RandomEcho(&cancel, *src, q);
    EXPECT_EQ(left(doubled), (Samples{0, 50, 100, 150, 200, 250, 300, 150}));
    MonoSound none(1000);  // an envelope without samples reads 0: 2 ^ 0 leaves the length
    q.lengthEnvelope = &none;
    EXPECT_EQ(RandomEcho(&cancel, *src, q)->GetValues(), 4);
    // Tempo: 2 ^ 1 plays 1000 samples through in 500; pitch alone keeps the length.
    auto longSrc = std::make_unique<MonoSound>(steps(1000, 0, 1), 1000);
    RandomEchoParams t = params(1, 1, 0.0);
    t.tempoOption = EchoEnvelopeOption::RandomEnvelope;
    t.tempoEnvelope = top.get();
    EXPECT_EQ(RandomEcho(&cancel, *longSrc, t)->GetValues(), 500);
    RandomEchoParams f = params(1, 1, 0.0);
    f.pitchOption = EchoEnvelopeOption::RandomEnvelope;
    f.pitchEnvelope = top.get();
    SoundPtr up = RandomEcho(&cancel, *longSrc, f);
    ASSERT_EQ(up->GetValues(), 1000);
    // Pitch 2 ^ 1 in blocks of 0.04 s = 40 samples: each block reads the ramp at step 2
    // from where the tempo (1) says it should be.
    const Wave& w = *up->GetLeftWave();
    EXPECT_EQ((Samples{w[1], w[39], w[40], w[41]}), (Samples{2, 78, 40, 42}));
}

// Everything switched on: envelopes, filter and time-difference balance, crossfaded
// tempo/pitch, cyclable.
struct Busy {
    SoundPtr src, rising, falling;
    RandomEchoParams p;
    Busy() {
        Samples noise(3000);
        srand15(3);
        for (auto& x : noise) x = rand15() - 16384;
        src = mono(noise, 8000);
        rising = std::make_unique<MonoSound>(steps(50, -32767, 1337), 8000);
        falling = std::make_unique<MonoSound>(steps(50, 32767, -1337), 8000);
        p = params(6, 1234, 0.3);
        p.timeOption = EchoTimeOption::RandomEnvelope;
        p.timeEnvelope = rising.get();
        p.volumeOption = EchoLinearOption::Linear;
        p.lengthOption = EchoEnvelopeOption::RandomEnvelope;
        p.lengthEnvelope = falling.get();
        p.balanceOption = EchoLinearOption::RandomEnvelope;
        p.balanceEnvelope = rising.get();
        p.volumeDifference = EchoVolumeDifference::Filter;
        p.balanceTimeDifference = true;
        p.pitchOption = EchoEnvelopeOption::RandomEnvelope;
        p.pitchEnvelope = falling.get();
        p.tempoOption = EchoEnvelopeOption::RandomEnvelope;
        p.tempoEnvelope = rising.get();
        p.quality = EchoQuality::High;
        p.blockSize = 0.01;
        p.cyclable = true;
    }
};

TEST(RandomEcho, SameSeedSameResultSampleForSample) {
    Busy b;
    const Samples before = left(b.src);
    CancelFlag cancel{0};
    SoundPtr first = RandomEcho(&cancel, *b.src, b.p);
    for (int i = 0; i < 100; ++i) rand15();  // whatever ran in between
    SoundPtr second = RandomEcho(&cancel, *b.src, b.p);
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->GetValues(), 2401);
    EXPECT_EQ(left(first), left(second));
    EXPECT_EQ(right(first), right(second));
    EXPECT_NE(left(first), right(first));
    EXPECT_EQ(left(b.src), before);

    b.p.seed = 1235;
    SoundPtr other = RandomEcho(&cancel, *b.src, b.p);
    EXPECT_NE(left(first), left(other));
}

TEST(RandomEcho, CancelOrMemoryFailureGivesNoResultAndLeavesTheSourceAlone) {
    Busy b;
    const Samples before = left(b.src);
    int chunksSeen = 0;
    {
        CancelFlag free{0};
        ChunkHookScope all;
        ASSERT_TRUE(RandomEcho(&free, *b.src, b.p));
        chunksSeen = int(all.chunks.size());
    }
    ASSERT_GT(chunksSeen, 10);
    // At the first chunk, half way, and at the very last chunk of the last mix.
    for (int after : {1, chunksSeen / 2, chunksSeen}) {
        CancelFlag cancel{0};
        ChunkHookScope raise(cancel, -1, after);
        EXPECT_EQ(RandomEcho(&cancel, *b.src, b.p), nullptr) << after;
        EXPECT_EQ(left(b.src), before);
    }
    {
        CancelFlag set{1};  // already set: nothing runs at all
        ChunkHookScope count;
        EXPECT_EQ(RandomEcho(&set, *b.src, b.p), nullptr);
        EXPECT_TRUE(count.chunks.empty());
    }
    for (int allowed : {0, 30}) {
        test::RecordingPlatformScope rec;
        CancelFlag cancel{0};
        AllocatorScope fail(allowed);
        EXPECT_EQ(RandomEcho(&cancel, *b.src, b.p), nullptr) << allowed;
        ASSERT_EQ(rec.recorder.messages.size(), 1u) << allowed;
        EXPECT_EQ(rec.recorder.messages[0].text, kNoMemory);
    }
}

TEST(RandomEchoDeathTest, RefusesWhatTheDialogNeverSends) {
    auto src = mono({1}, 1000);
    CancelFlag cancel{0};
    RandomEchoParams p = params(-1, 0, 1.0);
    EXPECT_DEATH(RandomEcho(&cancel, *src, p), "Assertion failed: count >= 0, unit dicer");
    p = params(1, 0, 1.0);
    p.volumeOption = EchoLinearOption::RandomEnvelope;
    EXPECT_DEATH(RandomEcho(&cancel, *src, p), "Assertion failed: envelope != nullptr, unit dicer");
}

}  // namespace
}  // namespace orv
