// The multi-frequency generator's record and its frequency records.
#include "document/records.h"

namespace orv {

FrequencyRecord::FrequencyRecord() { table().applyDefaults(*this); }
const RecordTable<FrequencyRecord>& FrequencyRecord::table() {
    using R = FrequencyRecord;
    static const RecordTable<R> t("Frequency", 37, {
        volumeField("Start Volume", &R::startVolume, 0.5).defaultedBy("Start Volume Default"),
        flagField("Start Volume Default", &R::defVolume),
        timeField("Frequency", &R::frequency, 0.001, kUnitKilohertz, kCheckPositive)
            .defaultedBy("Frequency Default"),
        flagField("Frequency Default", &R::defFrequency),
        phaseField("Start Angle", &R::startAngle, 0.0).defaultedBy("Start Angle Default"),
        flagField("Start Angle Default", &R::defAngle),
        factorField("Volume Factor", &R::volumeFactor, 0.1, kCheckPositive)
            .defaultedBy("Volume Factor Default"),
        flagField("Volume Factor Default", &R::defVolFact),
        timeField("Volume Factor at Time", &R::volumeFactorTime, 1.0, kUnitSecond, kCheckPositive)
            .defaultedBy("Volume Factor at Time Default"),
        flagField("Volume Factor at Time Default", &R::defVolFactTime),
    });
    return t;
}

MFreqPartial FrequencyRecord::partial() const {
    MFreqPartial p;
    p.volume = startVolume.value;
    p.period = frequency.value;
    p.startAngle = startAngle.value;
    p.volumeFactor = volumeFactor.value;
    p.volumeFactorTime = volumeFactorTime.value;
    return p;
}

MFreqRecord::MFreqRecord() { table().applyDefaults(*this); }
const RecordTable<MFreqRecord>& MFreqRecord::table() {
    using R = MFreqRecord;
    static const RecordTable<R> t("Multi Frequency", 37, {
        timeField("Length", &R::length, 3.0, kUnitSecond, kCheckPositive),
        optionField("Use", &R::use, {"Sinus", "Wave Form"}),
        waveNameField("Wave Form", &R::waveForm).in("Use", kWaveForm),
    });
    return t;
}

}  // namespace orv

namespace orv {

std::vector<MFreqPartial> MFreqRecord::partials() const {
    std::vector<MFreqPartial> out;
    for (const FrequencyRecord& f : frequencies.records()) out.push_back(f.partial());
    return out;
}

std::optional<FormError> setFrequencies(MFreqRecord& record,
                                        const std::vector<TypedFields>& entries,
                                        const FormContext& context) {
    if (entries.empty()) {
        FormError e;
        e.caption = std::string(kUsageErrorCaption);
        e.message = "Give at least one frequency.";
        return e;
    }
    std::vector<FrequencyRecord> list;
    for (const TypedFields& typed : entries) {
        FrequencyRecord f;
        if (auto e = applyTypedFields(f, typed, context)) return e;
        list.push_back(f);
    }
    record.frequencies = RecordBrowser<FrequencyRecord>(list);
    return std::nullopt;
}

}  // namespace orv
