// The generators' records: silence, line, noise, block or triangle, sinus.
#include "document/records.h"

namespace orv {

double lengthFactor(std::uint8_t kind, double factor, double newLengthSeconds,
                    double sameAsSeconds, double currentSeconds) {
    switch (kind) {
        case kLengthFactor: return factor;
        case kLengthNew: return currentSeconds > 0.0 ? newLengthSeconds / currentSeconds : 0.0;
        case kLengthSameAs: return currentSeconds > 0.0 ? sameAsSeconds / currentSeconds : 0.0;
        default: return 0.0;
    }
}

SilenceRecord::SilenceRecord() { table().applyDefaults(*this); }
const RecordTable<SilenceRecord>& SilenceRecord::table() {
    using R = SilenceRecord;
    static const RecordTable<R> t("Make Silence", 20, {
        timeField("Length", &R::length, 0.1, kUnitMillisecond, kCheckNotNegative),
    });
    return t;
}

namespace {
bool checkLine(const LineRecord& r, const FormContext&, FormError& error) {
    if (r.kind != LineRecord::kExponential) return true;
    // An exponential line cannot start or end at 0: the ratio between the ends is undefined.
    // Nor can it pass through 0 from one sign to the other.
    const WaveVal begin = toWaveVal(r.beginValue.value), end = toWaveVal(r.endValue.value);
    const char* field = nullptr;
    if (begin == 0)
        field = "Begin Value";
    else if (end == 0 || (begin < 0) != (end < 0))
        field = "End Value";
    if (!field) return true;
    error = inputError(field, "Exponential Line may not contain value 0.");
    return false;
}
}  // namespace

LineRecord::LineRecord() { table().applyDefaults(*this); }
const RecordTable<LineRecord>& LineRecord::table() {
    using R = LineRecord;
    static const RecordTable<R> t("Make Line", 5, {
        waveValueField("Begin Value", &R::beginValue, 16383),
        waveValueField("End Value", &R::endValue, -16384),
        timeField("Length", &R::length, 0.1, kUnitMillisecond, kCheckNotNegative),
        optionField("Kind", &R::kind, {"Linear", "Exponential"}),
    }, checkLine);
    return t;
}

NoiseRecord::NoiseRecord() { table().applyDefaults(*this); }
const RecordTable<NoiseRecord>& NoiseRecord::table() {
    using R = NoiseRecord;
    static const RecordTable<R> t("Make Noise", 8, {
        waveValueField("Volume", &R::volume, 16383),
        timeField("Length", &R::length, 0.5, kUnitMillisecond, kCheckNotNegative),
    });
    return t;
}

BlockTriangleRecord::BlockTriangleRecord() { table().applyDefaults(*this); }
const RecordTable<BlockTriangleRecord>& BlockTriangleRecord::table() {
    using R = BlockTriangleRecord;
    static const RecordTable<R> t("Block or Triangle", 6, {
        waveValueField("Height 1", &R::height1, 16383),
        waveValueField("Height 2", &R::height2, -16383),
        timeField("Frequency", &R::frequency, 0.001, kUnitKilohertz, kCheckPositive)
            .in("Wave Kind", bloTriFreq),
        phaseField("Middle", &R::middle, 0.5).in("Middle Kind", kMiddleConstant),
        waveNameField("Middle Envelope", &R::middleEnvelope).in("Middle Kind", kMiddleEnvelope),
        optionField("Middle Kind", &R::middleKind, {"Middle", "Middle Envelope"}),
        timeField("Time 1", &R::time1, 0.005, kUnitMillisecond, kCheckNotNegative)
            .in("Wave Kind", bloTriTime),
        timeField("Time 2", &R::time2, 0.005, kUnitMillisecond, kCheckNotNegative)
            .in("Wave Kind", bloTriTime),
        optionField("Wave Kind", &R::BloTriHorKind, {"Wave in Time", "Frequency"}, bloTriFreq),
        // A generator has no length of its own to scale, so a new length is the usual start.
        optionField("Length", &R::lengthKind,
                    {"Length Factor", "Length New", "Length Same As", "Length Count"},
                    kLengthNew),
        factorField("Length Factor", &R::lengthFactor, 1.0, kCheckPositive)
            .in("Length", kLengthFactor),
        timeField("Length New", &R::newLength, 1.0, kUnitSecond, kCheckPositive)
            .in("Length", kLengthNew),
        waveNameField("Length Same As", &R::sameAs).in("Length", kLengthSameAs),
        countField("Length Count", &R::lengthCount, 10).in("Length", kLengthCount),
        phaseField("Start Position", &R::startPosition, 0.0),
    });
    return t;
}

double BlockTriangleRecord::getMiddle() const {
    ORV_ASSERT(!HasMiddleEnvelope(), "DBlockTriangle");
    return middle.value;
}
double BlockTriangleRecord::getTime1() const {
    ORV_ASSERT(BloTriHorKind == bloTriTime, "DBlockTriangle");
    return time1.value;
}
double BlockTriangleRecord::getTime2() const {
    ORV_ASSERT(BloTriHorKind == bloTriTime, "DBlockTriangle");
    return time2.value;
}

SinusRecord::SinusRecord() { table().applyDefaults(*this); }
const RecordTable<SinusRecord>& SinusRecord::table() {
    using R = SinusRecord;
    static const RecordTable<R> t("Make Sinus", 7, {
        waveValueField("Amplitude", &R::amplitude, 16383),
        timeField("Frequency", &R::frequency, 0.001, kUnitKilohertz, kCheckPositive),
        phaseField("Start Phase", &R::startPhase, 0.0),
        timeField("Length", &R::length, 0.5, kUnitMillisecond, kCheckNotNegative)
            .in("Length or Count", kByLength),
        factorField("Count", &R::count, 500, kCheckPositive).in("Length or Count", kByCount),
        optionField("Length or Count", &R::kind, {"Length", "Count"}),
    });
    return t;
}

}  // namespace orv
