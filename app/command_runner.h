// The one place where the desktop program runs an action of the document layer. A command
// arrives with what its dialog accepted (or nothing), runs, and reports its result through
// a completion callback; while it runs the runner is busy (the frame's enabling reads that,
// and the busy cursor shows).
//
// Today a command runs to its end inside run(): the accepted form is handed over as the
// "Caption=Value" pairs the workspace reads, one per field that counts, in record order.
// Written so that a command may later finish after run() has returned (on a worker thread
// with progress and Cancel): callers rely only on busy() and the callback.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QObject>

#include "document/records.h"
#include "document/workspace.h"

namespace orv {

// What a dialog accepted: its form and the state of its controls.
struct AcceptedForm {
    const FormSpec* spec = nullptr;
    FormState state;
};

struct CommandInput {
    std::optional<AcceptedForm> form;
    // File commands: the file chosen in the file dialog (open, save as, save of a new wave).
    std::string file;
    // Multi Frequency: the list of frequencies its dialog edited.
    std::optional<std::vector<FrequencyRecord>> frequencies;
};

// The fields of an accepted form as the workspace reads them: "Caption=shown value" for
// every field that counts, in record order (presets and lists without a choice left out;
// their effect is already in the other fields).
TypedFields typedFieldsOf(const FormSpec& spec, const FormState& state);

class CommandRunner final : public QObject {
    Q_OBJECT
public:
    using Done = std::function<void(const ActionResult&)>;

    explicit CommandRunner(Workspace& workspace, QObject* parent = nullptr);

    bool busy() const { return busy_; }
    // Runs `action` on the workspace's active document. `done` gets the result once the
    // command has finished (messages have been shown by then). Asserts that no other
    // command runs.
    void run(std::string_view action, const CommandInput& input = {}, Done done = {});

signals:
    void busyChanged(bool busy);
    // After every command, before `done`.
    void finished(const QString& action);

private:
    void begin();
    void end();

    Workspace& workspace_;
    bool busy_ = false;
};

}  // namespace orv
