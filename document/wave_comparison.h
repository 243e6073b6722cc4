// The properties of the two waves a merge dialog has chosen, side by side, so that the user
// sees where they differ before choosing the properties of the new wave.
//
// The table, one vector of cells per row:
//   {"",            headingA,   headingB}
//   {"Mono/Stereo", "Mono",     "Stereo"}
//   {"Frequency",   "22050 Hz", "44100 Hz"}
//   {"Bits",        "8 Bits",   "16 Bits"}
//   {"Length",      "0.50000 s", "1:05.25000"}   (as the status bar writes lengths)
// A side without a wave (nothing chosen yet, or a name no open wave bears) has empty cells
// below its heading.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "document/field_table.h"
#include "document/record_form.h"
#include "document/unit_wave.h"

namespace orv {

class Workspace;

using WaveComparison = std::vector<std::vector<std::string>>;

WaveComparison compareWaves(const TUnitWave* a, const TUnitWave* b, std::string_view headingA,
                            std::string_view headingB);

// For the dialog of a merge record: reads the names chosen in its first two wave fields out
// of the form state, finds the waves among `workspace`'s registered names and compares them
// under the fields' captions ("First" / "Last", "Left" / "Right"). `workspace` and `spec`
// must outlive the function. Asserts that the form has two wave fields.
// A merge dialog that has no waves of its own yet starts with a choice made: the active wave
// first (when it has a name), then the first other named wave. A name still open is kept.
void presetMergeWaves(const FormSpec& spec, FormState& state, const Workspace& workspace,
                      const TUnitWave* active);

// The wave whose display settings the merged wave's window takes: the one of the two chosen
// under "Use Display Properties of"; null when it is not open under that name.
const TUnitWave* mergeDisplaySource(const FormSpec& spec, const FormState& state,
                                    const Workspace& workspace);

std::function<WaveComparison(const FormState&)> mergeSideTable(const Workspace& workspace,
                                                               const FormSpec& spec);

}  // namespace orv
