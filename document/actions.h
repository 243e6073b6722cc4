// The main frame's actions as data: name, category, caption, shortcut and hints, and the
// one function that says, from the state of the active window, which are enabled and
// checked. The desktop program builds its menus and tool bars from this table; the command
// line runs the same actions by name (Workspace::runAction).
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

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

struct ActionDef {
    std::string_view name;
    std::string_view category;
    std::string_view caption;
    std::string_view shortcut;  // "Ctrl+N", "Shift+Alt+D", "P"; empty: none
    std::string_view shortHint;
    std::string_view longHint;
    ActionFlow flow;
    // The record a parameter-driven action reads (the dialog's caption), or empty.
    std::string_view form;
};

// Every action, in menu order.
std::span<const ActionDef> actionTable();
// The action of that name (exact), or nullptr.
const ActionDef* findAction(std::string_view name);

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
};

struct ActionStatus {
    bool enabled = false;
    bool checked = false;
};

// The enabling and checking rule of every action.
ActionStatus actionStatus(std::string_view name, const ActionContext& context);

}  // namespace orv
