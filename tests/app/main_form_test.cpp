// The main frame driven as a user drives it: actions by their shortcuts and menus, real
// dialogs filled by keys and clicks, messages recorded through the platform interface and
// the frame's questions answered by the test.
#include <set>

#include <QAction>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QSettings>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QToolBar>

#include "app/about_box.h"
#include "app/help_window.h"
#include "app/main_form.h"
#include "dialogs/record_dialog.h"
#include "support/cli_test_helpers.h"
#include "support/recording_platform.h"
#include "tests/app/gui_test_helpers.h"
#include "view/mdi_child_wave.h"

using namespace orv;
using orv::test::control;
using orv::test::typeText;
using orv::test::whenModal;

namespace {

std::vector<WaveVal> samplesOf(const TUnitWave& unit) {
    std::vector<WaveVal> out;
    const Wave* w = unit.getSound()->GetLeftWave();
    for (std::int32_t i = 0; i < w->getValues(); ++i) out.push_back((*w)[i]);
    if (unit.getMonoStereo() == 2) {
        const Wave* r = unit.getSound()->GetRightWave();
        for (std::int32_t i = 0; i < r->getValues(); ++i) out.push_back((*r)[i]);
    }
    return out;
}

// The enabled actions after an update; every one of them exactly as the document layer's
// rule says for the frame's state (the frame keeps no rules of its own).
QStringList& strays() {
    static QStringList list;
    return list;
}
std::set<std::string> enabledActions(TMainForm& frame) {
    frame.updateActions();
    const ActionContext context = frame.workspace().actionContext();
    std::set<std::string> on;
    for (const ActionDef& def : actionTable()) {
        const QAction* a = frame.action(def.name);
        const ActionStatus rule = actionStatus(def.name, context);
        if (a->isEnabled() != rule.enabled || (a->isCheckable() && a->isChecked() != rule.checked))
            strays() << QString::fromUtf8(def.name.data(), qsizetype(def.name.size()));
        if (a->isEnabled()) on.insert(std::string(def.name));
    }
    return on;
}

}  // namespace

class MainFormTest : public QObject {
    Q_OBJECT

    std::unique_ptr<test::RecordingPlatformScope> messages_;
    std::unique_ptr<TMainForm> frame_;
    QTemporaryDir dir_;
    QStringList questions_;
    QMessageBox::StandardButton answer_ = QMessageBox::Cancel;
    QString saveName_;
    QStringList openNames_;

    const std::vector<test::ShownMessage>& messages() const { return messages_->recorder.messages; }
    TUnitWave* active() { return frame_->workspace().active(); }

    void activate() { test::activate(*frame_); }
    void newWave(const char* frequency, bool stereo) { test::newWaveByDialog(*frame_, frequency, stereo); }
    void makeSinus(const QString& frequency, const QString& length) {
        test::makeSinusByDialog(*frame_, frequency, length);
    }
    void giveName(const QString& name) { test::giveNameInField(*frame_, name); }

private slots:
    void init();
    void cleanup();
    void framePanelsToolBarsAndActions();
    void enablingFollowsTheActiveWindow();
    void newWaveThroughWavePropertiesDialog();
    void generatorThroughItsDialog();
    void refusedFieldThenCorrected();
    void cancelLeavesEverythingAsItWas();
    void undoTwiceRedoes();
    void nameFieldSwallowsSingleKeys();
    void registerRefusesANameInUse();
    void multiFrequencyThroughItsDialog();
    void closeQuestionOnExit();
    void openFilesRecentDropAndBadFile();
    void helpPagesForEveryDialog();
    void aboutBoxDrawsItsOwnPicture();
    void noTemporaryFolderMeansNoPlayOrRecord();
};

void MainFormTest::init() {
    QSettings().clear();  // no recent files from another test
    messages_ = std::make_unique<test::RecordingPlatformScope>();
    frame_ = std::make_unique<TMainForm>();
    // These tests read each command's result at once; the worker thread has tests of its own.
    frame_->runner().setInline(true);
    questions_.clear();
    answer_ = QMessageBox::Cancel;
    TMainForm::Prompts& p = frame_->prompts();
    p.question = [this](const QString& caption, const QString& text) {
        questions_ << caption + ": " + text;
        return answer_;
    };
    p.saveFile = [this](const QString&) { return saveName_; };
    p.openFiles = [this] { return openNames_; };
    frame_->show();
    QVERIFY(QTest::qWaitForWindowExposed(frame_.get()));
    activate();
}

void MainFormTest::cleanup() {
    const bool pending = test::cancelPendingModals();
    frame_.reset();
    messages_.reset();
    QVERIFY2(!pending, "a dialog the test waited for never came");
}

void MainFormTest::framePanelsToolBarsAndActions() {
    QCOMPARE(frame_->windowTitle(), QString("Orvasto "));
    for (int i = 0; i < 8; ++i) QCOMPARE(frame_->panel(i)->width(), TMainForm::kPanelWidths[std::size_t(i)]);
    QStringList bars;
    for (QToolBar* bar : frame_->findChildren<QToolBar*>()) {
        bars << bar->objectName();
        QVERIFY(bar->isMovable());
    }
    bars.sort();
    QCOMPARE(bars, QStringList({"ToolBarBasic", "ToolBarName", "ToolBarPlayer", "ToolBarWaveComplex",
                                "ToolBarWaveEdit", "ToolBarWaveFilter", "ToolBarWaveMake",
                                "ToolBarWaveSimple", "ToolBarWaveView"}));
    // One action per row, with the row's texts; every shortcut is one key combination.
    for (const ActionDef& def : actionTable()) {
        QAction* a = frame_->action(def.name);
        QVERIFY(a);
        QCOMPARE(a->text(), QString::fromUtf8(def.caption.data(), qsizetype(def.caption.size())));
        QCOMPARE(a->statusTip().toStdString(), std::string(def.longHint));
        if (!def.shortHint.empty()) QCOMPARE(a->toolTip().toStdString(), std::string(def.shortHint));
        if (!def.shortcut.empty()) QCOMPARE(a->shortcut().count(), 1);
        if (def.flow != ActionFlow::Inert && def.category != "Help")
            QVERIFY2(!a->icon().isNull() || def.name == "FileExit", std::string(def.name).c_str());
    }
    QCOMPARE(frame_->action("EditTrim")->shortcut(),
             QKeySequence(Qt::SHIFT | Qt::CTRL | Qt::Key_Delete));
    QCOMPARE(frame_->action("MakeSinus")->shortcut(),
             QKeySequence(Qt::SHIFT | Qt::ALT | Qt::Key_S));
    QCOMPARE(frame_->action("Volume")->shortcut(), QKeySequence(Qt::Key_V));
    // No menu takes an Alt key of the table as its mnemonic: both would be dead.
    for (QAction* menu : frame_->menuBar()->actions()) {
        const QKeySequence mnemonic = QKeySequence::mnemonic(menu->text());
        if (mnemonic.isEmpty()) continue;
        for (const ActionDef& def : actionTable())
            QVERIFY2(frame_->action(def.name)->shortcut() != mnemonic,
                     qPrintable(menu->text() + " / " + QString::fromUtf8(def.name.data(), def.name.size())));
    }
    // The long hint goes into the first panel.
    frame_->action("Volume")->showStatusText(frame_.get());
    QCOMPARE(frame_->panel(0)->text(), QString("Change the volume"));
}

void MainFormTest::enablingFollowsTheActiveWindow() {
    // No window: only what needs no wave.
    std::set<std::string> on = enabledActions(*frame_);
    for (const char* name : {"FileNewWave", "FileOpenWave", "FileExit", "HelpAbout"})
        QVERIFY2(on.count(name), name);
    for (const char* name : {"FileSave", "FileSaveAs", "FileProperties", "Volume", "EditCopy",
                             "MakeSinus", "Duplicate", "DrawWaveLin", "MergeH", "FileNewMuz"})
        QVERIFY2(!on.count(name), name);
    QCOMPARE(frame_->panel(2)->text(), QString());
    // An empty mono wave: generators, drawing, recording, properties, duplicate.
    newWave("44 kHz", false);
    on = enabledActions(*frame_);
    for (const char* name : {"MakeSilence", "MakeSinus", "MakeMFreq", "DrawWaveLin", "DrawWave3G",
                             "FileRecord", "FileProperties", "Duplicate", "ViewWave", "ViewVold"})
        QVERIFY2(on.count(name), name);
    for (const char* name : {"FileSave", "FileSaveAs", "FilePlay", "Volume", "EditCopy",
                             "Balance", "MixLeftRight", "SplitV", "MergeH", "EditPaste", "ZoomIn"})
        QVERIFY2(!on.count(name), name);
    QVERIFY(frame_->action("ViewWave")->isChecked());
    QVERIFY(!frame_->action("ViewVold")->isChecked());

    // A stereo wave with samples, beside the first one; nothing selected.
    newWave("22 kHz", true);
    makeSinus("1 kHz", "10 ms");
    active()->setCursor(0);
    on = enabledActions(*frame_);
    for (const char* name : {"FileSave", "FileSaveAs", "FilePlay", "Volume", "EditCopy",
                             "MixLeftRight", "SplitV", "MergeH", "MergeV", "TempoPitch"})
        QVERIFY2(on.count(name), name);
    for (const char* name : {"Balance", "DrawWaveLin", "FileRecord", "EditTrim", "ZoomIn",
                             "SplitH", "EditPaste", "EditSwap", "NoZoom"})
        QVERIFY2(!on.count(name), name);
    QCOMPARE(frame_->panel(2)->text(), QString("0.00997 s"));  // 220 samples at 22050 Hz
    QCOMPARE(frame_->panel(3)->text(), QString("22.100 kHz"));
    QCOMPARE(frame_->panel(4)->text(), QString("16"));
    QCOMPARE(frame_->panel(5)->text(), QString("ST"));
    QCOMPARE(frame_->panel(6)->text(), QString("880 b"));  // 220 samples x 2 channels x 2 bytes
    QCOMPARE(frame_->panel(7)->text(), QString("New"));

    // A selection inside the wave; then the clipboard.
    active()->setSelection(10, 100);
    on = enabledActions(*frame_);
    for (const char* name : {"EditTrim", "ZoomIn", "SplitH"}) QVERIFY2(on.count(name), name);
    activate();
    QTest::keyClick(frame_.get(), Qt::Key_C, Qt::ControlModifier);
    on = enabledActions(*frame_);
    for (const char* name : {"EditPaste", "EditSwap", "EditMix", "EditClearClipboard"})
        QVERIFY2(on.count(name), name);

    // The last window gone: panels 2 to 6 empty, the state panel keeps its text.
    answer_ = QMessageBox::No;
    for (QMdiSubWindow* sub : frame_->mdiArea()->subWindowList()) sub->close();
    QTRY_VERIFY(frame_->workspace().documents().empty());
    frame_->updateActions();
    for (int i = 2; i <= 6; ++i) QCOMPARE(frame_->panel(i)->text(), QString());
    QCOMPARE(frame_->panel(7)->text(), QString("New"));
    QCOMPARE(frame_->windowTitle(), QString("Orvasto "));
    QCOMPARE(strays().join(' '), QString());
}

void MainFormTest::newWaveThroughWavePropertiesDialog() {
    whenModal([&](QDialog* d) {
        QCOMPARE(d->objectName(), QString("TDlgWaveFileProp"));
        QCOMPARE(d->windowTitle(), QString("Wave Properties"));
        // 44100 Hz, 16 bits, stereo to start with.
        QCOMPARE(control<QComboBox>(d, "cboSampleFrequency")->currentText(), QString("44 kHz"));
        QVERIFY(control<QRadioButton>(d, "optWaveValues16Bits")->isChecked());
        QVERIFY(control<QRadioButton>(d, "optMonoStereoStereo")->isChecked());
        QTest::keyClick(d, Qt::Key_Return);
    });
    QTest::keyClick(frame_.get(), Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(frame_->workspace().documents().size(), std::size_t(1));
    QCOMPARE(active()->getFreq(), 44100);
    QCOMPARE(int(active()->getMonoStereo()), 2);
    QCOMPARE(int(active()->getBytesPSample()), 2);
    QCOMPARE(frame_->mdiArea()->subWindowList().size(), 1);
    frame_->updateActions();
    QCOMPARE(frame_->windowTitle(), QString("Orvasto NONAME"));
    QCOMPARE(frame_->panel(6)->text(), QString("0 b"));
    QCOMPARE(frame_->panel(7)->text(), QString("New"));

    // Cancel makes nothing.
    whenModal([](QDialog* d) { QTest::mouseClick(control<QPushButton>(d, "CancelBtn"), Qt::LeftButton); });
    frame_->action("FileNewWave")->trigger();
    QCOMPARE(frame_->workspace().documents().size(), std::size_t(1));
}

void MainFormTest::generatorThroughItsDialog() {
    newWave("44 kHz", false);
    makeSinus("A4", "10 ms");
    QCOMPARE(active()->values(), 441);
    QVERIFY(active()->hasSelection());  // the made range is selected
    // The dialog opens again with what was typed on this wave.
    activate();
    whenModal([](QDialog* d) {
        // The note was read as 440.00745 Hz and is shown in hertz.
        QCOMPARE(control<QLineEdit>(d, "editFrequency")->text(), QString("440.00745 Hz"));
        QCOMPARE(control<QLineEdit>(d, "editLength")->text(), QString("10 ms"));
    });
    QTest::keyClick(frame_.get(), Qt::Key_S, Qt::ShiftModifier | Qt::AltModifier);
}

void MainFormTest::refusedFieldThenCorrected() {
    newWave("44 kHz", true);
    makeSinus("1 kHz", "10 ms");
    const std::vector<WaveVal> before = samplesOf(*active());
    activate();
    whenModal([&](QDialog* d) {
        auto* factor = control<QLineEdit>(d, "editConstant");
        typeText(factor, "6 Hz");
        QTest::keyClick(factor, Qt::Key_Return);
        QCOMPARE(messages().size(), std::size_t(1));  // word for word in the dialog's own test
        QVERIFY(d->isVisible());
        typeText(factor, "-6 dB");
        QTest::keyClick(factor, Qt::Key_Return);
        QVERIFY(!d->isVisible());
    });
    QTest::keyClick(frame_.get(), Qt::Key_V);
    QCOMPARE(messages().size(), std::size_t(1));
    const std::vector<WaveVal> after = samplesOf(*active());
    // -6 dB is a factor of 10^(-6/20) = 0.5011872; the first peak, 16382, becomes
    // 8210.45, truncated to 8210.
    const auto peak = std::max_element(before.begin(), before.end()) - before.begin();
    QCOMPARE(int(before[std::size_t(peak)]), 16382);
    QCOMPARE(int(after[std::size_t(peak)]), 8210);
    QCOMPARE(active()->records().volume.factor.unit, std::uint8_t(kUnitDecibel));
}

void MainFormTest::cancelLeavesEverythingAsItWas() {
    newWave("44 kHz", false);
    makeSinus("1 kHz", "10 ms");
    TUnitWave* unit = active();
    unit->setSelection(5, 50);
    const std::vector<WaveVal> before = samplesOf(*unit);
    const TUndoUnit* undo = frame_->workspace().undoRecord();
    const std::uint8_t state = unit->getState();
    activate();
    whenModal([](QDialog* d) {
        typeText(control<QLineEdit>(d, "editConstant"), "200 %");
        QTest::mouseClick(control<QPushButton>(d, "CancelBtn"), Qt::LeftButton);
    });
    QTest::keyClick(frame_.get(), Qt::Key_V);
    QCOMPARE(samplesOf(*unit), before);
    QCOMPARE(frame_->workspace().undoRecord(), undo);
    QCOMPARE(unit->getState(), state);
    QCOMPARE(unit->selBegin(), 5);
    QCOMPARE(unit->selEnd(), 50);
    QCOMPARE(unit->records().volume.factor.value, 0.5);
    QVERIFY(messages().empty());
}

void MainFormTest::undoTwiceRedoes() {
    newWave("44 kHz", false);
    makeSinus("1 kHz", "10 ms");
    const std::vector<WaveVal> sine = samplesOf(*active());
    activate();
    whenModal([](QDialog* d) {
        typeText(control<QLineEdit>(d, "editConstant"), "1/4");
        QTest::mouseClick(control<QPushButton>(d, "OKBtn"), Qt::LeftButton);
    });
    QTest::keyClick(frame_.get(), Qt::Key_V);
    const std::vector<WaveVal> quieter = samplesOf(*active());
    QCOMPARE(int(quieter[11]), int(sine[11]) / 4);
    // The fraction reached the record as typed, not as a rounded decimal.
    QCOMPARE(active()->records().volume.factor.value, 0.25);
    activate();
    QTest::keyClick(frame_.get(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(samplesOf(*active()), sine);
    QTest::keyClick(frame_.get(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(samplesOf(*active()), quieter);
}

void MainFormTest::nameFieldSwallowsSingleKeys() {
    newWave("44 kHz", false);
    makeSinus("1 kHz", "10 ms");
    QSignalSpy played(frame_->action("FilePlay"), &QAction::triggered);
    QSignalSpy volume(frame_->action("Volume"), &QAction::triggered);
    QSignalSpy rotate(frame_->action("Rotate"), &QAction::triggered);

    activate();  // shortcuts only work in the active window
    QLineEdit* edit = frame_->editName();
    QTest::mouseClick(edit, Qt::LeftButton);
    QVERIFY(frame_->nameEditing());
    QTest::keyClicks(edit, "pv");
    QCOMPARE(edit->text(), QString("pv"));
    // Navigation keys still reach the field.
    QTest::keyClick(edit, Qt::Key_Left);
    QCOMPARE(edit->cursorPosition(), 1);
    // Keys the field itself has no use for are no shortcut either while the name is typed.
    QTest::keyClick(edit, Qt::Key_R, Qt::ControlModifier);
    QCOMPARE(played.count(), 0);
    QCOMPARE(volume.count(), 0);
    QCOMPARE(rotate.count(), 0);
    QTest::keyClick(edit, Qt::Key_Return);
    QVERIFY(!frame_->nameEditing());
    QCOMPARE(active()->getName(), std::string("pv"));

    // With the name taken the same key is a shortcut again, and so is V in the window.
    whenModal([](QDialog* d) { QCOMPARE(d->objectName(), QString("TDlgRotateProps")); });
    QTest::keyClick(edit, Qt::Key_R, Qt::ControlModifier);
    QCOMPARE(rotate.count(), 1);
    activate();
    TMDIChildWave* child = frame_->childOf(active());
    child->setFocus();
    whenModal([](QDialog* d) { QCOMPARE(d->objectName(), QString("TDlgVolumeProps")); });
    QTest::keyClick(child, Qt::Key_V);
    QCOMPARE(volume.count(), 1);
}

void MainFormTest::registerRefusesANameInUse() {
    newWave("44 kHz", false);
    giveName("first");
    newWave("44 kHz", false);
    activate();
    whenModal([&](QDialog* d) {
        QCOMPARE(d->objectName(), QString("TDlgRegisterWave"));
        auto* name = control<QLineEdit>(d, "editName");
        typeText(name, "first");
        QTest::mouseClick(control<QPushButton>(d, "OKBtn"), Qt::LeftButton);
        QCOMPARE(messages().size(), std::size_t(1));
        QCOMPARE(QString::fromStdString(messages()[0].caption), QString("Error"));
        QCOMPARE(QString::fromStdString(messages()[0].text),
                 QString("A wave with name \"first\" already exists."));
        QVERIFY(d->isVisible());
        typeText(name, "second");
        QTest::mouseClick(control<QPushButton>(d, "OKBtn"), Qt::LeftButton);
    });
    QTest::keyClick(frame_.get(), Qt::Key_N);
    QCOMPARE(active()->getName(), std::string("second"));
    frame_->updateActions();
    QCOMPARE(frame_->editName()->text(), QString("second"));
    QCOMPARE(frame_->windowTitle(), QString("Orvasto NONAME [second]"));
    // The name field refuses the same way and keeps the old name.
    giveName("first");
    QCOMPARE(messages().size(), std::size_t(2));
    QCOMPARE(active()->getName(), std::string("second"));
    // The empty name unregisters.
    giveName("");
    QCOMPARE(active()->getName(), std::string());
}

void MainFormTest::multiFrequencyThroughItsDialog() {
    newWave("22 kHz", false);
    activate();
    whenModal([](QDialog* d) {
        QCOMPARE(d->objectName(), QString("TDlgMFreqProps"));
        typeText(control<QLineEdit>(d, "editLength"), "20 ms");
        QTest::mouseClick(control<QPushButton>(d, "btnAppend"), Qt::LeftButton);
        typeText(control<QLineEdit>(d, "editFrequency"), "440 Hz");
        QTest::mouseClick(control<QPushButton>(d, "OKBtn"), Qt::LeftButton);
    });
    QTest::keyClick(frame_.get(), Qt::Key_F, Qt::AltModifier);
    QCOMPARE(active()->values(), 442);  // a generator makes trunc(22050 x 0.02 + 1)
    QCOMPARE(active()->records().mfreq.frequencies.count(), 2);

    Workspace ws;
    ws.newWave(WaveFileProps{22050, 1, 2});
    FrequencyRecord second;
    applyTypedFields(second, {{"Frequency", "440 Hz"}}, FormContext{});
    ws.active()->records().mfreq.frequencies = RecordBrowser<FrequencyRecord>({FrequencyRecord(), second});
    ws.runAction("MakeMFreq", {{"Length", "20 ms"}});
    QCOMPARE(samplesOf(*active()), samplesOf(*ws.active()));
}

void MainFormTest::closeQuestionOnExit() {
    newWave("44 kHz", false);
    makeSinus("1 kHz", "10 ms");
    newWave("44 kHz", false);  // empty: asks nothing
    answer_ = QMessageBox::Cancel;
    QVERIFY(!frame_->close());
    QCOMPARE(questions_, QStringList({"Orvasto: Save changes to NONAME?"}));
    QVERIFY(frame_->isVisible());
    QCOMPARE(frame_->workspace().documents().size(), std::size_t(2));

    // Yes saves (a new wave asks its name first), and the program ends.
    saveName_ = dir_.filePath("saved.wav");
    answer_ = QMessageBox::Yes;
    QVERIFY(frame_->close());
    QCOMPARE(questions_.size(), 2);
    QVERIFY(QFileInfo::exists(saveName_));
    QCOMPARE(QFileInfo(saveName_).size(), qint64(44 + 441 * 2));
    QVERIFY(frame_->workspace().documents().empty());
}

void MainFormTest::openFilesRecentDropAndBadFile() {
    const QString good = dir_.filePath("three.wav");
    test::writeWav16(good.toStdString(), 8000, 1, {100, -200, 300});
    const QString bad = dir_.filePath("missing.wav");
    openNames_ = {good, bad};
    activate();
    QTest::keyClick(frame_.get(), Qt::Key_O, Qt::ControlModifier);
    QCOMPARE(frame_->workspace().documents().size(), std::size_t(1));
    QCOMPARE(samplesOf(*active()), std::vector<WaveVal>({100, -200, 300}));
    QCOMPARE(messages().size(), std::size_t(1));
    QCOMPARE(QString::fromStdString(messages()[0].caption), QString("File Error"));
    QVERIFY(QString::fromStdString(messages()[0].text).startsWith("Cannot read the file: \"" + bad + "\", "));
    QCOMPARE(frame_->recentMenu()->actions().size(), 1);
    QVERIFY(frame_->recentMenu()->actions()[0]->text().endsWith(good));

    // Dropping WAV files opens them; other files are not taken.
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(good), QUrl::fromLocalFile(dir_.filePath("notes.txt"))});
    QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(frame_.get(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(frame_.get(), &drop);
    QCOMPARE(frame_->workspace().documents().size(), std::size_t(2));
    QCOMPARE(frame_->mdiArea()->subWindowList().size(), 2);
    // Opened again from the recent files.
    frame_->recentMenu()->actions()[0]->trigger();
    QCOMPARE(frame_->workspace().documents().size(), std::size_t(3));
}

void MainFormTest::helpPagesForEveryDialog() {
    // Every dialog of the action table has its page.
    Workspace ws;
    ws.newWave(WaveFileProps{44100, 1, 2});
    for (const ActionDef& def : actionTable()) {
        if (std::unique_ptr<FormView> form = ws.actionForm(def.name))
            QVERIFY2(helpPageForContext(form->spec().helpContext), std::string(def.name).c_str());
    }
    for (int context : {2, 24, 37}) QVERIFY(helpPageForContext(context));
    QVERIFY(searchHelp("envelope").contains("context-9"));
    QVERIFY(searchHelp("zzzqqq").isEmpty());
    // The Volume page lists the dialog's fields with their defaults.
    QVERIFY(helpPageForContext(9)->plain.contains("Constant"));

    // The Help button of a dialog opens its page.
    newWave("44 kHz", false);
    makeSinus("1 kHz", "10 ms");
    activate();
    whenModal([&](QDialog* d) {
        QTest::mouseClick(control<QPushButton>(d, "HelpBtn"), Qt::LeftButton);
        QVERIFY(frame_->helpWindow());
        QCOMPARE(frame_->helpWindow()->currentPage(), QString("context-9"));
        QVERIFY(d->isVisible());
    });
    QTest::keyClick(frame_.get(), Qt::Key_V);
    frame_->showHelpOnHelp();
    QCOMPARE(frame_->helpWindow()->currentPage(), QString("helponhelp"));
}

void MainFormTest::aboutBoxDrawsItsOwnPicture() {
    whenModal([](QDialog* d) {
        QCOMPARE(d->objectName(), QString("AboutBox"));
        QVERIFY(control<QLabel>(d, "lblAbout")->text().contains("<b>Orvasto</b> version 0.1.0"));
        auto* picture = d->findChild<AboutPicture*>("AboutPicture");
        QVERIFY(picture);
        // 40 ms of the chord at 11025 Hz from the multi-frequency generator: all partials
        // start at angle 0, so the first sample is 0.
        QCOMPARE(picture->samples().size(), std::size_t(442));
        QCOMPARE(int(picture->samples()[0]), 0);
        QVERIFY(*std::max_element(picture->samples().begin(), picture->samples().end()) > 10000);
        QTest::mouseClick(control<QPushButton>(d, "OKBtn"), Qt::LeftButton);
    });
    QTest::keyClick(frame_.get(), Qt::Key_F1, Qt::AltModifier);
    QVERIFY(!test::cancelPendingModals());
}

// A temporary folder that cannot be made: one message at start, and Play and Record stay off
// for the run while everything else works.
void MainFormTest::noTemporaryFolderMeansNoPlayOrRecord() {
    frame_.reset();
    messages_->recorder.messages.clear();
    // A file where the folder should be: no user can make the folder.
    const QString blocked = dir_.filePath("tmp");
    QVERIFY(QDir().mkpath(blocked));
    QFile file(blocked + "/orvasto");
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    const QByteArray tmp = qgetenv("TMPDIR");
    qputenv("TMPDIR", blocked.toUtf8());
    frame_ = std::make_unique<TMainForm>();
    qputenv("TMPDIR", tmp);
    if (tmp.isEmpty()) qunsetenv("TMPDIR");
    QCOMPARE(messages().size(), std::size_t(1));
    QCOMPARE(messages()[0].caption, std::string("Error"));
    QCOMPARE(QString::fromStdString(messages()[0].text),
             "Could not create directory \"" + blocked + "/orvasto\". Play and Record disabled");
    QCOMPARE(frame_->audioPlayer(), nullptr);
    frame_->runner().setInline(true);
    frame_->workspace().newWave(WaveFileProps{44100, 1, 2});
    frame_->workspace().runAction("MakeSinus", {{"Length", "10 ms"}});
    frame_->updateActions();
    QVERIFY(!frame_->action("FilePlay")->isEnabled());
    QVERIFY(!frame_->action("FileRecord")->isEnabled());
    QVERIFY(frame_->action("Reverse")->isEnabled());
    QCOMPARE(frame_->workspace().status("FilePlay").reason,
             std::string_view("the temporary folder for playing is missing"));
}

QTEST_MAIN(MainFormTest)
#include "main_form_test.moc"
