// The desktop program and orvasto-cli are two front ends over the same document layer: the
// same operations, typed into dialogs here and given as steps there, must give the same
// file, byte for byte.
#include <QProcess>
#include <QTemporaryDir>

#include "support/recording_platform.h"
#include "tests/app/gui_test_helpers.h"

using namespace orv;
using namespace orv::test;

class CliCompareTest : public QObject {
    Q_OBJECT
private slots:
    void sameOperationsSameFile();
};

void CliCompareTest::sameOperationsSameFile() {
    QTemporaryDir dir;
    const QString cliFile = dir.filePath("cli.wav");
    const QString guiFile = dir.filePath("gui.wav");

    // A falling line named "env" steers the volume of a stereo A4, which is then reversed
    // and saved.
    QProcess cli;
    cli.start(ORVASTO_CLI,
              {"new", "22050", "16", "1", "MakeLine", "Length=20 ms", "End Value=25 %", "name", "env",
               "new", "22050", "16", "2", "MakeSinus", "Frequency=A4", "Length=50 ms",
               "Volume", "Volume Factor=Envelope", "Envelope=env", "Reverse", "save", cliFile});
    QVERIFY(cli.waitForFinished(60000));
    QCOMPARE(cli.exitCode(), 0);

    RecordingPlatformScope messages;
    TMainForm frame;
    frame.runner().setInline(true);
    frame.prompts().saveFile = [&](const QString&) { return guiFile; };
    frame.show();
    QVERIFY(QTest::qWaitForWindowExposed(&frame));
    newWaveByDialog(frame, "22 kHz", false);
    activate(frame);
    whenModal([](QDialog* d) {
        typeText(control<QLineEdit>(d, "editLength"), "20 ms");
        typeText(control<QLineEdit>(d, "editEndValue"), "25 %");
        QTest::mouseClick(control<QPushButton>(d, "OKBtn"), Qt::LeftButton);
    });
    QTest::keyClick(&frame, Qt::Key_L, Qt::AltModifier);
    giveNameInField(frame, "env");
    newWaveByDialog(frame, "22 kHz", true);
    makeSinusByDialog(frame, "A4", "50 ms");
    activate(frame);
    whenModal([](QDialog* d) {
        chooseInList(control<QComboBox>(d, "cboEnvelope"), "env");
        QTest::mouseClick(control<QPushButton>(d, "OKBtn"), Qt::LeftButton);
    });
    QTest::keyClick(&frame, Qt::Key_V);
    activate(frame);
    QTest::keyClick(&frame, Qt::Key_R);
    QTest::keyClick(&frame, Qt::Key_A, Qt::ControlModifier);
    QVERIFY(messages.recorder.messages.empty());
    QVERIFY(!cancelPendingModals());

    QFile a(cliFile), b(guiFile);
    QVERIFY(a.open(QIODevice::ReadOnly));
    QVERIFY(b.open(QIODevice::ReadOnly));
    const QByteArray cliBytes = a.readAll(), guiBytes = b.readAll();
    QCOMPARE(cliBytes.size(), 44 + 1102 * 4);  // trunc(22050 x 0.05) frames of 2 x 16 bits
    QVERIFY(cliBytes == guiBytes);
}

QTEST_MAIN(CliCompareTest)
#include "cli_compare_test.moc"
