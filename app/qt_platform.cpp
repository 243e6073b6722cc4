#include "app/qt_platform.h"

#include <cstdio>
#include <cstdlib>

#include <QApplication>
#include <QMessageBox>
#include <QThread>
#include <QWidget>

namespace orv {

namespace {
QString qs(std::string_view s) { return QString::fromUtf8(s.data(), qsizetype(s.size())); }

// The window a message belongs to: the open dialog, else the active window.
QWidget* messageParent() {
    if (QWidget* modal = QApplication::activeModalWidget()) return modal;
    return QApplication::activeWindow();
}
}  // namespace

void QtPlatform::showMessage(std::string_view caption, std::string_view text, MessageIcon icon) {
    if (!qApp) {
        Platform::showMessage(caption, text, icon);
        return;
    }
    // A job on a worker thread may report (running out of memory): the box belongs to the
    // user-interface thread, which shows it while the worker waits.
    if (QThread::currentThread() != qApp->thread()) {
        const std::string c(caption), t(text);
        QMetaObject::invokeMethod(
            qApp, [this, c, t, icon] { showMessage(c, t, icon); }, Qt::BlockingQueuedConnection);
        return;
    }
    QMessageBox box(icon == MessageIcon::Stop ? QMessageBox::Critical : QMessageBox::Information,
                    qs(caption), qs(text), QMessageBox::Ok, messageParent());
    box.exec();
}

void QtPlatform::trace(std::string_view line) {
    static const bool on = std::getenv("ORVASTO_TRACE") != nullptr;
    if (on) std::fprintf(stderr, "%.*s", int(line.size()), line.data());
}

void QtPlatform::assertionFailed(std::string_view text) {
    // stderr first: the box may not come up in a broken state.
    Platform::assertionFailed(text);
    if (qApp) {
        QMessageBox box(QMessageBox::Critical, "Internal Error", qs(text), QMessageBox::Ok,
                        messageParent());
        box.exec();
    }
}

}  // namespace orv
