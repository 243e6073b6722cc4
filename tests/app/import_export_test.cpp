// Import and export in the frame run on a thread of their own: a wave exported to FLAC and
// imported again is the same; a file that is no sound is reported; the task's progress
// dialog appears, and its Cancel stops the work and reports nothing.
#include <atomic>

#include <QProgressDialog>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include "app/main_form.h"
#include "fileio/sound_import.h"
#include "support/core_test_helpers.h"
#include "support/recording_platform.h"

using namespace orv;
using namespace orv::test;

class ImportExportTest : public QObject {
    Q_OBJECT
private slots:
    void exportThenImportGivesTheSameSamples();
    void aFileThatIsNoSoundIsReported();
    void cancelInTheProgressDialogStopsTheWork();
};

void ImportExportTest::exportThenImportGivesTheSameSamples() {
    RecordingPlatformScope platform;
    QTemporaryDir dir;
    TMainForm frame;
    Workspace& ws = frame.workspace();
    ws.add(std::make_unique<TUnitWave>(mono({0, 100, -100, 32767, -32768}, 8000), 2,
                                       dir.filePath("five.wav").toStdString()));
    frame.updateActions();
    const QString flac = dir.filePath("five.flac");
    QString suggested;
    frame.prompts().exportFile = [&](const QString& current) {
        suggested = current;
        return flac;
    };
    frame.action("FileExport")->trigger();
    QVERIFY(frame.task().running() || QFileInfo::exists(flac));
    QVERIFY(!frame.action("FileImport")->isEnabled() || !frame.task().running());
    QTRY_VERIFY(!frame.task().running());
    QCOMPARE(suggested, QString("five.flac"));
    QVERIFY(QFileInfo::exists(flac));

    frame.prompts().importFile = [&] { return flac; };
    frame.action("FileImport")->trigger();
    QTRY_COMPARE(ws.documents().size(), std::size_t(2));
    const TUnitWave& imported = *ws.active();
    QCOMPARE(imported.getFileName(), dir.filePath("five.wav").toStdString());
    QCOMPARE(samplesOf(imported.getSound()->GetLeftWave()), (Samples{0, 100, -100, 32767, -32768}));
    QCOMPARE(imported.getFreq(), 8000);
    QVERIFY(imported.needsSave());  // not yet what any file holds
    QVERIFY(frame.action("FileImport")->isEnabled());
    QVERIFY(platform.recorder.messages.empty());
}

void ImportExportTest::aFileThatIsNoSoundIsReported() {
    RecordingPlatformScope platform;
    QTemporaryDir dir;
    const QString text = dir.filePath("notes.txt");
    QFile f(text);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write("these are words, not sound\n");
    f.close();
    TMainForm frame;
    frame.prompts().importFile = [&] { return text; };
    frame.action("FileImport")->trigger();
    QTRY_VERIFY(!frame.task().running());
    QCOMPARE(frame.workspace().documents().size(), std::size_t(0));
    QCOMPARE(platform.recorder.messages.size(), std::size_t(1));
    QCOMPARE(platform.recorder.messages[0].caption, std::string("File Error"));
    const std::string start = "Cannot import the file: \"" + text.toStdString() + "\", ";
    QCOMPARE(platform.recorder.messages[0].text.substr(0, start.size()), start);
}

void ImportExportTest::cancelInTheProgressDialogStopsTheWork() {
    QWidget window;
    BackgroundTask task(&window);
    task.setProgressDelay(0);
    std::atomic<bool> sawCancel{false};
    bool finished = false, wasCancelled = false;
    QVERIFY(task.start(
        "Importing long.flac",
        [&](CancelFlag& cancel) {
            while (!isCancelled(cancel)) std::this_thread::sleep_for(std::chrono::milliseconds(2));
            sawCancel = true;
        },
        [&](bool cancelled) {
            finished = true;
            wasCancelled = cancelled;
        }));
    QVERIFY(task.running());
    QVERIFY(!task.start("again", [](CancelFlag&) {}, [](bool) {}));  // one at a time
    QTRY_VERIFY(task.progressDialog() && task.progressDialog()->isVisible());
    QCOMPARE(task.progressDialog()->labelText(), QString("Importing long.flac"));
    QTest::mouseClick(task.progressDialog()->findChild<QPushButton*>(), Qt::LeftButton);
    QTRY_VERIFY(finished);
    QVERIFY(sawCancel);
    QVERIFY(wasCancelled);
    QVERIFY(!task.running());
    QCOMPARE(task.progressDialog(), nullptr);
}

QTEST_MAIN(ImportExportTest)
#include "import_export_test.moc"
