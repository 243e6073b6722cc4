#include "dialogs/vold_view_dialog.h"

#include <QCheckBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace orv {

namespace {
QString qs(std::string_view s) { return QString::fromUtf8(s.data(), qsizetype(s.size())); }
}  // namespace

TDlgVoldViewProps::TDlgVoldViewProps(const VoldViewRecord& current, const FormContext& context,
                                     QWidget* parent)
    : QDialog(parent), record_(current), context_(context) {
    const FormSpec& spec = VoldViewRecord::table();
    const DialogLayout& layout = dialogLayoutFor(spec.caption);
    setObjectName(qs(layout.className));
    setWindowTitle(qs(spec.caption));
    auto* content = new QWidget(this);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    panel_ = new FormPanel(spec, nullptr, PanelHints{layout.columnBreaks, layout.optionsAsList},
                           content);
    panel_->setState(VoldViewForm(record_).show(nullptr));
    useAsDefault_ = new QCheckBox("Use As Default", content);
    useAsDefault_->setObjectName("chkUseAsDefault");
    useAsDefault_->setToolTip("Windows opened from now on show their Volume Diagram this way");
    column->addWidget(panel_);
    column->addWidget(useAsDefault_);
    buttons_ = arrangeDialog(*this, content, layout.buttons);
    if (buttons_.help)
        connect(buttons_.help, &QPushButton::clicked, this,
                [this] { emit helpRequested(VoldViewRecord::table().helpContext); });
}

bool TDlgVoldViewProps::useAsDefault() const { return useAsDefault_->isChecked(); }

void TDlgVoldViewProps::accept() {
    VoldViewRecord read = record_;
    VoldViewForm form(read);
    if (std::optional<FormError> error = form.accept(panel_->state(), context_)) {
        error->show();
        const int field = failedField(panel_->spec(), panel_->state(), *error);
        if (field != kNoField) panel_->focusField(field);
        return;
    }
    record_ = read;
    QDialog::accept();
}

}  // namespace orv
