// "Volume Diagram": how a window paints its wave as a Vold picture (the shared view dialog
// over the record's table). OK reads the controls with the sample frequency of the window's
// wave, so the record's frequency checks refuse what that wave cannot show.
#pragma once

#include "dialogs/view_props_dialog.h"
#include "document/records_vold.h"

namespace orv {

class TDlgVoldViewProps final : public TViewPropsDialog {
    Q_OBJECT
public:
    // `context` is what the checks read (its sampleFreq: the wave's; 0 when unknown).
    TDlgVoldViewProps(const VoldViewRecord& current,
                               const FormContext& context, QWidget* parent = nullptr);

    // After OK: the settings read from the controls.
    const VoldViewRecord& record() const { return record_; }

private:
    VoldViewRecord record_;
};

}  // namespace orv
