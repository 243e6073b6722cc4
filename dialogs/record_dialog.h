// The one dialog of every parameter record: its controls come from the record's field table
// (FormPanel), its layout hints and buttons from dialog_layouts.h, and its behaviour from
// the shared form logic:
//   shown     the controls show the state made from the document's record;
//   editing   the option follows the field last typed into or chosen;
//   OK        the state is accepted on a copy of the record; the first failure is shown as
//             "In <field>: <message>" under "Input Error", the dialog stays open with the
//             user's text and the failed field gets the focus;
//   Cancel    closes; nothing was read, nothing changes.
// The caller takes state() after OK and hands it to the command.
//
// A dialog may show a table beside its form (the merge dialogs show the two chosen waves'
// properties): a group box "Chosen Waves" under the form, made again from the form state
// when the dialog is shown and after every change the user makes.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QDialog>

#include "dialogs/dialog_layouts.h"
#include "dialogs/form_panel.h"
#include "document/record_form.h"

class QBoxLayout;
class QGridLayout;
class QGroupBox;
class QLabel;
class QPushButton;

namespace orv {

struct DialogSetup {
    const FormSpec* spec = nullptr;
    FormState initial;
    const WaveNameLookup* names = nullptr;
    // The caption the command shows it under ("Make Block" for the shared block and
    // triangle dialog); the record's own caption when empty.
    std::string_view caption;
    // Accepts the state as OK does, on a copy of the record: the first failure, or nothing.
    std::function<std::optional<FormError>(const FormState&)> accept;
    // Optional: the rows of cells of the table beside the form, for a state. The first row
    // and the first column are headings.
    std::function<std::vector<std::vector<std::string>>(const FormState&)> sideTable;
};

// The field a failure is about, or kNoField: the first field that counts and bears the
// failure's field name (an edit field before an option of the same name).
int failedField(const FormSpec& spec, const FormState& state, const FormError& error);

// The OK, Cancel and (for the help layouts) Help buttons of the four dialog bases, placed
// right of or below `content`.
struct DialogButtons {
    QPushButton* ok = nullptr;
    QPushButton* cancel = nullptr;
    QPushButton* help = nullptr;
};
DialogButtons arrangeDialog(QDialog& dialog, QWidget* content, ButtonLayout layout);

class TRecordDialog final : public QDialog {
    Q_OBJECT
public:
    explicit TRecordDialog(DialogSetup setup, QWidget* parent = nullptr);

    const FormState& state() const;
    FormPanel* panel() const { return panel_; }
    const DialogLayout& dialogLayout() const { return layout_; }
    const DialogButtons& buttons() const { return buttons_; }
    int helpContext() const { return setup_.spec->helpContext; }

    // OK: accepts the state; stays open on a failure.
    void accept() override;

signals:
    void helpRequested(int context);

protected:
    void showEvent(QShowEvent* event) override;

private:
    // The form with the table under it.
    QWidget* withSideTable(QWidget* content);
    void refreshSideTable();

    DialogSetup setup_;
    const DialogLayout& layout_;
    FormPanel* panel_;
    DialogButtons buttons_;
    QGroupBox* sideBox_ = nullptr;
    QGridLayout* sideGrid_ = nullptr;
    // Cells by row, made the first time the table is shown.
    std::vector<std::vector<QLabel*>> sideCells_;
};

}  // namespace orv
