// "Wave View": how a window paints its wave. The controls come from the record's field table
// (colours typed as #RRGGBB, read by WaveViewForm), plus "Use As Default", which makes the
// accepted settings those of the windows opened later in this run. A control that does not
// count for the present choices is disabled: the strength unless the wave is drawn as
// points, the grid colour unless the grid is drawn.
#pragma once

#include <QDialog>

#include "dialogs/form_panel.h"
#include "dialogs/record_dialog.h"
#include "document/records_view.h"

class QCheckBox;

namespace orv {

class TDlgWaveViewProps final : public QDialog {
    Q_OBJECT
public:
    explicit TDlgWaveViewProps(const WaveViewRecord& current, QWidget* parent = nullptr);

    // After OK: the settings read from the controls.
    const WaveViewRecord& record() const { return record_; }
    bool useAsDefault() const;
    FormPanel* panel() const { return panel_; }
    const DialogButtons& buttons() const { return buttons_; }

    // OK: reads the controls into a copy of the record; a failure is shown, the dialog stays
    // open and the failed field gets the focus.
    void accept() override;

signals:
    void helpRequested(int context);

private:
    void enableControls();

    WaveViewRecord record_;
    FormPanel* panel_;
    QCheckBox* useAsDefault_;
    DialogButtons buttons_;
};

}  // namespace orv
