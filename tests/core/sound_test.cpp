#include "core/sound.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "core/sound_channels.h"
#include "support/core_test_helpers.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

using namespace test;
using Vals = Samples;

using SoundTest = CancelTest;

// ---- construction and queries -------------------------------------------------------------

TEST_F(SoundTest, EmptySoundsTimeAndConversions) {
    MonoSound m(8000);
    StereoSound s(8000);
    EXPECT_EQ(std::pair(int(m.MoSt), int(s.MoSt)), std::pair(1, 2));
    EXPECT_EQ(s.GetTime(), 0.0L);
    EXPECT_EQ(mono({1, 2, 3}, 2)->GetTime(), 1.5L);
    EXPECT_EQ(stereo({1, 2, 3}, {4, 5, 6}, 4)->GetTime(), 0.75L);

    // Stereo to mono keeps the LEFT channel, not an average, and the frequency.
    auto st = stereo({1, 2, 3}, {10, 20, 30}, 500);
    MonoSound fromSt(*st, c);
    EXPECT_EQ(samplesOf(fromSt.WaveMiddle), (Vals{1, 2, 3}));
    EXPECT_EQ(fromSt.Freq, 500);
    MonoSound emptyM(StereoSound(700), c);
    EXPECT_EQ(std::pair(emptyM.GetValues(), emptyM.Freq), std::pair(0, 700));
    // Mono to stereo: two identical channels that do not share storage.
    auto mo = mono({5, 6});
    StereoSound twin(*mo, c);
    (*twin.WaveLeft)[0] = 99;
    EXPECT_EQ(samplesOf(twin.WaveRight), (Vals{5, 6}));
    EXPECT_EQ(samplesOf(StereoSound(*st, c).WaveRight), (Vals{10, 20, 30}));
}

TEST_F(SoundTest, ForbiddenCopiesDumpAndProtectedWaves) {
    test::RecordingPlatformScope rec;
    MonoSound m(makeWave({1, 2}), 1000);
    MonoSound m2(m);
    StereoSound s(makeWave({1}), makeWave({2}), 8000);
    StereoSound s2(s);
    ASSERT_EQ(rec.recorder.traces.size(), 2u);
    EXPECT_EQ(rec.recorder.traces[0],
              "Fout: MonoSound(const MonoSound &other) mag niet aangeroepen worden!\n");
    EXPECT_EQ(rec.recorder.traces[1],
              "Fout: StereoSound(const StereoSound &other) mag niet aangeroepen worden!\n");
    EXPECT_EQ(m2.GetValues(), 0);

    rec.recorder.traces.clear();
    s.Dump();  // the fields, then each wave's own dump
    const auto& t = rec.recorder.traces;
    ASSERT_EQ(t.size(), 4u + 2 * 4u);
    EXPECT_EQ(t[1] + t[2] + t[3], "Sound.MoSt = 2\nSound.Freq = 8000\nSound.ProtectWave = 0\n");
    EXPECT_EQ(t[8].rfind("StereoSound.WaveRight = ", 0), 0u);

    Wave* l = makeWave({1, 2}).release();
    Wave* r = makeWave({3, 4}).release();
    {
        StereoSound p(l, r, 1000);
        p.SetProtectWave();
    }
    EXPECT_EQ(samplesOf(l), (Vals{1, 2}));  // the sanitizer would catch a freed wave here
    EXPECT_EQ(samplesOf(r), (Vals{3, 4}));
    delete l;
    delete r;
}

// ---- wave access ----------------------------------------------------------------------------

TEST_F(SoundTest, WavesAreBorrowedUnlessResampledOrMixedDown) {
    // A stereo sound's mono wave is always a new copy of its left channel, even at its own
    // frequency; left and right at their own frequency are borrowed.
    auto st = stereo({1, 2}, {30, 40});
    bool isNew = false;
    std::unique_ptr<Wave> w(st->GetMonoWaveAtFreq(c, 1000, isNew));
    EXPECT_TRUE(isNew);
    EXPECT_EQ(samplesOf(w.get()), (Vals{1, 2}));
    EXPECT_EQ(st->GetRightWaveAtFreq(c, 1000, isNew), st->GetRightWave());
    EXPECT_FALSE(isNew);

    auto m = mono({0, 100, 200, 300});
    isNew = true;
    EXPECT_EQ(m->GetMonoWaveAtFreq(c, 1000, isNew), m->GetLeftWave());
    EXPECT_FALSE(isNew);
    w.reset(m->GetMonoWaveAtFreq(c, 2000, isNew));  // twice the samples
    EXPECT_TRUE(isNew);
    EXPECT_EQ(w->getValues(), 8);
    EXPECT_EQ((*w)[1], 50);
    EXPECT_NE(m->DupMonoWave(c, 0).get(), m->GetLeftWave());
}

TEST_F(SoundTest, ValueAtRelativeTimeAndChangeFreq) {
    auto m = mono({100, 200, 300});
    EXPECT_EQ(m->GetValueAt(c, 0.25), 150.0L);
    EXPECT_EQ(m->GetValueAt(c, 1.00006), 300.0L);  // a die may overshoot 1 a little
    auto st = stereo({-32768, 32767}, {0, 0});
    EXPECT_EQ(st->GetValueAt(c, 0.5), -0.5L);

    EXPECT_EQ(MonoSound(8000).ChangeFreq(c, 22050.7)->Freq, 22050);
    auto s2 = stereo({0, 100}, {0, -100})->ChangeFreq(c, 2000.0);
    EXPECT_EQ(s2->Freq, 2000);
    EXPECT_EQ(right(s2).size(), 4u);
    EXPECT_EQ(right(s2)[1], -50);
}

// ---- dispatch ---------------------------------------------------------------------------------

TEST_F(SoundTest, StereoRunsTheOperationOnBothChannelsAndWraps) {
    auto st = stereo({32767, 0}, {1, 2});
    std::int32_t end = -1;
    auto r = st->Up(c, 1, 0, end);
    EXPECT_EQ(left(r), (Vals{-32768, 1}));
    EXPECT_EQ(right(r), (Vals{2, 3}));
    EXPECT_EQ(end, 2);
    EXPECT_EQ(left(st), (Vals{32767, 0}));  // the receiver is untouched

    EXPECT_DEATH(sound_detail::checkSameRange(0, 1, 5, 5),
                 "Assertion failed: begin == begin2, unit sound");
    EXPECT_DEATH(StereoSound(makeWave({1, 2}), makeWave({1}), 1000),
                 "Assertion failed: waveLeft->getValues\\(\\) == waveRight->getValues\\(\\), "
                 "unit sound");
}

TEST_F(SoundTest, RemoveAndCopyRangeAndCancelGivesNoSound) {
    auto st = stereo({1, 2, 3, 4}, {5, 6, 7, 8}, 4000);
    auto all = st->Remove(c, 0, 4);
    EXPECT_EQ(std::pair(all->GetValues(), all->Freq), std::pair(0, 4000));
    auto part = st->Remove(c, 1, 3);
    EXPECT_EQ(left(part), (Vals{1, 4}));
    EXPECT_EQ(right(part), (Vals{5, 8}));
    EXPECT_EQ(right(st->CopyRange(c, 1, 3)), (Vals{6, 7}));

    auto big = stereo(Vals(2500, 100), Vals(2500, 200));
    {
        ChunkHookScope hook(cancel, -1, 2);  // during the left channel
        EXPECT_EQ(big->Volume(c, 2.0, 0, E{-1}), nullptr);
    }
    EXPECT_EQ(left(big)[2499], 100);
    EXPECT_EQ(big->CopyRange(c, 0, 1), nullptr);
}

// ---- seconds to samples -------------------------------------------------------------------

TEST_F(SoundTest, LengthsPositionsAndPeriodsFromSeconds) {
    auto m = mono({1, 2});
    std::int32_t begin = 2, end = 2;
    auto r = m->MakeSilence(c, 0.0025, begin, end);  // lengths: 2.5 + 1 -> 3
    EXPECT_EQ(left(r), (Vals{1, 2, 0, 0, 0}));
    EXPECT_EQ(end, 5);
    begin = 0, end = 0;
    EXPECT_EQ(left(m->MakeSilenceValues(c, 2.9, begin, end)), (Vals{0, 0, 1, 2}));  // no + 1
    end = 0;
    EXPECT_EQ(left(MonoSound(1000).MakeLine(c, 0, 300, 0.0025, false, 0, end)),
              (Vals{0, 150, 300}));

    // Positions: 0.0029 s at 1000 Hz is 2.9 samples, a shift of 2; 0.0019 s is 1.
    EXPECT_EQ(left(mono({1, 2, 3, 4, 5})->Rotate(c, 0.0029, 0, E{-1})), (Vals{3, 4, 5, 1, 2}));
    auto mc = mono({1, 2, 3, 4});
    mc->MixCycleAt(c, mono({10, 20}).get(), 0.0019, 1.0);
    EXPECT_EQ(left(mc), (Vals{1, 12, 23, 4}));
    // A loop of trunc(2.9 + 1) = 3 samples, written from 1.
    end = -1;
    EXPECT_EQ(left(mono({1, 2, 3, 4, 5, 6})->RollIn(c, 0.0029, 0.0019, 0, end)),
              (Vals{3 + 6, 1 + 4, 2 + 5}));
    EXPECT_EQ(end, 3);

    // Periods stay untruncated: a block length of 2.5 makes blocks 2, 3, 2, 3.
    EXPECT_EQ(left(mono({0, 10, 20, 30, 40, 50, 60, 70, 80, 90})->Block(c, 0.0025, 0, 0, E{-1})),
              (Vals{5, 5, 30, 30, 30, 55, 55, 80, 80, 80}));
}

// Filters are handed in by the caller: check what the sound passes on.
struct FilterCall {
    const Wave *wave, *envelope;
    double time, freq;
    int countBer, countCmd;
    std::int32_t begin, end;
};
std::vector<FilterCall> gCalls;

WavePtr fakePass(const Wave* w, CancelFlag& cancel, double time, double, int countBer,
                 int countCmd, std::int32_t begin, std::int32_t end) {
    gCalls.push_back({w, nullptr, time, 0, countBer, countCmd, begin, end});
    return copyWave(cancel, w);
}

WavePtr fakePassEnv(const Wave* w, CancelFlag& cancel, const Wave* env, double, int countBer,
                    int countCmd, double freq, std::int32_t begin, std::int32_t end) {
    gCalls.push_back({w, env, 0, freq, countBer, countCmd, begin, end});
    return copyWave(cancel, w);
}

TEST_F(SoundTest, FiltersGetThePeriodAndTheEnvelopeOfTheirChannel) {
    gCalls.clear();
    auto st = stereo({1, 2, 3}, {4, 5, 6}, 44100);
    auto r = st->ApplyFilter(c, fakePass, 0.0001, 0.5, 3, 2, 1, -1);
    ASSERT_EQ(gCalls.size(), 2u);
    EXPECT_DOUBLE_EQ(gCalls[0].time, 4.41);
    EXPECT_EQ(gCalls[1].wave, st->GetRightWave());
    EXPECT_EQ((std::vector<int>{gCalls[1].countBer, gCalls[1].countCmd, gCalls[1].begin,
                                gCalls[1].end}), (std::vector<int>{3, 2, 1, -1}));
    EXPECT_EQ(right(r), (Vals{4, 5, 6}));

    gCalls.clear();
    auto envSt = stereo({1, 1}, {2, 2});
    st->ApplyFilterEnv(c, fakePassEnv, envSt.get(), 0.5, 1, 1, 0, -1);
    EXPECT_EQ(gCalls[0].envelope, envSt->GetLeftWave());
    EXPECT_EQ(gCalls[1].envelope, envSt->GetRightWave());
    EXPECT_EQ(gCalls[1].freq, 44100.0);

    // A mono sound takes the left channel of a stereo envelope, as a new wave that is
    // deleted afterwards (the sanitizer checks the deleting).
    auto env2 = stereo({32767, 32767}, {0, 0});
    EXPECT_EQ(left(mono({1000, 1000, 1000})->VolumeEnv(c, env2.get(), 0, E{-1})),
              (Vals{1000, 1000, 1000}));
    auto loud = stereo({1000, 1000, 1000}, {-1000, -1000, -1000});
    EXPECT_EQ(right(loud->VolumeEnv(c, env2.get(), 0, E{-1})), (Vals{0, 0, 0}));
    EXPECT_EQ(right(loud->VolumeEnv(c, mono({0, 32767}).get(), 0, E{-1})),
              (Vals{0, -500, -1000}));  // 16383.5 x 1000 / 32767
}

// Records which form ran (its number first) and the numbers it was given.
std::vector<std::vector<double>> gForms;
template <int Form, class... A>
WavePtr resonator(const Wave* w, CancelFlag& c, A... args) {
    std::vector<double> got{Form};
    auto keep = [&](auto a) {
        if constexpr (std::is_same_v<decltype(a), double>) got.push_back(a);
    };
    (keep(args), ...);
    gForms.push_back(got);
    return copyWave(c, w);
}

TEST_F(SoundTest, ResonatorFormFollowsTheGivenEnvelopes) {
    const ResonatorFamily fam{resonator<0>, resonator<1>, resonator<2>, resonator<3>};
    auto m = mono({1, 2, 3}, 1000);
    auto env = mono({0, 0});
    gForms.clear();
    m->ApplyResonantFilter(c, fam, 0.0025, 0.25, nullptr, nullptr, 0, -1);
    m->ApplyResonantFilter(c, fam, 0.0025, 0.25, env.get(), nullptr, 0, -1);
    m->ApplyResonantFilter(c, fam, 0.0025, 0.25, nullptr, env.get(), 0, -1);
    m->ApplyResonantFilter(c, fam, 0.0025, 0.25, env.get(), env.get(), 0, -1);
    EXPECT_EQ(gForms, (std::vector<std::vector<double>>{{0, 2.5, 0.25}, {1, 0.25, 1000}, {2, 2.5},
                                                        {3, 1000}}));
}

// ---- maximise ---------------------------------------------------------------------------

TEST_F(SoundTest, MaxVolumeTargetsFullScaleWithTheLouderChannel) {
    std::int32_t end = -1;
    EXPECT_EQ(left(mono({1000, -2000, 500})->MaxVolume(c, 0, end)), (Vals{16383, -32767, 8191}));
    EXPECT_EQ(end, 3);
    EXPECT_EQ(left(mono({1000, -2000, 500})->MaxVolumeSoft(c, 0, E{-1})),  // x 11.46845
              (Vals{11468, -22936, 5734}));
    auto r = stereo({1000, 0}, {0, -4000})->MaxVolume(c, 0, E{-1});  // x 8.19175
    EXPECT_EQ(left(r), (Vals{8191, 0}));
    EXPECT_EQ(right(r), (Vals{0, -32767}));
    // a silent range stays silent (factor 0)
    EXPECT_EQ(left(mono({0, 0, 9})->MaxVolume(c, 0, E{2})), (Vals{0, 0, 9}));
    auto st = stereo({1000, 1}, {-2000, 2});
    st->MaxVolumeSoftInPlace(c, 0, E{1});
    EXPECT_EQ(left(st), (Vals{11468, 1}));
    EXPECT_EQ(right(st), (Vals{-22936, 2}));
}

// ---- sounds mixed and inserted ----------------------------------------------------------

TEST_F(SoundTest, InsertResamplesTheOtherSoundToThisFrequency) {
    std::int32_t end = 1;
    const Vals v = left(mono({1, 2, 3}, 1000)->Insert(c, mono({10, 20}, 500).get(), 1, end));
    ASSERT_EQ(v.size(), 7u);
    EXPECT_EQ(Vals(v.begin(), v.begin() + 4), (Vals{1, 10, 15, 20}));
    EXPECT_EQ(Vals(v.begin() + 5, v.end()), (Vals{2, 3}));
    EXPECT_EQ(end, 5);
    // Replacing a stereo range by a mono sound: the same wave in both channels.
    end = 3;
    auto s = stereo({1, 2, 3}, {4, 5, 6})->Insert(c, mono({9}).get(), 1, end);
    EXPECT_EQ(right(s), (Vals{4, 9}));
    EXPECT_EQ(end, 2);
}

TEST_F(SoundTest, MixAlignedAtBeginEndOrStretched) {
    auto m = mono({0, 0, 0, 0, 0});
    auto other = mono({1, 2}), ramp = mono({0, 100});
    struct Row {
        int how, begin, end;
        Vals want;
        int newBegin, newEnd;
    };
    const Row rows[] = {
        {0, 1, 1, {0, 1, 2, 0, 0}, 1, 3},
        {1, 1, 1, {1, 2, 0, 0, 0, 0}, 0, 2},  // ending at 1 grows in front
        {1, 3, 4, {0, 0, 0, 2, 0}, 3, 4},     // a selection takes the tail that fits
        {2, 1, 5, {0, 0, 50, 100, 50}, 1, 5},  // 0, 100 stretched: the last reads past it
        {2, 4, 4, {0, 0, 0, 0, 0, 100}, 4, 6},  // an empty range mixes all of it in
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(testing::Message() << r.how << " " << r.begin);
        std::int32_t begin = r.begin, end = r.end;
        auto got = r.how == 0   ? m->MixAlignBegin(c, other.get(), begin, end)
                   : r.how == 1 ? m->MixAlignEnd(c, other.get(), begin, end)
                                : m->MixStretch(c, ramp.get(), begin, end);
        EXPECT_EQ(left(got), r.want);
        EXPECT_EQ(std::pair(begin, end), std::pair(r.newBegin, r.newEnd));
    }
}

TEST_F(SoundTest, CyclicMixWrapsToTheStartAndLogs) {
    test::RecordingPlatformScope rec;
    auto m = mono({1, 2, 3, 4});
    m->MixCycleAfterThis(c, mono({10, 20, 30}).get(), 2);
    EXPECT_EQ(left(m), (Vals{31, 2, 13, 24}));
    auto st = stereo({30000, 0}, {0, 0});
    st->MixCycleAfterThis(c, mono({30000}).get(), 0);
    EXPECT_EQ(left(st), (Vals{-5536, 0}));
    EXPECT_EQ(right(st), (Vals{30000, 0}));
    EXPECT_EQ(rec.recorder.traces, (std::vector<std::string>{"in MonoSound::MixCycleAfterThis\n",
                                        "uit MonoSound::MixCycleAfterThis\n",
                                        "in StereoSound::MixCycleAfterThis\n",
                                        "uit StereoSound::MixCycleAfterThis\n"}));
    auto p = mono({1, 2, 3, 4});  // the plain form stops at the end
    p->MixCycleSimple(c, mono({10, 20, 30}).get(), 2);
    EXPECT_EQ(left(p), (Vals{1, 2, 13, 24}));
}

// The stereo low- and high-pass run both channels in one loop of their own: each channel
// must come out exactly as the mono filter makes it, with its own filter state.
TEST(StereoFilter, EachChannelFiltersAsTheMonoFilterDoes) {
    Samples l(3000), r(3000);
    for (int i = 0; i < 3000; ++i) {
        l[i] = (i * 7919) % 20000 - 10000;
        r[i] = ((i / 40) % 2 ? 12000 : -12000) + (i % 13) * 300;
    }
    const SoundPtr st = stereo(l, r, 8000);
    for (PassFilter f : {PassFilter(LowPass), PassFilter(HighPass)}) {
        for (int passes : {1, 3}) {
            CancelFlag c{0};
            const SoundPtr both = st->ApplyFilter(&c, f, 0.002, 0.6, passes, 1, 200, 2900);
            const SoundPtr left = mono(l, 8000)->ApplyFilter(&c, f, 0.002, 0.6, passes, 1, 200, 2900);
            const SoundPtr right = mono(r, 8000)->ApplyFilter(&c, f, 0.002, 0.6, passes, 1, 200, 2900);
            ASSERT_TRUE(both && left && right);
            EXPECT_EQ(samplesOf(both->GetLeftWave()), samplesOf(left->GetLeftWave())) << passes;
            EXPECT_EQ(samplesOf(both->GetRightWave()), samplesOf(right->GetLeftWave())) << passes;
        }
    }
}

}  // namespace
}  // namespace orv
