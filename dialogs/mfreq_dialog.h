// TDlgMFreqProps, "Multi Frequency": the length and wave form of the multi-frequency
// generator, and its list of frequency records edited one at a time through the record
// browser. The browser does the list work and the enabling of its buttons; this dialog is
// its controls: it reads the "Frequency" fields into the current record (refusing a move
// when a field is wrong, with the usual message) and writes a record into them.
//
// A checked "Default" box gives its field the default value and disables the edit field.
#pragma once

#include <optional>

#include <QDialog>

#include "dialogs/form_panel.h"
#include "dialogs/record_dialog.h"
#include "document/records.h"

class QLineEdit;
class QPushButton;

namespace orv {

class TDlgMFreqProps final : public QDialog, private BrowserHooks<FrequencyRecord> {
    Q_OBJECT
public:
    // `record` is copied; `context` is what accepting the fields needs (the registered
    // waves, the length of the sound).
    TDlgMFreqProps(const MFreqRecord& record, FormContext context, QWidget* parent = nullptr);
    ~TDlgMFreqProps() override;

    // After OK: the record as accepted (its list closed), and the state of its own fields.
    const MFreqRecord& record() const { return record_; }
    const FormState& state() const { return main_->state(); }

    FormPanel* mainPanel() const { return main_; }
    FormPanel* frequencyPanel() const { return frequency_; }
    const DialogButtons& buttons() const { return buttons_; }
    int helpContext() const { return MFreqRecord::table().helpContext; }

    void accept() override;
    void reject() override;

signals:
    void helpRequested(int context);

private:
    // ---- BrowserHooks --------------------------------------------------------------------
    bool readControls(FrequencyRecord& record) override;
    void writeControls(const FrequencyRecord& record) override;
    void update(const BrowserUpdate& u) override;

    QPushButton* listButton(const QString& name, const QString& text);

    MFreqRecord record_;
    FormContext context_;
    FormPanel* main_;
    FormPanel* frequency_;
    QLineEdit* editCount_;
    QLineEdit* editCursor_;
    QPushButton* btnFirst_;
    QPushButton* btnPrevious_;
    QPushButton* btnNext_;
    QPushButton* btnLast_;
    QPushButton* btnInsert_;
    QPushButton* btnAppend_;
    QPushButton* btnDelete_;
    QPushButton* btnCopy_;
    QPushButton* btnPaste_;
    QPushButton* btnClear_;
    DialogButtons buttons_;
};

}  // namespace orv
