#include "dialogs/mfreq_dialog.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace orv {

TDlgMFreqProps::TDlgMFreqProps(const MFreqRecord& record, FormContext context, QWidget* parent)
    : QDialog(parent), record_(record), context_(context) {
    setObjectName("TDlgMFreqProps");
    setWindowTitle("Multi Frequency");
    auto* content = new QWidget(this);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);

    main_ = new FormPanel(MFreqRecord::table(), context_.waves, {}, content);
    main_->setState(showRecord(MFreqRecord::table(), record_, context_.waves));
    column->addWidget(main_);

    auto* freqBox = new QGroupBox("Frequency", content);
    freqBox->setObjectName("grpFrequency");
    auto* freqLayout = new QVBoxLayout(freqBox);
    frequency_ = new FormPanel(FrequencyRecord::table(), context_.waves, {}, freqBox);
    freqLayout->addWidget(frequency_);
    column->addWidget(freqBox);

    auto* listBox = new QGroupBox("Frequencies", content);
    listBox->setObjectName("grpList");
    auto* list = new QGridLayout(listBox);
    btnFirst_ = listButton("btnFirst", {});
    btnPrevious_ = listButton("btnPrevious", {});
    btnNext_ = listButton("btnNext", {});
    btnLast_ = listButton("btnLast", {});
    btnFirst_->setIcon(style()->standardIcon(QStyle::SP_MediaSkipBackward));
    btnPrevious_->setIcon(style()->standardIcon(QStyle::SP_MediaSeekBackward));
    btnNext_->setIcon(style()->standardIcon(QStyle::SP_MediaSeekForward));
    btnLast_->setIcon(style()->standardIcon(QStyle::SP_MediaSkipForward));
    btnFirst_->setToolTip("First");
    btnPrevious_->setToolTip("Previous");
    btnNext_->setToolTip("Next");
    btnLast_->setToolTip("Last");
    editCursor_ = new QLineEdit(listBox);
    editCursor_->setObjectName("editCursor");
    editCount_ = new QLineEdit(listBox);
    editCount_->setObjectName("editCount");
    for (QLineEdit* e : {editCursor_, editCount_}) {
        e->setReadOnly(true);
        e->setMaximumWidth(60);
        e->setFocusPolicy(Qt::NoFocus);
    }
    auto* nav = new QHBoxLayout;
    nav->addWidget(btnFirst_);
    nav->addWidget(btnPrevious_);
    nav->addWidget(new QLabel("Cursor", listBox));
    nav->addWidget(editCursor_);
    nav->addWidget(new QLabel("Count", listBox));
    nav->addWidget(editCount_);
    nav->addWidget(btnNext_);
    nav->addWidget(btnLast_);
    nav->addStretch(1);
    list->addLayout(nav, 0, 0, 1, 6);
    btnInsert_ = listButton("btnInsert", "Insert");
    btnAppend_ = listButton("btnAppend", "Append");
    btnDelete_ = listButton("btnDelete", "Delete");
    btnCopy_ = listButton("btnCopy", "Copy");
    btnPaste_ = listButton("btnPaste", "Paste");
    btnClear_ = listButton("btnClear", "Clear");
    int c = 0;
    for (QPushButton* b : {btnInsert_, btnAppend_, btnDelete_, btnCopy_, btnPaste_, btnClear_})
        list->addWidget(b, 1, c++);
    column->addWidget(listBox);

    auto& browser = record_.frequencies;
    connect(btnFirst_, &QPushButton::clicked, this, [&browser] { browser.first(); });
    connect(btnPrevious_, &QPushButton::clicked, this, [&browser] { browser.previous(); });
    connect(btnNext_, &QPushButton::clicked, this, [&browser] { browser.next(); });
    connect(btnLast_, &QPushButton::clicked, this, [&browser] { browser.last(); });
    connect(btnInsert_, &QPushButton::clicked, this, [&browser] { browser.insert(); });
    connect(btnAppend_, &QPushButton::clicked, this, [&browser] { browser.append(); });
    connect(btnDelete_, &QPushButton::clicked, this, [&browser] { browser.remove(); });
    connect(btnCopy_, &QPushButton::clicked, this, [&browser] { browser.copy(); });
    connect(btnPaste_, &QPushButton::clicked, this, [&browser] { browser.paste(); });
    connect(btnClear_, &QPushButton::clicked, this, [&browser] { browser.clear(); });

    buttons_ = arrangeDialog(*this, content, ButtonLayout::OKHelpRight);
    connect(buttons_.help, &QPushButton::clicked, this,
            [this] { emit helpRequested(helpContext()); });
    browser.open(*this);
}

TDlgMFreqProps::~TDlgMFreqProps() {
    if (record_.frequencies.isOpen()) record_.frequencies.abandon();
}

QPushButton* TDlgMFreqProps::listButton(const QString& name, const QString& text) {
    auto* b = new QPushButton(text, this);
    b->setObjectName(name);
    b->setAutoDefault(false);
    return b;
}

bool TDlgMFreqProps::readControls(FrequencyRecord& record) {
    const FormSpec& spec = FrequencyRecord::table();
    if (std::optional<FormError> e =
            acceptRecord(FrequencyRecord::table(), frequency_->state(), record, context_)) {
        e->show();
        const int field = failedField(spec, frequency_->state(), *e);
        if (field != kNoField) frequency_->focusField(field);
        return false;
    }
    return true;
}

void TDlgMFreqProps::writeControls(const FrequencyRecord& record) {
    frequency_->setState(showRecord(FrequencyRecord::table(), record, context_.waves));
}

void TDlgMFreqProps::update(const BrowserUpdate& u) {
    editCount_->setText(QString::number(u.count));
    editCursor_->setText(QString::number(u.cursor));
    btnFirst_->setEnabled(u.canGoBack);
    btnPrevious_->setEnabled(u.canGoBack);
    btnNext_->setEnabled(u.canGoForward);
    btnLast_->setEnabled(u.canGoForward);
    btnDelete_->setEnabled(u.canDelete);
    btnPaste_->setEnabled(u.canPaste);
}

void TDlgMFreqProps::accept() {
    // The current record first (a wrong field keeps the dialog open), then the list is
    // closed and the dialog's own fields are read.
    if (!record_.frequencies.close()) return;
    MFreqRecord accepted = record_;
    if (std::optional<FormError> e =
            acceptRecord(MFreqRecord::table(), main_->state(), accepted, context_)) {
        record_.frequencies.open(*this);
        e->show();
        const int field = failedField(MFreqRecord::table(), main_->state(), *e);
        if (field != kNoField) main_->focusField(field);
        return;
    }
    record_ = accepted;
    QDialog::accept();
}

void TDlgMFreqProps::reject() {
    if (record_.frequencies.isOpen()) record_.frequencies.abandon();
    QDialog::reject();
}

}  // namespace orv
