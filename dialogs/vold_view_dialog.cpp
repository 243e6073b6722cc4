#include "dialogs/vold_view_dialog.h"

namespace orv {

namespace {
FormState shown(VoldViewRecord record) { return RecordForm<VoldViewRecord>(record).show(nullptr); }
}  // namespace

TDlgVoldViewProps::TDlgVoldViewProps(const VoldViewRecord& current, const FormContext& context,
                                     QWidget* parent)
    : TViewPropsDialog(
          VoldViewRecord::table(), shown(current),
          "Windows opened from now on show their Volume Diagram this way",
          [this, context](const FormState& state) {
              VoldViewRecord read = record_;
              VoldViewForm form(read);
              std::optional<FormError> error = form.accept(state, context);
              if (!error) record_ = read;
              return error;
          },
          parent),
      record_(current) {}

}  // namespace orv
