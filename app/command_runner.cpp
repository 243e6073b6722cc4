#include "app/command_runner.h"

#include "app/progress_dialog.h"

#include <QApplication>
#include <QCursor>
#include <QProgressDialog>
#include <QTimer>

namespace orv {

TypedFields typedFieldsOf(const FormSpec& spec, const FormState& state) {
    TypedFields typed;
    for (std::size_t i = 0; i < spec.fields.size(); ++i) {
        const FieldDef& d = spec.fields[i];
        if (d.kind == FieldKind::Preset) continue;
        if (d.kind == FieldKind::Choice && state.fields[i].index < 0) continue;
        if (!fieldCounts(spec, state, int(i))) continue;
        typed.emplace_back(std::string(d.caption), shownValue(spec, state, int(i)));
    }
    return typed;
}

CommandRunner::CommandRunner(Workspace& workspace, QObject* parent, QWidget* window)
    : QObject(parent), workspace_(workspace), window_(window), poll_(new QTimer(this)) {
    poll_->setInterval(50);
    connect(poll_, &QTimer::timeout, this, &CommandRunner::tick);
}

CommandRunner::~CommandRunner() {
    // The program closes while a job computes: stop it and wait for the worker.
    if (worker_.joinable()) {
        job_->cancel();
        worker_.join();
    }
}

void CommandRunner::begin() {
    busy_ = true;
    if (qApp) QApplication::setOverrideCursor(Qt::WaitCursor);
    emit busyChanged(true);
}

void CommandRunner::end(const ActionResult& result) {
    if (qApp) QApplication::restoreOverrideCursor();
    busy_ = false;
    Done done = std::move(done_);
    emit busyChanged(false);
    emit finished(QString::fromStdString(action_));
    if (done) done(result);
}

void CommandRunner::run(std::string_view action, const CommandInput& input, Done done) {
    // The list of frequencies has no text form: it goes into the document's remembered
    // record, which the command starts from.
    if (input.frequencies && workspace_.active() && !input.frequencies->empty())
        workspace_.active()->records().mfreq.frequencies =
            RecordBrowser<FrequencyRecord>(*input.frequencies);

    // A command that does not compute (a new wave, viewing ...) may run beside a job; the
    // enabling rules let only such commands through while one is out.
    const bool jobOut = job_ != nullptr;
    if (!jobOut) {
        action_ = std::string(action);
        done_ = std::move(done);
        begin();
    }
    PreparedAction prepared;
    if (input.form && input.file.empty()) {
        prepared = workspace_.prepareAction(action, input.form->state);
    } else {
        TypedFields fields;
        if (input.form) fields = typedFieldsOf(*input.form->spec, input.form->state);
        if (!input.file.empty()) fields.emplace_back("File", input.file);
        prepared = workspace_.prepareAction(action, fields);
    }
    if (jobOut) {
        ORV_ASSERT_TEXT(!prepared.job, "one job at a time", "Main");
        emit finished(QString::fromUtf8(action.data(), qsizetype(action.size())));
        if (done) done(prepared.result);
        return;
    }
    if (!prepared.job) return end(prepared.result);
    job_ = std::move(prepared.job);
    if (inline_) {
        job_->compute();
        return jobDone();
    }
    since_.start();
    poll_->start();
    worker_ = std::thread([this, job = job_.get()] {
        job->compute();
        QMetaObject::invokeMethod(this, &CommandRunner::jobDone, Qt::QueuedConnection);
    });
}

void CommandRunner::cancel() {
    if (!job_) return;
    job_->cancel();
    if (dialog_) dialog_->setLabelText(tr("Cancelling..."));
}

void CommandRunner::tick() {
    if (!job_) return;
    if (!dialog_ && since_.elapsed() >= progressDelayMs_) {
        const ActionDef* def = findAction(action_);
        QString caption = def ? QString::fromUtf8(def->caption.data(), qsizetype(def->caption.size()))
                              : QString::fromStdString(action_);
        caption.remove('&');
        // The enabling rules keep away what would conflict with the job.
        dialog_ = openProgress(caption, 1000, window_, "ProgressDialog");
        connect(dialog_, &QProgressDialog::canceled, this, &CommandRunner::cancel);
    }
    if (dialog_) {
        const double part = double(job_->done()) / double(job_->expected());
        dialog_->setValue(int(part * 1000.0));
    }
}

void CommandRunner::jobDone() {
    if (worker_.joinable()) worker_.join();
    poll_->stop();
    closeProgress(dialog_);
    const ActionResult result = workspace_.commit(std::move(job_));
    end(result);
}

}  // namespace orv
