// The frame itself: actions, menus, tool bars, status bar, child windows, the name field and
// the enabling. The command handlers are in main_form_commands.cpp.
#include "app/main_form.h"

#include <algorithm>

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QMimeData>
#include <QStandardPaths>
#include <QStatusBar>
#include <QStatusTipEvent>
#include <QTimer>
#include <QToolBar>

#include "app/help_window.h"
#include "app/name_edit_filter.h"
#include "app/tool_icons.h"
#include "view/mdi_child_wave.h"

namespace orv {

namespace {

QString qs(std::string_view s) { return QString::fromUtf8(s.data(), qsizetype(s.size())); }

// Menus by category of the action table, in menu-bar order. Undo and its companions have no
// category: they open the Edit menu. A menu's mnemonic must not take an Alt key of the
// action table (Alt+F makes multi frequencies, Alt+E random echoes ...), so only menus with
// a free letter have one.
struct MenuDef {
    const char* title;
    std::vector<std::string_view> categories;
};
const std::vector<MenuDef>& menuDefs() {
    static const std::vector<MenuDef> menus{
        {"F&ile", {"File"}},
        {"Edit", {"", "Edit"}},
        {"View", {"WaveWindow"}},
        {"&Make", {"MakeWave"}},
        {"Effe&cts", {"SimpleWave"}},
        {"C&omplex", {"ComplexWave"}},
        {"Filter", {"Filter"}},
    };
    return menus;
}

// The tool bars: name, the title users see, and their buttons.
struct ToolBarDef {
    const char* name;
    const char* title;
    std::vector<std::string_view> actions;
    bool breakBefore;
};
const std::vector<ToolBarDef>& toolBarDefs() {
    static const std::vector<ToolBarDef> bars{
        {"ToolBarBasic", "Basic", {"FileNewWave", "FileOpenWave", "FileSave", "Undo"}, false},
        {"ToolBarName", "Name", {"Register"}, false},
        {"ToolBarPlayer", "Player", {"FilePlay", "FileStop", "FilePause", "FileRecord"}, false},
        {"ToolBarWaveView", "View",
         {"ViewWave", "ViewVold", "ZoomIn", "NoZoom", "SelectWave"}, false},
        {"ToolBarWaveMake", "Make",
         {"MakeSilence", "MakeLine", "MakeBlock", "MakeTriangle", "MakeSinus", "MakeNoise",
          "MakeMFreq", "DrawWaveLin", "DrawWave3G"}, true},
        {"ToolBarWaveEdit", "Edit",
         {"EditCut", "EditCopy", "EditPaste", "EditDelete", "EditTrim", "EditSwap",
          "EditExtract", "EditMix"}, false},
        {"ToolBarWaveSimple", "Effects",
         {"MaxVolume", "Volume", "Reverse", "Up", "Block", "RollOut", "Rotate", "RollIn",
          "Length", "Distort"}, false},
        {"ToolBarWaveComplex", "Complex",
         {"Balance", "MixLeftRight", "PerEcho", "RndEcho", "TempoPitch"}, false},
        {"ToolBarWaveFilter", "Filter",
         {"FilterBlock", "FilterLow", "FilterHigh", "FilterRes", "FilterNotch"}, false},
    };
    return bars;
}

}  // namespace

TMainForm::TMainForm(QWidget* parent) : QMainWindow(parent) {
    debugTrace("---- START --------------------------------------\n");
    setObjectName("TMainForm");
    setWindowTitle(kTitle);
    setWindowIcon(programIcon());
    setAcceptDrops(true);
    runner_ = new CommandRunner(workspace_, this, this);
    connect(runner_, &CommandRunner::busyChanged, this, [this] { updateActions(); });
    task_ = new BackgroundTask(this, this);
    connect(task_, &BackgroundTask::runningChanged, this, [this] { updateActions(); });

    mdi_ = new QMdiArea(this);
    mdi_->setObjectName("MDIArea");
    mdi_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    mdi_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(mdi_);
    connect(mdi_, &QMdiArea::subWindowActivated, this, &TMainForm::subWindowActivated);

    defaultPrompts();
    buildActions();
    buildMenus();
    buildToolBars();
    buildStatusBar();
    makeTempFolder();

    nameFilter_ = new NameEditFilter(nameEditing_, this);
    qApp->installEventFilter(nameFilter_);

    // The idle update: whatever changed without telling us is shown within a moment.
    idle_ = new QTimer(this);
    idle_->setInterval(250);
    connect(idle_, &QTimer::timeout, this, &TMainForm::updateActions);
    idle_->start();
    resize(1200, 760);
    updateActions();
}

TMainForm::~TMainForm() {
    stopPlayer();
    qApp->removeEventFilter(nameFilter_);
    delete help_;
    idle_->stop();
    // Windows go before the documents they show, and tell this frame nothing on their way.
    mdi_->disconnect(this);
    runner_->disconnect(this);
    // An import or export still under way is cancelled and waited for here.
    task_->disconnect(this);
    delete task_;
    for (QMdiSubWindow* sub : mdi_->subWindowList())
        if (auto* child = qobject_cast<TMDIChildWave*>(sub->widget())) {
            child->disconnect(this);
            child->detach();
        }
    delete mdi_;
    debugTrace("---- END ----------------------------------------\n");
}

QAction* TMainForm::action(std::string_view name) const {
    auto it = actions_.find(name);
    return it == actions_.end() ? nullptr : it->second;
}

void TMainForm::buildActions() {
    for (const ActionDef& def : actionTable()) {
        auto* a = new QAction(qs(def.caption), this);
        a->setObjectName(qs(def.name));
        if (!def.shortcut.empty())
            a->setShortcut(QKeySequence::fromString(qs(def.shortcut), QKeySequence::PortableText));
        if (!def.shortHint.empty()) a->setToolTip(qs(def.shortHint));
        a->setStatusTip(qs(def.longHint));
        a->setIcon(toolIcon(def.name, style()));
        a->setIconVisibleInMenu(false);
        const std::string name(def.name);
        connect(a, &QAction::triggered, this, [this, name] { execute(name); });
        addAction(a);  // shortcuts work whichever tool bar is hidden
        actions_.emplace(name, a);
    }
}

void TMainForm::buildMenus() {
    for (const MenuDef& m : menuDefs()) {
        QMenu* menu = menuBar()->addMenu(m.title);
        bool first = true;
        for (std::string_view category : m.categories) {
            if (!first) menu->addSeparator();
            first = false;
            for (const ActionDef& def : actionTable()) {
                if (def.category != category || def.flow == ActionFlow::Inert) continue;
                if (def.name == "FileExit") continue;  // placed last, below
                if (def.name == "FilePlay" || def.name == "Register") menu->addSeparator();
                menu->addAction(action(def.name));
            }
        }
        if (m.categories.front() == "File") {
            menu->addSeparator();
            QAction* import = menu->addAction("&Import...", this, &TMainForm::importFile);
            import->setObjectName("FileImport");
            actions_.emplace("FileImport", import);
            import->setStatusTip("Read a sound file of another kind (FLAC, Ogg, AIFF, 24-bit WAV ...)");
            QAction* exportAction = menu->addAction("E&xport...", this, &TMainForm::exportFile);
            exportAction->setObjectName("FileExport");
            exportAction->setStatusTip("Write the wave as a file of another kind");
            actions_.emplace("FileExport", exportAction);
            menu->addSeparator();
            recentMenu_ = menu->addMenu("Recent &Files");
            recentMenu_->setObjectName("RecentFiles");
            rebuildRecentMenu();
            menu->addSeparator();
            menu->addAction(action("FileExit"));
        }
    }
    // Arranging the windows, as desktop programs offer it.
    QMenu* windows = menuBar()->addMenu("Window");
    windows->setObjectName("WindowMenu");
    windows->addAction("&Tile", mdi_, &QMdiArea::tileSubWindows)->setStatusTip("Arrange the windows side by side");
    windows->addAction("&Cascade", mdi_, &QMdiArea::cascadeSubWindows)->setStatusTip("Arrange the windows one behind the other");
    windows->addAction("Close &All", mdi_, &QMdiArea::closeAllSubWindows)->setStatusTip("Close every window; unsaved waves ask first");
    QMenu* help = menuBar()->addMenu("&Help");
    QAction* contents = help->addAction("&Contents", this, &TMainForm::showHelpContents);
    contents->setObjectName("HelpContents");
    contents->setShortcut(QKeySequence(Qt::Key_F1));
    contents->setStatusTip("Show the contents of the help");
    QAction* search = help->addAction("&Search...", this, &TMainForm::showHelpSearch);
    search->setObjectName("HelpSearch");
    search->setStatusTip("Search the help for a word");
    QAction* onHelp = help->addAction("&Help on Help", this, &TMainForm::showHelpOnHelp);
    onHelp->setObjectName("HelpOnHelp");
    onHelp->setStatusTip("How to use the help");
    help->addSeparator();
    help->addAction(action("HelpAbout"));
}

void TMainForm::buildToolBars() {
    for (const ToolBarDef& def : toolBarDefs()) {
        if (def.breakBefore) addToolBarBreak();
        QToolBar* bar = addToolBar(def.title);
        bar->setObjectName(def.name);
        bar->setMovable(true);
        bar->setIconSize(QSize(22, 22));
        if (std::string_view(def.name) == "ToolBarName") {
            editName_ = new QLineEdit(bar);
            editName_->setObjectName("EditName");
            editName_->setPlaceholderText("name");
            editName_->setToolTip("The name of the wave: type it and press Enter");
            editName_->setMaximumWidth(140);
            editName_->installEventFilter(this);
            connect(editName_, &QLineEdit::returnPressed, this, &TMainForm::takeName);
            bar->addWidget(editName_);
        }
        for (std::string_view name : def.actions) bar->addAction(action(name));
    }
}

void TMainForm::buildStatusBar() {
    QStatusBar* bar = statusBar();
    bar->setSizeGripEnabled(true);
    for (std::size_t i = 0; i < panels_.size(); ++i) {
        auto* label = new QLabel(bar);
        label->setObjectName(QString("Panel%1").arg(i));
        label->setFixedWidth(kPanelWidths[i]);
        label->setFrameShape(QFrame::Panel);
        label->setFrameShadow(QFrame::Sunken);
        bar->addWidget(label);
        panels_[i] = label;
    }
}

void TMainForm::makeTempFolder() {
    const QString folder =
        QDir(QStandardPaths::writableLocation(QStandardPaths::TempLocation)).filePath("orvasto");
    // A folder that another user made is there but of no use to us.
    if (QDir().mkpath(folder) && QFileInfo(folder).isWritable()) {
        startPlayer(folder.toStdString());
        return;
    }
    showMessage("Error", ("Could not create directory \"" + folder +
                          "\". Play and Record disabled").toStdString());
    workspace_.setPlayAndRecord(false);
}

// ---- enabling, status bar, title ------------------------------------------------------------

void TMainForm::updateActions() {
    // The active window's drawing, view and zoom, as the rules read them.
    WindowState window;
    if (const TMDIChildWave* child = childOf(workspace_.active())) {
        window.drawing = child->drawing();
        window.smoothDrawing = child->smoothDrawing();
        window.showsVold = child->showsVold();
        window.zoomFactor = child->zoomFactor();
    }
    workspace_.setWindowState(window);
    const ActionContext context = workspace_.actionContext();
    // While a job computes the rules themselves leave only what cannot conflict with it.
    for (const ActionDef& def : actionTable()) {
        QAction* a = action(def.name);
        const ActionStatus st = actionStatus(def, context);
        a->setEnabled(st.enabled);
        if (st.checked) a->setCheckable(true);
        if (a->isCheckable()) a->setChecked(st.checked);
    }
    const bool jobOut = context.jobRunning;
    // One import or export at a time; beside a job neither starts.
    const bool taskOut = jobOut || task_->running();
    if (QAction* exportAction = action("FileExport"))
        exportAction->setEnabled(!taskOut && workspace_.active() && workspace_.active()->values() > 0);
    if (QAction* importAction = action("FileImport")) importAction->setEnabled(!taskOut);

    TUnitWave* unit = workspace_.active();
    if (unit) {
        const UnitStatus texts = unit->statusTexts();
        for (std::size_t i = 0; i < texts.size(); ++i)
            panels_[i + 2]->setText(QString::fromStdString(texts[i]));
    } else {
        // The last state text stays.
        for (int i = 2; i <= 6; ++i) panels_[std::size_t(i)]->clear();
    }
    TMDIChildWave* child = childOf(unit);
    setWindowTitle(QString(kTitle) + (child ? child->title() : QString()));
    if (!nameEditing_) {
        const QString name = unit ? QString::fromStdString(unit->getName()) : QString();
        if (editName_->text() != name) editName_->setText(name);
        editName_->setEnabled(unit != nullptr);
    }
}

bool TMainForm::event(QEvent* event) {
    // Hints go into the first panel, leaving the document's panels in place.
    if (event->type() == QEvent::StatusTip) {
        panels_[0]->setText(static_cast<QStatusTipEvent*>(event)->tip());
        return true;
    }
    return QMainWindow::event(event);
}

// ---- child windows --------------------------------------------------------------------------

TMDIChildWave* TMainForm::childOf(const TUnitWave* unit) const {
    if (!unit) return nullptr;
    for (QMdiSubWindow* sub : mdi_->subWindowList())
        if (auto* child = qobject_cast<TMDIChildWave*>(sub->widget()))
            if (child->unit() == unit) return child;
    return nullptr;
}

void TMainForm::syncWindows() {
    // A document the workspace let go of (split, or merged into another) takes its window
    // along; the window forgot it as it went.
    for (QMdiSubWindow* sub : mdi_->subWindowList())
        if (auto* child = qobject_cast<TMDIChildWave*>(sub->widget())) {
            const bool open = std::any_of(
                workspace_.documents().begin(), workspace_.documents().end(),
                [&](const auto& doc) { return doc.get() == child->unit(); });
            if (!open || !child->unit()) {
                child->detach();
                sub->close();
            }
        }
    for (const auto& doc : workspace_.documents()) {
        if (childOf(doc.get())) continue;
        auto* child = new TMDIChildWave(*doc);
        child->setCloseGuard([this](TMDIChildWave& c) { return closeGuard(c); });
        connect(child, &TMDIChildWave::statusChanged, this, [this] { updateActions(); });
        connect(child, &TMDIChildWave::closed, this, &TMainForm::childClosed);
        // The time under the pointer goes into the second panel.
        connect(child, &TMDIChildWave::pointerPosition, panels_[1], &QLabel::setText);
        QMdiSubWindow* sub = mdi_->addSubWindow(child);
        sub->setAttribute(Qt::WA_DeleteOnClose);
        sub->setWindowIcon(programIcon());
        // Large enough to see the wave: three fifths of the area's width, half its height,
        // never below 460 x 260.
        const QSize area = mdi_->viewport()->size();
        sub->resize(std::max(460, area.width() * 3 / 5), std::max(260, area.height() / 2));
        sub->show();
    }
    if (TMDIChildWave* child = childOf(workspace_.active())) {
        QMdiSubWindow* sub = qobject_cast<QMdiSubWindow*>(child->parentWidget());
        if (sub && mdi_->activeSubWindow() != sub) mdi_->setActiveSubWindow(sub);
    }
    for (QMdiSubWindow* sub : mdi_->subWindowList())
        if (auto* child = qobject_cast<TMDIChildWave*>(sub->widget())) child->repaintAll();
}

void TMainForm::subWindowActivated(QMdiSubWindow* window) {
    // Null when the frame itself loses the focus (a dialog opens): the document stays active.
    if (!window) return;
    if (auto* child = qobject_cast<TMDIChildWave*>(window->widget()))
        if (child->unit() && workspace_.active() != child->unit())
            workspace_.setActive(child->unit());
    updateActions();
}

bool TMainForm::closeGuard(TMDIChildWave& child) {
    TUnitWave* unit = child.unit();
    if (!unit || !unit->needsSave()) return true;
    const QMessageBox::StandardButton answer = prompts_.question(
        "Orvasto", "Save changes to " + QString::fromStdString(unit->getFileName()) + "?");
    if (answer == QMessageBox::No) return true;
    if (answer != QMessageBox::Yes) return false;
    return saveUnit(*unit, false);
}

void TMainForm::childClosed(TMDIChildWave* child) {
    TUnitWave* unit = child->unit();
    child->detach();
    if (unit) workspace_.close(*unit);
    if (TMDIChildWave* next = childOf(workspace_.active())) {
        if (auto* sub = qobject_cast<QMdiSubWindow*>(next->parentWidget()))
            mdi_->setActiveSubWindow(sub);
    }
    QTimer::singleShot(0, this, &TMainForm::updateActions);
}

void TMainForm::closeEvent(QCloseEvent* event) {
    // Every window asks its own question; one Cancel keeps the program running.
    for (QMdiSubWindow* sub : mdi_->subWindowList()) {
        if (!sub->close()) {
            event->ignore();
            updateActions();
            return;
        }
    }
    workspace_.forgetUndo();
    if (help_) help_->close();
    event->accept();
}

// ---- the name field -------------------------------------------------------------------------

bool TMainForm::eventFilter(QObject* watched, QEvent* event) {
    if (watched == editName_) {
        if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::FocusIn)
            beginNameEdit();
        else if (event->type() == QEvent::FocusOut)
            endNameEdit();
        else if (event->type() == QEvent::KeyPress &&
                 static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
            endNameEdit();
    }
    return QMainWindow::eventFilter(watched, event);
}

void TMainForm::beginNameEdit() {
    if (workspace_.active()) nameEditing_ = true;
}

void TMainForm::endNameEdit() {
    // Leaving the field without Enter keeps the old name; the single keys work again.
    if (!nameEditing_) return;
    nameEditing_ = false;
    updateActions();
}

void TMainForm::takeName() {
    TUnitWave* unit = workspace_.active();
    const std::string name = editName_->text().toStdString();
    nameEditing_ = false;
    if (unit) {
        AcceptedForm form;
        form.spec = &RegisterRecord::table();
        form.state = showRecord(RegisterRecord::table(), RegisterRecord(name), &workspace_);
        CommandInput input;
        input.form = form;
        run("Register", input);
    }
    updateActions();
}

// ---- dropping files ---------------------------------------------------------------------------

namespace {
QStringList droppedWaves(const QMimeData* data) {
    QStringList files;
    if (!data || !data->hasUrls()) return files;
    for (const QUrl& url : data->urls())
        if (url.isLocalFile() && url.toLocalFile().endsWith(".wav", Qt::CaseInsensitive))
            files << url.toLocalFile();
    return files;
}
}  // namespace

void TMainForm::dragEnterEvent(QDragEnterEvent* event) {
    if (!droppedWaves(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void TMainForm::dropEvent(QDropEvent* event) {
    const QStringList files = droppedWaves(event->mimeData());
    if (files.isEmpty()) return;
    event->acceptProposedAction();
    openFiles(files);
}

}  // namespace orv
