// The "Volume Diagram" record: how a window paints its wave as a Vold picture (time to the
// right, frequency upward, brightness how strongly a resonator of that frequency rings). The
// dialog of that name and the command line's ViewVold edit it; the Vold painter
// (render/vold_picture.h) takes a copy.
//
// The two frequencies are kept as periods in seconds, like every frequency field, and shown
// in the unit last typed (20 kHz and 20 Hz at first). Colours are 0x00BBGGRR and are shown
// and read as "#RRGGBB" by VoldViewForm, as in the "Wave View" record.
//
// Our choices where the dialog leaves room:
// - The rows are spaced "Logaritmic" and the brightness is "Normal (Linear)" at first: equal
//   ratios are what one expects over 20 Hz .. 20 kHz, and a linear scale is the plainest.
// - The three flags, all on at first:
//     "Fill Window Height"   the rows are stretched over the whole height of their diagram;
//                            off, each row is one pixel high from the bottom up and the
//                            rest of the diagram stays background.
//     "Ring in before View"  a view that starts after the beginning of the wave first feeds
//                            the resonators the sound before it (as much as they need to
//                            settle), so a scrolled or zoomed view shows the same columns as
//                            the whole picture; off, they start from rest at the view.
//     "Show Selection"       the selected part is drawn with background and volume colours
//                            exchanged, as in the waveform view.
// - The colours: "Volume Single or Both " teal, "Volume Left" red, "Volume Right" fuchsia,
//   "Cursor" red, on a white background.
// - "Use As Default" is not part of the record: the dialog offers it and the window keeps
//   the default, as for the "Wave View" record.
#pragma once

#include <cstdint>
#include <optional>

#include "document/field_table.h"
#include "document/record_form.h"
#include "document/records_view.h"
#include "units/value_record.h"

namespace orv {

struct VoldViewRecord {
    enum : std::uint8_t { kFrequencyLinear = 0, kLogarithmic = 1, kTimeLinear = 2 };
    // How a row's level (0 .. 1) becomes brightness: squared, as is, square root, fourth root.
    enum : std::uint8_t { kLow = 0, kNormal = 1, kHigh = 2, kVeryHigh = 3 };

    VoldViewRecord();
    static const RecordTable<VoldViewRecord>& table();

    ValueRecord top;         // period of the top row's frequency, seconds
    ValueRecord bottom;      // period of the bottom row's frequency, seconds
    std::int32_t vertical;   // the greatest number of rows, at least 1
    ValueRecord width;       // widens every resonator (more damping); 1: as the spacing asks
    ValueRecord strength;    // sharpness of the resonators, enters their damping
    bool fillHeight;
    bool ringInBeforeView;
    bool showSelection;
    std::uint8_t distribution;  // kFrequencyLinear, kLogarithmic, kTimeLinear
    std::uint8_t sensitivity;   // kLow ... kVeryHigh
    ColorRef background;
    ColorRef volumeBoth;     // a mono wave, or both channels in one diagram
    ColorRef volumeLeft;
    ColorRef volumeRight;
    ColorRef cursor;
    bool twoDiagrams;        // a stereo wave as two diagrams, left above right

    bool operator==(const VoldViewRecord&) const = default;
};

inline constexpr std::string_view kTopTooHighMessage =
    "Top Frequency may not be higher than the sample Frequency.";
inline constexpr std::string_view kTopEqualsBottomMessage =
    "Top Frequency and Bottom Frequency must be different.";
inline constexpr std::string_view kBottomTooHighMessage =
    "Bottom Frequency may not be higher than the sample Frequency.";

// The record's own checks on a wave of `sampleFreq` samples per second, in this order: the
// top frequency against the sample frequency, top against bottom, the bottom frequency
// against the sample frequency. A sampleFreq of 0 (not known) checks top against bottom
// only. The message goes out as "In Top: ..." or "In Bottom: ..." under "Input Error".
std::optional<FormError> checkVoldFrequencies(const VoldViewRecord& r, std::int32_t sampleFreq);

// The record's form: its colours are shown and read as "#RRGGBB" like any colour field.
using VoldViewForm = RecordForm<VoldViewRecord>;

}  // namespace orv
