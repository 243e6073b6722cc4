#include "document/unit_wave.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fileio/wav_file.h"
#include "support/document_test_helpers.h"

namespace orv {
namespace {

using namespace orv::test;

TEST(UnitWave, NewUnitIsEmptyNewAndOfTheChosenLayout) {
    TUnitWave u("NONAME", WaveFileProps{8000, 1, 1});
    EXPECT_EQ((Samples{u.getState(), u.getFreq(), u.getBytesPSample(), u.values()}),
              (Samples{kStateNew, 8000, 1, 0}));
    EXPECT_FALSE(u.needsSave());  // an empty wave never asks to be saved, not even a new one
    TUnitWave st("x.wav", WaveFileProps{44100, 2, 2});
    EXPECT_NE(dynamic_cast<StereoSound*>(st.getSound()), nullptr);
}

TEST(UnitWaveDeathTest, BadLayoutAndBackwardSelectionAssert) {
    EXPECT_DEATH(TUnitWave("a", (WaveFileProps{8000, 3, 2})),
                 "Assertion failed: waveFileProps.MonoStereo == 1 \\|\\| waveFileProps.MonoStereo "
                 "== 2, unit unitwave");
    TUnitWave u(mono(rampOf(100)), 2, "a.wav");
    EXPECT_DEATH(u.setSelection(20, 10), "Assertion failed: begin <= end, unit unitwave");
}

TEST(UnitWave, StateMovesOnlyFromSavedToChanged) {
    TUnitWave loaded(mono(rampOf(10)), 2, "a.wav");
    EXPECT_EQ(loaded.getState(), kStateSaved);
    EXPECT_FALSE(loaded.needsSave());
    loaded.setChanged();
    loaded.setChanged();
    EXPECT_EQ(loaded.getState(), kStateChanged);
    EXPECT_TRUE(loaded.needsSave());
    loaded.saveAs("b.wav");
    EXPECT_EQ(loaded.getState(), kStateSaved);
    EXPECT_EQ(loaded.getFileName(), "b.wav");
    TUnitWave fresh("NONAME", WaveFileProps{1000, 1, 2});
    fresh.setChanged();
    EXPECT_EQ(fresh.getState(), kStateNew);  // a new wave that changes stays new
}

TEST(UnitWave, PositionsAreClampedAndNothingSelectedMeansTheWholeWave) {
    TUnitWave u(mono(rampOf(100)), 2, "a.wav");
    u.setCursor(500);
    EXPECT_EQ(marks(u), Ends(100, 100));
    u.setCursor(-5);
    EXPECT_EQ(u.getCursor(), 0);
    u.setSelEnd(1000);
    EXPECT_EQ(u.getSelEndPos(), 100);
    u.setSelection(-10, 250);
    EXPECT_EQ(part(u), Ends(0, 100));
    u.setCursor(40);
    EXPECT_EQ(part(u), Ends(0, 100));
    EXPECT_DOUBLE_EQ(u.selectionSeconds(), 0.1);
    u.setSelEnd(15);
    EXPECT_EQ(part(u), Ends(15, 40));
    EXPECT_DOUBLE_EQ(u.selectionSeconds(), 0.025);
    // A new part keeps the anchor on the right (on the left: in the view test below).
    select(u, 30, 5);
    u.setSelection(10, 20);
    EXPECT_EQ(marks(u), Ends(20, 10));
}

// A unit that goes (a split or a merge replaced it) tells its window, which must forget it.
TEST(UnitWave, ADestroyedUnitTellsItsViewLast) {
    RecordingView view;
    {
        TUnitWave u(mono(rampOf(4)), 2, "a.wav");
        view.attach(u);
    }
    EXPECT_EQ(view.calls, (Lines{"gone"}));
    EXPECT_EQ(view.unit, nullptr);
}

TEST(UnitWave, SelectionChangeRepaintsOnlyWhatChangedThenStatusThenCursor) {
    TUnitWave u(mono(rampOf(100)), 2, "a.wav");
    RecordingView view;
    view.attach(u);
    u.setSelection(10, 20);  // from nothing selected (the whole wave) to 10..20
    EXPECT_EQ(view.calls, (Lines{"repaint 0 10", "repaint 20 100", "status", "cursor 10"}));
    view.calls.clear();
    u.setSelection(15, 30);  // anchor 10 on the left: cursor 15, end 30
    EXPECT_EQ(view.calls, (Lines{"repaint 20 30", "repaint 10 15", "status", "cursor 15"}));
    view.calls.clear();
    u.setSelEnd(5);  // 15..30 becomes 5..15
    EXPECT_EQ(view.calls, (Lines{"repaint 5 15", "repaint 15 30", "status"}));
    view.calls.clear();
    u.setCursorOnly(5);  // the part becomes empty at 5: "nothing selected" is the whole wave
    EXPECT_EQ(view.calls, (Lines{"repaint 0 5", "repaint 15 100", "status", "cursor 5"}));
    view.calls.clear();
    u.selectRange(30, 60);
    EXPECT_EQ(view.calls.front(), "show 30 60");
    EXPECT_EQ(part(u), Ends(30, 60));
    u.selectRange(7, 7);
    EXPECT_FALSE(u.hasSelection());
    EXPECT_EQ(u.getCursor(), 7);

    TUnitWave empty("NONAME", WaveFileProps{1000, 1, 2});
    RecordingView emptyView;
    emptyView.attach(empty);
    empty.setSelection(0, 0);
    empty.setCursor(3);
    EXPECT_EQ(emptyView.calls, (Lines{"status", "status"}));
}

TEST(UnitWaveStatus, PanelTexts) {
    const std::pair<double, const char*> sizes[] = {
        {1023, "1023 b"}, {1024, "1.00 kb"}, {1536, "1.50 kb"}, {10239, "10.00 kb"},
        {10240, "10.0 kb"}, {102400, "100 kb"}, {1048575, "1024 kb"}, {1048576, "1.00 Mb"},
        {10.0 * 1048576, "10.0 Mb"}, {100.0 * 1048576 - 1, "100.0 Mb"},
        {100.0 * 1048576, "100 Mb"}, {1024.0 * 1048576 - 1, "1024 Mb"},
        {1024.0 * 1048576, "1.00 Gb"}};
    // 10239, 1048575 and the bytes below 100 Mb and 1024 Mb stay below their thresholds; the
    // writer's rounding carries them up.
    for (const auto& [bytes, text] : sizes) EXPECT_EQ(TUnitWave::sizeText(bytes), text) << bytes;
    // The whole kilohertz plus a tenth, as the panel has always shown it.
    const std::pair<int, const char*> freqs[] = {
        {44100, "44.100 kHz"}, {22050, "22.100 kHz"}, {8000, "8.100 kHz"}, {999, "0.100 kHz"}};
    for (const auto& [f, text] : freqs) EXPECT_EQ(TUnitWave::freqText(f), text) << f;
    const char* states[] = {"New", "", "Changed", "???"};
    for (int s = 0; s < 4; ++s) EXPECT_EQ(TUnitWave::stateText(s), states[s]) << s;

    TUnitWave m(mono(Samples(22050, 0), 22050), 1, "a.wav");
    EXPECT_EQ(m.statusTexts(), (UnitStatus{"1.00000 s", "22.100 kHz", "8", "MO", "21.5 kb", ""}));
    TUnitWave st(stereo(Samples(1000), Samples(1000)), 2, "b.wav");
    st.setChanged();  // 4000 bytes: 3.906 kb, cut, not rounded
    EXPECT_EQ(st.statusTexts(),
              (UnitStatus{"1.00000 s", "1.100 kHz", "16", "ST", "3.90 kb", "Changed"}));
}

Samples readBack(const std::string& file) {
    SoundPtr s;
    int bytes = 0;
    const char* message = "";
    EXPECT_TRUE(readWaveFile(file, s, bytes, message)) << message;
    return s ? samplesOf(s->GetLeftWave()) : Samples{};
}

TEST(UnitSave, WholeWaveSelectionAndTaggedRange) {
    TempDir dir;
    RecordingPlatformScope rec;
    TUnitWave u(mono(rampOf(10)), 2, dir / "a.wav");
    ASSERT_TRUE(u.save(false));
    EXPECT_EQ(readBack(dir / "a.wav"), rampOf(10));
    // The trace says what the request does, before and after reading the tags.
    EXPECT_EQ(rec.recorder.traces, (Lines{"PLAY Get...\n", "PLAY call writeWaveFile\n"}));
    const std::string part = dir / "part.wav";
    select(u, 7, 3);
    ASSERT_TRUE(u.saveSelection(part, true));
    EXPECT_EQ(readBack(part), (Samples{3, 4, 5, 6}));
    TagList request;
    request.addString("file", part);
    request.addLong("begin", 8);  // "end" defaults to the length at the time of writing
    ASSERT_TRUE(u.writeRequest(request));
    EXPECT_EQ(readBack(part), (Samples{8, 9}));
    EXPECT_TRUE(rec.recorder.messages.empty());
}

// The operations run through the workspace's action flow, from the record the unit
// remembers (what a dialog shows and hands back unchanged when OK is pressed at once).
using UnitWaveOperations = WorkspaceFixture;

TEST_F(UnitWaveOperations, VolumeOverTheSelectionRemembersItsRecordAndSelectsTheResult) {
    TUnitWave& u = load({100, -200, 301, 7, 9});
    RecordingView view;
    view.attach(u);
    select(u, 1, 4);
    view.calls.clear();
    u.records().volume.factor.value = 0.5;
    ASSERT_TRUE(run("Volume"));
    EXPECT_EQ(samplesOf(u), (Samples{100, -100, 150, 3, 9}));
    EXPECT_EQ(u.records().volume.factor.value, 0.5);
    EXPECT_EQ(part(u), Ends(1, 4));
    EXPECT_EQ(view.calls.front(), "show 1 4");  // the range goes to the view first
    EXPECT_EQ(view.calls.back(), "status");     // repainted, then the status bar
    EXPECT_EQ(view.calls[view.calls.size() - 2], "repaintAll");
    EXPECT_EQ(u.getState(), kStateChanged);
}

TEST_F(UnitWaveOperations, GeneratorsInsertAtTheCursorOrReplaceTheSelection) {
    TUnitWave& u = load({1, 2, 3});
    u.setCursor(1);
    u.records().silence.length.value = 0.001;  // trunc(1000 x 0.001 + 1) = 2 samples
    ASSERT_TRUE(run("MakeSilence"));
    EXPECT_EQ(samplesOf(u), (Samples{1, 0, 0, 2, 3}));
    EXPECT_EQ(part(u), Ends(1, 3));
    // Replaces the selection 1..3 by 0, 1, 2, 3, 4.
    ASSERT_TRUE(run("MakeLine", {{"Begin Value", "0"}, {"End Value", "4 $"}, {"Length", "4 ms"}}));
    EXPECT_EQ(samplesOf(u), (Samples{1, 0, 1, 2, 3, 4, 2, 3}));
    EXPECT_EQ(u.selEnd(), 6);

    TUnitWave& b = ws.newWave(WaveFileProps{1000, 1, 2});
    // A period of 4 samples, twice: 0.008 s, trunc(8 + 1) = 9 samples.
    ASSERT_TRUE(run("MakeBlock", {{"Frequency", "250 Hz"}, {"Length Count", "2"},
                                  {"Height 1", "100 $"}, {"Height 2", "-100 $"}}));
    EXPECT_EQ(samplesOf(b), (Samples{100, 100, -100, -100, 100, 100, -100, -100, 100}));
    // Block and triangle keep records of their own.
    EXPECT_EQ(b.records().makeBlock.lengthCount, 2);
    EXPECT_EQ(b.records().makeTriangle.lengthCount, 10);
}

TEST_F(UnitWaveOperations, RotateByTimeOrFactorToEitherSide) {
    const struct { std::uint8_t kind, side; double amount; Samples want; } rows[] = {
        {RotateRecord::kByTime, RotateRecord::kRight, 0.002, {4, 5, 1, 2, 3}},
        {RotateRecord::kByFactor, RotateRecord::kLeft, 0.4, {3, 4, 5, 1, 2}},
    };
    for (const auto& row : rows) {
        TUnitWave& u = load({1, 2, 3, 4, 5});
        RotateRecord& r = u.records().rotate;
        r.kind = row.kind;
        r.shiftTo = row.side;
        (row.kind == RotateRecord::kByTime ? r.time : r.factor).value = row.amount;
        ASSERT_TRUE(run("Rotate"));
        EXPECT_EQ(samplesOf(u), row.want) << int(row.kind) << " " << int(row.side);
    }
}

TEST_F(UnitWaveOperations, LengthEnvelopeAndBalanceUseTheHost) {
    TUnitWave& u = load(rampOf(100));
    LengthRecord& r = u.records().length;
    r.lengthKind = kLengthNew;
    r.newLength.value = 0.04;  // the selected 0.02 s become 0.04 s
    select(u, 0, 20);
    ASSERT_TRUE(run("Length"));
    EXPECT_EQ(std::pair(u.values(), u.selEnd()), Ends(120, 40));

    TUnitWave& env = load({16384, 16384}, 2, "e.wav");
    ASSERT_TRUE(ws.registerName(env, "half"));
    TUnitWave& v = load({100, 301, -60}, 2, "v.wav");
    v.records().volume.kind = kEnvelope;
    v.records().volume.envelope = "half";
    ASSERT_TRUE(run("Volume"));
    EXPECT_EQ(samplesOf(v), (Samples{50, 150, -30}));  // 16384 / 32767 is a hair above 1/2

    v.setCursor(1);  // in the middle, no differences: the whole wave becomes stereo
    ASSERT_TRUE(run("Balance"));
    EXPECT_EQ(v.getMonoStereo(), 2);
    EXPECT_EQ(part(v), Ends(0, 3));
}

TEST_F(UnitWaveOperations, CancelledOperationLeavesTheUnitExactlyAsItWas) {
    TUnitWave& u = load(rampOf(5000));
    u.setChanged();
    select(u, 4500, 200);
    RecordingView view;
    view.attach(u);
    const Sound* before = u.getSound();
    ChunkHookScope hook(u.cancelFlag(), 1200);
    u.records().volume.factor.value = 2.0;
    EXPECT_EQ(ws.runAction("Volume").kind, ActionResult::Kind::Cancelled);
    EXPECT_GT(hook.chunks.size(), 1u);  // it really stopped in the middle
    EXPECT_EQ(u.getSound(), before);
    EXPECT_EQ(samplesOf(u), rampOf(5000));
    EXPECT_EQ(marks(u), Ends(4500, 200));
    EXPECT_EQ(u.getState(), kStateChanged);
    EXPECT_EQ(u.records().volume.factor.value, 2.0);  // the dialog reopens with it
    EXPECT_EQ(view.calls, (Lines{"show 200 4500", "repaintAll"}));
}

}  // namespace
}  // namespace orv
