// The file menu, the document commands (undo, register, duplicate ...), and help.
// The file commands run in the workspace (Workspace::runFile); the one that computes,
// Properties (a conversion to another frequency, width or channel count), has its feed here.
#include <array>

#include "document/action_rows.h"
#include "document/file_props_record.h"

namespace orv {

namespace {

WaveFilePropsRecord propertiesOf(const TUnitWave& unit) {
    return WaveFilePropsRecord(
        WaveFileProps{unit.getFreq(), unit.getMonoStereo(), unit.getBytesPSample()});
}

std::unique_ptr<FormView> propertiesForm(TUnitWave& unit) {
    return std::make_unique<OwningForm<WaveFilePropsRecord>>(propertiesOf(unit));
}

const FormSpec* propertiesSpec() { return &WaveFilePropsRecord::table(); }

// The document takes the chosen frequency, sample width and channel count; cursor and
// selection keep their place in time. A change of the width alone keeps the sound.
std::optional<FormError> prepareProperties(const FormInput& input, TUnitWave& unit,
                                           UnitRecords&, PrepareContext& c, Plan& plan,
                                           bool& planned) {
    WaveFilePropsRecord record = propertiesOf(unit);
    if (auto error = readForm(record, input)) return error;
    const WaveFileProps props = record.props();
    ORV_ASSERT(props.MonoStereo == 1 || props.MonoStereo == 2, "unitwave");
    ORV_ASSERT(props.BytesPSample == 1 || props.BytesPSample == 2, "unitwave");
    const bool resample = props.Freq != c.freq();
    plan.begin = 0;
    plan.end = c.values();
    plan.showRange = false;
    plan.bytesPSample = props.BytesPSample;
    plan.positionScale = double(props.Freq) / double(c.freq());
    plan.work = workOf(std::int64_t(c.values()) * (resample ? 2 : 1), c.channels());
    plan.compute = [props, resample](const Sound& s, CancelFlag* cancel, std::int32_t&,
                                     std::int32_t&) -> SoundPtr {
        SoundPtr made;
        const Sound* source = &s;
        if (resample) {
            made = s.ChangeFreq(cancel, props.Freq);
            if (!made || isCancelled(*cancel)) return nullptr;
            source = made.get();
        }
        if (props.MonoStereo != source->MoSt) {
            if (props.MonoStereo == 2) return std::make_unique<StereoSound>(*source, cancel);
            return std::make_unique<MonoSound>(*source, cancel);
        }
        return made;
    };
    planned = true;
    return std::nullopt;
}

std::optional<FormError> checkProperties(const FormState& state, TUnitWave& unit,
                                         const FormContext& context) {
    WaveFilePropsRecord record = propertiesOf(unit);
    return acceptRecord(WaveFilePropsRecord::table(), state, record, context);
}

constexpr OperationDef kProperties{&propertiesForm, &prepareProperties, &propertiesSpec,
                                   &checkProperties};

using F = ActionFlow;
using E = EnableRule;
constexpr DuringJob kAllowed = DuringJob::Allowed;

constexpr std::array kFileRows{
    actionRow("FileNewWave", "File", "&New", "Ctrl+N", "New", "Create a new empty wave window", F::File, E::Free, "Wave Properties", nullptr, kAllowed),
    actionRow("FileNewMuz", "File", "New music...", "", "", "", F::Inert, E::Never),
    actionRow("FileOpenWave", "File", "&Open", "Ctrl+O", "Open", "Open a wave file", F::File, E::Free, {}, nullptr, kAllowed),
    actionRow("FileOpenMuz", "File", "FileOpenMuz", "", "", "", F::Inert, E::Never),
    actionRow("FileSave", "File", "&Save", "Ctrl+S", "Save", "Save current file", F::File, E::MaySave),
    actionRow("FileSaveAs", "File", "Save &As...", "Ctrl+A", "Save As", "Save current file with different name", F::File, E::HasSamples),
    actionRow("FileProperties", "File", "Properties", "Ctrl+P", "Properties", "Change the properties of the wave", F::File, E::NotDrawing, "Wave Properties", &kProperties),
    actionRow("FilePlay", "File", "&Play", "P", "Play", "Play the wave", F::Front, E::Playable, {}, nullptr, DuringJob::OtherWindow),
    actionRow("FileStop", "File", "S&top", "S", "Stop", "Stops playing or recording", F::Front, E::Player, {}, nullptr, kAllowed),
    actionRow("FilePause", "File", "Pause", "W", "Pause", "Pause Playing or Undone Pausing", F::Front, E::Pause, {}, nullptr, kAllowed),
    actionRow("FileRecord", "File", "&Record", "Alt+R", "Record", "Starts recording", F::Front, E::Recordable),
    actionRow("FileExit", "File", "E&xit", "", "Exit", "Exit the Orvasto", F::Front, E::Free, {}, nullptr, kAllowed),
    actionRow("Undo", "", "&Undo", "Ctrl+Z", "Undo", "Undo last wave action", F::Document, E::Free),
    actionRow("DeleteUndo", "", "De&lete Undo", "Alt+Del", "Delete Undo", "Forget wave before last wave action", F::Document, E::Free),
    actionRow("Register", "", "&Register...", "N", "Register", "Register a wave using a name", F::Document, E::Free, "Register"),
    actionRow("Options", "", "Options...", "", "", "", F::Inert, E::Never),
    actionRow("Duplicate", "MakeWave", "&Duplicate", "D", "Duplicate", "Make a duplicate of the wave", F::Document, E::Window),
};

constexpr std::array kHelpRows{
    actionRow("HelpAbout", "Help", "&About...", "Alt+F1", "About", "Displays program information, version number, and copyright", F::Front, E::Free, {}, nullptr, kAllowed),
};

}  // namespace

std::span<const ActionDef> fileActions() { return kFileRows; }
std::span<const ActionDef> helpActions() { return kHelpRows; }

}  // namespace orv
