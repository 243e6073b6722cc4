// The generic record dialog and the Multi Frequency dialog, driven by keys and clicks: the
// option follows the field last touched, a refused field keeps the dialog open with the
// message word for word and the focus on that field, presets fill their fields, the
// browser's buttons follow its rules. (Cancel is tested through the frame.)
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

#include "dialogs/mfreq_dialog.h"
#include "dialogs/record_dialog.h"
#include "document/actions.h"
#include "document/records.h"
#include "support/qt_test_helpers.h"
#include "support/recording_platform.h"

using namespace orv;
using orv::test::control;
using orv::test::typeText;

namespace {

// Two registered waves, as the lists of a dialog show them.
struct Names : WaveNameLookup {
    bool waveExists(std::string_view n) const override { return n == "env" || n == "ramp"; }
    std::vector<std::string> waveNames() const override { return {"env", "ramp"}; }
};

// The volume dialog as the frame makes it: accepting on a copy of `record`.
DialogSetup volumeSetup(VolumeRecord& record, const Names& names, int& accepts) {
    DialogSetup s;
    s.spec = &VolumeRecord::table();
    s.initial = showRecord(VolumeRecord::table(), record, &names);
    s.names = &names;
    s.accept = [&record, &names, &accepts](const FormState& st) {
        ++accepts;
        VolumeRecord copy = record;
        return acceptRecord(VolumeRecord::table(), st, copy, FormContext{&names, 1.0});
    };
    return s;
}

}  // namespace

class RecordDialogTest : public QObject {
    Q_OBJECT
private slots:
    void optionFollowsTheFieldLastTouched();
    void refusedFieldStaysOpenWithMessageAndFocus();
    void fourButtonLayouts();
    void everyDialogOfTheActionTableHasItsLayout();
    void mixLeftRightExamplesFillTheFields();
    void failedFieldPrefersTheEditOverItsOption();
    void multiFrequencyBrowserButtons();
    void multiFrequencyDefaultBoxAndRefusedMove();
};

void RecordDialogTest::optionFollowsTheFieldLastTouched() {
    Names names;
    VolumeRecord record;
    int accepts = 0;
    TRecordDialog dialog(volumeSetup(record, names, accepts));
    dialog.show();
    QCOMPARE(dialog.objectName(), QString("TDlgVolumeProps"));
    QCOMPARE(dialog.windowTitle(), QString("Change Volume"));
    auto* constant = control<QRadioButton>(&dialog, "optVolumeFactorConstant");
    auto* envelope = control<QRadioButton>(&dialog, "optVolumeFactorEnvelope");
    auto* factor = control<QLineEdit>(&dialog, "editConstant");
    auto* list = control<QComboBox>(&dialog, "cboEnvelope");
    QVERIFY(constant->isChecked());
    QCOMPARE(factor->text(), QString("0.5"));
    QCOMPARE(list->count(), 2);
    QCOMPARE(list->currentIndex(), -1);

    // Choosing a wave in the list checks Envelope; typing a factor checks Constant again.
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Down);
    QVERIFY(envelope->isChecked());
    QCOMPARE(dialog.state().fields[1].text, std::string("env"));
    typeText(factor, "-6 dB");
    QVERIFY(constant->isChecked());
    QTest::keyClick(factor, Qt::Key_Return);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(accepts, 1);
    QCOMPARE(dialog.state().fields[2].text, std::string("-6 dB"));
}

void RecordDialogTest::refusedFieldStaysOpenWithMessageAndFocus() {
    test::RecordingPlatformScope messages;
    Names names;
    VolumeRecord record;
    int accepts = 0;
    TRecordDialog dialog(volumeSetup(record, names, accepts));
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto* factor = control<QLineEdit>(&dialog, "editConstant");
    typeText(factor, "5 Hz");
    QTest::mouseClick(dialog.buttons().ok, Qt::LeftButton);
    QCOMPARE(messages.recorder.messages.size(), std::size_t(1));
    QCOMPARE(messages.recorder.messages[0].caption, std::string("Input Error"));
    QCOMPARE(messages.recorder.messages[0].text,
             std::string("In Volume Factor: Wrong unit used, use: '%', 'dB' or no unit."));
    QVERIFY(dialog.isVisible());
    QCOMPARE(factor->text(), QString("5 Hz"));
    QCOMPARE(dialog.focusWidget(), factor);
    QCOMPARE(factor->selectedText(), QString("5 Hz"));

    // Envelope without a wave: the list is the field that failed.
    QTest::mouseClick(control<QRadioButton>(&dialog, "optVolumeFactorEnvelope"), Qt::LeftButton);
    QTest::mouseClick(dialog.buttons().ok, Qt::LeftButton);
    QCOMPARE(messages.recorder.messages.back().text,
             std::string("In Volume Factor: You have to select a Wave"));
    QCOMPARE(dialog.focusWidget(), control<QComboBox>(&dialog, "cboEnvelope"));

    // Corrected, the next OK closes.
    typeText(factor, "25 %");
    QTest::mouseClick(dialog.buttons().ok, Qt::LeftButton);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(messages.recorder.messages.size(), std::size_t(2));
}

void RecordDialogTest::fourButtonLayouts() {
    for (ButtonLayout layout : {ButtonLayout::OKRight, ButtonLayout::OKHelpRight,
                                ButtonLayout::OKBottom, ButtonLayout::OKHelpBottom}) {
        QDialog dialog;
        auto* content = new QWidget(&dialog);
        content->setMinimumSize(200, 100);
        const DialogButtons b = arrangeDialog(dialog, content, layout);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        const bool right = layout == ButtonLayout::OKRight || layout == ButtonLayout::OKHelpRight;
        const bool help = layout == ButtonLayout::OKHelpRight || layout == ButtonLayout::OKHelpBottom;
        QCOMPARE(b.ok->text(), QString("OK"));
        QCOMPARE(b.cancel->text(), QString("Cancel"));
        QCOMPARE(b.help != nullptr, help);
        if (help) QCOMPARE(b.help->text(), QString("&Help"));
        if (right) {
            QVERIFY(b.ok->geometry().left() >= content->geometry().right());
            QVERIFY(b.cancel->geometry().top() > b.ok->geometry().top());
        } else {
            QVERIFY(b.ok->geometry().top() >= content->geometry().bottom());
            QVERIFY(b.cancel->geometry().left() > b.ok->geometry().left());
        }
    }
    QCOMPARE(buttonBaseName(ButtonLayout::OKHelpBottom), std::string_view("TOKHelpBottomDlg"));
}

void RecordDialogTest::everyDialogOfTheActionTableHasItsLayout() {
    for (const ActionDef& def : actionTable()) {
        if (def.form.empty()) continue;
        const DialogLayout& layout = dialogLayoutFor(def.form);
        QVERIFY2(!layout.className.empty(), std::string(def.form).c_str());
    }
    QCOMPARE(dialogLayoutFor("Make Triangle").className, std::string_view("TDlgBlockTriangleProps"));
    QCOMPARE(dialogLayoutFor("Notch Filter").className, std::string_view("TDlgResNotchProps"));
    QCOMPARE(dialogLayoutFor("Wave Properties").buttons, ButtonLayout::OKHelpBottom);
    QVERIFY(dialogLayoutFor("No Such Dialog").className.empty());
}

void RecordDialogTest::mixLeftRightExamplesFillTheFields() {
    LeftRightRecord record;
    DialogSetup s;
    s.spec = &LeftRightRecord::table();
    s.initial = showRecord(LeftRightRecord::table(), record, nullptr);
    s.accept = [&record](const FormState& st) {
        LeftRightRecord copy = record;
        return acceptRecord(LeftRightRecord::table(), st, copy, FormContext{});
    };
    TRecordDialog dialog(s);
    dialog.show();
    QCOMPARE(dialog.objectName(), QString("TDlgLeftRightProps"));
    auto* example = control<QComboBox>(&dialog, "cboExample");
    QCOMPARE(example->currentIndex(), -1);
    QCOMPARE(example->itemText(2), QString("Extra Stereo"));
    example->setFocus();
    QTest::keyClick(example, Qt::Key_Down);
    QTest::keyClick(example, Qt::Key_Down);
    QTest::keyClick(example, Qt::Key_Down);  // Extra Stereo: 0.75, -0.25, -0.25, 0.75
    QCOMPARE(example->currentIndex(), 2);
    QCOMPARE(control<QLineEdit>(&dialog, "editfromLefttoLeft")->text(), QString("0.75"));
    QCOMPARE(control<QLineEdit>(&dialog, "editfromLefttoRight")->text(), QString("-0.25"));
    QCOMPARE(control<QLineEdit>(&dialog, "editfromRighttoLeft")->text(), QString("-0.25"));
    QCOMPARE(control<QLineEdit>(&dialog, "editfromRighttoRight")->text(), QString("0.75"));
}

void RecordDialogTest::failedFieldPrefersTheEditOverItsOption() {
    const FormSpec& spec = VolumeRecord::table();
    FormState state = showRecord(VolumeRecord::table(), VolumeRecord(), nullptr);
    QCOMPARE(failedField(spec, state, inputError("Volume Factor", "x")), 2);  // Constant
    chooseEntry(spec, state, 0, kEnvelope);
    QCOMPARE(failedField(spec, state, inputError("Volume Factor", "x")), 1);  // the list
    QCOMPARE(failedField(spec, state, FormError{}), kNoField);
}

void RecordDialogTest::multiFrequencyBrowserButtons() {
    Names names;
    MFreqRecord record;
    TDlgMFreqProps dialog(record, FormContext{&names, 0.0});
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto* count = control<QLineEdit>(&dialog, "editCount");
    auto* cursor = control<QLineEdit>(&dialog, "editCursor");
    auto* freq = control<QLineEdit>(&dialog, "editFrequency");
    auto button = [&](const char* name) { return control<QPushButton>(&dialog, name); };
    auto enabled = [&] {
        QString s;
        for (const char* n : {"btnFirst", "btnPrevious", "btnNext", "btnLast", "btnDelete", "btnPaste"})
            s += button(n)->isEnabled() ? "1" : "0";
        return s;
    };
    // One record: nothing to move to, nothing to delete, nothing copied.
    QCOMPARE(count->text(), QString("1"));
    QCOMPARE(cursor->text(), QString("1"));
    QCOMPARE(enabled(), QString("000000"));
    QCOMPARE(freq->text(), QString("1 kHz"));

    typeText(freq, "440 Hz");
    QTest::mouseClick(button("btnCopy"), Qt::LeftButton);
    QCOMPARE(enabled(), QString("000001"));
    QTest::mouseClick(button("btnAppend"), Qt::LeftButton);  // at the end, with the defaults
    QCOMPARE(count->text(), QString("2"));
    QCOMPARE(cursor->text(), QString("2"));
    QCOMPARE(freq->text(), QString("1 kHz"));
    QCOMPARE(enabled(), QString("110011"));
    QTest::mouseClick(button("btnFirst"), Qt::LeftButton);
    QCOMPARE(cursor->text(), QString("1"));
    QCOMPARE(freq->text(), QString("440 Hz"));
    QCOMPARE(enabled(), QString("001111"));
    QTest::mouseClick(button("btnInsert"), Qt::LeftButton);  // before the current one
    QCOMPARE(count->text(), QString("3"));
    QCOMPARE(cursor->text(), QString("1"));
    typeText(freq, "220 Hz");
    QTest::mouseClick(button("btnNext"), Qt::LeftButton);
    QCOMPARE(cursor->text(), QString("2"));
    QCOMPARE(freq->text(), QString("440 Hz"));
    QTest::mouseClick(button("btnClear"), Qt::LeftButton);  // this record only
    QCOMPARE(freq->text(), QString("1 kHz"));
    QTest::mouseClick(button("btnPaste"), Qt::LeftButton);
    QCOMPARE(freq->text(), QString("440 Hz"));
    QTest::mouseClick(button("btnLast"), Qt::LeftButton);
    QCOMPARE(cursor->text(), QString("3"));
    // Deleting the last record makes the one before it current.
    QTest::mouseClick(button("btnDelete"), Qt::LeftButton);
    QCOMPARE(count->text(), QString("2"));
    QCOMPARE(cursor->text(), QString("2"));
    QCOMPARE(freq->text(), QString("440 Hz"));
    QTest::mouseClick(button("btnPrevious"), Qt::LeftButton);
    QCOMPARE(freq->text(), QString("220 Hz"));

    QTest::mouseClick(dialog.buttons().ok, Qt::LeftButton);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    const std::vector<FrequencyRecord> list = dialog.record().frequencies.records();
    QCOMPARE(list.size(), std::size_t(2));
    QCOMPARE(list[0].frequency.value, 1.0 / 220);
    QCOMPARE(list[1].frequency.value, 1.0 / 440);
    QCOMPARE(list[1].frequency.unit, std::uint8_t(kUnitHertz));
    // The record the dialog was made from is a copy: untouched.
    QCOMPARE(record.frequencies.count(), 1);
}

void RecordDialogTest::multiFrequencyDefaultBoxAndRefusedMove() {
    test::RecordingPlatformScope messages;
    Names names;
    MFreqRecord record;
    TDlgMFreqProps dialog(record, FormContext{&names, 0.0});
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto* freq = control<QLineEdit>(&dialog, "editFrequency");
    auto* cursor = control<QLineEdit>(&dialog, "editCursor");
    QTest::mouseClick(control<QPushButton>(&dialog, "btnAppend"), Qt::LeftButton);
    typeText(freq, "0 Hz");
    QTest::mouseClick(control<QPushButton>(&dialog, "btnFirst"), Qt::LeftButton);
    QCOMPARE(messages.recorder.messages.size(), std::size_t(1));
    QCOMPARE(messages.recorder.messages[0].text,
             std::string("In Frequency: You cannot use 0 with 'Hz'."));
    QCOMPARE(cursor->text(), QString("2"));
    QCOMPARE(freq->text(), QString("0 Hz"));
    QCOMPARE(dialog.focusWidget(), freq);

    // The Default box disables its field and gives the record the default.
    auto* box = control<QCheckBox>(&dialog, "chkFrequencyDefault");
    QTest::mouseClick(box, Qt::LeftButton);
    QVERIFY(!freq->isEnabled());
    QTest::mouseClick(control<QPushButton>(&dialog, "btnFirst"), Qt::LeftButton);
    QCOMPARE(cursor->text(), QString("1"));
    QTest::mouseClick(dialog.buttons().ok, Qt::LeftButton);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    const std::vector<FrequencyRecord> list = dialog.record().frequencies.records();
    QCOMPARE(list[1].frequency.value, 0.001);
    QVERIFY(list[1].defFrequency);

    // A wrong length is refused after the list was closed, and the list opens again.
    TDlgMFreqProps second(record, FormContext{&names, 0.0});
    second.show();
    typeText(control<QLineEdit>(&second, "editLength"), "0 s");
    QTest::mouseClick(second.buttons().ok, Qt::LeftButton);
    QCOMPARE(QString::fromStdString(messages.recorder.messages.back().text),
             QString("In Length: Value must be positive and more than 0."));
    QVERIFY(second.isVisible());
    QTest::mouseClick(control<QPushButton>(&second, "btnAppend"), Qt::LeftButton);
    QCOMPARE(control<QLineEdit>(&second, "editCount")->text(), QString("2"));
}

QTEST_MAIN(RecordDialogTest)
#include "record_dialog_test.moc"
