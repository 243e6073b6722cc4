// Where the windows of split and merge go: the new windows take the place of the windows
// they replace (the geometry is in app/window_placement.h) and the look of their source, or
// for a merge of the wave chosen under "Use Display Properties of".
#include <QMdiArea>
#include <QMdiSubWindow>

#include "app/main_form.h"
#include "app/window_placement.h"
#include "document/wave_comparison.h"
#include "view/mdi_child_wave.h"

namespace orv {

TMainForm::Arrangement TMainForm::arrangementFor(std::string_view command,
                                                 const CommandInput& input) const {
    Arrangement a;
    for (QMdiSubWindow* sub : mdi_->subWindowList())
        if (auto* child = qobject_cast<TMDIChildWave*>(sub->widget()))
            if (child->unit()) a.bounds[child->unit()] = sub->geometry();
    const TUnitWave* looks = workspace_.active();
    if ((command == "MergeH" || command == "MergeV") && input.form)
        looks = mergeDisplaySource(*input.form->spec, input.form->state, workspace_);
    if (const TMDIChildWave* child = childOf(looks)) {
        a.hasLook = true;
        a.settings = child->settings();
        a.voldSettings = child->voldSettings();
    }
    return a;
}

void TMainForm::placeMadeWindows(std::string_view command, const Arrangement& before) {
    // The windows that went (their documents are closed: the keys are only compared).
    std::vector<QRect> gone;
    for (const auto& [unit, rect] : before.bounds)
        if (!childOf(unit)) gone.push_back(rect);
    std::vector<TMDIChildWave*> made;
    for (TUnitWave* unit : workspace_.lastMade()) {
        TMDIChildWave* child = childOf(unit);
        if (!child || before.bounds.count(unit)) return;  // not this command's windows
        made.push_back(child);
    }
    if (gone.empty() || made.empty()) return;
    std::vector<QRect> places;
    if (command == "SplitV")
        places = splitVerticalPlacement(gone[0]);
    else if (command == "SplitH")
        places = splitHorizontalPlacement(gone[0], int(made.size()));
    else if (gone.size() == 2)
        places = {mergePlacement(gone[0], gone[1])};
    for (std::size_t i = 0; i < made.size(); ++i) {
        if (before.hasLook) {
            made[i]->setSettings(before.settings);
            made[i]->setVoldSettings(before.voldSettings);
        }
        auto* sub = qobject_cast<QMdiSubWindow*>(made[i]->parentWidget());
        if (sub && i < places.size()) sub->setGeometry(places[i]);
    }
}

}  // namespace orv
