#include "dialogs/form_panel.h"

#include <algorithm>

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

namespace orv {

namespace {
QString qs(std::string_view s) { return QString::fromUtf8(s.data(), qsizetype(s.size())); }
QString shown(std::string_view caption) { return QString::fromStdString(plainCaption(caption)); }
bool listed(const std::vector<std::string_view>& list, std::string_view caption) {
    return std::any_of(list.begin(), list.end(),
                       [&](std::string_view c) { return captionMatches(c, caption); });
}
}  // namespace

QString controlId(std::string_view caption) {
    QString id;
    for (QChar c : qs(caption))
        if (c.isLetterOrNumber()) id += c;
    return id;
}

FormPanel::FormPanel(const FormSpec& spec, const WaveNameLookup* names, const PanelHints& hints,
                     QWidget* parent)
    : QWidget(parent), spec_(spec), names_(names) {
    state_.fields.resize(spec_.fields.size());
    controls_.resize(spec_.fields.size(), nullptr);
    radios_.resize(spec_.fields.size());
    placed_.resize(spec_.fields.size(), false);
    build(hints);
    show();
}

std::vector<int> FormPanel::members(int option, int value) const {
    std::vector<int> out;
    for (std::size_t i = 0; i < spec_.fields.size(); ++i)
        if (spec_.fields[i].group == option && spec_.fields[i].groupValue == value)
            out.push_back(int(i));
    return out;
}

QWidget* FormPanel::makeControl(int field) {
    const FieldDef& d = spec_.fields[std::size_t(field)];
    const QString id = controlId(d.caption);
    QWidget* w = nullptr;
    switch (d.kind) {
        case FieldKind::WaveName: {
            auto* box = new QComboBox(this);
            box->setObjectName("cbo" + id);
            box->setMinimumContentsLength(12);
            connect(box, &QComboBox::activated, this, [this, field, box](int) {
                chooseWave(spec_, state_, field, box->currentText().toStdString(), names_);
                userChanged();
            });
            w = box;
            break;
        }
        case FieldKind::Choice:
        case FieldKind::Preset:
        case FieldKind::Option: {
            // An option only comes here when it is shown as a list.
            auto* box = new QComboBox(this);
            box->setObjectName("cbo" + id);
            for (std::string_view c : d.choices) box->addItem(shown(c));
            connect(box, &QComboBox::activated, this, [this, field](int index) {
                chooseEntry(spec_, state_, field, index);
                userChanged();
            });
            w = box;
            break;
        }
        case FieldKind::Flag: {
            auto* check = new QCheckBox(shown(d.caption), this);
            check->setObjectName("chk" + id);
            connect(check, &QCheckBox::clicked, this, [this, field](bool on) {
                chooseEntry(spec_, state_, field, on ? 1 : 0);
                userChanged();
            });
            w = check;
            break;
        }
        default: {
            auto* edit = new QLineEdit(this);
            edit->setObjectName("edit" + id);
            edit->setMaxLength(99);
            edit->setMinimumWidth(110);
            connect(edit, &QLineEdit::textEdited, this, [this, field](const QString& text) {
                typeInto(spec_, state_, field, text.toStdString());
                userChanged();
            });
            w = edit;
            break;
        }
    }
    controls_[std::size_t(field)] = w;
    placed_[std::size_t(field)] = true;
    return w;
}

void FormPanel::addTopLevel(QGridLayout* grid, int& row, int field, const PanelHints& hints) {
    const FieldDef& d = spec_.fields[std::size_t(field)];
    if (d.kind == FieldKind::Option && !listed(hints.optionsAsList, d.caption)) {
        // A group box with a radio button per choice, each followed by the fields it makes
        // count.
        auto* box = new QGroupBox(shown(d.caption), this);
        box->setObjectName("grp" + controlId(d.caption));
        auto* inner = new QGridLayout(box);
        auto* buttons = new QButtonGroup(box);
        controls_[std::size_t(field)] = box;
        placed_[std::size_t(field)] = true;
        int r = 0;
        for (std::size_t c = 0; c < d.choices.size(); ++c) {
            auto* radio = new QRadioButton(shown(d.choices[c]), box);
            radio->setObjectName("opt" + controlId(d.caption) + controlId(d.choices[c]));
            buttons->addButton(radio, int(c));
            radios_[std::size_t(field)].push_back(radio);
            connect(radio, &QRadioButton::clicked, this, [this, field, c] {
                chooseEntry(spec_, state_, field, int(c));
                userChanged();
            });
            inner->addWidget(radio, r, 0);
            bool any = false;
            for (int m : members(field, int(c))) {
                const FieldDef& md = spec_.fields[std::size_t(m)];
                QWidget* w = makeControl(m);
                // A field captioned like its choice needs no label of its own.
                if (!captionMatches(md.caption, d.choices[c]) && md.kind != FieldKind::Flag)
                    inner->addWidget(new QLabel(shown(md.caption), box), r, 1);
                inner->addWidget(w, r, 2);
                any = true;
                ++r;
            }
            if (!any) ++r;
        }
        inner->setColumnStretch(2, 1);
        grid->addWidget(box, row++, 0, 1, 3);
        return;
    }
    QWidget* w = makeControl(field);
    if (d.kind == FieldKind::Flag) {
        // A check box, then the fields it switches on, on its row and below.
        grid->addWidget(w, row, 0);
        const std::vector<int> kids = members(field, 1);
        if (kids.empty()) ++row;
        for (int m : kids) {
            grid->addWidget(makeControl(m), row, 1, 1, 2);
            ++row;
        }
        return;
    }
    auto* label = new QLabel(shown(d.caption), this);
    label->setBuddy(w);
    grid->addWidget(label, row, 0);
    grid->addWidget(w, row, 1);
    if (d.defaultFlag != kNoField) {
        auto* check = new QCheckBox("Default", this);
        const int flag = d.defaultFlag;
        check->setObjectName("chk" + controlId(spec_.fields[std::size_t(flag)].caption));
        controls_[std::size_t(flag)] = check;
        placed_[std::size_t(flag)] = true;
        connect(check, &QCheckBox::clicked, this, [this, flag](bool on) {
            chooseEntry(spec_, state_, flag, on ? 1 : 0);
            userChanged();
        });
        grid->addWidget(check, row, 2);
    }
    ++row;
}

void FormPanel::build(const PanelHints& hints) {
    auto* columns = new QHBoxLayout(this);
    columns->setContentsMargins(0, 0, 0, 0);
    QGridLayout* grid = nullptr;
    int row = 0;
    auto newColumn = [&] {
        auto* holder = new QVBoxLayout;
        grid = new QGridLayout;
        grid->setColumnStretch(1, 1);
        holder->addLayout(grid);
        holder->addStretch(1);
        columns->addLayout(holder);
        row = 0;
    };
    newColumn();
    // Default boxes are placed with their field, the members of an option or flag with it.
    std::vector<bool> isDefaultFlag(spec_.fields.size(), false);
    for (const FieldDef& d : spec_.fields)
        if (d.defaultFlag != kNoField) isDefaultFlag[std::size_t(d.defaultFlag)] = true;
    for (std::size_t i = 0; i < spec_.fields.size(); ++i) {
        const FieldDef& d = spec_.fields[i];
        if (d.group != kNoField || isDefaultFlag[i]) continue;
        if (row > 0 && listed(hints.columnBreaks, d.caption)) newColumn();
        addTopLevel(grid, row, int(i), hints);
    }
    // A member whose option is itself a member somewhere else still gets a place.
    for (std::size_t i = 0; i < spec_.fields.size(); ++i)
        if (!placed_[i]) {
            QWidget* w = makeControl(int(i));
            grid->addWidget(new QLabel(shown(spec_.fields[i].caption), this), row, 0);
            grid->addWidget(w, row++, 1);
        }
}

void FormPanel::setState(const FormState& state) {
    ORV_ASSERT(state.fields.size() == spec_.fields.size(), "dialogs");
    state_ = state;
    show();
}

void FormPanel::userChanged() {
    show();
    emit edited();
}

void FormPanel::show() {
    for (std::size_t i = 0; i < spec_.fields.size(); ++i) {
        const FieldDef& d = spec_.fields[i];
        const FieldState& s = state_.fields[i];
        QWidget* w = controls_[i];
        if (!radios_[i].empty()) {
            for (std::size_t c = 0; c < radios_[i].size(); ++c)
                radios_[i][c]->setChecked(int(c) == s.index);
            continue;
        }
        if (auto* edit = qobject_cast<QLineEdit*>(w)) {
            const QString text = QString::fromStdString(s.text);
            if (edit->text() != text) edit->setText(text);
            edit->setEnabled(d.defaultFlag == kNoField ||
                             state_.fields[std::size_t(d.defaultFlag)].index == 0);
        } else if (auto* check = qobject_cast<QCheckBox*>(w)) {
            check->setChecked(s.index != 0);
        } else if (auto* box = qobject_cast<QComboBox*>(w)) {
            if (d.kind == FieldKind::WaveName) {
                box->clear();
                if (names_)
                    for (const std::string& n : names_->waveNames())
                        box->addItem(QString::fromStdString(n));
                box->setCurrentIndex(s.text.empty() ? -1
                                                    : box->findText(QString::fromStdString(s.text)));
            } else {
                box->setCurrentIndex(s.index);
            }
        }
    }
}

void FormPanel::focusField(int field) {
    QWidget* w = control(field);
    if (!w) return;
    if (!radios_[std::size_t(field)].empty()) {
        const int index = state_.fields[std::size_t(field)].index;
        if (index >= 0 && std::size_t(index) < radios_[std::size_t(field)].size())
            w = radios_[std::size_t(field)][std::size_t(index)];
    }
    w->setFocus(Qt::OtherFocusReason);
    if (auto* edit = qobject_cast<QLineEdit*>(w)) edit->selectAll();
}

}  // namespace orv
