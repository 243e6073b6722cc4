#include "document/undo_unit.h"

#include <cstdio>
#include <string>
#include <utility>

#include "core/platform.h"
#include "document/unit_wave.h"

namespace orv {

namespace {
std::string address(const void* p) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%p", p);
    return buffer;
}
}  // namespace

TUndoUnit::TUndoUnit(TUnitWave* unitWave)
    : UnitWave(unitWave),
      BytesPSample(unitWave->BytesPSample),
      TheSound(unitWave->TheSound),
      cursor(unitWave->cursor),
      selEndPos(unitWave->selEndPos) {
    debugTrace("in TUndoUnit::TUndoUnit(TUnitWave *unitWave)\n");
    debugTrace("-- TUndoUnit::TUndoUnit(WU): TheSound = UnitWave->TheSound (" +
               address(TheSound) + ")\n");
    debugTrace("uit TUndoUnit::TUndoUnit(TUnitWave *unitWave)\n");
}

TUndoUnit::~TUndoUnit() {
    debugTrace("in TUndoUnit::~TUndoUnit(TWaveUnit *waveUnit)\n");
    debugTrace("-- TUndoUnit::~TUndoUnit: kijk of TheSound != NULL is, dan deleten\n");
    if (TheSound != nullptr) {
        debugTrace("-- TUndoUnit::~TUndoUnit: kijk of TheSound != WU->TheSound is, dan echt deleten\n");
        // A sound the unit still holds is the unit's; only one it let go of is ours.
        if (TheSound != UnitWave->TheSound) {
            debugTrace("-- TUndoUnit::~TUndoUnit: delete TheSound (" + address(TheSound) + ")\n");
            delete TheSound;
        }
    }
    debugTrace("uit TUndoUnit::~TUndoUnit(TWaveUnit *waveUnit)\n");
}

bool TUndoUnit::ownsSound() const { return TheSound && TheSound != UnitWave->TheSound; }

void TUndoUnit::disown() { TheSound = nullptr; }

void TUndoUnit::restore() {
    std::swap(BytesPSample, UnitWave->BytesPSample);
    std::swap(TheSound, UnitWave->TheSound);
    std::swap(cursor, UnitWave->cursor);
    std::swap(selEndPos, UnitWave->selEndPos);
    UnitWave->setChanged();
    if (WaveView* view = UnitWave->getView()) {
        view->repaintAll();
        view->refreshStatus(*UnitWave);
        view->moveCursor(UnitWave->cursor);
    }
}

}  // namespace orv
