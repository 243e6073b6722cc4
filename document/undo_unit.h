// TUndoUnit: what one unit was before the last operation on it. There is at most one for
// the whole program (the workspace holds it). It keeps the unit's old sound object itself,
// no copy: operations never change the sound they run on.
//
// Ownership: whoever holds a sound the other does not hold owns it. The record deletes its
// sound only when its unit no longer holds that same sound.
//
// Undo and redo are one command: restore() exchanges the unit's present with the record,
// so a second restore gives the changed state back.
#pragma once

#include <cstdint>

#include "core/sound.h"

namespace orv {

class TUnitWave;

class TUndoUnit {
public:
    explicit TUndoUnit(TUnitWave* unitWave);
    ~TUndoUnit();
    TUndoUnit(const TUndoUnit&) = delete;
    TUndoUnit& operator=(const TUndoUnit&) = delete;

    // Exchanges sample width, sound, cursor and selection end with the unit, marks the
    // unit changed and repaints its view.
    void restore();

    TUnitWave* unit() const { return UnitWave; }
    const Sound* sound() const { return TheSound; }
    std::uint16_t bytesPSample() const { return BytesPSample; }
    std::int32_t getCursor() const { return cursor; }
    std::int32_t getSelEndPos() const { return selEndPos; }
    // True when the record holds a sound its unit does not (it owns one).
    bool ownsSound() const;
    // Forgets the sound without deleting it: somebody else holds it now.
    void disown();

private:
    TUnitWave* UnitWave;
    std::uint16_t BytesPSample;
    Sound* TheSound;
    std::int32_t cursor;
    std::int32_t selEndPos;
};

}  // namespace orv
