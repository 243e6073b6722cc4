// The records of the echoes and the filters.
#include "document/records.h"

#include <cmath>
#include <string>

#include "document/filter_frequency_check.h"

namespace orv {

std::optional<FormError> checkResonatorValues(const ResNotchRecord& r, std::int32_t sampleFreq) {
    if (r.frequencyKind == kConstant && sampleFreq > 0) {
        // The period in samples, computed exactly as the filter will compute it.
        const double per = sampleFreq * r.frequency.value;
        if (!(per >= 1))
            return inputError("Frequency Constant",
                              "Frequency is too high. (maximum: " + std::to_string(sampleFreq) +
                                  " Hz, the sample frequency of the wave)");
    }
    if (r.widthKind == kConstant && r.width.value > 1)
        return inputError("Width Constant", "Value must be no more than 1.");
    return std::nullopt;
}

namespace {
bool checkResNotch(const ResNotchRecord& r, const FormContext& context, FormError& error) {
    if (auto e = checkResonatorValues(r, context.sampleFreq)) {
        error = *e;
        return false;
    }
    return true;
}
}  // namespace

ResNotchRecord::ResNotchRecord() { table().applyDefaults(*this); }
const RecordTable<ResNotchRecord>& ResNotchRecord::table() {
    using R = ResNotchRecord;
    static const RecordTable<R> t("Resonant/Notch", 16, {
        optionField("Frequency", &R::frequencyKind, {"Constant", "Envelope"}),
        timeField("Frequency Constant", &R::frequency, 0.001, kUnitKilohertz, kCheckPositive)
            .in("Frequency", kConstant),
        waveNameField("Frequency Envelope", &R::frequencyEnvelope).in("Frequency", kEnvelope),
        optionField("Frequency Width", &R::widthKind, {"Constant", "Envelope"}),
        factorField("Width Constant", &R::width, 0.25, kCheckPositive)
            .in("Frequency Width", kConstant),
        waveNameField("Frequency Width Envelope", &R::widthEnvelope)
            .in("Frequency Width", kEnvelope),
    }, checkResNotch);
    return t;
}

PerEchoRecord::PerEchoRecord() { table().applyDefaults(*this); }
const RecordTable<PerEchoRecord>& PerEchoRecord::table() {
    using R = PerEchoRecord;
    static const RecordTable<R> t("Period Echo", 12, {
        // Echoes may also come before the sound: the time takes either sign.
        timeField("Echo Time", &R::time, 0.01, kUnitMillisecond, kCheckNone).named("Time"),
        flagField("Echo Time Envelope", &R::timeHasEnvelope),
        waveNameField("Echo Time Envelope Wave", &R::timeEnvelope)
            .named(" Echo Time Envelope").in("Echo Time Envelope", 1),
        optionField("Echo Volume", &R::volumeKind, {"Constant", "Envelope"}),
        volumeField("Volume Constant", &R::volume, 1.0).in("Echo Volume", kConstant),
        waveNameField("Echo Volume Envelope", &R::volumeEnvelope)
            .named(" Echo Volume Envelope").in("Echo Volume", kEnvelope),
        countField("Echo Count", &R::count, 1).named("Count"),
    });
    return t;
}

namespace {
// The filters spread this attenuation over their passes as a root of it: it has to lie
// strictly between 0 and 1, and the loudness reader has no sign check of its own.
bool checkHighLow(const HighLowRecord& r, const FormContext&, FormError& error) {
    if (r.volume.value <= 0.0) {
        error = inputError("Volume Factor", "Value must be positive and more than 0.");
        return false;
    }
    if (r.volume.value >= 1.0) {
        error = inputError("Volume Factor", "Value must be less than 1.");
        return false;
    }
    return true;
}
}  // namespace

HighLowRecord::HighLowRecord() { table().applyDefaults(*this); }
const RecordTable<HighLowRecord>& HighLowRecord::table() {
    using R = HighLowRecord;
    static const RecordTable<R> t("High Low Filter", 15, {
        optionField("Frequency", &R::frequencyKind, {"Constant", "Envelope"}),
        waveNameField("Envelope", &R::frequencyEnvelope).named("Frequency").in("Frequency", kEnvelope),
        timeField("Constant", &R::frequency, 0.001, kUnitKilohertz, kCheckPositive)
            .named("Frequency").in("Frequency", kConstant),
        volumeField("Volume Factor", &R::volume, 0.5),
        countField("Count", &R::count, 1),
        flagField("Maximize Volume", &R::maximize),
    }, checkHighLow);
    return t;
}

BlockFilterRecord::BlockFilterRecord() { table().applyDefaults(*this); }
const RecordTable<BlockFilterRecord>& BlockFilterRecord::table() {
    using R = BlockFilterRecord;
    static const RecordTable<R> t("Block Filter", 17, {
        timeField("Block Time", &R::time, 0.01, kUnitMillisecond, kCheckPositive),
        flagField("Block Time Envelope", &R::hasEnvelope),
        waveNameField("Block Time Envelope Wave", &R::envelope)
            .named("Block Time Envelope").in("Block Time Envelope", 1),
    });
    return t;
}

namespace {
// Which of the six dice of the random echo drives a property.
template <class R>
Field<R> dieField(std::string_view caption, std::uint8_t R::*m, std::uint8_t die) {
    return optionField(caption, m, {"Die 0", "Die 1", "Die 2", "Die 3", "Die 4", "Die 5"}, die);
}
}  // namespace

RandomEchoRecord::RandomEchoRecord() { table().applyDefaults(*this); }
const RecordTable<RandomEchoRecord>& RandomEchoRecord::table() {
    using R = RandomEchoRecord;
    // Each property starts on a die of its own, so that they move independently until the
    // user chooses to tie two of them together.
    static const RecordTable<R> t("Random Echo", 13, {
        countField("Count", &R::count, 20),
        countField("&Random Seed", &R::seed, 0, kCheckNone, FieldKind::Integer)
            .named("Random Seed"),
        optionField("Time", &R::timeKind, {"Linear", "Random Envelope"}),
        dieField("Time Source", &R::timeDie, 0),
        waveNameField("Time - Random Envelope", &R::timeEnvelope).in("Time", 1),
        timeField("Time Difference", &R::timeDifference, 1.0, kUnitMillisecond,
                  kCheckNotNegative),
        optionField("Volume", &R::volumeKind, {"No Change", "Linear", "Random Envelope"}),
        dieField("Volume Source", &R::volumeDie, 1),
        waveNameField("Volume - Random Envelope", &R::volumeEnvelope).in("Volume", 2),
        optionField("Length", &R::lengthKind, {"No Change", "Random Envelope"}),
        dieField("Length Source", &R::lengthDie, 2),
        waveNameField("Length - Random Envelope", &R::lengthEnvelope).in("Length", 1),
        optionField("Balance", &R::balanceKind, {"No Change", "Linear", "Random Envelope"}),
        dieField("Balance Source", &R::balanceDie, 3),
        waveNameField("Balance - Random Envelope", &R::balanceEnvelope).in("Balance", 2),
        optionField("Volume Difference", &R::balanceVolumeDifference, {"None", "Volume", "Filter"}),
        flagField("Balance Time Difference", &R::balanceTimeDifference).named("Time Difference"),
        optionField("Pitch", &R::pitchKind, {"No Change", "Random Envelope"}),
        dieField("Pitch Source", &R::pitchDie, 4),
        waveNameField("Pitch - Random Envelope", &R::pitchEnvelope).in("Pitch", 1),
        factorField("Pitch - Frequency Factor", &R::pitchFactor, 2.0, kCheckPositive),
        optionField("Tempo", &R::tempoKind, {"No Change", "Random Envelope"}),
        dieField("Tempo Source", &R::tempoDie, 5),
        waveNameField("Tempo - Random Envelope", &R::tempoEnvelope).in("Tempo", 1),
        flagField("Cyclable", &R::cyclable),
        optionField("Quality", &R::quality, {"Low", "High"}),
        timeField("Block Size", &R::blockSize, 0.04, kUnitMillisecond, kCheckPositive),
    });
    return t;
}

}  // namespace orv
