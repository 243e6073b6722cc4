// The form logic shared by every front end of a parameter record: a dialog and the command
// line both go through the same steps, so they cannot disagree.
//
//   show    record -> form state (the texts of the edit fields, written in the unit the user
//           last typed; the chosen options, flags and waves)
//   type    the user types into a field or chooses in a list; the option that the field
//           belongs to follows it
//   accept  form state -> record: the fields that the chosen options make relevant are read
//           in record order, the first failure is returned as "In " + field + ": " + message
//           under "Input Error", then the record's own checks run; the record changes only
//           when everything passed.
//
// The command line applies "Caption=Value" pairs in the order given (applyTypedFields).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/sample_value.h"
#include "document/field_table.h"

namespace orv {

// The registered waves, as the document layer keeps them.
class WaveNameLookup {
public:
    virtual ~WaveNameLookup() = default;
    virtual bool waveExists(std::string_view name) const = 0;
    // All registered names, for the lists of a dialog; empty when the front end has none.
    virtual std::vector<std::string> waveNames() const { return {}; }
};

// What the reading of a form may need to know of the document it runs on.
struct FormContext {
    const WaveNameLookup* waves = nullptr;
    double soundSeconds = 0.0;  // length of the sound being edited
    std::int32_t sampleFreq = 0;  // its samples per second; 0 when there is no sound
};

inline constexpr std::string_view kInputErrorCaption = "Input Error";
// Command-line mistakes that a dialog cannot make (an unknown caption or choice).
inline constexpr std::string_view kUsageErrorCaption = "Usage Error";

struct FormError {
    std::string caption{kInputErrorCaption};
    std::string field;    // the field name; empty for a message about the whole form
    std::string message;  // the reader's or the check's sentence
    // The index of the field in its form, so that a dialog can focus it; kNoField for a
    // message about the whole form.
    int fieldIndex = kNoField;
    // "In " + field + ": " + message, or the message alone.
    std::string text() const;
    // The message box, information icon.
    void show() const;
};
FormError inputError(std::string_view field, std::string_view message,
                     int fieldIndex = kNoField);

// Texts of the checks that the form makes itself.
inline constexpr std::string_view kSelectWaveMessage = "You have to select a Wave";
inline constexpr std::string_view kPositionAfterEndMessage =
    "Position must be before the end of the wave";
inline constexpr std::string_view kPositionBeforePreviousMessage =
    "Position must be not before the start of the previous wave";

// One control: the edit text (also a chosen wave name or a typed name) or the chosen entry
// of an option, flag (0 / 1), list or preset (-1: nothing chosen).
struct FieldState {
    std::string text;
    int index = 0;
};
struct FormState {
    std::vector<FieldState> fields;
};

// Number of significant digits a value is shown with in its field.
inline constexpr int kFieldPrecision = 8;

// A read kind's value written in the unit of the record, as its field shows it.
std::string writeValueText(FieldKind kind, const ValueRecord& value);
// Reads `text` as field `def`; on success `out` holds the value and the unit typed.
bool readValueText(const FieldDef& def, std::string_view text, ValueRecord& out,
                   std::string& message);
// The two position checks; `previous` is the position of the entry before, if any.
std::optional<FormError> checkPosition(const FieldDef& def, double seconds,
                                       const FormContext& context, const double* previous);

// ---- changing the form state, as the controls do ---------------------------------------

// Typing into an edit field: the field's option follows.
void typeInto(const FormSpec& spec, FormState& state, int field, std::string_view text);
// Choosing an entry of an option, flag, list or preset (a preset writes its target fields).
void chooseEntry(const FormSpec& spec, FormState& state, int field, int index);
// Choosing a wave: the option follows; a name the lookup does not know leaves the list
// without a choice.
void chooseWave(const FormSpec& spec, FormState& state, int field, std::string_view name,
                const WaveNameLookup* names);
// Whether the chosen options make the field count (read on accept).
bool fieldCounts(const FormSpec& spec, const FormState& state, int field);

// The command line's way into a control: options and lists by entry caption, flags by
// on/off (also yes/no, true/false, 1/0), waves by name, everything else as typed text.
std::optional<FormError> setByCaption(const FormSpec& spec, FormState& state,
                                      std::string_view caption, std::string_view value,
                                      const WaveNameLookup* names);

// What a field currently shows, in the words a listing uses: the text, the chosen entry's
// caption, "on" / "off", or "" for nothing chosen.
std::string shownValue(const FormSpec& spec, const FormState& state, int field);

// ---- record <-> form ---------------------------------------------------------------------

template <class R>
FormState showRecord(const RecordTable<R>& table, const R& record, const WaveNameLookup* names);

template <class R>
std::optional<FormError> acceptRecord(const RecordTable<R>& table, const FormState& state,
                                      R& record, const FormContext& context);

// A record and its table behind one interface, for front ends that handle every record the
// same way (the command line's help and field setting).
class FormView {
public:
    virtual ~FormView() = default;
    virtual const FormSpec& spec() const = 0;
    virtual FormState show(const WaveNameLookup* names) const = 0;
    virtual std::optional<FormError> accept(const FormState& state, const FormContext& context) = 0;
};

template <class R>
class RecordForm final : public FormView {
public:
    RecordForm(const RecordTable<R>& table, R& record) : table_(table), record_(record) {}
    explicit RecordForm(R& record) : table_(R::table()), record_(record) {}
    const FormSpec& spec() const override { return table_; }
    FormState show(const WaveNameLookup* names) const override {
        return showRecord(table_, record_, names);
    }
    std::optional<FormError> accept(const FormState& state, const FormContext& context) override {
        return acceptRecord(table_, state, record_, context);
    }

private:
    const RecordTable<R>& table_;
    R& record_;
};

using TypedFields = std::vector<std::pair<std::string, std::string>>;

// Shows the record, applies the pairs in order, accepts. Returns the first error exactly as
// the dialog would show it; the record is unchanged then.
std::optional<FormError> applyTypedFields(FormView& form, const TypedFields& typed,
                                          const FormContext& context);
template <class R>
std::optional<FormError> applyTypedFields(R& record, const TypedFields& typed,
                                          const FormContext& context) {
    RecordForm<R> form(record);
    return applyTypedFields(static_cast<FormView&>(form), typed, context);
}

// One field as a listing shows it.
struct FieldListing {
    std::string caption;  // plain: without "&", ":" and outer blanks
    std::string_view kind;
    std::vector<std::string_view> choices;
    std::string value;
    bool counts = true;   // read with the options as they stand
};
std::vector<FieldListing> describeFields(const FormView& form, const WaveNameLookup* names);
// "Caption (kind[: a|b|c]) = value" per line, fields that do not count marked "(unused)".
std::string describeForm(const FormView& form, const WaveNameLookup* names);

// ---- template bodies ------------------------------------------------------------------

template <class R>
FormState showRecord(const RecordTable<R>& table, const R& record, const WaveNameLookup* names) {
    FormState state;
    state.fields.resize(table.fields.size());
    for (std::size_t i = 0; i < table.fields.size(); ++i) {
        const FieldDef& d = table.fields[i];
        FieldState& s = state.fields[i];
        std::visit(
            [&](auto m) {
                using M = decltype(m);
                if constexpr (std::is_same_v<M, ValueRecord R::*>) {
                    s.text = writeValueText(d.kind, record.*m);
                } else if constexpr (std::is_same_v<M, std::int32_t R::*>) {
                    if (d.kind == FieldKind::Colour) {
                        s.text = colourText(record.*m);
                    } else if (d.kind == FieldKind::Choice) {
                        s.index = -1;
                        for (std::size_t c = 0; c < d.choiceValues.size(); ++c)
                            if (d.choiceValues[c] == record.*m) s.index = int(c);
                    } else {
                        s.text = writeValueText(d.kind, ValueRecord{kUnitNone, d.signCheck,
                                                                    double(record.*m)});
                    }
                } else if constexpr (std::is_same_v<M, std::uint8_t R::*>) {
                    s.index = record.*m;
                } else if constexpr (std::is_same_v<M, bool R::*>) {
                    s.index = record.*m ? 1 : 0;
                } else if constexpr (std::is_same_v<M, std::string R::*>) {
                    // A list only shows a wave that is still registered.
                    const std::string& v = record.*m;
                    if (d.kind != FieldKind::WaveName || !names || names->waveExists(v))
                        s.text = v;
                } else {
                    s.index = -1;  // a preset list starts without a choice
                }
            },
            table.member(i));
    }
    return state;
}

// GCC 12 at -O3 warns about the text branch of records that have no text field (it sees a
// member pointer that cannot be there); the branch never runs for them.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Warray-bounds"
#endif
template <class R>
std::optional<FormError> acceptRecord(const RecordTable<R>& table, const FormState& state,
                                      R& record, const FormContext& context) {
    ORV_ASSERT(state.fields.size() == table.fields.size(), "records");
    R result = record;
    for (std::size_t i = 0; i < table.fields.size(); ++i) {
        const FieldDef& d = table.fields[i];
        const FieldState& s = state.fields[i];
        const bool counts = fieldCounts(table, state, int(i));
        std::optional<FormError> failed;
        std::visit(
            [&](auto m) {
                using M = decltype(m);
                if constexpr (std::is_same_v<M, ValueRecord R::*> ||
                              std::is_same_v<M, std::int32_t R::*>) {
                    if (d.kind == FieldKind::Choice) {
                        if constexpr (std::is_same_v<M, std::int32_t R::*>)
                            if (s.index >= 0 && std::size_t(s.index) < d.choiceValues.size())
                                result.*m = d.choiceValues[s.index];
                        return;
                    }
                    if (d.kind == FieldKind::Colour) {
                        if constexpr (std::is_same_v<M, std::int32_t R::*>) {
                            if (!counts) return;
                            ColorRef c = 0;
                            if (!readColourText(s.text, c))
                                failed = inputError(d.messageName(), kColourFormatMessage);
                            else
                                result.*m = c;
                        }
                        return;
                    }
                    if (!counts) return;
                    if (d.defaultFlag != kNoField && state.fields[d.defaultFlag].index != 0) {
                        table.setDefault(result, i);
                        return;
                    }
                    ValueRecord v;
                    std::string message;
                    if (!readValueText(d, s.text, v, message)) {
                        failed = inputError(d.messageName(), message);
                        return;
                    }
                    if (d.kind == FieldKind::Position) {
                        double prev = 0.0;
                        const double* prevPtr = nullptr;
                        if (d.previous != kNoField) {
                            if (auto pm = std::get_if<ValueRecord R::*>(&table.member(d.previous))) {
                                prev = (result.**pm).value;
                                prevPtr = &prev;
                            }
                        }
                        failed = checkPosition(d, v.value, context, prevPtr);
                        if (failed) return;
                    }
                    if constexpr (std::is_same_v<M, ValueRecord R::*>)
                        result.*m = v;
                    else
                        result.*m = truncToInt(v.value);
                } else if constexpr (std::is_same_v<M, std::uint8_t R::*>) {
                    result.*m = static_cast<std::uint8_t>(s.index);
                } else if constexpr (std::is_same_v<M, bool R::*>) {
                    result.*m = s.index != 0;
                } else if constexpr (std::is_same_v<M, std::string R::*>) {
                    if (d.kind == FieldKind::WaveName) {
                        if (!counts) return;
                        if (s.text.empty()) {
                            failed = inputError(d.messageName(), kSelectWaveMessage);
                            return;
                        }
                    }
                    result.*m = s.text;
                }
            },
            table.member(i));
        if (failed) {
            failed->fieldIndex = int(i);
            return failed;
        }
    }
    if (auto check = table.check()) {
        FormError error;
        if (!check(result, context, error)) {
            // A check names its field by the name its messages use.
            for (std::size_t i = 0; i < table.fields.size() && error.fieldIndex == kNoField; ++i)
                if (!error.field.empty() && table.fields[i].messageName() == error.field)
                    error.fieldIndex = int(i);
            return error;
        }
    }
    record = result;
    return std::nullopt;
}
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

}  // namespace orv
