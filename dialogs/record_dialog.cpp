#include "dialogs/record_dialog.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

namespace orv {

namespace {
QString qs(std::string_view s) { return QString::fromUtf8(s.data(), qsizetype(s.size())); }
}  // namespace

int failedField(const FormSpec& spec, const FormState& state, const FormError& error) {
    // The form says which field failed; an error made elsewhere is found by its name.
    if (error.fieldIndex != kNoField) return error.fieldIndex;
    if (error.field.empty()) return kNoField;
    int option = kNoField;
    for (std::size_t i = 0; i < spec.fields.size(); ++i) {
        const FieldDef& d = spec.fields[i];
        if (!captionMatches(d.messageName(), error.field) || !fieldCounts(spec, state, int(i)))
            continue;
        if (d.kind != FieldKind::Option && d.kind != FieldKind::Flag) return int(i);
        if (option == kNoField) option = int(i);
    }
    return option;
}

DialogButtons arrangeDialog(QDialog& dialog, QWidget* content, ButtonLayout layout) {
    const bool right = layout == ButtonLayout::OKRight || layout == ButtonLayout::OKHelpRight;
    const bool help = layout == ButtonLayout::OKHelpRight || layout == ButtonLayout::OKHelpBottom;
    auto* outer = new QBoxLayout(right ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom,
                                 &dialog);
    outer->addWidget(content, 1);
    auto* buttons = new QBoxLayout(right ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    DialogButtons b;
    b.ok = new QPushButton("OK", &dialog);
    b.ok->setObjectName("OKBtn");
    b.ok->setDefault(true);
    b.cancel = new QPushButton("Cancel", &dialog);
    b.cancel->setObjectName("CancelBtn");
    if (!right) buttons->addStretch(1);
    buttons->addWidget(b.ok);
    buttons->addWidget(b.cancel);
    if (help) {
        b.help = new QPushButton("&Help", &dialog);
        b.help->setObjectName("HelpBtn");
        b.help->setAutoDefault(false);
        buttons->addWidget(b.help);
    }
    if (right) buttons->addStretch(1);
    outer->addLayout(buttons);
    QObject::connect(b.ok, &QPushButton::clicked, &dialog, &QDialog::accept);
    QObject::connect(b.cancel, &QPushButton::clicked, &dialog, &QDialog::reject);
    return b;
}

TRecordDialog::TRecordDialog(DialogSetup setup, QWidget* parent)
    : QDialog(parent),
      setup_(std::move(setup)),
      layout_(dialogLayoutFor(setup_.caption.empty() ? setup_.spec->caption : setup_.caption)) {
    ORV_ASSERT(setup_.spec != nullptr, "dialogs");
    setObjectName(layout_.className.empty() ? QString("TRecordDialog") : qs(layout_.className));
    setWindowTitle(qs(setup_.caption.empty() ? setup_.spec->caption : setup_.caption));
    panel_ = new FormPanel(*setup_.spec, setup_.names,
                           PanelHints{layout_.columnBreaks, layout_.optionsAsList}, this);
    panel_->setState(setup_.initial);
    QWidget* content = setup_.sideTable ? withSideTable(panel_) : panel_;
    buttons_ = arrangeDialog(*this, content, layout_.buttons);
    if (buttons_.help)
        connect(buttons_.help, &QPushButton::clicked, this,
                [this] { emit helpRequested(helpContext()); });
}

const FormState& TRecordDialog::state() const { return panel_->state(); }

QWidget* TRecordDialog::withSideTable(QWidget* form) {
    auto* content = new QWidget(this);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(form, 1);
    sideBox_ = new QGroupBox("Chosen Waves", content);
    sideBox_->setObjectName("grpChosenWaves");
    sideGrid_ = new QGridLayout(sideBox_);
    sideGrid_->setHorizontalSpacing(16);
    column->addWidget(sideBox_);
    connect(panel_, &FormPanel::edited, this, &TRecordDialog::refreshSideTable);
    refreshSideTable();
    return content;
}

void TRecordDialog::refreshSideTable() {
    if (!setup_.sideTable) return;
    const std::vector<std::vector<std::string>> rows = setup_.sideTable(panel_->state());
    // The table keeps its shape: its cells are made the first time.
    if (sideCells_.empty()) {
        for (std::size_t r = 0; r < rows.size(); ++r) {
            sideCells_.emplace_back();
            for (std::size_t c = 0; c < rows[r].size(); ++c) {
                auto* cell = new QLabel(sideBox_);
                cell->setObjectName(QString("lblChosen_%1_%2").arg(r).arg(c));
                if (r == 0) {
                    QFont bold = cell->font();
                    bold.setBold(true);
                    cell->setFont(bold);
                }
                sideGrid_->addWidget(cell, int(r), int(c));
                sideCells_[r].push_back(cell);
            }
        }
        // Wide enough for long lengths, so the dialog keeps its size while the user picks.
        const int wide = sideBox_->fontMetrics().horizontalAdvance("00:00.00000 s");
        for (int c = 1; c < sideGrid_->columnCount(); ++c) {
            sideGrid_->setColumnMinimumWidth(c, wide);
            sideGrid_->setColumnStretch(c, 1);
        }
    }
    for (std::size_t r = 0; r < rows.size() && r < sideCells_.size(); ++r)
        for (std::size_t c = 0; c < rows[r].size() && c < sideCells_[r].size(); ++c)
            sideCells_[r][c]->setText(QString::fromStdString(rows[r][c]));
}

void TRecordDialog::showEvent(QShowEvent* event) {
    refreshSideTable();
    QDialog::showEvent(event);
}

void TRecordDialog::accept() {
    if (setup_.accept) {
        if (std::optional<FormError> error = setup_.accept(panel_->state())) {
            error->show();
            const int field = failedField(*setup_.spec, panel_->state(), *error);
            if (field != kNoField) panel_->focusField(field);
            return;
        }
    }
    QDialog::accept();
}

}  // namespace orv
