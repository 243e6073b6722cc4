#include "document/undo_unit.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/document_test_helpers.h"

namespace orv {
namespace {

using namespace orv::test;

std::string address(const void* p) {
    char b[32];
    std::snprintf(b, sizeof b, "%p", p);
    return b;
}

TEST(UndoUnit, TracesOfARecordThatOwnsNothing) {
    TUnitWave u(mono({1, 2, 3}), 2, "a.wav");
    RecordingPlatformScope rec;
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
    TUnitWave u(mono({1, 2, 3}), 2, "a.wav");
    auto undo = std::make_unique<TUndoUnit>(&u);
    const Sound* old = u.getSound();
    // What an operation does: the unit takes a new sound, the old one stays with the record.
    EXPECT_EQ(u.swapSound(mono({9})).get(), old);
    EXPECT_TRUE(undo->ownsSound());
    RecordingPlatformScope rec;
    undo.reset();  // AddressSanitizer reports a leak or a double delete here
    ASSERT_EQ(rec.recorder.traces.size(), 5u);
    EXPECT_EQ(rec.recorder.traces[3],
              "-- TUndoUnit::~TUndoUnit: delete TheSound (" + address(old) + ")\n");
}

using UndoFlow = WorkspaceFixture;

TEST_F(UndoFlow, UndoTwiceIsRedoAndTheRecordOwnsTheOtherSound) {
    TUnitWave& u = load({100, 200, 300, 400});
    select(u, 3, 1);
    ASSERT_TRUE(run("Volume", {{"Constant", "0.5"}}));
    EXPECT_EQ(samplesOf(u), (Samples{100, 100, 150, 400}));
    ASSERT_TRUE(run("Undo"));
    EXPECT_EQ(samplesOf(u), (Samples{100, 200, 300, 400}));
    EXPECT_TRUE(ws.undoRecord()->ownsSound());  // it holds the changed sound now
    ASSERT_TRUE(run("Undo"));
    EXPECT_EQ(samplesOf(u), (Samples{100, 100, 150, 400}));
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

TEST_F(UndoFlow, OnlyTheLastOperationIsUndoneAndAFreshOneDropsTheRedo) {
    TUnitWave& u = load({10, 20});
    ASSERT_TRUE(run("Up", {{"Add Value", "1 $"}}));
    ASSERT_TRUE(run("Up", {{"Add Value", "100 $"}}));
    EXPECT_EQ(samplesOf(u), (Samples{111, 121}));
    ws.undo();
    EXPECT_EQ(samplesOf(u), (Samples{11, 21}));
    const Sound* original = u.getSound();
    ASSERT_TRUE(run("Reverse"));
    ws.undo();
    ASSERT_TRUE(run("Up", {{"Add Value", "1 $"}}));
    // The record now shares nothing with the reversed sound, which was deleted.
    EXPECT_EQ(ws.undoRecord()->sound(), original);
    EXPECT_EQ(samplesOf(u), (Samples{12, 22}));
}

TEST_F(UndoFlow, CancelledOperationKeepsTheEarlierSnapshot) {
    TUnitWave& u = load(Samples(3000, 10));
    ASSERT_TRUE(run("Up", {{"Add Value", "5 $"}}));
    const Sound* afterFirst = u.getSound();
    {
        ChunkHookScope hook(u.cancelFlag(), 1000);
        EXPECT_EQ(ws.runAction("Up", {{"Add Value", "100 $"}}).kind, ActionResult::Kind::Cancelled);
    }
    EXPECT_EQ(u.getSound(), afterFirst);
    EXPECT_EQ(samplesOf(u)[2999], 15);
    ws.undo();  // still undoes the change that happened
    EXPECT_EQ(samplesOf(u), Samples(3000, 10));
}

TEST_F(UndoFlow, ForgetUndoAndClosingTheUnitDropTheRecord) {
    TUnitWave& u = load({10, 20});
    ASSERT_TRUE(run("Reverse"));
    ASSERT_TRUE(run("DeleteUndo"));
    EXPECT_EQ(ws.undoRecord(), nullptr);
    EXPECT_EQ(ws.runAction("Undo").kind, ActionResult::Kind::Nothing);
    ASSERT_TRUE(run("Reverse"));
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
}

}  // namespace
}  // namespace orv
