// The one place where the desktop program runs an action of the document layer. A command
// arrives with what its dialog accepted (or nothing) and is prepared by the workspace; a
// command that computes leaves a job, which runs on a worker thread while the window stays
// live. The busy cursor shows meanwhile; after half a second a progress dialog with Cancel
// appears (the job's walked samples against what it expects); Cancel raises the job's
// cancel byte, and the document then stays as it was. The result is committed on the
// user-interface thread and reported through the completion callback.
//
// The accepted form goes to the workspace as the state of the dialog, read once, so what
// was typed reaches the operation unrounded.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <string>
#include <string_view>
#include <vector>

#include <QElapsedTimer>
#include <QObject>

class QProgressDialog;
class QTimer;
class QWidget;

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

    // `window`: the parent of the progress dialog.
    explicit CommandRunner(Workspace& workspace, QObject* parent = nullptr,
                           QWidget* window = nullptr);
    ~CommandRunner() override;

    // A command runs (a job computes, or a command is being prepared).
    bool busy() const { return busy_; }
    // Runs `action` on the workspace's active document. `done` gets the result once the
    // command has finished (messages have been shown by then); for a job that is after
    // run() has returned. While a job is out, only commands that do not compute run.
    void run(std::string_view action, const CommandInput& input = {}, Done done = {});
    // Raises the running job's cancel byte; nothing when none runs.
    void cancel();
    // Computes jobs on the calling thread inside run() (tests of dialogs and results that
    // want the result at once); the default is a worker thread.
    void setInline(bool on) { inline_ = on; }
    void setProgressDelay(int ms) { progressDelayMs_ = ms; }
    // The progress dialog while it shows, else nullptr.
    QProgressDialog* progressDialog() const { return dialog_; }

signals:
    void busyChanged(bool busy);
    // After every command, before `done`.
    void finished(const QString& action);

private:
    void begin();
    void end(const ActionResult& result);
    void tick();
    void jobDone();

    Workspace& workspace_;
    QWidget* window_;
    bool busy_ = false;
    bool inline_ = false;
    int progressDelayMs_ = 500;
    std::string action_;
    Done done_;
    std::unique_ptr<OperationJob> job_;
    std::thread worker_;
    QTimer* poll_;
    QProgressDialog* dialog_ = nullptr;
    QElapsedTimer since_;
};

}  // namespace orv
