#include "document/record_form.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "units/value_writer.h"

namespace orv {

// ---- field_table.h -----------------------------------------------------------------------

std::string_view fieldKindName(FieldKind kind) {
    switch (kind) {
        case FieldKind::Factor: return "factor";
        case FieldKind::VolumeFactor: return "volume factor";
        case FieldKind::Phase: return "phase";
        case FieldKind::Balance: return "balance";
        case FieldKind::Count: return "count";
        case FieldKind::Integer: return "integer";
        case FieldKind::Time: return "time";
        case FieldKind::WaveValue: return "wave value";
        case FieldKind::Position: return "position";
        case FieldKind::WaveName: return "wave name";
        case FieldKind::Option: return "option";
        case FieldKind::Flag: return "flag";
        case FieldKind::Choice: return "choice";
        case FieldKind::Preset: return "example";
        case FieldKind::Text: return "text";
        case FieldKind::Colour: return "colour";
    }
    return "?";
}

bool isReadKind(FieldKind kind) {
    switch (kind) {
        case FieldKind::Factor:
        case FieldKind::VolumeFactor:
        case FieldKind::Phase:
        case FieldKind::Balance:
        case FieldKind::Count:
        case FieldKind::Integer:
        case FieldKind::Time:
        case FieldKind::WaveValue:
        case FieldKind::Position: return true;
        default: return false;
    }
}

ValueKind readerOf(FieldKind kind) {
    switch (kind) {
        case FieldKind::Factor: return ValueKind::Factor;
        case FieldKind::VolumeFactor: return ValueKind::Loudness;
        case FieldKind::Phase: return ValueKind::Phase;
        case FieldKind::Balance: return ValueKind::Balance;
        case FieldKind::Count:
        case FieldKind::Integer: return ValueKind::Integer;
        case FieldKind::WaveValue: return ValueKind::WaveValue;
        case FieldKind::Time:
        case FieldKind::Position: return ValueKind::Period;
        default: break;
    }
    ORV_ASSERT_TEXT(false, "isReadKind(kind)", "records");
    return ValueKind::Factor;
}

std::string plainCaption(std::string_view caption) {
    std::string out;
    for (char c : caption)
        if (c != '&' && c != ':') out += c;
    std::size_t b = out.find_first_not_of(" \t");
    if (b == std::string::npos) return {};
    std::size_t e = out.find_last_not_of(" \t");
    return out.substr(b, e - b + 1);
}

bool captionMatches(std::string_view caption, std::string_view typed) {
    std::string a = plainCaption(caption), b = plainCaption(typed);
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

int FormSpec::find(std::string_view c) const {
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (captionMatches(fields[i].caption, c)) return int(i);
    // A field may also be named as its messages name it ("Vertical Resolution" for the
    // box captioned "Vertical").
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (!fields[i].name.empty() && captionMatches(fields[i].name, c)) return int(i);
    return kNoField;
}

// ---- colours ------------------------------------------------------------------------

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

// ---- errors ----------------------------------------------------------------------------

std::string FormError::text() const {
    if (field.empty()) return message;
    return "In " + field + ": " + message;
}

void FormError::show() const { showMessage(caption, text(), MessageIcon::Information); }

FormError inputError(std::string_view field, std::string_view message, int fieldIndex) {
    FormError e;
    e.field = std::string(field);
    e.message = std::string(message);
    e.fieldIndex = fieldIndex;
    return e;
}

namespace {
FormError usageError(std::string_view field, std::string message, int fieldIndex = kNoField) {
    FormError e;
    e.caption = std::string(kUsageErrorCaption);
    e.field = std::string(field);
    e.message = std::move(message);
    e.fieldIndex = fieldIndex;
    return e;
}

// The one field of an option's group that takes typed text, or kNoField when there is none
// or more than one.
int onlyTypedFieldOf(const FormSpec& spec, int option) {
    int found = kNoField;
    for (std::size_t i = 0; i < spec.fields.size(); ++i) {
        if (spec.fields[i].group != option || !isReadKind(spec.fields[i].kind)) continue;
        if (found != kNoField) return kNoField;
        found = int(i);
    }
    return found;
}
}  // namespace

// ---- values ----------------------------------------------------------------------------

std::string writeValueText(FieldKind kind, const ValueRecord& value) {
    return writeField(readerOf(kind), value, kFieldPrecision, true);
}

bool readValueText(const FieldDef& def, std::string_view text, ValueRecord& out,
                   std::string& message) {
    ValueRecord v{kUnitNone, def.signCheck, 0.0};
    if (!readField(readerOf(def.kind), text, v, message)) return false;
    out = v;
    return true;
}

std::optional<FormError> checkPosition(const FieldDef& def, double seconds,
                                       const FormContext& context, const double* previous) {
    if (seconds >= context.soundSeconds)
        return inputError(def.messageName(), kPositionAfterEndMessage);
    if (previous && seconds < *previous)
        return inputError(def.messageName(), kPositionBeforePreviousMessage);
    return std::nullopt;
}

// ---- form state ------------------------------------------------------------------------

namespace {
void follow(const FormSpec& spec, FormState& state, int field) {
    const FieldDef& d = spec.fields[field];
    if (d.group != kNoField) state.fields[d.group].index = d.groupValue;
}
}  // namespace

void typeInto(const FormSpec& spec, FormState& state, int field, std::string_view text) {
    state.fields[field].text = std::string(text);
    follow(spec, state, field);
}

void chooseEntry(const FormSpec& spec, FormState& state, int field, int index) {
    const FieldDef& d = spec.fields[field];
    state.fields[field].index = index;
    follow(spec, state, field);
    if (d.kind != FieldKind::Preset || index < 0 ||
        std::size_t(index) >= d.presetValues.size())
        return;
    const std::vector<double>& values = d.presetValues[index];
    for (std::size_t t = 0; t < d.presetTargets.size() && t < values.size(); ++t) {
        int target = spec.find(d.presetTargets[t]);
        ORV_ASSERT_TEXT(target != kNoField, "preset target exists", "records");
        state.fields[target].text =
            writeValueText(spec.fields[target].kind, ValueRecord{kUnitNone, 0, values[t]});
    }
}

void chooseWave(const FormSpec& spec, FormState& state, int field, std::string_view name,
                const WaveNameLookup* names) {
    bool known = !name.empty() && (!names || names->waveExists(name));
    state.fields[field].text = known ? std::string(name) : std::string();
    follow(spec, state, field);
}

bool fieldCounts(const FormSpec& spec, const FormState& state, int field) {
    // Walk up: a field counts while its option has its value, and that option counts too.
    for (int guard = 0; field != kNoField && guard < 8; ++guard) {
        const FieldDef& d = spec.fields[field];
        if (d.group == kNoField) return true;
        if (state.fields[d.group].index != d.groupValue) return false;
        field = d.group;
    }
    return true;
}

namespace {
std::string lower(std::string_view s) {
    std::string out;
    for (char c : s) out += char(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

std::string choiceList(const FieldDef& d) {
    std::string out;
    for (std::size_t i = 0; i < d.choices.size(); ++i) {
        if (i) out += ", ";
        out += plainCaption(d.choices[i]);
    }
    return out;
}
}  // namespace

std::optional<FormError> setByCaption(const FormSpec& spec, FormState& state,
                                      std::string_view caption, std::string_view value,
                                      const WaveNameLookup* names) {
    int field = spec.find(caption);
    if (field == kNoField)
        return usageError("", "There is no field \"" + std::string(caption) + "\" in \"" +
                                  std::string(spec.caption) + "\".");
    const FieldDef& d = spec.fields[field];
    const std::string name = plainCaption(d.caption);
    switch (d.kind) {
        case FieldKind::Option:
        case FieldKind::Choice:
        case FieldKind::Preset: {
            for (std::size_t c = 0; c < d.choices.size(); ++c)
                if (captionMatches(d.choices[c], value)) {
                    chooseEntry(spec, state, field, int(c));
                    return std::nullopt;
                }
            // "Echo Volume=50%": a value for the option's one typed field, which the option
            // then follows. Every typed value has a digit; a word is a choice mistyped.
            const bool hasDigit = std::any_of(value.begin(), value.end(), [](char c) {
                return std::isdigit(static_cast<unsigned char>(c)) != 0;
            });
            if (d.kind == FieldKind::Option && hasDigit) {
                const int typed = onlyTypedFieldOf(spec, field);
                if (typed != kNoField) {
                    typeInto(spec, state, typed, value);
                    return std::nullopt;
                }
            }
            return usageError(name, "Choose one of: " + choiceList(d) + ".", field);
        }
        case FieldKind::Flag: {
            std::string v = lower(plainCaption(value));
            if (v == "on" || v == "yes" || v == "true" || v == "1") {
                chooseEntry(spec, state, field, 1);
            } else if (v == "off" || v == "no" || v == "false" || v == "0") {
                chooseEntry(spec, state, field, 0);
            } else {
                return usageError(name, "Use on or off.", field);
            }
            return std::nullopt;
        }
        case FieldKind::WaveName:
            chooseWave(spec, state, field, value, names);
            return std::nullopt;
        default:
            typeInto(spec, state, field, value);
            return std::nullopt;
    }
}

std::string shownValue(const FormSpec& spec, const FormState& state, int field) {
    const FieldDef& d = spec.fields[field];
    const FieldState& s = state.fields[field];
    switch (d.kind) {
        case FieldKind::Option:
        case FieldKind::Choice:
        case FieldKind::Preset:
            if (s.index >= 0 && std::size_t(s.index) < d.choices.size())
                return plainCaption(d.choices[s.index]);
            return {};
        case FieldKind::Flag: return s.index ? "on" : "off";
        default: return s.text;
    }
}

// ---- command line ----------------------------------------------------------------------

std::optional<FormError> applyTypedFields(FormView& form, const TypedFields& typed,
                                          const FormContext& context) {
    FormState state = form.show(context.waves);
    for (const auto& [caption, value] : typed)
        if (auto e = setByCaption(form.spec(), state, caption, value, context.waves)) return e;
    return form.accept(state, context);
}

std::vector<FieldListing> describeFields(const FormView& form, const WaveNameLookup* names) {
    const FormSpec& spec = form.spec();
    FormState state = form.show(names);
    std::vector<FieldListing> out;
    for (std::size_t i = 0; i < spec.fields.size(); ++i) {
        const FieldDef& d = spec.fields[i];
        FieldListing l;
        l.caption = plainCaption(d.caption);
        l.kind = fieldKindName(d.kind);
        l.choices = d.choices;
        l.value = shownValue(spec, state, int(i));
        l.counts = fieldCounts(spec, state, int(i)) &&
                   (d.defaultFlag == kNoField || state.fields[d.defaultFlag].index == 0);
        out.push_back(std::move(l));
    }
    return out;
}

std::string describeForm(const FormView& form, const WaveNameLookup* names) {
    std::string out;
    for (const FieldListing& l : describeFields(form, names)) {
        out += l.caption;
        out += " (";
        out += l.kind;
        if (!l.choices.empty()) {
            out += ": ";
            for (std::size_t c = 0; c < l.choices.size(); ++c) {
                if (c) out += "|";
                out += plainCaption(l.choices[c]);
            }
        }
        out += ") = ";
        out += l.value;
        if (!l.counts) out += " (unused)";
        out += "\n";
    }
    return out;
}

}  // namespace orv
