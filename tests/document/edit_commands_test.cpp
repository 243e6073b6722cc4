#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "support/document_test_helpers.h"

namespace orv {
namespace {

using namespace orv::test;
using EditCommands = WorkspaceFixture;

// Each command on a saved document: exact samples, clipboard and selection afterwards; then
// undo gives back the original and a second undo redoes the command.
TEST_F(EditCommands, EachCommandThenUndoAndRedo) {
    struct Row {
        const char* action;
        TypedFields fields;
        Samples before;
        int cursor, selEnd;
        std::optional<Samples> clipboardBefore;
        Samples after;
        std::optional<Samples> clipboardAfter;
        int selBegin, selEndAfter;
    };
    const std::vector<Row> rows = {
        {"EditCut", {}, {10, 20, 30, 40, 50}, 1, 3, {}, {10, 40, 50}, Samples{20, 30}, 0, 3},
        {"EditPaste", {}, {10, 40, 50}, 1, 1, Samples{20, 30}, {10, 20, 30, 40, 50}, {}, 1, 3},
        {"EditPaste", {}, {1, 2, 3, 4}, 3, 1, Samples{9}, {1, 9, 4}, Samples{9}, 1, 2},
        {"EditDelete", {}, {1, 2, 3, 4, 5}, 1, 4, {}, {1, 5}, {}, 0, 2},
        {"EditTrim", {}, {1, 2, 3, 4, 5}, 4, 1, {}, {2, 3, 4}, {}, 0, 3},
        {"EditSwap", {}, {1, 2, 3, 4}, 1, 3, Samples{9}, {1, 9, 4}, Samples{2, 3}, 1, 2},
        {"EditExtract", {}, {1, 2, 3, 4}, 1, 3, {}, {1, 0, 0, 4}, Samples{2, 3}, 1, 3},
        // "Align Begin": the whole clipboard from the cursor.
        {"EditMix", {}, {10, 10, 10, 10, 10}, 1, 1, Samples{1, 2}, {10, 11, 12, 10, 10}, {}, 1, 3},
        {"EditMix", {{"Place", "Align End"}}, {10, 11, 12, 10, 10}, 2, 5, Samples{1, 2},
         {10, 11, 12, 11, 12}, {}, 3, 5},
        // Factor 32767 / 2000 = 16.3835, products cut toward zero.
        {"MaxVolume", {}, {1000, -2000, 7}, 0, 0, {}, {16383, -32767, 114}, {}, 0, 3},
        {"Reverse", {}, {16383, -32767, 114}, 0, 2, {}, {-32767, 16383, 114}, {}, 0, 2},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.action);
        TUnitWave& u = load(r.before);
        if (r.clipboardBefore) ws.setClipboard(mono(*r.clipboardBefore), 2);
        select(u, r.cursor, r.selEnd);
        ASSERT_TRUE(run(r.action, r.fields));
        EXPECT_EQ(samplesOf(u), r.after);
        if (r.clipboardAfter) {
            EXPECT_EQ(samplesOf(ws.clipboard().GetLeftWave()), *r.clipboardAfter);
        }
        EXPECT_EQ(part(u), Ends(r.selBegin, r.selEndAfter));
        EXPECT_EQ(u.getState(), kStateChanged);
        ASSERT_TRUE(ws.undo());
        EXPECT_EQ(samplesOf(u), r.before);
        EXPECT_EQ(marks(u), Ends(std::min<int>(r.cursor, int(r.before.size())), r.selEnd));
        ASSERT_TRUE(ws.undo());
        EXPECT_EQ(samplesOf(u), r.after);
        ws.close(u);
    }
    EXPECT_TRUE(shown().empty());
}

TEST_F(EditCommands, CopyHasNoUndoAndTheClipboardCrossesDocuments) {
    TUnitWave& a = load({10, 20, 30, 40, 50});
    select(a, 1, 3);
    ASSERT_TRUE(run("EditCopy"));
    EXPECT_EQ(samplesOf(ws.clipboard().GetLeftWave()), (Samples{20, 30}));
    EXPECT_EQ(ws.undoRecord(), nullptr);
    EXPECT_EQ(a.getState(), kStateSaved);
    a.setCursor(2);  // nothing selected: the whole wave
    ASSERT_TRUE(run("EditCopy"));
    EXPECT_EQ(samplesOf(ws.clipboard().GetLeftWave()), (Samples{10, 20, 30, 40, 50}));
    EXPECT_EQ(ws.clipboard().Freq, 1000);

    TUnitWave& b = load({7, 8}, 2, "b.wav");
    b.setCursor(1);
    ASSERT_TRUE(run("EditPaste"));
    EXPECT_EQ(samplesOf(b), (Samples{7, 10, 20, 30, 40, 50, 8}));
    EXPECT_EQ(samplesOf(a), (Samples{10, 20, 30, 40, 50}));

    ASSERT_TRUE(run("EditClearClipboard"));
    EXPECT_FALSE(ws.hasClipboard());
    EXPECT_EQ(ws.runAction("EditClearClipboard").kind, ActionResult::Kind::Disabled);
    EXPECT_EQ(ws.runAction("EditPaste").kind, ActionResult::Kind::Disabled);
}

TEST_F(EditCommands, DeletingEverythingLeavesNothingToSave) {
    TUnitWave& u = load({1, 2, 3});
    u.setCursor(1);
    ASSERT_TRUE(run("EditDelete"));
    EXPECT_EQ(u.values(), 0);
    EXPECT_FALSE(u.needsSave());
}

TEST_F(EditCommands, PasteAndSwapRefuseAnotherSampleWidth) {
    TUnitWave& narrow = load({1, 2}, 1);
    ASSERT_TRUE(run("EditCopy"));
    EXPECT_EQ(ws.clipboardBytesPSample(), 1);
    TUnitWave& wide = load({5, 6});
    for (const char* action : {"EditPaste", "EditSwap"}) {
        const ActionResult r = ws.runAction(action);
        EXPECT_EQ(r.kind, ActionResult::Kind::Refused) << action;
        EXPECT_EQ(r.caption, "Error");
        EXPECT_EQ(r.text, "The clipboard holds samples of another width than this wave.");
    }
    EXPECT_EQ(shown().size(), 2u);
    EXPECT_EQ(samplesOf(wide), (Samples{5, 6}));
    EXPECT_EQ(ws.undoRecord(), nullptr);
    ws.setActive(&narrow);
    EXPECT_TRUE(run("EditPaste"));
}

TEST_F(EditCommands, FilePropertiesConvertWidthChannelsAndFrequency) {
    TUnitWave& u = load({0, 100, 200, 300});
    select(u, 1, 3);
    ASSERT_TRUE(run("FileProperties", {{"Mono/Stereo", "Stereo"}, {"Wave Values", "8 Bits"}}));
    EXPECT_EQ(Ends(u.getMonoStereo(), u.getBytesPSample()), Ends(2, 1));
    EXPECT_EQ(samplesOf(u.getSound()->GetRightWave()), (Samples{0, 100, 200, 300}));
    EXPECT_EQ(u.getState(), kStateChanged);
    ASSERT_TRUE(run("FileProperties", {{"Sample Frequency", "22 kHz"}}));
    EXPECT_EQ(u.getFreq(), 22050);
    EXPECT_EQ(part(u), Ends(22, 66));  // the selection keeps its place in time: 1 ms and 3 ms
    ws.undo();
    EXPECT_EQ((Samples{u.getFreq(), u.values(), u.getBytesPSample()}), (Samples{1000, 4, 1}));
    EXPECT_EQ(part(u), Ends(1, 3));
}

TEST_F(EditCommands, CancelledCutKeepsWaveAndClipboard) {
    TUnitWave& u = load(Samples(4000, 3));
    ws.setClipboard(mono({42}), 2);
    select(u, 0, 3000);
    ChunkHookScope hook(u.cancelFlag(), 1000);
    const ActionResult r = ws.runAction("EditCut");
    EXPECT_EQ(r.kind, ActionResult::Kind::Cancelled);
    EXPECT_EQ(std::pair(u.values(), u.selEnd()), Ends(4000, 3000));
    EXPECT_EQ(u.getState(), kStateSaved);
    EXPECT_EQ(samplesOf(ws.clipboard().GetLeftWave()), (Samples{42}));
    EXPECT_EQ(ws.undoRecord(), nullptr);
}

}  // namespace
}  // namespace orv
