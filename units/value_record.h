// One typed amount of a parameter record: what the user typed, as unit code, the sign
// check that applies to the field, and the value in that unit.
#pragma once

#include <cstdint>

namespace orv {

// Unit codes, as kept in the records.
enum UnitCode : std::uint8_t {
    kUnitNone = 0,
    kUnitPercent = 1,
    kUnitDecibel = 2,
    kUnitSecond = 3,
    kUnitMillisecond = 4,
    kUnitHertz = 5,
    kUnitKilohertz = 6,
    kUnitSampleValue = 7,  // raw sample value, typed with "$"
    kUnitDegree = 8,
    kUnitUnknown = 11,
};

struct ValueRecord {
    std::uint8_t unit = kUnitNone;
    std::uint8_t signCheck = 0;  // 0..7, see the readers
    double value = 0.0;
    bool operator==(const ValueRecord&) const = default;
};

}  // namespace orv
