// The Vold picture of a window: time to the right as in the waveform view (the same column
// for the same sample), frequency upward, each pixel as bright as the resonator of its row
// rings in its column (the bank: vold_bank.h).
//
// How a window uses it:
//   1. On the user-interface thread, when the wave, the settings, the view or the size
//      change: VoldPicture picture(input) (cheap: the banks and the column spans; the sound
//      must stay alive and unchanged until compute() has returned).
//   2. On a worker thread: picture.compute(cancel). Columns become final from the left;
//      columnsReady() (any thread) tells how many, and options.onColumns is told as well.
//      Raising the cancel flag stops it within a column.
//   3. On paint: paintVoldColumns(canvas, picture, x1, x2, cursor, selEnd) draws the
//      finished columns of [x1, x2) and background for the rest; a change of the cursor or
//      of the selection only repaints, the brightness is kept.
//
// Layout: a mono wave, or a stereo wave with "2 Single Diagrams when Stereo" off, fills the
// client area with one diagram; with it on, the left channel fills the upper half (rows 0 to
// height / 2, halved toward zero) and the right channel the rest. A diagram has
// min(vertical resolution, its height) rows. With "Fill Window Height" each row takes an
// equal share of the diagram's height (pixel y from the diagram's bottom shows row
// y * rows / height, rounded down); without it one pixel per row from the bottom.
//
// Colours (0x00BBGGRR in the record): a pixel of brightness b is the volume colour blended
// into the background by b, per byte, rounded. A mono wave draws in "Volume Single or Both",
// the two diagrams of a stereo wave in "Volume Left" and "Volume Right". One diagram for
// both channels takes, per pixel, what the two have in common, min(left, right), in "Volume
// Single or Both", and what one channel has beyond the other in that channel's colour: a
// sound alike in both channels looks as it would in mono, and one that sits in a single
// channel shows in that channel's colour. With "Show Selection" the selected columns
// exchange the background and the diagram's main colour (single, left, right, both). The
// cursor is a line over the full height in the "Cursor" colour, at the column of the cursor
// sample (the last sample's column for a cursor after the end), as in the waveform view.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "core/sound.h"
#include "document/records_vold.h"
#include "render/canvas.h"
#include "render/vold_bank.h"
#include "render/vold_kernel.h"
#include "render/wave_painter.h"

namespace orv {

struct VoldPaintInput {
    const Sound* sound = nullptr;  // nullptr paints as an empty wave
    VoldViewRecord settings;
    ViewSpan view;                 // from visibleSpan(); end <= begin: the whole wave
    int clientWidth = 0;
    int clientHeight = 0;
};

// One diagram: the band of the client area it fills and the channel it shows.
struct VoldDiagram {
    int top = 0;         // client rows [top, bottom)
    int bottom = 0;
    int channel = 0;     // 0: mono or left, 1: right
    bool both = false;   // channels 0 and 1 together in one diagram
};

class VoldPicture {
public:
    explicit VoldPicture(const VoldPaintInput& input);
    VoldPicture(const VoldPicture&) = delete;
    VoldPicture& operator=(const VoldPicture&) = delete;

    // Computes every column; false when the flag stopped it (the finished columns stay).
    bool compute(const CancelFlag& cancel, const VoldKernelOptions& options = {});
    // The columns [0, columnsReady()) are final.
    int columnsReady() const { return ready_.load(std::memory_order_acquire); }

    int width() const { return width_; }
    int height() const { return height_; }
    int channels() const { return int(banks_.size()); }
    const std::vector<VoldDiagram>& diagrams() const { return diagrams_; }
    const VoldBank& bank(int channel) const { return banks_[std::size_t(channel)]; }
    const VoldSpan& span() const { return span_; }
    const VoldViewRecord& settings() const { return settings_; }
    const ColumnMap& columnMap() const { return map_; }
    std::int32_t values() const { return values_; }

    // Brightness 0 .. 1 of a channel's row (0 = bottom) in a finished column.
    float brightness(int channel, int column, int row) const {
        return out_[std::size_t(channel)][std::size_t(column) * std::size_t(bank(channel).rows) +
                                          std::size_t(row)];
    }
    // The resonator row that client pixel row y shows in a diagram, or -1 (background).
    int rowAt(const VoldDiagram& diagram, int y) const;
    // The frequency in hertz of the row under client pixel row y, 0 where there is none.
    double frequencyAt(int y) const;

private:
    VoldViewRecord settings_;
    int width_ = 0;
    int height_ = 0;
    std::int32_t values_ = 0;
    ColumnMap map_;
    std::vector<VoldDiagram> diagrams_;
    std::vector<VoldBank> banks_;              // per channel
    std::vector<const WaveVal*> samples_;      // per channel
    std::vector<std::vector<float>> out_;      // per channel: columns x rows
    VoldSpan span_;
    std::atomic<int> ready_{0};
};

// Paints the columns [x1, x2) (cut to the picture) onto a canvas of the picture's size:
// finished columns in colour, the others background; then the selection (cursor to selEnd,
// nothing when equal) and the cursor. Pixels outside those columns are left alone.
void paintVoldColumns(Canvas& canvas, const VoldPicture& picture, int x1, int x2,
                      std::int32_t cursor, std::int32_t selEnd);

}  // namespace orv
