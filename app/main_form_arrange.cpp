// Where the windows of split and merge go: the new windows take the place of the windows
// they replace (the geometry is in app/window_placement.h).
#include <QMdiArea>
#include <QMdiSubWindow>

#include "app/main_form.h"
#include "app/window_placement.h"
#include "view/mdi_child_wave.h"

namespace orv {

TMainForm::WindowBounds TMainForm::windowBounds() const {
    WindowBounds bounds;
    for (QMdiSubWindow* sub : mdi_->subWindowList())
        if (auto* child = qobject_cast<TMDIChildWave*>(sub->widget()))
            if (child->unit()) bounds[child->unit()] = sub->geometry();
    return bounds;
}

void TMainForm::placeMadeWindows(std::string_view command, const WindowBounds& before) {
    // The windows that went, in the order they lay in the area.
    std::vector<QRect> gone;
    for (const auto& [unit, rect] : before)
        if (!childOf(unit)) gone.push_back(rect);
    std::vector<QMdiSubWindow*> made;
    for (TUnitWave* unit : workspace_.lastMade()) {
        TMDIChildWave* child = childOf(unit);
        if (!child || before.count(unit)) return;  // not this command's windows
        made.push_back(qobject_cast<QMdiSubWindow*>(child->parentWidget()));
    }
    if (gone.empty() || made.empty()) return;
    std::vector<QRect> places;
    if (command == "SplitV")
        places = splitVerticalPlacement(gone[0]);
    else if (command == "SplitH")
        places = splitHorizontalPlacement(gone[0], int(made.size()));
    else if (gone.size() == 2)
        places = {mergePlacement(gone[0], gone[1])};
    for (std::size_t i = 0; i < made.size() && i < places.size(); ++i)
        if (made[i]) made[i]->setGeometry(places[i]);
}

}  // namespace orv
