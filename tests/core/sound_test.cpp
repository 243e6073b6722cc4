#include "core/sound.h"

#include <gtest/gtest.h>

#include <vector>

#include "core/sound_channels.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

using Vals = std::vector<int>;

WavePtr wav(const Vals& v) {
    CancelFlag c{0};
    WavePtr w = v.empty() ? std::make_unique<Wave>() : newWave(c, std::int32_t(v.size()));
    for (std::size_t i = 0; i < v.size(); ++i) (*w)[std::int32_t(i)] = WaveVal(v[i]);
    return w;
}

Vals vals(const Wave* w) {
    Vals v;
    for (std::int32_t i = 0; i < w->getValues(); ++i) v.push_back((*w)[i]);
    return v;
}

SoundPtr mono(const Vals& v, std::int32_t freq = 1000) {
    return std::make_unique<MonoSound>(wav(v), freq);
}

SoundPtr stereo(const Vals& l, const Vals& r, std::int32_t freq = 1000) {
    return std::make_unique<StereoSound>(wav(l), wav(r), freq);
}

Vals left(const SoundPtr& s) { return vals(s->GetLeftWave()); }
Vals right(const SoundPtr& s) { return vals(s->GetRightWave()); }

class SoundTest : public ::testing::Test {
protected:
    CancelFlag cancel{0};
    CancelFlag* c = &cancel;
};

// ---- construction and queries -------------------------------------------------------------

TEST_F(SoundTest, EmptySoundsHaveNoSamplesAndNoTime) {
    MonoSound m(8000);
    StereoSound s(8000);
    EXPECT_EQ(m.MoSt, 1);
    EXPECT_EQ(s.MoSt, 2);
    EXPECT_EQ(m.Freq, 8000);
    EXPECT_FALSE(m.ProtectWave);
    EXPECT_EQ(m.GetValues(), 0);
    EXPECT_EQ(s.GetValues(), 0);
    EXPECT_EQ(m.GetTime(), 0.0L);
    EXPECT_EQ(s.GetTime(), 0.0L);
    ASSERT_NE(m.WaveMiddle, nullptr);
    ASSERT_NE(s.WaveLeft, nullptr);
    ASSERT_NE(s.WaveRight, nullptr);
}

TEST_F(SoundTest, TimeIsSamplesOverFrequency) {
    EXPECT_EQ(mono({1, 2, 3}, 2)->GetTime(), 1.5L);
    EXPECT_EQ(stereo({1, 2, 3}, {4, 5, 6}, 4)->GetTime(), 0.75L);
}

TEST_F(SoundTest, StereoOfUnequalChannelsIsRefused) {
    EXPECT_DEATH(StereoSound(wav({1, 2}), wav({1}), 1000),
                 "Assertion failed: waveLeft->getValues\\(\\) == waveRight->getValues\\(\\), "
                 "unit sound");
}

TEST_F(SoundTest, ConvertingCopies) {
    // Stereo to mono keeps the LEFT channel, not an average.
    auto st = stereo({1, 2, 3}, {10, 20, 30}, 500);
    MonoSound m(*st, c);
    EXPECT_EQ(vals(m.WaveMiddle), (Vals{1, 2, 3}));
    EXPECT_EQ(m.Freq, 500);

    StereoSound emptySt(700);
    MonoSound emptyM(emptySt, c);
    EXPECT_EQ(emptyM.GetValues(), 0);
    EXPECT_EQ(emptyM.Freq, 700);

    // Mono to stereo: two identical channels that do not share storage.
    auto mo = mono({5, 6});
    StereoSound s(*mo, c);
    ASSERT_NE(s.WaveLeft, s.WaveRight);
    ASSERT_NE(s.WaveLeft, mo->GetLeftWave());
    (*s.WaveLeft)[0] = 99;
    EXPECT_EQ(vals(s.WaveRight), (Vals{5, 6}));
    EXPECT_EQ(vals(mo->GetLeftWave()), (Vals{5, 6}));

    // Stereo to stereo keeps both channels.
    StereoSound s2(*st, c);
    EXPECT_EQ(vals(s2.WaveRight), (Vals{10, 20, 30}));
    EXPECT_EQ(cancel.load(), 0);
}

TEST_F(SoundTest, ForbiddenCopiesSaySoAndStayEmpty) {
    test::RecordingPlatformScope rec;
    MonoSound m(wav({1, 2}), 1000);
    MonoSound m2(m);
    StereoSound s(wav({1}), wav({2}), 1000);
    StereoSound s2(s);
    ASSERT_EQ(rec.recorder.traces.size(), 2u);
    EXPECT_EQ(rec.recorder.traces[0],
              "Fout: MonoSound(const MonoSound &other) mag niet aangeroepen worden!\n");
    EXPECT_EQ(rec.recorder.traces[1],
              "Fout: StereoSound(const StereoSound &other) mag niet aangeroepen worden!\n");
    EXPECT_EQ(m2.GetValues(), 0);
    EXPECT_EQ(s2.GetValues(), 0);
    EXPECT_NE(m2.WaveMiddle, m.WaveMiddle);
}

TEST_F(SoundTest, ProtectedWavesOutliveTheirSound) {
    Wave* l = wav({1, 2}).release();
    Wave* r = wav({3, 4}).release();
    {
        StereoSound s(l, r, 1000);
        s.SetProtectWave();
        EXPECT_TRUE(s.ProtectWave);
    }
    EXPECT_EQ(vals(l), (Vals{1, 2}));  // the sanitizer would catch a freed wave here
    EXPECT_EQ(vals(r), (Vals{3, 4}));
    delete l;
    delete r;
}

TEST_F(SoundTest, DumpWritesTheFieldsThenEachWave) {
    test::RecordingPlatformScope rec;
    auto s = stereo({1}, {2}, 8000);
    s->Dump();
    const auto& t = rec.recorder.traces;
    ASSERT_EQ(t.size(), 4u + 2 * 4u);
    EXPECT_EQ(t[0].rfind("Sound.this = ", 0), 0u);
    EXPECT_EQ(t[1], "Sound.MoSt = 2\n");
    EXPECT_EQ(t[2], "Sound.Freq = 8000\n");
    EXPECT_EQ(t[3], "Sound.ProtectWave = 0\n");
    EXPECT_EQ(t[4].rfind("StereoSound.WaveLeft = ", 0), 0u);
    EXPECT_EQ(t[5].rfind("Wave.this = ", 0), 0u);
    EXPECT_EQ(t[8].rfind("StereoSound.WaveRight = ", 0), 0u);
    rec.recorder.traces.clear();
    mono({1})->Dump();
    EXPECT_EQ(rec.recorder.traces[1], "Sound.MoSt = 1\n");
    EXPECT_EQ(rec.recorder.traces[4].rfind("MonoSound.WaveMiddle = ", 0), 0u);
}

// ---- wave access ----------------------------------------------------------------------------

TEST_F(SoundTest, MonoWaveOfStereoIsANewCopyOfTheLeftChannel) {
    auto st = stereo({1, 2}, {30, 40});
    bool isNew = false;
    Wave* w = st->GetMonoWave(c, isNew);
    EXPECT_TRUE(isNew);
    EXPECT_EQ(vals(w), (Vals{1, 2}));
    delete w;

    // Always new, even at its own frequency.
    isNew = false;
    w = st->GetMonoWaveAtFreq(c, 1000, isNew);
    EXPECT_TRUE(isNew);
    EXPECT_EQ(vals(w), (Vals{1, 2}));
    delete w;
    w = st->GetMiddleWaveAtFreq(c, 1000, isNew);
    EXPECT_TRUE(isNew);
    delete w;

    // Left and right at their own frequency are borrowed.
    EXPECT_EQ(st->GetLeftWaveAtFreq(c, 1000, isNew), st->GetLeftWave());
    EXPECT_FALSE(isNew);
    EXPECT_EQ(st->GetRightWaveAtFreq(c, 1000, isNew), st->GetRightWave());
    EXPECT_FALSE(isNew);
}

TEST_F(SoundTest, MonoAccessBorrowsUnlessResampled) {
    auto m = mono({0, 100, 200, 300});
    bool isNew = true;
    EXPECT_EQ(m->GetMonoWave(c, isNew), m->GetLeftWave());
    EXPECT_FALSE(isNew);
    EXPECT_EQ(m->GetRightWave(), m->GetLeftWave());
    isNew = true;
    EXPECT_EQ(m->GetMonoWaveAtFreq(c, 1000, isNew), m->GetLeftWave());
    EXPECT_FALSE(isNew);

    // Twice the frequency: twice the samples.
    Wave* w = m->GetMonoWaveAtFreq(c, 2000, isNew);
    EXPECT_TRUE(isNew);
    EXPECT_EQ(w->getValues(), 8);
    EXPECT_EQ((*w)[1], 50);
    delete w;
    w = m->GetLeftWaveAtFreq(c, 500, isNew);
    EXPECT_TRUE(isNew);
    EXPECT_EQ(vals(w), (Vals{0, 200}));
    delete w;
}

TEST_F(SoundTest, DuplicatesAreAlwaysOwned) {
    auto m = mono({7, 8});
    WavePtr d = m->DupMonoWave(c, 0);
    EXPECT_NE(d.get(), m->GetLeftWave());
    EXPECT_EQ(vals(d.get()), (Vals{7, 8}));
    auto st = stereo({1, 2}, {3, 4});
    EXPECT_EQ(vals(st->DupRightWave(c, 0).get()), (Vals{3, 4}));
    EXPECT_EQ(vals(st->DupLeftWave(c, 0).get()), (Vals{1, 2}));
    EXPECT_EQ(st->DupLeftWave(c, 2000)->getValues(), 4);
}

TEST_F(SoundTest, ValueAtRelativeTime) {
    auto m = mono({100, 200, 300});
    EXPECT_EQ(m->GetValueAt(c, 0.0), 100.0L);
    EXPECT_EQ(m->GetValueAt(c, 1.0), 300.0L);
    EXPECT_EQ(m->GetValueAt(c, 0.25), 150.0L);
    EXPECT_EQ(m->GetValueAt(c, 1.00006), 300.0L);  // a die may overshoot 1 a little
    auto st = stereo({-32768, 32767}, {0, 0});
    EXPECT_EQ(st->GetValueAt(c, 0.0), -32768.0L);
    EXPECT_EQ(st->GetValueAt(c, 1.0), 32767.0L);
    EXPECT_EQ(st->GetValueAt(c, 0.5), -0.5L);
}

TEST_F(SoundTest, ChangeFreq) {
    auto e = MonoSound(8000).ChangeFreq(c, 22050.7);
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e->Freq, 22050);
    EXPECT_EQ(e->GetValues(), 0);
    auto st = stereo({0, 100}, {0, -100})->ChangeFreq(c, 2000.0);
    ASSERT_NE(st, nullptr);
    EXPECT_EQ(st->MoSt, 2);
    EXPECT_EQ(st->Freq, 2000);
    EXPECT_EQ(left(st).size(), 4u);
    EXPECT_EQ(right(st)[1], -50);
}

// ---- dispatch ---------------------------------------------------------------------------------

TEST_F(SoundTest, StereoRunsTheOperationOnBothChannelsAndWraps) {
    auto st = stereo({32767, 0}, {1, 2});
    std::int32_t end = -1;
    auto r = st->Up(c, 1, 0, end);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->MoSt, 2);
    EXPECT_EQ(r->Freq, 1000);
    EXPECT_EQ(left(r), (Vals{-32768, 1}));
    EXPECT_EQ(right(r), (Vals{2, 3}));
    EXPECT_EQ(end, 2);
    // The receiver is untouched.
    EXPECT_EQ(left(st), (Vals{32767, 0}));

    end = 1;
    auto v = mono({20000, 20000})->Volume(c, 2.0, 0, end);
    EXPECT_EQ(vals(v->GetLeftWave()), (Vals{-25536, 20000}));
    EXPECT_EQ(v->MoSt, 1);
}

TEST_F(SoundTest, DifferentChannelRangesAreAnError) {
    EXPECT_DEATH(sound_detail::checkSameRange(0, 1, 5, 5),
                 "Assertion failed: begin == begin2, unit sound");
    EXPECT_DEATH(sound_detail::checkSameRange(1, 1, 5, 6),
                 "Assertion failed: end == end2, unit sound");
}

TEST_F(SoundTest, ACancelledOperationGivesNoSound) {
    auto st = stereo({1, 2}, {3, 4});
    cancel = 1;
    std::int32_t end = -1;
    EXPECT_EQ(st->Volume(c, 0.5, 0, end), nullptr);
    EXPECT_EQ(st->CopyRange(c, 0, 1), nullptr);
}

void raiseOnSecondChunk(void* ctx, std::int32_t, std::int32_t) {
    auto* state = static_cast<std::pair<CancelFlag*, int>*>(ctx);
    if (++state->second == 2) setCancelled(*state->first);
}

TEST_F(SoundTest, CancelDuringTheLeftChannelDropsBothChannels) {
    auto st = stereo(Vals(2500, 100), Vals(2500, 200));
    std::pair<CancelFlag*, int> state{&cancel, 0};
    setChunkHook(raiseOnSecondChunk, &state);
    std::int32_t end = -1;
    auto r = st->Volume(c, 2.0, 0, end);
    setChunkHook(nullptr, nullptr);
    EXPECT_EQ(r, nullptr);
    EXPECT_EQ(left(st)[2499], 100);
    EXPECT_EQ(right(st)[0], 200);
}

TEST_F(SoundTest, RemoveAndCopyRange) {
    auto st = stereo({1, 2, 3, 4}, {5, 6, 7, 8}, 4000);
    auto all = st->Remove(c, 0, 4);
    EXPECT_EQ(all->GetValues(), 0);
    EXPECT_EQ(all->MoSt, 2);
    EXPECT_EQ(all->Freq, 4000);
    auto part = st->Remove(c, 1, 3);
    EXPECT_EQ(left(part), (Vals{1, 4}));
    EXPECT_EQ(right(part), (Vals{5, 8}));
    auto none = st->CopyRange(c, 2, 2);
    EXPECT_EQ(none->GetValues(), 0);
    EXPECT_EQ(none->MoSt, 2);
    auto mid = st->CopyRange(c, 1, 3);
    EXPECT_EQ(right(mid), (Vals{6, 7}));
    auto fresh = mono({1})->NewEmpty(c);
    EXPECT_EQ(fresh->MoSt, 1);
    EXPECT_EQ(fresh->GetValues(), 0);
}

// ---- seconds to samples -------------------------------------------------------------------

TEST_F(SoundTest, LengthsAreFreqTimesSecondsPlusOneTruncated) {
    auto m = mono({1, 2});
    std::int32_t begin = 2, end = 2;
    auto r = m->MakeSilence(c, 0.0025, begin, end);  // 2.5 + 1 -> 3
    EXPECT_EQ(vals(r->GetLeftWave()), (Vals{1, 2, 0, 0, 0}));
    EXPECT_EQ(begin, 2);
    EXPECT_EQ(end, 5);
    begin = 0;
    end = 0;
    r = m->MakeSilenceValues(c, 2.9, begin, end);  // samples: truncated, no + 1
    EXPECT_EQ(vals(r->GetLeftWave()), (Vals{0, 0, 1, 2}));
    EXPECT_EQ(end, 2);
    begin = 0;
    end = 0;
    r = MonoSound(1000).MakeSilence(c, 0.0, begin, end);
    EXPECT_EQ(r->GetValues(), 1);
}

TEST_F(SoundTest, PositionsAreFreqTimesSecondsTruncated) {
    std::int32_t end = -1;
    // 0.0029 s at 1000 Hz is 2.9 samples: a shift of 2.
    auto r = mono({1, 2, 3, 4, 5})->Rotate(c, 0.0029, 0, end);
    EXPECT_EQ(vals(r->GetLeftWave()), (Vals{3, 4, 5, 1, 2}));

    auto m = mono({1, 2, 3, 4});
    m->MixCycleAt(c, mono({10, 20}).get(), 0.0019, 1.0);  // position 1
    EXPECT_EQ(vals(m->GetLeftWave()), (Vals{1, 12, 23, 4}));
}

TEST_F(SoundTest, PeriodsStayUntruncated) {
    // 0.0025 s at 1000 Hz is a block length of 2.5: blocks 2, 3, 2, 3.
    auto m = mono({0, 10, 20, 30, 40, 50, 60, 70, 80, 90});
    std::int32_t end = -1;
    auto r = m->Block(c, 0.0025, 0, 0, end);
    EXPECT_EQ(vals(r->GetLeftWave()), (Vals{5, 5, 30, 30, 30, 55, 55, 80, 80, 80}));
}

TEST_F(SoundTest, RollInTakesALengthAndAPosition) {
    // 0.0029 s: a loop of trunc(2.9 + 1) = 3 samples; 0.0019 s: writing starts at 1.
    std::int32_t end = -1;
    auto r = mono({1, 2, 3, 4, 5, 6})->RollIn(c, 0.0029, 0.0019, 0, end);
    EXPECT_EQ(vals(r->GetLeftWave()), (Vals{3 + 6, 1 + 4, 2 + 5}));
    EXPECT_EQ(end, 3);
}

TEST_F(SoundTest, GeneratedLengthsAndEchoTimes) {
    std::int32_t end = 0;
    auto line = MonoSound(1000).MakeLine(c, 0, 300, 0.0025, false, 0, end);
    EXPECT_EQ(vals(line->GetLeftWave()), (Vals{0, 150, 300}));
    EXPECT_EQ(end, 3);
    // An echo 1.5 samples late: read half-way between samples.
    std::int32_t begin = 0;
    end = 4;
    auto echo = mono({0, 100, 0, 0})->PerEcho(c, 0.0015, 1.0, 1, begin, end);
    EXPECT_EQ(vals(echo->GetLeftWave()), (Vals{0, 100, 50, 50, 0, 0}));
    EXPECT_EQ(begin, 0);
    EXPECT_EQ(end, 6);
}

// Filters are handed in by the caller: check what the sound passes on.
struct FilterCall {
    const Wave* wave;
    const Wave* envelope;
    double time;
    double freq;
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

TEST_F(SoundTest, FilterGetsThePeriodAsADoubleOnEachChannel) {
    gCalls.clear();
    auto st = stereo({1, 2, 3}, {4, 5, 6}, 44100);
    auto r = st->ApplyFilter(c, fakePass, 0.0001, 0.5, 3, 2, 1, -1);
    ASSERT_NE(r, nullptr);
    ASSERT_EQ(gCalls.size(), 2u);
    EXPECT_DOUBLE_EQ(gCalls[0].time, 44100 * 0.0001);
    EXPECT_EQ(gCalls[0].wave, st->GetLeftWave());
    EXPECT_EQ(gCalls[1].wave, st->GetRightWave());
    EXPECT_EQ(gCalls[1].countBer, 3);
    EXPECT_EQ(gCalls[1].countCmd, 2);
    EXPECT_EQ(gCalls[1].begin, 1);
    EXPECT_EQ(gCalls[1].end, -1);
    EXPECT_EQ(right(r), (Vals{4, 5, 6}));
}

TEST_F(SoundTest, EnvelopeArgumentsFollowTheReceiversLayout) {
    gCalls.clear();
    auto envSt = stereo({1, 1}, {2, 2});
    auto st = stereo({1, 2, 3}, {4, 5, 6}, 8000);
    st->ApplyFilterEnv(c, fakePassEnv, envSt.get(), 0.5, 1, 1, 0, -1);
    ASSERT_EQ(gCalls.size(), 2u);
    EXPECT_EQ(gCalls[0].envelope, envSt->GetLeftWave());
    EXPECT_EQ(gCalls[1].envelope, envSt->GetRightWave());
    EXPECT_EQ(gCalls[1].freq, 8000.0);

    // A mono envelope feeds both channels of a stereo sound.
    gCalls.clear();
    auto envMo = mono({3, 3});
    st->ApplyFilterEnv(c, fakePassEnv, envMo.get(), 0.5, 1, 1, 0, -1);
    EXPECT_EQ(gCalls[0].envelope, envMo->GetLeftWave());
    EXPECT_EQ(gCalls[1].envelope, envMo->GetLeftWave());

    // A mono sound takes the mono form of a stereo envelope: its left channel, as a new
    // wave that is deleted afterwards (the sanitizer checks the deleting).
    auto env2 = stereo({32767, 32767}, {0, 0});
    std::int32_t end = -1;
    auto v = mono({1000, 1000, 1000})->VolumeEnv(c, env2.get(), 0, end);
    EXPECT_EQ(vals(v->GetLeftWave()), (Vals{1000, 1000, 1000}));
    end = -1;
    auto v2 = stereo({1000, 1000, 1000}, {1000, 1000, 1000})->VolumeEnv(c, env2.get(), 0, end);
    EXPECT_EQ(left(v2), (Vals{1000, 1000, 1000}));
    EXPECT_EQ(right(v2), (Vals{0, 0, 0}));
    end = -1;
    auto v3 = stereo({1000, 1000, 1000}, {-1000, -1000, -1000})
                  ->VolumeEnv(c, mono({0, 32767}).get(), 0, end);
    EXPECT_EQ(left(v3), (Vals{0, 500, 1000}));  // 16383.5 x 1000 / 32767
    EXPECT_EQ(right(v3), (Vals{0, -500, -1000}));
}

// ---- resonator forms ---------------------------------------------------------------------

std::vector<std::string> gForms;
WavePtr resConst(const Wave* w, CancelFlag& c, double per, double, std::int32_t, std::int32_t) {
    gForms.push_back("const " + std::to_string(per));
    return copyWave(c, w);
}
WavePtr resFreq(const Wave* w, CancelFlag& c, const Wave*, double width, double freq,
                std::int32_t, std::int32_t) {
    gForms.push_back("freq " + std::to_string(width) + " " + std::to_string(freq));
    return copyWave(c, w);
}
WavePtr resWidth(const Wave* w, CancelFlag& c, double per, const Wave*, std::int32_t,
                 std::int32_t) {
    gForms.push_back("width " + std::to_string(per));
    return copyWave(c, w);
}
WavePtr resBoth(const Wave* w, CancelFlag& c, const Wave*, const Wave*, double, std::int32_t,
                std::int32_t) {
    gForms.push_back("both");
    return copyWave(c, w);
}

TEST_F(SoundTest, ResonatorFormFollowsTheGivenEnvelopes) {
    const ResonatorFamily fam{resConst, resFreq, resWidth, resBoth};
    auto m = mono({1, 2, 3}, 1000);
    auto env = mono({0, 0});
    gForms.clear();
    m->ApplyResonantFilter(c, fam, 0.0025, 0.25, nullptr, nullptr, 0, -1);
    m->ApplyResonantFilter(c, fam, 0.0025, 0.25, env.get(), nullptr, 0, -1);
    m->ApplyResonantFilter(c, fam, 0.0025, 0.25, nullptr, env.get(), 0, -1);
    m->ApplyResonantFilter(c, fam, 0.0025, 0.25, env.get(), env.get(), 0, -1);
    EXPECT_EQ(gForms, (std::vector<std::string>{"const 2.500000", "freq 0.250000 1000.000000",
                                                "width 2.500000", "both"}));
}

// ---- maximise ---------------------------------------------------------------------------

TEST_F(SoundTest, MaxVolumeTargetsFullScale) {
    std::int32_t end = -1;
    auto r = mono({1000, -2000, 500})->MaxVolume(c, 0, end);  // x 16.3835
    EXPECT_EQ(vals(r->GetLeftWave()), (Vals{16383, -32767, 8191}));
    EXPECT_EQ(end, 3);
    end = -1;
    auto s = mono({1000, -2000, 500})->MaxVolumeSoft(c, 0, end);  // x 11.46845
    EXPECT_EQ(vals(s->GetLeftWave()), (Vals{11468, -22936, 5734}));
}

TEST_F(SoundTest, StereoMaxVolumeUsesTheLouderChannelForBoth) {
    std::int32_t end = -1;
    auto r = stereo({1000, 0}, {0, -4000})->MaxVolume(c, 0, end);  // x 8.19175
    EXPECT_EQ(left(r), (Vals{8191, 0}));
    EXPECT_EQ(right(r), (Vals{0, -32767}));
}

TEST_F(SoundTest, MaxVolumeEdgeCases) {
    std::int32_t end = 2;
    auto silent = mono({0, 0, 9})->MaxVolume(c, 0, end);  // peak 0 in range: factor 0
    EXPECT_EQ(vals(silent->GetLeftWave()), (Vals{0, 0, 9}));
    // The peak search reads -32768 as -32768 and lets 5 win: the factor 6553.4 then wraps
    // the -32768 sample around.
    end = -1;
    auto odd = mono({-32768, 5})->MaxVolume(c, 0, end);
    EXPECT_EQ(vals(odd->GetLeftWave()), (Vals{19661, 32767}));
}

TEST_F(SoundTest, SoftMaxVolumeInPlaceChangesTheSoundItself) {
    auto st = stereo({1000, 1}, {-2000, 2});
    std::int32_t end = 1;
    st->MaxVolumeSoftInPlace(c, 0, end);
    EXPECT_EQ(left(st), (Vals{11468, 1}));
    EXPECT_EQ(right(st), (Vals{-22936, 2}));
    EXPECT_EQ(end, 1);
}

// ---- sounds mixed and inserted ----------------------------------------------------------

TEST_F(SoundTest, InsertResamplesTheOtherSoundToThisFrequency) {
    auto m = mono({1, 2, 3}, 1000);
    auto other = mono({10, 20}, 500);
    std::int32_t end = 1;
    auto r = m->Insert(c, other.get(), 1, end);
    const Vals v = vals(r->GetLeftWave());
    ASSERT_EQ(v.size(), 7u);
    EXPECT_EQ(Vals(v.begin(), v.begin() + 4), (Vals{1, 10, 15, 20}));
    EXPECT_EQ(Vals(v.begin() + 5, v.end()), (Vals{2, 3}));
    EXPECT_EQ(end, 5);
    // Replacing a stereo range by a mono sound: the same wave in both channels.
    end = 3;
    auto s = stereo({1, 2, 3}, {4, 5, 6})->Insert(c, mono({9}).get(), 1, end);
    EXPECT_EQ(left(s), (Vals{1, 9}));
    EXPECT_EQ(right(s), (Vals{4, 9}));
    EXPECT_EQ(end, 2);
}

TEST_F(SoundTest, MixAlignedAtBeginOrEnd) {
    auto m = mono({0, 0, 0, 0, 0});
    auto other = mono({1, 2});
    std::int32_t begin = 1, end = 1;
    auto a = m->MixAlignBegin(c, other.get(), begin, end);
    EXPECT_EQ(vals(a->GetLeftWave()), (Vals{0, 1, 2, 0, 0}));
    EXPECT_EQ(begin, 1);
    EXPECT_EQ(end, 3);
    // Ending at 1 starts one sample before the wave: it grows in front.
    begin = 1;
    end = 1;
    auto b = m->MixAlignEnd(c, other.get(), begin, end);
    EXPECT_EQ(vals(b->GetLeftWave()), (Vals{1, 2, 0, 0, 0, 0}));
    EXPECT_EQ(begin, 0);
    EXPECT_EQ(end, 2);
    // A selection takes only as much of the other sound as fits: the tail at the end.
    begin = 3;
    end = 4;
    auto d = m->MixAlignEnd(c, other.get(), begin, end);
    EXPECT_EQ(vals(d->GetLeftWave()), (Vals{0, 0, 0, 2, 0}));
    EXPECT_EQ(begin, 3);
    EXPECT_EQ(end, 4);
}

TEST_F(SoundTest, MixStretchedOverTheRange) {
    auto st = stereo({1, 1, 1, 1, 1}, {2, 2, 2, 2, 2});
    std::int32_t begin = 1, end = 5;
    auto r = st->MixStretch(c, mono({0, 100}).get(), begin, end);
    const Vals l = left(r), rr = right(r);
    ASSERT_EQ(l.size(), 5u);
    EXPECT_EQ(Vals(l.begin(), l.begin() + 4), (Vals{1, 1, 51, 101}));
    EXPECT_EQ(Vals(rr.begin(), rr.begin() + 4), (Vals{2, 2, 52, 102}));
    EXPECT_EQ(begin, 1);
    EXPECT_EQ(end, 5);
    // An empty range mixes all of the other sound in at begin.
    begin = end = 4;
    auto e = st->MixStretch(c, mono({0, 100}).get(), begin, end);
    EXPECT_EQ(left(e), (Vals{1, 1, 1, 1, 1, 100}));
    EXPECT_EQ(end, 6);
}

TEST_F(SoundTest, CyclicMixWrapsToTheStartAndLogs) {
    test::RecordingPlatformScope rec;
    auto m = mono({1, 2, 3, 4});
    m->MixCycleAfterThis(c, mono({10, 20, 30}).get(), 2);
    EXPECT_EQ(vals(m->GetLeftWave()), (Vals{31, 2, 13, 24}));
    auto st = stereo({30000, 0}, {0, 0});
    st->MixCycleAfterThis(c, mono({30000}).get(), 0);
    EXPECT_EQ(left(st), (Vals{-5536, 0}));
    EXPECT_EQ(right(st), (Vals{30000, 0}));
    EXPECT_EQ(rec.recorder.traces,
              (std::vector<std::string>{"in MonoSound::MixCycleAfterThis\n",
                                        "uit MonoSound::MixCycleAfterThis\n",
                                        "in StereoSound::MixCycleAfterThis\n",
                                        "uit StereoSound::MixCycleAfterThis\n"}));
    // The plain form stops at the end.
    auto p = mono({1, 2, 3, 4});
    p->MixCycleSimple(c, mono({10, 20, 30}).get(), 2);
    EXPECT_EQ(vals(p->GetLeftWave()), (Vals{1, 2, 13, 24}));
}

TEST_F(SoundTest, DrawLineWritesBothChannelsInPlace) {
    auto st = stereo({0, 0, 0, 0}, {9, 9, 9, 9});
    st->DrawLine(c, 1, 0, 4, 300);
    EXPECT_EQ(left(st), (Vals{0, 0, 150, 300}));
    EXPECT_EQ(right(st), (Vals{9, 0, 150, 300}));
}

TEST_F(SoundTest, MultiFrequencyRecordsCountMustBePositive) {
    std::int32_t end = 0;
    EXPECT_DEATH(MonoSound(1000).MakeMFreqCount(c, 0.01, nullptr, 0, nullptr, 0, end),
                 "Assertion failed: count > 0, unit sound");
}

}  // namespace
}  // namespace orv
