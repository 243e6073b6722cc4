#include "document/unit_wave.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "document/workspace.h"
#include "fileio/wav_file.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

WavePtr waveOf(const std::vector<int>& v) {
    CancelFlag c{0};
    auto w = std::make_unique<Wave>(c, std::int32_t(v.size()));
    for (std::size_t i = 0; i < v.size(); ++i) (*w)[std::int32_t(i)] = WaveVal(v[i]);
    return w;
}
SoundPtr monoOf(const std::vector<int>& v, std::int32_t freq = 1000) {
    return std::make_unique<MonoSound>(waveOf(v), freq);
}
SoundPtr ramp(int n, std::int32_t freq = 1000) {
    std::vector<int> v(n);
    for (int i = 0; i < n; ++i) v[i] = i;
    return monoOf(v, freq);
}
std::vector<int> samplesOf(const Wave* w) {
    std::vector<int> v;
    for (std::int32_t i = 0; i < w->getValues(); ++i) v.push_back((*w)[i]);
    return v;
}
std::vector<int> samplesOf(const TUnitWave& u) { return samplesOf(u.getSound()->GetLeftWave()); }

// Records what the unit asks of its window.
struct RecordingView : WaveView {
    std::vector<std::string> calls;
    void repaint(std::int32_t b, std::int32_t e) override {
        calls.push_back("repaint " + std::to_string(b) + " " + std::to_string(e));
    }
    void repaintAll() override { calls.push_back("repaintAll"); }
    void moveCursor(std::int32_t p) override { calls.push_back("cursor " + std::to_string(p)); }
    void showRange(std::int32_t b, std::int32_t e) override {
        calls.push_back("show " + std::to_string(b) + " " + std::to_string(e));
    }
    void refreshStatus(const TUnitWave&) override { calls.push_back("status"); }
};

using Calls = std::vector<std::string>;

// ---- construction and state -------------------------------------------------------------------

TEST(UnitWave, NewUnitIsEmptyNewAndOfTheChosenLayout) {
    TUnitWave mono("NONAME", WaveFileProps{8000, 1, 1});
    EXPECT_EQ(mono.getState(), kStateNew);
    EXPECT_TRUE(mono.isNew());
    EXPECT_EQ(mono.getFileName(), "NONAME");
    EXPECT_EQ(mono.getFreq(), 8000);
    EXPECT_EQ(mono.getMonoStereo(), 1);
    EXPECT_EQ(mono.getBytesPSample(), 1);
    EXPECT_EQ(mono.values(), 0);
    EXPECT_EQ(mono.getCursor(), 0);
    EXPECT_EQ(mono.getSelEndPos(), 0);
    EXPECT_EQ(mono.getName(), "");
    EXPECT_FALSE(mono.cancelled());
    // An empty wave never asks to be saved, not even a new one.
    EXPECT_FALSE(mono.needsSave());

    TUnitWave stereo("x.wav", WaveFileProps{44100, 2, 2});
    EXPECT_EQ(stereo.getMonoStereo(), 2);
    EXPECT_NE(dynamic_cast<StereoSound*>(stereo.getSound()), nullptr);
}

TEST(UnitWaveDeathTest, BadLayoutOrWidthAsserts) {
    EXPECT_DEATH(TUnitWave("a", (WaveFileProps{8000, 3, 2})),
                 "Assertion failed: waveFileProps.MonoStereo == 1 \\|\\| waveFileProps.MonoStereo "
                 "== 2, unit unitwave");
    EXPECT_DEATH(TUnitWave("a", (WaveFileProps{8000, 1, 4})),
                 "Assertion failed: waveFileProps.BytesPSample == 1 \\|\\| "
                 "waveFileProps.BytesPSample == 2, unit unitwave");
}

TEST(UnitWave, StateMovesOnlyFromSavedToChanged) {
    TUnitWave loaded(ramp(10), 2, "a.wav");
    EXPECT_EQ(loaded.getState(), kStateSaved);
    EXPECT_FALSE(loaded.needsSave());
    loaded.setChanged();
    EXPECT_EQ(loaded.getState(), kStateChanged);
    EXPECT_TRUE(loaded.needsSave());
    loaded.setChanged();
    EXPECT_EQ(loaded.getState(), kStateChanged);
    loaded.saveAs("b.wav");
    EXPECT_EQ(loaded.getState(), kStateSaved);
    EXPECT_EQ(loaded.getFileName(), "b.wav");

    TUnitWave fresh("NONAME", WaveFileProps{1000, 1, 2});
    fresh.setChanged();
    EXPECT_EQ(fresh.getState(), kStateNew);  // a new wave that changes stays new
    EXPECT_EQ(fresh.statusTexts()[5], "New");
}

// ---- cursor and selection ------------------------------------------------------------------------

TEST(UnitWave, PositionsAreClampedToTheWave) {
    TUnitWave u(ramp(100), 2, "a.wav");
    u.setCursor(500);
    EXPECT_EQ(u.getCursor(), 100);
    EXPECT_EQ(u.getSelEndPos(), 100);
    u.setCursor(-5);
    EXPECT_EQ(u.getCursor(), 0);
    u.setSelEnd(1000);
    EXPECT_EQ(u.getSelEndPos(), 100);
    EXPECT_EQ(u.selBegin(), 0);
    EXPECT_EQ(u.selEnd(), 100);
    u.setCursorOnly(-1);
    EXPECT_EQ(u.getCursor(), 0);
    u.setSelection(-10, 250);
    EXPECT_EQ(u.selBegin(), 0);
    EXPECT_EQ(u.selEnd(), 100);
}

TEST(UnitWave, DerivedSelectionWithAndWithoutAPart) {
    TUnitWave u(ramp(100), 2, "a.wav");
    u.setCursor(40);
    EXPECT_FALSE(u.hasSelection());
    EXPECT_EQ(u.selBegin(), 0);  // nothing selected: the whole wave
    EXPECT_EQ(u.selEnd(), 100);
    EXPECT_DOUBLE_EQ(u.selectionSeconds(), 0.1);
    u.setSelEnd(15);
    EXPECT_EQ(u.selBegin(), 15);
    EXPECT_EQ(u.selEnd(), 40);
    EXPECT_DOUBLE_EQ(u.selectionSeconds(), 0.025);
}

TEST(UnitWave, SetSelectionKeepsTheAnchorOnItsSide) {
    TUnitWave u(ramp(100), 2, "a.wav");
    // Anchor on the right: cursor 30, moving end 5.
    u.setCursor(30);
    u.setSelEnd(5);
    u.setSelection(10, 20);
    EXPECT_EQ(u.getCursor(), 20);
    EXPECT_EQ(u.getSelEndPos(), 10);
    // Anchor on the left.
    u.setCursor(5);
    u.setSelEnd(30);
    u.setSelection(10, 20);
    EXPECT_EQ(u.getCursor(), 10);
    EXPECT_EQ(u.getSelEndPos(), 20);
}

TEST(UnitWaveDeathTest, SetSelectionBackwardsAsserts) {
    TUnitWave u(ramp(100), 2, "a.wav");
    EXPECT_DEATH(u.setSelection(20, 10), "Assertion failed: begin <= end, unit unitwave");
}

TEST(UnitWave, SelectionChangeRepaintsOnlyWhatChangedThenStatusThenCursor) {
    TUnitWave u(ramp(100), 2, "a.wav");
    RecordingView view;
    u.setView(&view);
    u.setSelection(10, 20);  // from nothing selected (the whole wave) to 10..20
    EXPECT_EQ(view.calls, (Calls{"repaint 0 10", "repaint 20 100", "status", "cursor 10"}));
    view.calls.clear();
    u.setSelection(15, 30);  // anchor 10 on the left: cursor 15, end 30
    EXPECT_EQ(view.calls, (Calls{"repaint 20 30", "repaint 10 15", "status", "cursor 15"}));
    view.calls.clear();
    u.setSelEnd(5);  // 15..30 becomes 5..15
    EXPECT_EQ(view.calls, (Calls{"repaint 5 15", "repaint 15 30", "status"}));
    view.calls.clear();
    u.setCursorOnly(5);  // the part becomes empty at 5: "nothing selected" is the whole wave
    EXPECT_EQ(view.calls, (Calls{"repaint 0 5", "repaint 15 100", "status", "cursor 5"}));
}

TEST(UnitWave, SelectionChangeOnAnEmptyWaveRepaintsNothing) {
    TUnitWave u("NONAME", WaveFileProps{1000, 1, 2});
    RecordingView view;
    u.setView(&view);
    u.setSelection(0, 0);
    u.setCursor(3);
    EXPECT_EQ(view.calls, (Calls{"status", "status"}));
}

TEST(UnitWave, SelectRangeShowsThenSelectsOrPlacesTheCursor) {
    TUnitWave u(ramp(100), 2, "a.wav");
    RecordingView view;
    u.setView(&view);
    u.selectRange(30, 60);
    EXPECT_EQ(view.calls.front(), "show 30 60");
    EXPECT_EQ(u.selBegin(), 30);
    EXPECT_EQ(u.selEnd(), 60);
    u.selectRange(7, 7);
    EXPECT_FALSE(u.hasSelection());
    EXPECT_EQ(u.getCursor(), 7);
}

// ---- status texts --------------------------------------------------------------------------------

TEST(UnitWaveStatus, SizeTextThresholds) {
    EXPECT_EQ(TUnitWave::sizeText(0), "0 b");
    EXPECT_EQ(TUnitWave::sizeText(1023), "1023 b");
    EXPECT_EQ(TUnitWave::sizeText(1024), "1.00 kb");
    EXPECT_EQ(TUnitWave::sizeText(1536), "1.50 kb");
    EXPECT_EQ(TUnitWave::sizeText(10240), "10.0 kb");
    EXPECT_EQ(TUnitWave::sizeText(102400), "100 kb");
    EXPECT_EQ(TUnitWave::sizeText(1048576), "1.00 Mb");
    EXPECT_EQ(TUnitWave::sizeText(10.0 * 1048576), "10.0 Mb");
    EXPECT_EQ(TUnitWave::sizeText(100.0 * 1048576), "100 Mb");
    EXPECT_EQ(TUnitWave::sizeText(1024.0 * 1048576), "1.00 Gb");
}

TEST(UnitWaveStatus, FrequencyPanelKeepsItsWholeKilohertzPlusATenth) {
    EXPECT_EQ(TUnitWave::freqText(44100), "44.100 kHz");
    EXPECT_EQ(TUnitWave::freqText(22050), "22.100 kHz");
    EXPECT_EQ(TUnitWave::freqText(8000), "8.100 kHz");
    EXPECT_EQ(TUnitWave::freqText(999), "0.100 kHz");
}

TEST(UnitWaveStatus, StatePanel) {
    EXPECT_EQ(TUnitWave::stateText(0), "New");
    EXPECT_EQ(TUnitWave::stateText(1), "");
    EXPECT_EQ(TUnitWave::stateText(2), "Changed");
    EXPECT_EQ(TUnitWave::stateText(3), "???");
}

TEST(UnitWaveStatus, PanelsTwoToSevenOfALoadedWave) {
    std::vector<int> v(22050, 0);
    TUnitWave mono(monoOf(v, 22050), 1, "a.wav");
    EXPECT_EQ(mono.statusTexts(),
              (UnitStatus{"1.00000 s", "22.100 kHz", "8", "MO", "21.5 kb", ""}));
    auto stereo = std::make_unique<StereoSound>(waveOf(std::vector<int>(1000)),
                                                waveOf(std::vector<int>(1000)), 1000);
    TUnitWave st(std::move(stereo), 2, "b.wav");  // 4000 bytes: 3.906 kb, cut, not rounded
    st.setChanged();
    EXPECT_EQ(st.statusTexts(), (UnitStatus{"1.00000 s", "1.100 kHz", "16", "ST", "3.90 kb",
                                            "Changed"}));
}

// ---- saving ---------------------------------------------------------------------------------------

class UnitSave : public ::testing::Test {
protected:
    void SetUp() override {
        dir = fs::temp_directory_path() /
              ("orv_unit_save_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
               "_" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }
    std::vector<int> readBack(const std::string& file) {
        SoundPtr s;
        int bytes = 0;
        const char* message = "";
        EXPECT_TRUE(readWaveFile(file, s, bytes, message)) << message;
        return s ? samplesOf(s->GetLeftWave()) : std::vector<int>{};
    }
    fs::path dir;
};

TEST_F(UnitSave, WholeWaveSelectionAndTaggedRange) {
    test::RecordingPlatformScope rec;
    TUnitWave u(ramp(10), 2, (dir / "a.wav").string());
    ASSERT_TRUE(u.save(false));
    EXPECT_EQ(readBack((dir / "a.wav").string()), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    // The trace says what the request does, before and after reading the tags.
    EXPECT_EQ(rec.recorder.traces, (std::vector<std::string>{"PLAY Get...\n",
                                                             "PLAY call writeWaveFile\n"}));

    const std::string part = (dir / "part.wav").string();
    u.setCursor(7);
    u.setSelEnd(3);
    ASSERT_TRUE(u.saveSelection(part, true));
    EXPECT_EQ(readBack(part), (std::vector<int>{3, 4, 5, 6}));
    u.setCursor(4);  // nothing selected: the whole wave
    ASSERT_TRUE(u.saveSelection(part, false));
    EXPECT_EQ(readBack(part).size(), 10u);

    TagList request;
    request.addString("file", part);
    request.addLong("begin", 8);  // "end" defaults to the length at the time of writing
    ASSERT_TRUE(u.writeRequest(request));
    EXPECT_EQ(readBack(part), (std::vector<int>{8, 9}));
    EXPECT_TRUE(rec.recorder.messages.empty());
    EXPECT_EQ(u.getState(), kStateSaved);
}

TEST_F(UnitSave, FailureShowsTheSaveErrorAndChangesNothing) {
    test::RecordingPlatformScope rec;
    TUnitWave u(ramp(10), 2, (dir / "missing" / "a.wav").string());
    u.setChanged();
    EXPECT_FALSE(u.save(false));
    ASSERT_EQ(rec.recorder.messages.size(), 1u);
    EXPECT_EQ(rec.recorder.messages[0].caption, "Save Error");
    EXPECT_EQ(rec.recorder.messages[0].text, "Cannot save the wave.");
    EXPECT_EQ(u.getState(), kStateChanged);
    EXPECT_EQ(u.getFileName(), (dir / "missing" / "a.wav").string());
}

// ---- operations -------------------------------------------------------------------------------------

TEST(UnitWaveOperations, VolumeOverTheSelectionRemembersItsRecordAndSelectsTheResult) {
    TUnitWave u(monoOf({100, -200, 301, 7, 9}), 2, "a.wav");
    RecordingView view;
    u.setView(&view);
    u.setCursor(1);
    u.setSelEnd(4);
    view.calls.clear();
    VolumeRecord r;
    r.factor.value = 0.5;
    ASSERT_TRUE(u.volume(r));
    EXPECT_EQ(samplesOf(u), (std::vector<int>{100, -100, 150, 3, 9}));
    EXPECT_EQ(u.records().volume.factor.value, 0.5);
    EXPECT_EQ(u.selBegin(), 1);
    EXPECT_EQ(u.selEnd(), 4);
    EXPECT_EQ(view.calls.front(), "show 1 4");  // the range goes to the view first
    EXPECT_EQ(view.calls.back(), "repaintAll");
    // The unit does not mark itself: the command layer does.
    EXPECT_EQ(u.getState(), kStateSaved);
}

TEST(UnitWaveOperations, GeneratorsInsertAtTheCursorOrReplaceTheSelection) {
    TUnitWave u(monoOf({1, 2, 3}), 2, "a.wav");
    u.setCursor(1);
    SilenceRecord silence;
    silence.length.value = 0.001;  // trunc(1000 x 0.001 + 1) = 2 samples
    ASSERT_TRUE(u.makeSilence(silence));
    EXPECT_EQ(samplesOf(u), (std::vector<int>{1, 0, 0, 2, 3}));
    EXPECT_EQ(u.selBegin(), 1);
    EXPECT_EQ(u.selEnd(), 3);

    // The selection 1..3 is replaced by a line 0, 1, 2, 3, 4.
    LineRecord line;
    line.beginValue.value = 0;
    line.endValue.value = 4;
    line.length.value = 0.004;
    line.kind = LineRecord::kLinear;
    ASSERT_TRUE(u.makeLine(line));
    EXPECT_EQ(samplesOf(u), (std::vector<int>{1, 0, 1, 2, 3, 4, 2, 3}));
    EXPECT_EQ(u.selBegin(), 1);
    EXPECT_EQ(u.selEnd(), 6);
}

TEST(UnitWaveOperations, BlockWaveOfTwoPeriodsByCount) {
    TUnitWave u("NONAME", WaveFileProps{1000, 1, 2});
    BlockTriangleRecord r;
    r.BloTriHorKind = BlockTriangleRecord::bloTriFreq;
    r.frequency.value = 0.004;  // a period of 4 samples
    r.middle.value = 0.5;
    r.lengthKind = kLengthCount;
    r.lengthCount = 2;  // 0.008 s: trunc(8 + 1) = 9 samples
    r.height1.value = 100;
    r.height2.value = -100;
    ASSERT_TRUE(u.makeBlock(r));
    EXPECT_EQ(samplesOf(u), (std::vector<int>{100, 100, -100, -100, 100, 100, -100, -100, 100}));
    // Block and triangle keep records of their own.
    EXPECT_EQ(u.records().makeBlock.lengthCount, 2);
    EXPECT_EQ(u.records().makeTriangle.lengthCount, 10);
}

TEST(UnitWaveOperations, RotateByTimeOrFactorToEitherSide) {
    RotateRecord r;
    r.kind = RotateRecord::kByTime;
    r.time.value = 0.002;  // two samples
    TUnitWave left(monoOf({1, 2, 3, 4, 5}), 2, "a.wav");
    ASSERT_TRUE(left.rotate(r));
    EXPECT_EQ(samplesOf(left), (std::vector<int>{3, 4, 5, 1, 2}));

    r.shiftTo = RotateRecord::kRight;
    TUnitWave right(monoOf({1, 2, 3, 4, 5}), 2, "a.wav");
    ASSERT_TRUE(right.rotate(r));
    EXPECT_EQ(samplesOf(right), (std::vector<int>{4, 5, 1, 2, 3}));

    r.kind = RotateRecord::kByFactor;
    r.factor.value = 0.4;
    r.shiftTo = RotateRecord::kLeft;
    TUnitWave byFactor(monoOf({1, 2, 3, 4, 5}), 2, "a.wav");
    ASSERT_TRUE(byFactor.rotate(r));
    EXPECT_EQ(samplesOf(byFactor), (std::vector<int>{3, 4, 5, 1, 2}));
}

TEST(UnitWaveOperations, LengthOptionsMeasureThePartBeingEdited) {
    Workspace ws;
    TUnitWave& u = ws.add(std::make_unique<TUnitWave>(ramp(100), 2, "a.wav"));
    ASSERT_TRUE(ws.registerName(u, "me"));
    LengthRecord r;
    r.lengthKind = kLengthSameAs;
    r.sameAs = "me";  // the edited wave itself: factor 1
    ASSERT_TRUE(u.length(r));
    EXPECT_EQ(u.values(), 100);
    EXPECT_EQ(samplesOf(u)[99], 99);

    r.lengthKind = kLengthNew;
    r.newLength.value = 0.04;  // the selected 0.02 s become 0.04 s
    u.setCursor(0);
    u.setSelEnd(20);
    ASSERT_TRUE(u.length(r));
    EXPECT_EQ(u.values(), 120);
    EXPECT_EQ(u.selEnd(), 40);
}

TEST(UnitWaveOperations, EnvelopesAreRegisteredWavesOfTheHost) {
    Workspace ws;
    TUnitWave& env = ws.add(std::make_unique<TUnitWave>(monoOf({16384, 16384}), 2, "e.wav"));
    ASSERT_TRUE(ws.registerName(env, "half"));
    TUnitWave& u = ws.add(std::make_unique<TUnitWave>(monoOf({100, 301, -60}), 2, "a.wav"));
    VolumeRecord r;
    r.kind = kEnvelope;
    r.envelope = "half";
    ASSERT_TRUE(u.volume(r));
    // 16384 / 32767 is a hair above one half.
    EXPECT_EQ(samplesOf(u), (std::vector<int>{50, 150, -30}));
}

TEST(UnitWaveOperations, BalanceMakesTheWholeWaveStereo) {
    TUnitWave u(monoOf({1000, 2000, 3000}), 2, "a.wav");
    u.setCursor(1);
    BalanceRecord r;  // in the middle, no differences
    ASSERT_TRUE(u.balance(r));
    EXPECT_EQ(u.getMonoStereo(), 2);
    EXPECT_EQ(u.selBegin(), 0);
    EXPECT_EQ(u.selEnd(), 3);
}

TEST(UnitWaveOperations, RecordsAreRememberedPerDocument) {
    TUnitWave a(ramp(10), 2, "a.wav"), b(ramp(10), 2, "b.wav");
    UpRecord r;
    r.addValue.value = 10;
    ASSERT_TRUE(a.up(r));
    EXPECT_EQ(samplesOf(a)[0], 10);
    EXPECT_EQ(a.records().up.addValue.value, 10);
    EXPECT_EQ(b.records().up.addValue.value, 16383);  // the default, untouched
}

struct RaiseAt {
    CancelFlag* flag;
    std::int32_t at;
    int chunks = 0;
};
void raiseAt(void* context, std::int32_t pos, std::int32_t) {
    auto* r = static_cast<RaiseAt*>(context);
    ++r->chunks;
    if (pos >= r->at) setCancelled(*r->flag);
}

TEST(UnitWaveOperations, CancelledOperationLeavesTheUnitExactlyAsItWas) {
    TUnitWave u(ramp(5000), 2, "a.wav");
    u.setChanged();
    u.setCursor(4500);
    u.setSelEnd(200);
    RecordingView view;
    u.setView(&view);
    const Sound* before = u.getSound();
    const std::vector<int> samples = samplesOf(u);

    RaiseAt raise{&u.cancelFlag(), 1200};
    setChunkHook(raiseAt, &raise);
    VolumeRecord r;
    r.factor.value = 2.0;
    const bool done = u.volume(r);
    setChunkHook(nullptr, nullptr);

    EXPECT_FALSE(done);
    EXPECT_GT(raise.chunks, 1);  // it really stopped in the middle
    EXPECT_EQ(u.getSound(), before);
    EXPECT_EQ(samplesOf(u), samples);
    EXPECT_EQ(u.getCursor(), 4500);
    EXPECT_EQ(u.getSelEndPos(), 200);
    EXPECT_EQ(u.getState(), kStateChanged);
    EXPECT_EQ(view.calls, (Calls{"show 200 4500", "repaintAll"}));
}

TEST(UnitWave, MultiFrequencyRecordsByIndex) {
    TUnitWave u("NONAME", WaveFileProps{1000, 1, 2});
    EXPECT_EQ(u.freqCount(), 1);
    EXPECT_EQ(u.mFreqBrowseRecord(0).frequency.value, 0.001);
    EXPECT_DEATH(u.mFreqBrowseRecord(1), "Assertion failed: index < freqCount, unit unitwave");
}

}  // namespace
}  // namespace orv
