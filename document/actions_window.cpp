// The menu of wave windows: splitting and merging (the workspace builds the new documents,
// split_merge.h), the two views, zoom and the select and zoom dialog (the desktop program's).
#include <array>

#include "document/action_rows.h"
#include "document/split_merge.h"

namespace orv {

namespace {

// The records of the split and merge dialogs: nothing remembers them, each command starts
// from the defaults (the merges from the waves chosen, see Workspace).
template <class R>
struct FreshRecord {
    static std::unique_ptr<FormView> form(TUnitWave&) { return std::make_unique<OwningForm<R>>(R{}); }
    static const FormSpec* spec() { return &R::table(); }
    static std::optional<FormError> check(const FormState& state, TUnitWave&,
                                          const FormContext& context) {
        R record;
        return acceptRecord(R::table(), state, record, context);
    }
    static constexpr OperationDef def{&form, nullptr, &spec, &check};
};

using F = ActionFlow;
using E = EnableRule;
constexpr DuringJob kAllowed = DuringJob::Allowed;

constexpr std::array kRows{
    actionRow("SplitH", "WaveWindow", "&Split Horizontally", "Ctrl+I", "Split Horizontally", "Split window into two or three windows sequentially", F::Document, E::SplitPart, "Split Horizontally", &FreshRecord<SplitHorRecord>::def),
    actionRow("SplitV", "WaveWindow", "S&plit Vertically", "Shift+Ctrl+I", "Split Vertically", "Split one stereo wave into two mono waves", F::Document, E::Stereo),
    actionRow("MergeH", "WaveWindow", "&Merge Horizontally", "Ctrl+M", "Merge horizontally", "Merge two windows into one window as first and last", F::Document, E::SeveralWindows, "Merge Horizontally", &FreshRecord<MergeHorRecord>::def),
    actionRow("MergeV", "WaveWindow", "M&erge Vertically", "Shift+Ctrl+M", "Merge Vertically", "Merge two mono waves into one stereo wave", F::Document, E::SeveralWindows, "Merge Vertically", &FreshRecord<MergeVertRecord>::def),
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
