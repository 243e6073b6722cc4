#include "dialogs/selzoom_dialog.h"

#include <algorithm>

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "dialogs/record_dialog.h"

namespace orv {

namespace {

// Field indices of the table below.
enum : int { kSelect, kCursorAt, kPartBegin, kPartEnd, kZoomed, kZoomBegin, kZoomEnd, kFields };

bool checkSelZoom(const SelZoomRecord& r, const FormContext& context, FormError& error) {
    const auto& fields = SelZoomRecord::table().fields;
    const bool part = r.select == SelZoomRecord::kPart;
    const struct {
        int field;
        const ValueRecord& value;
        bool counts;
    } positions[] = {
        {kCursorAt, r.cursorAt, !part},
        {kPartBegin, r.partBegin, part},
        {kPartEnd, r.partEnd, part},
        {kZoomBegin, r.zoomBegin, r.zoomed},
        {kZoomEnd, r.zoomEnd, r.zoomed},
    };
    for (const auto& p : positions) {
        if (p.counts && p.value.value >= context.soundSeconds) {
            error = inputError(fields[p.field].messageName(), kSelZoomAfterEndMessage, p.field);
            return false;
        }
    }
    if (part && r.partBegin.value >= r.partEnd.value) {
        error = inputError("", kSelZoomPartOrderMessage, kPartEnd);
        return false;
    }
    if (r.zoomed && r.zoomBegin.value >= r.zoomEnd.value) {
        error = inputError("", kSelZoomZoomOrderMessage, kZoomEnd);
        return false;
    }
    return true;
}

QString qs(std::string_view s) { return QString::fromUtf8(s.data(), qsizetype(s.size())); }

}  // namespace

SelZoomRecord::SelZoomRecord() { table().applyDefaults(*this); }

const RecordTable<SelZoomRecord>& SelZoomRecord::table() {
    using R = SelZoomRecord;
    auto position = [](std::string_view caption, ValueRecord R::*m) {
        return timeField(caption, m, 0.0, kUnitSecond, kCheckNotNegative);
    };
    static const RecordTable<R> t("Select and Zoom", 40, {
        optionField("Select", &R::select, {"Cursor", "Part"}, kCursor),
        position("Cursor At", &R::cursorAt).in("Select", kCursor),
        position("Part Begin", &R::partBegin).in("Select", kPart),
        position("Part End", &R::partEnd).in("Select", kPart),
        flagField("Zoomed", &R::zoomed, false),
        position("Zoom Begin", &R::zoomBegin).in("Zoomed", 1),
        position("Zoom End", &R::zoomEnd).in("Zoomed", 1),
    }, checkSelZoom);
    return t;
}

SelZoomRequest selZoomRequest(const SelZoomRecord& r, std::int32_t freq, std::int32_t values) {
    auto at = [&](const ValueRecord& v) {
        return std::clamp(truncToInt(v.value * freq), std::int32_t(0), values);
    };
    SelZoomRequest q;
    q.part = r.select == SelZoomRecord::kPart;
    q.cursor = at(r.cursorAt);
    q.begin = at(r.partBegin);
    q.end = at(r.partEnd);
    q.zoomed = r.zoomed;
    q.zoomBegin = at(r.zoomBegin);
    q.zoomEnd = at(r.zoomEnd);
    return q;
}

TDlgSelZoom::TDlgSelZoom(std::function<std::optional<SelZoomTarget>()> target, QWidget* parent)
    : QDialog(parent), target_(std::move(target)) {
    const FormSpec& spec = SelZoomRecord::table();
    const DialogLayout& layout = dialogLayoutFor(spec.caption);
    setObjectName(qs(layout.className));
    setWindowTitle(qs(spec.caption));
    setModal(false);
    state_ = showRecord(SelZoomRecord::table(), record_, nullptr);
    edits_.assign(kFields, nullptr);

    auto* content = new QWidget(this);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    auto makeEdit = [&](int field, QWidget* parentBox) {
        auto* e = new QLineEdit(parentBox);
        e->setObjectName("edit" + QString(qs(spec.fields[std::size_t(field)].caption)).remove(' '));
        e->setMaxLength(99);
        e->setMinimumWidth(110);
        connect(e, &QLineEdit::textEdited, this, [this, field](const QString& text) {
            typeInto(SelZoomRecord::table(), state_, field, text.toStdString());
            showState(field);
        });
        edits_[std::size_t(field)] = e;
        return e;
    };
    auto label = [](const char* text, QLineEdit* buddy, QWidget* box) {
        auto* l = new QLabel(text, box);
        l->setBuddy(buddy);
        return l;
    };

    auto* select = new QGroupBox("Select", content);
    select->setObjectName("grpSelect");
    auto* sg = new QGridLayout(select);
    optCursor_ = new QRadioButton("&Cursor", select);
    optCursor_->setObjectName("optSelectCursor");
    optPart_ = new QRadioButton("&Part", select);
    optPart_->setObjectName("optSelectPart");
    QLineEdit* at = makeEdit(kCursorAt, select);
    QLineEdit* partBegin = makeEdit(kPartBegin, select);
    QLineEdit* partEnd = makeEdit(kPartEnd, select);
    sg->addWidget(optCursor_, 0, 0);
    sg->addWidget(label("&At", at, select), 0, 1);
    sg->addWidget(at, 0, 2);
    sg->addWidget(optPart_, 1, 0);
    sg->addWidget(label("&Begin", partBegin, select), 1, 1);
    sg->addWidget(partBegin, 1, 2);
    sg->addWidget(label("&End", partEnd, select), 2, 1);
    sg->addWidget(partEnd, 2, 2);
    sg->setColumnStretch(2, 1);
    for (auto [radio, choice] : {std::pair{optCursor_, 0}, std::pair{optPart_, 1}})
        connect(radio, &QRadioButton::clicked, this, [this, choice = choice] {
            chooseEntry(SelZoomRecord::table(), state_, kSelect, choice);
            showState();
        });

    auto* zoom = new QGroupBox("Zoom", content);
    zoom->setObjectName("grpZoom");
    auto* zg = new QGridLayout(zoom);
    chkZoomed_ = new QCheckBox("&Zoomed", zoom);
    chkZoomed_->setObjectName("chkZoomed");
    QLineEdit* zoomBegin = makeEdit(kZoomBegin, zoom);
    QLineEdit* zoomEnd = makeEdit(kZoomEnd, zoom);
    zg->addWidget(chkZoomed_, 0, 0, 1, 3);
    zg->addWidget(label("Be&gin", zoomBegin, zoom), 1, 1);
    zg->addWidget(zoomBegin, 1, 2);
    zg->addWidget(label("E&nd", zoomEnd, zoom), 2, 1);
    zg->addWidget(zoomEnd, 2, 2);
    zg->setColumnStretch(2, 1);
    zg->setColumnMinimumWidth(0, 16);
    connect(chkZoomed_, &QCheckBox::clicked, this, [this](bool on) {
        chooseEntry(SelZoomRecord::table(), state_, kZoomed, on ? 1 : 0);
        showState();
    });

    column->addWidget(select);
    column->addWidget(zoom);
    column->addStretch(1);

    // The dialog bases' buttons, as "Apply" and "Close": Apply keeps the dialog open.
    DialogButtons b = arrangeDialog(*this, content, layout.buttons);
    disconnect(b.ok, &QPushButton::clicked, this, &QDialog::accept);
    b.ok->setText("&Apply");
    b.ok->setObjectName("ApplyBtn");
    b.cancel->setText("Close");
    b.cancel->setObjectName("CloseBtn");
    connect(b.ok, &QPushButton::clicked, this, &TDlgSelZoom::apply);
    if (b.help)
        connect(b.help, &QPushButton::clicked, this,
                [this] { emit helpRequested(SelZoomRecord::table().helpContext); });
    showState();
}

QLineEdit* TDlgSelZoom::edit(int field) const { return edits_[std::size_t(field)]; }

void TDlgSelZoom::showState(int typedField) {
    optCursor_->setChecked(state_.fields[kSelect].index == SelZoomRecord::kCursor);
    optPart_->setChecked(state_.fields[kSelect].index == SelZoomRecord::kPart);
    chkZoomed_->setChecked(state_.fields[kZoomed].index != 0);
    for (int i = 0; i < kFields; ++i) {
        QLineEdit* e = edit(i);
        if (!e || i == typedField) continue;  // the field typed into shows what was typed
        const QString text = QString::fromStdString(state_.fields[std::size_t(i)].text);
        if (e->text() != text) e->setText(text);
    }
}

void TDlgSelZoom::apply() {
    const std::optional<SelZoomTarget> target = target_ ? target_() : std::nullopt;
    if (!target) return;
    const FormContext context{nullptr,
                              target->freq > 0 ? double(target->values) / target->freq : 0.0,
                              target->freq};
    SelZoomRecord read = record_;
    if (std::optional<FormError> error =
            acceptRecord(SelZoomRecord::table(), state_, read, context)) {
        error->show();
        if (error->fieldIndex != kNoField)
            if (QLineEdit* e = edit(error->fieldIndex)) {
                e->setFocus(Qt::OtherFocusReason);
                e->selectAll();
            }
        return;
    }
    record_ = read;
    emit applyRequested(selZoomRequest(record_, target->freq, target->values));
}

}  // namespace orv
