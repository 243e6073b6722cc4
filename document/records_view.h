// The "Wave View" record: how a window paints its wave. The dialog of that name and the
// command line's ViewWave edit it; the painter (render/wave_painter.h) takes a copy.
//
// Colours are kept as 0x00BBGGRR (red in the low byte), the way these settings have always
// been stored; the painter turns them into pixels at the edge. People type them as
// "#RRGGBB": they are colour fields of the table, shown and read in that form.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "document/field_table.h"
#include "document/record_form.h"
#include "units/value_record.h"

namespace orv {

inline constexpr ColorRef kWhite = 0xFFFFFF;
inline constexpr ColorRef kBlack = 0x000000;
inline constexpr ColorRef kGrey = 0x808080;
inline constexpr ColorRef kRed = 0x0000FF;
inline constexpr ColorRef kTeal = 0x808000;

struct WaveViewRecord {
    enum : std::uint8_t { kDrawLines = 0, kDrawPoints = 1 };
    // Peaks: each column from the exact smallest and largest sample it spans (read from a
    // summary of the wave when one is at hand), whatever the values per pixel.
    enum : std::uint8_t { kPickConstant = 0, kPickRandom = 1, kPickPeaks = 2 };
    enum : std::uint8_t { kCombineMixed = 0, kLeftAtFront = 1, kRightAtFront = 2 };

    WaveViewRecord();
    static const RecordTable<WaveViewRecord>& table();

    std::int32_t valuesPerPixel;  // samples looked at per column, at least 1
    ValueRecord strength;         // 0 .. 1: how much a point covers what is under it
    std::uint8_t draw;            // kDrawLines, kDrawPoints
    std::uint8_t distribution;    // kPickConstant, kPickRandom, kPickPeaks
    ColorRef background;
    ColorRef singleWave;          // a mono wave
    ColorRef left;
    ColorRef right;
    ColorRef grid;
    ColorRef cursor;
    std::uint8_t combine;         // one band for both channels: kCombineMixed ...
    bool drawGrid;
    bool twoSingleWaves;          // a stereo wave as two bands, left above right
};

// The record's form: its colours are shown and read as "#RRGGBB" like any colour field.
using WaveViewForm = RecordForm<WaveViewRecord>;

}  // namespace orv
