#include "app/background_task.h"

#include "app/progress_dialog.h"

#include <QApplication>
#include <QProgressDialog>
#include <QTimer>

namespace orv {

BackgroundTask::BackgroundTask(QWidget* window, QObject* parent)
    : QObject(parent), window_(window), poll_(new QTimer(this)) {
    poll_->setInterval(50);
    connect(poll_, &QTimer::timeout, this, &BackgroundTask::tick);
}

BackgroundTask::~BackgroundTask() {
    if (worker_.joinable()) {
        cancel();
        worker_.join();
    }
}

bool BackgroundTask::start(const QString& caption, std::function<void(CancelFlag&)> work,
                           std::function<void(bool)> finish) {
    if (running_) return false;
    running_ = true;
    caption_ = caption;
    finish_ = std::move(finish);
    cancel_ = std::make_shared<CancelFlag>(0);
    emit runningChanged(true);
    if (inline_) {
        work(*cancel_);
        done();
        return true;
    }
    since_.start();
    poll_->start();
    worker_ = std::thread([this, work = std::move(work), cancel = cancel_] {
        work(*cancel);
        QMetaObject::invokeMethod(this, &BackgroundTask::done, Qt::QueuedConnection);
    });
    return true;
}

void BackgroundTask::cancel() {
    if (!running_ || !cancel_) return;
    cancel_->store(1);
    if (dialog_) dialog_->setLabelText(tr("Cancelling..."));
}

void BackgroundTask::tick() {
    if (!running_ || dialog_ || since_.elapsed() < progressDelayMs_) return;
    // How far a file has been read is not known: the bar only shows that work goes on.
    dialog_ = openProgress(caption_, 0, window_, "TaskProgressDialog");
    connect(dialog_, &QProgressDialog::canceled, this, &BackgroundTask::cancel);
}

void BackgroundTask::done() {
    if (worker_.joinable()) worker_.join();
    poll_->stop();
    closeProgress(dialog_);
    const bool cancelled = cancel_ && cancel_->load() != 0;
    std::function<void(bool)> finish = std::move(finish_);
    running_ = false;
    emit runningChanged(false);
    if (finish) finish(cancelled);
}

}  // namespace orv
