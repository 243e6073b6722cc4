// The texts of the help step.
#include <memory>
#include <string>

#include "cli/runner.h"
#include "cli/suggest.h"
#include "cli/view_steps.h"
#include "document/file_props_record.h"
#include "document/register_check.h"
#include "fileio/sound_export.h"

namespace orv::cli {

namespace {

std::string padded(std::string_view s, std::size_t width) {
    std::string out(s);
    if (out.size() < width) out.append(width - out.size(), ' ');
    return out + " ";
}

// A record shown for a listing only: it is never accepted, so the reading side of the form
// is not needed here.
template <class R>
class ListedRecord final : public FormView {
public:
    explicit ListedRecord(const R& record) : record_(record) {}
    const FormSpec& spec() const override { return R::table(); }
    FormState show(const WaveNameLookup* names) const override {
        return showRecord(R::table(), record_, names);
    }
    std::optional<FormError> accept(const FormState&, const FormContext&) override {
        return FormError{std::string(kUsageErrorCaption), "", "A listing is not accepted."};
    }

private:
    const R& record_;
};

bool runsHere(const ActionDef& a) {
    if (ViewSteps::isViewAction(a.name)) return true;
    return a.flow != ActionFlow::Front && a.flow != ActionFlow::Inert;
}

std::string indented(const std::string& lines) {
    std::string out;
    std::size_t start = 0;
    while (start < lines.size()) {
        std::size_t nl = lines.find('\n', start);
        if (nl == std::string::npos) nl = lines.size();
        out += "  " + lines.substr(start, nl - start) + "\n";
        start = nl + 1;
    }
    return out;
}

}  // namespace

std::string helpText() {
    std::string t;
    t += "Usage: orvasto-cli STEP [STEP ...]\n";
    t += "Runs the steps left to right on a set of open waves; each step works on the current "
         "wave.\n\n";
    t += "Steps:\n";
    const std::pair<std::string_view, std::string_view> steps[] = {
        {"open FILE", "read a WAV file into a new wave, which becomes current"},
        {"import FILE", "read any sound file libsndfile knows into a new 16-bit wave"},
        {"new FREQ BITS CHANNELS", "a new empty wave (BITS 8 or 16, CHANNELS 1 or 2)"},
        {"name NAME", "register the current wave under NAME (for envelopes and lengths)"},
        {"use NAME", "make the wave registered as NAME current"},
        {"select BEGIN END", "select a part (sample index, or a time such as 1.5s or 20ms)"},
        {"cursor POS", "place the cursor; nothing is selected"},
        {"ACTION [Caption=Value ...]", "run an action; fields not given keep their last values"},
        {"save FILE", "write the current wave as a WAV file"},
        {"export FILE [FORMAT]", "write the current wave through libsndfile"},
        {"info", "length, frequency, bits, channels, size, state and name, tab-separated"},
        {"dump [BEGIN END]", "the samples, one frame a line, channels tab-separated"},
        {"help [ACTION]", "this text, or the fields of ACTION with their current values"},
        {"ViewWave [Caption=Value ...]", "show the wave as a waveform, with these view settings"},
        {"ViewVold [Caption=Value ...]", "show the wave as a volume diagram, with these settings"},
        {"ZoomIn / NoZoom", "zoom into the selected part / show the whole wave"},
        {"render FILE WIDTH HEIGHT", "paint the wave as a window of that size shows it (PNG)"},
    };
    for (const auto& [syntax, what] : steps) t += "  " + padded(syntax, 28) + std::string(what) + "\n";

    t += "\nActions:\n";
    for (const ActionDef& a : actionTable()) {
        if (!runsHere(a)) continue;
        std::string hint(a.longHint.empty() ? plainCaption(a.caption) : std::string(a.longHint));
        t += "  " + padded(a.name, 20) + hint + "\n";
    }

    t += "\nExport formats:\n";
    for (const ExportFormatInfo& f : availableExportFormats()) {
        std::string line = "  " + padded(f.name, 8) + f.description;
        if (*f.extensions) line += std::string(" (.") + f.extensions + ")";
        t += line + "\n";
    }

    t += "\nExit status: 0 done, 1 a file could not be read or written, 2 a value or step was "
         "refused, 130 interrupted.\n";
    return t;
}

bool actionHelpText(Workspace& ws, std::string_view action, std::string& text) {
    const ActionDef* def = findAction(action);
    if (!def || !runsHere(*def)) {
        text = def ? std::string(action) + " needs the desktop program."
                   : "Unknown action \"" + std::string(action) + "\"." +
                         didYouMean(action, stepAndActionNames());
        return false;
    }
    // Without an open wave the fields show their defaults, as on a new wave.
    Workspace scratch;
    Workspace& from = ws.active() ? ws : scratch;
    if (!from.active()) scratch.newWave(WaveFileProps{44100, 1, 2});
    TUnitWave& unit = *from.active();

    text = std::string(def->name) + ": " + std::string(def->longHint) + "\n";
    std::string fields;
    if (def->name == "FileProperties") {
        WaveFilePropsRecord record(
            WaveFileProps{unit.getFreq(), unit.getMonoStereo(), unit.getBytesPSample()});
        fields = describeForm(ListedRecord<WaveFilePropsRecord>(record), &from);
    } else if (def->name == "Register") {
        RegisterRecord record(unit.getName());
        fields = describeForm(ListedRecord<RegisterRecord>(record), &from);
    } else if (def->name == "ViewWave") {
        WaveViewRecord record;
        WaveViewForm form(record);
        text += "Dialog \"" + std::string(form.spec().caption) + "\" (the defaults)\n";
        fields = describeForm(form, &from);
    } else if (def->name == "ViewVold") {
        VoldViewRecord record;
        VoldViewForm form(record);
        text += "Dialog \"" + std::string(form.spec().caption) + "\" (the defaults)\n";
        fields = describeForm(form, &from);
    } else if (def->name == "FileOpenWave" || def->name == "FileSaveAs") {
        fields = "File (text) = \n";
    } else if (std::unique_ptr<FormView> form = from.actionForm(def->name)) {
        text += "Dialog \"" + std::string(form->spec().caption) + "\"\n";
        fields = describeForm(*form, &from);
    }
    text += fields.empty() ? std::string("  No fields.\n") : indented(fields);
    return true;
}

}  // namespace orv::cli
