// TMainForm: the program's one main window. It holds the workspace (the open documents, the
// undo slot, the clipboard, the registered names), shows one child window per document in
// an MDI area, and turns every row of the action table into a QAction with its caption,
// shortcut and hints, in the menus and the named tool bars. Which actions are enabled and
// checked comes from the document layer's rule, recomputed whenever the state changes and
// on idle; the status bar shows the active document.
//
// Commands run through the CommandRunner; a dialog-driven command first shows its dialog
// (dialogs/) filled from the document's remembered record.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>
#include <QRect>
#include <QStringList>

#include "app/audio_player.h"
#include "app/background_task.h"
#include "app/command_runner.h"
#include "app/help_window.h"
#include "app/recent_files.h"
#include "document/player_flow.h"
#include "document/records_view.h"
#include "document/records_vold.h"
#include "document/workspace.h"

class QAction;
class QLabel;
class QLineEdit;
class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QTimer;
class QToolBar;

namespace orv {

class TMDIChildWave;
class NameEditFilter;
struct SelZoomRequest;

class TMainForm final : public QMainWindow {
    Q_OBJECT
public:
    // The questions the frame asks; the defaults show Qt's file dialogs and message boxes,
    // tests answer them instead.
    struct Prompts {
        std::function<QStringList()> openFiles;                 // WAV files to open
        std::function<QString(const QString& current)> saveFile;  // a WAV file to save as
        std::function<QString()> importFile;
        std::function<QString(const QString& current)> exportFile;
        // Yes, No or Cancel.
        std::function<QMessageBox::StandardButton(const QString& caption, const QString& text)>
            question;
    };

    static constexpr std::array<int, 8> kPanelWidths{300, 160, 75, 70, 20, 24, 65, 60};
    static constexpr const char* kTitle = "Orvasto ";

    explicit TMainForm(QWidget* parent = nullptr);
    ~TMainForm() override;

    Workspace& workspace() { return workspace_; }
    CommandRunner& runner() { return *runner_; }
    // Import and export run here.
    BackgroundTask& task() { return *task_; }
    Prompts& prompts() { return prompts_; }

    // The QAction of a row of the action table (named after it), or nullptr.
    QAction* action(std::string_view name) const;
    QMdiArea* mdiArea() const { return mdi_; }
    QLabel* panel(int index) const { return panels_[std::size_t(index)]; }
    QLineEdit* editName() const { return editName_; }
    bool nameEditing() const { return nameEditing_; }
    QMenu* recentMenu() const { return recentMenu_; }
    HelpWindow* helpWindow() const { return help_; }
    // The media player and the play/record flow; null when the temporary folder is missing.
    AudioPlayer* audioPlayer() const { return audio_.get(); }
    PlayerFlow* playerFlow() const { return flow_.get(); }

    // The window of a document, or nullptr.
    TMDIChildWave* childOf(const TUnitWave* unit) const;

    // Opens WAV files (command line, drop, recent files); each failure shows its message.
    void openFiles(const QStringList& files);
    // Enabling and checking of every action, the status bar, the title and the name field.
    void updateActions();

    // Help: the page of a help context, the contents, the search field, help on help.
    void showHelp(int context);
    void showHelpContents();
    void showHelpSearch();
    void showHelpOnHelp();
    void showAbout();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildActions();
    void buildMenus();
    void buildToolBars();
    void buildStatusBar();
    void makeTempFolder();

    // ---- play and record (main_form_player.cpp) ------------------------------------------------
    void startPlayer(const std::string& folder);
    void stopPlayer();
    // FilePlay, FileStop, FilePause, FileRecord.
    void playerCommand(std::string_view name);
    // The player's end notification.
    void playerNotified();
    // Moves the play cursor to what is being heard, once a screen frame while sound plays.
    void followPlay();
    void defaultPrompts();
    void rebuildRecentMenu();

    // What an action does (the handlers).
    void execute(std::string_view name);
    void run(std::string_view name, const CommandInput& input = {});
    void afterCommand();
    void fileNew();
    void wavePropertiesDialog(const WaveFileProps& start, std::string_view command);
    void fileProperties();
    bool saveUnit(TUnitWave& unit, bool askName);
    void registerDialog();
    void operationDialog(std::string_view name);
    void multiFrequencyDialog();
    void importFile();
    void exportFile();
    void connectHelp(QObject* dialog);

    // ---- the view actions (main_form_commands.cpp) ------------------------------------------
    // ViewWave: the "Wave View" dialog over the active window's settings, then the window
    // shows the waveform again.
    void viewWaveDialog();
    // ViewVold: the "Volume Diagram" dialog over the active window's Vold settings, then
    // that window shows the diagram.
    void viewVoldDialog();
    // ZoomIn and NoZoom on the active window.
    void zoomActive(bool in);
    // SelectWave: shows the "Select and Zoom" dialog, or hides it when it shows.
    void toggleSelectAndZoom();
    // What its "Apply" asks of the active window.
    void applySelectAndZoom(const SelZoomRequest& request);
    // DrawWaveLin / DrawWave3G: starts, switches or ends the freehand drawing; the drawn wave
    // becomes the document's (undoable) when the drawing ends.
    void drawWave(bool smooth);
    // -------------------------------------------------------------------------------------

    // Child windows follow the documents of the workspace.
    void syncWindows();
    // ---- arranging (main_form_arrange.cpp) --------------------------------------------------
    // How the windows lay before a split or a merge, and the display settings of the window
    // its new windows look like (the source's; a merge's choice of "First" or "Last").
    struct Arrangement {
        std::map<const TUnitWave*, QRect> bounds;
        bool hasLook = false;
        WaveViewRecord settings;
        VoldViewRecord voldSettings;
    };
    Arrangement arrangementFor(std::string_view command, const CommandInput& input) const;
    // After a split or a merge: the windows of the new documents take the place of the
    // windows that went, and the chosen look.
    void placeMadeWindows(std::string_view command, const Arrangement& before);
    void subWindowActivated(QMdiSubWindow* window);
    bool closeGuard(TMDIChildWave& child);
    void childClosed(TMDIChildWave* child);

    // The name field.
    void beginNameEdit();
    void endNameEdit();
    void takeName();

    Workspace workspace_;
    CommandRunner* runner_;
    BackgroundTask* task_;
    Prompts prompts_;
    RecentFiles recent_;
    QMdiArea* mdi_;
    std::map<std::string, QAction*, std::less<>> actions_;
    std::array<QLabel*, 8> panels_{};
    QLineEdit* editName_ = nullptr;
    bool nameEditing_ = false;
    NameEditFilter* nameFilter_ = nullptr;
    QMenu* recentMenu_ = nullptr;
    QTimer* idle_ = nullptr;
    QPointer<HelpWindow> help_;

    // Destroyed in this order: the flow, then the player it drives.
    std::unique_ptr<AudioPlayer> audio_;
    std::unique_ptr<PlayerFlow> flow_;
    QTimer* playClock_ = nullptr;
    QPointer<TMDIChildWave> playCursorChild_;
};

}  // namespace orv
