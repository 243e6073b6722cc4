// What the Qt Test programs share: finding controls by name, typing into fields and choosing
// in lists with the keyboard, as a user would.
#pragma once

#include <QComboBox>
#include <QLineEdit>
#include <QtTest>

namespace orv::test {

template <class T>
T* control(QWidget* parent, const char* name) {
    T* w = parent ? parent->findChild<T*>(name) : nullptr;
    if (!w) qFatal("no control %s", name);
    return w;
}

inline void typeText(QLineEdit* edit, const QString& text) {
    edit->setFocus();
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, text);
}

// Chooses the entry `text` of a list with the keyboard.
inline void chooseInList(QComboBox* box, const QString& text) {
    box->setFocus();
    const int target = box->findText(text);
    if (target < 0) qFatal("no entry %s", qPrintable(text));
    QTest::keyClick(box, Qt::Key_Home);
    if (box->currentIndex() < 0) QTest::keyClick(box, Qt::Key_Down);
    while (box->currentIndex() < target) QTest::keyClick(box, Qt::Key_Down);
}

}  // namespace orv::test
