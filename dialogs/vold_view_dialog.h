// "Volume Diagram": how a window paints its wave as a Vold picture. The controls come from
// the record's field table (colours typed as #RRGGBB, read by VoldViewForm), plus "Use As
// Default", which makes the accepted settings those of the windows opened later in this run.
// OK reads the controls with the sample frequency of the window's wave, so the record's
// frequency checks refuse what that wave cannot show.
#pragma once

#include <cstdint>

#include <QDialog>

#include "dialogs/form_panel.h"
#include "dialogs/record_dialog.h"
#include "document/records_vold.h"

class QCheckBox;

namespace orv {

class TDlgVoldViewProps final : public QDialog {
    Q_OBJECT
public:
    // `context` is what the checks read (its sampleFreq: the wave's; 0 when unknown).
    TDlgVoldViewProps(const VoldViewRecord& current, const FormContext& context,
                      QWidget* parent = nullptr);

    // After OK: the settings read from the controls.
    const VoldViewRecord& record() const { return record_; }
    bool useAsDefault() const;
    FormPanel* panel() const { return panel_; }
    const DialogButtons& buttons() const { return buttons_; }

    // OK: reads the controls into a copy of the record; a failure is shown, the dialog stays
    // open and the failed field gets the focus.
    void accept() override;

signals:
    void helpRequested(int context);

private:
    VoldViewRecord record_;
    FormContext context_;
    FormPanel* panel_;
    QCheckBox* useAsDefault_;
    DialogButtons buttons_;
};

}  // namespace orv
