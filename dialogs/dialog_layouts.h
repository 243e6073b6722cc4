// How each dialog is laid out, as data: the dialog's name (TDlgVolumeProps ...), the
// captions it is shown under, its button layout and a few hints for the generic dialog.
// Everything else (which controls, their order, options with their fields) comes from the
// record's field table.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace orv {

// The four button layouts of the dialog bases.
enum class ButtonLayout : std::uint8_t {
    OKRight,       // TOKRightDlg: OK, Cancel on the right
    OKHelpRight,   // TOKHelpRightDlg: OK, Cancel, Help on the right
    OKBottom,      // TOKBottomDlg: OK, Cancel at the bottom
    OKHelpBottom,  // TOKHelpBottomDlg: OK, Cancel, Help at the bottom
};
std::string_view buttonBaseName(ButtonLayout layout);

struct DialogLayout {
    std::string_view className;
    // The captions it is shown under; the first is its own.
    std::vector<std::string_view> captions;
    ButtonLayout buttons = ButtonLayout::OKHelpRight;
    // Top-level fields that start a new column.
    std::vector<std::string_view> columnBreaks;
    // Options shown as a drop-down list instead of radio buttons (long lists).
    std::vector<std::string_view> optionsAsList;
};

const std::vector<DialogLayout>& dialogLayouts();
// The layout of the dialog shown under `caption`; a plain one-column layout with OK,
// Cancel and Help on the right when no dialog has that caption.
const DialogLayout& dialogLayoutFor(std::string_view caption);

}  // namespace orv
