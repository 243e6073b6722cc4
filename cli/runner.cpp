#include "cli/runner.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <ostream>

#include "cli/suggest.h"
#include "core/platform.h"
#include "core/wave.h"
#include "fileio/safe_file_writer.h"
#include "fileio/sound_export.h"
#include "fileio/sound_import.h"

namespace orv::cli {

namespace {

constexpr std::string_view kUsageCaption = kUsageErrorCaption;

// The captions of failures that concern files or memory rather than what was typed.
bool isFileFailure(std::string_view caption) {
    return caption == kFileErrorCaption || caption == kSaveErrorCaption ||
           caption == "System Error";
}

std::int32_t clampTo(std::int64_t pos, std::int32_t values) {
    return std::int32_t(std::clamp<std::int64_t>(pos, 0, values));
}

// Marks a step as running for the watcher; clears it again on leaving.
class Running {
public:
    Running(std::atomic<const Step*>& slot, const Step& step) : slot_(slot) { slot_.store(&step); }
    ~Running() { slot_.store(nullptr); }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

private:
    std::atomic<const Step*>& slot_;
};

// The target of an interrupt while a step runs.
class Target {
public:
    Target(std::atomic<CancelFlag*>& slot, CancelFlag* flag) : slot_(slot) { slot_.store(flag); }
    ~Target() { slot_.store(nullptr); }
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

private:
    std::atomic<CancelFlag*>& slot_;
};

}  // namespace

void showDetail(std::string_view text) { showMessage("", text, MessageIcon::Information); }

std::string wavNameFor(const std::string& file) {
    const std::size_t slash = file.find_last_of('/');
    const std::size_t dot = file.find_last_of('.');
    const bool hasExtension =
        dot != std::string::npos && (slash == std::string::npos || dot > slash + 1);
    return (hasExtension ? file.substr(0, dot) : file) + ".wav";
}

ScriptRunner::ScriptRunner(std::ostream& out) : out_(out) {
    // The periodic generators read the one sine table made at start-up.
    createSinus();
}

void ScriptRunner::interrupt() {
    interrupted_.store(true);
    if (CancelFlag* flag = target_.load()) setCancelled(*flag);
}

int ScriptRunner::run(const std::vector<Step>& steps) {
    if (!sinus) return kExitFile;  // "Could not create sinus." was shown
    for (const Step& step : steps) {
        // Ctrl-C is honoured between steps and, through the cancel flag, inside one. A step
        // that finished before it noticed is done (a save is in place): the script stops
        // before the next one, and when there is none the work is complete.
        if (interrupted()) return kExitInterrupted;
        const int status = runStep(step);
        if (status != kExitOk) return interrupted() ? kExitInterrupted : status;
    }
    out_.flush();
    return kExitOk;
}

int ScriptRunner::saveStatus(const ActionResult& r) const {
    if (r.kind == ActionResult::Kind::Refused && r.caption == kSaveErrorCaption) {
        // "Cannot save the wave." alone does not say what to do about it.
        const WriteFailure why = lastWriteFailure();
        if (!why.reason.empty()) showDetail("\"" + why.file + "\": " + why.reason);
    }
    return resultStatus(r);
}

bool ScriptRunner::refusesOverwrite(const TUnitWave& unit, const std::string& target,
                                    std::string_view caption, bool exporting) const {
    const auto origin = origins_.find(&unit);
    if (origin == origins_.end()) return false;
    const std::optional<std::string> refusal = importOverwriteRefusal(origin->second, target);
    if (!refusal) return false;
    showMessage(caption, exporting ? exportFailureText(target, *refusal) : *refusal,
                MessageIcon::Information);
    return true;
}

std::int32_t ScriptRunner::position(const std::string& text, const TUnitWave& unit) const {
    PositionText p;
    readPosition(text, p);
    return clampTo(positionSample(p, unit.getFreq(), unit.values()), unit.values());
}

int ScriptRunner::usage(const std::string& text) const {
    showMessage(kUsageCaption, text, MessageIcon::Information);
    return kExitUsage;
}

int ScriptRunner::resultStatus(const ActionResult& r) const {
    using K = ActionResult::Kind;
    switch (r.kind) {
        case K::Done:
        case K::Nothing: return kExitOk;
        case K::Cancelled: return interrupted() ? kExitInterrupted : kExitFile;
        case K::Refused: return isFileFailure(r.caption) ? kExitFile : kExitUsage;
        default: return kExitUsage;
    }
}

TUnitWave* ScriptRunner::activeFor(const Step& step) const {
    TUnitWave* unit = ws_.active();
    if (!unit) usage(step.word + " needs an open wave.");
    return unit;
}

int ScriptRunner::runStep(const Step& step) {
    Running running(current_, step);
    switch (step.kind) {
        case StepKind::Open: {
            const ActionResult r = ws_.runAction("FileOpenWave", {{"File", step.args[0]}});
            return resultStatus(r);
        }
        case StepKind::Import: return importStep(step);
        case StepKind::New: {
            WaveFileProps props;
            props.Freq = std::stoi(step.args[0]);
            props.BytesPSample = std::uint16_t(std::stoi(step.args[1]) / 8);
            props.MonoStereo = std::uint16_t(std::stoi(step.args[2]));
            ws_.newWave(props);
            return kExitOk;
        }
        case StepKind::Name: {
            if (!activeFor(step)) return kExitUsage;
            return resultStatus(ws_.runAction("Register", {{"Name", step.args[0]}}));
        }
        case StepKind::Use: {
            TUnitWave* unit = ws_.findByName(step.args[0]);
            if (!unit) return usage("There is no wave named \"" + step.args[0] + "\".");
            ws_.setActive(unit);
            return kExitOk;
        }
        case StepKind::Select: {
            TUnitWave* unit = activeFor(step);
            if (!unit) return kExitUsage;
            std::int32_t begin = position(step.args[0], *unit);
            std::int32_t end = position(step.args[1], *unit);
            if (begin > end) std::swap(begin, end);
            if (begin == end)
                unit->setCursor(begin);
            else
                unit->setSelection(begin, end);
            return kExitOk;
        }
        case StepKind::Cursor: {
            TUnitWave* unit = activeFor(step);
            if (!unit) return kExitUsage;
            unit->setCursor(position(step.args[0], *unit));
            return kExitOk;
        }
        case StepKind::Save: {
            TUnitWave* unit = activeFor(step);
            if (!unit) return kExitUsage;
            if (unit->values() == 0) return usage("An empty wave cannot be saved.");
            if (refusesOverwrite(*unit, step.args[0], kSaveErrorCaption, false)) return kExitFile;
            Target target(target_, &unit->cancelFlag());
            return saveStatus(ws_.runAction("FileSaveAs", {{"File", step.args[0]}}));
        }
        case StepKind::Export: {
            TUnitWave* unit = activeFor(step);
            if (!unit) return kExitUsage;
            return exportStep(step, *unit);
        }
        case StepKind::Info: {
            TUnitWave* unit = activeFor(step);
            if (!unit) return kExitUsage;
            std::string line;
            for (const std::string& panel : unit->statusTexts()) line += panel + "\t";
            line += unit->getName();
            out_ << line << '\n';
            return kExitOk;
        }
        case StepKind::Dump: {
            TUnitWave* unit = activeFor(step);
            if (!unit) return kExitUsage;
            std::int64_t begin = 0, end = unit->values();
            if (step.args.size() == 2) {
                begin = position(step.args[0], *unit);
                end = position(step.args[1], *unit);
            }
            dump(*unit, begin, end);
            return kExitOk;
        }
        case StepKind::Help: {
            if (step.args.empty()) {
                out_ << helpText();
                return kExitOk;
            }
            std::string text;
            if (!actionHelpText(ws_, step.args[0], text)) return usage(text);
            out_ << text;
            return kExitOk;
        }
        case StepKind::Action: {
            TUnitWave* unit = ws_.active();
            if (unit) views_.beforeOperation(*unit);
            const int status = actionStep(step);
            if (unit && ws_.active() == unit) views_.afterOperation(*unit);
            return status;
        }
        case StepKind::View: {
            TUnitWave* unit = activeFor(step);
            if (!unit) return kExitUsage;
            if (auto e = views_.run(step.word, step.fields, *unit, ws_.formContext()))
                return kExitUsage;
            return kExitOk;
        }
        case StepKind::Render: {
            TUnitWave* unit = activeFor(step);
            if (!unit) return kExitUsage;
            std::string reason;
            if (!views_.render(*unit, step.args[0], std::stoi(step.args[1]),
                               std::stoi(step.args[2]), reason)) {
                showMessage(kSaveErrorCaption, "Cannot write the picture.", MessageIcon::Information);
                showDetail(reason);
                return kExitFile;
            }
            return kExitOk;
        }
    }
    return kExitUsage;
}

int ScriptRunner::actionStep(const Step& step) {
    TUnitWave* unit = ws_.active();
    // "Volume Factor=-6 dB" types into the option's one typed field: the form does that.
    const TypedFields& fields = step.fields;
    if (std::optional<int> refused = checkAction(step, fields)) return *refused;
    Target target(target_, unit ? &unit->cancelFlag() : nullptr);
    const ActionResult r = ws_.runAction(step.word, fields);
    if (step.word == "Duplicate" && r.kind == ActionResult::Kind::Done && unit &&
        ws_.active() != unit && origins_.count(unit))
        origins_[ws_.active()] = origins_[unit];  // a copy of an import is one too
    return saveStatus(r);
}

std::optional<int> ScriptRunner::checkAction(const Step& step, const TypedFields& fields) {
    TUnitWave* unit = ws_.active();
    const std::string& name = step.word;
    if (!unit || !ws_.status(name).enabled) return std::nullopt;  // runAction says why
    if (std::unique_ptr<FormView> form = ws_.actionForm(name)) {
        const FormSpec& spec = form->spec();
        for (const auto& typed : fields) {
            if (spec.find(typed.first) != kNoField) continue;
            std::vector<std::string> captions;
            std::string list;
            for (const FieldDef& f : spec.fields) {
                captions.push_back(plainCaption(f.caption));
                list += (list.empty() ? "" : ", ") + captions.back();
            }
            return usage("There is no field \"" + typed.first + "\" in \"" +
                         std::string(spec.caption) + "\"." + didYouMean(typed.first, captions) +
                         " Its fields: " + list + ".");
        }
    }
    if (name == "FileSave" || name == "FileSaveAs") {
        std::string file;
        for (const auto& [key, value] : fields)
            if (captionMatches(key, "File")) file = value;
        if (file.empty() && !unit->isNew()) file = unit->getFileName();
        if (!file.empty() && refusesOverwrite(*unit, file, kSaveErrorCaption, false))
            return kExitFile;
    }
    return std::nullopt;
}

int ScriptRunner::importStep(const Step& step) {
    const std::string& file = step.args[0];
    importCancel_.store(0);
    SoundPtr sound;
    std::string reason;
    bool ok;
    {
        Target target(target_, &importCancel_);
        std::optional<QuietStderr> quiet;
        if (quietCodecs_) quiet.emplace();
        ok = importSoundFile(file, sound, reason, &importCancel_);
    }
    if (!ok) {
        if (interrupted()) return kExitInterrupted;
        showMessage(kFileErrorCaption, importFailureText(file, reason), MessageIcon::Information);
        return kExitFile;
    }
    // An imported wave is kept with 16-bit samples: it has no file of its own until it is
    // saved under a name, so FileSave asks for one, as for a wave never saved. The name it
    // suggests ends in ".wav". Saving over the file it came from is refused.
    ImportOrigin origin = importOrigin(file, *sound);
    TUnitWave& unit = ws_.add(std::make_unique<TUnitWave>(std::move(sound), 2, wavNameFor(file)));
    unit.setNew();
    origins_[&unit] = std::move(origin);
    return kExitOk;
}

int ScriptRunner::exportStep(const Step& step, TUnitWave& unit) {
    const std::string& file = step.args[0];
    const std::string format = step.args.size() > 1 ? step.args[1] : std::string();
    if (refusesOverwrite(unit, file, kFileErrorCaption, true)) return kExitFile;
    unit.clearCancel();
    std::string reason;
    bool ok;
    {
        Target target(target_, &unit.cancelFlag());
        ok = exportSoundFile(file, format, unit.getSound(), reason, &unit.cancelFlag());
    }
    if (!ok) {
        if (interrupted()) return kExitInterrupted;
        showMessage(kFileErrorCaption, exportFailureText(file, reason), MessageIcon::Information);
        return kExitFile;
    }
    return kExitOk;
}

void ScriptRunner::dump(const TUnitWave& unit, std::int64_t begin, std::int64_t end) {
    const Sound* sound = unit.getSound();
    const Wave* left = sound->GetLeftWave();
    const Wave* right = sound->MoSt == 2 ? sound->GetRightWave() : nullptr;
    std::string buffer;
    buffer.reserve(1 << 16);
    char number[16];
    auto put = [&](WaveVal v) {
        const auto r = std::to_chars(number, number + sizeof number, int(v));
        buffer.append(number, r.ptr);
    };
    for (std::int64_t i = begin; i < end; ++i) {
        put((*left)[std::int32_t(i)]);
        if (right) {
            buffer += '\t';
            put((*right)[std::int32_t(i)]);
        }
        buffer += '\n';
        if (buffer.size() > (1 << 16) - 32) {
            out_ << buffer;
            buffer.clear();
        }
    }
    out_ << buffer;
}

}  // namespace orv::cli
