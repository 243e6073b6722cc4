// How an operation of the action table turns a parameter record into work, in three steps:
//
//   prepare  (user-interface thread) the record is read from the dialog or the typed fields
//            and remembered by the document; the feed of the operation fixes the range, pins
//            the sounds it will read (the document's own, envelopes, "Same Length as",
//            the clipboard) and says how much work to expect. The result is a Plan.
//   compute  (any thread) the plan's compute function builds the new sound from what was
//            pinned. It never touches a document or a view; it tests the cancel byte between
//            chunks and its walked samples are the job's progress (job.h).
//   commit   (user-interface thread) the undo snapshot, the document takes the result,
//            change state, selection of the made range, repaint (Workspace::commit).
//
// A feed is one plain function per operation: `bool feed(const Record&, PrepareContext&,
// Plan&)` (or without the record for the edits). It returns false when there is nothing to
// do (a length of nothing, a speed of 0 ...): the command then ends without a change, as a
// cancelled one does, but the record stays remembered.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/cancel.h"
#include "core/sound.h"
#include "document/record_form.h"

namespace orv {

class TUnitWave;
class UnitHost;
struct UnitRecords;

using SoundRef = std::shared_ptr<const Sound>;

// Builds the result from the pinned sounds. `begin`/`end` come in as the plan's range and
// leave as the range that was made.
using ComputeFn = std::function<SoundPtr(const Sound& source, CancelFlag* cancel,
                                         std::int32_t& begin, std::int32_t& end)>;

struct Plan {
    std::int32_t begin = 0;  // the range handed to the operation
    std::int32_t end = 0;
    std::int64_t work = 0;   // samples the computation is expected to walk
    ComputeFn compute;
    // Hand the range to the view before the work starts (a conversion shows nothing).
    bool showRange = true;
    // The part (the selection, or the whole wave) is copied out first and goes to the
    // clipboard when the command commits: cut, swap, extract.
    bool takePart = false;
    // The result is the clipboard's new contents; the document stays as it is: copy.
    bool toClipboard = false;
    // A conversion of the file properties: the new sample width, and the factor that moves
    // cursor and selection so that they keep their place in time (instead of selecting the
    // made range).
    std::uint16_t bytesPSample = 0;  // 0: unchanged
    double positionScale = 0.0;      // 0: select the made range
};

// What a feed may read of the document it prepares for (user-interface thread only).
class PrepareContext {
public:
    PrepareContext(const TUnitWave& unit, const UnitHost& host, SoundRef clipboard,
                   std::uint16_t clipBytesPSample);

    const Sound& sound() const { return *sound_; }
    std::int32_t freq() const;
    std::int32_t values() const;
    std::int32_t channels() const;
    std::uint16_t bytesPSample() const;
    std::int32_t cursor() const;
    std::int32_t selBegin() const;  // 0 without a selection
    std::int32_t selEnd() const;    // values without a selection
    bool hasSelection() const;
    double lengthSeconds() const;
    double selectionSeconds() const;  // of the selection, or of the whole wave

    // The range of an effect: the selection, or the whole wave when nothing is selected.
    void effectRange(Plan& plan) const;
    // The range of a generator, paste and mix: the selection, or the cursor.
    void makeRange(Plan& plan) const;

    // The sound of the registered wave `name`, kept alive for the job; asserts
    // "envelope != NULL" (the form refuses a name that is not registered).
    SoundRef pin(const std::string& name) const;
    double secondsOf(const std::string& name) const;
    const SoundRef& clipboard() const { return clipboard_; }
    std::uint16_t clipBytesPSample() const { return clipBytes_; }
    // The document's own sound, for a plan that works on it.
    const SoundRef& source() const { return sound_; }

    // A feed that refuses the command (a user error found only now) says why here and
    // returns false.
    void refuse(std::string_view caption, std::string_view text);
    const std::optional<FormError>& refusal() const { return refusal_; }

private:
    const TUnitWave& unit_;
    const UnitHost& host_;
    SoundRef sound_;
    SoundRef clipboard_;
    std::uint16_t clipBytes_;
    std::optional<FormError> refusal_;
};

// Where the parameters of a command come from: pairs typed on the command line (applied in
// order over the remembered record), or the state of a dialog that was accepted.
struct FormInput {
    const TypedFields* typed = nullptr;
    const FormState* accepted = nullptr;
    FormContext context;
};

template <class R>
std::optional<FormError> readForm(R& record, const FormInput& input) {
    if (input.accepted) return acceptRecord(R::table(), *input.accepted, record, input.context);
    static const TypedFields none;
    return applyTypedFields(record, input.typed ? *input.typed : none, input.context);
}

// The part of an action row that runs an operation, with the record it reads.
struct OperationDef {
    // The form over the record the document remembers (nullptr for an edit without one).
    std::unique_ptr<FormView> (*form)(TUnitWave& unit) = nullptr;
    // Reads the input into a copy of the remembered record, remembers it (in the document
    // and as the frame's last used), and feeds the plan. A refused input comes back as the
    // error; otherwise `planned` says whether there is work to do.
    std::optional<FormError> (*prepare)(const FormInput& input, TUnitWave& unit,
                                        UnitRecords& frame, PrepareContext& context,
                                        Plan& plan, bool& planned) = nullptr;
    // The record's form as listings show it (nullptr without one).
    const FormSpec* (*spec)() = nullptr;
    // What accepting a dialog's state would say, on a copy of the remembered record.
    std::optional<FormError> (*check)(const FormState& state, TUnitWave& unit,
                                      const FormContext& context) = nullptr;
};

template <class R>
using RecordFeed = bool (*)(const R& record, PrepareContext& context, Plan& plan);
using EditFeed = bool (*)(PrepareContext& context, Plan& plan);

// The operation of a record that every document remembers in its UnitRecords slot.
template <class R, R UnitRecords::*Slot, RecordFeed<R> Feed>
struct RecordOperation {
    static std::unique_ptr<FormView> form(TUnitWave& unit);
    static std::optional<FormError> prepare(const FormInput& input, TUnitWave& unit,
                                            UnitRecords& frame, PrepareContext& context,
                                            Plan& plan, bool& planned);
    static const FormSpec* spec() { return &R::table(); }
    static std::optional<FormError> check(const FormState& state, TUnitWave& unit,
                                          const FormContext& context);
    static constexpr OperationDef def{&form, &prepare, &spec, &check};
};

// An edit that works on the part without a record.
template <EditFeed Feed>
struct EditOperation {
    static std::optional<FormError> prepare(const FormInput&, TUnitWave&, UnitRecords&,
                                            PrepareContext& context, Plan& plan, bool& planned) {
        planned = Feed(context, plan);
        return std::nullopt;
    }
    static constexpr OperationDef def{nullptr, &prepare, nullptr, nullptr};
};

template <class R, R UnitRecords::*Slot, RecordFeed<R> Feed>
constexpr const OperationDef* recordOperation() {
    return &RecordOperation<R, Slot, Feed>::def;
}
template <EditFeed Feed>
constexpr const OperationDef* editOperation() {
    return &EditOperation<Feed>::def;
}

// Samples a plan over [begin, end) of a sound with `channels` channels walks, at least 1.
std::int64_t workOf(std::int64_t samples, std::int32_t channels);

}  // namespace orv
