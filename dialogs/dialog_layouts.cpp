#include "dialog_layouts.h"

#include <algorithm>

namespace orv {

std::string_view buttonBaseName(ButtonLayout layout) {
    switch (layout) {
        case ButtonLayout::OKRight: return "TOKRightDlg";
        case ButtonLayout::OKHelpRight: return "TOKHelpRightDlg";
        case ButtonLayout::OKBottom: return "TOKBottomDlg";
        case ButtonLayout::OKHelpBottom: return "TOKHelpBottomDlg";
    }
    return {};
}

const std::vector<DialogLayout>& dialogLayouts() {
    using B = ButtonLayout;
    static const std::vector<DialogLayout> layouts{
        {"TDlgVolumeProps", {"Change Volume"}, B::OKHelpRight, {}, {}},
        {"TDlgSilenceProps", {"Make Silence"}, B::OKHelpRight, {}, {}},
        {"TDlgLineProps", {"Make Line"}, B::OKHelpRight, {}, {}},
        {"TDlgNoiseProps", {"Make Noise"}, B::OKHelpRight, {}, {}},
        {"TDlgRotateProps", {"Rotate"}, B::OKHelpRight, {}, {}},
        {"TDlgBlockProps", {"Block"}, B::OKHelpRight, {"Vertical"}, {}},
        {"TDlgBlockTriangleProps", {"Block or Triangle", "Make Block", "Make Triangle"},
         B::OKHelpRight, {"Wave Kind"}, {}},
        {"TDlgSinusProps", {"Make Sinus"}, B::OKHelpRight, {}, {}},
        {"TDlgRollInProps", {"Roll in"}, B::OKHelpRight, {}, {}},
        {"TDlgUpProps", {"Up / Down"}, B::OKHelpRight, {}, {}},
        {"TDlgLeftRightProps", {"Mix Left Right"}, B::OKHelpRight, {}, {}},
        {"TDlgResNotchProps", {"Resonant/Notch", "Resonant Filter", "Notch Filter"},
         B::OKHelpRight, {"Frequency Width"}, {}},
        {"TDlgPerEchoProps", {"Period Echo"}, B::OKHelpRight, {"Echo Volume"}, {}},
        {"TDlgHighLowProps", {"High Low Filter", "High Filter", "Low Filter"}, B::OKHelpRight,
         {}, {}},
        {"TDlgBlockFilterProps", {"Block Filter"}, B::OKHelpRight, {}, {}},
        {"TDlgBalanceProps", {"Balance"}, B::OKHelpRight, {}, {}},
        {"TDlgMixProps", {"Mix"}, B::OKHelpRight, {}, {}},
        {"TDlgTempoPitchProps", {"Pitch Tempo"}, B::OKHelpRight, {"Length"}, {}},
        {"TDlgRollOutProps", {"Roll out"}, B::OKHelpRight, {"Length"}, {}},
        {"TDlgLengthProps", {"Change Length"}, B::OKHelpRight, {}, {}},
        {"TDlgRandomEchoProps", {"Random Echo"}, B::OKHelpRight, {"Length", "Pitch"},
         {"Time Source", "Volume Source", "Length Source", "Balance Source", "Pitch Source",
          "Tempo Source"}},
        {"TDlgDistortProps", {"Distort"}, B::OKHelpRight, {}, {}},
        {"TDlgMFreqProps", {"Multi Frequency"}, B::OKHelpRight, {}, {}},
        {"TDlgWaveFileProp", {"Wave Properties"}, B::OKHelpBottom, {}, {}},
        {"TDlgWaveViewProps", {"Wave View"}, B::OKHelpRight, {}, {}},
        {"TDlgVoldViewProps", {"Volume Diagram"}, B::OKHelpRight, {}, {}},
        {"TDlgSelZoom", {"Select and Zoom"}, B::OKHelpRight, {}, {}},
        {"TDlgSplitHorProps", {"Split Horizontally"}, B::OKHelpRight, {}, {}},
        {"TDlgMergeHorProps", {"Merge Horizontally"}, B::OKHelpRight, {}, {}},
        {"TDlgMergeVertProps", {"Merge Vertically"}, B::OKHelpRight, {}, {}},
        {"TDlgRegisterWave", {"Register"}, B::OKHelpBottom, {}, {}},
    };
    return layouts;
}

const DialogLayout& dialogLayoutFor(std::string_view caption) {
    static const DialogLayout plain{"", {}, ButtonLayout::OKHelpRight, {}, {}};
    for (const DialogLayout& l : dialogLayouts())
        if (std::find(l.captions.begin(), l.captions.end(), caption) != l.captions.end()) return l;
    return plain;
}

}  // namespace orv
