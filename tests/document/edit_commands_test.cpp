#include <gtest/gtest.h>

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
std::vector<int> samplesOf(const Wave* w) {
    std::vector<int> v;
    for (std::int32_t i = 0; i < w->getValues(); ++i) v.push_back((*w)[i]);
    return v;
}
std::vector<int> samplesOf(const TUnitWave& u) { return samplesOf(u.getSound()->GetLeftWave()); }
std::vector<int> samplesOf(const Sound& s) { return samplesOf(s.GetLeftWave()); }
using Samples = std::vector<int>;

class EditCommands : public ::testing::Test {
protected:
    TUnitWave& load(const Samples& v, std::uint16_t bytes = 2, std::int32_t freq = 1000) {
        return ws.add(std::make_unique<TUnitWave>(monoOf(v, freq), bytes, "a.wav"));
    }
    static void select(TUnitWave& u, std::int32_t b, std::int32_t e) {
        u.setCursor(b);
        u.setSelEnd(e);
    }
    bool run(std::string_view action, const TypedFields& fields = {}) {
        return ws.runAction(action, fields).ok();
    }
    test::RecordingPlatformScope rec;
    Workspace ws;
};

TEST_F(EditCommands, CopyTakesThePartOrTheWholeWaveWithoutUndo) {
    TUnitWave& u = load({10, 20, 30, 40, 50});
    select(u, 1, 3);
    ASSERT_TRUE(run("EditCopy"));
    EXPECT_EQ(samplesOf(ws.clipboard()), (Samples{20, 30}));
    EXPECT_EQ(ws.undoRecord(), nullptr);
    EXPECT_EQ(u.getState(), kStateSaved);
    u.setCursor(2);
    ASSERT_TRUE(run("EditCopy"));
    EXPECT_EQ(samplesOf(ws.clipboard()), (Samples{10, 20, 30, 40, 50}));
    EXPECT_EQ(ws.clipboard().Freq, 1000);
}

TEST_F(EditCommands, CutThenPasteAtTheCursorPutsItBack) {
    TUnitWave& u = load({10, 20, 30, 40, 50});
    select(u, 1, 3);
    ASSERT_TRUE(run("EditCut"));
    EXPECT_EQ(samplesOf(u), (Samples{10, 40, 50}));
    EXPECT_EQ(samplesOf(ws.clipboard()), (Samples{20, 30}));
    EXPECT_FALSE(u.hasSelection());
    EXPECT_EQ(u.getCursor(), 1);
    EXPECT_EQ(u.getState(), kStateChanged);

    ASSERT_TRUE(run("EditPaste"));  // nothing selected: inserted at the cursor
    EXPECT_EQ(samplesOf(u), (Samples{10, 20, 30, 40, 50}));
    EXPECT_EQ(u.selBegin(), 1);
    EXPECT_EQ(u.selEnd(), 3);
    ws.undo();
    EXPECT_EQ(samplesOf(u), (Samples{10, 40, 50}));
}

TEST_F(EditCommands, PasteReplacesTheSelection) {
    TUnitWave& u = load({1, 2, 3, 4});
    ws.setClipboard(monoOf({9}), 2);
    select(u, 3, 1);
    ASSERT_TRUE(run("EditPaste"));
    EXPECT_EQ(samplesOf(u), (Samples{1, 9, 4}));
    EXPECT_EQ(u.selBegin(), 1);
    EXPECT_EQ(u.selEnd(), 2);
    EXPECT_EQ(samplesOf(ws.clipboard()), (Samples{9}));  // the clipboard stays
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
    EXPECT_EQ(rec.recorder.messages.size(), 2u);
    EXPECT_EQ(samplesOf(wide), (Samples{5, 6}));
    EXPECT_EQ(ws.undoRecord(), nullptr);
    ws.setActive(&narrow);
    EXPECT_TRUE(run("EditPaste"));
}

TEST_F(EditCommands, DeleteTrimSwapAndExtract) {
    TUnitWave& del = load({1, 2, 3, 4, 5});
    select(del, 1, 4);
    ASSERT_TRUE(run("EditDelete"));
    EXPECT_EQ(samplesOf(del), (Samples{1, 5}));
    EXPECT_EQ(del.getCursor(), 1);
    ASSERT_TRUE(run("EditDelete"));  // nothing selected: the whole wave
    EXPECT_EQ(del.values(), 0);
    EXPECT_FALSE(del.needsSave());

    TUnitWave& trim = load({1, 2, 3, 4, 5});
    select(trim, 4, 1);
    ASSERT_TRUE(run("EditTrim"));
    EXPECT_EQ(samplesOf(trim), (Samples{2, 3, 4}));

    TUnitWave& swap = load({1, 2, 3, 4});
    ws.setClipboard(monoOf({9}), 2);
    select(swap, 1, 3);
    ASSERT_TRUE(run("EditSwap"));
    EXPECT_EQ(samplesOf(swap), (Samples{1, 9, 4}));
    EXPECT_EQ(samplesOf(ws.clipboard()), (Samples{2, 3}));

    TUnitWave& extract = load({1, 2, 3, 4});
    select(extract, 1, 3);
    ASSERT_TRUE(run("EditExtract"));
    EXPECT_EQ(samplesOf(extract), (Samples{1, 0, 0, 4}));
    EXPECT_EQ(samplesOf(ws.clipboard()), (Samples{2, 3}));
    EXPECT_EQ(extract.selBegin(), 1);
    EXPECT_EQ(extract.selEnd(), 3);
}

TEST_F(EditCommands, MixWithTheClipboardFromTheCursorOrOverTheSelection) {
    TUnitWave& u = load({10, 10, 10, 10, 10});
    ws.setClipboard(monoOf({1, 2}), 2);
    u.setCursor(1);
    ASSERT_TRUE(run("EditMix"));  // "Align Begin", the whole clipboard from the cursor
    EXPECT_EQ(samplesOf(u), (Samples{10, 11, 12, 10, 10}));
    EXPECT_EQ(u.selBegin(), 1);
    EXPECT_EQ(u.selEnd(), 3);

    select(u, 2, 5);
    ASSERT_TRUE(run("EditMix", {{"Place", "Align End"}}));
    EXPECT_EQ(samplesOf(u), (Samples{10, 11, 12, 11, 12}));
    EXPECT_EQ(u.records().mix.place, MixRecord::kAlignEnd);
}

TEST_F(EditCommands, MaxVolumeAndReverse) {
    TUnitWave& u = load({1000, -2000, 7});
    ASSERT_TRUE(run("MaxVolume"));
    // Factor 32767 / 2000 = 16.3835, products cut toward zero.
    EXPECT_EQ(samplesOf(u), (Samples{16383, -32767, 114}));
    select(u, 0, 2);
    ASSERT_TRUE(run("Reverse"));
    EXPECT_EQ(samplesOf(u), (Samples{-32767, 16383, 114}));
}

TEST_F(EditCommands, ClearClipboardAndDuplicate) {
    load({1, 2});
    ASSERT_TRUE(run("EditCopy"));
    ASSERT_TRUE(run("EditClearClipboard"));
    EXPECT_FALSE(ws.hasClipboard());
    EXPECT_EQ(ws.runAction("EditClearClipboard").kind, ActionResult::Kind::Disabled);
    EXPECT_EQ(ws.runAction("EditPaste").kind, ActionResult::Kind::Disabled);
}

TEST_F(EditCommands, FilePropertiesConvertWidthChannelsAndFrequency) {
    TUnitWave& u = load({0, 100, 200, 300}, 2, 1000);
    select(u, 1, 3);
    ASSERT_TRUE(run("FileProperties", {{"Mono/Stereo", "Stereo"}, {"Wave Values", "8 Bits"}}));
    EXPECT_EQ(u.getMonoStereo(), 2);
    EXPECT_EQ(u.getBytesPSample(), 1);
    EXPECT_EQ(samplesOf(u.getSound()->GetRightWave()), (Samples{0, 100, 200, 300}));
    EXPECT_EQ(u.selBegin(), 1);
    EXPECT_EQ(u.selEnd(), 3);
    EXPECT_EQ(u.getState(), kStateChanged);

    ASSERT_TRUE(run("FileProperties", {{"Sample Frequency", "22 kHz"}}));
    EXPECT_EQ(u.getFreq(), 22050);
    EXPECT_EQ(u.getMonoStereo(), 2);
    // The selection keeps its place in time: 1 ms and 3 ms.
    EXPECT_EQ(u.selBegin(), 22);
    EXPECT_EQ(u.selEnd(), 66);

    ws.undo();
    EXPECT_EQ(u.getFreq(), 1000);
    EXPECT_EQ(u.values(), 4);
    EXPECT_EQ(u.selBegin(), 1);
    EXPECT_EQ(u.selEnd(), 3);
}

void raiseAtSecondChunk(void* context, std::int32_t pos, std::int32_t) {
    if (pos >= 1000) setCancelled(*static_cast<CancelFlag*>(context));
}

TEST_F(EditCommands, CancelledCutKeepsWaveAndClipboard) {
    Samples v(4000, 3);
    TUnitWave& u = load(v);
    ws.setClipboard(monoOf({42}), 2);
    select(u, 0, 3000);
    setChunkHook(raiseAtSecondChunk, &u.cancelFlag());
    const ActionResult r = ws.runAction("EditCut");
    setChunkHook(nullptr, nullptr);
    EXPECT_EQ(r.kind, ActionResult::Kind::Cancelled);
    EXPECT_EQ(u.values(), 4000);
    EXPECT_EQ(u.selEnd(), 3000);
    EXPECT_EQ(u.getState(), kStateSaved);
    EXPECT_EQ(samplesOf(ws.clipboard()), (Samples{42}));
    EXPECT_EQ(ws.undoRecord(), nullptr);
}

}  // namespace
}  // namespace orv
