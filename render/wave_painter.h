// The waveform picture: which samples fall on which column, how a column is drawn as a line
// or as points, how the selected part, the cursor, the grid and the two channels of a
// stereo sound are shown. The window and the command line both fill a WavePaintInput and
// call paintWave, so they cannot paint differently. The input holds plain values (a sound,
// a copy of the settings, positions), never a document, so a picture can be painted from a
// copy on any thread.
//
// The maps (all in double precision):
//   sample at column x   map(x + 0.5, 0, W, viewBegin, viewEnd): the column's centre
//   column of sample s   trunc(map(s, viewBegin, viewEnd, 0, W))
//   row of value v       trunc(v * -(bottom - top) / 65536 + (top + bottom) * 0.5)
// with map(v, a0, a1, b0, b1) = (b1 - b0) * (v - a0) / (a1 - a0) + b0. Positive values go up
// and the full 16-bit range fills the band.
//
// A column drawn as a line covers the rows lo - 1 up to hi, hi excluded, where lo and hi are
// the extreme rows of its samples. The Constant and Random distributions read the samples
// at values-per-pixel steps across the column plus the first one of the next, so
// neighbouring columns share a sample and a line never breaks. Random places each read at a
// random fraction of the column, drawn from the program's one 15-bit sequence, so two paints
// may differ; that sequence is not guarded, so Random pictures are painted on one thread.
//
// Peaks, our own distribution, draws column x from the exact smallest and largest of the
// samples trunc(sampleAt(x)) .. trunc(sampleAt(x + 1)), both included: the same stretch the
// other two look at, so switching distributions never shifts the picture, and the shared
// end sample keeps the line unbroken. It ignores values per pixel. In point mode it sets the
// two points of the extremes (blended by the strength like any point). The extremes come
// from the PeakSummary given with the input when it describes the sound, else straight from
// the samples: the same pixels either way.
//
// Two channels in one band: "Left at Front" draws the right channel and then the left over
// it, "Right at Front" the other way round. "Mixed" gives a pixel that both channels cover
// the average of their two colours (per byte, truncated), and every other pixel the colour
// of the channel that covers it.
//
// The grid (drawn after the wave, over each band): dotted lines, every other pixel, where
// the values 0 and plus and minus half scale are drawn, and at round times (1, 2, 5 steps
// below a second; 1, 2, 5, 10, 15, 30 s and 1, 2, 5, 10, 15, 30 min and whole hours above)
// spaced at least 80 columns apart, the start of the wave left out. The dots sit on even
// columns (horizontal lines) or even rows (vertical lines) of the client area, so a partial
// repaint joins its surroundings exactly.
#pragma once

#include <cstdint>

#include "core/sound.h"
#include "document/records_view.h"
#include "render/canvas.h"
#include "render/peak_summary.h"

namespace orv {

// The samples a window shows, as reals.
struct ViewSpan {
    double begin = 0.0;
    double end = 0.0;
};

// The whole wave, or while zoomed with a scroll range R > 0 and position P the part the
// scroll bar shows: P / R * n to n * (P + W) / R.
ViewSpan visibleSpan(std::int32_t values, bool zoomed, std::int64_t scrollRange,
                     std::int64_t scrollPos, int clientWidth);

// The two maps between columns and samples of a view W columns wide.
class ColumnMap {
public:
    ColumnMap(ViewSpan view, int clientWidth) : view_(view), width_(clientWidth) {}
    double sampleAt(double x) const;
    std::int32_t columnOf(double sample) const;

private:
    ViewSpan view_;
    int width_;
};

struct WavePaintInput {
    const Sound* sound = nullptr;  // nullptr paints as an empty wave
    WaveViewRecord settings;
    ViewSpan view;                 // from visibleSpan(); end <= begin: the whole wave
    std::int32_t cursor = 0;       // the document's cursor, 0 .. n
    std::int32_t selEndPos = 0;    // the selection's other end; equal to cursor: none
    int clientWidth = 0;
    int clientHeight = 0;
    const PeakSummary* peaks = nullptr;  // optional, for Peaks

    // The view the painter uses: `view`, or 0 .. n when it is empty.
    ViewSpan effectiveView() const;
    ColumnMap columnMap() const { return ColumnMap(effectiveView(), clientWidth); }
};

// Resizes the canvas to the client area and paints all of it.
void paintWave(Canvas& canvas, const WavePaintInput& input);
// Paints the columns [x1, x2) only (cut to the client area), as a window repaints the part
// that became invalid; the canvas must already have the client size. Pixels outside those
// columns are left alone.
void paintWaveColumns(Canvas& canvas, const WavePaintInput& input, int x1, int x2);

}  // namespace orv
