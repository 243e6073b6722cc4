// The action table: every command of the program, one row each, with its caption, shortcut
// and hints, how it runs, the rule that enables it, and for the operations the record they
// read and how its fields feed the sound (operation.h). The desktop program builds its
// menus and tool bars from this table; the command line runs the same actions by name
// (Workspace::runAction). It is the only list of operations: the rows live with their
// feeds, one file per menu (actions_*.cpp), and actionTable() joins them.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "document/operation.h"

namespace orv {

class TUnitWave;

// How an action runs.
enum class ActionFlow : std::uint8_t {
    Inert,      // no handler
    File,       // new, open, save, save as, properties, exit
    Operation,  // a parameter record, then undo snapshot, operation, changed
    Edit,       // undo snapshot, operation on the part, changed (no record)
    Clipboard,  // copy and clear clipboard: no undo snapshot
    Document,   // undo, forget undo, register, duplicate
    Front,      // needs the desktop program: playing, views, zoom, drawing, windows, help
};

// When an action is enabled. D: a freehand drawing runs in the active window; n: the
// samples of its wave; part: something is selected; clip: the clipboard holds a sound.
enum class EnableRule : std::uint8_t {
    Never,           // no handler
    Free,            // always, also without a wave window
    Player,          // something plays, records or pauses
    Pause,           // always; checked while paused or while a pause is pending
    NotDrawing,      // not D
    MaySave,         // the document may be saved
    HasSamples,      // n > 0
    Playable,        // play and record possible, n > 0
    Recordable,      // play and record possible, n = 0
    Samples,         // not D and n > 0
    Part,            // not D and n > 0 and part
    ClipInto,        // not D and clip
    ClipSwap,        // not D and n > 0 and clip
    ClipFull,        // clip
    Zoomed,          // not D and n > 0 and zoomed
    ViewWave,        // a window; checked while it shows the waveform
    ViewVold,        // not D; checked while it shows the Vold picture
    SeveralWindows,  // more than one window
    Stereo,          // the wave is stereo
    SplitPart,       // the part lies strictly inside the wave
    DrawLinear,      // D, or an empty mono waveform; checked while drawing linearly
    DrawSmooth,      // as DrawLinear; checked while drawing smoothly
    Window,          // a wave window is active
    StereoSamples,   // not D and n > 0 and stereo
    MonoSamples,     // not D and n > 0 and mono
};

// What an action may do while a job computes.
enum class DuringJob : std::uint8_t {
    Blocked,      // nothing that would change or read what the job works on
    Allowed,      // viewing, the player, help
    OtherWindow,  // only on a window other than the job's (play)
};

struct ActionDef {
    std::string_view name;
    std::string_view category;
    std::string_view caption;
    std::string_view shortcut;  // "Ctrl+N", "Shift+Alt+D", "P"; empty: none
    std::string_view shortHint;
    std::string_view longHint;
    ActionFlow flow = ActionFlow::Inert;
    EnableRule rule = EnableRule::Never;
    // The caption of the dialog a parameter-driven action shows, or empty.
    std::string_view form;
    // Operation, Edit and copy rows: how they prepare their job; nullptr otherwise.
    const OperationDef* operation = nullptr;
    DuringJob duringJob = DuringJob::Blocked;
};

// Every action, in menu order within each category.
std::span<const ActionDef> actionTable();
// The action of that name (exact), or nullptr.
const ActionDef* findAction(std::string_view name);

// The form of every record an action reads, once each, in table order, followed by the
// form of one entry of the multi-frequency list.
std::vector<const FormSpec*> operationFormSpecs();

// The rows of one menu (each actions_*.cpp defines one), in the order actionTable() joins
// them.
std::span<const ActionDef> fileActions();
std::span<const ActionDef> windowActions();
std::span<const ActionDef> generatorActions();
std::span<const ActionDef> editActions();
std::span<const ActionDef> effectActions();
std::span<const ActionDef> complexActions();
std::span<const ActionDef> filterActions();
std::span<const ActionDef> helpActions();

// The active window as the enabling rules see it.
struct WindowState {
    const TUnitWave* unit = nullptr;  // null: no wave window is active
    bool drawing = false;             // a freehand drawing runs
    bool smoothDrawing = false;       // ... of the smooth kind
    bool showsVold = false;           // the window shows the Vold picture
    int zoomFactor = 0;
};

struct ActionContext {
    WindowState active;
    int windowCount = 0;
    bool clipboardFull = false;
    bool playAndRecord = true;  // false for the run when the temporary folder is missing
    bool playerBusy = false;    // playing, recording or paused
    bool playChecked = false;   // what the player does, as the buttons show it
    bool pauseChecked = false;
    bool recordChecked = false;
    // A job computes (on the document jobUnit): only what cannot conflict is enabled.
    bool jobRunning = false;
    const TUnitWave* jobUnit = nullptr;
};

struct ActionStatus {
    bool enabled = false;
    bool checked = false;
    // Why a disabled action is disabled, in a user's words ("the wave has no samples").
    std::string_view reason;
};

// The enabling and checking rule of every action.
ActionStatus actionStatus(std::string_view name, const ActionContext& context);
ActionStatus actionStatus(const ActionDef& action, const ActionContext& context);

}  // namespace orv
