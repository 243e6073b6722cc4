#include "dialogs/wave_view_dialog.h"

namespace orv {

namespace {
FormState shown(WaveViewRecord record) { return RecordForm<WaveViewRecord>(record).show(nullptr); }
}  // namespace

TDlgWaveViewProps::TDlgWaveViewProps(const WaveViewRecord& current, QWidget* parent)
    : TViewPropsDialog(
          WaveViewRecord::table(), shown(current),
          "Windows opened from now on show their waves this way",
          [this](const FormState& state) {
              WaveViewRecord read = record_;
              WaveViewForm form(read);
              std::optional<FormError> error = form.accept(state, FormContext{});
              if (!error) record_ = read;
              return error;
          },
          parent),
      record_(current) {}

}  // namespace orv
