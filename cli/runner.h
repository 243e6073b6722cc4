// Runs a script's steps on one workspace, the way the desktop program runs its commands:
// every action goes through Workspace::runAction, every message through showMessage.
//
// Exit status: 0 all steps ran; 1 a file could not be read or written (or memory ran out);
// 2 a field or a step was refused (a bad value, an action not offered now, a name in use);
// 130 interrupted. The first step that fails ends the script; files saved before it stay.
#pragma once

#include <atomic>
#include <iosfwd>
#include <string>
#include <vector>

#include "cli/script.h"
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

private:
    int actionStep(const Step& step);
    int resultStatus(const ActionResult& r) const;
    int usage(const std::string& text) const;
    TUnitWave* activeFor(const Step& step) const;
    int importStep(const Step& step);
    int exportStep(const Step& step, TUnitWave& unit);
    void dump(const TUnitWave& unit, std::int64_t begin, std::int64_t end);

    Workspace ws_;
    std::ostream& out_;
    std::atomic<bool> interrupted_{false};
    std::atomic<CancelFlag*> target_{nullptr};
    std::atomic<const Step*> current_{nullptr};
    CancelFlag importCancel_{0};
};

}  // namespace orv::cli
