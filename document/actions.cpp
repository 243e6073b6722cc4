#include "document/actions.h"

#include <array>
#include <algorithm>

#include "document/unit_wave.h"

namespace orv {

namespace {
using F = ActionFlow;

// The long hint of MakeLine is kept word for word, and the caption of FilterBlock is the
// action's own name. The single keys without modifier are intended: one key per frequent
// command.
constexpr std::array kActions{
    ActionDef{"FileNewWave", "File", "&New", "Ctrl+N", "New", "Create a new empty wave window", F::File, "Wave Properties"},
    ActionDef{"FileNewMuz", "File", "New music...", "", "", "", F::Inert, ""},
    ActionDef{"FileOpenWave", "File", "&Open", "Ctrl+O", "Open", "Open a wave file", F::File, ""},
    ActionDef{"FileOpenMuz", "File", "FileOpenMuz", "", "", "", F::Inert, ""},
    ActionDef{"FileSave", "File", "&Save", "Ctrl+S", "Save", "Save current file", F::File, ""},
    ActionDef{"FileSaveAs", "File", "Save &As...", "Ctrl+A", "Save As", "Save current file with different name", F::File, ""},
    ActionDef{"FileProperties", "File", "Properties", "Ctrl+P", "Properties", "Change the properties of the wave", F::File, "Wave Properties"},
    ActionDef{"FilePlay", "File", "&Play", "P", "Play", "Play the wave", F::Front, ""},
    ActionDef{"FileStop", "File", "S&top", "S", "Stop", "Stops playing or recording", F::Front, ""},
    ActionDef{"FilePause", "File", "Pause", "W", "Pause", "Pause Playing or Undone Pausing", F::Front, ""},
    ActionDef{"FileRecord", "File", "&Record", "Alt+R", "Record", "Starts recording", F::Front, ""},
    ActionDef{"FileExit", "File", "E&xit", "", "Exit", "Exit the Orvasto", F::Front, ""},
    ActionDef{"Undo", "", "&Undo", "Ctrl+Z", "Undo", "Undo last wave action", F::Document, ""},
    ActionDef{"DeleteUndo", "", "De&lete Undo", "Alt+Del", "Delete Undo", "Forget wave before last wave action", F::Document, ""},
    ActionDef{"Register", "", "&Register...", "N", "Register", "Register a wave using a name", F::Document, "Register"},
    ActionDef{"Options", "", "Options...", "", "", "", F::Inert, ""},
    ActionDef{"Duplicate", "MakeWave", "&Duplicate", "D", "Duplicate", "Make a duplicate of the wave", F::Document, ""},
    ActionDef{"SplitH", "WaveWindow", "&Split Horizontally", "Ctrl+I", "Split Horizontally", "Split window into two or three windows sequentially", F::Front, ""},
    ActionDef{"SplitV", "WaveWindow", "S&plit Vertically", "Shift+Ctrl+I", "Split Vertically", "Split one stereo wave into two mono waves", F::Front, ""},
    ActionDef{"MergeH", "WaveWindow", "&Merge Horizontally", "Ctrl+M", "Merge horizontally", "Merge two windows into one window as first and last", F::Front, ""},
    ActionDef{"MergeV", "WaveWindow", "M&erge Vertically", "Shift+Ctrl+M", "Merge Vertically", "Merge two mono waves into one stereo wave", F::Front, ""},
    ActionDef{"ViewWave", "WaveWindow", "&Wave...", "Alt+W", "Wave View", "View the wave as a wave", F::Front, ""},
    ActionDef{"ViewVold", "WaveWindow", "&Volume...", "Alt+V", "Volume View", "View the wave as a volume diagram", F::Front, ""},
    ActionDef{"ZoomIn", "WaveWindow", "&Zoom in", "Z", "Zoom In", "Zoom the selected part in", F::Front, ""},
    ActionDef{"NoZoom", "WaveWindow", "&No Zoom", "Shift+Z", "No Zoom", "Shows the whole wave", F::Front, ""},
    ActionDef{"Begin", "WaveWindow", "Go to &Begin", "", "", "", F::Inert, ""},
    ActionDef{"End", "WaveWindow", "Go to &End", "", "", "", F::Inert, ""},
    ActionDef{"SelectWave", "WaveWindow", "&Select wave...", "Q", "Select and Zoom dialogbox", "Show or hide the select and zoom dialogbox", F::Front, ""},
    ActionDef{"MakeSilence", "MakeWave", "&Silence...", "Alt+S", "Silence", "Make a silence wave", F::Operation, "Make Silence"},
    ActionDef{"MakeLine", "MakeWave", "&Line...", "Alt+L", "Line", "Make a wave of a straight ro exponential line", F::Operation, "Make Line"},
    ActionDef{"MakeBlock", "MakeWave", "&Block...", "Alt+B", "Block", "Make a block wave", F::Operation, "Make Block"},
    ActionDef{"MakeTriangle", "MakeWave", "&Triangle...", "Alt+T", "Triangle", "Make a triangle wave", F::Operation, "Make Triangle"},
    ActionDef{"MakeSinus", "MakeWave", "S&inus...", "Shift+Alt+S", "Sinus", "Make a sinus wave", F::Operation, "Make Sinus"},
    ActionDef{"MakeNoise", "MakeWave", "&Noise...", "Alt+N", "Noise", "Make a noise wave", F::Operation, "Make Noise"},
    ActionDef{"MakeMFreq", "MakeWave", "Multi &Frequencies...", "Alt+F", "Multiple Frequencies", "Make wave with one or more frequencies", F::Operation, "Multi Frequency"},
    ActionDef{"DrawWaveLin", "MakeWave", "Dr&aw Wave Linear", "Alt+D", "Draw Linear", "Draw wave using linear parts", F::Front, ""},
    ActionDef{"DrawWave3G", "MakeWave", "Draw Wave Smooth", "Shift+Alt+D", "Draw Smooth", "Draw wave using parts connecting smoothly", F::Front, ""},
    ActionDef{"EditCut", "Edit", "Cut", "Ctrl+X", "Cut", "Cut the wave", F::Edit, ""},
    ActionDef{"EditCopy", "Edit", "Copy", "Ctrl+C", "Copy", "Copy the wave", F::Clipboard, ""},
    ActionDef{"EditPaste", "Edit", "Paste", "Ctrl+V", "Paste", "Paste the wave", F::Edit, ""},
    ActionDef{"EditDelete", "Edit", "&Delete", "Ctrl+Del", "Delete", "Delete (a part of) the wave", F::Edit, ""},
    ActionDef{"EditTrim", "Edit", "&Trim", "Shift+Ctrl+Del", "Trim", "Delete all except the selected part", F::Edit, ""},
    ActionDef{"EditClearClipboard", "Edit", "Clear Clipboard", "Shift+Alt+Del", "Clear Clipboard", "Clear the Clipboard", F::Clipboard, ""},
    ActionDef{"EditSwap", "Edit", "Swap", "X", "Swap", "Swap the wave with the contents of the clipboard", F::Edit, ""},
    ActionDef{"EditExtract", "Edit", "Extract", "Shift+X", "Extract", "Copy and replace with silence", F::Edit, ""},
    ActionDef{"EditMix", "Edit", "&Mix...", "M", "Mix", "Mix with clipboard", F::Operation, "Mix"},
    ActionDef{"MaxVolume", "SimpleWave", "M&aximal Volume", "Shift+V", "Maximize Volume", "Maximize volume", F::Edit, ""},
    ActionDef{"Volume", "SimpleWave", "&Volume...", "V", "Volume", "Change the volume", F::Operation, "Change Volume"},
    ActionDef{"Reverse", "SimpleWave", "&Reverse", "R", "Reverse", "Reverse the wave", F::Edit, ""},
    ActionDef{"Up", "SimpleWave", "&Up...", "U", "Up", "Move the wave up or down", F::Operation, "Up / Down"},
    ActionDef{"Block", "SimpleWave", "&Block...", "Shift+B", "Block", "Block wave horizontally and/or vertically", F::Operation, "Block"},
    ActionDef{"RollOut", "SimpleWave", "Roll ou&t...", "O", "Roll out", "Roll the wave out", F::Operation, "Roll out"},
    ActionDef{"Rotate", "SimpleWave", "R&otate...", "Ctrl+R", "", "", F::Operation, "Rotate"},
    ActionDef{"RollIn", "SimpleWave", "Roll &in...", "I", "Roll In", "Roll the wave into a shorter wave", F::Operation, "Roll in"},
    ActionDef{"Length", "SimpleWave", "&Length...", "L", "Length", "Change the length of the wave", F::Operation, "Change Length"},
    ActionDef{"Distort", "SimpleWave", "&Distort...", "Shift+D", "Distort", "Distort using a envelope as a function", F::Operation, "Distort"},
    ActionDef{"Balance", "ComplexWave", "Ba&lance...", "B", "Balance", "Change the mono sound into a stereo sound in a balance", F::Operation, "Balance"},
    ActionDef{"MixLeftRight", "ComplexWave", "Mi&x Left and Right...", "Shift+M", "Mix Left and Right", "Mix Left channel with right channel", F::Operation, "Mix Left Right"},
    ActionDef{"PerEcho", "ComplexWave", "&Period...", "Ctrl+E", "Period echo", "make echoes with equal distances", F::Operation, "Period Echo"},
    ActionDef{"RndEcho", "ComplexWave", "&Random...", "Alt+E", "Random echo", "make echoes randomly made and placed", F::Operation, "Random Echo"},
    ActionDef{"TempoPitch", "ComplexWave", "Tem&po and Pitch...", "T", "Tempo and Pitch", "Change tempo and/or pitch", F::Operation, "Pitch Tempo"},
    ActionDef{"FilterBlock", "Filter", "FilterBlock", "Ctrl+Alt+B", "Filter using a block", "Filter using a block", F::Operation, "Block Filter"},
    ActionDef{"FilterLow", "Filter", "&Low...", "Ctrl+Alt+L", "Filter Low", "Filter the low sounds", F::Operation, "Low Filter"},
    ActionDef{"FilterHigh", "Filter", "&High...", "Ctrl+Alt+H", "Filter High", "Filter the high sounds", F::Operation, "High Filter"},
    ActionDef{"FilterRes", "Filter", "&Resonant...", "Ctrl+Alt+R", "Filter Resonant", "Filter the sound around a certain frequency", F::Operation, "Resonant Filter"},
    ActionDef{"FilterNotch", "Filter", "&Notch...", "Ctrl+Alt+N", "Filter Notch", "Filter the sound away of a certain frequency", F::Operation, "Notch Filter"},
    ActionDef{"HelpAbout", "Help", "&About...", "Alt+F1", "About", "Displays program information, version number, and copyright", F::Front, ""},
};

bool oneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// The actions that the enabling rules set; every other action keeps its own state.
bool inEnablingTable(std::string_view name) {
    return oneOf(name, {"FileProperties", "FileSave", "FileSaveAs", "FilePlay", "FileRecord",
                        "EditDelete", "EditCut", "EditCopy", "EditExtract", "EditTrim", "ZoomIn",
                        "EditPaste", "EditMix", "EditSwap", "EditClearClipboard", "NoZoom",
                        "ViewWave", "ViewVold", "MergeH", "MergeV", "SplitV", "SplitH",
                        "MakeSilence", "MakeLine", "MakeBlock", "MakeTriangle", "MakeSinus",
                        "MakeNoise", "MakeMFreq", "DrawWaveLin", "DrawWave3G", "Duplicate",
                        "MaxVolume", "Volume", "Reverse", "Up", "Block", "RollOut", "Rotate",
                        "RollIn", "Length", "Distort", "MixLeftRight", "Balance", "PerEcho",
                        "RndEcho", "TempoPitch", "FilterBlock", "FilterLow", "FilterHigh",
                        "FilterRes", "FilterNotch"});
}
}  // namespace

std::span<const ActionDef> actionTable() { return kActions; }

const ActionDef* findAction(std::string_view name) {
    for (const ActionDef& a : kActions)
        if (a.name == name) return &a;
    return nullptr;
}

ActionStatus actionStatus(std::string_view name, const ActionContext& c) {
    const ActionDef* def = findAction(name);
    if (!def) return {};
    if (def->flow == ActionFlow::Inert) return {};  // no handler: never enabled

    if (!inEnablingTable(name)) {
        // Stop and pause follow the player; the rest is always there.
        if (name == "FileStop" || name == "FilePause") return {c.playerBusy, false};
        return {true, false};
    }
    const TUnitWave* u = c.active.unit;
    if (!u) return {};

    const bool D = c.active.drawing;
    const std::int32_t n = u->values();
    const bool part = u->getCursor() != u->getSelEndPos();
    const bool clip = c.clipboardFull;
    const bool stereo = u->getMonoStereo() == 2;
    const bool drawable = D || (n == 0 && !stereo && !c.active.showsVold);

    if (name == "FileProperties") return {!D, false};
    if (name == "FileSave") return {u->needsSave(), false};
    if (name == "FileSaveAs") return {n > 0, false};
    if (name == "FilePlay") return {c.playAndRecord && n > 0, false};
    if (name == "FileRecord") return {c.playAndRecord && n == 0, false};
    if (oneOf(name, {"EditDelete", "EditCut", "EditCopy", "EditExtract"})) return {!D && n > 0, false};
    if (oneOf(name, {"EditTrim", "ZoomIn"})) return {!D && n > 0 && part, false};
    if (oneOf(name, {"EditPaste", "EditMix"})) return {!D && clip, false};
    if (name == "EditSwap") return {!D && n > 0 && clip, false};
    if (name == "EditClearClipboard") return {clip, false};
    if (name == "NoZoom") return {!D && n > 0 && c.active.zoomFactor != 0, false};
    if (name == "ViewWave") return {true, !c.active.showsVold};
    if (name == "ViewVold") return {!D, c.active.showsVold};
    if (oneOf(name, {"MergeH", "MergeV"})) return {c.windowCount > 1, false};
    if (name == "SplitV") return {stereo, false};
    if (name == "SplitH") {
        const std::int32_t lo = std::min(u->getCursor(), u->getSelEndPos());
        const std::int32_t hi = std::max(u->getCursor(), u->getSelEndPos());
        return {lo > 0 && hi < n - 1, false};
    }
    if (oneOf(name, {"MakeSilence", "MakeLine", "MakeBlock", "MakeTriangle", "MakeSinus",
                     "MakeNoise", "MakeMFreq"}))
        return {!D, false};
    if (name == "DrawWaveLin") return {drawable, D && !c.active.smoothDrawing};
    if (name == "DrawWave3G") return {drawable, D && c.active.smoothDrawing};
    if (name == "Duplicate") return {true, false};
    if (name == "MixLeftRight") return {!D && n > 0 && stereo, false};
    if (name == "Balance") return {!D && n > 0 && !stereo, false};
    // The effects, echoes and filters.
    return {!D && n > 0, false};
}

}  // namespace orv
