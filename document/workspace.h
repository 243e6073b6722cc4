// The main frame's state without any window: the open documents and the active one, the
// undo slot, the clipboard sound, the registered names, the frame's own parameter records,
// and the commands that work on them. Both front ends (the desktop program and
// orvasto-cli) drive a Workspace; runAction runs an action of the table by its name.
//
// Messages: every user error is shown through showMessage (core/platform.h) with its
// caption, exactly as the desktop program shows it in a message box, and the result of
// runAction repeats it so that a caller can pick an exit status.
//
// Commands that compute run as jobs (job.h, operation.h): prepareAction reads the input and
// pins what the job reads, the caller computes the job on a thread of its choice, and
// commit hands the result to the document. runAction does the three in a row (the command
// line). While a job is out, the enabling rules let only what cannot conflict with it run.
//
// Undo and cancel: the undo snapshot of a changing command is taken when its result is
// committed, from the state the document had when the job was prepared; a cancelled job
// leaves the document's sound, cursor, selection and state, and the undo slot, exactly as
// they were (so undo still undoes the last change that happened).
//
// Clipboard: copy, cut, swap and extract put the part (the selection, or the whole wave
// when nothing is selected) into the clipboard with the document's sample width; paste
// replaces the selection or inserts at the cursor; mix works over the selection, or from
// the cursor on. Paste and swap refuse a clipboard of another sample width.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/sound.h"
#include "document/actions.h"
#include "document/job.h"
#include "document/player_flow.h"
#include "document/record_form.h"
#include "document/register_check.h"
#include "document/undo_unit.h"
#include "document/unit_wave.h"

namespace orv {

struct ActionResult {
    enum class Kind : std::uint8_t {
        Done,         // the action ran
        Nothing,      // nothing to do (no active document, no undo snapshot)
        Cancelled,    // the cancel flag stopped the operation; nothing changed
        Unknown,      // no action of that name
        Disabled,     // not enabled in the present state
        NeedsWindow,  // only the desktop program can run it (playing, views, drawing ...)
        InputError,   // a field was refused ("Input Error" / "Usage Error")
        Refused,      // a user error: name in use, file not read or not saved ...
    };
    Kind kind = Kind::Done;
    std::string caption;  // the message box caption, empty when none was shown
    std::string text;     // the message text
    bool ok() const { return kind == Kind::Done || kind == Kind::Nothing; }
};

// A prepared command: either it already ran (or was refused) and `result` says how, or it
// left a job to compute and to hand to Workspace::commit.
struct PreparedAction {
    ActionResult result;
    std::unique_ptr<OperationJob> job;
};

inline constexpr std::string_view kFileErrorCaption = "File Error";
// Paste and swap keep the wave's sample width; the clipboard must have the same one.
inline constexpr std::string_view kClipboardWidthMessage =
    "The clipboard holds samples of another width than this wave.";
// The opening of the message for a file that cannot be read; then "\"name\", " and the
// reader's message.
inline constexpr std::string_view kCannotReadFile = "Cannot read the file: ";

class Workspace final : public UnitHost {
public:
    // Makes the shared sine table if it is not there yet.
    Workspace();
    ~Workspace() override;
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    // ---- documents ------------------------------------------------------------------
    // Takes a document made elsewhere (a sound built by the caller), made active.
    TUnitWave& add(std::unique_ptr<TUnitWave> unit);
    // New empty document "NONAME", made active.
    TUnitWave& newWave(const WaveFileProps& props);
    // Reads the file into a new active document; on failure shows "Cannot read the file:
    // \"name\", <reason>" under "File Error" and returns nullptr.
    TUnitWave* openWave(const std::string& fileName);
    // "NONAME" copy of the sound and properties, made active; nullptr when cancelled.
    TUnitWave* duplicate(TUnitWave& unit);
    // Writes the document; Saved (and the new name) only after a successful write.
    bool save(TUnitWave& unit);
    bool saveAs(TUnitWave& unit, const std::string& fileName);
    // Closes the window of `unit`: forgets the undo snapshot if it is the unit's.
    void close(TUnitWave& unit);
    // The documents the last split or merge made, in order (the desktop program places a
    // window for each); their sources are closed.
    const std::vector<TUnitWave*>& lastMade() const { return lastMade_; }

    const std::vector<std::unique_ptr<TUnitWave>>& documents() const { return documents_; }
    TUnitWave* active() const { return active_; }
    void setActive(TUnitWave* unit);  // must be one of documents(), or nullptr

    // ---- names ---------------------------------------------------------------------
    // Gives `unit` the name; the empty name unregisters it. A name another document bears
    // is refused with "A wave with name \"x\" already exists." under "Error".
    bool registerName(TUnitWave& unit, std::string_view name);
    TUnitWave* findByName(std::string_view name) const;  // registered names only
    bool waveExists(std::string_view name) const override;
    std::vector<std::string> waveNames() const override;
    std::shared_ptr<const Sound> soundByName(std::string_view name) const override;
    void unitDestroyed(TUnitWave& unit) override;

    // ---- undo ----------------------------------------------------------------------
    // Replaces the snapshot with one of `unit`; hands the previous one back.
    std::unique_ptr<TUndoUnit> makeUndo(TUnitWave& unit);
    void forgetUndo();
    // Restores the snapshot into its document; false when there is none.
    bool undo();
    const TUndoUnit* undoRecord() const { return undo_.get(); }

    // ---- clipboard -----------------------------------------------------------------
    bool hasClipboard() const { return ClipBoardSound != nullptr; }
    const Sound& clipboard() const;  // asserts "ClipBoardSound != 0"
    std::uint16_t clipboardBytesPSample() const { return clipBytesPSample_; }
    void setClipboard(SoundPtr sound, std::uint16_t bytesPSample);
    void clearClipboard();  // asserts "ClipBoardSound != 0"

    // ---- the frame's records (the last parameters of each operation on any wave) -----
    UnitRecords& frameRecords() { return frameRecords_; }

    // ---- actions ---------------------------------------------------------------------
    // The state the enabling rules read; window-only parts (drawing, view, zoom, window
    // count, player) are the front end's to fill in, the rest comes from here.
    ActionContext actionContext() const;
    void setWindowState(const WindowState& extra) { window_ = extra; }
    void setPlayAndRecord(bool on) { playAndRecord_ = on; }
    // The player whose state the enabling rules show (the desktop program's), or nullptr.
    // A document that closes is forgotten by it (a recording into it stops).
    void setPlayer(PlayerFlow* player) { player_ = player; }
    ActionStatus status(std::string_view action) const;

    // Runs an action on the active document, computing on the calling thread. Parameter-
    // driven actions start from the document's remembered record and apply `fields`
    // ("Caption=Value" pairs, as record_form.h reads them) in order; file actions take their
    // file name from a field "File" (FileOpenWave, FileSaveAs, and FileSave of a wave that
    // was never saved). The cancel flag of the document is cleared before the command starts.
    ActionResult runAction(std::string_view name, const TypedFields& fields = {});

    // The first step alone, with typed fields or with the state of a dialog that was
    // accepted (read as it stands: what the user typed reaches the operation unrounded).
    // Commands that do not compute run here and come back as the result.
    PreparedAction prepareAction(std::string_view name, const TypedFields& fields = {});
    PreparedAction prepareAction(std::string_view name, const FormState& accepted);
    // The last step (user-interface thread): the document takes what the job made, or stays
    // as it was when the job was cancelled, made nothing, or its document changed or closed
    // meanwhile.
    ActionResult commit(std::unique_ptr<OperationJob> job);
    // The job that was prepared and not yet committed, or nullptr.
    const OperationJob* runningJob() const { return running_; }

    // The form an action reads, over the active document's remembered record (for
    // listings and for filling a dialog); nullptr when the action has none or no document
    // is active.
    std::unique_ptr<FormView> actionForm(std::string_view name);
    // What accepting the dialog's state would say, without changing anything.
    std::optional<FormError> checkForm(std::string_view name, const FormState& state);
    // What a form of the active document reads with (the registered waves, its length).
    FormContext formContext() const;

    // Raises the cancel flag of the running job, or else of the active document (any thread).
    void requestCancel();

private:
    friend class OperationJob;
    // A job is destroyed (committed or dropped).
    void jobGone(const OperationJob* job);
    PreparedAction prepare(std::string_view name, const FormInput& input);
    PreparedAction prepareOperation(const ActionDef& def, TUnitWave& unit, const FormInput& input);
    ActionResult runFile(const ActionDef& def, const FormInput& input);
    ActionResult runDocument(const ActionDef& def, const FormInput& input);
    ActionResult splitOrMerge(const ActionDef& def, const FormInput& input);
    // Replaces `sources` by the made documents.
    void takeMade(std::vector<std::unique_ptr<TUnitWave>> made,
                  std::initializer_list<TUnitWave*> sources);
    ActionResult refuse(ActionResult::Kind kind, std::string_view caption, std::string_view text,
                        bool show = true);
    FormContext formContext(const TUnitWave& unit) const;
    bool isOpen(const TUnitWave* unit) const;

    std::vector<std::unique_ptr<TUnitWave>> documents_;
    TUnitWave* active_ = nullptr;
    std::unique_ptr<TUndoUnit> undo_;
    // Shared: a job that reads the clipboard keeps its contents alive.
    std::shared_ptr<const Sound> ClipBoardSound;
    std::uint16_t clipBytesPSample_ = 2;
    UnitRecords frameRecords_;
    WindowState window_;
    bool playAndRecord_ = true;
    bool closing_ = false;
    std::string lastError_;  // the text of the last refusal shown
    OperationJob* running_ = nullptr;
    PlayerFlow* player_ = nullptr;
    std::vector<TUnitWave*> lastMade_;
};

}  // namespace orv
