// The one declaration of a parameter record's fields. Every record type lists its fields
// once, in record order, with caption, kind, sign check, default (with the unit it is first
// shown in) and the option or flag it belongs to; that list gives the record its defaults,
// drives the reading of the fields from text (record_form.h), and is what a dialog or the
// command line shows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "core/platform.h"
#include "units/value_reader.h"
#include "units/value_record.h"

namespace orv {

enum class FieldKind : std::uint8_t {
    Factor,        // plain number or '%'
    VolumeFactor,  // '%', 'dB' or plain number
    Phase,         // one cycle = 1; '%' or degrees
    Balance,       // -1 .. 1 or -90' .. 90'
    Count,         // integer
    Integer,       // integer (a seed)
    Time,          // seconds; typed as s, ms, Hz, kHz (a frequency is kept as its period)
    WaveValue,     // a sample value: plain -1 .. 1, '%' or '$'
    Position,      // a time from the start of the sound, before its end
    WaveName,      // a registered wave, chosen from a list
    Option,        // which of several radio buttons is chosen, 0, 1, 2 ...
    Flag,          // a check box
    Choice,        // a list whose entries stand for numbers (the sample frequencies)
    Preset,        // a list whose entries write values into other fields (not stored)
    Text,          // free text (a name)
    Colour,        // a colour 0x00BBGGRR, typed as #RRGGBB
};

// A colour as the records keep it: 0x00BBGGRR.
using ColorRef = std::int32_t;
// "#RRGGBB" (blanks around it allowed, hex digits in either case) into 0x00BBGGRR.
bool readColourText(std::string_view text, ColorRef& colour);
// 0x00BBGGRR as "#RRGGBB", upper-case.
std::string colourText(ColorRef colour);
inline constexpr std::string_view kColourFormatMessage = "Colour must be written as #RRGGBB.";

// "factor", "volume factor", ... as listings name the kinds.
std::string_view fieldKindName(FieldKind kind);
// Kinds read from text by one of the value readers.
bool isReadKind(FieldKind kind);
// The reader of a read kind.
ValueKind readerOf(FieldKind kind);

inline constexpr int kNoField = -1;

// What a front end needs to know of one field; no reference to the record type.
struct FieldDef {
    std::string_view caption;  // the control's caption and the command line's key
    std::string_view name;     // the field name in messages; empty: the caption
    FieldKind kind = FieldKind::Factor;
    std::uint8_t signCheck = 0;
    double defValue = 0.0;     // numbers, option index, flag 0 / 1, choice value
    std::uint8_t defUnit = kUnitNone;
    std::vector<std::string_view> choices;   // Option, Choice, Preset
    std::vector<std::int32_t> choiceValues;  // Choice: the number each entry stands for
    // Preset: the fields it writes (by caption) and, per entry, their values (unit none).
    std::vector<std::string_view> presetTargets;
    std::vector<std::vector<double>> presetValues;
    // The option (or flag) this field belongs to: the field only counts while that option
    // has `groupValue`, and typing into the field (or choosing in it) selects that value,
    // so the option always follows the field last touched.
    std::string_view groupCaption;
    std::uint8_t groupValue = 0;
    int group = kNoField;  // resolved from groupCaption
    // A "Default" check box next to the field: while it is on, the field takes its default.
    std::string_view defaultFlagCaption;
    int defaultFlag = kNoField;
    // A position that may not lie before another position of the same list.
    std::string_view previousCaption;
    int previous = kNoField;

    std::string_view messageName() const { return name.empty() ? caption : name; }
};

// A form: caption, help context and fields, as a dialog or the command line shows them.
struct FormSpec {
    std::string_view caption;
    int helpContext = 0;
    std::vector<FieldDef> fields;

    // Index of the field whose caption matches (case-insensitive; "&", ":" and outer blanks
    // ignored), or kNoField.
    int find(std::string_view caption) const;
};

// Compares captions the way the command line does: case-insensitive, without "&", ":" and
// blanks at either end.
bool captionMatches(std::string_view caption, std::string_view typed);
std::string plainCaption(std::string_view caption);

template <class R>
using FieldMember = std::variant<std::monostate, ValueRecord R::*, std::int32_t R::*,
                                 std::uint8_t R::*, bool R::*, std::string R::*>;

// One line of a record's declaration: the field and where it lives in the record.
template <class R>
struct Field {
    FieldDef def;
    FieldMember<R> member;

    Field named(std::string_view n) && { def.name = n; return std::move(*this); }
    Field in(std::string_view optionCaption, std::uint8_t value) && {
        def.groupCaption = optionCaption;
        def.groupValue = value;
        return std::move(*this);
    }
    Field defaultedBy(std::string_view flagCaption) && {
        def.defaultFlagCaption = flagCaption;
        return std::move(*this);
    }
    Field after(std::string_view positionCaption) && {
        def.previousCaption = positionCaption;
        return std::move(*this);
    }
};

struct FormContext;
struct FormError;

template <class R>
class RecordTable : public FormSpec {
public:
    // Dialog-specific check after all fields were read; returns false and fills the error.
    using Check = bool (*)(const R& record, const FormContext& context, FormError& error);

    RecordTable(std::string_view caption, int help, std::initializer_list<Field<R>> fields,
                Check check = nullptr)
        : check_(check) {
        this->caption = caption;
        helpContext = help;
        for (const Field<R>& f : fields) {
            this->fields.push_back(f.def);
            members_.push_back(f.member);
        }
        resolve();
    }

    const FieldMember<R>& member(std::size_t i) const { return members_[i]; }
    Check check() const { return check_; }

    // Puts every field of `record` to its default.
    void applyDefaults(R& record) const {
        for (std::size_t i = 0; i < fields.size(); ++i) setDefault(record, i);
    }
// GCC 12 at -O3 sees the branches for members a record does not have (a ValueRecord
// written into a record of single bytes) and warns; those branches never run for it.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wstringop-overflow"
#pragma GCC diagnostic ignored "-Warray-bounds"
#endif
    void setDefault(R& record, std::size_t i) const {
        const FieldDef& d = fields[i];
        std::visit(
            [&](auto m) {
                using M = decltype(m);
                if constexpr (std::is_same_v<M, ValueRecord R::*>) {
                    record.*m = ValueRecord{d.defUnit, d.signCheck, d.defValue};
                } else if constexpr (std::is_same_v<M, std::int32_t R::*>) {
                    record.*m = static_cast<std::int32_t>(d.defValue);
                } else if constexpr (std::is_same_v<M, std::uint8_t R::*>) {
                    record.*m = static_cast<std::uint8_t>(d.defValue);
                } else if constexpr (std::is_same_v<M, bool R::*>) {
                    record.*m = d.defValue != 0.0;
                } else if constexpr (std::is_same_v<M, std::string R::*>) {
                    (record.*m).clear();
                }
            },
            members_[i]);
    }
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

private:
    void resolve() {
        for (FieldDef& d : fields) {
            if (!d.groupCaption.empty()) {
                d.group = find(d.groupCaption);
                ORV_ASSERT_TEXT(d.group != kNoField, "group field exists", "records");
            }
            if (!d.defaultFlagCaption.empty()) {
                d.defaultFlag = find(d.defaultFlagCaption);
                ORV_ASSERT_TEXT(d.defaultFlag != kNoField, "default flag exists", "records");
            }
            if (!d.previousCaption.empty()) {
                d.previous = find(d.previousCaption);
                ORV_ASSERT_TEXT(d.previous != kNoField, "previous position exists", "records");
            }
        }
    }

    std::vector<FieldMember<R>> members_;
    Check check_;
};

// ---- the builders the record declarations are written with ----------------------------

template <class R>
Field<R> valueField(FieldKind kind, std::string_view caption, ValueRecord R::*m, double def,
                    std::uint8_t unit = kUnitNone, std::uint8_t signCheck = 0) {
    Field<R> f;
    f.def.caption = caption;
    f.def.kind = kind;
    f.def.defValue = def;
    f.def.defUnit = unit;
    f.def.signCheck = signCheck;
    f.member = m;
    return f;
}
template <class R>
Field<R> factorField(std::string_view caption, ValueRecord R::*m, double def,
                     std::uint8_t signCheck = 0) {
    return valueField(FieldKind::Factor, caption, m, def, kUnitNone, signCheck);
}
template <class R>
Field<R> volumeField(std::string_view caption, ValueRecord R::*m, double def) {
    return valueField(FieldKind::VolumeFactor, caption, m, def);
}
template <class R>
Field<R> phaseField(std::string_view caption, ValueRecord R::*m, double def) {
    return valueField(FieldKind::Phase, caption, m, def);
}
template <class R>
Field<R> balanceField(std::string_view caption, ValueRecord R::*m, double def) {
    return valueField(FieldKind::Balance, caption, m, def);
}
template <class R>
Field<R> timeField(std::string_view caption, ValueRecord R::*m, double seconds, std::uint8_t unit,
                   std::uint8_t signCheck) {
    return valueField(FieldKind::Time, caption, m, seconds, unit, signCheck);
}
template <class R>
Field<R> positionField(std::string_view caption, ValueRecord R::*m, double seconds = 0.0) {
    return valueField(FieldKind::Position, caption, m, seconds, kUnitSecond, kCheckNotNegative);
}
template <class R>
Field<R> waveValueField(std::string_view caption, ValueRecord R::*m, double def,
                        std::uint8_t signCheck = 0) {
    return valueField(FieldKind::WaveValue, caption, m, def, kUnitNone, signCheck);
}
template <class R>
Field<R> countField(std::string_view caption, std::int32_t R::*m, std::int32_t def,
                    std::uint8_t signCheck = kCheckPositive,
                    FieldKind kind = FieldKind::Count) {
    Field<R> f;
    f.def.caption = caption;
    f.def.kind = kind;
    f.def.defValue = def;
    f.def.signCheck = signCheck;
    f.member = m;
    return f;
}
template <class R>
Field<R> optionField(std::string_view caption, std::uint8_t R::*m,
                     std::initializer_list<std::string_view> choices, std::uint8_t def = 0) {
    Field<R> f;
    f.def.caption = caption;
    f.def.kind = FieldKind::Option;
    f.def.choices = choices;
    f.def.defValue = def;
    f.member = m;
    return f;
}
template <class R>
Field<R> flagField(std::string_view caption, bool R::*m, bool def = false) {
    Field<R> f;
    f.def.caption = caption;
    f.def.kind = FieldKind::Flag;
    f.def.defValue = def ? 1.0 : 0.0;
    f.member = m;
    return f;
}
template <class R>
Field<R> waveNameField(std::string_view caption, std::string R::*m) {
    Field<R> f;
    f.def.caption = caption;
    f.def.kind = FieldKind::WaveName;
    f.member = m;
    return f;
}
template <class R>
Field<R> colourField(std::string_view caption, std::int32_t R::*m, ColorRef def) {
    Field<R> f;
    f.def.caption = caption;
    f.def.kind = FieldKind::Colour;
    f.def.defValue = def;
    f.member = m;
    return f;
}
template <class R>
Field<R> textField(std::string_view caption, std::string R::*m) {
    Field<R> f;
    f.def.caption = caption;
    f.def.kind = FieldKind::Text;
    f.member = m;
    return f;
}
template <class R>
Field<R> choiceField(std::string_view caption, std::int32_t R::*m,
                     std::initializer_list<std::string_view> choices,
                     std::initializer_list<std::int32_t> values, std::int32_t def) {
    Field<R> f;
    f.def.caption = caption;
    f.def.kind = FieldKind::Choice;
    f.def.choices = choices;
    f.def.choiceValues = values;
    f.def.defValue = def;
    f.member = m;
    return f;
}
template <class R>
Field<R> presetField(std::string_view caption, std::initializer_list<std::string_view> choices,
                     std::initializer_list<std::string_view> targets,
                     std::initializer_list<std::vector<double>> values) {
    Field<R> f;
    f.def.caption = caption;
    f.def.kind = FieldKind::Preset;
    f.def.choices = choices;
    f.def.presetTargets = targets;
    f.def.presetValues = values;
    return f;
}

}  // namespace orv
