// The controls of one parameter record, built from its field table, and kept in step with a
// form state through the shared form logic (record_form.h): typing into a field or choosing
// in a list makes its option follow, a preset writes its fields, a checked "Default" box
// disables its field. The panel never reads values itself; the dialog around it accepts the
// state.
//
// Controls are named after the field's caption with the usual prefixes, so tests and
// readers find them: "edit" (line edit), "cbo" (list), "chk" (check box), "grp" (an
// option's group box), "opt" + option + choice (its radio buttons), all without blanks or
// punctuation: the volume dialog has grpVolumeFactor, optVolumeFactorConstant,
// editConstant, optVolumeFactorEnvelope and cboEnvelope.
#pragma once

#include <string_view>
#include <vector>

#include <QString>
#include <QWidget>

#include "document/record_form.h"

class QRadioButton;
class QGridLayout;

namespace orv {

struct PanelHints {
    std::vector<std::string_view> columnBreaks;   // top-level fields that start a column
    std::vector<std::string_view> optionsAsList;  // options shown as a list, not radios
};

// "Volume Factor" -> "VolumeFactor".
QString controlId(std::string_view caption);

class FormPanel final : public QWidget {
    Q_OBJECT
public:
    FormPanel(const FormSpec& spec, const WaveNameLookup* names, const PanelHints& hints,
              QWidget* parent = nullptr);

    const FormSpec& spec() const { return spec_; }
    const FormState& state() const { return state_; }
    // Shows `state` in the controls (the lists of wave names are filled anew).
    void setState(const FormState& state);

    // The control of a field: its line edit, list or check box; an option's group box.
    QWidget* control(int field) const { return controls_[std::size_t(field)]; }
    // Puts the keyboard focus into the field and selects its text.
    void focusField(int field);

signals:
    // The user changed the state.
    void edited();

private:
    void build(const PanelHints& hints);
    void addTopLevel(QGridLayout* grid, int& row, int field, const PanelHints& hints);
    QWidget* makeControl(int field);
    // The fields that belong to `option` with `value` (in record order).
    std::vector<int> members(int option, int value) const;
    void show();
    void userChanged();

    const FormSpec& spec_;
    const WaveNameLookup* names_;
    FormState state_;
    std::vector<QWidget*> controls_;
    std::vector<std::vector<QRadioButton*>> radios_;
    std::vector<bool> placed_;
};

}  // namespace orv
