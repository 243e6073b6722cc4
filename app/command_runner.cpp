#include "app/command_runner.h"

#include <QApplication>
#include <QCursor>

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

CommandRunner::CommandRunner(Workspace& workspace, QObject* parent)
    : QObject(parent), workspace_(workspace) {}

void CommandRunner::begin() {
    ORV_ASSERT_TEXT(!busy_, "SavedCursor == crDefault", "Main");
    busy_ = true;
    if (qApp) QApplication::setOverrideCursor(Qt::WaitCursor);
    emit busyChanged(true);
}

void CommandRunner::end() {
    if (qApp) QApplication::restoreOverrideCursor();
    busy_ = false;
    emit busyChanged(false);
}

void CommandRunner::run(std::string_view action, const CommandInput& input, Done done) {
    TypedFields fields;
    if (input.form) fields = typedFieldsOf(*input.form->spec, input.form->state);
    if (!input.file.empty()) fields.emplace_back("File", input.file);
    // The list of frequencies has no text form: it goes into the document's remembered
    // record, which the command starts from.
    if (input.frequencies && workspace_.active() && !input.frequencies->empty())
        workspace_.active()->records().mfreq.frequencies =
            RecordBrowser<FrequencyRecord>(*input.frequencies);

    begin();
    const ActionResult result = workspace_.runAction(action, fields);
    end();
    emit finished(QString::fromUtf8(action.data(), qsizetype(action.size())));
    if (done) done(result);
}

}  // namespace orv
