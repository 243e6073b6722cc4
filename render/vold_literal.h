// The Vold picture's resonator loop written out literally: for every sample, every row in
// turn runs the four steps and widens its maxima, and a column is taken whenever the
// samples cross into the next one. It is slow (one row at a time, four steps per sample)
// and is kept as the measure the fast kernel (vold_kernel.h) is held to.
#pragma once

#include <vector>

#include "core/sample_value.h"
#include "render/vold_bank.h"

namespace orv {

// Runs `bank` over samples[span.ringFrom .. span.bounds.back()) and writes the brightness
// of every row of every column to out: span.columns() * bank.rows values, column after
// column, row 0 (the bottom) first. `volume`, when given, receives each row's greatest
// magnitude over the columns.
void runVoldLiteral(const VoldBank& bank, const WaveVal* samples, const VoldSpan& span,
                    float* out, std::vector<float>* volume = nullptr);

}  // namespace orv
