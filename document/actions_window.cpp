// The menu of wave windows: splitting and merging, the two views, zoom and the select and
// zoom dialog. All of them need the desktop program's windows.
#include <array>

#include "document/action_rows.h"

namespace orv {

namespace {

using F = ActionFlow;
using E = EnableRule;
constexpr DuringJob kAllowed = DuringJob::Allowed;

constexpr std::array kRows{
    actionRow("SplitH", "WaveWindow", "&Split Horizontally", "Ctrl+I", "Split Horizontally", "Split window into two or three windows sequentially", F::Front, E::SplitPart),
    actionRow("SplitV", "WaveWindow", "S&plit Vertically", "Shift+Ctrl+I", "Split Vertically", "Split one stereo wave into two mono waves", F::Front, E::Stereo),
    actionRow("MergeH", "WaveWindow", "&Merge Horizontally", "Ctrl+M", "Merge horizontally", "Merge two windows into one window as first and last", F::Front, E::SeveralWindows),
    actionRow("MergeV", "WaveWindow", "M&erge Vertically", "Shift+Ctrl+M", "Merge Vertically", "Merge two mono waves into one stereo wave", F::Front, E::SeveralWindows),
    actionRow("ViewWave", "WaveWindow", "&Wave...", "Alt+W", "Wave View", "View the wave as a wave", F::Front, E::ViewWave, {}, nullptr, kAllowed),
    actionRow("ViewVold", "WaveWindow", "&Volume...", "Alt+V", "Volume View", "View the wave as a volume diagram", F::Front, E::ViewVold, {}, nullptr, kAllowed),
    actionRow("ZoomIn", "WaveWindow", "&Zoom in", "Z", "Zoom In", "Zoom the selected part in", F::Front, E::Part, {}, nullptr, kAllowed),
    actionRow("NoZoom", "WaveWindow", "&No Zoom", "Shift+Z", "No Zoom", "Shows the whole wave", F::Front, E::Zoomed, {}, nullptr, kAllowed),
    actionRow("Begin", "WaveWindow", "Go to &Begin", "", "", "", F::Inert, E::Never),
    actionRow("End", "WaveWindow", "Go to &End", "", "", "", F::Inert, E::Never),
    actionRow("SelectWave", "WaveWindow", "&Select wave...", "Q", "Select and Zoom dialogbox", "Show or hide the select and zoom dialogbox", F::Front, E::Free, {}, nullptr, kAllowed),
};

}  // namespace

std::span<const ActionDef> windowActions() { return kRows; }

}  // namespace orv
