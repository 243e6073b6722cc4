#include "dialogs/view_props_dialog.h"

#include <QCheckBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace orv {

namespace {
QString qs(std::string_view s) { return QString::fromUtf8(s.data(), qsizetype(s.size())); }
}  // namespace

TViewPropsDialog::TViewPropsDialog(const FormSpec& spec, const FormState& shown,
                                   const char* defaultTip,
                                   std::function<std::optional<FormError>(const FormState&)> read,
                                   QWidget* parent)
    : QDialog(parent), read_(std::move(read)) {
    const DialogLayout& layout = dialogLayoutFor(spec.caption);
    setObjectName(qs(layout.className));
    setWindowTitle(qs(spec.caption));
    auto* content = new QWidget(this);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    panel_ = new FormPanel(spec, nullptr, PanelHints{layout.columnBreaks, layout.optionsAsList},
                           content);
    panel_->setState(shown);
    useAsDefault_ = new QCheckBox("Use As Default", content);
    useAsDefault_->setObjectName("chkUseAsDefault");
    useAsDefault_->setToolTip(defaultTip);
    column->addWidget(panel_);
    column->addWidget(useAsDefault_);
    buttons_ = arrangeDialog(*this, content, layout.buttons);
    const int help = spec.helpContext;
    if (buttons_.help)
        connect(buttons_.help, &QPushButton::clicked, this, [this, help] { emit helpRequested(help); });
    connect(panel_, &FormPanel::edited, this, &TViewPropsDialog::enableControls);
    enableControls();
}

bool TViewPropsDialog::useAsDefault() const { return useAsDefault_->isChecked(); }

void TViewPropsDialog::enableControls() {
    // Choosing an option or switching a flag enables what belongs to the choice.
    const FormSpec& spec = panel_->spec();
    for (std::size_t i = 0; i < spec.fields.size(); ++i)
        if (spec.fields[i].group != kNoField)
            if (QWidget* w = panel_->control(int(i)))
                w->setEnabled(fieldCounts(spec, panel_->state(), int(i)));
}

void TViewPropsDialog::accept() {
    if (std::optional<FormError> error = read_(panel_->state())) {
        error->show();
        const int field = failedField(panel_->spec(), panel_->state(), *error);
        if (field != kNoField) panel_->focusField(field);
        return;
    }
    QDialog::accept();
}

}  // namespace orv
