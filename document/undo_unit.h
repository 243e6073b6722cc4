// TUndoUnit: what one unit was before the last operation on it. There is at most one for
// the whole program (the workspace holds it). It keeps the unit's old sound object itself,
// no copy: operations never change the sound they run on.
//
// Ownership: the record and the unit share sounds (and a running job may share them too);
// a sound is deleted only when nothing holds it any more. The record lets go of its sound
// when it goes; it is deleted then unless the unit (or a job) still holds that same sound.
//
// Undo and redo are one command: restore() exchanges the unit's present with the record,
// so a second restore gives the changed state back.
#pragma once

#include <cstdint>
#include <memory>

#include "core/sound.h"

namespace orv {

class TUnitWave;

class TUndoUnit {
public:
    explicit TUndoUnit(TUnitWave* unitWave);
    // A record of the state a job started from: the sample width, sound, cursor and
    // selection end the unit had when the job was prepared.
    TUndoUnit(TUnitWave* unitWave, std::uint16_t bytesPSample, std::shared_ptr<Sound> sound,
              std::int32_t cursor, std::int32_t selEndPos);
    ~TUndoUnit();
    TUndoUnit(const TUndoUnit&) = delete;
    TUndoUnit& operator=(const TUndoUnit&) = delete;

    // Exchanges sample width, sound, cursor and selection end with the unit, marks the
    // unit changed and repaints its view.
    void restore();

    TUnitWave* unit() const { return UnitWave; }
    const Sound* sound() const { return TheSound.get(); }
    std::uint16_t bytesPSample() const { return BytesPSample; }
    std::int32_t getCursor() const { return cursor; }
    std::int32_t getSelEndPos() const { return selEndPos; }
    // True when the record holds a sound its unit does not.
    bool ownsSound() const;

private:
    TUnitWave* UnitWave;
    std::uint16_t BytesPSample;
    std::shared_ptr<Sound> TheSound;
    std::int32_t cursor;
    std::int32_t selEndPos;
};

}  // namespace orv
