// "Wave View": how a window paints its wave (the shared view dialog over the record's
// table). A control that does not count for the present choices is disabled: the strength
// unless the wave is drawn as points, the grid colour unless the grid is drawn.
#pragma once

#include "dialogs/view_props_dialog.h"
#include "document/records_view.h"

namespace orv {

class TDlgWaveViewProps final : public TViewPropsDialog {
    Q_OBJECT
public:
    explicit TDlgWaveViewProps(const WaveViewRecord& current, QWidget* parent = nullptr);

    // After OK: the settings read from the controls.
    const WaveViewRecord& record() const { return record_; }

private:
    WaveViewRecord record_;
};

}  // namespace orv
