// Range checks shared by the Wave operations (wave*.cpp only; not part of the public API).
//
// Every check is an internal assertion with unit "wave": the texts below are the ones the
// assertion reports, so keep them exactly. The line reported is the caller's line (taken
// through std::source_location), so a failure points at the operation, not at this file.
//
//   checkRangeE    empty range allowed: "begin >= 0", "end >= 0", "begin <= values",
//                  "end <= values", "begin <= end"
//   checkRangeN    at least one sample: the first four, then "begin < end"
//   checkRangeT    at least two samples: the first four, then "begin < end - 1"
//   checkGenRange  the generators' spelling of E: "begint >= 0" ... "begint <= endt"
//   checkFormRange a source range inside another wave: "beginf >= 0" ... "beginf < endf"
//   checkWave      any other check, with its text given
//
// resolveEnd turns the end -1 ("to the end of the wave") into `values`; call it before the
// checks in every operation that takes `end` by reference.
#pragma once

#include <cstdint>
#include <source_location>

#include "core/platform.h"

namespace orv {

inline constexpr const char* kWaveUnit = "wave";

// An internal check of the wave unit: reports `text` with the caller's line when cond fails.
inline void checkWave(bool cond, const char* text,
                      std::source_location loc = std::source_location::current()) {
    if (!cond) assertFailed(text, kWaveUnit, int(loc.line()));
}

// end -1 stands for the end of the wave.
inline void resolveEnd(std::int32_t& end, std::int32_t values) {
    if (end == -1) end = values;
}

namespace detail {
inline void checkRangeBounds(std::int32_t begin, std::int32_t end, std::int32_t values,
                             std::source_location loc) {
    checkWave(begin >= 0, "begin >= 0", loc);
    checkWave(end >= 0, "end >= 0", loc);
    checkWave(begin <= values, "begin <= values", loc);
    checkWave(end <= values, "end <= values", loc);
}
}  // namespace detail

// Empty range allowed.
inline void checkRangeE(std::int32_t begin, std::int32_t end, std::int32_t values,
                        std::source_location loc = std::source_location::current()) {
    detail::checkRangeBounds(begin, end, values, loc);
    checkWave(begin <= end, "begin <= end", loc);
}

// At least one sample.
inline void checkRangeN(std::int32_t begin, std::int32_t end, std::int32_t values,
                        std::source_location loc = std::source_location::current()) {
    detail::checkRangeBounds(begin, end, values, loc);
    checkWave(begin < end, "begin < end", loc);
}

// At least two samples.
inline void checkRangeT(std::int32_t begin, std::int32_t end, std::int32_t values,
                        std::source_location loc = std::source_location::current()) {
    detail::checkRangeBounds(begin, end, values, loc);
    checkWave(std::int64_t(begin) < std::int64_t(end) - 1, "begin < end - 1", loc);
}

// The generators' range: family E under their own names.
inline void checkGenRange(std::int32_t begin, std::int32_t end, std::int32_t values,
                          std::source_location loc = std::source_location::current()) {
    checkWave(begin >= 0, "begint >= 0", loc);
    checkWave(end >= 0, "endt >= 0", loc);
    checkWave(begin <= values, "begint <= values", loc);
    checkWave(end <= values, "endt <= values", loc);
    checkWave(begin <= end, "begint <= endt", loc);
}

// A non-empty source range [beginf, endf) inside the wave `form` of formValues samples.
inline void checkFormRange(std::int32_t beginf, std::int32_t endf, std::int32_t formValues,
                           std::source_location loc = std::source_location::current()) {
    checkWave(beginf >= 0, "beginf >= 0", loc);
    checkWave(endf >= 0, "endf >= 0", loc);
    checkWave(beginf <= formValues, "beginf <= form->values", loc);
    checkWave(endf <= formValues, "endf <= form->values", loc);
    checkWave(beginf < endf, "beginf < endf", loc);
}

}  // namespace orv
