// What the desktop program's tests share: running code inside a modal dialog once it is up,
// and driving the frame by its dialogs, shortcuts and name field.
#pragma once

#include <functional>

#include <QApplication>
#include <QComboBox>
#include <QAction>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QPointer>
#include <QTimer>
#include <QtTest>

#include "app/main_form.h"
#include "support/qt_test_helpers.h"

namespace orv::test {

// Runs `act` on the next modal dialog as soon as it is shown (the dialog's exec() blocks
// the caller). Whatever `act` leaves open is rejected after it, so a failed check ends in a
// failed test rather than a hang.
inline QList<QPointer<QTimer>>& pendingModals() {
    static QList<QPointer<QTimer>> pending;
    return pending;
}
// Drops what still waits for a dialog; true when something did (a dialog that was expected
// never came).
inline bool cancelPendingModals() {
    bool any = false;
    for (const QPointer<QTimer>& t : pendingModals())
        if (t) {
            any = any || t->isActive();
            delete t.data();
        }
    pendingModals().clear();
    return any;
}
inline void whenModal(std::function<void(QDialog*)> act) {
    auto* timer = new QTimer;
    pendingModals().append(timer);
    timer->setInterval(5);
    QObject::connect(timer, &QTimer::timeout, [timer, act] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog) return;
        timer->stop();
        timer->deleteLater();
        act(dialog);
        if (dialog->isVisible()) dialog->reject();
    });
    timer->start();
}

// ---- driving the frame ----------------------------------------------------------------

// Makes the frame the active window: shortcuts only work there, and a closed dialog leaves
// no window active on the offscreen platform.
inline void activate(TMainForm& frame) {
    frame.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&frame));
}

// File > New through the Wave Properties dialog.
inline void newWaveByDialog(TMainForm& frame, const char* frequency, bool stereo) {
    whenModal([&](QDialog* d) {
        chooseInList(control<QComboBox>(d, "cboSampleFrequency"), frequency);
        QTest::mouseClick(control<QRadioButton>(d, stereo ? "optMonoStereoStereo" : "optMonoStereoMono"),
                          Qt::LeftButton);
        QTest::mouseClick(control<QPushButton>(d, "OKBtn"), Qt::LeftButton);
    });
    frame.action("FileNewWave")->trigger();
}

// Make Sinus by its shortcut and dialog: the frequency and the length typed, Return.
inline void makeSinusByDialog(TMainForm& frame, const QString& frequency, const QString& length) {
    activate(frame);
    whenModal([&](QDialog* d) {
        QCOMPARE(d->objectName(), QString("TDlgSinusProps"));
        typeText(control<QLineEdit>(d, "editFrequency"), frequency);
        typeText(control<QLineEdit>(d, "editLength"), length);
        QTest::keyClick(control<QLineEdit>(d, "editLength"), Qt::Key_Return);
    });
    QTest::keyClick(&frame, Qt::Key_S, Qt::ShiftModifier | Qt::AltModifier);
}

// Types a name into the tool bar's name field and takes it with Enter.
inline void giveNameInField(TMainForm& frame, const QString& name) {
    QLineEdit* edit = frame.editName();
    QTest::mouseClick(edit, Qt::LeftButton);
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, name);
    QTest::keyClick(edit, Qt::Key_Return);
}

}  // namespace orv::test
