// The resonator bank of the Vold picture: one resonator per pixel row, driven by the samples.
//
// Row r (0 = bottom) gets a frequency from the record's spacing:
//   Logaritmic        f(r) = bottom * q^r with q the ratio (top / bottom)^(1 / rows)
//   Frequency Linear  f(r) = bottom + r * (top - bottom) / rows      (equal steps of hertz)
//   Time Linear       1 / f(r) = 1 / bottom - r * (1 / bottom - 1 / top) / rows
// so the top frequency itself lies one step above the top row. F is the row's period in
// samples (period * sample frequency, at least 1: a row above the sample frequency, which
// the dialog refuses but a default made on another wave may bring, rings at the sample
// frequency). Each row has a weight w: 1 for Logaritmic, rows / (3 (r + 1)) for Frequency
// Linear, rows / (3 (rows + 1 - r)) for Time Linear, and
//   tr   = 2.466 / F^2                              (stiffness; 2.466 ~ (pi / 2)^2)
//   free = (1 / Q^(s * w * width))^(1 / F)          (damping per step)
// where Q is the ratio q of the logarithmic spacing (or 1 / q when q is at most 1), s the
// strength and width the record's "Width". Width is ours: it scales the damping, so a width
// of 2 makes every resonator about twice as wide in frequency; 1 leaves the bank as the spacing
// makes it.
//
// Per sample x every row runs four steps of
//   value += speed * tr;  speed -= value;  value = free * value + x * (1 - free);
// and then widens its column maximum with its present magnitude: the amplitude of the
// row's oscillation, sqrt(4 / (4 - tr) * (value^2 + tr * speed^2 + tr * value * speed)).
// That quadratic form is what the undamped steps keep constant, and the factor makes it the
// peak of `value` over a period; so a row whose period is only a few samples long shows its
// ringing steadily instead of wherever the samples happen to fall on its wave.
//
// Brightness: a row's level is its column maximum divided by the magnitude that a full-scale
// sine (amplitude 32767) at the row's own frequency settles at, cut to 1; so such a sine
// shows at full brightness in every row whatever the spacing and damping. The sensitivity
// then takes the level squared, as is, its square root or its fourth root.
//
// The four steps of one sample are linear in (value, speed) and x, so they fold into one
// step. In coordinates y = L (value, speed) chosen so that |y|^2 is the squared magnitude,
//   y1 += d11 y1 + d12 y2 + b1 x;   y2 += d21 y1 + d22 y2 + b2 x;   m^2 = y1^2 + y2^2
// The matrix is kept as its difference D from the identity: near 1 a single-precision
// entry would lose the few parts in a million by which a low row turns per sample, and with
// them its pitch. The fast kernel (vold_kernel.h) runs this form; the literal loop
// (vold_literal.h) the four steps.
#pragma once

#include <cstdint>
#include <vector>

#include "document/records_vold.h"

namespace orv {

// The amplitude of a full-scale sine, the one that shows at brightness 1.
inline constexpr double kVoldFullScale = 32767.0;
// A view that starts inside the wave first feeds the resonators the sound before it, until
// the slowest row has fallen to this part of its magnitude (-80 dB), but never more than
// this many seconds of it.
inline constexpr double kVoldSettleLevel = 1e-4;
inline constexpr double kVoldMaxSettleSeconds = 60.0;

struct VoldBank {
    int rows = 0;
    std::uint8_t sensitivity = VoldViewRecord::kNormal;
    // Per row, row 0 at the bottom.
    std::vector<double> frequency;  // hertz
    std::vector<double> period;     // F, the period in samples (at least 1)
    std::vector<double> weight;     // w
    std::vector<float> tr;          // as the literal loop uses them, single precision
    std::vector<float> free;
    std::vector<float> magScale;    // 4 / (4 - tr)
    std::vector<float> d11, d12, d21, d22, b1, b2;  // one sample folded, see above
    std::vector<float> invFullScale;  // 1 / magnitude of a settled full-scale sine
    std::int32_t settleSamples = 0;   // samples the slowest row needs to fall to -80 dB
};

// The bank of `rows` rows for a wave of `sampleFreq` samples per second. rows >= 0,
// sampleFreq > 0.
VoldBank makeVoldBank(const VoldViewRecord& settings, std::int32_t sampleFreq, int rows);

// A row's brightness (0 .. 1) from its squared magnitude, by the bank's sensitivity.
float voldBrightness(const VoldBank& bank, int row, float magnitudeSquared);

// Which samples make which column. Column c gathers the samples [bounds[c], bounds[c + 1]);
// the samples [ringFrom, bounds[0]) only ring the resonators in. A column that no sample
// falls into (a view zoomed in closer than one sample per column) shows the magnitude the
// rows have at that point, so a stretched sample covers all its columns.
struct VoldSpan {
    std::int32_t ringFrom = 0;
    std::vector<std::int32_t> bounds;  // columns + 1 entries, never decreasing
    int columns() const { return bounds.empty() ? 0 : int(bounds.size()) - 1; }
};

// The span of a view of `clientWidth` columns over the samples [viewBegin, viewEnd) of a
// wave of `values` samples: column x gathers the samples s whose column
// trunc((s - viewBegin) * clientWidth / (viewEnd - viewBegin)) is x, the column a sample
// has in the waveform view. `ringIn` samples before the first column ring the resonators in
// (as many as there are).
VoldSpan voldSpanOf(double viewBegin, double viewEnd, int clientWidth, std::int32_t values,
                    std::int32_t ringIn);

}  // namespace orv
