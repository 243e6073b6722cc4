#include "document/undo_unit.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "document/workspace.h"
#include "support/recording_platform.h"

namespace orv {
namespace {

SoundPtr monoOf(const std::vector<int>& v, std::int32_t freq = 1000) {
    CancelFlag c{0};
    auto w = std::make_unique<Wave>(c, std::int32_t(v.size()));
    for (std::size_t i = 0; i < v.size(); ++i) (*w)[std::int32_t(i)] = WaveVal(v[i]);
    return std::make_unique<MonoSound>(std::move(w), freq);
}
std::vector<int> samplesOf(const TUnitWave& u) {
    std::vector<int> v;
    const Wave* w = u.getSound()->GetLeftWave();
    for (std::int32_t i = 0; i < w->getValues(); ++i) v.push_back((*w)[i]);
    return v;
}
std::string address(const void* p) {
    char b[32];
    std::snprintf(b, sizeof b, "%p", p);
    return b;
}
using Lines = std::vector<std::string>;

TEST(UndoUnit, TracesOfARecordThatOwnsNothing) {
    TUnitWave u(monoOf({1, 2, 3}), 2, "a.wav");
    test::RecordingPlatformScope rec;
    {
        TUndoUnit undo(&u);
        EXPECT_FALSE(undo.ownsSound());
    }
    EXPECT_EQ(rec.recorder.traces,
              (Lines{"in TUndoUnit::TUndoUnit(TUnitWave *unitWave)\n",
                     "-- TUndoUnit::TUndoUnit(WU): TheSound = UnitWave->TheSound (" +
                         address(u.getSound()) + ")\n",
                     "uit TUndoUnit::TUndoUnit(TUnitWave *unitWave)\n",
                     "in TUndoUnit::~TUndoUnit(TWaveUnit *waveUnit)\n",
                     "-- TUndoUnit::~TUndoUnit: kijk of TheSound != NULL is, dan deleten\n",
                     "-- TUndoUnit::~TUndoUnit: kijk of TheSound != WU->TheSound is, dan echt "
                     "deleten\n",
                     "uit TUndoUnit::~TUndoUnit(TWaveUnit *waveUnit)\n"}));
}

TEST(UndoUnit, RecordDeletesTheOldSoundOnceTheUnitHoldsAnother) {
    TUnitWave u(monoOf({1, 2, 3}), 2, "a.wav");
    auto undo = std::make_unique<TUndoUnit>(&u);
    const Sound* old = u.getSound();
    // What an operation does: the unit takes a new sound, the old one stays with the record.
    EXPECT_EQ(u.swapSound(monoOf({9}).release()), old);
    EXPECT_TRUE(undo->ownsSound());
    test::RecordingPlatformScope rec;
    undo.reset();  // AddressSanitizer reports a leak or a double delete here
    ASSERT_EQ(rec.recorder.traces.size(), 5u);
    EXPECT_EQ(rec.recorder.traces[3],
              "-- TUndoUnit::~TUndoUnit: delete TheSound (" + address(old) + ")\n");
}

class UndoFlow : public ::testing::Test {
protected:
    TUnitWave& load(const std::vector<int>& v) {
        return ws.add(std::make_unique<TUnitWave>(monoOf(v), 2, "a.wav"));
    }
    test::RecordingPlatformScope rec;
    Workspace ws;
};

TEST_F(UndoFlow, UndoTwiceIsRedoWithCursorAndSelection) {
    TUnitWave& u = load({100, 200, 300, 400});
    u.setCursor(3);
    u.setSelEnd(1);
    ASSERT_TRUE(ws.runAction("Volume", {{"Constant", "0.5"}}).ok());
    EXPECT_EQ(samplesOf(u), (std::vector<int>{100, 100, 150, 400}));
    EXPECT_EQ(u.getState(), kStateChanged);

    ASSERT_TRUE(ws.runAction("Undo").ok());
    EXPECT_EQ(samplesOf(u), (std::vector<int>{100, 200, 300, 400}));
    EXPECT_EQ(u.getCursor(), 3);
    EXPECT_EQ(u.getSelEndPos(), 1);
    EXPECT_TRUE(ws.undoRecord()->ownsSound());  // it holds the changed sound now

    ASSERT_TRUE(ws.runAction("Undo").ok());
    EXPECT_EQ(samplesOf(u), (std::vector<int>{100, 100, 150, 400}));
}

TEST_F(UndoFlow, UndoOfALoadedWaveMarksItChangedAndANewWaveStaysNew) {
    TUnitWave& u = load({1, 2});
    ASSERT_TRUE(ws.makeUndo(u) == nullptr);
    ASSERT_TRUE(ws.undo());  // back to the very same state ...
    EXPECT_EQ(u.getState(), kStateChanged);  // ... and still marked

    TUnitWave& fresh = ws.newWave({1000, 1, 2});
    ws.makeUndo(fresh);
    ws.undo();
    EXPECT_EQ(fresh.getState(), kStateNew);
}

TEST_F(UndoFlow, UndoRestoresTheSampleWidth) {
    TUnitWave& u = load({1, 2});
    ASSERT_TRUE(ws.runAction("FileProperties", {{"Wave Values", "8 Bits"}}).ok());
    EXPECT_EQ(u.getBytesPSample(), 1);
    ws.undo();
    EXPECT_EQ(u.getBytesPSample(), 2);
    ws.undo();
    EXPECT_EQ(u.getBytesPSample(), 1);
}

TEST_F(UndoFlow, TwoOperationsThenUndoGoesBackOverTheSecondOnly) {
    TUnitWave& u = load({10, 20});
    ASSERT_TRUE(ws.runAction("Up", {{"Add Value", "1 $"}}).ok());
    ASSERT_TRUE(ws.runAction("Up", {{"Add Value", "100 $"}}).ok());
    EXPECT_EQ(samplesOf(u), (std::vector<int>{111, 121}));
    ws.undo();
    EXPECT_EQ(samplesOf(u), (std::vector<int>{11, 21}));
}

TEST_F(UndoFlow, NewOperationAfterUndoDropsTheRedoneSound) {
    TUnitWave& u = load({10, 20});
    ASSERT_TRUE(ws.runAction("Reverse").ok());
    ws.undo();
    const Sound* original = u.getSound();
    ASSERT_TRUE(ws.runAction("Up", {{"Add Value", "1 $"}}).ok());
    // The record now shares nothing with the reversed sound, which was deleted.
    EXPECT_EQ(ws.undoRecord()->sound(), original);
    EXPECT_EQ(samplesOf(u), (std::vector<int>{11, 21}));
}

void raiseFlag(void* context, std::int32_t pos, std::int32_t) {
    if (pos >= 1000) setCancelled(*static_cast<CancelFlag*>(context));
}

TEST_F(UndoFlow, CancelledOperationKeepsTheEarlierSnapshot) {
    std::vector<int> v(3000, 10);
    TUnitWave& u = load(v);
    ASSERT_TRUE(ws.runAction("Up", {{"Add Value", "5 $"}}).ok());
    const Sound* afterFirst = u.getSound();

    setChunkHook(raiseFlag, &u.cancelFlag());
    const ActionResult r = ws.runAction("Up", {{"Add Value", "100 $"}});
    setChunkHook(nullptr, nullptr);
    EXPECT_EQ(r.kind, ActionResult::Kind::Cancelled);
    EXPECT_EQ(u.getSound(), afterFirst);
    EXPECT_EQ(samplesOf(u)[2999], 15);

    // Undo still undoes the change that happened.
    ws.undo();
    EXPECT_EQ(samplesOf(u)[0], 10);
    EXPECT_EQ(samplesOf(u)[2999], 10);
}

TEST_F(UndoFlow, ForgetUndoAndClosingTheUnitDropTheRecord) {
    TUnitWave& u = load({10, 20});
    ASSERT_TRUE(ws.runAction("Reverse").ok());
    ASSERT_TRUE(ws.runAction("DeleteUndo").ok());
    EXPECT_EQ(ws.undoRecord(), nullptr);
    EXPECT_EQ(ws.runAction("Undo").kind, ActionResult::Kind::Nothing);

    ASSERT_TRUE(ws.runAction("Reverse").ok());
    ASSERT_NE(ws.undoRecord(), nullptr);
    TUnitWave& other = load({1});
    ws.close(other);  // another unit's record stays
    ASSERT_NE(ws.undoRecord(), nullptr);
    ws.close(u);
    EXPECT_EQ(ws.undoRecord(), nullptr);
}

TEST(UndoClipboardDeathTest, EmptyClipboardAsserts) {
    Workspace ws;
    EXPECT_FALSE(ws.hasClipboard());
    EXPECT_DEATH(ws.clipboard(), "Assertion failed: ClipBoardSound != 0, unit Main");
    EXPECT_DEATH(ws.clearClipboard(), "Assertion failed: ClipBoardSound != 0, unit Main");
}

}  // namespace
}  // namespace orv
