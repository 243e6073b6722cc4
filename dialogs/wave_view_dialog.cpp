#include "dialogs/wave_view_dialog.h"

#include <QCheckBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace orv {

namespace {
QString qs(std::string_view s) { return QString::fromUtf8(s.data(), qsizetype(s.size())); }
}  // namespace

TDlgWaveViewProps::TDlgWaveViewProps(const WaveViewRecord& current, QWidget* parent)
    : QDialog(parent), record_(current) {
    const FormSpec& spec = WaveViewRecord::table();
    const DialogLayout& layout = dialogLayoutFor(spec.caption);
    setObjectName(qs(layout.className));
    setWindowTitle(qs(spec.caption));
    auto* content = new QWidget(this);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    panel_ = new FormPanel(spec, nullptr, PanelHints{layout.columnBreaks, layout.optionsAsList},
                           content);
    panel_->setState(WaveViewForm(record_).show(nullptr));
    useAsDefault_ = new QCheckBox("Use As Default", content);
    useAsDefault_->setObjectName("chkUseAsDefault");
    useAsDefault_->setToolTip("Windows opened from now on show their waves this way");
    column->addWidget(panel_);
    column->addWidget(useAsDefault_);
    buttons_ = arrangeDialog(*this, content, layout.buttons);
    if (buttons_.help)
        connect(buttons_.help, &QPushButton::clicked, this,
                [this] { emit helpRequested(WaveViewRecord::table().helpContext); });
    connect(panel_, &FormPanel::edited, this, &TDlgWaveViewProps::enableControls);
    enableControls();
}

bool TDlgWaveViewProps::useAsDefault() const { return useAsDefault_->isChecked(); }

void TDlgWaveViewProps::enableControls() {
    // Choosing Lines or Points, or switching the grid, enables what belongs to the choice.
    const FormSpec& spec = panel_->spec();
    for (std::size_t i = 0; i < spec.fields.size(); ++i)
        if (spec.fields[i].group != kNoField)
            if (QWidget* w = panel_->control(int(i)))
                w->setEnabled(fieldCounts(spec, panel_->state(), int(i)));
}

void TDlgWaveViewProps::accept() {
    WaveViewRecord read = record_;
    WaveViewForm form(read);
    if (std::optional<FormError> error = form.accept(panel_->state(), FormContext{})) {
        error->show();
        const int field = failedField(panel_->spec(), panel_->state(), *error);
        if (field != kNoField) panel_->focusField(field);
        return;
    }
    record_ = read;
    QDialog::accept();
}

}  // namespace orv
