// TUnitWave: one wave document. The sound the user edits in one window, with the file it
// came from, the sample width it is saved with, its registered name, its edit state, its
// cursor and selection, its cancel flag, and the parameters every operation dialog last
// used on it.
//
// Ownership: the unit shares TheSound with the undo record (undo_unit.h) and with jobs that
// read it; a sound is deleted when the last of them lets go. Operations never change the
// sound they run on: they make a new one, the unit takes it, and the old one stays with
// the undo record.
//
// Ranges the operations work on (choices of this program):
//   - effects, filters, echoes, reverse, max volume, copy, cut, delete: the selection, or
//     the whole wave when nothing is selected (selBegin()/selEnd() give exactly that);
//   - generators (silence, line, block, triangle, sinus, noise, multi frequency) and
//     paste: replace the selection, or insert at the cursor when nothing is selected;
//   - mix with the clipboard: over the selection, or from the cursor on (the whole
//     clipboard) when nothing is selected.
//
// A cancelled operation (the flag set by another thread, or by an allocation failure)
// throws its result away and leaves sound, cursor, selection and state as they were; the
// record it was given is still remembered, so the dialog reopens with what was typed.
#pragma once

#include <array>
#include <memory>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/cancel.h"
#include "core/sound.h"
#include "document/record_form.h"
#include "document/records.h"
#include "document/tag.h"

namespace orv {

class TUnitWave;

// The window that shows a unit, as the unit sees it. Positions are samples.
class WaveView {
public:
    virtual ~WaveView() = default;
    // The samples [begin, end) changed how they look (their selected state).
    virtual void repaint(std::int32_t begin, std::int32_t end) = 0;
    // Everything may have changed (a new sound).
    virtual void repaintAll() = 0;
    virtual void moveCursor(std::int32_t pos) = 0;
    // Bring [begin, end) into sight.
    virtual void showRange(std::int32_t begin, std::int32_t end) = 0;
    // The main frame's status bar should show this unit again.
    virtual void refreshStatus(const TUnitWave& unit) = 0;
    // The unit is being destroyed (a split or a merge replaced it): forget it, touch nothing
    // of it.
    virtual void unitGone() {}
};

// What a unit needs from the place that keeps all units (the workspace): the registered
// waves by name, and being told when a unit goes away (it may own the undo record).
class UnitHost : public WaveNameLookup {
public:
    // The sound of the registered wave `name` (shared, so that a job can keep reading it
    // after the wave changed or closed), or nullptr.
    virtual std::shared_ptr<const Sound> soundByName(std::string_view name) const = 0;
    virtual void unitDestroyed(TUnitWave& unit) = 0;
};

enum UnitState : std::uint8_t { kStateNew = 0, kStateSaved = 1, kStateChanged = 2 };

inline constexpr std::string_view kNoName = "NONAME";
inline constexpr std::string_view kSaveErrorCaption = "Save Error";
inline constexpr std::string_view kSaveErrorText = "Cannot save the wave.";

// The 26 remembered parameter records of a unit (and of the main frame), one per dialog
// use; block and triangle, resonant and notch, high and low each have their own.
struct UnitRecords {
    VolumeRecord volume;
    SilenceRecord silence;
    LineRecord line;
    NoiseRecord noise;
    RotateRecord rotate;
    BlockRecord block;
    BlockTriangleRecord makeBlock;
    BlockTriangleRecord makeTriangle;
    SinusRecord sinus;
    RollInRecord rollIn;
    UpRecord up;
    LeftRightRecord leftRight;
    ResNotchRecord resonant;
    ResNotchRecord notch;
    PerEchoRecord perEcho;
    HighLowRecord highFilter;
    HighLowRecord lowFilter;
    BlockFilterRecord blockFilter;
    BalanceRecord balance;
    MixRecord mix;
    TempoPitchRecord tempoPitch;
    RollOutRecord rollOut;
    LengthRecord length;
    RandomEchoRecord randomEcho;
    DistortRecord distort;
    MFreqRecord mfreq;
};

// Status bar panels 2 .. 7 (index 0 here is panel 2).
using UnitStatus = std::array<std::string, 6>;

class TUnitWave {
public:
    // A new empty unit; asserts the channel count and sample width are 1 or 2.
    TUnitWave(std::string_view fileName, const WaveFileProps& waveFileProps);
    // A unit around a sound already read from `fileName` (adopted); state Saved.
    TUnitWave(SoundPtr sound, std::uint16_t bytesPSample, std::string_view fileName);
    ~TUnitWave();
    TUnitWave(const TUnitWave&) = delete;
    TUnitWave& operator=(const TUnitWave&) = delete;

    // ---- state ----------------------------------------------------------------------
    void setChanged();  // Saved -> Changed; New and Changed stay
    void setNew() { state = kStateNew; }
    void setSaved() { state = kStateSaved; }
    void saveAs(std::string_view newFileName);  // new name, Saved
    bool isNew() const { return state == kStateNew; }
    bool needsSave() const;  // values != 0 and not Saved
    std::uint8_t getState() const { return state; }

    // ---- sound and properties ---------------------------------------------------------
    Sound* getSound() const { return TheSound.get(); }
    const std::shared_ptr<Sound>& soundRef() const { return TheSound; }
    // Puts `newSound` in and hands the previous one back.
    std::shared_ptr<Sound> swapSound(std::shared_ptr<Sound> newSound);
    std::int32_t getFreq() const { return TheSound->Freq; }
    std::uint16_t getMonoStereo() const { return TheSound->MoSt; }
    std::uint16_t getBytesPSample() const { return BytesPSample; }
    void setBytesPSample(std::uint16_t bytes);  // asserts 1 or 2
    std::int32_t values() const { return TheSound->GetValues(); }
    double lengthSeconds() const;
    double selectionSeconds() const;
    std::int64_t sizeInBytes() const;
    const std::string& getName() const { return name; }
    void setName(std::string_view newName) { name = newName; }
    const std::string& getFileName() const { return fileName; }
    void setView(WaveView* v) { view = v; }
    WaveView* getView() const { return view; }
    void setHost(UnitHost* h) { host = h; }
    UnitHost* getHost() const { return host; }

    // ---- cancel flag --------------------------------------------------------------------
    CancelFlag& cancelFlag() { return *cancel; }
    const std::shared_ptr<CancelFlag>& sharedCancelFlag() const { return cancel; }
    bool cancelled() const { return isCancelled(*cancel); }
    void clearCancel() { cancel->store(0); }

    // ---- cursor and selection (positions clamped to 0 .. values) -------------------------
    std::int32_t getCursor() const { return cursor; }
    std::int32_t getSelEndPos() const { return selEndPos; }
    bool hasSelection() const { return cursor != selEndPos; }
    std::int32_t selBegin() const;  // 0 without a selection
    std::int32_t selEnd() const;    // values without a selection
    void setCursorOnly(std::int32_t pos);
    void setCursor(std::int32_t pos);  // nothing selected
    void setSelEnd(std::int32_t pos);
    // Asserts begin <= end; the anchor (cursor) stays on the side it was on.
    void setSelection(std::int32_t begin, std::int32_t end);
    // Shows [begin, end), then selects it, or places the cursor when it is empty.
    void selectRange(std::int32_t begin, std::int32_t end);

    // ---- saving -------------------------------------------------------------------------
    // Each shows "Cannot save the wave." under "Save Error" on failure and returns false;
    // none of them changes the state or the file name (the commands do that on success).
    bool save(const std::string& toFile, bool temp);
    bool save(bool temp);
    bool saveSelection(const std::string& toFile, bool temp);
    // Reads "file", "temp", "begin" (0) and "end" (values) and writes.
    bool writeRequest(const TagList& request);

    // ---- status bar ----------------------------------------------------------------------
    UnitStatus statusTexts() const;
    static std::string sizeText(double bytes);
    static std::string freqText(std::int32_t freq);
    static std::string stateText(std::uint8_t state);

    // ---- remembered parameter records -----------------------------------------------------
    UnitRecords& records() { return records_; }
    const UnitRecords& records() const { return records_; }
    void setRecords(const UnitRecords& all) { records_ = all; }
    // The multi-frequency records; asserts "index < freqCount".
    int freqCount() const;
    const FrequencyRecord& mFreqBrowseRecord(int index) const;

    // ---- taking the result of an operation (user-interface thread) ----------------------
    // The unit holds `made` from now on (the old sound stays with whoever else holds it,
    // the undo record), selects the made range [begin, end) and repaints.
    void takeResult(std::shared_ptr<Sound> made, std::int32_t begin, std::int32_t end);
    // The same for a conversion of the file properties: the new sample width, and cursor
    // and selection moved by `scale` so that they keep their place in time.
    void takeConverted(std::shared_ptr<Sound> made, std::uint16_t bytesPSample, double scale);

private:
    friend class TUndoUnit;

    std::int32_t clamp(std::int32_t pos) const;
    // Applies a cursor/selection change and updates the view.
    template <class Change>
    void changeSelection(Change&& change);

    std::uint8_t state;
    std::string fileName;
    std::uint16_t BytesPSample;
    WaveView* view = nullptr;
    std::string name;
    // Shared: the undo record and a running job may hold it too; whoever lets go last
    // deletes it.
    std::shared_ptr<Sound> TheSound;
    std::int32_t cursor = 0;
    std::int32_t selEndPos = 0;
    // Shared with a job that computes for this unit, so that it outlives a closed window.
    std::shared_ptr<CancelFlag> cancel = std::make_shared<CancelFlag>(0);
    UnitRecords records_;
    UnitHost* host = nullptr;
};

// The parts of the wave whose selected state changed between the old range [ob, oe) and
// the new [nb, ne): up to four ranges, reported in order through `repaint`.
template <class Repaint>
void repaintChangedRanges(std::int32_t ob, std::int32_t oe, std::int32_t nb, std::int32_t ne,
                          Repaint&& repaint) {
    if (ob > nb && oe > nb) repaint(nb, oe < ob ? oe : ob);
    if (oe < ne && ne > nb) repaint(nb > oe ? nb : oe, ne);
    if (ob < nb && oe > ob) repaint(ob, nb < oe ? nb : oe);
    if (oe > ne && oe > ob) repaint(ne > ob ? ne : ob, oe);
}

template <class Change>
inline void TUnitWave::changeSelection(Change&& change) {
    const std::int32_t ob = selBegin(), oe = selEnd(), oc = cursor;
    change();
    if (!view) return;
    if (values() != 0)
        repaintChangedRanges(ob, oe, selBegin(), selEnd(),
                             [this](std::int32_t b, std::int32_t e) { view->repaint(b, e); });
    view->refreshStatus(*this);
    if (cursor != oc) view->moveCursor(cursor);
}

}  // namespace orv
