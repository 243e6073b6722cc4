#include "document/actions.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "document/unit_wave.h"

namespace orv {
namespace {

SoundPtr monoOf(int n) {
    CancelFlag c{0};
    auto w = std::make_unique<Wave>(c, n);
    for (int i = 0; i < n; ++i) (*w)[i] = WaveVal(i);
    return std::make_unique<MonoSound>(std::move(w), 1000);
}
SoundPtr stereoOf(int n) {
    CancelFlag c{0};
    auto l = std::make_unique<Wave>(c, n), r = std::make_unique<Wave>(c, n);
    for (int i = 0; i < n; ++i) (*l)[i] = (*r)[i] = WaveVal(i);
    return std::make_unique<StereoSound>(std::move(l), std::move(r), 1000);
}

// The actions the enabling rules set, and what stays usable without any window.
const std::vector<std::string> kRuled = {
    "FileProperties", "FileSave", "FileSaveAs", "FilePlay", "FileRecord", "EditDelete",
    "EditCut", "EditCopy", "EditExtract", "EditTrim", "ZoomIn", "EditPaste", "EditMix",
    "EditSwap", "EditClearClipboard", "NoZoom", "ViewWave", "ViewVold", "MergeH", "MergeV",
    "SplitV", "SplitH", "MakeSilence", "MakeLine", "MakeBlock", "MakeTriangle", "MakeSinus",
    "MakeNoise", "MakeMFreq", "DrawWaveLin", "DrawWave3G", "Duplicate", "MaxVolume", "Volume",
    "Reverse", "Up", "Block", "RollOut", "Rotate", "RollIn", "Length", "Distort", "MixLeftRight",
    "Balance", "PerEcho", "RndEcho", "TempoPitch", "FilterBlock", "FilterLow", "FilterHigh",
    "FilterRes", "FilterNotch"};
const std::vector<std::string> kEffects = {
    "MaxVolume", "Volume", "Reverse", "Up", "Block", "RollOut", "Rotate", "RollIn", "Length",
    "Distort", "PerEcho", "RndEcho", "TempoPitch", "FilterBlock", "FilterLow", "FilterHigh",
    "FilterRes", "FilterNotch"};
const std::vector<std::string> kGenerators = {"MakeSilence", "MakeLine",  "MakeBlock",
                                              "MakeTriangle", "MakeSinus", "MakeNoise",
                                              "MakeMFreq"};

bool on(std::string_view name, const ActionContext& c) { return actionStatus(name, c).enabled; }
bool checked(std::string_view name, const ActionContext& c) { return actionStatus(name, c).checked; }

TEST(ActionTable, NamesAreUniqueAndTextsAreKeptWordForWord) {
    std::set<std::string_view> names;
    for (const ActionDef& a : actionTable()) EXPECT_TRUE(names.insert(a.name).second) << a.name;
    EXPECT_EQ(actionTable().size(), 67u);

    const ActionDef* line = findAction("MakeLine");
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->longHint, "Make a wave of a straight ro exponential line");
    EXPECT_EQ(line->caption, "&Line...");
    EXPECT_EQ(line->shortcut, "Alt+L");
    EXPECT_EQ(findAction("FilterBlock")->caption, "FilterBlock");
    EXPECT_EQ(findAction("DeleteUndo")->shortcut, "Alt+Del");
    EXPECT_EQ(findAction("DeleteUndo")->longHint, "Forget wave before last wave action");
    EXPECT_EQ(findAction("EditTrim")->shortcut, "Shift+Ctrl+Del");
    EXPECT_EQ(findAction("FilePause")->longHint, "Pause Playing or Undone Pausing");
    EXPECT_EQ(findAction("MergeH")->shortHint, "Merge horizontally");
    EXPECT_EQ(findAction("Rotate")->shortHint, "");
    EXPECT_EQ(findAction("FileExit")->longHint, "Exit the Orvasto");
    EXPECT_EQ(findAction("MakeBlock")->form, "Make Block");
    EXPECT_EQ(findAction("FilterNotch")->form, "Notch Filter");
    EXPECT_EQ(findAction("Balance")->category, "ComplexWave");
    EXPECT_EQ(findAction("undo"), nullptr);  // names are exact
    // One key per frequent command.
    for (const char* key : {"P", "S", "W", "N", "D", "Z", "Q", "X", "M", "V", "R", "U", "O",
                            "I", "L", "T", "B"}) {
        int count = 0;
        for (const ActionDef& a : actionTable()) count += a.shortcut == key;
        EXPECT_EQ(count, 1) << key;
    }
}

TEST(ActionStatus, WithoutAWindowEveryRuledActionIsOff) {
    ActionContext c;
    c.clipboardFull = true;
    c.windowCount = 0;
    for (const std::string& name : kRuled) EXPECT_FALSE(on(name, c)) << name;
    for (const char* name : {"FileNewWave", "FileOpenWave", "FileExit", "Undo", "DeleteUndo",
                             "HelpAbout"})
        EXPECT_TRUE(on(name, c)) << name;
    // Actions without a handler are never offered; stop and pause follow the player.
    for (const char* name : {"FileNewMuz", "FileOpenMuz", "Options", "Begin", "End"})
        EXPECT_FALSE(on(name, c)) << name;
    EXPECT_FALSE(on("FileStop", c));
    c.playerBusy = true;
    EXPECT_TRUE(on("FileStop", c));
    EXPECT_FALSE(on("NoSuchAction", c));
}

TEST(ActionStatus, EmptyMonoWave) {
    TUnitWave u("NONAME", WaveFileProps{1000, 1, 2});
    ActionContext c;
    c.active.unit = &u;
    c.windowCount = 1;
    for (const std::string& name : kGenerators) EXPECT_TRUE(on(name, c)) << name;
    EXPECT_TRUE(on("FileRecord", c));
    EXPECT_TRUE(on("DrawWaveLin", c));
    EXPECT_TRUE(on("DrawWave3G", c));
    EXPECT_TRUE(on("Duplicate", c));
    EXPECT_TRUE(on("FileProperties", c));
    for (const std::string& name : kEffects) EXPECT_FALSE(on(name, c)) << name;
    for (const char* name : {"FileSaveAs", "FilePlay", "FileSave", "EditCopy", "EditCut",
                             "EditDelete", "EditExtract", "Balance", "MixLeftRight", "SplitV",
                             "MergeH", "EditPaste"})
        EXPECT_FALSE(on(name, c)) << name;
    // Recording needs the temporary folder.
    c.playAndRecord = false;
    EXPECT_FALSE(on("FileRecord", c));
    // Drawing is offered on the waveform only.
    c.active.showsVold = true;
    EXPECT_FALSE(on("DrawWaveLin", c));
}

TEST(ActionStatus, EmptyStereoWaveCannotBeDrawn) {
    TUnitWave u("NONAME", WaveFileProps{1000, 2, 2});
    ActionContext c;
    c.active.unit = &u;
    EXPECT_FALSE(on("DrawWaveLin", c));
    EXPECT_FALSE(on("DrawWave3G", c));
    EXPECT_TRUE(on("SplitV", c));
    EXPECT_TRUE(on("FileRecord", c));
}

TEST(ActionStatus, MonoAndStereoWavesWithSamples) {
    TUnitWave mono(monoOf(100), 2, "a.wav");
    ActionContext c;
    c.active.unit = &mono;
    for (const std::string& name : kEffects) EXPECT_TRUE(on(name, c)) << name;
    EXPECT_TRUE(on("Balance", c));
    EXPECT_FALSE(on("MixLeftRight", c));
    EXPECT_FALSE(on("SplitV", c));
    EXPECT_FALSE(on("FileRecord", c));
    EXPECT_FALSE(on("DrawWaveLin", c));
    EXPECT_TRUE(on("FilePlay", c));
    EXPECT_TRUE(on("FileSaveAs", c));
    EXPECT_FALSE(on("FileSave", c));  // loaded and unchanged
    mono.setChanged();
    EXPECT_TRUE(on("FileSave", c));

    TUnitWave stereo(stereoOf(100), 2, "b.wav");
    c.active.unit = &stereo;
    EXPECT_FALSE(on("Balance", c));
    EXPECT_TRUE(on("MixLeftRight", c));
    EXPECT_TRUE(on("SplitV", c));
}

TEST(ActionStatus, SelectionAndClipboardRules) {
    TUnitWave u(monoOf(100), 2, "a.wav");
    ActionContext c;
    c.active.unit = &u;
    u.setCursor(50);
    EXPECT_FALSE(on("EditTrim", c));
    EXPECT_FALSE(on("ZoomIn", c));
    EXPECT_TRUE(on("EditCopy", c));  // the whole wave
    EXPECT_TRUE(on("SplitH", c));    // cut at the cursor
    u.setSelEnd(60);
    EXPECT_TRUE(on("EditTrim", c));
    EXPECT_TRUE(on("ZoomIn", c));

    // The part must lie strictly inside: its lower bound above 0, its upper below n - 1.
    u.setSelection(0, 60);
    EXPECT_FALSE(on("SplitH", c));
    u.setSelection(1, 98);
    EXPECT_TRUE(on("SplitH", c));
    u.setSelection(1, 99);
    EXPECT_FALSE(on("SplitH", c));

    EXPECT_FALSE(on("EditPaste", c));
    EXPECT_FALSE(on("EditMix", c));
    EXPECT_FALSE(on("EditSwap", c));
    EXPECT_FALSE(on("EditClearClipboard", c));
    c.clipboardFull = true;
    EXPECT_TRUE(on("EditPaste", c));
    EXPECT_TRUE(on("EditMix", c));
    EXPECT_TRUE(on("EditSwap", c));
    EXPECT_TRUE(on("EditClearClipboard", c));

    // An empty wave takes a paste but has nothing to swap.
    TUnitWave empty("NONAME", WaveFileProps{1000, 1, 2});
    c.active.unit = &empty;
    EXPECT_TRUE(on("EditPaste", c));
    EXPECT_FALSE(on("EditSwap", c));
}

TEST(ActionStatus, WindowsZoomAndViews) {
    TUnitWave u(monoOf(100), 2, "a.wav");
    ActionContext c;
    c.active.unit = &u;
    c.windowCount = 1;
    EXPECT_FALSE(on("MergeH", c));
    EXPECT_FALSE(on("NoZoom", c));
    EXPECT_TRUE(checked("ViewWave", c));
    EXPECT_FALSE(checked("ViewVold", c));
    c.windowCount = 2;
    c.active.zoomFactor = 3;
    c.active.showsVold = true;
    EXPECT_TRUE(on("MergeH", c));
    EXPECT_TRUE(on("MergeV", c));
    EXPECT_TRUE(on("NoZoom", c));
    EXPECT_FALSE(checked("ViewWave", c));
    EXPECT_TRUE(checked("ViewVold", c));
}

TEST(ActionStatus, WhileDrawing) {
    TUnitWave u("NONAME", WaveFileProps{1000, 1, 2});
    ActionContext c;
    c.active.unit = &u;
    c.clipboardFull = true;
    c.active.drawing = true;
    for (const std::string& name : kGenerators) EXPECT_FALSE(on(name, c)) << name;
    for (const char* name : {"FileProperties", "ViewVold", "EditPaste", "EditMix"})
        EXPECT_FALSE(on(name, c)) << name;
    EXPECT_TRUE(on("ViewWave", c));
    EXPECT_TRUE(on("Duplicate", c));
    EXPECT_TRUE(on("EditClearClipboard", c));
    // Both draw actions stay offered; only the running kind is checked.
    EXPECT_TRUE(on("DrawWaveLin", c));
    EXPECT_TRUE(on("DrawWave3G", c));
    EXPECT_TRUE(checked("DrawWaveLin", c));
    EXPECT_FALSE(checked("DrawWave3G", c));
    c.active.smoothDrawing = true;
    EXPECT_FALSE(checked("DrawWaveLin", c));
    EXPECT_TRUE(checked("DrawWave3G", c));
    c.active.drawing = false;
    EXPECT_FALSE(checked("DrawWave3G", c));
}

}  // namespace
}  // namespace orv
