#include "cli/runner.h"

#include <algorithm>
#include <charconv>
#include <ostream>

#include "core/platform.h"
#include "core/wave.h"
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
        if (interrupted()) return kExitInterrupted;
        const int status = runStep(step);
        if (interrupted()) return kExitInterrupted;
        if (status != kExitOk) return status;
    }
    out_.flush();
    return kExitOk;
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
            PositionText a, b;
            readPosition(step.args[0], a);
            readPosition(step.args[1], b);
            std::int32_t begin = clampTo(positionSample(a, unit->getFreq()), unit->values());
            std::int32_t end = clampTo(positionSample(b, unit->getFreq()), unit->values());
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
            PositionText p;
            readPosition(step.args[0], p);
            unit->setCursor(clampTo(positionSample(p, unit->getFreq()), unit->values()));
            return kExitOk;
        }
        case StepKind::Save: {
            TUnitWave* unit = activeFor(step);
            if (!unit) return kExitUsage;
            if (unit->values() == 0) return usage("An empty wave cannot be saved.");
            Target target(target_, &unit->cancelFlag());
            return resultStatus(ws_.runAction("FileSaveAs", {{"File", step.args[0]}}));
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
                PositionText a, b;
                readPosition(step.args[0], a);
                readPosition(step.args[1], b);
                begin = clampTo(positionSample(a, unit->getFreq()), unit->values());
                end = clampTo(positionSample(b, unit->getFreq()), unit->values());
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
        case StepKind::Action: return actionStep(step);
    }
    return kExitUsage;
}

int ScriptRunner::actionStep(const Step& step) {
    TUnitWave* unit = ws_.active();
    TypedFields fields = step.fields;
    if (std::unique_ptr<FormView> form = ws_.actionForm(step.word))
        fields = resolveOptionValues(form->spec(), fields);
    Target target(target_, unit ? &unit->cancelFlag() : nullptr);
    return resultStatus(ws_.runAction(step.word, fields));
}

int ScriptRunner::importStep(const Step& step) {
    const std::string& file = step.args[0];
    importCancel_.store(0);
    SoundPtr sound;
    std::string reason;
    bool ok;
    {
        Target target(target_, &importCancel_);
        ok = importSoundFile(file, sound, reason, &importCancel_);
    }
    if (!ok) {
        if (interrupted()) return kExitInterrupted;
        showMessage(kFileErrorCaption, importFailureText(file, reason), MessageIcon::Information);
        return kExitFile;
    }
    // An imported wave is kept with 16-bit samples and is not yet what its file holds. Its
    // own file name ends in ".wav", so that FileSave never writes WAV data into a FLAC file.
    TUnitWave& unit = ws_.add(std::make_unique<TUnitWave>(std::move(sound), 2, wavNameFor(file)));
    unit.setChanged();
    return kExitOk;
}

int ScriptRunner::exportStep(const Step& step, TUnitWave& unit) {
    const std::string& file = step.args[0];
    const std::string format = step.args.size() > 1 ? step.args[1] : std::string();
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
