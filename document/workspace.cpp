#include "document/workspace.h"

#include <algorithm>

#include "core/platform.h"
#include "document/file_props_record.h"
#include "fileio/wav_file.h"

namespace orv {

Workspace::Workspace() {
    // The sine table the generators read; made once per process, as at start-up. A failure
    // has been reported by then ("Could not create sinus.").
    createSinus();
}

Workspace::~Workspace() {
    closing_ = true;
    forgetUndo();
    active_ = nullptr;
    // Each unit tells us it goes; the list itself is left alone meanwhile.
    while (!documents_.empty()) documents_.pop_back();
}

// ---- documents ------------------------------------------------------------------------------

TUnitWave& Workspace::add(std::unique_ptr<TUnitWave> unit) {
    ORV_ASSERT(unit != nullptr, "Main");
    unit->setHost(this);
    active_ = unit.get();
    documents_.push_back(std::move(unit));
    return *active_;
}

TUnitWave& Workspace::newWave(const WaveFileProps& props) {
    return add(std::make_unique<TUnitWave>(kNoName, props));
}

TUnitWave* Workspace::openWave(const std::string& fileName) {
    SoundPtr sound;
    int bytes = 2;
    const char* message = "";
    if (!readWaveFile(fileName, sound, bytes, message)) {
        lastError_ = std::string(kCannotReadFile) + "\"" + fileName + "\", " + message;
        showMessage(kFileErrorCaption, lastError_, MessageIcon::Information);
        return nullptr;
    }
    return &add(std::make_unique<TUnitWave>(std::move(sound),
                                            std::uint16_t(bytes == 1 ? 1 : 2), fileName));
}

bool Workspace::save(TUnitWave& unit) {
    ORV_ASSERT_TEXT(unit.values() != 0, "unitWave->GetValues() != 0", "Main");
    unit.clearCancel();
    if (!unit.save(false)) return false;
    unit.setSaved();
    if (WaveView* view = unit.getView()) view->refreshStatus(unit);
    return true;
}

bool Workspace::saveAs(TUnitWave& unit, const std::string& fileName) {
    ORV_ASSERT_TEXT(unit.values() != 0, "unitWave->GetValues() != 0", "Main");
    unit.clearCancel();
    if (!unit.save(fileName, false)) return false;
    unit.saveAs(fileName);
    if (WaveView* view = unit.getView()) view->refreshStatus(unit);
    return true;
}

void Workspace::close(TUnitWave& unit) {
    auto it = std::find_if(documents_.begin(), documents_.end(),
                           [&](const auto& d) { return d.get() == &unit; });
    ORV_ASSERT_TEXT(it != documents_.end(), "unit is open", "Main");
    std::unique_ptr<TUnitWave> going = std::move(*it);
    documents_.erase(it);
    if (active_ == &unit) active_ = documents_.empty() ? nullptr : documents_.back().get();
    going.reset();  // forgets the undo record first if it is this unit's
}

void Workspace::setActive(TUnitWave* unit) {
    if (unit)
        ORV_ASSERT_TEXT(std::any_of(documents_.begin(), documents_.end(),
                                    [&](const auto& d) { return d.get() == unit; }),
                        "unit is open", "Main");
    active_ = unit;
}

// ---- names -----------------------------------------------------------------------------------

TUnitWave* Workspace::findByName(std::string_view name) const {
    if (name.empty()) return nullptr;
    for (const auto& d : documents_)
        if (d->getName() == name) return d.get();
    return nullptr;
}

bool Workspace::waveExists(std::string_view name) const { return findByName(name) != nullptr; }

std::vector<std::string> Workspace::waveNames() const {
    std::vector<std::string> names;
    for (const auto& d : documents_)
        if (!d->getName().empty()) names.push_back(d->getName());
    return names;
}

const Sound* Workspace::soundByName(std::string_view name) const {
    const TUnitWave* unit = findByName(name);
    return unit ? unit->getSound() : nullptr;
}

bool Workspace::registerName(TUnitWave& unit, std::string_view name) {
    if (auto refusal = checkRegisterName(name, unit.getName(), *this)) {
        lastError_ = refusal->text();
        showMessage(refusal->caption, lastError_, MessageIcon::Information);
        return false;
    }
    unit.setName(name);
    return true;
}

void Workspace::unitDestroyed(TUnitWave& unit) {
    if (undo_ && undo_->unit() == &unit) undo_.reset();
    if (active_ == &unit) active_ = nullptr;
}

bool Workspace::undoHolds(const Sound* sound) const { return undo_ && undo_->sound() == sound; }

// ---- undo -------------------------------------------------------------------------------------

std::unique_ptr<TUndoUnit> Workspace::makeUndo(TUnitWave& unit) {
    std::unique_ptr<TUndoUnit> previous = std::move(undo_);
    undo_ = std::make_unique<TUndoUnit>(&unit);
    return previous;
}

void Workspace::forgetUndo() { undo_.reset(); }

bool Workspace::undo() {
    if (!undo_) return false;
    undo_->restore();
    return true;
}

// ---- actions ------------------------------------------------------------------------------------

ActionContext Workspace::actionContext() const {
    ActionContext c;
    c.active = window_;
    c.active.unit = active_;
    c.windowCount = int(documents_.size());
    c.clipboardFull = hasClipboard();
    c.playAndRecord = playAndRecord_;
    return c;
}

ActionStatus Workspace::status(std::string_view action) const {
    return actionStatus(action, actionContext());
}

void Workspace::requestCancel() {
    if (active_) setCancelled(active_->cancelFlag());
}

FormContext Workspace::formContext(const TUnitWave& unit) const {
    FormContext c;
    c.waves = this;
    c.soundSeconds = unit.lengthSeconds();
    return c;
}

ActionResult Workspace::refuse(ActionResult::Kind kind, std::string_view caption,
                               std::string_view text, bool show) {
    if (show) showMessage(caption, text, MessageIcon::Information);
    ActionResult r;
    r.kind = kind;
    r.caption = caption;
    r.text = text;
    return r;
}

namespace {
// The value typed for a key, or nullptr.
const std::string* typedValue(const TypedFields& fields, std::string_view key) {
    for (const auto& [k, v] : fields)
        if (captionMatches(k, key)) return &v;
    return nullptr;
}

ActionResult formRefusal(const FormError& e) {
    e.show();
    ActionResult r;
    r.kind = ActionResult::Kind::InputError;
    r.caption = e.caption;
    r.text = e.text();
    return r;
}

// Calls v(slot, operation) for the parameter-driven action `name`; false when it is none.
template <class V>
bool visitOperation(std::string_view name, V&& v) {
    using U = UnitRecords;
    using T = TUnitWave;
    if (name == "MakeSilence") return v(&U::silence, &T::makeSilence), true;
    if (name == "MakeLine") return v(&U::line, &T::makeLine), true;
    if (name == "MakeBlock") return v(&U::makeBlock, &T::makeBlock), true;
    if (name == "MakeTriangle") return v(&U::makeTriangle, &T::makeTriangle), true;
    if (name == "MakeSinus") return v(&U::sinus, &T::makeSinus), true;
    if (name == "MakeNoise") return v(&U::noise, &T::makeNoise), true;
    if (name == "MakeMFreq") return v(&U::mfreq, &T::makeMFreq), true;
    if (name == "Volume") return v(&U::volume, &T::volume), true;
    if (name == "Up") return v(&U::up, &T::up), true;
    if (name == "Block") return v(&U::block, &T::block), true;
    if (name == "RollOut") return v(&U::rollOut, &T::rollOut), true;
    if (name == "RollIn") return v(&U::rollIn, &T::rollIn), true;
    if (name == "Rotate") return v(&U::rotate, &T::rotate), true;
    if (name == "Length") return v(&U::length, &T::length), true;
    if (name == "Distort") return v(&U::distort, &T::distort), true;
    if (name == "Balance") return v(&U::balance, &T::balance), true;
    if (name == "MixLeftRight") return v(&U::leftRight, &T::mixLeftRight), true;
    if (name == "PerEcho") return v(&U::perEcho, &T::perEcho), true;
    if (name == "RndEcho") return v(&U::randomEcho, &T::randomEcho), true;
    if (name == "TempoPitch") return v(&U::tempoPitch, &T::tempoPitch), true;
    if (name == "FilterBlock") return v(&U::blockFilter, &T::filterBlock), true;
    if (name == "FilterLow") return v(&U::lowFilter, &T::filterLow), true;
    if (name == "FilterHigh") return v(&U::highFilter, &T::filterHigh), true;
    if (name == "FilterRes") return v(&U::resonant, &T::filterResonant), true;
    if (name == "FilterNotch") return v(&U::notch, &T::filterNotch), true;
    return false;
}
}  // namespace

template <class R>
ActionResult Workspace::operate(TUnitWave& unit, R UnitRecords::*slot,
                                bool (TUnitWave::*op)(const R&), const TypedFields& fields) {
    // The dialog starts from what was last used on this wave; nothing changes on a refusal.
    R record = unit.records().*slot;
    if (auto error = applyTypedFields(record, fields, formContext(unit))) return formRefusal(*error);
    frameRecords_.*slot = record;
    return changeDocument(unit, [&] { return (unit.*op)(frameRecords_.*slot); });
}

ActionResult Workspace::runOperation(const ActionDef& def, TUnitWave& unit,
                                     const TypedFields& fields) {
    if (def.name == "EditMix") {
        MixRecord record = unit.records().mix;
        if (auto error = applyTypedFields(record, fields, formContext(unit)))
            return formRefusal(*error);
        frameRecords_.mix = record;
        return changeDocument(unit, [&] { return unit.mix(frameRecords_.mix, clipboard()); });
    }
    ActionResult result;
    const bool known = visitOperation(def.name, [&](auto slot, auto op) {
        result = operate(unit, slot, op, fields);
    });
    if (!known)
        return refuse(ActionResult::Kind::Unknown, kUsageErrorCaption,
                      "Unknown action \"" + std::string(def.name) + "\".");
    return result;
}

ActionResult Workspace::runFile(const ActionDef& def, const TypedFields& fields) {
    const std::string_view name = def.name;
    if (name == "FileNewWave") {
        WaveFilePropsRecord record(WaveFileProps{44100, 2, 2});
        FormContext context;
        context.waves = this;
        if (auto error = applyTypedFields(record, fields, context)) return formRefusal(*error);
        newWave(record.props());
        return {};
    }
    if (name == "FileOpenWave" || name == "FileSaveAs") {
        const std::string* file = typedValue(fields, "File");
        if (!file || file->empty())
            return refuse(ActionResult::Kind::InputError, kUsageErrorCaption,
                          std::string(name) + " needs the field File.");
        if (name == "FileOpenWave") {
            if (!openWave(*file)) return refuse(ActionResult::Kind::Refused, kFileErrorCaption,
                                                lastError_, false);
            return {};
        }
        if (!saveAs(*active_, *file))
            return refuse(ActionResult::Kind::Refused, kSaveErrorCaption, kSaveErrorText, false);
        return {};
    }
    if (name == "FileSave") {
        // A wave that was never saved has no file of its own yet: it needs a name first.
        if (active_->isNew()) {
            const std::string* file = typedValue(fields, "File");
            if (!file || file->empty())
                return refuse(ActionResult::Kind::InputError, kUsageErrorCaption,
                              "FileSave needs the field File.");
            if (!saveAs(*active_, *file))
                return refuse(ActionResult::Kind::Refused, kSaveErrorCaption, kSaveErrorText,
                              false);
            return {};
        }
        if (!save(*active_))
            return refuse(ActionResult::Kind::Refused, kSaveErrorCaption, kSaveErrorText, false);
        return {};
    }
    if (name == "FileProperties") {
        TUnitWave& unit = *active_;
        WaveFilePropsRecord record(
            WaveFileProps{unit.getFreq(), unit.getMonoStereo(), unit.getBytesPSample()});
        if (auto error = applyTypedFields(record, fields, formContext(unit)))
            return formRefusal(*error);
        const WaveFileProps props = record.props();
        return changeDocument(unit, [&] { return unit.convert(props); });
    }
    return refuse(ActionResult::Kind::NeedsWindow, kUsageErrorCaption,
                  std::string(name) + " needs the desktop program.");
}

ActionResult Workspace::runDocument(const ActionDef& def, const TypedFields& fields) {
    const std::string_view name = def.name;
    if (name == "Undo") {
        if (!undo()) return {ActionResult::Kind::Nothing, "", ""};
        return {};
    }
    if (name == "DeleteUndo") {
        forgetUndo();
        return {};
    }
    if (!active_) return {ActionResult::Kind::Nothing, "", ""};
    if (name == "Duplicate") {
        if (!duplicate(*active_)) return {ActionResult::Kind::Cancelled, "", ""};
        return {};
    }
    if (name == "Register") {
        RegisterRecord record(active_->getName());
        if (auto error = applyTypedFields(record, fields, formContext(*active_)))
            return formRefusal(*error);
        if (!registerName(*active_, record.name))
            return refuse(ActionResult::Kind::Refused, kRegisterErrorCaption, lastError_, false);
        return {};
    }
    return refuse(ActionResult::Kind::Unknown, kUsageErrorCaption,
                  "Unknown action \"" + std::string(name) + "\".");
}

ActionResult Workspace::runAction(std::string_view name, const TypedFields& fields) {
    const ActionDef* def = findAction(name);
    if (!def)
        return refuse(ActionResult::Kind::Unknown, kUsageErrorCaption,
                      "Unknown action \"" + std::string(name) + "\".");
    switch (def->flow) {
        case ActionFlow::Inert: return {ActionResult::Kind::Nothing, "", ""};
        case ActionFlow::Front:
            return refuse(ActionResult::Kind::NeedsWindow, kUsageErrorCaption,
                          std::string(name) + " needs the desktop program.");
        default: break;
    }
    if (!status(name).enabled)
        return refuse(ActionResult::Kind::Disabled, kUsageErrorCaption,
                      std::string(name) + " is not available now.");
    if (active_) active_->clearCancel();
    switch (def->flow) {
        case ActionFlow::File: return runFile(*def, fields);
        case ActionFlow::Document: return runDocument(*def, fields);
        case ActionFlow::Operation: return runOperation(*def, *active_, fields);
        default: return runEdit(*def, *active_);
    }
}

std::unique_ptr<FormView> Workspace::actionForm(std::string_view name) {
    if (!active_) return nullptr;
    TUnitWave& unit = *active_;
    std::unique_ptr<FormView> form;
    if (name == "EditMix") return std::make_unique<RecordForm<MixRecord>>(unit.records().mix);
    visitOperation(name, [&](auto slot, auto) {
        using R = std::remove_reference_t<decltype(unit.records().*slot)>;
        form = std::make_unique<RecordForm<R>>(unit.records().*slot);
    });
    return form;
}

}  // namespace orv
