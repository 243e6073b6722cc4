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
    : TUndoUnit(unitWave, unitWave->BytesPSample, unitWave->TheSound, unitWave->cursor,
                unitWave->selEndPos) {}

TUndoUnit::TUndoUnit(TUnitWave* unitWave, std::uint16_t bytesPSample,
                     std::shared_ptr<Sound> sound, std::int32_t cursorPos, std::int32_t selEnd)
    : UnitWave(unitWave),
      BytesPSample(bytesPSample),
      TheSound(std::move(sound)),
      cursor(cursorPos),
      selEndPos(selEnd) {
    debugTrace("in TUndoUnit::TUndoUnit(TUnitWave *unitWave)\n");
    debugTrace("-- TUndoUnit::TUndoUnit(WU): TheSound = UnitWave->TheSound (" +
               address(TheSound.get()) + ")\n");
    debugTrace("uit TUndoUnit::TUndoUnit(TUnitWave *unitWave)\n");
}

TUndoUnit::~TUndoUnit() {
    debugTrace("in TUndoUnit::~TUndoUnit(TWaveUnit *waveUnit)\n");
    debugTrace("-- TUndoUnit::~TUndoUnit: kijk of TheSound != NULL is, dan deleten\n");
    if (TheSound != nullptr) {
        debugTrace("-- TUndoUnit::~TUndoUnit: kijk of TheSound != WU->TheSound is, dan echt deleten\n");
        // A sound the unit still holds stays; one it let go of goes with us, unless a job
        // still reads it (then the job's hold is the last one).
        if (TheSound != UnitWave->TheSound) {
            debugTrace("-- TUndoUnit::~TUndoUnit: delete TheSound (" + address(TheSound.get()) +
                       ")\n");
            TheSound.reset();
        }
    }
    debugTrace("uit TUndoUnit::~TUndoUnit(TWaveUnit *waveUnit)\n");
}

bool TUndoUnit::ownsSound() const { return TheSound && TheSound != UnitWave->TheSound; }

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
