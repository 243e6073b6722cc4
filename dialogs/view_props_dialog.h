// What the two view dialogs ("Wave View", "Volume Diagram") share: the controls built from
// the record's field table, "Use As Default" under them (the accepted settings become those
// of the windows opened later in this run), the buttons of the dialog's layout, the controls
// that do not count for the present choices disabled, and OK that reads the controls and
// keeps the dialog open on the field that failed.
#pragma once

#include <functional>
#include <optional>

#include <QDialog>

#include "dialogs/form_panel.h"
#include "dialogs/record_dialog.h"

class QCheckBox;

namespace orv {

class TViewPropsDialog : public QDialog {
    Q_OBJECT
public:
    bool useAsDefault() const;
    FormPanel* panel() const { return panel_; }
    const DialogButtons& buttons() const { return buttons_; }
    // OK: `read_` reads the controls into a copy of the record; a failure is shown, the
    // dialog stays open and the failed field gets the focus.
    void accept() override;

signals:
    void helpRequested(int context);

protected:
    // `read` takes the panel's state into the record and says what failed.
    TViewPropsDialog(const FormSpec& spec, const FormState& shown, const char* defaultTip,
                     std::function<std::optional<FormError>(const FormState&)> read,
                     QWidget* parent);

private:
    void enableControls();

    FormPanel* panel_;
    QCheckBox* useAsDefault_;
    DialogButtons buttons_;
    std::function<std::optional<FormError>(const FormState&)> read_;
};

}  // namespace orv
