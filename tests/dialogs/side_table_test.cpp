// The table beside a merge dialog's form: it shows the two chosen waves' properties when the
// dialog opens, follows every choice in the wave lists, sits under the form, and is not
// there at all for a dialog that has none.
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

#include "dialogs/record_dialog.h"
#include "document/records.h"
#include "document/split_merge.h"
#include "document/wave_comparison.h"
#include "document/workspace.h"
#include "support/recording_platform.h"

using namespace orv;

namespace {

template <class T>
T* child(QWidget* parent, const char* name) {
    T* w = parent->findChild<T*>(name);
    if (!w) qFatal("no control %s", name);
    return w;
}

// `n` samples of silence.
WavePtr silence(std::int32_t n) {
    CancelFlag cancel{0};
    WavePtr w = newWave(cancel, n);
    for (std::int32_t i = 0; i < n; ++i) (*w)[i] = 0;
    return w;
}

// "low": mono, 8 bits, 22050 Hz, half a second; "high": stereo, 16 bits, 44100 Hz, 1.5 s.
struct TwoWaves {
    TwoWaves() {
        low = &ws.add(std::make_unique<TUnitWave>(
            std::make_unique<MonoSound>(silence(11025), 22050), 1, "low.wav"));
        high = &ws.add(std::make_unique<TUnitWave>(
            std::make_unique<StereoSound>(silence(66150), silence(66150), 44100), 2, "high.wav"));
        ws.registerName(*low, "low");
        ws.registerName(*high, "high");
    }
    Workspace ws;
    TUnitWave* low;
    TUnitWave* high;
};

DialogSetup mergeSetup(const Workspace& ws, const MergeHorRecord& record) {
    DialogSetup s;
    s.spec = &MergeHorRecord::table();
    s.initial = showRecord(MergeHorRecord::table(), record, &ws);
    s.names = &ws;
    s.sideTable = mergeSideTable(ws, MergeHorRecord::table());
    return s;
}

// One column of the table below its heading.
QStringList column(QWidget* dialog, int c) {
    QStringList cells;
    for (int r = 1; r <= 4; ++r) {
        const QString name = QString("lblChosen_%1_%2").arg(r).arg(c);
        cells << child<QLabel>(dialog, qPrintable(name))->text();
    }
    return cells;
}

const QStringList kLow{"Mono", "22050 Hz", "8 Bits", "0.50000 s"};
const QStringList kHigh{"Stereo", "44100 Hz", "16 Bits", "1.50000 s"};
const QStringList kNone{"", "", "", ""};

}  // namespace

class SideTableTest : public QObject {
    Q_OBJECT
private slots:
    void followsTheChosenWaves();
    void madeAgainWhenShown();
    void onlyWhereTheDialogHasOne();
};

void SideTableTest::followsTheChosenWaves() {
    test::RecordingPlatformScope messages;
    TwoWaves w;
    TRecordDialog dialog(mergeSetup(w.ws, MergeHorRecord{}));
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto* box = child<QGroupBox>(&dialog, "grpChosenWaves");
    QCOMPARE(box->title(), QString("Chosen Waves"));
    QCOMPARE(child<QLabel>(&dialog, "lblChosen_0_0")->text(), QString(""));
    QCOMPARE(child<QLabel>(&dialog, "lblChosen_0_1")->text(), QString("First"));
    QCOMPARE(child<QLabel>(&dialog, "lblChosen_0_2")->text(), QString("Last"));
    QStringList captions;
    for (int r = 1; r <= 4; ++r)
        captions << child<QLabel>(&dialog, qPrintable(QString("lblChosen_%1_0").arg(r)))->text();
    QCOMPARE(captions, (QStringList{"Mono/Stereo", "Frequency", "Bits", "Length"}));
    QCOMPARE(column(&dialog, 1), kNone);
    QCOMPARE(column(&dialog, 2), kNone);

    // The lists hold the names in the order of the windows: low, then high.
    auto* first = child<QComboBox>(&dialog, "cboFirst");
    auto* last = child<QComboBox>(&dialog, "cboLast");
    first->setFocus();
    QTest::keyClick(first, Qt::Key_Down);
    QCOMPARE(first->currentText(), QString("low"));
    QCOMPARE(column(&dialog, 1), kLow);
    QCOMPARE(column(&dialog, 2), kNone);
    QTest::keyClick(first, Qt::Key_Down);
    QCOMPARE(column(&dialog, 1), kHigh);
    last->setFocus();
    QTest::keyClick(last, Qt::Key_Down);
    QCOMPARE(column(&dialog, 1), kHigh);
    QCOMPARE(column(&dialog, 2), kLow);

    // Under the form, left of the buttons.
    FormPanel* panel = dialog.panel();
    QCOMPARE(box->parentWidget(), panel->parentWidget());
    QVERIFY(box->geometry().top() > panel->geometry().bottom());
    QVERIFY(dialog.buttons().ok->geometry().left() >
            box->mapTo(&dialog, QPoint(box->width(), 0)).x());
}

void SideTableTest::madeAgainWhenShown() {
    // Chosen before the dialog opens; the wave loses its name before it is shown.
    test::RecordingPlatformScope messages;
    TwoWaves w;
    MergeHorRecord record;
    record.first = "high";
    record.last = "low";
    TRecordDialog dialog(mergeSetup(w.ws, record));
    QCOMPARE(column(&dialog, 1), kHigh);
    QCOMPARE(column(&dialog, 2), kLow);
    w.ws.registerName(*w.low, "");
    dialog.show();
    QCOMPARE(column(&dialog, 1), kHigh);
    QCOMPARE(column(&dialog, 2), kNone);
}

void SideTableTest::onlyWhereTheDialogHasOne() {
    TwoWaves w;
    VolumeRecord record;
    DialogSetup s;
    s.spec = &VolumeRecord::table();
    s.initial = showRecord(VolumeRecord::table(), record, &w.ws);
    s.names = &w.ws;
    TRecordDialog dialog(s);
    dialog.show();
    QCOMPARE(dialog.findChild<QGroupBox*>("grpChosenWaves"), nullptr);
    QCOMPARE(dialog.findChild<QLabel*>("lblChosen_0_1"), nullptr);
    // The form sits in the dialog itself, as before.
    QCOMPARE(dialog.panel()->parentWidget(), &dialog);
}

QTEST_MAIN(SideTableTest)
#include "side_table_test.moc"
