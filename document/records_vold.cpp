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
        colourField("Background", &R::background, kWhite),
        colourField("Volume Single or Both ", &R::volumeBoth, kTeal),
        colourField("Volume Left", &R::volumeLeft, kRed),
        colourField("Volume Right", &R::volumeRight, kFuchsia),
        colourField("Cursor", &R::cursor, kRed),
        flagField("2 Single Diagrams when Stereo", &R::twoDiagrams, true),
    }, checkVold);
    return t;
}

}  // namespace orv
