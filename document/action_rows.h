// What the files of action rows (actions_*.cpp) are written with: a row per action and the
// template bodies that tie a record slot of the document to its feed.
#pragma once

#include <memory>

#include "document/actions.h"
#include "document/unit_wave.h"

namespace orv {

// One row of the action table. `form` is the dialog's caption for a parameter-driven action.
constexpr ActionDef actionRow(std::string_view name, std::string_view category,
                              std::string_view caption, std::string_view shortcut,
                              std::string_view shortHint, std::string_view longHint,
                              ActionFlow flow, EnableRule rule, std::string_view form = {},
                              const OperationDef* operation = nullptr,
                              DuringJob duringJob = DuringJob::Blocked) {
    ActionDef a;
    a.name = name;
    a.category = category;
    a.caption = caption;
    a.shortcut = shortcut;
    a.shortHint = shortHint;
    a.longHint = longHint;
    a.flow = flow;
    a.rule = rule;
    a.form = form;
    a.operation = operation;
    a.duringJob = duringJob;
    return a;
}

// A form over a record of its own, for the records no document remembers (the file
// properties are made from the document each time).
template <class R>
class OwningForm final : public FormView {
public:
    explicit OwningForm(R record) : record_(std::move(record)), form_(record_) {}
    const FormSpec& spec() const override { return form_.spec(); }
    FormState show(const WaveNameLookup* names) const override { return form_.show(names); }
    std::optional<FormError> accept(const FormState& state, const FormContext& context) override {
        return form_.accept(state, context);
    }
    const R& record() const { return record_; }

private:
    R record_;
    RecordForm<R> form_;
};

template <class R, R UnitRecords::*Slot, RecordFeed<R> Feed>
std::unique_ptr<FormView> RecordOperation<R, Slot, Feed>::form(TUnitWave& unit) {
    return std::make_unique<RecordForm<R>>(unit.records().*Slot);
}

template <class R, R UnitRecords::*Slot, RecordFeed<R> Feed>
std::optional<FormError> RecordOperation<R, Slot, Feed>::prepare(const FormInput& input,
                                                                 TUnitWave& unit,
                                                                 UnitRecords& frame,
                                                                 PrepareContext& context,
                                                                 Plan& plan, bool& planned) {
    // The dialog starts from what was last used on this wave; nothing changes on a refusal.
    R record = unit.records().*Slot;
    if (auto error = readForm(record, input)) return error;
    // Remembered even when the work turns out to be nothing or is cancelled: the dialog
    // reopens with what was typed.
    unit.records().*Slot = record;
    frame.*Slot = record;
    planned = Feed(unit.records().*Slot, context, plan);
    return std::nullopt;
}

template <class R, R UnitRecords::*Slot, RecordFeed<R> Feed>
std::optional<FormError> RecordOperation<R, Slot, Feed>::check(const FormState& state,
                                                               TUnitWave& unit,
                                                               const FormContext& context) {
    R record = unit.records().*Slot;
    return acceptRecord(R::table(), state, record, context);
}

}  // namespace orv
