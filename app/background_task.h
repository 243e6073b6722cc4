// Work of the frame that is not a command of a document (importing a file, exporting one)
// done on a thread of its own, so the windows stay live: after half a second a progress
// dialog shows the caption with Cancel, which raises the task's cancel flag; the work then
// stops at its next block. `finish` runs on the user-interface thread when the work is over,
// cancelled or not. One task at a time; a task still running when the frame closes is
// cancelled and waited for.
#pragma once

#include <functional>
#include <memory>
#include <thread>

#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include "core/cancel.h"

class QProgressDialog;
class QTimer;
class QWidget;

namespace orv {

class BackgroundTask final : public QObject {
    Q_OBJECT
public:
    explicit BackgroundTask(QWidget* window, QObject* parent = nullptr);
    ~BackgroundTask() override;

    bool running() const { return running_; }
    // Starts `work` (on the task's thread, with the cancel flag to pass on) unless a task
    // runs; false then.
    bool start(const QString& caption, std::function<void(CancelFlag&)> work,
               std::function<void(bool cancelled)> finish);
    void cancel();
    // Works on the calling thread inside start() (tests that want the result at once).
    void setInline(bool on) { inline_ = on; }
    void setProgressDelay(int ms) { progressDelayMs_ = ms; }
    QProgressDialog* progressDialog() const { return dialog_; }

signals:
    void runningChanged(bool running);

private:
    void tick();
    void done();

    QWidget* window_;
    bool running_ = false;
    bool inline_ = false;
    int progressDelayMs_ = 500;
    QString caption_;
    std::shared_ptr<CancelFlag> cancel_;
    std::function<void(bool)> finish_;
    std::thread worker_;
    QTimer* poll_;
    QElapsedTimer since_;
    QProgressDialog* dialog_ = nullptr;
};

}  // namespace orv
