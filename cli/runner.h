// Runs a script's steps on one workspace, the way the desktop program runs its commands:
// every action goes through Workspace::runAction, every message through showMessage.
//
// Exit status: 0 all steps ran; 1 a file could not be read or written (or memory ran out);
// 2 a field or a step was refused (a bad value, an action not offered now, a name in use);
// 130 interrupted. The first step that fails ends the script; files saved before it stay.
// An interruption stops the running step at its next chunk (a save before its file replaces
// the old one); a step that finished anyway counts as done, so when it was the last one the
// status is 0.
//
// An imported wave remembers the file it came from: saving or exporting over that file is
// refused (document/import_origin.h), and until it is saved under a name it is a new wave,
// so FileSave needs a name for it.
#pragma once

#include <atomic>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "cli/script.h"
#include "cli/view_steps.h"
#include "document/import_origin.h"
#include "document/workspace.h"

namespace orv::cli {

enum ExitCode : int {
    kExitOk = 0,
    kExitFile = 1,
    kExitUsage = 2,
    kExitInterrupted = 130,
};

// The help texts: every step and action, or one action's fields with their current values.
std::string helpText();
// Fields of `action` over the active document of `ws` (or the defaults when none is open);
// false with a message when there is no such action.
bool actionHelpText(Workspace& ws, std::string_view action, std::string& text);

// The file name an imported wave is saved under: the extension becomes ".wav"
// ("song.flac" -> "song.wav"; ".hidden" and names without one get ".wav" added).
std::string wavNameFor(const std::string& file);

class ScriptRunner {
public:
    // `out` takes what info, dump and help print.
    explicit ScriptRunner(std::ostream& out);
    ScriptRunner(const ScriptRunner&) = delete;
    ScriptRunner& operator=(const ScriptRunner&) = delete;

    // Runs the steps in order; stops at the first one that fails.
    int run(const std::vector<Step>& steps);
    // One step; kExitOk to go on.
    int runStep(const Step& step);

    // Any thread: raise the cancel flag of whatever runs now and run no further step. Call it
    // again now and then while the step runs: a command clears the flag when it begins.
    void interrupt();
    bool interrupted() const { return interrupted_.load(); }
    // The step that runs now, nullptr between steps.
    const Step* currentStep() const { return current_.load(); }

    Workspace& workspace() { return ws_; }

    // Throw away what codec libraries print on stderr while a file is imported (the
    // program does; in-process tests leave stderr alone).
    void setQuietCodecs(bool quiet) { quietCodecs_ = quiet; }

private:
    int actionStep(const Step& step);
    int resultStatus(const ActionResult& r) const;
    int usage(const std::string& text) const;
    TUnitWave* activeFor(const Step& step) const;
    int importStep(const Step& step);
    int exportStep(const Step& step, TUnitWave& unit);
    int saveStatus(const ActionResult& r) const;
    // The save or export refusal for writing `unit` to `target`, shown; true when refused.
    bool refusesOverwrite(const TUnitWave& unit, const std::string& target,
                          std::string_view caption, bool exporting) const;
    // The checks the command line makes before an action runs; a status when refused.
    std::optional<int> checkAction(const Step& step, const TypedFields& fields);
    void dump(const TUnitWave& unit, std::int64_t begin, std::int64_t end);
    std::int32_t position(const std::string& text, const TUnitWave& unit) const;

    Workspace ws_;
    std::ostream& out_;
    std::atomic<bool> interrupted_{false};
    std::atomic<CancelFlag*> target_{nullptr};
    std::atomic<const Step*> current_{nullptr};
    CancelFlag importCancel_{0};
    bool quietCodecs_ = false;
    std::map<const TUnitWave*, ImportOrigin> origins_;
    ViewSteps views_;
};

// A line of detail under the message before it (caption left empty): the file and the
// system's reason of a failed save.
void showDetail(std::string_view text);

}  // namespace orv::cli
