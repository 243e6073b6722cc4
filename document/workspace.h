// The main frame's state without any window: the open documents and the active one, the
// undo slot, the clipboard sound, the registered names, the frame's own parameter records,
// and the commands that work on them. Both front ends (the desktop program and
// orvasto-cli) drive a Workspace; runAction runs an action of the table by its name.
//
// Messages: every user error is shown through showMessage (core/platform.h) with its
// caption, exactly as the desktop program shows it in a message box, and the result of
// runAction repeats it so that a caller can pick an exit status.
//
// Undo and cancel: a changing command takes the undo snapshot before it runs; when the
// command is cancelled the document keeps its sound, cursor, selection and state, and the
// undo slot gets back the snapshot it held before the command (so undo still undoes the
// last change that happened).
//
// Clipboard: copy, cut, swap and extract put the part (the selection, or the whole wave
// when nothing is selected) into the clipboard with the document's sample width; paste
// replaces the selection or inserts at the cursor; mix works over the selection, or from
// the cursor on. Paste and swap refuse a clipboard of another sample width.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/sound.h"
#include "document/actions.h"
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
    const Sound* soundByName(std::string_view name) const override;
    void unitDestroyed(TUnitWave& unit) override;
    bool undoHolds(const Sound* sound) const override;

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
    ActionStatus status(std::string_view action) const;

    // Runs an action on the active document. Parameter-driven actions start from the
    // document's remembered record and apply `fields` ("Caption=Value" pairs, as
    // record_form.h reads them) in order; file actions take their file name from a field
    // "File" (FileOpenWave, FileSaveAs, and FileSave of a wave that was never saved).
    // The cancel flag of the document is cleared before the command starts.
    ActionResult runAction(std::string_view name, const TypedFields& fields = {});

    // The form an action reads, over the active document's remembered record (for
    // listings); nullptr when the action has none or no document is active.
    std::unique_ptr<FormView> actionForm(std::string_view name);

    // Raises the active document's cancel flag (any thread).
    void requestCancel();

private:
    // The operation flow around one call of the document (snapshot, run, changed or
    // rolled back).
    template <class Run>
    ActionResult changeDocument(TUnitWave& unit, Run&& run);
    ActionResult runOperation(const ActionDef& def, TUnitWave& unit, const TypedFields& fields);
    ActionResult runEdit(const ActionDef& def, TUnitWave& unit);
    ActionResult runFile(const ActionDef& def, const TypedFields& fields);
    ActionResult runDocument(const ActionDef& def, const TypedFields& fields);
    ActionResult refuse(ActionResult::Kind kind, std::string_view caption, std::string_view text,
                        bool show = true);
    FormContext formContext(const TUnitWave& unit) const;
    // Every parameter-driven action of a document: its remembered record and operation.
    template <class R>
    ActionResult operate(TUnitWave& unit, R UnitRecords::*slot, bool (TUnitWave::*op)(const R&),
                         const TypedFields& fields);

    std::vector<std::unique_ptr<TUnitWave>> documents_;
    TUnitWave* active_ = nullptr;
    std::unique_ptr<TUndoUnit> undo_;
    SoundPtr ClipBoardSound;
    std::uint16_t clipBytesPSample_ = 2;
    UnitRecords frameRecords_;
    WindowState window_;
    bool playAndRecord_ = true;
    bool closing_ = false;
    std::string lastError_;  // the text of the last refusal shown
};

template <class Run>
ActionResult Workspace::changeDocument(TUnitWave& unit, Run&& run) {
    unit.clearCancel();
    std::unique_ptr<TUndoUnit> previous = makeUndo(unit);
    if (!run()) {
        // Nothing changed: the snapshot taken for this command shares the unit's sound and
        // goes without deleting anything; the one from before comes back.
        const bool cancelled = unit.cancelled();
        undo_ = std::move(previous);
        if (cancelled) return {ActionResult::Kind::Cancelled, "", ""};
        return {ActionResult::Kind::Nothing, "", ""};
    }
    // The older snapshot may share the sound the new one keeps (a snapshot taken without an
    // operation after it); that sound is not its to delete any more.
    if (previous && undo_ && previous->sound() == undo_->sound()) previous->disown();
    previous.reset();
    unit.setChanged();
    if (WaveView* view = unit.getView()) view->refreshStatus(unit);
    return {};
}

}  // namespace orv
