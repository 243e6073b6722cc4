#include "document/records_vold.h"

#include <cmath>
#include <string>
#include <variant>

namespace orv {

namespace {

constexpr ColorRef kFuchsia = 0xFF00FF;

// The resonators need at least one sample per period: a row above the sample frequency
// would have a stiffness the four steps per sample cannot hold. Computed as the painter
// computes the period in samples.
bool aboveSampleFreq(const ValueRecord& period, std::int32_t sampleFreq) {
    return !(period.value * sampleFreq >= 1.0);
}

// "20 kHz" and "0.05 ms" are read along different roads and may differ in the last bit;
// both are the same frequency to the user, and to the resonators.
bool sameFrequency(const ValueRecord& a, const ValueRecord& b) {
    return std::fabs(a.value - b.value) <= 1e-9 * std::fmax(std::fabs(a.value), std::fabs(b.value));
}

bool checkVold(const VoldViewRecord& r, const FormContext& context, FormError& error) {
    if (auto e = checkVoldFrequencies(r, context.sampleFreq)) {
        error = *e;
        return false;
    }
    return true;
}

bool isCheckMessage(std::string_view m) {
    return m == kTopTooHighMessage || m == kTopEqualsBottomMessage || m == kBottomTooHighMessage;
}

}  // namespace

std::optional<FormError> checkVoldFrequencies(const VoldViewRecord& r, std::int32_t sampleFreq) {
    const auto& t = VoldViewRecord::table();
    if (sampleFreq > 0 && aboveSampleFreq(r.top, sampleFreq))
        return inputError("Top", kTopTooHighMessage, t.find("Top"));
    if (sameFrequency(r.top, r.bottom))
        return inputError("Top", kTopEqualsBottomMessage, t.find("Top"));
    if (sampleFreq > 0 && aboveSampleFreq(r.bottom, sampleFreq))
        return inputError("Bottom", kBottomTooHighMessage, t.find("Bottom"));
    return std::nullopt;
}

VoldViewRecord::VoldViewRecord() { table().applyDefaults(*this); }

const RecordTable<VoldViewRecord>& VoldViewRecord::table() {
    using R = VoldViewRecord;
    // Colours are integer fields underneath; VoldViewForm shows and reads them as #RRGGBB.
    auto colour = [](std::string_view caption, ColorRef R::*m, ColorRef def) {
        return countField(caption, m, def, kCheckNotNegative, FieldKind::Integer);
    };
    static const RecordTable<R> t("Volume Diagram", 3, {
        timeField("Top", &R::top, 0.00005, kUnitKilohertz, kCheckPositive),
        timeField("Bottom", &R::bottom, 0.05, kUnitHertz, kCheckPositive),
        countField("Vertical", &R::vertical, 50).named("Vertical Resolution"),
        factorField("Width", &R::width, 1.0, kCheckPositive).named("Frequency Width"),
        factorField("Strength", &R::strength, 1.3, kCheckPositive),
        flagField("Fill Window Height", &R::fillHeight, true),
        flagField("Ring in before View", &R::ringInBeforeView, true),
        flagField("Show Selection", &R::showSelection, true),
        optionField("Horizontal Distribution", &R::distribution,
                    {"Frequency Linear", "Logaritmic", "Time Linear"}, kLogarithmic),
        optionField("Sensitivity", &R::sensitivity,
                    {"Low (Kwadratic)", "Normal (Linear)", "High (Square root)",
                     "Very High (Fourth root)"},
                    kNormal),
        colour("Background", &R::background, kWhite),
        colour("Volume Single or Both ", &R::volumeBoth, kTeal),
        colour("Volume Left", &R::volumeLeft, kRed),
        colour("Volume Right", &R::volumeRight, kFuchsia),
        colour("Cursor", &R::cursor, kRed),
        flagField("2 Single Diagrams when Stereo", &R::twoDiagrams, true),
    }, checkVold);
    return t;
}

bool VoldViewForm::isColourField(int field) {
    const auto& fields = VoldViewRecord::table().fields;
    return field >= 0 && std::size_t(field) < fields.size() &&
           fields[std::size_t(field)].kind == FieldKind::Integer;
}

FormState VoldViewForm::show(const WaveNameLookup* names) const {
    const auto& t = VoldViewRecord::table();
    FormState state = showRecord(t, record_, names);
    for (std::size_t i = 0; i < t.fields.size(); ++i)
        if (isColourField(int(i)))
            state.fields[i].text =
                colourText(record_.*std::get<std::int32_t VoldViewRecord::*>(t.member(i)));
    return state;
}

std::optional<FormError> VoldViewForm::accept(const FormState& state,
                                              const FormContext& context) {
    const auto& t = VoldViewRecord::table();
    // The shared reading takes the colours as numbers; a colour that cannot be read stands
    // in as 0 and its message goes out only if nothing before it failed.
    FormState numeric = state;
    int badColour = kNoField;
    for (std::size_t i = 0; i < t.fields.size(); ++i) {
        if (!isColourField(int(i)) || !fieldCounts(t, state, int(i))) continue;
        ColorRef c = 0;
        if (!readColourText(state.fields[i].text, c) && badColour == kNoField) badColour = int(i);
        numeric.fields[i].text = std::to_string(c);
    }
    VoldViewRecord result = record_;
    std::optional<FormError> error = acceptRecord(t, numeric, result, context);
    if (badColour != kNoField) {
        // Fields are read in order and the record's own check runs after all of them, so
        // the colour goes out unless a field before it could not be read.
        const bool readBefore = error && !isCheckMessage(error->message) &&
                                error->fieldIndex != kNoField && error->fieldIndex < badColour;
        if (!readBefore)
            return inputError(t.fields[std::size_t(badColour)].messageName(),
                              kColourFormatMessage, badColour);
    }
    if (error) return error;
    record_ = result;
    return std::nullopt;
}

std::optional<FormError> applyTypedFields(VoldViewRecord& record, const TypedFields& typed,
                                          const FormContext& context) {
    VoldViewForm form(record);
    return applyTypedFields(static_cast<FormView&>(form), typed, context);
}

}  // namespace orv
