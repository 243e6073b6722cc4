#include "document/workspace.h"

#include <algorithm>

#include "core/platform.h"
#include "document/file_props_record.h"
#include "document/split_merge.h"
#include "fileio/wav_file.h"

namespace orv {

Workspace::Workspace() {
    // The sine table the generators read; made once per process, as at start-up. A failure
    // has been reported by then ("Could not create sinus.").
    createSinus();
}

Workspace::~Workspace() {
    closing_ = true;
    if (running_) running_->owner_ = nullptr;
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

std::shared_ptr<const Sound> Workspace::soundByName(std::string_view name) const {
    const TUnitWave* unit = findByName(name);
    return unit ? unit->soundRef() : nullptr;
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
    // A job for this unit computes on; its result finds no document to go to.
    if (running_ && running_->unit() == &unit) running_->cancel();
    if (player_ && !closing_) player_->forget(unit);
}

bool Workspace::isOpen(const TUnitWave* unit) const {
    return std::any_of(documents_.begin(), documents_.end(),
                       [&](const auto& d) { return d.get() == unit; });
}

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
    if (player_) {
        c.playerBusy = player_->busy();
        c.playChecked = player_->playChecked();
        c.pauseChecked = player_->pauseChecked();
        c.recordChecked = player_->recordChecked();
    }
    c.jobRunning = running_ != nullptr;
    c.jobUnit = running_ ? running_->unit() : nullptr;
    return c;
}

ActionStatus Workspace::status(std::string_view action) const {
    return actionStatus(action, actionContext());
}

void Workspace::requestCancel() {
    if (running_)
        running_->cancel();
    else if (active_)
        setCancelled(active_->cancelFlag());
}

FormContext Workspace::formContext() const {
    if (active_) return formContext(*active_);
    FormContext c;
    c.waves = this;
    return c;
}

FormContext Workspace::formContext(const TUnitWave& unit) const {
    FormContext c;
    c.waves = this;
    c.soundSeconds = unit.lengthSeconds();
    c.sampleFreq = unit.getFreq();
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

PreparedAction done(ActionResult result) { return PreparedAction{std::move(result), nullptr}; }
}  // namespace

ActionResult Workspace::runFile(const ActionDef& def, const FormInput& input) {
    const std::string_view name = def.name;
    if (name == "FileNewWave") {
        WaveFilePropsRecord record(WaveFileProps{44100, 2, 2});
        FormInput in = input;
        in.context.waves = this;
        if (auto error = readForm(record, in)) return formRefusal(*error);
        newWave(record.props());
        return {};
    }
    const std::string* file = input.typed ? typedValue(*input.typed, "File") : nullptr;
    if (name == "FileOpenWave" || name == "FileSaveAs") {
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
    return refuse(ActionResult::Kind::NeedsWindow, kUsageErrorCaption,
                  std::string(name) + " needs the desktop program.");
}

ActionResult Workspace::runDocument(const ActionDef& def, const FormInput& input) {
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
        if (auto error = readForm(record, input)) return formRefusal(*error);
        if (!registerName(*active_, record.name))
            return refuse(ActionResult::Kind::Refused, kRegisterErrorCaption, lastError_, false);
        return {};
    }
    if (name == "EditClearClipboard") {
        clearClipboard();
        return {};
    }
    if (def.category == "WaveWindow") return splitOrMerge(def, input);
    return refuse(ActionResult::Kind::Unknown, kUsageErrorCaption,
                  "Unknown action \"" + std::string(name) + "\".");
}

void Workspace::takeMade(std::vector<std::unique_ptr<TUnitWave>> made,
                         std::initializer_list<TUnitWave*> sources) {
    for (TUnitWave* source : sources) close(*source);
    lastMade_.clear();
    for (auto& unit : made) lastMade_.push_back(&add(std::move(unit)));
}

namespace {
// A merge reads its two waves first; where they differ its choice starts from properties
// that lose nothing, and what was typed or chosen goes over that.
template <class R>
std::optional<FormError> readMerge(const FormInput& input, const Workspace& ws,
                                   std::string R::*a, std::string R::*b, R& record,
                                   TUnitWave*& first, TUnitWave*& second) {
    R probe;
    if (auto error = readForm(probe, input)) return error;
    first = ws.findByName(probe.*a);
    second = ws.findByName(probe.*b);
    record.takeDefaultsFrom(*first, *second);
    return readForm(record, input);
}
}  // namespace

ActionResult Workspace::splitOrMerge(const ActionDef& def, const FormInput& input) {
    TUnitWave& unit = *active_;
    CancelFlag& cancel = unit.cancelFlag();
    std::optional<std::vector<std::unique_ptr<TUnitWave>>> made;
    TUnitWave* first = &unit;
    TUnitWave* second = nullptr;
    if (def.name == "SplitV") {
        made = splitVertically(unit, cancel);
    } else if (def.name == "SplitH") {
        SplitHorRecord record;
        if (auto error = readForm(record, input)) return formRefusal(*error);
        made = splitHorizontally(unit, record, cancel);
    } else if (def.name == "MergeH") {
        MergeHorRecord record;
        if (auto error = readMerge<MergeHorRecord>(input, *this, &MergeHorRecord::first,
                                                          &MergeHorRecord::last, record, first,
                                                          second))
            return formRefusal(*error);
        made = mergeHorizontally(*first, *second, record, cancel);
    } else {
        MergeVertRecord record;
        if (auto error = readMerge<MergeVertRecord>(input, *this, &MergeVertRecord::left,
                                                           &MergeVertRecord::right, record,
                                                           first, second))
            return formRefusal(*error);
        made = mergeVertically(*first, *second, record, cancel);
    }
    if (!made) return {ActionResult::Kind::Cancelled, "", ""};
    if (second)
        takeMade(std::move(*made), {first, second});
    else
        takeMade(std::move(*made), {first});
    return {};
}

PreparedAction Workspace::prepareOperation(const ActionDef& def, TUnitWave& unit,
                                           const FormInput& input) {
    PrepareContext context(unit, *this, ClipBoardSound, clipBytesPSample_);
    Plan plan;
    bool planned = false;
    if (auto error = def.operation->prepare(input, unit, frameRecords_, context, plan, planned))
        return done(formRefusal(*error));
    if (const auto& refusal = context.refusal())
        return done(refuse(ActionResult::Kind::Refused, refusal->caption, refusal->text()));
    if (!planned) return done({ActionResult::Kind::Nothing, "", ""});
    if (plan.showRange)
        if (WaveView* view = unit.getView()) view->showRange(plan.begin, plan.end);
    ORV_ASSERT_TEXT(running_ == nullptr, "one job at a time", "Main");
    std::unique_ptr<OperationJob> job(
        new OperationJob(def.name, unit, context.source(), std::move(plan)));
    job->owner_ = this;
    running_ = job.get();
    return PreparedAction{{}, std::move(job)};
}

PreparedAction Workspace::prepare(std::string_view name, const FormInput& given) {
    const ActionDef* def = findAction(name);
    if (!def)
        return done(refuse(ActionResult::Kind::Unknown, kUsageErrorCaption,
                           "Unknown action \"" + std::string(name) + "\"."));
    switch (def->flow) {
        case ActionFlow::Inert: return done({ActionResult::Kind::Nothing, "", ""});
        case ActionFlow::Front:
            return done(refuse(ActionResult::Kind::NeedsWindow, kUsageErrorCaption,
                               std::string(name) + " needs the desktop program."));
        default: break;
    }
    const ActionStatus state = actionStatus(*def, actionContext());
    if (!state.enabled)
        return done(refuse(ActionResult::Kind::Disabled, kUsageErrorCaption,
                           std::string(name) + " is not available now: " +
                               std::string(state.reason) + "."));
    if (active_) active_->clearCancel();
    FormInput input = given;
    input.context = formContext();
    if (def->operation && def->operation->prepare && active_)
        return prepareOperation(*def, *active_, input);
    if (def->flow == ActionFlow::File) return done(runFile(*def, input));
    return done(runDocument(*def, input));
}

PreparedAction Workspace::prepareAction(std::string_view name, const TypedFields& fields) {
    FormInput input;
    input.typed = &fields;
    return prepare(name, input);
}

PreparedAction Workspace::prepareAction(std::string_view name, const FormState& accepted) {
    FormInput input;
    input.accepted = &accepted;
    return prepare(name, input);
}

void Workspace::jobGone(const OperationJob* job) {
    if (running_ == job) running_ = nullptr;
}

ActionResult Workspace::commit(std::unique_ptr<OperationJob> job) {
    ORV_ASSERT(job != nullptr && job->computed(), "Main");
    jobGone(job.get());
    TUnitWave* unit = job->unit();
    // Its window was closed while it computed: nothing to give the result to.
    if (!isOpen(unit)) return {ActionResult::Kind::Cancelled, "", ""};
    WaveView* view = unit->getView();
    const Plan& plan = job->plan_;
    const bool made = plan.toClipboard ? job->taken_ != nullptr
                                       : job->made_ != nullptr || plan.bytesPSample != 0;
    // A document changed under the job (not through the commands, which wait for it) keeps
    // its change: the result was made from a sound it no longer holds.
    const bool stale = unit->soundRef() != job->source_;
    if (job->cancelled() || !made || stale) {
        if (view) view->repaintAll();
        return {job->cancelled() ? ActionResult::Kind::Cancelled : ActionResult::Kind::Nothing,
                "", ""};
    }
    if (plan.toClipboard) {
        setClipboard(std::move(job->taken_), unit->getBytesPSample());
        return {};
    }
    // The snapshot of the state the job started from; the one before goes (its sound goes
    // with it unless somebody still holds it).
    std::unique_ptr<TUndoUnit> previous = std::move(undo_);
    undo_ = std::make_unique<TUndoUnit>(unit, job->bytesBefore_, unit->soundRef(),
                                        job->cursorBefore_, job->selEndBefore_);
    previous.reset();
    if (plan.bytesPSample != 0) {
        std::shared_ptr<Sound> result = job->made_ ? std::shared_ptr<Sound>(std::move(job->made_))
                                                   : unit->soundRef();
        unit->takeConverted(std::move(result), plan.bytesPSample, plan.positionScale);
    } else {
        unit->takeResult(std::move(job->made_), job->madeBegin_, job->madeEnd_);
    }
    unit->setChanged();
    if (view) view->refreshStatus(*unit);
    if (job->taken_) setClipboard(std::move(job->taken_), unit->getBytesPSample());
    return {};
}

ActionResult Workspace::runAction(std::string_view name, const TypedFields& fields) {
    PreparedAction prepared = prepareAction(name, fields);
    if (!prepared.job) return prepared.result;
    prepared.job->compute();
    return commit(std::move(prepared.job));
}

std::unique_ptr<FormView> Workspace::actionForm(std::string_view name) {
    const ActionDef* def = findAction(name);
    if (!active_ || !def || !def->operation || !def->operation->form) return nullptr;
    return def->operation->form(*active_);
}

std::optional<FormError> Workspace::checkForm(std::string_view name, const FormState& state) {
    const ActionDef* def = findAction(name);
    if (!active_ || !def || !def->operation || !def->operation->check) return std::nullopt;
    return def->operation->check(state, *active_, formContext(*active_));
}

}  // namespace orv
