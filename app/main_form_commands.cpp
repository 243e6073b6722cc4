// The command handlers of the frame: what each action does before it reaches the document
// layer (a dialog, a file name, a question), and the file commands beyond the action table
// (import, export, recent files).
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>

#include "app/about_box.h"
#include "app/help_window.h"
#include "app/main_form.h"
#include "dialogs/mfreq_dialog.h"
#include "dialogs/record_dialog.h"
#include "dialogs/selzoom_dialog.h"
#include "dialogs/vold_view_dialog.h"
#include "dialogs/wave_view_dialog.h"
#include "document/file_props_record.h"
#include "document/register_check.h"
#include "document/wave_comparison.h"
#include "fileio/sound_export.h"
#include "fileio/sound_import.h"
#include "view/mdi_child_wave.h"

namespace orv {

namespace {

constexpr char kWaveFilter[] = "Wave files (*.wav *.WAV);;All files (*)";

// A file chosen without an extension is a WAV file.
QString withWavExtension(QString file) {
    if (!file.isEmpty() && QFileInfo(file).suffix().isEmpty()) file += ".wav";
    return file;
}

// An imported wave keeps its name with ".wav", so that Save never writes WAV data into a
// FLAC or Ogg file.
std::string wavNameFor(const QString& file) {
    const QFileInfo info(file);
    return QDir(info.absolutePath()).filePath(info.completeBaseName() + ".wav").toStdString();
}

}  // namespace

void TMainForm::defaultPrompts() {
    prompts_.openFiles = [this] {
        return QFileDialog::getOpenFileNames(this, "Open", QString(), kWaveFilter);
    };
    prompts_.saveFile = [this](const QString& current) {
        return withWavExtension(QFileDialog::getSaveFileName(this, "Save As", current, kWaveFilter));
    };
    prompts_.importFile = [this] {
        QString filter = "Sound files (";
        for (const ImportFormat& f : importFormats()) filter += " *." + QString::fromStdString(f.extension);
        filter += ");;All files (*)";
        return QFileDialog::getOpenFileName(this, "Import", QString(), filter);
    };
    prompts_.exportFile = [this](const QString& current) {
        return QFileDialog::getSaveFileName(this, "Export", current,
                                            "FLAC (*.flac);;Ogg Vorbis (*.ogg);;WAV (*.wav)");
    };
    prompts_.question = [this](const QString& caption, const QString& text) {
        return QMessageBox::question(this, caption, text,
                                     QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
                                     QMessageBox::Yes);
    };
}

// ---- running -------------------------------------------------------------------------------

void TMainForm::run(std::string_view name, const CommandInput& input) {
    // A zoomed window keeps its margins around the part across a change of length.
    QPointer<TMDIChildWave> child = childOf(workspace_.active());
    if (child) child->beginKeepZoom();
    // Split and merge put their new windows where the old ones were.
    const bool arranges = name == "SplitH" || name == "SplitV" || name == "MergeH" || name == "MergeV";
    Arrangement before = arranges ? arrangementFor(name, input) : Arrangement{};
    runner_->run(name, input, [this, child, before = std::move(before),
                               command = std::string(name)](const ActionResult& result) {
        if (child) child->endKeepZoom();
        afterCommand();
        if (result.kind == ActionResult::Kind::Done && !before.bounds.empty())
            placeMadeWindows(command, before);
    });
}

void TMainForm::afterCommand() {
    syncWindows();
    updateActions();
}

void TMainForm::execute(std::string_view name) {
    const ActionDef* def = findAction(name);
    if (!def) return;
    // The shortcut of a disabled action does nothing, as its menu entry does.
    if (!workspace_.status(name).enabled) return;
    if (name == "FileNewWave") return fileNew();
    if (name == "FileOpenWave") return openFiles(prompts_.openFiles());
    if (name == "FileSave" || name == "FileSaveAs") {
        if (TUnitWave* unit = workspace_.active()) saveUnit(*unit, name == "FileSaveAs");
        return;
    }
    if (name == "FileProperties") return fileProperties();
    if (name == "FileExit") {
        close();
        return;
    }
    if (name == "FilePlay" || name == "FileStop" || name == "FilePause" || name == "FileRecord")
        return playerCommand(name);
    if (name == "HelpAbout") return showAbout();
    if (name == "Register") return registerDialog();
    if (name == "ViewWave") return viewWaveDialog();
    if (name == "ViewVold") return viewVoldDialog();
    if (name == "ZoomIn" || name == "NoZoom") return zoomActive(name == "ZoomIn");
    if (name == "SelectWave") return toggleSelectAndZoom();
    if (name == "DrawWaveLin" || name == "DrawWave3G") return drawWave(name == "DrawWave3G");
    // Cut at the cursor: with no part selected there is nothing for the dialog to decide.
    if (name == "SplitH" && workspace_.active() &&
        workspace_.active()->getCursor() == workspace_.active()->getSelEndPos())
        return run(name);
    // Every other action with a dialog shows it first.
    if (!def->form.empty() && workspace_.active()) return operationDialog(name);
    switch (def->flow) {
        case ActionFlow::Inert: return;
        case ActionFlow::Front:
            // The frame's own commands are all handled above.
            ORV_ASSERT_TEXT(false, "front-end action handled", "Main");
            return;
        default: run(name); return;
    }
}

void TMainForm::connectHelp(QObject* dialog) {
    if (auto* d = qobject_cast<TRecordDialog*>(dialog))
        connect(d, &TRecordDialog::helpRequested, this, &TMainForm::showHelp);
    if (auto* d = qobject_cast<TDlgMFreqProps*>(dialog))
        connect(d, &TDlgMFreqProps::helpRequested, this, &TMainForm::showHelp);
}

// ---- file commands ---------------------------------------------------------------------------

// The Wave Properties dialog from `start`; the command runs with what it accepted.
void TMainForm::wavePropertiesDialog(const WaveFileProps& start, std::string_view command) {
    const RecordTable<WaveFilePropsRecord>& table = WaveFilePropsRecord::table();
    const WaveFilePropsRecord record(start);
    DialogSetup setup;
    setup.spec = &table;
    setup.initial = showRecord(table, record, &workspace_);
    setup.names = &workspace_;
    setup.accept = [&table, record](const FormState& state) {
        WaveFilePropsRecord copy = record;
        return acceptRecord(table, state, copy, FormContext{});
    };
    TRecordDialog dialog(setup, this);
    connectHelp(&dialog);
    if (dialog.exec() != QDialog::Accepted) return;
    CommandInput input;
    input.form = AcceptedForm{&table, dialog.state()};
    run(command, input);
}

void TMainForm::fileNew() { wavePropertiesDialog(WaveFileProps{44100, 2, 2}, "FileNewWave"); }

void TMainForm::fileProperties() {
    TUnitWave* unit = workspace_.active();
    if (!unit) return;
    wavePropertiesDialog(
        WaveFileProps{unit->getFreq(), unit->getMonoStereo(), unit->getBytesPSample()},
        "FileProperties");
}

bool TMainForm::saveUnit(TUnitWave& unit, bool askName) {
    workspace_.setActive(&unit);
    CommandInput input;
    if (askName || unit.isNew()) {
        const QString current = unit.isNew() ? QString() : QString::fromStdString(unit.getFileName());
        input.file = prompts_.saveFile(current).toStdString();
        if (input.file.empty()) return false;
    }
    bool saved = false;
    runner_->run(askName ? "FileSaveAs" : "FileSave", input, [&](const ActionResult& r) {
        saved = r.kind == ActionResult::Kind::Done;
        afterCommand();
    });
    if (saved) {
        recent_.add(QString::fromStdString(unit.getFileName()));
        rebuildRecentMenu();
    }
    return saved;
}

void TMainForm::openFiles(const QStringList& files) {
    for (const QString& file : files) {
        if (file.isEmpty()) continue;
        CommandInput input;
        input.file = file.toStdString();
        runner_->run("FileOpenWave", input, [&](const ActionResult& r) {
            if (r.kind == ActionResult::Kind::Done)
                recent_.add(file);
            else
                recent_.remove(QFileInfo(file).absoluteFilePath());
        });
    }
    rebuildRecentMenu();
    afterCommand();
}

void TMainForm::rebuildRecentMenu() {
    if (!recentMenu_) return;
    recentMenu_->clear();
    const QStringList files = recent_.files();
    int n = 0;
    for (const QString& file : files) {
        QAction* a = recentMenu_->addAction(QString("&%1 %2").arg(++n).arg(file));
        a->setStatusTip("Open " + file);
        connect(a, &QAction::triggered, this, [this, file] { openFiles({file}); });
    }
    recentMenu_->setEnabled(!files.isEmpty());
}

// Import and export read and write on the task's thread: an hour of FLAC takes seconds, and
// the windows stay live meanwhile (Cancel stops the work, which then changes nothing).
void TMainForm::importFile() {
    const QString file = prompts_.importFile();
    if (file.isEmpty()) return;
    struct Imported {
        SoundPtr sound;
        std::string reason;
        bool ok = false;
    };
    auto result = std::make_shared<Imported>();
    const std::string name = file.toStdString();
    task_->start(
        "Importing " + QFileInfo(file).fileName(),
        [result, name](CancelFlag& cancel) {
            result->ok = importSoundFile(name, result->sound, result->reason, &cancel);
        },
        [this, result, name, file](bool cancelled) {
            if (!result->ok) {
                if (!cancelled) showMessage(kFileErrorCaption, importFailureText(name, result->reason));
                return updateActions();
            }
            // Kept with 16-bit samples, and not yet what any file holds.
            TUnitWave& unit = workspace_.add(
                std::make_unique<TUnitWave>(std::move(result->sound), 2, wavNameFor(file)));
            unit.setChanged();
            afterCommand();
        });
}

void TMainForm::exportFile() {
    TUnitWave* unit = workspace_.active();
    if (!unit || unit->values() == 0) return;
    const QFileInfo current(QString::fromStdString(unit->getFileName()));
    const QString file = prompts_.exportFile(current.completeBaseName() + ".flac");
    if (file.isEmpty()) return;
    // The sound as it is now, kept while it is written even if the wave changes meanwhile.
    std::shared_ptr<const Sound> sound = unit->soundRef();
    auto reason = std::make_shared<std::string>();
    auto ok = std::make_shared<bool>(false);
    const std::string name = file.toStdString();
    task_->start(
        "Exporting " + QFileInfo(file).fileName(),
        [sound, reason, ok, name](CancelFlag& cancel) {
            *ok = exportSoundFile(name, "", sound.get(), *reason, &cancel);
        },
        [this, reason, ok, name](bool cancelled) {
            if (!*ok && !cancelled) showMessage(kFileErrorCaption, exportFailureText(name, *reason));
            updateActions();
        });
}

// ---- dialogs ----------------------------------------------------------------------------------

void TMainForm::registerDialog() {
    TUnitWave* unit = workspace_.active();
    if (!unit) return;
    const RecordTable<RegisterRecord>& table = RegisterRecord::table();
    const RegisterRecord start(unit->getName());
    const std::string own = unit->getName();
    DialogSetup setup;
    setup.spec = &table;
    setup.initial = showRecord(table, start, &workspace_);
    setup.names = &workspace_;
    setup.accept = [this, &table, start, own](const FormState& state) {
        RegisterRecord copy = start;
        std::optional<FormError> e = acceptRecord(table, state, copy, FormContext{&workspace_, 0});
        if (!e) e = checkRegisterName(copy.name, own, workspace_);
        return e;
    };
    TRecordDialog dialog(setup, this);
    connectHelp(&dialog);
    if (dialog.exec() != QDialog::Accepted) return;
    CommandInput input;
    input.form = AcceptedForm{&table, dialog.state()};
    run("Register", input);
}

void TMainForm::operationDialog(std::string_view name) {
    TUnitWave* unit = workspace_.active();
    if (!unit) return;
    if (name == "MakeMFreq") return multiFrequencyDialog();
    std::unique_ptr<FormView> form = workspace_.actionForm(name);
    if (!form) {
        // No record to ask for: the command runs as it is.
        if (findAction(name)->flow != ActionFlow::Front) run(name);
        return;
    }
    const ActionDef* def = findAction(name);
    DialogSetup setup;
    setup.spec = &form->spec();
    setup.initial = form->show(&workspace_);
    setup.names = &workspace_;
    setup.caption = def->form;
    // OK checks the fields on a copy of the record; the command itself reads what was
    // accepted.
    setup.accept = [&](const FormState& state) { return workspace_.checkForm(name, state); };
    // The merge dialogs show the two chosen waves side by side.
    if (name == "MergeH" || name == "MergeV") {
        presetMergeWaves(form->spec(), setup.initial, workspace_, unit);
        setup.sideTable = mergeSideTable(workspace_, form->spec());
    }
    TRecordDialog dialog(setup, this);
    connectHelp(&dialog);
    if (dialog.exec() != QDialog::Accepted) return;
    CommandInput input;
    input.form = AcceptedForm{&form->spec(), dialog.state()};
    run(name, input);
}

void TMainForm::multiFrequencyDialog() {
    TUnitWave* unit = workspace_.active();
    TDlgMFreqProps dialog(unit->records().mfreq, FormContext{&workspace_, unit->lengthSeconds()},
                          this);
    connectHelp(&dialog);
    if (dialog.exec() != QDialog::Accepted) return;
    CommandInput input;
    input.form = AcceptedForm{&MFreqRecord::table(), dialog.state()};
    input.frequencies = dialog.record().frequencies.records();
    run("MakeMFreq", input);
}

// ---- the view actions ---------------------------------------------------------------------------

void TMainForm::viewWaveDialog() {
    const QPointer<TMDIChildWave> child = childOf(workspace_.active());
    if (!child) return;
    TDlgWaveViewProps dialog(child->settings(), this);
    connect(&dialog, &TDlgWaveViewProps::helpRequested, this, &TMainForm::showHelp);
    if (dialog.exec() != QDialog::Accepted || !child) return;
    child->setSettings(dialog.record());
    if (dialog.useAsDefault()) TMDIChildWave::setDefaultSettings(dialog.record());
    child->showWave();
    updateActions();
}

void TMainForm::viewVoldDialog() {
    TUnitWave* unit = workspace_.active();
    const QPointer<TMDIChildWave> child = childOf(unit);
    if (!child) return;
    TDlgVoldViewProps dialog(child->voldSettings(), workspace_.formContext(), this);
    connect(&dialog, &TDlgVoldViewProps::helpRequested, this, &TMainForm::showHelp);
    if (dialog.exec() != QDialog::Accepted || !child) return;
    if (dialog.useAsDefault()) TMDIChildWave::setDefaultVoldSettings(dialog.record());
    child->showVold(dialog.record());
    updateActions();
}

void TMainForm::zoomActive(bool in) {
    TMDIChildWave* child = childOf(workspace_.active());
    if (!child) return;
    if (in)
        child->zoomIn();
    else
        child->noZoom();
    updateActions();
}

void TMainForm::toggleSelectAndZoom() {
    // Made once and kept with the frame, like the dialog bases' dialogs; it stays open beside
    // the windows and works on whichever is active when "Apply" is pressed.
    auto* dialog = findChild<TDlgSelZoom*>(QString(), Qt::FindDirectChildrenOnly);
    if (!dialog) {
        dialog = new TDlgSelZoom(
            [this]() -> std::optional<SelZoomTarget> {
                const TUnitWave* unit = workspace_.active();
                if (!unit || !childOf(unit)) return std::nullopt;
                return SelZoomTarget{unit->values(), unit->getFreq()};
            },
            this);
        connect(dialog, &TDlgSelZoom::applyRequested, this, &TMainForm::applySelectAndZoom);
        connect(dialog, &TDlgSelZoom::helpRequested, this, &TMainForm::showHelp);
    }
    if (dialog->isVisible()) {
        dialog->hide();
        return;
    }
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

void TMainForm::applySelectAndZoom(const SelZoomRequest& request) {
    TUnitWave* unit = workspace_.active();
    TMDIChildWave* child = childOf(unit);
    if (!child || runner_->busy() || child->drawing()) return;
    if (request.part)
        unit->setSelection(request.begin, request.end);
    else
        unit->setCursor(request.cursor);
    if (request.zoomed)
        child->zoomTo(request.zoomBegin, request.zoomEnd);
    else
        child->noZoom();
    updateActions();
}

void TMainForm::drawWave(bool smooth) {
    TUnitWave* unit = workspace_.active();
    TMDIChildWave* child = childOf(unit);
    if (!child) return;
    const DrawKind kind = smooth ? DrawKind::Smooth : DrawKind::Linear;
    if (!child->drawing()) {
        child->beginDrawing(kind);
    } else if (child->smoothDrawing() != smooth) {
        child->setDrawingKind(kind);
    } else if (std::unique_ptr<Sound> drawn = child->endDrawing()) {
        // The document takes the drawn wave as it takes an operation's result: the state
        // before it goes to the undo record first.
        workspace_.makeUndo(*unit);
        const std::int32_t n = drawn->GetValues();
        unit->takeResult(std::shared_ptr<Sound>(std::move(drawn)), 0, n);
        unit->setChanged();
    }
    updateActions();
}

// ---- help and about ------------------------------------------------------------------------------

void TMainForm::showHelp(int context) {
    if (!help_) help_ = new HelpWindow(nullptr);
    help_->showContext(context);
}

void TMainForm::showHelpContents() {
    if (!help_) help_ = new HelpWindow(nullptr);
    help_->showContents();
}

void TMainForm::showHelpSearch() {
    if (!help_) help_ = new HelpWindow(nullptr);
    help_->showSearch();
}

void TMainForm::showHelpOnHelp() {
    if (!help_) help_ = new HelpWindow(nullptr);
    help_->showHelpOnHelp();
}

void TMainForm::showAbout() {
    AboutBox box(this);
    box.exec();
}

}  // namespace orv
