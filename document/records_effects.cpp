// The records of the amplitude, shape and time-scale effects and of the stereo operations.
#include "document/records.h"

namespace orv {

VolumeRecord::VolumeRecord() { table().applyDefaults(*this); }
const RecordTable<VolumeRecord>& VolumeRecord::table() {
    using R = VolumeRecord;
    static const RecordTable<R> t("Change Volume", 9, {
        optionField("Volume Factor", &R::kind, {"Constant", "Envelope"}),
        waveNameField("Envelope", &R::envelope).named("Volume Factor").in("Volume Factor", kEnvelope),
        volumeField("Constant", &R::factor, 0.5).named("Volume Factor").in("Volume Factor", kConstant),
    });
    return t;
}

namespace {
bool checkRotate(const RotateRecord& r, const FormContext& context, FormError& error) {
    if (r.kind != RotateRecord::kByTime || r.time.value <= context.soundSeconds) return true;
    error = inputError("Time", "Time may not be longer than the time of the sound.");
    return false;
}

// Played backwards, the sound cannot follow a pitch envelope block by block.
bool checkTempoPitch(const TempoPitchRecord& r, const FormContext&, FormError& error) {
    if (!r.frequencyHasEnvelope || r.speedFactor.value > 0) return true;
    error = inputError("Factor", "Value must be positive when the pitch follows an envelope.");
    return false;
}
}  // namespace

RotateRecord::RotateRecord() { table().applyDefaults(*this); }
const RecordTable<RotateRecord>& RotateRecord::table() {
    using R = RotateRecord;
    static const RecordTable<R> t("Rotate", 21, {
        phaseField("Factor", &R::factor, 0.1).in("Rotate by", kByFactor),
        timeField("Time", &R::time, 0.1, kUnitSecond, kCheckNotNegative).in("Rotate by", kByTime),
        optionField("Rotate by", &R::kind, {"Factor", "Time"}),
        optionField("Shift to", &R::shiftTo, {"Left", "Right"}),
    }, checkRotate);
    return t;
}

BlockRecord::BlockRecord() { table().applyDefaults(*this); }
const RecordTable<BlockRecord>& BlockRecord::table() {
    using R = BlockRecord;
    static const RecordTable<R> t("Block", 43, {
        optionField("Horizontal", &R::horizontal, {"Count", "Time", "No Change"}),
        countField(" Horizontal Count", &R::horizontalCount, 20).in("Horizontal", kCount),
        timeField(" Time", &R::time, 0.01, kUnitMillisecond, kCheckPositive)
            .in("Horizontal", kTimeOrHeight),
        optionField("Vertical", &R::vertical, {"Count", "Height", "No Change"}),
        countField(" Vertical Count", &R::verticalCount, 20).in("Vertical", kCount),
        waveValueField(" Height", &R::height, 3277, kCheckPositive).in("Vertical", kTimeOrHeight),
    });
    return t;
}

RollInRecord::RollInRecord() { table().applyDefaults(*this); }
const RecordTable<RollInRecord>& RollInRecord::table() {
    using R = RollInRecord;
    static const RecordTable<R> t("Roll in", 44, {
        timeField("Length", &R::length, 1.0, kUnitSecond, kCheckPositive),
        optionField("Placement", &R::placement, {"Start at", "End at"}),
        positionField("Start at", &R::startAt).in("Placement", kStartAt),
        positionField("End at", &R::endAt).in("Placement", kEndAt),
    });
    return t;
}

UpRecord::UpRecord() { table().applyDefaults(*this); }
const RecordTable<UpRecord>& UpRecord::table() {
    using R = UpRecord;
    static const RecordTable<R> t("Up / Down", 19, {
        waveValueField("Add Value", &R::addValue, 16383),
    });
    return t;
}

LeftRightRecord::LeftRightRecord() { table().applyDefaults(*this); }
const RecordTable<LeftRightRecord>& LeftRightRecord::table() {
    using R = LeftRightRecord;
    static const RecordTable<R> t("Mix Left Right", 36, {
        volumeField("from Left to Left", &R::leftToLeft, 1.0),
        volumeField("from Left to Right", &R::leftToRight, 0.0),
        volumeField("from Right to Left", &R::rightToLeft, 0.0),
        volumeField("from Right to Right", &R::rightToRight, 1.0),
        presetField<R>("Example",
                       {"Normal", "Swapped", "Extra Stereo", "Super Stereo", "Surround", "Mono",
                        "Mono at Left, Surround at Right", "Mono at Right, Surround at Left"},
                       {"from Left to Left", "from Left to Right", "from Right to Left",
                        "from Right to Right"},
                       {{1, 0, 0, 1},
                        {0, 1, 1, 0},
                        {0.75, -0.25, -0.25, 0.75},
                        {0.5, -0.25, -0.25, 0.5},
                        {0.5, -0.5, -0.5, 0.5},
                        {0.5, 0.5, 0.5, 0.5},
                        {0.4, -0.8, 0.4, 0.8},
                        {0.8, 0.4, -0.8, 0.4}}),
    });
    return t;
}

BalanceRecord::BalanceRecord() { table().applyDefaults(*this); }
const RecordTable<BalanceRecord>& BalanceRecord::table() {
    using R = BalanceRecord;
    static const RecordTable<R> t("Balance", 11, {
        optionField("Direction", &R::directionKind, {"Constant", "Envelope"}),
        balanceField("Direction Constant", &R::direction, 0.0).in("Direction", kConstant),
        waveNameField("Direction Envelope", &R::directionEnvelope).in("Direction", kEnvelope),
        optionField("Volume Difference", &R::volumeDifference, {"None", "Volume", "Filter"}),
        flagField("Time Difference", &R::timeDifference),
    });
    return t;
}

MixRecord::MixRecord() { table().applyDefaults(*this); }
const RecordTable<MixRecord>& MixRecord::table() {
    using R = MixRecord;
    static const RecordTable<R> t("Mix", 4, {
        optionField("Place", &R::place, {"Align Begin", "Align End", "Stretch"}),
    });
    return t;
}

TempoPitchRecord::TempoPitchRecord() { table().applyDefaults(*this); }
const RecordTable<TempoPitchRecord>& TempoPitchRecord::table() {
    using R = TempoPitchRecord;
    static const RecordTable<R> t("Pitch Tempo", 50, {
        factorField("Frequency Factor", &R::frequencyFactor, 2.0, kCheckPositive),
        flagField("Frequency Envelope", &R::frequencyHasEnvelope),
        waveNameField("Frequency Envelope Wave", &R::frequencyEnvelope)
            .named("Frequency Envelope").in("Frequency Envelope", 1),
        factorField("Speed Factor", &R::speedFactor, 1.0, kCheckNotZero).named("Factor"),
        flagField("Speed Envelope", &R::speedHasEnvelope),
        waveNameField("Speed Envelope Wave", &R::speedEnvelope)
            .named("Speed Envelope").in("Speed Envelope", 1),
        optionField("Length", &R::lengthKind,
                    {"Length Factor", "New Length", "Same Length as", "Count"}),
        factorField("Length Factor", &R::lengthFactor, 0.5, kCheckPositive)
            .in("Length", kLengthFactor),
        timeField("New Length", &R::newLength, 2.0, kUnitSecond, kCheckPositive)
            .in("Length", kLengthNew),
        waveNameField("Same Length as", &R::sameAs).in("Length", kLengthSameAs),
        countField("Count", &R::lengthCount, 3).in("Length", kLengthCount),
        positionField("Start Position", &R::startPosition),
        optionField("Quality", &R::quality, {"Low", "High"}),
        timeField("Block Size", &R::blockSize, 0.04, kUnitMillisecond, kCheckPositive),
    }, checkTempoPitch);
    return t;
}

RollOutRecord::RollOutRecord() { table().applyDefaults(*this); }
const RecordTable<RollOutRecord>& RollOutRecord::table() {
    using R = RollOutRecord;
    static const RecordTable<R> t("Roll out", 46, {
        factorField("Speed Factor", &R::speedFactor, 2.0, kCheckNotZero).named("Factor"),
        flagField("Speed Envelope", &R::speedHasEnvelope),
        waveNameField("Speed Envelope Wave", &R::speedEnvelope)
            .named("Speed Envelope").in("Speed Envelope", 1),
        optionField("Length", &R::lengthKind,
                    {"Length Factor", "New Length", "Same Length as", "Count"}),
        factorField("Length Factor", &R::lengthFactor, 0.5, kCheckPositive)
            .in("Length", kLengthFactor),
        timeField("New Length", &R::newLength, 2.0, kUnitSecond, kCheckPositive)
            .in("Length", kLengthNew),
        waveNameField("Same Length as", &R::sameAs).in("Length", kLengthSameAs),
        countField("Count", &R::lengthCount, 3).in("Length", kLengthCount),
        positionField("Start Position", &R::startPosition),
    });
    return t;
}

LengthRecord::LengthRecord() { table().applyDefaults(*this); }
const RecordTable<LengthRecord>& LengthRecord::table() {
    using R = LengthRecord;
    static const RecordTable<R> t("Change Length", 49, {
        optionField("Length", &R::lengthKind, {"Length Factor", "New Length", "Same Length as"}),
        factorField("Length Factor", &R::lengthFactor, 0.5, kCheckPositive)
            .in("Length", kLengthFactor),
        timeField("New Length", &R::newLength, 2.0, kUnitSecond, kCheckPositive)
            .in("Length", kLengthNew),
        waveNameField("Same Length as", &R::sameAs).in("Length", kLengthSameAs),
    });
    return t;
}

DistortRecord::DistortRecord() { table().applyDefaults(*this); }
const RecordTable<DistortRecord>& DistortRecord::table() {
    using R = DistortRecord;
    static const RecordTable<R> t("Distort", 45, {
        waveNameField("Distort Envelope", &R::envelope),
    });
    return t;
}

}  // namespace orv
