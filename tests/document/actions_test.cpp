#include "document/actions.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/document_test_helpers.h"

namespace orv {
namespace {

using namespace orv::test;

// Unique names and the size of the table: in the registry test of the jobs.
TEST(ActionTable, TextsAreKeptWordForWord) {
    const ActionDef* line = findAction("MakeLine");
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->longHint, "Make a wave of a straight ro exponential line");
    EXPECT_EQ(line->caption, "&Line...");
    EXPECT_EQ(line->shortcut, "Alt+L");
    EXPECT_EQ(findAction("DeleteUndo")->shortcut, "Alt+Del");
    EXPECT_EQ(findAction("DeleteUndo")->longHint, "Forget wave before last wave action");
    EXPECT_EQ(findAction("FileExit")->longHint, "Exit the Orvasto");
    EXPECT_EQ(findAction("FilterNotch")->form, "Notch Filter");
    EXPECT_EQ(findAction("Balance")->category, "ComplexWave");
    EXPECT_EQ(findAction("undo"), nullptr);  // names are exact
    for (const char* key : {"P", "S", "W", "N", "D", "Z", "Q", "X", "M", "V", "R", "U", "O",
                            "I", "L", "T", "B"}) {
        int count = 0;
        for (const ActionDef& a : actionTable()) count += a.shortcut == key;
        EXPECT_EQ(count, 1) << key;
    }
}

const Lines kEffects = {"MaxVolume", "Volume",  "Reverse",  "Up",         "Block",
                        "RollOut",   "Rotate",  "RollIn",   "Length",     "Distort",
                        "PerEcho",   "RndEcho", "TempoPitch", "FilterBlock", "FilterLow",
                        "FilterHigh", "FilterRes", "FilterNotch"};
const Lines kGenerators = {"MakeSilence", "MakeLine",  "MakeBlock", "MakeTriangle",
                           "MakeSinus",   "MakeNoise", "MakeMFreq"};
Lines operator+(Lines a, const Lines& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// One row per state of the active document: what is offered and what is not.
TEST(ActionStatus, EnablingTable) {
    TUnitWave emptyMono("NONAME", WaveFileProps{1000, 1, 2});
    TUnitWave emptyStereo("NONAME", WaveFileProps{1000, 2, 2});
    TUnitWave monoWave(mono(rampOf(100)), 2, "a.wav");
    TUnitWave stereoWave(stereo(rampOf(100), rampOf(100)), 2, "b.wav");
    TUnitWave selected(mono(rampOf(100)), 2, "c.wav");
    struct Row {
        const char* state;
        TUnitWave* unit;
        void (*setup)(ActionContext&);
        Lines on, off;
    };
    const std::vector<Row> rows = {
        {"no window", nullptr, [](ActionContext& c) { c.clipboardFull = true; c.windowCount = 0; },
         {"FileNewWave", "FileOpenWave", "FileExit", "Undo", "DeleteUndo", "HelpAbout"},
         kEffects + kGenerators + Lines{"FileProperties", "FileSave", "FileSaveAs", "FilePlay",
                                        "FileRecord", "EditDelete", "EditCut", "EditCopy",
                                        "EditPaste", "EditMix", "EditSwap", "EditClearClipboard",
                                        "NoZoom", "ViewWave", "MergeH", "SplitV", "Duplicate",
                                        "DrawWaveLin", "FileNewMuz", "Options", "Begin",
                                        "FileStop", "NoSuchAction"}},
        {"player busy", nullptr, [](ActionContext& c) { c.playerBusy = true; }, {"FileStop"}, {}},
        {"empty mono", &emptyMono, [](ActionContext& c) { c.windowCount = 1; },
         kGenerators + Lines{"FileRecord", "DrawWaveLin", "DrawWave3G", "Duplicate",
                             "FileProperties"},
         kEffects + Lines{"FileSaveAs", "FilePlay", "FileSave", "EditCopy", "EditCut",
                          "EditDelete", "EditExtract", "Balance", "MixLeftRight", "SplitV",
                          "MergeH", "EditPaste", "EditSwap", "EditClearClipboard"}},
        {"empty mono, no temp folder, volume view", &emptyMono,
         [](ActionContext& c) { c.playAndRecord = false; c.active.showsVold = true; }, {},
         {"FileRecord", "DrawWaveLin"}},
        {"empty stereo", &emptyStereo, [](ActionContext&) {}, {"SplitV", "FileRecord"},
         {"DrawWaveLin", "DrawWave3G"}},
        {"mono", &monoWave, [](ActionContext&) {},
         kEffects + Lines{"Balance", "FilePlay", "FileSaveAs", "EditCopy"},
         {"MixLeftRight", "SplitV", "FileRecord", "DrawWaveLin", "FileSave", "EditTrim",
          "ZoomIn", "MergeH", "NoZoom"}},
        {"stereo", &stereoWave, [](ActionContext&) {}, {"MixLeftRight", "SplitV"}, {"Balance"}},
        {"selected, clipboard full, two windows", &selected,
         [](ActionContext& c) { c.clipboardFull = true; c.windowCount = 2; c.active.zoomFactor = 3; },
         {"EditTrim", "ZoomIn", "EditPaste", "EditMix", "EditSwap", "EditClearClipboard",
          "MergeH", "MergeV", "NoZoom"},
         {}},
        {"empty with clipboard", &emptyMono, [](ActionContext& c) { c.clipboardFull = true; },
         {"EditPaste"}, {"EditSwap"}},
        {"drawing", &emptyMono,
         [](ActionContext& c) { c.clipboardFull = true; c.active.drawing = true; },
         {"ViewWave", "Duplicate", "EditClearClipboard", "DrawWaveLin", "DrawWave3G"},
         kGenerators + Lines{"FileProperties", "ViewVold", "EditPaste", "EditMix"}},
    };
    selected.setCursor(40);
    selected.setSelEnd(60);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.state);
        ActionContext c;
        c.active.unit = row.unit;
        row.setup(c);
        for (const std::string& name : row.on) EXPECT_TRUE(actionStatus(name, c).enabled) << name;
        for (const std::string& name : row.off) EXPECT_FALSE(actionStatus(name, c).enabled) << name;
    }
    // A loaded wave is saved once it changed.
    ActionContext c;
    c.active.unit = &monoWave;
    monoWave.setChanged();
    EXPECT_TRUE(actionStatus("FileSave", c).enabled);
}

TEST(ActionStatus, CheckedViewsAndDrawKinds) {
    TUnitWave u("NONAME", WaveFileProps{1000, 1, 2});
    ActionContext c;
    c.active.unit = &u;
    auto checked = [&](std::string_view n) { return actionStatus(n, c).checked; };
    EXPECT_TRUE(checked("ViewWave"));
    EXPECT_FALSE(checked("ViewVold"));
    c.active.showsVold = true;
    EXPECT_FALSE(checked("ViewWave"));
    EXPECT_TRUE(checked("ViewVold"));
    c.active.drawing = true;
    EXPECT_TRUE(checked("DrawWaveLin"));
    EXPECT_FALSE(checked("DrawWave3G"));
    c.active.smoothDrawing = true;
    EXPECT_FALSE(checked("DrawWaveLin"));
    EXPECT_TRUE(checked("DrawWave3G"));
    c.active.drawing = false;
    EXPECT_FALSE(checked("DrawWave3G"));
}

}  // namespace
}  // namespace orv
