#include "document/records_view.h"

#include <cstdio>
#include <variant>

namespace orv {

WaveViewRecord::WaveViewRecord() { table().applyDefaults(*this); }

// Defaults: teal on white for a mono wave; left red and right grey, so that a selected
// stereo part (background and single-wave colour exchanged, left and right exchanged) still
// shows both channels on its teal background; a black cursor reads on every one of them.
// The grid is on, and a stereo wave shows as two bands, as most editors show it.
const RecordTable<WaveViewRecord>& WaveViewRecord::table() {
    using R = WaveViewRecord;
    // Colours are integer fields underneath; WaveViewForm shows and reads them as #RRGGBB.
    auto colour = [](std::string_view caption, ColorRef R::*m, ColorRef def) {
        return countField(caption, m, def, kCheckNotNegative, FieldKind::Integer);
    };
    static const RecordTable<R> t("Wave View", 23, {
        countField("Values per Pixel:", &R::valuesPerPixel, 15).named("Values per Pixel"),
        factorField("Strength:", &R::strength, 1.0, kCheckZeroToOne)
            .named("Strength")
            .in("Draw", kDrawPoints),
        optionField("Draw", &R::draw, {"Lines", "Points"}, kDrawLines),
        optionField("Distribution", &R::distribution, {"Constant", "Random", "Peaks"},
                    kPickConstant),
        colour("Background", &R::background, kWhite),
        colour("Single Wave", &R::singleWave, kTeal),
        colour("Left", &R::left, kRed),
        colour("Right", &R::right, kGrey),
        colour("Grid", &R::grid, kGrey).in("Draw Grid", 1),
        colour("Cursor", &R::cursor, kBlack),
        optionField("Combine", &R::combine, {"Mixed", "Left at Front", "Right at Front"},
                    kCombineMixed),
        flagField("Draw Grid", &R::drawGrid, true),
        flagField("2 Single Waves when Stereo", &R::twoSingleWaves, true),
    });
    return t;
}

namespace {
int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}
}  // namespace

bool readColourText(std::string_view text, ColorRef& colour) {
    const auto b = text.find_first_not_of(" \t");
    if (b == std::string_view::npos) return false;
    text = text.substr(b, text.find_last_not_of(" \t") - b + 1);
    if (text.size() != 7 || text[0] != '#') return false;
    int rgb = 0;
    for (std::size_t i = 1; i < 7; ++i) {
        const int d = hexDigit(text[i]);
        if (d < 0) return false;
        rgb = rgb * 16 + d;
    }
    colour = ((rgb >> 16) & 0xFF) | (rgb & 0xFF00) | ((rgb & 0xFF) << 16);
    return true;
}

std::string colourText(ColorRef colour) {
    char buf[8];
    std::snprintf(buf, sizeof buf, "#%02X%02X%02X", unsigned(colour) & 0xFFu,
                  (unsigned(colour) >> 8) & 0xFFu, (unsigned(colour) >> 16) & 0xFFu);
    return buf;
}

bool WaveViewForm::isColourField(int field) {
    const auto& fields = WaveViewRecord::table().fields;
    return field >= 0 && std::size_t(field) < fields.size() &&
           fields[std::size_t(field)].kind == FieldKind::Integer;
}

FormState WaveViewForm::show(const WaveNameLookup* names) const {
    const auto& t = WaveViewRecord::table();
    FormState state = showRecord(t, record_, names);
    for (std::size_t i = 0; i < t.fields.size(); ++i)
        if (isColourField(int(i)))
            state.fields[i].text =
                colourText(record_.*std::get<std::int32_t WaveViewRecord::*>(t.member(i)));
    return state;
}

std::optional<FormError> WaveViewForm::accept(const FormState& state,
                                              const FormContext& context) {
    const auto& t = WaveViewRecord::table();
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
    WaveViewRecord result = record_;
    std::optional<FormError> error = acceptRecord(t, numeric, result, context);
    if (badColour != kNoField) {
        int failedAt = int(t.fields.size());  // a check of the whole record comes last
        if (error)
            for (std::size_t i = 0; i < t.fields.size(); ++i)
                if (t.fields[i].messageName() == error->field) failedAt = int(i);
        if (!error || failedAt > badColour)
            return inputError(t.fields[std::size_t(badColour)].messageName(),
                              kColourFormatMessage);
    }
    if (error) return error;
    record_ = result;
    return std::nullopt;
}

std::optional<FormError> applyTypedFields(WaveViewRecord& record, const TypedFields& typed,
                                          const FormContext& context) {
    WaveViewForm form(record);
    return applyTypedFields(static_cast<FormView&>(form), typed, context);
}

}  // namespace orv
